#include <KestoDM/foundation/DmNamedEntity.h>

#include <KestoDM/platform/NamingSupport.h>

#include "foundation/DmInstanceMap.h"

namespace Kesto {

// Made by the first entity, so it is destroyed only after every entity that
// lives in a static of its own (the per-process singletons are made later).
DmNamedEntity::InstanceMap& DmNamedEntity::InstanceMap::processWide() noexcept {
    static InstanceMap s_instanceMap;
    return s_instanceMap;
}

DmNamedEntity::DmNamedEntity(std::string name, bool complete)
    : DmEntity(complete), m_runtimeUID(InstanceMap::processWide().nextRuntimeUID()), m_name(std::move(name)) {
    InstanceMap::processWide().registerEntity(m_runtimeUID, this);
}

DmNamedEntity::DmNamedEntity(DmNamedEntity const& other)
    : DmEntity(other), std::enable_shared_from_this<DmNamedEntity>(other), DmInstanceCounter<DmNamedEntity>(
                                                                               other),
      m_runtimeUID(InstanceMap::processWide().nextRuntimeUID()), m_name(other.m_name) {
    InstanceMap::processWide().registerEntity(m_runtimeUID, this);
}

DmNamedEntity::DmNamedEntity(DmNamedEntity&& other)
    : DmEntity(std::move(other)), std::enable_shared_from_this<DmNamedEntity>(other),
      DmInstanceCounter<DmNamedEntity>(other), m_runtimeUID(other.m_runtimeUID),
      m_name(std::move(other.m_name)) {
    other.m_runtimeUID = kInvalidRuntimeUID;
    if (m_runtimeUID != kInvalidRuntimeUID) {
        InstanceMap::processWide().moveEntity(m_runtimeUID, this);
    }
}

DmNamedEntity::~DmNamedEntity() {
    if (m_runtimeUID != kInvalidRuntimeUID) {
        InstanceMap::processWide().unregisterEntity(m_runtimeUID);
    }
}

std::shared_ptr<DmNamedEntity const> DmNamedEntity::findByRuntimeUID(RuntimeUID uid) {
    if (uid == kInvalidRuntimeUID) {
        return {};
    }
    bool found = false;
    std::weak_ptr<DmNamedEntity> weak = InstanceMap::processWide().findWeak(uid, found);
    if (!found) {
        return {};
    }
    // The lock is released: the strong reference is taken only if the count is
    // not zero yet, otherwise this throws std::bad_weak_ptr.
    return std::shared_ptr<DmNamedEntity const>(weak);
}

std::string const& DmNamedEntity::getName() const {
    return m_name;
}

void DmNamedEntity::resolveFullName(std::string& out) const {
    out += getName();
}

bool DmNamedEntity::isValid() const {
    return !m_name.empty() && DmEntity::isValid();
}

bool DmNamedEntity::operator==(DmNamedEntity const& other) const noexcept {
    return getName() == other.getName();
}

bool DmNamedEntity::setName(std::string const& name, DmNameResolutionType, DmNameResolveFlags flags) {
    if (isConst()) {
        return false;
    }
    std::string resolved;
    if (!resolveName(name, resolved, flags)) {
        return false;
    }
    m_name = std::move(resolved);
    return true;
}

bool DmNamedEntity::resolveName(std::string const& in, std::string& out, DmNameResolveFlags flags) {
    if (in.empty()) {
        return false;
    }
    if (flags == kNameVerbatim) {
        out = in;
        return true;
    }
    std::string legal;
    Internal::NamingSupport::getLegalName(in, legal);
    if (legal.empty()) {
        return false;
    }
    if (flags == kNameMustBeLegal && legal != in) {
        return false;
    }
    out = std::move(legal);
    return true;
}

DmNamedEntity::UpdateHelper::UpdateHelper(DmNamedEntity& entity) noexcept : m_entity(&entity) {
    m_entity->setInUpdate(true);
}

DmNamedEntity::UpdateHelper::~UpdateHelper() {
    m_entity->setInUpdate(false);
}

} // namespace Kesto
