#include <KestoDM/graph/DmCompound.h>

#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmNameUtils.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaMessageTypes.h>
#include <KestoDM/types/DmBaseValue.h>

#include "graph/DmCompoundVisitorImport.h"
#include "graph/DmMemberPath.h"

#include <algorithm>

namespace Kesto {

namespace {

char const* reasonText(DmCompound::ConnectionFailureType failure) noexcept {
    switch (failure) {
    case DmCompound::kConnectionRedundant:
        return "(redundant connection)";
    case DmCompound::kConnectionTargetTaken:
        return "(target already connected)";
    case DmCompound::kConnectionNodesNotInCompound:
        return "(source or target nodes are not in compound)";
    case DmCompound::kConnectionSourcePortMissing:
        return "(source port not found on node)";
    case DmCompound::kConnectionTargetPortMissing:
        return "(target port not found on node)";
    case DmCompound::kConnectionSingleNode:
        return "(single node connections can only be between internal ports)";
    case DmCompound::kConnectionSourceNotOutput:
        return "(source is not an output)";
    case DmCompound::kConnectionTargetNotInput:
        return "(target is not an input)";
    case DmCompound::kConnectionSameDirection:
        return "(source and target are both inputs or outputs)";
    default:
        return "";
    }
}

// The path of a port as connections name it: "node.port", ".port" on the self
// node, with the names of entries and members behind their port's.
std::string connectionPath(DmPort const& port) {
    if (port.getParent() != nullptr) {
        return connectionPath(*port.getParent()) + "." + port.getName();
    }
    DmNode const* const node = port.getNode();
    std::string path = node != nullptr && !node->isSelfNode() ? node->getName() : std::string();
    return path + "." + port.getName();
}

// True when `port` is `ancestor` or lies below it (an entry, a member).
bool isWithin(DmPort const* port, DmPort const* ancestor) noexcept {
    for (; port != nullptr; port = port->getParent()) {
        if (port == ancestor) {
            return true;
        }
    }
    return false;
}

std::vector<std::string> reservedList(DmCompound::ReservedNames const* names) {
    std::vector<std::string> list;
    if (names != nullptr) {
        for (String const& name : *names) {
            list.push_back(name.str());
        }
    }
    return list;
}

} // namespace

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmCompound> DmCompound::createCompound(std::string const& name, DmNameResolveFlags flags) {
    return initialized(makeNamed<DmCompound>(name, flags, InternalConstructor()));
}

// The library's log is found when there is something to report: a compound
// may be given its library after it is made.
DmCompound::DmCompound(InternalConstructor, std::string name)
    : DmOverload(std::move(name), true), DmScope(nullptr), m_nodes(std::make_shared<NodeMap>()) {}

DmCompound::~DmCompound() {
    // Connections first, while the ports they join are alive; then the
    // nodes, whose definitions may be nested here.
    for (auto const& connection : m_connections) {
        connection->disconnect();
    }
    m_connections.clear();
    for (auto const& entry : *m_nodes) {
        entry.second->setOwner(nullptr);
    }
    if (m_selfNode) {
        m_selfNode->setOwner(nullptr);
    }
}

void DmCompound::initialize() {
    if (m_selfNode) {
        return;
    }
    initializeFromSelf(std::make_shared<DmSelfNode>(InternalConstructor(), getName(), this));
}

void DmCompound::initializeFromSelf(std::shared_ptr<DmSelfNode> const& selfNode) {
    if (!selfNode) {
        return;
    }
    m_selfNode = selfNode;
    if (DmOverloadSet const* const set = get_owner()) {
        takeSetInterface(*set);
    }
    m_selfNode->initialize(false);
    m_selfNode->setOwner(this);
    registerNode(m_selfNode.get());
}

void DmCompound::takeSetInterface(DmOverloadSet const& set) {
    for (auto const& entry : set.getPortsInterface()) {
        if (!getPortsInterface().hasPort(entry.first)) {
            DmOverload::addPortDescription(entry.second->clone(), kFailOnClash);
        }
    }
}

void DmCompound::joinSet(DmOverloadSet const& set) {
    if (!m_selfNode) {
        return; // initialize will take the interface
    }
    for (auto const& entry : getPortsInterface()) {
        if (!isReservedPortName(entry.first)) {
            return; // the compound's own signature, to be compared with the set's
        }
    }
    takeSetInterface(set);
}

std::shared_ptr<DmCompound> DmCompound::clone() const {
    return createCompound(getName(), kNameVerbatim);
}

// ---------------------------------------------------------------------------
// Identity

bool DmCompound::isValid() const {
    return DmNamedEntity::isValid();
}

bool DmCompound::setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags) {
    if (!DmOverload::setName(name, type, flags)) {
        return false;
    }
    return !m_selfNode || m_selfNode->setName(getName(), kAsOverload, kNameVerbatim);
}

