#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/platform/DmExport.h>

#include <iosfwd>
#include <memory>

namespace Kesto {

class BaContext;
class DmAnyType;
class DmArrayType;
class DmAutoType;
class DmBoolType;
class DmCharType;
class DmClassType;
class DmDoubleType;
class DmFloatType;
class DmIntType;
class DmLongType;
class DmMessageLogger;
class DmShortType;
class DmStringType;
class DmUCharType;
class DmUIntType;
class DmULongType;
class DmUShortType;
class DmUndefinedType;

/// The object through which a host enters the system: it owns the message log
/// and, as the model grows, the namespaces, registers and resolvers that every
/// load and edit hangs from. Made only by newLibrary; dropping the last
/// reference prints the messages still in the log.
///
/// One library belongs to one thread at a time.
class KESTODM_API DmLibrary : public std::enable_shared_from_this<DmLibrary>,
                              public DmInstanceCounter<DmLibrary> {
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    /// @name Construction
    /// @{
    /// Makes a library. Never returns null because initialization failed: the
    /// failure is reported in the library's log instead. `errorStream` receives
    /// printed messages; it is not owned and may be null.
    static std::shared_ptr<DmLibrary> newLibrary(std::shared_ptr<BaContext> context,
                                                 std::ostream* errorStream,
                                                 DmExternOperator::CancellationPolicy policy);

    DmLibrary(InternalConstructor, std::shared_ptr<BaContext> context,
              DmExternOperator::CancellationPolicy policy);
    DmLibrary(DmLibrary const&) = delete;
    DmLibrary& operator=(DmLibrary const&) = delete;
    /// Prints and clears the messages left in the log, then releases the members.
    ~DmLibrary();
    /// @}

    /// @name Queries
    /// @{
    std::shared_ptr<BaContext> const& getContext() const noexcept { return m_context; }
    std::shared_ptr<DmMessageLogger> const& getErrorLogger() const noexcept { return m_errorLogger; }
    DmExternOperator::CancellationPolicy getDefaultCancellationPolicy() const noexcept {
        return m_defaultCancellationPolicy;
    }
    /// @}

    /// @name Type singletons
    /// Shared by every library of the process, made on first call and const
    /// from birth: no library can alter them.
    /// @{
    static std::shared_ptr<DmAnyType> const& getAnyType();
    static std::shared_ptr<DmArrayType> const& getArrayOfAnyType();
    static std::shared_ptr<DmAutoType> const& getAutoType();
    static std::shared_ptr<DmBoolType> const& getBoolType();
    static std::shared_ptr<DmCharType> const& getCharType();
    static std::shared_ptr<DmUCharType> const& getUCharType();
    static std::shared_ptr<DmShortType> const& getShortType();
    static std::shared_ptr<DmUShortType> const& getUShortType();
    static std::shared_ptr<DmIntType> const& getIntType();
    static std::shared_ptr<DmUIntType> const& getUIntType();
    static std::shared_ptr<DmLongType> const& getLongType();
    static std::shared_ptr<DmULongType> const& getULongType();
    static std::shared_ptr<DmFloatType> const& getFloatType();
    static std::shared_ptr<DmDoubleType> const& getDoubleType();
    static std::shared_ptr<DmStringType> const& getStringType();
    /// "__undefined__": the type of what was named but never defined.
    static std::shared_ptr<DmUndefinedType> const& getUndefinedType();
    /// "__RuntimeServices__": the opaque class of the runtime services handle an operator may ask for.
    static std::shared_ptr<DmClassType> const& getRuntimeServicesType();
    /// "__TypeRegistry__": the opaque class of the type registry handle.
    static std::shared_ptr<DmClassType> const& getTypeRegistryType();
    /// @}

private:
    bool initialize(std::ostream* errorStream);

    // Members are released in reverse order of declaration.
    std::shared_ptr<BaContext> m_context;
    std::shared_ptr<DmMessageLogger> m_errorLogger;
    DmExternOperator::CancellationPolicy m_defaultCancellationPolicy;
};

} // namespace Kesto
