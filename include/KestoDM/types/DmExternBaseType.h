#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmBaseType.h>

#include <string>

namespace Kesto {

/// Base of the composite types that files and native libraries define. A
/// datum of an extern type takes the room of one shared pointer (16 bytes).
class KESTODM_API DmExternBaseType : public DmBaseType, public DmInstanceCounter<DmExternBaseType> {
public:
    /// Passed by the library, the reader and the library's own factories to make
    /// extern types; hosts reach types through namespaces instead.
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

    ~DmExternBaseType() override;

    std::string const& getPackName() const noexcept { return m_packName; }
    void setPackName(std::string packName) { m_packName = std::move(packName); }

    unsigned int getSizeOf() const override;
    unsigned int getAlignmentOf() const override;

protected:
    DmExternBaseType(std::string name, DmTypeKind kind);

private:
    std::string m_packName;
};

} // namespace Kesto
