#include <KestoDM/graph/DmLoopingCompound.h>

#include <KestoDM/graph/DmPort.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>
#include <KestoDM/types/DmUnknownType.h>

#include "types/DmExternTypeFactory.h"

#include <utility>

namespace Kesto {

namespace {

// The element of an unknown type is unknown too. A name of the array form
// "array<e>" gives the element's name; any other stands for the element.
std::shared_ptr<DmBaseType const> unknownElementType(DmBaseType const& unknown) {
    std::string const& name = unknown.getName();
    std::string const prefix = DmArrayType::makeArrayName(std::string()) + "<";
    bool const arrayForm =
        name.size() > prefix.size() + 1 && name.compare(0, prefix.size(), prefix) == 0 && name.back() == '>';
    std::string const element =
        arrayForm ? name.substr(prefix.size(), name.size() - prefix.size() - 1) : name;
    return Internal::ExternTypeFactory::make<DmUnknownType>(element);
}

} // namespace

// ---------------------------------------------------------------------------
// Construction

DmLoopingCompound::DmLoopingCompound(InternalConstructor tag, std::string name, std::string const& iconFile)
    : DmCompound(tag, std::move(name)) {
    getMetadata()->add(std::make_shared<DmMetadataItem>(kIconKey, "../icons/" + iconFile));
}

DmLoopingCompound::~DmLoopingCompound() = default;

void DmLoopingCompound::initialize() {
    if (getInternalSelfNode()) {
        return;
    }
    initializeFromSelf(
        std::make_shared<DmLoopingSelfNode>(InternalConstructor(), getName(), this, isArrayLoop()));
}

// ---------------------------------------------------------------------------
// Ports

bool DmLoopingCompound::removePortDescription(std::shared_ptr<DmPortDescription> const& port) {
    // A refusal must leave this loop's links alone: test before unlinking.
    if (!port || isConst() || isReservedPortName(port->getName()) ||
        getPortsInterface()[port->getName()] != port) {
        return false;
    }
    if (DmPortDescription* const inside = findSelfPortDescription(port->getName())) {
        inside->unlink();
    }
    return DmCompound::removePortDescription(port);
}

DmPortDescription* DmLoopingCompound::findSelfPortDescription(std::string const& name) const {
    auto const& selfNode = getInternalSelfNode();
    auto const port = selfNode ? (*selfNode)[name] : nullptr;
    return port ? port->getPortDescription().get() : nullptr;
}

bool DmLoopingCompound::linkSelfPorts(std::string const& first, std::string const& second,
                                      IterationAttribute attribute) {
    DmPortDescription* const firstPort = findSelfPortDescription(first);
    DmPortDescription* const secondPort = findSelfPortDescription(second);
    return firstPort != nullptr && secondPort != nullptr && firstPort->link(*secondPort, attribute);
}

bool DmLoopingCompound::unlinkSelfPort(std::string const& name) {
    DmPortDescription* const port = findSelfPortDescription(name);
    return port != nullptr && port->unlink();
}

// ---------------------------------------------------------------------------
// Looping self node

DmLoopingCompound::DmLoopingSelfNode::DmLoopingSelfNode(DmCompound::InternalConstructor tag, std::string name,
                                                        DmCompound* compound, bool arrayLoop)
    : DmSelfNode(tag, std::move(name), compound), m_arrayLoop(arrayLoop) {}

DmLoopingCompound::DmLoopingSelfNode::~DmLoopingSelfNode() = default;

std::shared_ptr<DmPortDescription>
DmLoopingCompound::DmLoopingSelfNode::targetView(DmPortDescription const& port) const {
    // Results gathered over the iterations are arrays of loops that run over arrays.
    if (!m_arrayLoop && port.isOutput()) {
        return nullptr;
    }
    std::shared_ptr<DmBaseType const> const& type = port.getType();
    std::shared_ptr<DmBaseType const> element;
    if (auto const array = std::dynamic_pointer_cast<DmArrayType const>(type)) {
        element = array->getElementType();
    } else if (type && type->getTypeKind() == kTypeUnknown) {
        element = unknownElementType(*type);
    }
    if (!element) {
        return nullptr;
    }
    auto view = port.clone();
    if (!view || !view->setType(std::move(element))) {
        return nullptr;
    }
    return view;
}

bool DmLoopingCompound::DmLoopingSelfNode::addPort(std::shared_ptr<DmPortDescription> const& port,
                                                   bool invertDirections) {
    if (!port || !port->isIterationTarget()) {
        return DmSelfNode::addPort(port, invertDirections);
    }
    auto const view = targetView(*port);
    return view && DmSelfNode::addPort(view, invertDirections);
}

bool DmLoopingCompound::DmLoopingSelfNode::replacePort(std::shared_ptr<DmPortDescription> const& port,
                                                       bool invertDirections) {
    if (!port || !port->isIterationTarget()) {
        return DmSelfNode::replacePort(port, invertDirections);
    }
    auto const view = targetView(*port);
    return view && DmSelfNode::replacePort(view, invertDirections);
}

} // namespace Kesto
