#include <KestoDM/graph/DmNodeDef.h>

#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmNameUtils.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>

#include <mutex>
#include <vector>

namespace Kesto {

namespace {

// Value node definitions are shared by every library of the process, whose
// nodes may live on different threads: their node sets take this lock.
std::mutex& sharedDefinitionMutex() {
    static std::mutex mutex;
    return mutex;
}

} // namespace

DmNodeDef::DmNodeDef(std::string name, bool complete) : DmNamedEntity(std::move(name), complete) {
    m_instantiatedNodes.reserve(8);
    m_instantiatedNodes.max_load_factor(1.0f);
}

DmNodeDef::~DmNodeDef() {
    // Nodes hold their definition, so only nodes that do not (self nodes) can
    // be left; they forget this definition rather than keep a dangling pointer.
    std::vector<DmNode*> const nodes(m_instantiatedNodes.begin(), m_instantiatedNodes.end());
    for (DmNode* node : nodes) {
        node->resetNodeDef();
    }
    // Descriptions are shared: one held elsewhere must not name this definition.
    for (auto const& entry : m_ports) {
        if (entry.second->getNodeDef() == this) {
            entry.second->setNodeDef(nullptr);
        }
    }
}

NodeDefUpdateHelper::~NodeDefUpdateHelper() = default;

// ---------------------------------------------------------------------------
// Identity

bool DmNodeDef::isPrivate() const {
    // Compounds are the only scopes that are definitions too.
    return dynamic_cast<DmNodeDef const*>(m_scope) != nullptr;
}

void DmNodeDef::setURI(std::shared_ptr<DmURI> const& uri) {
    m_uri = uri;
}

bool DmNodeDef::isImported() const {
    return m_importedURI != nullptr;
}

void DmNodeDef::resolveFullName(std::string& out) const {
    if (m_scope != nullptr) {
        std::string path;
        DmNameUtils::computeFullScopeName(*m_scope, path);
        if (!path.empty()) {
            out += path;
            out.append(DmScope::kSeparator, DmScope::kSeparatorLength);
        }
    }
    out += getName();
}

// ---------------------------------------------------------------------------
// Nature

bool DmNodeDef::isBuiltIn() const {
    return false;
}

DmNodeDef::Associativity DmNodeDef::associativity() const {
    return m_associativity;
}

bool DmNodeDef::setAssociativity(Associativity associativity) {
    if (isConst()) {
        return false;
    }
    m_associativity = associativity;
    return true;
}

bool DmNodeDef::isConverter() const {
    return m_converter || isValueNodeDef();
}

void DmNodeDef::setConverter(bool converter) {
    m_converter = converter;
}

bool DmNodeDef::isPromoter() const {
    return false;
}

bool DmNodeDef::setPromoter(bool) {
    return false;
}

bool DmNodeDef::isValueNodeDef() const {
    return false;
}

bool DmNodeDef::isOverloadsLocked() const {
    return m_overloadsLocked;
}

DmStatus DmNodeDef::setOverloadsLocked(bool locked) {
    if (!locked && hasAutoInputPort()) {
        return DmStatus::kFailure;
    }
    m_overloadsLocked = locked;
    return DmStatus::kSuccess;
}

bool DmNodeDef::isTerminal() const {
    return false;
}

bool DmNodeDef::isUnknown() const {
    return false;
}

bool DmNodeDef::hasAutoInputPort() const {
    for (auto const& entry : m_ports) {
        DmPortDescription const& port = *entry.second;
        if (port.isInput() && port.getType() && port.getType()->getTypeKind() == kTypeAuto) {
            return true;
        }
    }
    return false;
}

// ---------------------------------------------------------------------------
// Placement

DmStatus DmNodeDef::setScope(DmScope* scope, DmNameResolutionType type) {
    if (isConst()) {
        return DmStatus::kConstEntity;
    }
    if (scope == m_scope) {
        return DmStatus::kSuccess;
    }
    if (isBuiltIn() && m_scope != nullptr) {
        return DmStatus::kFailure;
    }
    auto const self = std::static_pointer_cast<DmNodeDef>(weak_from_this().lock());
    if (!self) {
        return DmStatus::kFailure;
    }
    bool clash = false;
    if (scope != nullptr) {
        std::shared_ptr<DmNodeDef> found;
        if (scope->findNodeDef(getName(), found) && found) {
            // A set left without overloads (a placeholder's, kept for its
            // nodes) does not count as a clash.
            auto const set = std::dynamic_pointer_cast<DmOverloadSet>(found);
            clash = !set || !set->empty();
            if (clash && type == kFailOnClash) {
                return DmStatus::kInvalidArgument;
            }
            if (clash && type == kAsOverload && (isTerminal() || found->isTerminal())) {
                return DmStatus::kFailure;
            }
        }
    }
    if (m_scope != nullptr) {
        m_scope->unregisterNodeDef(self);
        // Out of the old scope, a rename must not touch its entries.
        m_scope = nullptr;
    }
    if (clash && type == kMakeUnique) {
        std::string name = getName();
        scope->getUniqueNodeDefName(name);
        if (!setName(name, kAsOverload, kNameVerbatim)) {
            return DmStatus::kFailure;
        }
    }
    m_scope = scope;
    if (scope == nullptr) {
        return DmStatus::kSuccess;
    }
    return scope->registerNodeDef(self);
}

bool DmNodeDef::storeName(std::string const& name, DmNameResolveFlags flags) {
    return DmNamedEntity::setName(name, kAsOverload, flags);
}

bool DmNodeDef::rekeyScopeEntry(std::string const& oldName, std::string const& newName) {
    return m_scope != nullptr && m_scope->rekeyNodeDef(oldName, newName);
}

DmNodeDef::RenameStart DmNodeDef::beginRename(std::string const& name, DmNameResolveFlags flags,
                                              std::string& resolved) {
    if (isConst() || !resolveName(name, resolved, flags)) {
        return RenameStart::kRefused;
    }
    if (isInUpdate()) {
        return storeName(resolved, kNameVerbatim) ? RenameStart::kStored : RenameStart::kRefused;
    }
    return RenameStart::kGoOn;
}

bool DmNodeDef::setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags) {
    std::string resolved;
    RenameStart const start = isValueNodeDef() ? RenameStart::kRefused : beginRename(name, flags, resolved);
    if (start != RenameStart::kGoOn) {
        return start == RenameStart::kStored;
    }
    if ((type == kFailOnClash || type == kMakeUnique) && m_scope != nullptr) {
        std::string unique = resolved;
        m_scope->getUniqueNodeDefName(unique, getName());
        if (unique != resolved) {
            if (type == kFailOnClash) {
                return false;
            }
            resolved = std::move(unique);
        }
    }
    std::string const oldName = getName();
    NodeDefUpdateHelper const guard(*this);
    auto* const overload = dynamic_cast<DmOverload*>(this);
    if (overload != nullptr && overload->get_owner() != nullptr) {
        // The set renames itself, its scope entry and its overloads.
        DmOverloadSet* const set = overload->get_owner();
        set->setName(resolved, kAsOverload, kNameVerbatim);
        // The set may have made the name unique: the overload carries the set's.
        resolved = set->getName();
    } else {
        rekeyScopeEntry(oldName, resolved);
    }
    return storeName(resolved, kNameVerbatim);
}

