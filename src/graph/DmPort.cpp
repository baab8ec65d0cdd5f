#include <KestoDM/graph/DmPort.h>

#include <KestoDM/foundation/DmNameUtils.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmWatchPoint.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmStructValue.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include "graph/DmMemberPath.h"
#include "types/DmTypeSingletons.h"

namespace Kesto {

namespace {

bool isStructKind(std::shared_ptr<DmBaseType const> const& type) noexcept {
    return type && (type->getTypeKind() == kTypeStruct || type->getTypeKind() == kTypeUnknownStruct);
}

DmPort::MemberMap const& emptyMembers() {
    static DmPort::MemberMap const* const empty = new DmPort::MemberMap();
    return *empty;
}

std::shared_ptr<DmPort> sharedFrom(DmPort const* port) {
    return std::static_pointer_cast<DmPort>(std::const_pointer_cast<DmNamedEntity>(port->shared_from_this()));
}

} // namespace

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmPort> DmPort::newPort(std::shared_ptr<DmPortDescription> const& description, DmNode* node,
                                        DmPort* parent) {
    if (!description) {
        return nullptr;
    }
    auto port = std::make_shared<DmPort>(InternalConstructor(), description, node, parent);
    port->initialize();
    return port;
}

DmPort::DmPort(InternalConstructor, std::shared_ptr<DmPortDescription> description, DmNode* node,
               DmPort* parent)
    : DmNamedEntity(description->getName(), true), m_fanIn(description->isDefaultFanIn()),
      m_description(std::move(description)), m_node(node) {
    if (parent != nullptr) {
        extras().parent = parent;
    }
}

DmPort::~DmPort() = default;

// ---------------------------------------------------------------------------
// Identity

std::string const& DmPort::getName() const {
    return m_description->getName();
}

void DmPort::resolveFullName(std::string& out) const {
    if (DmPort const* const parent = getParent()) {
        parent->resolveFullName(out);
        out += '.';
    } else if (m_node != nullptr) {
        m_node->resolveFullName(out);
        out += '.';
    }
    out += getName();
}

bool DmPort::setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags) {
    std::string resolved;
    if (!resolveName(name, resolved, flags)) {
        return false;
    }
    std::string const oldName = getName();
    if (resolved == oldName) {
        return true;
    }
    if (DmPort* const parent = getParent()) {
        // A struct member is named by its struct type, and its description
        // is shared by every node: it keeps its name.
        if (!parent->isMultiIn() && !parent->isFanIn()) {
            return false;
        }
        // An entry: unique among its siblings, re-keyed in place.
        MemberMap& siblings = parent->members();
        if (siblings.contains(resolved) ||
            !m_description->DmNamedEntity::setName(resolved, type, kNameVerbatim)) {
            return false;
        }
        auto const entry = siblings.find(oldName);
        if (entry != siblings.end()) {
            siblings.rekey(entry, resolved);
        }
        return true;
    }
    DmNodeDef* const def = m_node != nullptr ? m_node->getNodeDef() : nullptr;
    if (def != nullptr && def->getPortsInterface()[oldName] == m_description) {
        // The definition's own description: the definition renames it and
        // tells every node, this one included.
        return m_description->setName(resolved, type, kNameVerbatim);
    }
    if (m_node != nullptr && (*m_node)[resolved]) {
        return false;
    }
    if (!m_description->DmNamedEntity::setName(resolved, type, kNameVerbatim)) {
        return false;
    }
    if (m_node != nullptr) {
        m_node->rekeyPort(oldName, resolved);
    }
    return true;
}

bool DmPort::setPortDescription(std::shared_ptr<DmPortDescription> const& description) {
    if (!description || description->getName() != getName()) {
        return false;
    }
    m_description = description;
    rebindMembers();
    return true;
}

void DmPort::rebindMembers() {
    if (!memberMap() || isMultiIn() || m_fanIn) {
        return;
    }
    for (auto const& entry : *memberMap()) {
        std::shared_ptr<DmPortDescription> member;
        if (m_description->getMember(entry.first, member)) {
            entry.second->m_description = member;
            entry.second->rebindMembers();
        }
    }
}

void DmPort::breakMemberConnections() {
    DmCompound* const owner = ownerCompound();
    if (owner == nullptr || !memberMap()) {
        return;
    }
    for (auto const& entry : *memberMap()) {
        owner->breakAllConnections(entry.second);
    }
}

void DmPort::forgetNode() noexcept {
    m_node = nullptr;
    if (memberMap() != nullptr) {
        for (auto const& entry : *memberMap()) {
            entry.second->forgetNode();
        }
    }
}

bool DmPort::isInput() const {
    return m_description->isInput();
}

bool DmPort::isOutput() const {
    return m_description->isOutput();
}

bool DmPort::isMultiIn() const {
    return m_description->getPortKind() == kPortMultiIn;
}

// ---------------------------------------------------------------------------
// Values

