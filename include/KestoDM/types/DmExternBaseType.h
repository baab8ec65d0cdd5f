#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmBaseType.h>

#include <string>

namespace Kesto {

namespace Internal {
struct ExternTypeFactory;
}

/// Base of the composite types that files and native libraries define. A
/// datum of an extern type takes the room of one shared pointer (16 bytes).
///
/// Hosts make struct, enum and class types with DmLibrary::createStructType,
/// createEnumType and createClassType; the library makes the others.
class KESTODM_API DmExternBaseType : public DmBaseType, public DmInstanceCounter<DmExternBaseType> {
public:
    /// The first argument of the extern types' constructors. Anyone may name
    /// it, so that the subclasses can take it; only the library's own type
    /// factory can make one.
    class InternalConstructor {
        friend struct Internal::ExternTypeFactory;
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
    friend struct Internal::ExternTypeFactory;

    std::string m_packName;
};

} // namespace Kesto
