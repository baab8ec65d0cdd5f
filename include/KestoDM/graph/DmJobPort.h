#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>

namespace Kesto {

class DmBaseType;

/// A port through which the runtime hands an external operator a service
/// of the job it runs in, rather than a value of the graph. It has a name
/// and a concrete type, and no direction.
///
/// Made by createJobPort; DmCppOperator::addJobPort makes and keeps one.
class KESTODM_API DmJobPort : public DmNamedEntity, public DmInstanceCounter<DmJobPort> {
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    /// @name Construction
    /// @{
    /// A new job port; the name is taken as it stands.
    static std::shared_ptr<DmJobPort> createJobPort(std::string const& name,
                                                    std::shared_ptr<DmBaseType const> type);
    /// The same, complete as `complete` says.
    static std::shared_ptr<DmJobPort> createJobPort(std::string const& name,
                                                    std::shared_ptr<DmBaseType const> type, bool complete);

    /// A complete job port.
    DmJobPort(InternalConstructor, std::string name, std::shared_ptr<DmBaseType const> type);
    DmJobPort(InternalConstructor, std::string name, std::shared_ptr<DmBaseType const> type, bool complete);
    ~DmJobPort() override;
    /// @}

    /// @name Type
    /// @{
    std::shared_ptr<DmBaseType const> const& getType() const noexcept { return m_type; }
    void setType(std::shared_ptr<DmBaseType const> type) { m_type = std::move(type); }
    /// @}

    /// The entity is valid, and it has a type that is valid too.
    bool isValid() const override;

private:
    std::shared_ptr<DmBaseType const> m_type;
};

/// Orders job ports by name, byte by byte (a name before the longer names it
/// begins), and ports of one name by type (DmBaseType::lessThan). It is a
/// strict weak ordering, so sorted containers may hold ports of one name and
/// different types side by side; a missing port sorts first.
struct KESTODM_API DmJobPortSorter {
    bool operator()(DmJobPort const& a, DmJobPort const& b) const;
    bool operator()(std::shared_ptr<DmJobPort const> const& a,
                    std::shared_ptr<DmJobPort const> const& b) const;
    bool operator()(std::shared_ptr<DmJobPort> const& a, std::shared_ptr<DmJobPort> const& b) const;

private:
    bool lessOrMissing(DmJobPort const* a, DmJobPort const* b) const;
};

} // namespace Kesto
