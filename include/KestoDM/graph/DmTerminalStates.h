#pragma once

#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/platform/DmExport.h>

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace Kesto {

class DmPortDescription;

/// Whether one terminal input is on.
class KESTODM_API DmTerminalState {
public:
    DmTerminalState(std::shared_ptr<DmPortDescription const> port, bool enabled)
        : m_port(std::move(port)), m_enabled(enabled) {}

    std::shared_ptr<DmPortDescription const> const& getPort() const noexcept { return m_port; }
    bool isEnabled() const noexcept { return m_enabled; }
    void setEnabled(bool enabled) noexcept { m_enabled = enabled; }

private:
    std::shared_ptr<DmPortDescription const> m_port;
    bool m_enabled;
};

/// The on/off states of terminal inputs, of a node or as a compound's
/// defaults, in the order of first setting. A port without a record is on.
class KESTODM_API DmTerminalStates {
public:
    using StateList = std::vector<DmTerminalState>;
    using const_iterator = StateList::const_iterator;

    /// The empty states of a node that has no terminal: one object for the process.
    static DmTerminalStates const* getInvalidTerminalStates() noexcept { return &s_invalidTerminalStates; }

    StateList const& getStates() const noexcept { return m_states; }
    const_iterator begin() const noexcept { return m_states.begin(); }
    const_iterator end() const noexcept { return m_states.end(); }
    std::size_t size() const noexcept { return m_states.size(); }
    bool empty() const noexcept { return m_states.empty(); }
    void clear() noexcept { m_states.clear(); }

    /// The record of `port` (the same object), or end().
    const_iterator find(DmPortDescription const* port) const noexcept;
    /// The record's flag; true without a record.
    bool isEnabled(DmPortDescription const* port) const noexcept;
    /// Records the flag of `port`, overwriting an earlier record.
    /// kInvalidArgument for a port of no definition, or of a definition that
    /// is neither terminal nor a placeholder.
    DmStatus setTerminalState(std::shared_ptr<DmPortDescription const> const& port, bool enabled);
    /// Drops the record of `port`, keeping the order of the others.
    void removeState(DmPortDescription const* port) noexcept;

private:
    static DmTerminalStates const s_invalidTerminalStates;

    StateList m_states;
};

} // namespace Kesto
