#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>

namespace Kesto {

class DmBaseType;

/// The built-in definition of a constant of one type: an input "value" and an
/// output "output", both of that type, which never change. There is one
/// definition per type object in the process, shared by every library; it is
/// const, belongs to no scope, and lives as long as some node or caller holds it.
class KESTODM_API DmValueNodeDef : public DmNativeNodeDef, public DmInstanceCounter<DmValueNodeDef> {
public:
    static constexpr char const kValuePortName[] = "value";
    static constexpr char const kOutputPortName[] = "output";
    /// The "icon" metadata item of every value node definition.
    static constexpr char const kIcon[] = "../icons/value.svg";

    /// The one definition for `type`, made at the first request. Null for no
    /// type and for types that hold no constant: auto, and arrays of auto.
    static std::shared_ptr<DmValueNodeDef> getValueNodeDef(std::shared_ptr<DmBaseType const> const& type);

    DmValueNodeDef(InternalConstructor, std::shared_ptr<DmBaseType const> type);
    ~DmValueNodeDef() override;

    std::shared_ptr<DmBaseType const> const& getType() const noexcept { return m_type; }
    bool isValueNodeDef() const override;

private:
    std::shared_ptr<DmBaseType const> m_type;
};

} // namespace Kesto
