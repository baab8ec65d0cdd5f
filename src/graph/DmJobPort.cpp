#include <KestoDM/graph/DmJobPort.h>

#include <KestoDM/types/DmBaseType.h>

namespace Kesto {

std::shared_ptr<DmJobPort> DmJobPort::createJobPort(std::string const& name,
                                                    std::shared_ptr<DmBaseType const> type) {
    return std::make_shared<DmJobPort>(InternalConstructor(), name, std::move(type));
}

std::shared_ptr<DmJobPort> DmJobPort::createJobPort(std::string const& name,
                                                    std::shared_ptr<DmBaseType const> type, bool complete) {
    return std::make_shared<DmJobPort>(InternalConstructor(), name, std::move(type), complete);
}

DmJobPort::DmJobPort(InternalConstructor, std::string name, std::shared_ptr<DmBaseType const> type)
    : DmNamedEntity(std::move(name), true), m_type(std::move(type)) {}

DmJobPort::DmJobPort(InternalConstructor, std::string name, std::shared_ptr<DmBaseType const> type,
                     bool complete)
    : DmNamedEntity(std::move(name), complete), m_type(std::move(type)) {}

DmJobPort::~DmJobPort() = default;

bool DmJobPort::isValid() const {
    return DmNamedEntity::isValid() && m_type && m_type->isValid();
}

// ---------------------------------------------------------------------------
// Sorting

bool DmJobPortSorter::operator()(DmJobPort const& a, DmJobPort const& b) const {
    int const names = a.getName().compare(b.getName());
    if (names != 0) {
        return names < 0;
    }
    // Two enums with the same keys are each "less" than the other; taken as
    // they are, they would break the ordering (a port less than itself).
    // Counting them as equal keeps it strict and weak.
    return DmBaseType::lessThan(a.getType(), b.getType()) && !DmBaseType::lessThan(b.getType(), a.getType());
}

bool DmJobPortSorter::operator()(std::shared_ptr<DmJobPort const> const& a,
                                 std::shared_ptr<DmJobPort const> const& b) const {
    return lessOrMissing(a.get(), b.get());
}

bool DmJobPortSorter::operator()(std::shared_ptr<DmJobPort> const& a,
                                 std::shared_ptr<DmJobPort> const& b) const {
    return lessOrMissing(a.get(), b.get());
}

bool DmJobPortSorter::lessOrMissing(DmJobPort const* a, DmJobPort const* b) const {
    if (a == nullptr || b == nullptr) {
        return a == nullptr && b != nullptr;
    }
    return (*this)(*a, *b);
}

} // namespace Kesto