// ---------------------------------------------------------------------------
// Ports

bool DmNodeDef::addPortDescription(std::shared_ptr<DmPortDescription> const& port,
                                   DmNameResolutionType type) {
    if (isConst() || !port) {
        return false;
    }
    if (isValueNodeDef() && m_ports.size() >= 2) {
        return false;
    }
    if (isTerminal()) {
        bool const autoTyped = port->getType() && port->getType()->getTypeKind() == kTypeAuto;
        if (!port->isInput() || (autoTyped && !port->isUnknown())) {
            return false;
        }
    }
    if (port->getNodeDef() != nullptr) {
        return false;
    }
    if (type == kFailOnClash || type == kMakeUnique) {
        std::string name = port->getName();
        getUniquePortName(name);
        if (name != port->getName()) {
            if (type == kFailOnClash || !port->setName(name, kAsOverload, kNameVerbatim)) {
                return false;
            }
        }
    }
    port->setNodeDef(this);
    if (!addPortAndPropagate(port)) {
        port->setNodeDef(nullptr);
        return false;
    }
    return true;
}

bool DmNodeDef::addPortAndPropagate(std::shared_ptr<DmPortDescription> const& port) {
    if (!m_ports.addPortDescription(port)) {
        return false;
    }
    // A definition read from a file depends on the files of its port types.
    if (m_uri && port->getType() && port->getType()->getURI()) {
        m_uri->addDependency(port->getType()->getURI());
    }
    for (DmNode* node : m_instantiatedNodes) {
        node->addPort(port, false);
    }
    return true;
}