void DmPort::initialize() {
    auto const& type = m_description->getType();
    if (!type) {
        initializeFrom(nullptr);
        return;
    }
    // A struct's member ports share the storage of its value, and a class's
    // default object may come from a shared library: those are made now.
    // Every other default is made when it is first read.
    if (!isStructKind(type) && type->getTypeKind() != kTypeClass) {
        initializeFrom(nullptr);
        m_defaultPending = true;
        return;
    }
    initializeFrom(type->createDefaultValue());
}

void DmPort::makeDefaultValue() const {
    m_defaultPending = false;
    if (auto const& type = m_description->getType()) {
        m_defaultValue = type->createDefaultValue();
    }
}

void DmPort::initializeFrom(std::shared_ptr<DmBaseValue> const& value) {
    m_defaultPending = false;
    m_defaultValue = value;
    // Entries of a multi-in or fan-in port stay; struct members are rebuilt
    // from the type, and the old ones take their connections with them.
    bool const holdsEntries = isMultiIn() || m_fanIn;
    if (!holdsEntries && hasMembers()) {
        breakMemberConnections();
        m_extras->members.clear();
    }
    if (holdsEntries || !isStructKind(m_description->getType())) {
        return;
    }
    // One member port per struct member, whose value is the member of the
    // struct value: the two share their storage.
    auto const* const structValue = dynamic_cast<DmStructValue const*>(value.get());
    MemberMap& memberPorts = members();
    for (auto const& entry : m_description->getMembers()) {
        auto member = std::make_shared<DmPort>(InternalConstructor(), entry.second, m_node, this);
        std::shared_ptr<DmBaseValue> memberValue;
        if (structValue != nullptr) {
            structValue->getMember(entry.first, memberValue);
        }
        member->initializeFrom(memberValue);
        memberPorts.insert(entry.first, std::move(member));
    }
}

bool DmPort::hasImmediateValue() const {
    // A default still to be made is the type's implicit one.
    return !m_defaultPending && m_defaultValue && !m_defaultValue->isImplicit();
}

bool DmPort::setDefaultValue(std::shared_ptr<DmBaseValue> const& value) {
    if (!value) {
        return false;
    }
    if (!DmBaseType::equivalent(value->getType(), m_description->getType())) {
        DmNodeDef const* const def = m_node != nullptr ? m_node->getNodeDef() : nullptr;
        if (isMember() || (def != nullptr && def->isValueNodeDef())) {
            return false;
        }
        if (!m_description->setType(value->getType())) {
            return false;
        }
        initialize();
    }
    DmPort const* const parent = getParent();
    if (parent != nullptr && !parent->isMultiIn() && !parent->isFanIn()) {
        if (auto const parentValue = std::dynamic_pointer_cast<DmStructValue>(parent->getDefaultValue())) {
            parentValue->setMember(getName(), value);
        }
    }
    updatePortValue(value);
    return true;
}

void DmPort::updatePortValue(std::shared_ptr<DmBaseValue> const& value) {
    m_defaultPending = false;
    m_defaultValue = value;
    if (!memberMap() || !isStructKind(m_description->getType())) {
        return;
    }
    auto const* const structValue = dynamic_cast<DmStructValue const*>(value.get());
    if (structValue == nullptr) {
        return;
    }
    for (auto const& entry : *memberMap()) {
        std::shared_ptr<DmBaseValue> memberValue;
        if (structValue->getMember(entry.first, memberValue)) {
            entry.second->updatePortValue(memberValue);
        }
    }
}

std::shared_ptr<DmBaseValue> DmPort::findUnconnectedPortValue() const {
    auto const& type = m_description->getType();
    bool const isAuto = type && type->getTypeKind() == kTypeAuto;
    if (!isAuto && m_description->getDefaultValueOverride()) {
        return m_description->getDefaultValueOverride();
    }
    if (m_node == nullptr) {
        return nullptr;
    }
    DmPort const* const parent = getParent();
    if (parent != nullptr && (parent->isMultiIn() || parent->isFanIn())) {
        return m_node->findUnconnectedPortValue(parent->getName());
    }
    return m_node->findUnconnectedPortValue(getName());
}

std::shared_ptr<DmBaseValue> DmPort::getDefaultValueOverride() const {
    // Only a set of one overload has a single override to give.
    auto const* const set =
        m_node != nullptr ? dynamic_cast<DmOverloadSet const*>(m_node->getNodeDef()) : nullptr;
    if (set == nullptr || set->size() != 1) {
        return nullptr;
    }
    auto const port = set->getOverloads().front()->getPortsInterface()[getName()];
    return port ? port->getDefaultValueOverride() : nullptr;
}

// ---------------------------------------------------------------------------
// Members and entries

DmPort::Extras& DmPort::extras() {
    if (!m_extras) {
        m_extras = std::make_unique<Extras>();
    }
    return *m_extras;
}

DmPort::MemberMap& DmPort::members() {
    return extras().members;
}

