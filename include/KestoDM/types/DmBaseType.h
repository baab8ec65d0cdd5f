#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/UntypedTypeRep.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/DmTypeKind.h>

#include <memory>
#include <string>

namespace Kesto {

class DmBaseValue;
class DmNamespace;
class DmURI;

namespace Internal {
class RuntimeTypeInfo;
}

/// Root of every type. A type knows its name, namespace, kind, native symbol,
/// layout and run-time record. Built-in types are process-wide singletons
/// (DmLibrary::getIntType, ...); composite types are made by the library and
/// the reader and live in namespaces. Types are always complete and never copied.
class KESTODM_API DmBaseType : public DmNamedEntity, public DmInstanceCounter<DmBaseType> {
public:
    DmBaseType(DmBaseType const&) = delete;
    DmBaseType& operator=(DmBaseType const&) = delete;
    ~DmBaseType() override;

    /// @name Identity
    /// @{
    DmTypeKind getTypeKind() const noexcept { return m_typeKind; }
    DmNamespace* getNamespace() noexcept { return m_namespace; }
    DmNamespace const* getNamespace() const noexcept { return m_namespace; }
    std::shared_ptr<DmURI> const& getURI() const noexcept { return m_uri; }
    void setURI(std::shared_ptr<DmURI> const& uri) { m_uri = uri; }
    DmMangledName const& getTypeNameMangleName() const noexcept { return m_typeNameMangleName; }
    void setTypeNameMangleName(DmMangledName const& name) { m_typeNameMangleName = name; }
    /// The key under which namespaces file the type: its full name.
    std::string getMapEntryKey() const;
    /// The namespace's scope name, "::" and the name; no prefix in the global
    /// namespace or without a namespace.
    void resolveFullName(std::string& out) const override;
    /// @}

    /// @name Placement
    /// @{
    /// Moves the type into `ns` (null: out of any namespace). Only name
    /// resolution 0 is allowed (kInvalidArgument otherwise); a const type that
    /// already has a namespace stays there (kConstEntity).
    virtual DmStatus setNamespace(DmNamespace* ns, DmNameResolutionType resolution);
    /// @}

    /// @name Nature and layout
    /// @{
    virtual bool isNative() const;
    virtual bool isPOD() const;
    virtual bool isFullyResolved() const;
    virtual unsigned int getSizeOf() const = 0;
    virtual unsigned int getAlignmentOf() const = 0;
    virtual Internal::UntypedTypeRep getUntypedTypeRep() const = 0;
    /// The run-time record of the type's native form, or null when it has none.
    virtual Internal::RuntimeTypeInfo const* getRuntimeTypeInfo() const = 0;
    /// @}

    /// @name Values
    /// @{
    /// A new value holding the type's default; the same as createValue unless
    /// the type says otherwise (arrays, structs, classes).
    virtual std::shared_ptr<DmBaseValue> createDefaultValue() const;
    /// A new value of the type, or null for a type of which no value exists.
    virtual std::shared_ptr<DmBaseValue> createValue() const = 0;
    /// A new value whose datum lives in `buffer`, storage owned by an enclosing
    /// value (a struct member, an array slot); null where no value exists.
    virtual std::shared_ptr<DmBaseValue>
    createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const = 0;
    /// @}

    /// @name Comparison
    /// Defined once for all kinds; overload de-duplication and connection
    /// checks rest on them.
    /// @{
    static bool equivalent(DmBaseType const& a, DmBaseType const& b);
    static bool equivalent(std::shared_ptr<DmBaseType const> const& a,
                           std::shared_ptr<DmBaseType const> const& b);
    /// A strict order for sorted containers. Two enums with the same keys are
    /// each less than the other (even an enum with itself): callers rely on it.
    static bool lessThan(DmBaseType const& a, DmBaseType const& b);
    static bool lessThan(std::shared_ptr<DmBaseType const> const& a,
                         std::shared_ptr<DmBaseType const> const& b);
    /// @}

protected:
    DmBaseType(std::string name, DmTypeKind kind);

    DmNamespace* m_namespace = nullptr;

private:
    std::shared_ptr<DmURI> m_uri;
    DmMangledName m_typeNameMangleName;
    DmTypeKind m_typeKind;
};

using DmBaseTypePtr = std::shared_ptr<DmBaseType>;
using DmBaseTypeConstPtr = std::shared_ptr<DmBaseType const>;

} // namespace Kesto
