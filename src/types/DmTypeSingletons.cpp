#include "types/DmTypeSingletons.h"

#include "types/DmExternTypeFactory.h"

namespace Kesto {
namespace Internal {

namespace {

template <class T>
std::shared_ptr<T> madeConst(std::shared_ptr<T> type) {
    type->makeConst();
    return type;
}

template <class T, class... Args>
std::shared_ptr<T> makeConstType(Args&&... args) {
    return madeConst(std::make_shared<T>(std::forward<Args>(args)...));
}

} // namespace

std::shared_ptr<DmAutoType> const& TypeSingletons::autoType() {
    static std::shared_ptr<DmAutoType> const s_type = makeConstType<DmAutoType>();
    return s_type;
}

std::shared_ptr<DmBoolType> const& TypeSingletons::boolType() {
    static std::shared_ptr<DmBoolType> const s_type = makeConstType<DmBoolType>();
    return s_type;
}

std::shared_ptr<DmCharType> const& TypeSingletons::charType() {
    static std::shared_ptr<DmCharType> const s_type = makeConstType<DmCharType>();
    return s_type;
}

std::shared_ptr<DmUCharType> const& TypeSingletons::ucharType() {
    static std::shared_ptr<DmUCharType> const s_type = makeConstType<DmUCharType>();
    return s_type;
}

std::shared_ptr<DmShortType> const& TypeSingletons::shortType() {
    static std::shared_ptr<DmShortType> const s_type = makeConstType<DmShortType>();
    return s_type;
}

std::shared_ptr<DmUShortType> const& TypeSingletons::ushortType() {
    static std::shared_ptr<DmUShortType> const s_type = makeConstType<DmUShortType>();
    return s_type;
}

std::shared_ptr<DmIntType> const& TypeSingletons::intType() {
    static std::shared_ptr<DmIntType> const s_type = makeConstType<DmIntType>();
    return s_type;
}

std::shared_ptr<DmUIntType> const& TypeSingletons::uintType() {
    static std::shared_ptr<DmUIntType> const s_type = makeConstType<DmUIntType>();
    return s_type;
}

std::shared_ptr<DmLongType> const& TypeSingletons::longType() {
    static std::shared_ptr<DmLongType> const s_type = makeConstType<DmLongType>();
    return s_type;
}

std::shared_ptr<DmULongType> const& TypeSingletons::ulongType() {
    static std::shared_ptr<DmULongType> const s_type = makeConstType<DmULongType>();
    return s_type;
}

std::shared_ptr<DmFloatType> const& TypeSingletons::floatType() {
    static std::shared_ptr<DmFloatType> const s_type = makeConstType<DmFloatType>();
    return s_type;
}

std::shared_ptr<DmDoubleType> const& TypeSingletons::doubleType() {
    static std::shared_ptr<DmDoubleType> const s_type = makeConstType<DmDoubleType>();
    return s_type;
}

std::shared_ptr<DmAnyType> const& TypeSingletons::anyType() {
    static std::shared_ptr<DmAnyType> const s_type = makeConstType<DmAnyType>();
    return s_type;
}

std::shared_ptr<DmArrayType> const& TypeSingletons::arrayOfAnyType() {
    static std::shared_ptr<DmArrayType> const s_type = makeConstType<DmArrayType>(anyType());
    return s_type;
}

std::shared_ptr<DmStringType> const& TypeSingletons::stringType() {
    static std::shared_ptr<DmStringType> const s_type = makeConstType<DmStringType>();
    return s_type;
}

std::shared_ptr<DmUndefinedType> const& TypeSingletons::undefinedType() {
    static std::shared_ptr<DmUndefinedType> const s_type = makeConstType<DmUndefinedType>("__undefined__");
    return s_type;
}

std::shared_ptr<DmClassType> const& TypeSingletons::runtimeServicesType() {
    static std::shared_ptr<DmClassType> const s_type =
        madeConst(ExternTypeFactory::make<DmClassType>("__RuntimeServices__"));
    return s_type;
}

std::shared_ptr<DmClassType> const& TypeSingletons::typeRegistryType() {
    static std::shared_ptr<DmClassType> const s_type =
        madeConst(ExternTypeFactory::make<DmClassType>("__TypeRegistry__"));
    return s_type;
}

} // namespace Internal
} // namespace Kesto
