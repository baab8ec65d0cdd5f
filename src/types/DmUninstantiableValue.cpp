#include <KestoDM/types/DmUninstantiableValue.h>

#include <KestoDM/types/DmUninstantiableType.h>

#include "types/DmTypeSingletons.h"

namespace Kesto {

bool DmUninstantiableValue::isImplicit() const {
    return true;
}
bool DmUninstantiableValue::assign(std::shared_ptr<DmBaseValue> const&) {
    return false;
}
bool DmUninstantiableValue::moveAssign(std::shared_ptr<DmBaseValue>&&) {
    return false;
}
Any DmUninstantiableValue::toAny() const {
    return Any();
}
bool DmUninstantiableValue::copyConstructIntoBuffer(void*) const {
    return false;
}
bool DmUninstantiableValue::moveConstructIntoBuffer(void*) {
    return false;
}
bool DmUninstantiableValue::copyAssignIntoBuffer(void*) const {
    return false;
}
bool DmUninstantiableValue::moveAssignIntoBuffer(void*) {
    return false;
}
bool DmUninstantiableValue::copyConstructFromBuffer(void const*) {
    return false;
}
bool DmUninstantiableValue::moveConstructFromBuffer(void*) {
    return false;
}
bool DmUninstantiableValue::copyAssignFromBuffer(void const*) {
    return false;
}
bool DmUninstantiableValue::moveAssignFromBuffer(void*) {
    return false;
}

DmAutoValue::DmAutoValue() : DmUninstantiableValue(Internal::placed(Internal::TypeSingletons::autoType())) {}
DmAutoValue::~DmAutoValue() = default;
std::shared_ptr<DmBaseValue> DmAutoValue::clone() const {
    return std::make_shared<DmAutoValue>(*this);
}

DmUndefinedValue::DmUndefinedValue()
    : DmUninstantiableValue(Internal::placed(Internal::TypeSingletons::undefinedType())) {}
DmUndefinedValue::DmUndefinedValue(std::shared_ptr<DmUndefinedType const> const& type)
    : DmUninstantiableValue(type) {}
DmUndefinedValue::~DmUndefinedValue() = default;
std::shared_ptr<DmBaseValue> DmUndefinedValue::clone() const {
    return std::make_shared<DmUndefinedValue>(*this);
}

} // namespace Kesto