DmStatus DmCompound::setScope(DmScope* scope, DmNameResolutionType type) {
    return DmOverload::setScope(scope, type);
}

std::shared_ptr<DmMessageLogger> DmCompound::getLogger() const {
    DmLibrary const* const library = getLibrary();
    return library != nullptr ? library->getErrorLogger() : nullptr;
}

void DmCompound::setURI(std::shared_ptr<DmURI> const& uri) {
    DmOverload::setURI(uri);
    for (auto const& scope : getNestedScopes()) {
        if (auto* const nested = dynamic_cast<DmCompound*>(scope.get())) {
            nested->setURI(uri);
        }
    }
}

bool DmCompound::isPromoter() const {
    return m_isPromoter;
}

bool DmCompound::setPromoter(bool promoter) {
    m_isPromoter = promoter;
    return true;
}

// ---------------------------------------------------------------------------
// Ports

bool DmCompound::isReservedPortName(std::string const&) const {
    return false;
}

void DmCompound::getUniquePortName(std::string& name) const {
    DmNameUtils::NewNameContext context;
    context.forceRename = isReservedPortName(name);
    if (!context.forceRename && !getPortsInterface().hasPort(name)) {
        return;
    }
    DmNameUtils::getNewName(getPortsInterface().begin(), getPortsInterface().end(), name, &context);
}

bool DmCompound::linkFeedbackPorts(std::string const& first, std::string const& second) {
    auto const firstPort = getPortsInterface()[first];
    auto const secondPort = getPortsInterface()[second];
    return firstPort && secondPort && firstPort->link(*secondPort, kIterationFeedback);
}

std::shared_ptr<DmBaseValue> DmCompound::findUnconnectedPortValue(std::string const& name) const {
    if (auto value = DmOverload::findUnconnectedPortValue(name)) {
        return value;
    }
    auto const port = m_selfNode ? (*m_selfNode)[name] : nullptr;
    return port ? port->getDefaultValue() : nullptr;
}

// ---------------------------------------------------------------------------
// Self node and nodes

std::shared_ptr<DmNode> DmCompound::getSelfNode() const {
    return m_selfNode;
}

std::shared_ptr<DmNode> DmCompound::findNode(std::string const& name) const {
    auto const found = m_nodes->find(name);
    return found == m_nodes->end() ? nullptr : found->second;
}

bool DmCompound::wouldContainItself(DmNodeDef const* def) const {
    if (def == nullptr) {
        return false;
    }
    // A node of this compound, of its set, or of a compound that holds this
    // one would make the graph contain itself, and keep itself alive.
    for (DmScope const* scope = this; scope != nullptr; scope = scope->getParentScope()) {
        auto const* const compound = dynamic_cast<DmCompound const*>(scope);
        if (compound == nullptr) {
            break;
        }
        if (def == compound || (compound->get_owner() != nullptr && def == compound->get_owner())) {
            return true;
        }
    }
    return false;
}

