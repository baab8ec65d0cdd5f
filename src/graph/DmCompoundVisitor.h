#pragma once

#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmPortDescription.h>

#include <memory>
#include <utility>

namespace Kesto {

/// A walk over a compound, in a fixed order: what precedes the content, the
/// metadata, the default terminal states, the ports, the nested compounds,
/// the nodes, the connections, and what follows. The derived class gives the
/// hooks; they are called without virtual dispatch.
template <class Derived>
class DmCompoundVisitor {
public:
    explicit DmCompoundVisitor(std::shared_ptr<DmCompound const> source) : m_source(std::move(source)) {}

    std::shared_ptr<DmCompound const> const& getSourceCompound() const noexcept { return m_source; }

    /// Walks the source; nothing happens without one.
    void visit() {
        if (!m_source) {
            return;
        }
        Derived& derived = getDerived();
        derived.preVisit();
        derived.visitMetadata(*m_source->getMetadata());
        derived.visitDefaultDisabledTerminals(*m_source);
        for (auto const& entry : m_source->getPortsInterface()) {
            derived.visitPortDescription(*entry.second);
        }
        for (auto const& scope : m_source->getNestedScopes()) {
            if (auto const nested = std::dynamic_pointer_cast<DmCompound>(scope)) {
                derived.visitNestedCompound(nested);
            }
        }
        for (auto const& entry : m_source->getNodes()) {
            derived.visitNode(entry.second);
        }
        for (auto const& connection : m_source->getConnections()) {
            derived.visitConnection(*connection);
        }
        derived.postVisit();
    }

protected:
    Derived& getDerived() noexcept { return static_cast<Derived&>(*this); }

private:
    std::shared_ptr<DmCompound const> m_source;
};

} // namespace Kesto
