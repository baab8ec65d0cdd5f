#include <KestoDM/types/DmExternBaseType.h>

#include <KestoDM/platform/Ptr.h>

namespace Kesto {

DmExternBaseType::DmExternBaseType(std::string name, DmTypeKind kind) : DmBaseType(std::move(name), kind) {}

DmExternBaseType::~DmExternBaseType() = default;

unsigned int DmExternBaseType::getSizeOf() const {
    return sizeof(Ptr<void>);
}

unsigned int DmExternBaseType::getAlignmentOf() const {
    return alignof(Ptr<void>);
}

} // namespace Kesto
