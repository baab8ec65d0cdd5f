#pragma once

#include <KestoDM/foundation/DmEntity.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>

namespace Kesto {

class DmPort;

/// An edge from an output port to an input port inside a compound. The
/// compound's list owns it; the two nodes and the two ports know it, or
/// each other, by plain pointers, which createConnection sets and
/// disconnect clears. Compounds make connections through makeConnection,
/// which checks what this class takes for granted.
class KESTODM_API DmConnection : public DmEntity,
                                 public std::enable_shared_from_this<DmConnection>,
                                 public DmInstanceCounter<DmConnection> {
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    /// Joins `source` to `target` without any test: the connection enters the
    /// connection sets of both nodes, and each port the other's connected
    /// ports. Null for a null port.
    static std::shared_ptr<DmConnection> createConnection(DmPort* source, DmPort* target);

    DmConnection(InternalConstructor, DmPort* source, DmPort* target);
    DmConnection(DmConnection const&) = delete;
    ~DmConnection() override;

    DmPort* getSourcePort() const noexcept { return m_source; }
    DmPort* getTargetPort() const noexcept { return m_target; }
    bool isConnected() const noexcept { return m_connected; }

    /// Undoes what createConnection did; a second call does nothing.
    void disconnect();

private:
    DmPort* m_source;
    DmPort* m_target;
    bool m_connected = false;
};

} // namespace Kesto
