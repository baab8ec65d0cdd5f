#include <KestoDM/graph/DmNode.h>

#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmUnknownPortDescription.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmMetadata.h>

#include "graph/DmReorder.h"

#include <algorithm>

namespace Kesto {

namespace {

PortDirection inverted(PortDirection direction) noexcept {
    switch (direction) {
    case kDirectionInput:
        return kDirectionOutput;
    case kDirectionOutput:
        return kDirectionInput;
    default:
        return direction;
    }
}

std::shared_ptr<DmPort> sharedPort(DmPort const* port) {
    return std::static_pointer_cast<DmPort>(std::const_pointer_cast<DmNamedEntity>(
        std::static_pointer_cast<DmNamedEntity const>(port->weak_from_this().lock())));
}

} // namespace

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmNode> DmNode::createNode(std::string const& name, std::shared_ptr<DmNodeDef> const& def,
                                           bool invertDirections, DmNameResolveFlags flags) {
    auto node = makeNamed<DmNode>(name, flags, InternalConstructor(), def);
    if (!node) {
        return nullptr;
    }
    node->initialize(invertDirections);
    if (def) {
        def->registerNode(node.get());
    }
    return node;
}

DmNode::DmNode(InternalConstructor, std::string name, std::shared_ptr<DmNodeDef> const& def)
    : DmNamedEntity(std::move(name), def != nullptr), m_nodeDef(def.get()), m_nodeDefHold(def) {}

DmNode::DmNode(InternalConstructor, std::string name, DmNodeDef* def)
    : DmNamedEntity(std::move(name), def != nullptr), m_nodeDef(def) {}

DmNode::~DmNode() {
    if (m_nodeDef != nullptr) {
        m_nodeDef->unregisterNode(this);
    }
    // A port held elsewhere outlives its node: it must not point at it.
    for (auto const& entry : m_ports) {
        entry.second->forgetNode();
    }
}

// ---------------------------------------------------------------------------
// Identity

bool DmNode::isValid() const {
    return DmNamedEntity::isValid() && m_nodeDef != nullptr;
}

bool DmNode::isSelfNode() const {
    return false;
}

bool DmNode::setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags) {
    std::string resolved;
    if (!resolveName(name, resolved, flags) || isConst()) {
        return false;
    }
    if (m_owner != nullptr) {
        if (isSelfNode()) {
            if (m_owner->isReservedNodeName(resolved)) {
                return false;
            }
        } else {
            std::string unique = resolved;
            m_owner->getUniqueNodeName(unique, getName());
            if (unique != resolved && type == kFailOnClash) {
                return false;
            }
            resolved = std::move(unique);
            m_owner->renameNode(getName(), resolved);
        }
    }
    return DmNamedEntity::setName(resolved, type, kNameVerbatim);
}

// ---------------------------------------------------------------------------
// Ports

std::shared_ptr<DmPort> DmNode::operator[](std::string const& name) const {
    auto const found = m_ports.find(name);
    return found == m_ports.end() ? nullptr : found->second;
}

std::shared_ptr<DmPort> DmNode::getMultiInPort() const {
    return m_multiInPort != nullptr ? (*this)[m_multiInPort->getName()] : nullptr;
}

DmStatus DmNode::addMultiInPortEntry(std::string const& name, std::shared_ptr<DmPort>& out,
                                     DmNameResolveFlags flags) {
    if (m_nodeDef == nullptr || m_nodeDef->associativity() == DmNodeDef::kNotAssociative || isSelfNode() ||
        m_multiInPort == nullptr) {
        return DmStatus::kFailure;
    }
    return m_multiInPort->addMultiInPortEntry(name, out, flags);
}

DmStatus DmNode::removeMultiInPortEntry(std::shared_ptr<DmPort> const& entry) {
    if (m_nodeDef == nullptr || m_nodeDef->associativity() == DmNodeDef::kNotAssociative || isSelfNode() ||
        m_multiInPort == nullptr) {
        return DmStatus::kFailure;
    }
    return m_multiInPort->removeMultiInPortEntry(entry);
}

std::shared_ptr<DmBaseValue> DmNode::findUnconnectedPortValue(std::string const& name) const {
    if (!isSelfNode() && m_nodeDef != nullptr) {
        return m_nodeDef->findUnconnectedPortValue(name);
    }
    auto const port = (*this)[name];
    if (!port || !port->getPortDescription()->getType()) {
        return nullptr;
    }
    return port->getPortDescription()->getType()->createDefaultValue();
}

void DmNode::initialize(bool invertDirections) {
    if (m_nodeDef == nullptr) {
        return;
    }
    DmPortsInterface const* ports = &m_nodeDef->getPortsInterface();
    // A lone overload without ports of its own shows its set's interface.
    if (ports->empty()) {
        auto const* const overload = dynamic_cast<DmOverload const*>(m_nodeDef);
        if (overload != nullptr && overload->get_owner() != nullptr) {
            ports = &overload->get_owner()->getPortsInterface();
        }
    }
    for (auto const& entry : *ports) {
        addPort(entry.second, invertDirections);
    }
}

std::shared_ptr<DmPortDescription> DmNode::invertedClone(DmPortDescription const& port) const {
    auto clone = port.clone();
    clone->assignDirection(inverted(port.getDirection()));
    clone->setNodeDef(m_nodeDef);
    return clone;
}

