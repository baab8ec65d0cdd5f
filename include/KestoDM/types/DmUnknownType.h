#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmExternBaseType.h>

#include <string>

namespace Kesto {

/// The stand-in for a type that a file names but no loaded file defines.
/// A datum is the raw text the file held. It is never fully resolved and is
/// equivalent only to itself.
class KESTODM_API DmUnknownType : public DmExternBaseType, public DmInstanceCounter<DmUnknownType> {
public:
    DmUnknownType(InternalConstructor, std::string const& name);
    ~DmUnknownType() override;

    bool isFullyResolved() const override;
    Internal::UntypedTypeRep getUntypedTypeRep() const override;
    Internal::RuntimeTypeInfo const* getRuntimeTypeInfo() const override;
    std::shared_ptr<DmBaseValue> createValue() const override;
    std::shared_ptr<DmBaseValue>
    createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const override;
};

} // namespace Kesto
