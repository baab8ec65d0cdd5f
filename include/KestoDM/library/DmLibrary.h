#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/platform/DmExport.h>

#include <iosfwd>
#include <memory>

namespace Kesto {

class BaContext;
class DmMessageLogger;

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

private:
    bool initialize(std::ostream* errorStream);

    // Members are released in reverse order of declaration.
    std::shared_ptr<BaContext> m_context;
    std::shared_ptr<DmMessageLogger> m_errorLogger;
    DmExternOperator::CancellationPolicy m_defaultCancellationPolicy;
};

} // namespace Kesto
