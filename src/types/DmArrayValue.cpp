#include <KestoDM/types/DmArrayValue.h>

#include <KestoDM/platform/RuntimeAny.h>
#include <KestoDM/platform/UntypedArray.h>
#include <KestoDM/types/DmArrayType.h>

namespace Kesto {

DmArrayValue::DmArrayValue(std::shared_ptr<DmArrayType const> const& type) : DmExternBaseValue(type) {}

DmArrayValue::DmArrayValue(std::shared_ptr<DmArrayType const> const& type,
                           std::shared_ptr<unsigned char const> buffer)
    : DmExternBaseValue(type, std::move(buffer)) {}

DmArrayValue::DmArrayValue(DmArrayValue const& other)
    : DmExternBaseValue(other), DmInstanceCounter<DmArrayValue>(other) {}

DmArrayValue::~DmArrayValue() = default;

DmArrayType const& DmArrayValue::getArrayType() const {
    return static_cast<DmArrayType const&>(*getType());
}

Internal::UntypedArray* DmArrayValue::getArray() const {
    Ptr<void> const& data = getData();
    return static_cast<Internal::UntypedArray*>(data.get());
}

unsigned long long DmArrayValue::size() const {
    Internal::UntypedArray const* const array = getArray();
    return array != nullptr ? array->size() : 0;
}

std::shared_ptr<DmBaseType const> const& DmArrayValue::getElementType() const {
    return getArrayType().getElementType();
}

std::shared_ptr<DmBaseValue> DmArrayValue::at(unsigned long long index) const {
    return at(getElementType(), index);
}

std::shared_ptr<DmBaseValue> DmArrayValue::at(std::shared_ptr<DmBaseType const> const& elementType,
                                              unsigned long long index) const {
    Internal::UntypedArray* const array = getArray();
    if (array == nullptr || !elementType || index >= array->size()) {
        return nullptr;
    }
    // The element value shares ownership of the array: it keeps the array
    // alive and writes straight into its slot.
    std::shared_ptr<void> const owner(nullptr, [keep = getData()](void*) {});
    auto const* slot = static_cast<unsigned char const*>(array->get_element(static_cast<std::size_t>(index)));
    return elementType->createMemberValue(std::shared_ptr<unsigned char const>(owner, slot));
}

bool DmArrayValue::assignArray(unsigned long long size) {
    std::shared_ptr<DmBaseType const> const& elementType = getElementType();
    if (!elementType) {
        return false;
    }
    Ptr<void> storage =
        Internal::UntypedArray::create(elementType->getUntypedTypeRep(), static_cast<std::size_t>(size));
    auto* const array = static_cast<Internal::UntypedArray*>(storage.get());
    if (array == nullptr) {
        return false;
    }
    if (size != 0) {
        // Every element starts as the element type's default. One default value
        // copied into each (already constructed) slot does, except for arrays
        // of arrays, where each slot needs an inner array of its own.
        bool const defaultPerSlot = elementType->getTypeKind() == kTypeArray;
        std::shared_ptr<DmBaseValue> element;
        for (std::size_t i = 0; i < array->size(); ++i) {
            if (!element || defaultPerSlot) {
                element = elementType->createDefaultValue();
            }
            if (!element || !element->copyAssignIntoBuffer(array->get_element(i))) {
                return false;
            }
        }
    }
    return setData(std::move(storage));
}

std::shared_ptr<DmBaseValue> DmArrayValue::clone() const {
    return std::make_shared<DmArrayValue>(*this);
}

Any DmArrayValue::toAny() const {
    Internal::RuntimeTypeInfo const* const info = getType()->getRuntimeTypeInfo();
    if (info == nullptr) {
        return Any();
    }
    if (isImplicit()) {
        return Internal::RuntimeAny::create(getArrayType().allocateArray(0), info);
    }
    return Internal::RuntimeAny::create(getData(), info);
}

} // namespace Kesto
