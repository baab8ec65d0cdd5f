#include <KestoDM/types/DmBaseValue.h>

#include <KestoDM/types/DmBaseType.h>

namespace Kesto {

DmBaseValue::DmBaseValue(std::shared_ptr<DmBaseType const> type) : DmEntity(true), m_type(std::move(type)) {}

DmBaseValue::DmBaseValue(DmBaseValue const& other)
    : DmEntity(other), DmInstanceCounter<DmBaseValue>(other), m_type(other.m_type),
      m_valueWasSet(other.m_valueWasSet) {}

DmBaseValue::~DmBaseValue() = default;

bool DmBaseValue::isImplicit() const {
    return !m_valueWasSet;
}

bool DmBaseValue::isValid() const {
    return m_type != nullptr && m_type->isValid() && DmEntity::isValid();
}

} // namespace Kesto