bool DmCompound::isPortOfItsNode(DmPort const& port) {
    DmPort const* top = &port;
    for (; top->getParent() != nullptr; top = top->getParent()) {
        auto const& siblings = top->getParent()->getMembers();
        auto const found = siblings.find(top->getName());
        if (found == siblings.end() || found->second.get() != top) {
            return false;
        }
    }
    DmNode const* const node = top->getNode();
    return node != nullptr && (*node)[top->getName()].get() == top;
}

bool DmCompound::holdsNode(DmNode const* node) const {
    if (node == nullptr) {
        return false;
    }
    if (node == m_selfNode.get()) {
        return true;
    }
    auto const found = m_nodes->find(node->getName());
    return found != m_nodes->end() && found->second.get() == node;
}

DmStatus DmCompound::addNode(std::shared_ptr<DmNode> const& node, DmNameResolutionType type) {
    if (!node || node->getOwner() != nullptr || node->isSelfNode()) {
        return DmStatus::kInvalidArgument;
    }
    if (holdsNode(node.get()) || wouldContainItself(node->getNodeDef())) {
        return DmStatus::kInvalidArgument;
    }
    if (type == kFailOnClash || type == kMakeUnique) {
        std::string name = node->getName();
        getUniqueNodeName(name, std::string());
        if (name != node->getName()) {
            if (type == kFailOnClash || !node->setName(name, kAsOverload, kNameVerbatim)) {
                return DmStatus::kInvalidArgument;
            }
        }
    }
    // A node that no map holds must not claim this compound as owner.
    if (!m_nodes->insert(node->getName(), node).second) {
        return DmStatus::kInvalidArgument;
    }
    node->setOwner(this);
    // A graph read from a file depends on the files of its nodes' definitions.
    std::shared_ptr<DmURI> const& uri = getURI();
    DmNodeDef const* const def = node->getNodeDef();
    if (uri && def != nullptr) {
        auto const depend = [&uri](std::shared_ptr<DmURI> const& dependency) {
            if (dependency && dependency != uri && !uri->hasDependency(dependency)) {
                uri->addDependency(dependency);
            }
        };
        if (auto const* const set = dynamic_cast<DmOverloadSet const*>(def)) {
            for (auto const& overload : set->getOverloads()) {
                depend(overload->getURI());
            }
        } else {
            depend(def->getURI());
        }
    }
    return DmStatus::kSuccess;
}

DmStatus DmCompound::removeNode(std::shared_ptr<DmNode> const& node) {
    if (!node || node->isSelfNode() || !holdsNode(node.get())) {
        return DmStatus::kInvalidArgument;
    }
    breakAllConnections(node);
    node->setOwner(nullptr);
    m_nodes->erase(node->getName());
    return DmStatus::kSuccess;
}

DmStatus DmCompound::setReservedNodeNames(std::shared_ptr<ReservedNames> names) {
    if (names) {
        for (auto const& entry : *m_nodes) {
            if (names->contains(String(entry.first))) {
                return DmStatus::kInvalidArgument;
            }
        }
    }
    m_reservedNodeNames = std::move(names);
    return DmStatus::kSuccess;
}

bool DmCompound::isReservedNodeName(std::string const& name) const {
    return m_reservedNodeNames && m_reservedNodeNames->contains(String(name));
}

void DmCompound::getUniqueNodeName(std::string& name, std::string const& exception) const {
    // A free name stays as it is: no need to gather every name to see that.
    if ((name == exception || !m_nodes->contains(name)) && !isReservedNodeName(name)) {
        return;
    }
    std::vector<std::string> const reserved = reservedList(m_reservedNodeNames.get());
    DmNameUtils::NewNameContext context;
    context.reservedNames = &reserved;
    context.exception = exception;
    DmNameUtils::getNewName(m_nodes->begin(), m_nodes->end(), name, &context);
}

bool DmCompound::renameNode(std::string const& oldName, std::string const& newName) {
    auto const found = m_nodes->find(oldName);
    return found != m_nodes->end() && (oldName == newName || m_nodes->rekey(found, newName));
}

