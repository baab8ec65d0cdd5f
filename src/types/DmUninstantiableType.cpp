#include <KestoDM/types/DmUninstantiableType.h>

namespace Kesto {

DmUninstantiableType::DmUninstantiableType(std::string name, DmTypeKind kind)
    : DmBaseType(std::move(name), kind) {}

unsigned int DmUninstantiableType::getSizeOf() const {
    return 0;
}

unsigned int DmUninstantiableType::getAlignmentOf() const {
    return 0;
}

Internal::UntypedTypeRep DmUninstantiableType::getUntypedTypeRep() const {
    return Internal::UntypedTypeRep::opaque16();
}

Internal::RuntimeTypeInfo const* DmUninstantiableType::getRuntimeTypeInfo() const {
    return nullptr;
}

DmAutoType::DmAutoType() : DmUninstantiableType("auto", kTypeAuto) {}

DmAutoType::~DmAutoType() = default;

DmUndefinedType::DmUndefinedType(std::string name) : DmUninstantiableType(std::move(name), kTypeUndefined) {}

DmUndefinedType::~DmUndefinedType() = default;

} // namespace Kesto
