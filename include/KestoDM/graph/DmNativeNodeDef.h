#pragma once

#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/platform/DmExport.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Kesto {

/// A definition that the runtime implements itself. The kinds number the
/// built-in definitions every library is born with.
class KESTODM_API DmNativeNodeDef : public DmOverload {
protected:
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    enum NativeKind : std::uint8_t {
        kIf = 0,
        kGreater = 1,
        kGreaterOrEqual = 2,
        kLess = 3,
        kLessOrEqual = 4,
        kEqual = 5,
        kNotEqual = 6,
        kArraySize = 7,
        kGetFromArray = 8,
        kFirstInArray = 9,
        kLastInArray = 10,
        kSetInArray = 11,
        kResizeArray = 12,
        kArrayDimensions = 13,
        kBuildArray = 14,
        kToTypeAny = 15,
        kFromTypeAny = 16,
        kPromote = 17,
        kPass = 18,
        kError = 19,
        kForceEval = 20,
        /// The count of kinds; also the kind of the value node definitions,
        /// which are native but none of the table.
        kNumKinds = 21,
    };

    /// A new native definition, null when `flags` refuse the name.
    static std::shared_ptr<DmNativeNodeDef> newNativeNodeDef(std::string const& name, NativeKind kind,
                                                             DmNameResolveFlags flags = kNameVerbatim);

    DmNativeNodeDef(InternalConstructor, std::string name, NativeKind kind);
    ~DmNativeNodeDef() override;

    NativeKind getNativeKind() const noexcept { return m_nativeKind; }
    bool isBuiltIn() const override;
    /// Nothing to copy: kSuccess, and `out` untouched.
    DmStatus import(std::shared_ptr<DmScope> const& scope, DmNameResolutionType type, std::string const& name,
                    std::shared_ptr<DmNodeDef>& out, ImportErrorFlags flags) override;

private:
    NativeKind m_nativeKind;
};

} // namespace Kesto
