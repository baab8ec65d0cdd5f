#include <KestoDM/platform/Any.h>

#include <utility>

namespace Kesto {

Any::Any(Any const& other) {
    if (other.m_type != nullptr) {
        other.m_type->getUntypedTypeRep().copyConstruct(m_storage, other.m_storage);
        m_type = other.m_type;
    }
}

Any::Any(Any&& other) noexcept {
    takeFrom(other);
}

void Any::takeFrom(Any& other) noexcept {
    if (other.m_type != nullptr) {
        Internal::UntypedTypeRep const& rep = other.m_type->getUntypedTypeRep();
        rep.moveConstruct(m_storage, other.m_storage);
        rep.destroy(other.m_storage);
        m_type = other.m_type;
        other.m_type = nullptr;
    }
}

Any& Any::operator=(Any const& other) {
    if (this != &other) {
        Any copy(other);
        *this = std::move(copy);
    }
    return *this;
}

Any& Any::operator=(Any&& other) noexcept {
    if (this != &other) {
        reset();
        takeFrom(other);
    }
    return *this;
}

void Any::reset() noexcept {
    if (m_type != nullptr) {
        m_type->getUntypedTypeRep().destroy(m_storage);
        m_type = nullptr;
    }
}

bool Any::assignCopy(Internal::RuntimeTypeInfo const* type, void const* value) {
    if (type == nullptr || value == nullptr || !fits(type->getUntypedTypeRep())) {
        return false;
    }
    type->getUntypedTypeRep().copyConstruct(m_storage, value);
    m_type = type;
    return true;
}

} // namespace Kesto
