#pragma once

#include <KestoDM/foundation/DmEntity.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/platform/DmExport.h>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

namespace Kesto {

/// An observation point that a client sets on a port to receive the values
/// that pass there. The model only stores it: the callback is the host's
/// code, called by whoever runs the graph, with the data, its size in bytes
/// and the client data given here.
class KESTODM_API DmWatchPoint : public DmEntity, public DmInstanceCounter<DmWatchPoint> {
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    using CallBack = void (*)(void const* data, std::uint64_t size, void const* clientData);
    using Parameters = std::unordered_map<std::string, std::string>;

    static std::shared_ptr<DmWatchPoint> createNew();

    explicit DmWatchPoint(InternalConstructor);
    /// A copy has every field of the source.
    DmWatchPoint(DmWatchPoint const& other) = default;
    ~DmWatchPoint() override;

    bool enabled() const noexcept { return m_enabled; }
    /// Stores the flag; kSuccess.
    DmStatus enable(bool enabled);

    CallBack getCallBack() const noexcept { return m_callBack; }
    void const* getClientData() const noexcept { return m_clientData; }
    /// Stores both; kSuccess.
    DmStatus setCallBack(CallBack callBack, void const* clientData);

    Parameters& getParameters() noexcept { return m_parameters; }
    Parameters const& getParameters() const noexcept { return m_parameters; }
    /// kInvalidArgument (out untouched) for a name never set.
    DmStatus getParameter(std::string const& name, std::string& out) const;
    /// Inserts or overwrites; kSuccess.
    DmStatus setParameter(std::string const& name, std::string const& value);

private:
    bool m_enabled = false;
    CallBack m_callBack = nullptr;
    void const* m_clientData = nullptr;
    Parameters m_parameters;
};

} // namespace Kesto
