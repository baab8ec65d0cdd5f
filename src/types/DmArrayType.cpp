#include <KestoDM/types/DmArrayType.h>

#include <KestoDM/types/DmArrayValue.h>

#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/UntypedArray.h>

namespace Kesto {

DmArrayType::DmArrayType(std::shared_ptr<DmBaseType const> elementType)
    : DmExternBaseType(makeName(elementType), kTypeArray), m_elementType(std::move(elementType)) {}

DmArrayType::~DmArrayType() = default;

std::string DmArrayType::makeArrayName(std::string const& elementFullName) {
    if (elementFullName.empty()) {
        return "array";
    }
    return "array<" + elementFullName + ">";
}

std::string DmArrayType::makeName(std::shared_ptr<DmBaseType const> const& elementType) {
    std::string fullName;
    if (elementType) {
        elementType->resolveFullName(fullName);
    }
    return makeArrayName(fullName);
}

void DmArrayType::setElementType(std::shared_ptr<DmBaseType const> elementType) {
    m_elementType = std::move(elementType);
    setName(makeName(m_elementType), kFailOnClash, kNameVerbatim);
}

Internal::UntypedTypeRep DmArrayType::getElementAllocator() const {
    return m_elementType ? m_elementType->getUntypedTypeRep() : Internal::UntypedTypeRep();
}

Ptr<void> DmArrayType::allocateArray(unsigned long long size) const {
    Internal::UntypedTypeRep const element = getElementAllocator();
    if (!element.isValid()) {
        return Ptr<void>();
    }
    return Internal::UntypedArray::create(element, static_cast<std::size_t>(size));
}

bool DmArrayType::isFullyResolved() const {
    return m_elementType && m_elementType->isFullyResolved();
}

Internal::UntypedTypeRep DmArrayType::getUntypedTypeRep() const {
    return Internal::GlobalRttiTable::get().getOrInsertArrayRep(getElementAllocator());
}

Internal::RuntimeTypeInfo const* DmArrayType::getRuntimeTypeInfo() const {
    Internal::RuntimeTypeInfo const* element = m_elementType ? m_elementType->getRuntimeTypeInfo() : nullptr;
    if (element == nullptr) {
        return nullptr;
    }
    return Internal::GlobalRttiTable::get().getOrInsertArray(element);
}

std::shared_ptr<DmBaseValue> DmArrayType::createValue() const {
    return std::make_shared<DmArrayValue>(std::static_pointer_cast<DmArrayType const>(shared_from_this()));
}

std::shared_ptr<DmBaseValue> DmArrayType::createValue(unsigned long long size) const {
    auto value =
        std::make_shared<DmArrayValue>(std::static_pointer_cast<DmArrayType const>(shared_from_this()));
    if (!value->assignArray(size)) {
        return nullptr;
    }
    return value;
}

std::shared_ptr<DmBaseValue> DmArrayType::createValue(Ptr<void> const& array) const {
    return createValue(Ptr<void>(array));
}

std::shared_ptr<DmBaseValue> DmArrayType::createValue(Ptr<void>&& array) const {
    auto value =
        std::make_shared<DmArrayValue>(std::static_pointer_cast<DmArrayType const>(shared_from_this()));
    value->setData(std::move(array));
    return value;
}

std::shared_ptr<DmBaseValue> DmArrayType::createDefaultValue() const {
    return createValue(0ull);
}

std::shared_ptr<DmBaseValue>
DmArrayType::createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const {
    return std::make_shared<DmArrayValue>(std::static_pointer_cast<DmArrayType const>(shared_from_this()),
                                          buffer);
}

} // namespace Kesto
