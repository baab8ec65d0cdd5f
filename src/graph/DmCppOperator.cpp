#include <KestoDM/graph/DmCppOperator.h>

#include <KestoDM/graph/DmJobPort.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPortDescription.h>

#include <iterator>

namespace Kesto {

std::shared_ptr<DmCppOperator> DmCppOperator::createCppOperator(std::string const& name,
                                                                CancellationPolicy cancellationPolicy,
                                                                DmNameResolveFlags flags) {
    return createCppOperator(name, cancellationPolicy, std::string(), flags);
}

std::shared_ptr<DmCppOperator> DmCppOperator::createCppOperator(std::string const& name,
                                                                CancellationPolicy cancellationPolicy,
                                                                std::string const& packName,
                                                                DmNameResolveFlags flags) {
    return makeNamed<DmCppOperator>(name, flags, InternalConstructor(), cancellationPolicy, packName);
}

DmCppOperator::DmCppOperator(InternalConstructor, std::string name, CancellationPolicy cancellationPolicy,
                             std::string packName)
    : DmExternOperator(InternalConstructor(), std::move(name), cancellationPolicy, std::move(packName)) {}

DmCppOperator::~DmCppOperator() = default;

// ---------------------------------------------------------------------------
// Symbol declarations

bool DmCppOperator::isMangleNameDeclared(DmMangledName::Type type) const noexcept {
    return type == DmMangledName::kMangledNameMicrosoft ? m_msMangleNameDeclared
                                                        : m_itaniumMangleNameDeclared;
}

void DmCppOperator::setMangleNameDeclared(DmMangledName::Type type, bool declared) noexcept {
    (type == DmMangledName::kMangledNameMicrosoft ? m_msMangleNameDeclared : m_itaniumMangleNameDeclared) =
        declared;
}

// ---------------------------------------------------------------------------
// Overload lock

bool DmCppOperator::isOverloadsLocked() const {
    DmOverloadSet const* const owner = get_owner();
    return owner != nullptr && owner->isOverloadsLocked();
}

DmStatus DmCppOperator::setOverloadsLocked(bool locked) {
    DmOverloadSet* const owner = get_owner();
    if (owner == nullptr) {
        return DmStatus::kFailure;
    }
    if (!locked && owner->hasAutoInputPort()) {
        return DmStatus::kFailure;
    }
    return owner->setOverloadsLocked(locked);
}

// ---------------------------------------------------------------------------
// Associated ports

void DmCppOperator::associatePorts(std::shared_ptr<DmPortDescription const> const& first,
                                   std::shared_ptr<DmPortDescription const> second) {
    if (first) {
        m_associatedPorts[first.get()] = std::move(second);
    }
}

std::shared_ptr<DmPortDescription const>
DmCppOperator::getAssociatedPort(DmPortDescription const* port) const {
    auto const found = m_associatedPorts.find(port);
    return found != m_associatedPorts.end() ? found->second : nullptr;
}

// ---------------------------------------------------------------------------
// Job ports

std::shared_ptr<DmJobPort> DmCppOperator::addJobPort(std::string const& name,
                                                     std::shared_ptr<DmBaseType const> type, bool complete) {
    auto jobPort = DmJobPort::createJobPort(name, std::move(type), complete);
    m_jobPorts.push_back(jobPort);
    return jobPort;
}

// ---------------------------------------------------------------------------
// Ports

bool DmCppOperator::replaceExistingPort(std::shared_ptr<DmPortDescription> const& port) {
    std::shared_ptr<DmPortDescription const> const old =
        port ? getPortsInterface()[port->getName()] : nullptr;
    if (!DmExternOperator::replaceExistingPort(port)) {
        return false;
    }
    // Keyed by address: the old description's entry moves under the new one.
    auto const found = m_associatedPorts.find(old.get());
    if (found != m_associatedPorts.end()) {
        auto partner = std::move(found->second);
        m_associatedPorts.erase(found);
        m_associatedPorts[port.get()] = std::move(partner);
    }
    for (auto& entry : m_associatedPorts) {
        if (entry.second == old) {
            entry.second = port;
        }
    }
    return true;
}

bool DmCppOperator::removePortDescription(std::shared_ptr<DmPortDescription> const& port) {
    if (!DmExternOperator::removePortDescription(port)) {
        return false;
    }
    // A removed description's address may be taken by a new one: no pairing
    // may name it any more.
    m_associatedPorts.erase(port.get());
    for (auto entry = m_associatedPorts.begin(); entry != m_associatedPorts.end();) {
        entry = entry->second == port ? m_associatedPorts.erase(entry) : std::next(entry);
    }
    return true;
}

} // namespace Kesto
