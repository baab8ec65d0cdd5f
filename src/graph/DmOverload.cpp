#include <KestoDM/graph/DmOverload.h>

#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPortDescription.h>

namespace Kesto {

DmOverload::DmOverload(std::string name, bool complete) : DmNodeDef(std::move(name), complete) {}

DmOverload::~DmOverload() = default;

DmStatus DmOverload::setIsDefaultOverload(bool isDefault) {
    if (m_owner == nullptr) {
        return DmStatus::kFailure;
    }
    if (isDefault) {
        DmOverload* const previous = m_owner->getDefaultOverload();
        if (previous != nullptr && previous != this) {
            previous->setIsDefaultOverload(false);
        }
        m_isDefaultOverload = true;
        m_owner->setDefaultOverload(this);
        return DmStatus::kSuccess;
    }
    if (m_owner->getDefaultOverload() != this) {
        return DmStatus::kFailure;
    }
    m_isDefaultOverload = false;
    m_owner->setDefaultOverload(nullptr);
    return DmStatus::kSuccess;
}

bool DmOverload::isOverloadsLocked() const {
    bool const locked = m_owner != nullptr ? m_owner->isOverloadsLocked() : lockedFlag();
    return locked || hasAutoInputPort();
}

DmStatus DmOverload::setOverloadsLocked(bool locked) {
    if (!locked && (hasAutoInputPort() || (m_owner != nullptr && m_owner->hasAutoInputPort()))) {
        return DmStatus::kFailure;
    }
    setLockedFlag(locked);
    if (m_owner != nullptr) {
        return m_owner->setOverloadsLocked(locked);
    }
    return DmStatus::kSuccess;
}

bool DmOverload::isSingle() const {
    if (m_owner != nullptr) {
        return m_owner->isOverloadsLocked() && m_owner->size() == 1;
    }
    return isOverloadsLocked();
}

void DmOverload::resolveFullName(std::string& out) const {
    if (m_owner != nullptr) {
        m_owner->resolveFullName(out);
        return;
    }
    DmNodeDef::resolveFullName(out);
}

// The set's interface follows each change of an overload's ports.

bool DmOverload::addPortDescription(std::shared_ptr<DmPortDescription> const& port,
                                    DmNameResolutionType type) {
    if (!DmNodeDef::addPortDescription(port, type)) {
        return false;
    }
    if (m_owner != nullptr) {
        m_owner->mergePort(port->getName());
    }
    return true;
}

bool DmOverload::removePortDescription(std::shared_ptr<DmPortDescription> const& port) {
    std::string const name = port ? port->getName() : std::string();
    if (!DmNodeDef::removePortDescription(port)) {
        return false;
    }
    if (m_owner != nullptr) {
        m_owner->mergePort(name);
    }
    return true;
}

bool DmOverload::replaceExistingPort(std::shared_ptr<DmPortDescription> const& port) {
    if (!DmNodeDef::replaceExistingPort(port)) {
        return false;
    }
    if (m_owner != nullptr) {
        m_owner->mergePort(port->getName());
    }
    return true;
}

bool DmOverload::renamePortDescription(std::string const& oldName, std::string const& newName) {
    bool const nested = isInUpdate();
    if (!DmNodeDef::renamePortDescription(oldName, newName)) {
        return false;
    }
    if (!nested && m_owner != nullptr) {
        m_owner->mergeRenamedPort(oldName, newName);
    }
    return true;
}

} // namespace Kesto
