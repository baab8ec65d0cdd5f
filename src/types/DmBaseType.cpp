#include <KestoDM/types/DmBaseType.h>

#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmStructType.h>

#include "types/DmTypePlacement.h"

#include <algorithm>
#include <cstring>

namespace Kesto {

namespace {

bool isValueKind(DmTypeKind kind) noexcept {
    return (kind >= kTypeBool && kind <= kTypeString) || kind == kTypeAuto;
}

bool isIdentityKind(DmTypeKind kind) noexcept {
    return kind == kTypeClass || kind == kTypeUndefined || kind == kTypeUnknown;
}

bool isStructKind(DmTypeKind kind) noexcept {
    return kind == kTypeStruct || kind == kTypeUnknownStruct;
}

bool structsEquivalent(DmStructType const& a, DmStructType const& b) {
    if (a.size() != b.size()) {
        return false;
    }
    auto left = a.begin();
    auto right = b.begin();
    for (; left != a.end(); ++left, ++right) {
        if (left->first != right->first ||
            !DmBaseType::equivalent(left->second->getType(), right->second->getType())) {
            return false;
        }
    }
    return true;
}

bool enumsEquivalent(DmEnumType const& a, DmEnumType const& b) {
    if (a.size() != b.size()) {
        return false;
    }
    auto left = a.getEnumerations().begin();
    auto right = b.getEnumerations().begin();
    for (; left != a.getEnumerations().end(); ++left, ++right) {
        if (!(left->first == right->first) || left->second != right->second) {
            return false;
        }
    }
    return true;
}

// Byte-wise over the shorter length, then the shorter name first.
bool nameLess(std::string const& a, std::string const& b) {
    std::size_t const common = std::min(a.size(), b.size());
    int const order = common == 0 ? 0 : std::memcmp(a.data(), b.data(), common);
    if (order != 0) {
        return order < 0;
    }
    return a.size() < b.size();
}

bool structLess(DmStructType const& a, DmStructType const& b) {
    if (a.size() != b.size()) {
        return a.size() < b.size();
    }
    auto left = a.begin();
    auto right = b.begin();
    for (; left != a.end(); ++left, ++right) {
        if (left->first != right->first) {
            return nameLess(left->first, right->first);
        }
        auto const& leftType = left->second->getType();
        auto const& rightType = right->second->getType();
        if (!DmBaseType::equivalent(leftType, rightType)) {
            return DmBaseType::lessThan(leftType, rightType);
        }
    }
    return false;
}

bool enumLess(DmEnumType const& a, DmEnumType const& b) {
    if (a.size() != b.size()) {
        return a.size() < b.size();
    }
    auto left = a.getEnumerations().begin();
    auto right = b.getEnumerations().begin();
    for (; left != a.getEnumerations().end(); ++left, ++right) {
        if (!(left->first == right->first)) {
            return left->first < right->first;
        }
    }
    // Equal keys order each enum before the other; the quirk is relied upon.
    return true;
}

} // namespace

DmBaseType::DmBaseType(std::string name, DmTypeKind kind)
    : DmNamedEntity(std::move(name), true), m_typeKind(kind) {}

DmBaseType::~DmBaseType() = default;

std::string DmBaseType::getMapEntryKey() const {
    std::string key;
    resolveFullName(key);
    return key;
}

void DmBaseType::resolveFullName(std::string& out) const {
    Internal::appendTypeScope(*this, out);
    DmNamedEntity::resolveFullName(out);
}

DmStatus DmBaseType::setNamespace(DmNamespace* ns, DmNameResolutionType resolution) {
    if (resolution != kFailOnClash) {
        return DmStatus::kInvalidArgument;
    }
    if (isConst() && m_namespace != nullptr) {
        return DmStatus::kConstEntity;
    }
    return Internal::placeType(*this, m_namespace, ns);
}

bool DmBaseType::isNative() const {
    return false;
}

bool DmBaseType::isPOD() const {
    return false;
}

bool DmBaseType::isFullyResolved() const {
    return true;
}

bool DmBaseType::equivalent(DmBaseType const& a, DmBaseType const& b) {
    DmBaseType const* left = &a;
    DmBaseType const* right = &b;
    // Arrays are walked down by this loop rather than by recursion.
    while (left != right) {
        DmTypeKind const kind = left->m_typeKind;
        if (kind != right->m_typeKind) {
            return false;
        }
        if (isValueKind(kind)) {
            return true;
        }
        if (isIdentityKind(kind)) {
            return false;
        }
        if (kind == kTypeArray) {
            left = static_cast<DmArrayType const*>(left)->getElementType().get();
            right = static_cast<DmArrayType const*>(right)->getElementType().get();
            if (left == nullptr || right == nullptr) {
                return left == right;
            }
            continue;
        }
        if (isStructKind(kind)) {
            return structsEquivalent(static_cast<DmStructType const&>(*left),
                                     static_cast<DmStructType const&>(*right));
        }
        if (kind == kTypeEnum) {
            return enumsEquivalent(static_cast<DmEnumType const&>(*left),
                                   static_cast<DmEnumType const&>(*right));
        }
        return false;
    }
    return true;
}

bool DmBaseType::equivalent(std::shared_ptr<DmBaseType const> const& a,
                            std::shared_ptr<DmBaseType const> const& b) {
    if (!a || !b) {
        return a == b;
    }
    return equivalent(*a, *b);
}

bool DmBaseType::lessThan(DmBaseType const& a, DmBaseType const& b) {
    DmTypeKind const kind = a.m_typeKind;
    if (kind != b.m_typeKind) {
        return kind < b.m_typeKind;
    }
    if (isValueKind(kind)) {
        return false;
    }
    if (isIdentityKind(kind)) {
        return std::less<DmBaseType const*>()(&a, &b);
    }
    if (kind == kTypeArray) {
        return lessThan(static_cast<DmArrayType const&>(a).getElementType(),
                        static_cast<DmArrayType const&>(b).getElementType());
    }
    if (isStructKind(kind)) {
        return structLess(static_cast<DmStructType const&>(a), static_cast<DmStructType const&>(b));
    }
    if (kind == kTypeEnum) {
        return enumLess(static_cast<DmEnumType const&>(a), static_cast<DmEnumType const&>(b));
    }
    return false;
}

bool DmBaseType::lessThan(std::shared_ptr<DmBaseType const> const& a,
                          std::shared_ptr<DmBaseType const> const& b) {
    if (!a || !b) {
        // A missing type sorts first.
        return !a && b;
    }
    return lessThan(*a, *b);
}

std::shared_ptr<DmBaseValue> DmBaseType::createDefaultValue() const {
    return createValue();
}

} // namespace Kesto