// ---------------------------------------------------------------------------
// Connections

DmNode::ConnectionSet const& DmCompound::getBindingConnections() const {
    static DmNode::ConnectionSet const* const none = new DmNode::ConnectionSet();
    return m_selfNode ? m_selfNode->getConnections() : *none;
}

void DmCompound::reportConnectionFailure(ConnectionFailureType failure, DmNamedEntity const* entity,
                                         std::string const& sourceName, std::string const& targetName,
                                         bool connection) const {
    std::shared_ptr<DmMessageLogger> const logger = getLogger();
    if (!logger) {
        return;
    }
    // The triple n of the disconnection words is what hosts have always read.
    std::string const word = connection ? "connection" : "disconnnection";
    std::string const title = connection ? "Connection" : "Disconnnection";
    std::string const text = "One or more parameters are invalid in the " + word + " involving '" +
                             sourceName + "' and '" + targetName + "' " + reasonText(failure) + ".";
    auto const category = failure == kConnectionRedundant || failure == kConnectionTargetTaken
                              ? BaMessageTypes::kMessageError
                              : BaMessageTypes::kMessageWarning;
    std::shared_ptr<DmNamedEntity const> const subject =
        entity != nullptr ? entity->weak_from_this().lock() : nullptr;
    logger->reportMessage(std::make_shared<DmMessageReport>(subject, category, title + " failed.", text));
}

DmStatus DmCompound::makeConnection(std::shared_ptr<DmPort> const& source,
                                    std::shared_ptr<DmPort> const& target, bool replace,
                                    std::shared_ptr<DmConnection>& out, ConnectionFailureType& failure) {
    failure = kConnectionOk;
    // Multi-in and fan-in ports are connected through their entries.
    if (!source || !target || target->isFanIn() || target->getPortDescription()->isMultiIn()) {
        return DmStatus::kInvalidArgument;
    }
    // Nodes elsewhere would be left pointing at a connection this compound owns.
    if (!holdsNode(source->getNode()) || !holdsNode(target->getNode())) {
        failure = kConnectionNodesNotInCompound;
        reportConnectionFailure(failure, this, connectionPath(*source), connectionPath(*target), true);
        return DmStatus::kInvalidArgument;
    }
    return connectHeldPorts(source, target, replace, out, failure);
}

DmStatus DmCompound::connectHeldPorts(std::shared_ptr<DmPort> const& source,
                                      std::shared_ptr<DmPort> const& target, bool replace,
                                      std::shared_ptr<DmConnection>& out, ConnectionFailureType& failure) {
    failure = kConnectionOk;
    if (target->isFanIn() || target->getPortDescription()->isMultiIn()) {
        return DmStatus::kInvalidArgument;
    }
    DmNode* const sourceNode = source->getNode();
    DmNode* const targetNode = target->getNode();
    // The paths are only made for a message.
    auto const refuse = [&](ConnectionFailureType type, DmNamedEntity const* entity) {
        failure = type;
        reportConnectionFailure(type, entity, connectionPath(*source), connectionPath(*target), true);
        return DmStatus::kInvalidArgument;
    };
    // A port its node has let go of (a removed port or entry) is no longer on it.
    if (!isPortOfItsNode(*source)) {
        return refuse(kConnectionSourcePortMissing, sourceNode);
    }
    if (!isPortOfItsNode(*target)) {
        return refuse(kConnectionTargetPortMissing, targetNode);
    }
    // Only the self node may join its own ports: a value passed through.
    if (sourceNode == targetNode && !sourceNode->isSelfNode()) {
        return refuse(kConnectionSingleNode, sourceNode);
    }
    if (!source->isOutput()) {
        return refuse(kConnectionSourceNotOutput, sourceNode);
    }
    if (!target->isInput()) {
        return refuse(kConnectionTargetNotInput, targetNode);
    }
    DmStatus status = DmStatus::kSuccess;
    std::vector<std::shared_ptr<DmPort>> feeding;
    if (targetNode->connectedTo(*target, feeding)) {
        if (feeding.front() == source) {
            return refuse(kConnectionRedundant, targetNode);
        }
        if (!replace) {
            return refuse(kConnectionTargetTaken, targetNode);
        }
        if (breakAllConnections(target).isFailure()) {
            return DmStatus::kConnectionError;
        }
        status = DmStatus::kSuccessReplaced;
    }
    out = DmConnection::createConnection(source.get(), target.get());
    m_connections.push_back(out);
    return status;
}