DmPort::MemberMap const& DmPort::getMembers() const {
    return m_extras ? m_extras->members : emptyMembers();
}

bool DmPort::addMember(std::shared_ptr<DmPort> const& port) {
    return port && members().insert(port->getName(), port).second;
}

bool DmPort::getMember(std::string const& path, std::shared_ptr<DmPort>& out) const {
    return findMemberByPath(memberMap(), path, out);
}

DmStatus DmPort::addMultiInPortEntry(std::string const& name, std::shared_ptr<DmPort>& out,
                                     DmNameResolveFlags flags) {
    if (!isMultiIn() && !m_fanIn) {
        return DmStatus::kFailure;
    }
    std::string resolved;
    if (!resolveName(name, resolved, flags)) {
        return DmStatus::kInvalidArgument;
    }
    MemberMap& entries = members();
    DmNameUtils::getNewName(entries.begin(), entries.end(), resolved, nullptr);
    // A fan-in entry takes any element; a multi-in entry takes the port's type.
    auto const type = m_fanIn
                          ? std::static_pointer_cast<DmBaseType const>(Internal::TypeSingletons::autoType())
                          : m_description->getType();
    auto const description =
        DmPortDescription::newPortDescription(resolved, type, kDirectionInput, kNameVerbatim);
    auto const entry = newPort(description, m_node, this);
    addMember(entry);
    out = entry;
    return DmStatus::kSuccess;
}

DmStatus DmPort::removeMultiInPortEntry(std::shared_ptr<DmPort> const& entry) {
    if (!hasMembers() || (!isMultiIn() && !m_fanIn) || !entry) {
        return DmStatus::kFailure;
    }
    MemberMap& entries = m_extras->members;
    auto const found = entries.find(entry->getName());
    if (found == entries.end() || found->second != entry) {
        return DmStatus::kFailure;
    }
    if (DmCompound* const owner = ownerCompound()) {
        owner->breakAllConnections(entry);
    }
    entries.erase(entry->getName());
    return DmStatus::kSuccess;
}

DmStatus DmPort::setFanIn(bool fanIn) {
    if (fanIn == m_fanIn) {
        return DmStatus::kSuccess;
    }
    DmCompound* const owner = ownerCompound();
    std::shared_ptr<DmPort> const self = std::static_pointer_cast<DmPort>(shared_from_this());
    if (fanIn) {
        if (!isInput() || hasMembers()) {
            return DmStatus::kFailure;
        }
        m_fanIn = true;
        // The one connection feeding the port moves to the first entry.
        if (owner != nullptr && !m_connectedPorts.empty()) {
            std::shared_ptr<DmPort> const source = sharedFrom(*m_connectedPorts.begin());
            std::shared_ptr<DmPort> entry;
            addMultiInPortEntry(kFirstEntryName, entry);
            owner->breakConnection(source, self);
            std::shared_ptr<DmConnection> moved;
            owner->makeConnection(source, entry, moved);
        }
        return DmStatus::kSuccess;
    }
    // Back to a plain input: only the first connection of the entries stays,
    // moved to the port; the others are dropped.
    std::shared_ptr<DmPort> firstSource;
    if (owner != nullptr) {
        std::vector<std::pair<std::shared_ptr<DmPort>, std::shared_ptr<DmPort>>> feeds;
        for (auto const& entry : getMembers()) {
            for (DmPort const* source : entry.second->getConnectedPorts()) {
                feeds.emplace_back(sharedFrom(source), entry.second);
            }
        }
        for (auto const& feed : feeds) {
            if (!firstSource) {
                firstSource = feed.first;
            }
            owner->breakConnection(feed.first, feed.second);
        }
    }
    if (m_extras) {
        m_extras->members.clear();
    }
    m_fanIn = false;
    if (firstSource) {
        std::shared_ptr<DmConnection> moved;
        owner->makeConnection(firstSource, self, moved);
    }
    return DmStatus::kSuccess;
}

DmCompound* DmPort::ownerCompound() const noexcept {
    return m_node != nullptr ? m_node->getOwner() : nullptr;
}

// ---------------------------------------------------------------------------
// Watch point

std::shared_ptr<DmWatchPoint> const& DmPort::setWatchPoint() {
    std::shared_ptr<DmWatchPoint>& watchPoint = extras().watchPoint;
    if (!watchPoint) {
        watchPoint = DmWatchPoint::createNew();
    }
    return watchPoint;
}

std::shared_ptr<DmWatchPoint> const& DmPort::getWatchPoint() const noexcept {
    static std::shared_ptr<DmWatchPoint> const none;
    return m_extras ? m_extras->watchPoint : none;
}

DmStatus DmPort::removeWatchPoint() {
    if (!m_extras || !m_extras->watchPoint) {
        return DmStatus::kFailure;
    }
    m_extras->watchPoint.reset();
    return DmStatus::kSuccess;
}

} // namespace Kesto
