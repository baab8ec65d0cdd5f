#include <KestoDM/types/DmUninstantiableType.h>

#include <KestoDM/types/DmUninstantiableValue.h>

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

std::shared_ptr<DmBaseValue> DmUninstantiableType::createValue() const {
    return nullptr;
}

std::shared_ptr<DmBaseValue>
DmUninstantiableType::createMemberValue(std::shared_ptr<unsigned char const> const&) const {
    return nullptr;
}

std::shared_ptr<DmBaseValue> DmAutoType::createValue() const {
    return std::make_shared<DmAutoValue>();
}

std::shared_ptr<DmBaseValue> DmUndefinedType::createValue() const {
    return std::make_shared<DmUndefinedValue>(
        std::static_pointer_cast<DmUndefinedType const>(shared_from_this()));
}

} // namespace Kesto
