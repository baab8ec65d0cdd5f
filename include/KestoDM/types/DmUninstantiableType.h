#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>

#include <string>

namespace Kesto {

/// A type of which no datum exists: size and alignment 0, no run-time
/// record, and a fixed opaque representation where one is asked for.
class KESTODM_API DmUninstantiableType : public DmBaseType {
public:
    unsigned int getSizeOf() const override;
    unsigned int getAlignmentOf() const override;
    Internal::UntypedTypeRep getUntypedTypeRep() const override;
    Internal::RuntimeTypeInfo const* getRuntimeTypeInfo() const override;
    /// Null: no value exists but those of the subclasses.
    std::shared_ptr<DmBaseValue> createValue() const override;
    /// Always null.
    std::shared_ptr<DmBaseValue>
    createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const override;

protected:
    DmUninstantiableType(std::string name, DmTypeKind kind);
};

/// "auto": the type of a port whose type is decided by what it connects to.
/// A process-wide singleton (DmLibrary::getAutoType).
class KESTODM_API DmAutoType : public DmUninstantiableType,
                               public DmBuiltInType,
                               public DmInstanceCounter<DmAutoType> {
public:
    DmAutoType();
    ~DmAutoType() override;
    std::shared_ptr<DmBaseValue> createValue() const override;
};

/// A type that was named but not defined. The library's own is "__undefined__"
/// (DmLibrary::getUndefinedType); others are made with the name they were given.
class KESTODM_API DmUndefinedType : public DmUninstantiableType, public DmInstanceCounter<DmUndefinedType> {
public:
    explicit DmUndefinedType(std::string name);
    ~DmUndefinedType() override;
    std::shared_ptr<DmBaseValue> createValue() const override;
};

} // namespace Kesto
