#include <KestoDM/graph/DmPortDescription.h>

#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include "graph/DmMemberPath.h"
#include "types/DmTypeSingletons.h"

#include <utility>

namespace Kesto {

namespace {

bool isStructKind(DmBaseType const* type) noexcept {
    return type != nullptr &&
           (type->getTypeKind() == kTypeStruct || type->getTypeKind() == kTypeUnknownStruct);
}

bool isKind(DmBaseType const* type, DmTypeKind kind) noexcept {
    return type != nullptr && type->getTypeKind() == kind;
}

DmPortDescription const* topmost(DmPortDescription const* port) noexcept {
    while (port->getParent() != nullptr) {
        port = port->getParent();
    }
    return port;
}

} // namespace

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmPortDescription>
DmPortDescription::newPortDescription(std::string const& name, std::shared_ptr<DmBaseType const> type,
                                      PortDirection direction, DmNameResolveFlags flags) {
    return makeNamed<DmPortDescription>(name, flags, InternalConstructor(), std::move(type), direction);
}

std::shared_ptr<DmPortDescription> DmPortDescription::newPortDescription(DmPortDescription const& source) {
    return std::make_shared<DmPortDescription>(InternalConstructor(), source);
}

std::shared_ptr<DmPortDescription>
DmPortDescription::newPortDescription(DmPortDescription const& source,
                                      std::shared_ptr<DmBaseType const> type) {
    auto copy = newPortDescription(source);
    copy->setType(std::move(type));
    return copy;
}

std::shared_ptr<DmPortDescription> DmPortDescription::newMultiInPortDescription(std::string const& name,
                                                                                DmNameResolveFlags flags) {
    auto port = newPortDescription(name, Internal::TypeSingletons::autoType(), kDirectionInput, flags);
    if (port) {
        port->m_portKind = kPortMultiIn;
    }
    return port;
}

std::shared_ptr<DmPortDescription> DmPortDescription::clone() const {
    return newPortDescription(*this);
}

DmPortDescription::DmPortDescription(InternalConstructor, std::string name,
                                     std::shared_ptr<DmBaseType const> type, PortDirection direction)
    : DmNamedEntity(std::move(name), type != nullptr && direction != kDirectionUnset),
      m_type(std::move(type)), m_direction(direction) {}

DmPortDescription::DmPortDescription(InternalConstructor, DmPortDescription const& source)
    : DmNamedEntity(source), m_type(source.m_type), m_direction(source.m_direction), m_flags(source.m_flags),
      m_cppPassingConvention(source.m_cppPassingConvention),
      m_iterationAttribute(source.m_iterationAttribute), m_portKind(source.m_portKind),
      m_defaultValueOverride(source.m_defaultValueOverride) {}

DmPortDescription::~DmPortDescription() {
    // A partner that outlives this port must not keep pointing at it.
    if (m_linkedPort != nullptr && m_linkedPort->m_linkedPort == this) {
        m_linkedPort->m_linkedPort = nullptr;
    }
}

// ---------------------------------------------------------------------------
// Queries

DmNodeDef* DmPortDescription::getNodeDef() const noexcept {
    return topmost(this)->m_nodeDef;
}

bool DmPortDescription::isUnknown() const {
    return false;
}

void DmPortDescription::resolveFullName(std::string& out) const {
    if (m_parent == nullptr) {
        DmNamedEntity::resolveFullName(out);
        return;
    }
    m_parent->resolveFullName(out);
    out += '.';
    out += getName();
}

bool DmPortDescription::operator==(DmPortDescription const& other) const {
    DmPortDescription const* left = this;
    DmPortDescription const* right = &other;
    for (;;) {
        if (!(static_cast<DmNamedEntity const&>(*left) == static_cast<DmNamedEntity const&>(*right)) ||
            left->m_direction != right->m_direction ||
            left->m_iterationAttribute != right->m_iterationAttribute) {
            return false;
        }
        left = left->m_linkedPort;
        right = right->m_linkedPort;
        if (left == nullptr || right == nullptr) {
            return left == right;
        }
        // Links are mutual: coming back to where the walk began means every
        // pair on the way matched.
        if (left == this && right == &other) {
            return true;
        }
    }
}

// ---------------------------------------------------------------------------
// Members

DmPortDescription::MemberMap& DmPortDescription::members() {
    if (!m_members) {
        m_members = std::make_shared<MemberMap>();
    }
    return *m_members;
}

void DmPortDescription::initializeMembers() {
    if (m_members || !isStructKind(m_type.get())) {
        return;
    }
    auto const& structType = static_cast<DmStructType const&>(*m_type);
    MemberMap& map = members();
    for (auto const& entry : structType) {
        auto member = std::make_shared<DmPortDescription>(InternalConstructor(), entry.first,
                                                          entry.second->getType(), m_direction);
        member->m_parent = this;
        member->initializeMembers();
        map.insert(entry.first, std::move(member));
    }
    if (m_cppPassingConvention != kPassInvalid) {
        CppPassingConvention const convention = m_cppPassingConvention;
        bool const flagged = hasCppPassingConvention();
        forEachMember([convention, flagged](DmPortDescription& member) {
            member.m_cppPassingConvention = convention;
            if (flagged) {
                member.m_flags |= kHasCppPassingConvention;
            }
        });
    }
    if (m_iterationAttribute != kIterationNone) {
        IterationAttribute const attribute = m_iterationAttribute;
        forEachMember([attribute](DmPortDescription& member) { member.m_iterationAttribute = attribute; });
    }
}

DmPortDescription::MemberMap const& DmPortDescription::getMembers() {
    initializeMembers();
    return members();
}

bool DmPortDescription::getMember(std::string const& path, std::shared_ptr<DmPortDescription>& out) {
    initializeMembers();
    return findMemberByPath(m_members.get(), path, out);
}

template <class Setter>
void DmPortDescription::forEachMember(Setter const& setter) {
    if (!m_members || !isStructKind(m_type.get())) {
        return;
    }
    for (auto const& entry : *m_members) {
        setter(*entry.second);
        entry.second->forEachMember(setter);
    }
}

// ---------------------------------------------------------------------------
// Edits

bool DmPortDescription::setType(std::shared_ptr<DmBaseType const> type) {
    bool const same = m_type && type && DmBaseType::equivalent(*m_type, *type);
    if (!same) {
        if (isStructMember()) {
            return false;
        }
        if (DmNodeDef const* const def = getNodeDef()) {
            if (def->isValueNodeDef() || (def->isTerminal() && isKind(type.get(), kTypeAuto))) {
                return false;
            }
        }
    }
    m_type = std::move(type);
    m_members.reset();
    if (m_iterationAttribute == kIterationState && !isKind(m_type.get(), kTypeArray)) {
        m_iterationAttribute = kIterationNone;
    }
    return true;
}

bool DmPortDescription::setDirection(PortDirection direction) {
    if (isStructMember()) {
        return false;
    }
    m_direction = direction;
    forEachMember([direction](DmPortDescription& member) { member.m_direction = direction; });
    return true;
}

bool DmPortDescription::setIterationAttribute(IterationAttribute attribute) {
    if (isStructMember()) {
        return false;
    }
    m_iterationAttribute = attribute;
    forEachMember([attribute](DmPortDescription& member) { member.m_iterationAttribute = attribute; });
    return true;
}

bool DmPortDescription::setCppPassingConvention(CppPassingConvention convention) {
    if (isStructMember()) {
        return false;
    }
    assignCppPassingConvention(convention);
    forEachMember([convention](DmPortDescription& member) { member.assignCppPassingConvention(convention); });
    return true;
}

void DmPortDescription::assignCppPassingConvention(CppPassingConvention convention) noexcept {
    m_cppPassingConvention = convention;
    m_flags |= kHasCppPassingConvention;
}

DmStatus DmPortDescription::setPortKind(PortKind kind) {
    if (kind == m_portKind) {
        return DmStatus::kSuccess;
    }
    if ((kind == kPortMultiIn || kind == kPortDefaultFanIn) && !isInput()) {
        return DmStatus::kFailure;
    }
    if (kind == kPortDefaultFanIn &&
        (isStructMember() || !(isKind(m_type.get(), kTypeArray) || isKind(m_type.get(), kTypeAuto)))) {
        return DmStatus::kFailure;
    }
    m_portKind = kind;
    // The kind of a port is one fact of the whole overload set; only the
    // type may differ from overload to overload.
    auto const* const overload = dynamic_cast<DmOverload const*>(getNodeDef());
    if (overload != nullptr && overload->get_owner() != nullptr) {
        DmOverloadSet const& set = *overload->get_owner();
        for (auto const& other : set.getOverloads()) {
            if (other.get() != overload) {
                if (auto const sibling = other->getPortsInterface()[getName()]) {
                    sibling->m_portKind = kind;
                }
            }
        }
        if (auto const merged = set.getPortsInterface()[getName()]) {
            merged->m_portKind = kind;
        }
    }
    return DmStatus::kSuccess;
}

DmStatus DmPortDescription::setAssociative(bool associative) {
    DmNodeDef const* const def = getNodeDef();
    if (def != nullptr && def->associativity() == DmNodeDef::kNotAssociative) {
        return DmStatus::kFailure;
    }
    m_portKind = associative ? kPortAssociative : kPortPlain;
    return DmStatus::kSuccess;
}

bool DmPortDescription::setDefaultValueOverride(std::shared_ptr<DmBaseValue> const& value) {
    if (!value) {
        return false;
    }
    bool const sameType = m_type && value->getType() && DmBaseType::equivalent(*m_type, *value->getType());
    if (!sameType) {
        // Overrides may hold a value of another type, except where the type
        // is fixed: members and the ports of value node definitions.
        DmNodeDef const* const def = getNodeDef();
        if (isStructMember() || (def != nullptr && def->isValueNodeDef())) {
            return false;
        }
    }
    m_defaultValueOverride = value;
    return true;
}

bool DmPortDescription::setName(std::string const& name, DmNameResolutionType type,
                                DmNameResolveFlags flags) {
    std::string resolved;
    if (!resolveName(name, resolved, flags)) {
        return false;
    }
    if (resolved == getName()) {
        return !isConst();
    }
    if (isInUpdate()) {
        // Called back by the definition while it renames the entry.
        return DmNamedEntity::setName(resolved, type, kNameVerbatim);
    }
    DmNodeDef* const def = topmost(this)->m_nodeDef;
    if (def == nullptr || isStructMember()) {
        return DmNamedEntity::setName(resolved, type, kNameVerbatim);
    }
    std::string const oldName = getName();
    {
        UpdateHelper const guard(*this);
        def->getUniquePortName(resolved);
        if (!def->renamePortDescription(oldName, resolved)) {
            return false;
        }
    }
    return DmNamedEntity::setName(resolved, type, kNameVerbatim);
}

void DmPortDescription::setCompleteness(bool complete) {
    if (complete) {
        m_members.reset();
    }
    DmEntity::setCompleteness(complete);
}

bool DmPortDescription::link(DmPortDescription& other, IterationAttribute attribute) {
    if (isStructMember() || other.isStructMember()) {
        return false;
    }
    if (m_direction != kDirectionUnset && m_direction == other.m_direction) {
        return false;
    }
    if (isLinked() || other.isLinked()) {
        return false;
    }
    if (!setIterationAttribute(attribute) || !other.setIterationAttribute(attribute)) {
        return false;
    }
    m_linkedPort = &other;
    other.m_linkedPort = this;
    return true;
}

bool DmPortDescription::unlink() {
    if (isStructMember() || m_linkedPort == nullptr) {
        return false;
    }
    DmPortDescription& other = *m_linkedPort;
    other.m_linkedPort = nullptr;
    m_linkedPort = nullptr;
    setIterationAttribute(kIterationNone);
    other.setIterationAttribute(kIterationNone);
    return true;
}

} // namespace Kesto
