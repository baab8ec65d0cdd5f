#include <KestoDM/graph/DmTerminalStates.h>

#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmPortDescription.h>

#include <algorithm>

namespace Kesto {

DmTerminalStates const DmTerminalStates::s_invalidTerminalStates;

DmTerminalStates::const_iterator DmTerminalStates::find(DmPortDescription const* port) const noexcept {
    return std::find_if(m_states.begin(), m_states.end(),
                        [port](DmTerminalState const& state) { return state.getPort().get() == port; });
}

bool DmTerminalStates::isEnabled(DmPortDescription const* port) const noexcept {
    auto const found = find(port);
    return found == m_states.end() || found->isEnabled();
}

DmStatus DmTerminalStates::setTerminalState(std::shared_ptr<DmPortDescription const> const& port,
                                            bool enabled) {
    DmNodeDef const* const def = port ? port->getNodeDef() : nullptr;
    // Placeholders keep their states too, so that a file read without the
    // library that defines the terminal keeps them when written back.
    if (def == nullptr || !(def->isTerminal() || def->isUnknown())) {
        return DmStatus::kInvalidArgument;
    }
    auto const found = std::find_if(m_states.begin(), m_states.end(), [&port](DmTerminalState const& state) {
        return state.getPort() == port;
    });
    if (found != m_states.end()) {
        found->setEnabled(enabled);
    } else {
        m_states.emplace_back(port, enabled);
    }
    return DmStatus::kSuccess;
}

void DmTerminalStates::removeState(DmPortDescription const* port) noexcept {
    auto const found = find(port);
    if (found != m_states.end()) {
        m_states.erase(found);
    }
}

} // namespace Kesto