bool DmNode::addPort(std::shared_ptr<DmPortDescription> const& port, bool invertDirections) {
    if (!port || m_ports.contains(port->getName())) {
        return false;
    }
    if (port->isInput() && port->isAssociative() && m_nodeDef != nullptr &&
        m_nodeDef->associativity() != DmNodeDef::kNotAssociative && !isSelfNode()) {
        // The associative inputs of the definition collapse into one port
        // whose entries are the inputs of this node.
        if (m_multiInPort != nullptr) {
            return false;
        }
        auto const description =
            port->isUnknown()
                ? DmUnknownPortDescription::newMultiInPortDescription(port->getName(), kNameVerbatim)
                : DmPortDescription::newMultiInPortDescription(port->getName(), kNameVerbatim);
        auto const multiIn = DmPort::newPort(description, this);
        m_multiInPort = multiIn.get();
        m_ports.insert(port->getName(), multiIn);
        return true;
    }
    auto const description = invertDirections ? invertedClone(*port) : port;
    m_ports.insert(port->getName(), DmPort::newPort(description, this));
    return true;
}

bool DmNode::removePort(std::string const& name) {
    auto const found = m_ports.find(name);
    if (found == m_ports.end()) {
        return false;
    }
    std::shared_ptr<DmPort> const port = found->second;
    if (m_owner != nullptr) {
        m_owner->breakAllConnections(port);
    }
    m_ports.erase(port->getName());
    if (port.get() == m_multiInPort) {
        m_multiInPort = nullptr;
    }
    if (isSelfNode()) {
        // The self node's clone is its own: it no longer belongs to the compound.
        port->getPortDescription()->setNodeDef(nullptr);
    }
    return true;
}

bool DmNode::replacePort(std::shared_ptr<DmPortDescription> const& port, bool invertDirections) {
    if (!port) {
        return false;
    }
    auto const found = m_ports.find(port->getName());
    if (found == m_ports.end()) {
        // The second associative input lives on as entries of the multi-in port.
        return m_multiInPort != nullptr && port->isAssociative();
    }
    std::shared_ptr<DmPort> const& current = found->second;
    if (current.get() == m_multiInPort) {
        return true;
    }
    std::shared_ptr<DmPortDescription> description = port;
    if (invertDirections) {
        description = invertedClone(*port);
        if (port->hasMetadata()) {
            port->getMetadata()->clone(description->getMetadata());
        }
        DmPortDescription* const old = current->getPortDescription().get();
        if (DmPortDescription* const partner = old->getLinkedPort()) {
            IterationAttribute const attribute = old->getIterationAttribute();
            old->unlink();
            description->link(*partner, attribute);
        }
    }
    auto const oldType = current->getPortDescription()->getType();
    if (!current->setPortDescription(description)) {
        return false;
    }
    if (!DmBaseType::equivalent(oldType, description->getType())) {
        current->initialize();
    }
    return true;
}

DmStatus DmNode::reorderPort(std::size_t position, std::string const& name) {
    // The node may have fewer ports than its definition (associative inputs).
    return reorderEntry(m_ports, std::min(position, m_ports.size()), name);
}

bool DmNode::renamePort(std::string const& oldName, std::string const& newName) {
    auto const found = m_ports.find(oldName);
    if (found == m_ports.end()) {
        return false;
    }
    std::shared_ptr<DmPort> const port = found->second;
    if (!port->setName(newName, kFailOnClash, kNameVerbatim)) {
        return false;
    }
    rekeyPort(oldName, port->getName());
    return true;
}

void DmNode::rekeyPort(std::string const& oldName, std::string const& newName) {
    auto const found = m_ports.find(oldName);
    if (found != m_ports.end() && oldName != newName) {
        m_ports.rekey(found, newName);
    }
}

// ---------------------------------------------------------------------------
// Definition

DmStatus DmNode::replaceNodeDef(std::shared_ptr<DmNodeDef> const& def) {
    if (!def) {
        return DmStatus::kInvalidArgument;
    }
    if (m_nodeDef == nullptr) {
        return DmStatus::kFailure;
    }
    if (def.get() == m_nodeDef) {
        return DmStatus::kSuccess;
    }
    if (m_nodeDef->isValueNodeDef()) {
        return DmStatus::kFailure;
    }
    if (m_nodeDef->getPortsInterface() != def->getPortsInterface()) {
        return DmStatus::kInvalidArgument;
    }
    m_nodeDef->unregisterNode(this);
    // Keep the old definition alive until the node has left it.
    std::shared_ptr<DmNodeDef> const previous = std::move(m_nodeDefHold);
    m_nodeDef = def.get();
    if (!isSelfNode()) {
        m_nodeDefHold = def;
    }
    DmStatus status = DmStatus::kSuccess;
    for (auto const& entry : def->getPortsInterface()) {
        if (!replacePort(entry.second, false)) {
            status = DmStatus::kFailure;
            break;
        }
    }
    def->registerNode(this);
    return status;
}

void DmNode::resetNodeDef() {
    if (m_nodeDef != nullptr) {
        m_nodeDef->unregisterNode(this);
        // A self node's clones name the definition that is going.
        for (auto const& entry : m_ports) {
            DmPortDescription& description = *entry.second->getPortDescription();
            if (description.getNodeDef() == m_nodeDef) {
                description.setNodeDef(nullptr);
            }
        }
    }
    m_nodeDef = nullptr;
    // Last: this may release the definition.
    std::shared_ptr<DmNodeDef> const released = std::move(m_nodeDefHold);
}

// ---------------------------------------------------------------------------
// Connections

bool DmNode::connectedTo(DmPort const& port, std::vector<std::shared_ptr<DmPort>>& out) const {
    bool any = false;
    for (DmPort const* far : port.getConnectedPorts()) {
        if (auto shared = sharedPort(far)) {
            out.push_back(std::move(shared));
            any = true;
        }
    }
    return any;
}

std::size_t DmNode::numConnections(DmPort const& port) const {
    return port.getConnectedPorts().size();
}

} // namespace Kesto