bool DmNodeDef::removePortDescription(std::shared_ptr<DmPortDescription> const& port) {
    if (isConst() || isValueNodeDef() || !port || m_ports[port->getName()] != port) {
        return false;
    }
    bool const removed = removePortAndPropagate(port);
    port->setNodeDef(nullptr);
    return removed;
}

bool DmNodeDef::removePortAndPropagate(std::shared_ptr<DmPortDescription> const& port) {
    std::string const name = port->getName();
    if (!m_ports.removePortDescription(port)) {
        return false;
    }
    for (DmNode* node : m_instantiatedNodes) {
        node->removePort(name);
    }
    return true;
}

bool DmNodeDef::replaceExistingPort(std::shared_ptr<DmPortDescription> const& port) {
    if (isConst() || isValueNodeDef() || !port || port->getNodeDef() != nullptr) {
        return false;
    }
    auto const old = m_ports[port->getName()];
    if (!old) {
        return false;
    }
    port->setNodeDef(this);
    if (!replacePortAndPropagate(port)) {
        port->setNodeDef(nullptr);
        return false;
    }
    old->setNodeDef(nullptr);
    return true;
}

bool DmNodeDef::replacePortAndPropagate(std::shared_ptr<DmPortDescription> const& port) {
    if (!m_ports.replaceExistingPort(port)) {
        return false;
    }
    for (DmNode* node : m_instantiatedNodes) {
        node->replacePort(port, false);
    }
    return true;
}

DmStatus DmNodeDef::reorderPortDescription(std::size_t position, std::string const& name) {
    if (isConst()) {
        return DmStatus::kConstEntity;
    }
    DmStatus const status = m_ports.reorderPortDescription(position, name);
    if (status.isSuccess()) {
        for (DmNode* node : m_instantiatedNodes) {
            node->reorderPort(position, name);
        }
    }
    return status;
}

bool DmNodeDef::renamePortDescription(std::string const& oldName, std::string const& newName) {
    if (isConst() || isValueNodeDef()) {
        return false;
    }
    // A rename started at the port comes back here through the interface:
    // the outer call tells the nodes, once.
    if (isInUpdate()) {
        return true;
    }
    NodeDefUpdateHelper const guard(*this);
    return renamePortAndPropagate(oldName, newName);
}

bool DmNodeDef::renamePortAndPropagate(std::string const& oldName, std::string const& newName) {
    if (!m_ports.renamePortDescription(oldName, newName)) {
        return false;
    }
    for (DmNode* node : m_instantiatedNodes) {
        node->renamePort(oldName, newName);
    }
    return true;
}

DmNodeDef::AllowedTypes DmNodeDef::getAllowedTypesForPort(std::string const& name) const {
    AllowedTypes types;
    auto const port = m_ports[name];
    if (port && port->getType()) {
        std::string typeName;
        port->getType()->resolveFullName(typeName);
        types.insert(std::move(typeName), port->getType());
    }
    return types;
}

std::shared_ptr<DmBaseValue> DmNodeDef::findUnconnectedPortValue(std::string const& name) const {
    auto const port = m_ports[name];
    return port ? port->getDefaultValueOverride() : nullptr;
}

void DmNodeDef::getUniquePortName(std::string& name) const {
    if (!m_ports.hasPort(name)) {
        return;
    }
    DmNameUtils::getNewName(m_ports.begin(), m_ports.end(), name, nullptr);
}

// ---------------------------------------------------------------------------
// Nodes

void DmNodeDef::registerNode(DmNode* node) {
    if (node == nullptr) {
        return;
    }
    if (isValueNodeDef()) {
        std::lock_guard<std::mutex> const lock(sharedDefinitionMutex());
        m_instantiatedNodes.insert(node);
        return;
    }
    m_instantiatedNodes.insert(node);
}

void DmNodeDef::unregisterNode(DmNode* node) {
    if (isValueNodeDef()) {
        std::lock_guard<std::mutex> const lock(sharedDefinitionMutex());
        m_instantiatedNodes.erase(node);
        return;
    }
    m_instantiatedNodes.erase(node);
}

bool DmNodeDef::hasNoReference() const {
    return !isValueNodeDef() && m_instantiatedNodes.empty();
}

} // namespace Kesto