DmStatus DmCompound::makeConnection(std::shared_ptr<DmPort> const& source,
                                    std::shared_ptr<DmPort> const& target,
                                    std::shared_ptr<DmConnection>& out) {
    ConnectionFailureType failure = kConnectionOk;
    return makeConnection(source, target, false, out, failure);
}

DmStatus DmCompound::makeConnection(std::string const& sourcePath, std::string const& targetPath,
                                    bool replace, std::shared_ptr<DmConnection>& out,
                                    ConnectionFailureType& failure) {
    failure = kConnectionOk;
    if (sourcePath.empty() || targetPath.empty()) {
        return DmStatus::kInvalidArgument;
    }
    auto const split = [this](std::string const& path, std::string& portName) -> std::shared_ptr<DmNode> {
        std::string::size_type const dot = path.find('.');
        portName = dot == std::string::npos ? std::string() : path.substr(dot + 1);
        if (dot == 0) {
            return m_selfNode;
        }
        return findNode(path.substr(0, dot));
    };
    std::string sourcePortName;
    std::string targetPortName;
    auto const sourceNode = split(sourcePath, sourcePortName);
    auto const targetNode = split(targetPath, targetPortName);
    auto const refuse = [&](ConnectionFailureType type, DmNamedEntity const* entity) {
        failure = type;
        reportConnectionFailure(type, entity, sourcePath, targetPath, true);
        return DmStatus::kInvalidArgument;
    };
    if (!sourceNode || !targetNode) {
        return refuse(kConnectionNodesNotInCompound, this);
    }
    // A port path goes on to the entries of multi-in and fan-in ports, and to
    // struct members, after further points ("g.extras.e1"), as files write them.
    std::shared_ptr<DmPort> source;
    if (!findMemberByPath(&sourceNode->getPorts(), sourcePortName, source)) {
        return refuse(kConnectionSourcePortMissing, sourceNode.get());
    }
    std::shared_ptr<DmPort> target;
    if (!findMemberByPath(&targetNode->getPorts(), targetPortName, target)) {
        return refuse(kConnectionTargetPortMissing, targetNode.get());
    }
    // Both nodes were found here.
    return connectHeldPorts(source, target, replace, out, failure);
}

DmStatus DmCompound::makeConnection(std::string const& sourcePath, std::string const& targetPath,
                                    std::shared_ptr<DmConnection>& out) {
    ConnectionFailureType failure = kConnectionOk;
    return makeConnection(sourcePath, targetPath, false, out, failure);
}

template <class Predicate>
bool DmCompound::eraseConnections(Predicate const& doomed) {
    auto const first = std::stable_partition(
        m_connections.begin(), m_connections.end(),
        [&doomed](std::shared_ptr<DmConnection> const& connection) { return !doomed(*connection); });
    if (first == m_connections.end()) {
        return false;
    }
    // Disconnect before dropping: a caller's reference may keep a connection
    // alive, but no node or port may know it any more.
    for (auto it = first; it != m_connections.end(); ++it) {
        (*it)->disconnect();
    }
    m_connections.erase(first, m_connections.end());
    return true;
}

