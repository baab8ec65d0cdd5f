#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmStructType.h>

#include <string>

namespace Kesto {

/// The stand-in for a struct type that a file uses but no loaded file defines.
/// Its members are those the file's values showed. It is never fully resolved.
class KESTODM_API DmUnknownStructType : public DmStructType, public DmInstanceCounter<DmUnknownStructType> {
public:
    DmUnknownStructType(InternalConstructor, std::string const& name);
    ~DmUnknownStructType() override;

    bool isFullyResolved() const override;
    std::shared_ptr<DmBaseValue> createValue() const override;
    std::shared_ptr<DmBaseValue>
    createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const override;
    /// Moves the struct and then each member's type into `ns`.
    DmStatus setNamespace(DmNamespace* ns, DmNameResolutionType resolution) override;
};

} // namespace Kesto
