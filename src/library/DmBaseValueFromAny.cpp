// DmBaseValue::fromAny needs the library's types, so it lives with the library.
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>

namespace Kesto {

namespace {

// The library's type whose native form has `info` as run-time record: the
// built-in types first, then the user types, then the reserved ones. An array
// record not met yet is resolved through its element, which makes the array
// type on demand, as a file naming it would.
std::shared_ptr<DmBaseType const> findTypeOf(Internal::RuntimeTypeInfo const* info, DmLibrary& library) {
    for (auto const& entry : library.getConstTypes(true)) {
        if (entry.second->getRuntimeTypeInfo() == info) {
            return entry.second;
        }
    }
    if (info->getKind() == Internal::RuntimeTypeInfo::Kind::kArray && info->getElementType() != nullptr) {
        std::shared_ptr<DmBaseType const> const element = findTypeOf(info->getElementType(), library);
        if (element) {
            return library.getArrayType(element);
        }
    }
    return nullptr;
}

} // namespace

// The order of the checks: an empty Any gives null; then the Any's record must
// belong to a type of the library (null otherwise: a bare Ptr<void>, a struct
// or class nobody declared); then a value of that type takes the datum, set,
// and must accept it (an enum refuses an integer that is no key).
std::shared_ptr<DmBaseValue> DmBaseValue::fromAny(Any const& any, DmLibrary& library) {
    Internal::RuntimeTypeInfo const* const info = any.getTypeInfo();
    if (info == nullptr) {
        return nullptr;
    }
    std::shared_ptr<DmBaseType const> const type = findTypeOf(info, library);
    if (!type) {
        return nullptr;
    }
    std::shared_ptr<DmBaseValue> value = type->createValue();
    if (!value || !value->copyAssignFromBuffer(any.data()) || !value->isValid()) {
        return nullptr;
    }
    return value;
}

} // namespace Kesto
