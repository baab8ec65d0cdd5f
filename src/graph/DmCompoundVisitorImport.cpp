#include "graph/DmCompoundVisitorImport.h"

#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/graph/DmWatchPoint.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmMetadata.h>

#include <algorithm>
#include <vector>

namespace Kesto {

namespace {

void copyMetadata(DmEntity const& source, DmEntity& target) {
    source.getMetadata()->clone(target.getMetadata());
}

void copyWatchPoint(DmPort const& source, DmPort& target) {
    DmWatchPoint const* const watch = source.getWatchPoint().get();
    if (watch == nullptr) {
        return;
    }
    DmWatchPoint& copy = *target.setWatchPoint();
    copy.enable(watch->enabled());
    for (auto const& parameter : watch->getParameters()) {
        copy.setParameter(parameter.first, parameter.second);
    }
}

} // namespace

DmCompoundVisitorImport::DmCompoundVisitorImport(std::shared_ptr<DmCompound const> source, std::string name,
                                                 std::shared_ptr<DmScope> scope,
                                                 DmNodeDef::ImportErrorFlags flags)
    : DmCompoundVisitor(std::move(source)), m_name(std::move(name)), m_scope(std::move(scope)),
      m_flags(flags) {
    if (getSourceCompound()) {
        m_imported = getSourceCompound()->clone();
    }
}

void DmCompoundVisitorImport::preVisit() {
    DmCompound const& source = *getSourceCompound();
    m_imported->setImportedURI(source.getURI());
    m_imported->setLibrary(source.getLibrary());
    m_imported->setReservedNodeNames(source.getReservedNodeNames());
    m_imported->setName(m_name, kAsOverload, kNameVerbatim);
}

void DmCompoundVisitorImport::visitMetadata(DmMetadata const& metadata) {
    metadata.clone(m_imported->getMetadata());
}

void DmCompoundVisitorImport::visitDefaultDisabledTerminals(DmCompound const& source) {
    // The records keep pointing at the source's port descriptions.
    m_imported->getDefaultTerminalStates() = source.getDefaultTerminalStates();
}

void DmCompoundVisitorImport::visitPortDescription(DmPortDescription const& port) {
    // A port the copy made for itself (a loop's own port) takes what the
    // source's port carries instead of being added twice.
    std::shared_ptr<DmPortDescription> copy = m_imported->getPortsInterface()[port.getName()];
    bool const own = copy != nullptr;
    if (!own) {
        copy = DmPortDescription::newPortDescription(port.getName(), port.getType(), port.getDirection(),
                                                     kNameVerbatim);
        copy->setPortKind(port.getPortKind());
        copy->setIterationAttribute(port.getIterationAttribute());
    }
    if (port.getDefaultValueOverride()) {
        copy->setDefaultValueOverride(port.getDefaultValueOverride()->clone());
    }
    copyMetadata(port, *copy);
    if (!own && !m_imported->addPortDescription(copy, kFailOnClash)) {
        fail();
    }
}

void DmCompoundVisitorImport::visitNestedCompound(std::shared_ptr<DmCompound> const& nested) {
    std::shared_ptr<DmNodeDef> out;
    if (nested->import(m_imported, kAsOverload, nested->getName(), out, m_flags).isFailure()) {
        fail();
    }
}

std::shared_ptr<DmNodeDef> DmCompoundVisitorImport::definitionFor(DmNode const& node) const {
    DmNodeDef* const def = node.getNodeDef();
    if (!def->isPrivate()) {
        return std::static_pointer_cast<DmNodeDef>(def->shared_from_this());
    }
    // Private definitions were copied into the imported compound first.
    std::shared_ptr<DmOverloadSet> copies;
    if (!m_imported->DmScope::findNodeDef(def->getName(), copies) || !copies) {
        return nullptr;
    }
    auto const* const overload = dynamic_cast<DmOverload const*>(def);
    if (overload == nullptr || overload->get_owner() == nullptr) {
        return copies;
    }
    auto const& originals = overload->get_owner()->getOverloads();
    auto const at =
        std::find_if(originals.begin(), originals.end(),
                     [overload](std::shared_ptr<DmOverload> const& o) { return o.get() == overload; });
    auto const index = static_cast<std::size_t>(at - originals.begin());
    if (index < copies->getOverloads().size()) {
        return copies->getOverloads()[index];
    }
    return copies;
}

void DmCompoundVisitorImport::visitNode(std::shared_ptr<DmNode> const& source) {
    if (!source) {
        fail();
        return;
    }
    std::shared_ptr<DmNodeDef> def;
    if (source->getNodeDef() == nullptr) {
        if (!DmNodeDef::errorFlagSet(m_flags, DmNodeDef::kImportAllowMissingNodeDef)) {
            fail();
            return;
        }
    } else {
        def = definitionFor(*source);
        if (!def) {
            fail();
            return;
        }
    }
    auto const node = DmNode::createNode(source->getName(), def, false, kNameVerbatim);
    if (!node || m_imported->addNode(node, kFailOnClash).isFailure()) {
        fail();
        return;
    }
    if (auto const multiIn = source->getMultiInPort()) {
        for (auto const& entry : multiIn->getMembers()) {
            std::shared_ptr<DmPort> added;
            node->addMultiInPortEntry(entry.first, added);
        }
    }
    copyMetadata(*source, *node);
    for (auto const& entry : source->getPorts()) {
        if (auto const port = (*node)[entry.first]) {
            if (entry.second->isFanIn()) {
                port->setFanIn(true);
                for (auto const& fanInEntry : entry.second->getMembers()) {
                    std::shared_ptr<DmPort> added;
                    port->addMultiInPortEntry(fanInEntry.first, added);
                }
            }
            copyPortState(*entry.second, *port);
        }
    }
}

void DmCompoundVisitorImport::copyPortState(DmPort const& source, DmPort& target) {
    if (source.getDefaultValue()) {
        // A copy of its own: editing the imported graph must leave the source alone.
        target.setDefaultValue(source.getDefaultValue()->clone());
    }
    copyMetadata(source, target);
    copyWatchPoint(source, target);
    for (auto const& member : source.getMembers()) {
        std::shared_ptr<DmPort> copy;
        if (target.getMember(member.first, copy)) {
            copyPortState(*member.second, *copy);
        }
    }
}

std::shared_ptr<DmPort> DmCompoundVisitorImport::counterpart(DmPort const& port) const {
    // The names from the top-level port down to `port`.
    std::vector<std::string const*> path;
    DmPort const* top = &port;
    for (; top->getParent() != nullptr; top = top->getParent()) {
        path.push_back(&top->getName());
    }
    DmNode const* const sourceNode = top->getNode();
    if (sourceNode == nullptr) {
        return nullptr;
    }
    std::shared_ptr<DmNode> const node =
        sourceNode->isSelfNode() ? m_imported->getSelfNode() : m_imported->findNode(sourceNode->getName());
    std::shared_ptr<DmPort> found = node ? (*node)[top->getName()] : nullptr;
    for (auto name = path.rbegin(); found && name != path.rend(); ++name) {
        std::shared_ptr<DmPort> next;
        found = found->getMember(**name, next) ? next : nullptr;
    }
    return found;
}

void DmCompoundVisitorImport::visitConnection(DmConnection const& connection) {
    auto const source = counterpart(*connection.getSourcePort());
    auto const target = counterpart(*connection.getTargetPort());
    std::shared_ptr<DmConnection> made;
    if (!source || !target || m_imported->makeConnection(source, target, made).isFailure()) {
        fail();
    }
}

void DmCompoundVisitorImport::postVisit() {
    DmCompound const& source = *getSourceCompound();
    auto const sourceSelf = source.getSelfNode();
    auto const importedSelf = m_imported->getSelfNode();
    if (sourceSelf && importedSelf) {
        for (auto const& entry : sourceSelf->getPorts()) {
            auto const port = (*importedSelf)[entry.first];
            if (!port) {
                continue;
            }
            copyWatchPoint(*entry.second, *port);
            // Loops pair the self node's own descriptions (state and in-out
            // ports); the copy pairs the ports of the same names.
            DmPortDescription const* const partner = entry.second->getPortDescription()->getLinkedPort();
            if (partner == nullptr || port->getPortDescription()->isLinked()) {
                continue;
            }
            for (auto const& other : sourceSelf->getPorts()) {
                if (other.second->getPortDescription().get() == partner) {
                    if (auto const counterpartPort = (*importedSelf)[other.first]) {
                        port->getPortDescription()->link(
                            *counterpartPort->getPortDescription(),
                            entry.second->getPortDescription()->getIterationAttribute());
                    }
                    break;
                }
            }
        }
    }
    for (auto const& entry : source.getPortsInterface()) {
        DmPortDescription const* const partner = entry.second->getLinkedPort();
        auto const first = m_imported->getPortsInterface()[entry.first];
        auto const second =
            partner != nullptr ? m_imported->getPortsInterface()[partner->getName()] : nullptr;
        // Each pair is met twice; the second meeting finds it linked.
        if (first && second && !first->isLinked()) {
            first->link(*second, entry.second->getIterationAttribute());
        }
    }
    if (!m_scope || m_scope->registerNodeDef(m_imported).isFailure()) {
        fail();
    }
}

} // namespace Kesto
