#include <KestoDM/graph/DmConnection.h>

#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>

namespace Kesto {

std::shared_ptr<DmConnection> DmConnection::createConnection(DmPort* source, DmPort* target) {
    if (source == nullptr || target == nullptr) {
        return nullptr;
    }
    auto connection = std::make_shared<DmConnection>(InternalConstructor(), source, target);
    DmNode* const sourceNode = source->getNode();
    DmNode* const targetNode = target->getNode();
    if (sourceNode != nullptr) {
        sourceNode->addConnection(connection.get());
    }
    if (targetNode != nullptr && targetNode != sourceNode) {
        targetNode->addConnection(connection.get());
    }
    source->m_connectedPorts.insert(target);
    target->m_connectedPorts.insert(source);
    connection->m_connected = true;
    return connection;
}

DmConnection::DmConnection(InternalConstructor, DmPort* source, DmPort* target)
    : DmEntity(true), m_source(source), m_target(target) {}

DmConnection::~DmConnection() = default;

void DmConnection::disconnect() {
    if (!m_connected) {
        return;
    }
    m_connected = false;
    DmNode* const sourceNode = m_source->getNode();
    DmNode* const targetNode = m_target->getNode();
    if (sourceNode != nullptr) {
        sourceNode->removeConnection(this);
    }
    if (targetNode != nullptr) {
        targetNode->removeConnection(this);
    }
    m_source->m_connectedPorts.erase(m_target);
    m_target->m_connectedPorts.erase(m_source);
}

} // namespace Kesto