DmStatus DmCompound::breakConnection(std::shared_ptr<DmPort> const& source,
                                     std::shared_ptr<DmPort> const& target) {
    if (!source || !target) {
        return DmStatus::kInvalidArgument;
    }
    if (source->getPortDescription()->getDirection() == target->getPortDescription()->getDirection()) {
        reportConnectionFailure(kConnectionSameDirection, source.get(), connectionPath(*source),
                                connectionPath(*target), false);
        return DmStatus::kConnectionError;
    }
    bool const removed = eraseConnections([&source, &target](DmConnection const& connection) {
        return connection.getSourcePort() == source.get() && connection.getTargetPort() == target.get();
    });
    return removed ? DmStatus::kSuccess : DmStatus::kFailure;
}

DmStatus DmCompound::breakAllConnections(std::shared_ptr<DmNode> const& node) {
    if (!node) {
        return DmStatus::kInvalidArgument;
    }
    if (m_connections.empty()) {
        return DmStatus::kFailure;
    }
    DmNode const* const doomedNode = node.get();
    bool const removed = eraseConnections([doomedNode](DmConnection const& connection) {
        return connection.getSourcePort()->getNode() == doomedNode ||
               connection.getTargetPort()->getNode() == doomedNode;
    });
    return removed ? DmStatus::kSuccess : DmStatus::kFailure;
}

DmStatus DmCompound::breakAllConnections(std::shared_ptr<DmPort> const& port) {
    if (!port) {
        return DmStatus::kInvalidArgument;
    }
    if (m_connections.empty()) {
        return DmStatus::kFailure;
    }
    DmPort const* const doomedPort = port.get();
    bool const output = port->isOutput();
    bool const input = port->isInput();
    // Entries and members go with their port, so connections to them go too.
    bool const removed = eraseConnections([doomedPort, output, input](DmConnection const& connection) {
        return (output && isWithin(connection.getSourcePort(), doomedPort)) ||
               (input && isWithin(connection.getTargetPort(), doomedPort));
    });
    return removed ? DmStatus::kSuccess : DmStatus::kFailure;
}

DmStatus DmCompound::breakAllConnections() {
    return eraseConnections([](DmConnection const&) { return true; }) ? DmStatus::kSuccess
                                                                      : DmStatus::kFailure;
}

// ---------------------------------------------------------------------------
// Import

DmStatus DmCompound::import(std::shared_ptr<DmScope> const& scope, DmNameResolutionType type,
                            std::string const& name, std::shared_ptr<DmNodeDef>& out,
                            ImportErrorFlags flags) {
    if (!scope) {
        return DmStatus::kFailure;
    }
    std::string target = name;
    if (type != kAsOverload && scope->hasNodeDef(target)) {
        if (type == kFailOnClash) {
            return DmStatus::kInvalidArgument;
        }
        scope->getUniqueNodeDefName(target);
    }
    DmCompoundVisitorImport visitor(std::static_pointer_cast<DmCompound const>(shared_from_this()), target,
                                    scope, flags);
    visitor.visit();
    if (visitor.checkStatus()) {
        out = visitor.getImportedCompound();
    }
    return visitor.getStatus();
}

// ---------------------------------------------------------------------------
// Self node

DmCompound::DmSelfNode::DmSelfNode(DmCompound::InternalConstructor, std::string name, DmCompound* compound)
    : DmNode(DmNode::InternalConstructor(), std::move(name), static_cast<DmNodeDef*>(compound)) {}

DmCompound::DmSelfNode::~DmSelfNode() = default;

bool DmCompound::DmSelfNode::isSelfNode() const {
    return true;
}

void DmCompound::DmSelfNode::initialize(bool) {
    DmNode::initialize(true);
}

bool DmCompound::DmSelfNode::addPort(std::shared_ptr<DmPortDescription> const& port, bool) {
    return DmNode::addPort(port, true);
}

bool DmCompound::DmSelfNode::replacePort(std::shared_ptr<DmPortDescription> const& port, bool) {
    return DmNode::replacePort(port, true);
}

} // namespace Kesto
