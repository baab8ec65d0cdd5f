#pragma once

#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/UntypedTypeRep.h>

namespace Kesto {
namespace Internal {

/// Thin helpers that handle one object in raw storage through its rep, for
/// code that reads better with the rep as an argument. Not made: all static.
/// Whether destroyed storage is then zeroed is the caller's choice.
class KESTODM_API TypeManager {
public:
    TypeManager() = delete;

    /// Default-constructs an object of `rep` at `dst` (storage with no object).
    static void construct(UntypedTypeRep const& rep, void* dst);
    /// Copy-assigns the object at `src` to the live object at `dst`.
    static void copy(UntypedTypeRep const& rep, void* dst, void const* src);
    /// Copy-constructs at `dst` (storage with no object) from `src`.
    static void copyConstruct(UntypedTypeRep const& rep, void* dst, void const* src);
    /// Move-assigns `src` to the live object at `dst`; `src` stays live, moved-from.
    static void move(UntypedTypeRep const& rep, void* dst, void* src);
    /// Move-constructs at `dst` (storage with no object); `src` stays live, moved-from.
    static void moveConstruct(UntypedTypeRep const& rep, void* dst, void* src);
    /// Destroys the object at `object`, leaving storage with no object.
    static void destroy(UntypedTypeRep const& rep, void* object) noexcept;
};

} // namespace Internal
} // namespace Kesto
