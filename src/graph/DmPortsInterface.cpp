#include <KestoDM/graph/DmPortsInterface.h>

#include <KestoDM/graph/DmPortDescription.h>

#include "graph/DmReorder.h"

namespace Kesto {

DmPortsInterface::DmPortsInterface() : m_ports(std::make_shared<PortMap>()) {}

std::shared_ptr<DmPortDescription> DmPortsInterface::operator[](std::string const& name) const {
    auto const found = m_ports->find(name);
    return found == m_ports->end() ? nullptr : found->second;
}

std::size_t DmPortsInterface::indexOf(std::string const& name) const {
    std::size_t index = 0;
    for (auto const& entry : *m_ports) {
        if (entry.first == name) {
            return index;
        }
        ++index;
    }
    return index;
}

bool DmPortsInterface::operator==(DmPortsInterface const& other) const {
    if (m_ports->size() != other.m_ports->size()) {
        return false;
    }
    auto right = other.m_ports->begin();
    for (auto const& left : *m_ports) {
        if (!(*left.second == *right->second)) {
            return false;
        }
        ++right;
    }
    return true;
}

bool DmPortsInterface::addPortDescription(std::shared_ptr<DmPortDescription> const& port) {
    return port && m_ports->insert(port->getName(), port).second;
}

bool DmPortsInterface::removePortDescription(std::shared_ptr<DmPortDescription> const& port) {
    if (!port) {
        return false;
    }
    auto const found = m_ports->find(port->getName());
    if (found == m_ports->end() || found->second != port) {
        return false;
    }
    port->unlink();
    m_ports->erase(found);
    return true;
}

bool DmPortsInterface::renamePortDescription(std::string const& oldName, std::string const& newName) {
    auto const found = m_ports->find(oldName);
    if (found == m_ports->end() || (newName != oldName && m_ports->contains(newName))) {
        return false;
    }
    // Hold the entry: the rename may come back here through the definition.
    std::shared_ptr<DmPortDescription> const port = found->second;
    if (!port->setName(newName, kAsOverload, kNameVerbatim)) {
        return false;
    }
    auto const entry = m_ports->find(oldName);
    return entry == m_ports->end() || m_ports->rekey(entry, port->getName());
}

bool DmPortsInterface::replaceExistingPort(std::shared_ptr<DmPortDescription> const& port) {
    if (!port) {
        return false;
    }
    auto const found = m_ports->find(port->getName());
    if (found == m_ports->end()) {
        return false;
    }
    found->second = port;
    return true;
}

DmStatus DmPortsInterface::reorderPortDescription(std::size_t position, std::string const& name) {
    return reorderEntry(*m_ports, position, name);
}

} // namespace Kesto
