#pragma once

#include <KestoDM/platform/DmExport.h>

#include <cstdint>

namespace Kesto {

/// The environments a native symbol exists for, as a bit mask. The bits mean
/// nothing to the model: it only stores and compares them.
class KESTODM_API ExternTargetSet {
public:
    enum TargetEnvironments : std::uint32_t {
        kTargetNone = 0,
    };

    ExternTargetSet() = default;
    ExternTargetSet(TargetEnvironments targets) : m_targets(targets) {}
    ExternTargetSet(ExternTargetSet const&) = default;
    ExternTargetSet& operator=(ExternTargetSet const&) = default;

    void addTargets(ExternTargetSet const& targets) { m_targets |= targets.m_targets; }
    void addTargets(TargetEnvironments targets) { m_targets |= targets; }
    void removeTargets(ExternTargetSet const& targets) { m_targets &= ~targets.m_targets; }
    void removeTargets(TargetEnvironments targets) { m_targets &= ~static_cast<std::uint32_t>(targets); }
    /// True when every asked bit is set; an empty request is always supported.
    bool supportsTargets(ExternTargetSet const& targets) const {
        return (m_targets & targets.m_targets) == targets.m_targets;
    }
    bool supportsTargets(TargetEnvironments targets) const {
        return supportsTargets(ExternTargetSet(targets));
    }
    TargetEnvironments getTargets() const { return static_cast<TargetEnvironments>(m_targets); }

private:
    std::uint32_t m_targets = 0;
};

} // namespace Kesto
