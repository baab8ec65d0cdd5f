#include <KestoDM/platform/RuntimeAny.h>

namespace Kesto {
namespace Internal {

namespace {

bool isKind(RuntimeTypeInfo const* info, RuntimeTypeInfo::Kind kind) {
    return info != nullptr && info->getKind() == kind;
}

} // namespace

Any RuntimeAny::create(int value, RuntimeTypeInfo const* enumInfo) {
    if (!isKind(enumInfo, RuntimeTypeInfo::Kind::kEnum)) {
        return Any();
    }
    return createCopy(enumInfo, &value);
}

Any RuntimeAny::create(Ptr<void> const& object, RuntimeTypeInfo const* classOrArrayInfo) {
    if (!isKind(classOrArrayInfo, RuntimeTypeInfo::Kind::kClass) &&
        !isKind(classOrArrayInfo, RuntimeTypeInfo::Kind::kArray)) {
        return Any();
    }
    return createCopy(classOrArrayInfo, &object);
}

Any RuntimeAny::createCopy(RuntimeTypeInfo const* info, void const* value) {
    Any result;
    if (info != nullptr && value != nullptr && info == GlobalRttiTable::get().getBuiltin(BuiltinType::kAny)) {
        // An Any never holds an Any.
        result = *static_cast<Any const*>(value);
    } else {
        result.assignCopy(info, value);
    }
    return result;
}

} // namespace Internal
} // namespace Kesto
