#pragma once

#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>

#include <type_traits>

namespace Kesto {
namespace Internal {

/// Puts values into Any: built-ins by their C++ type, enums by their int and
/// record, objects and arrays by their Ptr<void> and record. Records come
/// from the process-wide table. Not made: all static.
class KESTODM_API RuntimeAny {
public:
    RuntimeAny() = delete;

    /// An Any of built-in `value` (only the types of BuiltinType compile).
    /// An Any gives that same Any: wrapping flattens.
    template <class T>
    static Any create(T const& value) {
        if constexpr (std::is_same_v<T, Any>) {
            return value;
        } else {
            return createCopy(GlobalRttiTable::get().getBuiltin<T>(), &value);
        }
    }

    /// An enum's value, held as its int with the enum's record. Empty when
    /// `enumInfo` is null or not an enum record.
    static Any create(int value, RuntimeTypeInfo const* enumInfo);

    /// An object or an array, held as the Ptr<void> with the class's or the
    /// array's record. Empty when `classOrArrayInfo` is null or of another kind.
    static Any create(Ptr<void> const& object, RuntimeTypeInfo const* classOrArrayInfo);

    /// A copy of the value at `value`, laid out as `info`'s rep says. Empty
    /// when `info` or `value` is null, when `info` has no rep (unresolved),
    /// or when the value does not fit an Any. A value of the "any" record is
    /// an Any itself, and gives a copy of it.
    static Any createCopy(RuntimeTypeInfo const* info, void const* value);
};

} // namespace Internal
} // namespace Kesto
