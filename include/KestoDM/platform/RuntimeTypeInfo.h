#pragma once

#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/UntypedTypeRep.h>

#include <atomic>
#include <string>
#include <vector>

namespace Kesto {
namespace Internal {

class RttiTable;

/// The record of one run-time type, keyed by its mangled name. Records are
/// made and owned only by an RttiTable, which keeps each at one address for
/// its whole life (for the process-wide table: the whole process), so code
/// compares and stores records by pointer.
///
/// A record may start unresolved, known only by a mangled name read before
/// its definition; the table classifies it once, under its lock, as a class,
/// an enum or a struct. The kind is published last, with release ordering:
/// a reader that sees a kind sees the rep and the members that belong to it,
/// and they never change again. An unresolved record has the empty rep.
class KESTODM_API RuntimeTypeInfo {
public:
    enum class Kind {
        kBuiltin,    ///< one of the fixed types of the table (numbers, any, string, ptr)
        kUnresolved, ///< known only by its mangled name, so far
        kClass,      ///< a value is a Ptr<void> to the object
        kEnum,       ///< a value is the enumerator's int
        kArray,      ///< a value is a Ptr<void> to an UntypedArray of the element type
        kStruct,     ///< a value is laid out by the struct rep given at classification
    };

    RuntimeTypeInfo(RuntimeTypeInfo const&) = delete;
    RuntimeTypeInfo& operator=(RuntimeTypeInfo const&) = delete;

    /// @name Reading
    /// @{
    Kind getKind() const noexcept { return m_kind.load(std::memory_order_acquire); }
    /// The key of the record; a built-in has a fixed short name ("int", "string", "ptr", ...).
    std::string const& getMangledName() const noexcept { return m_mangledName; }
    /// How a value of this type is held: the C++ type's rep for a built-in, the
    /// rep of Ptr<void> for a class or an array, of int for an enum, the given
    /// rep for a struct; the empty rep while unresolved.
    UntypedTypeRep const& getUntypedTypeRep() const noexcept;
    /// The element type of an array; null for every other kind.
    RuntimeTypeInfo const* getElementType() const noexcept;
    /// The member types of a struct, in order; empty for every other kind.
    std::vector<RuntimeTypeInfo const*> const& getMembers() const noexcept;
    /// @}

private:
    friend class RttiTable;

    /// An unresolved record; the table classifies it before others see it, or later.
    explicit RuntimeTypeInfo(std::string mangledName);
    /// Sets what belongs to `kind`, then publishes the kind. Called once, by
    /// the table under its lock, on an unresolved record.
    void classify(Kind kind, UntypedTypeRep rep, RuntimeTypeInfo const* elementType,
                  std::vector<RuntimeTypeInfo const*> members);

    std::string const m_mangledName;
    std::atomic<Kind> m_kind;
    UntypedTypeRep m_rep;
    RuntimeTypeInfo const* m_elementType = nullptr;
    std::vector<RuntimeTypeInfo const*> m_members;
};

} // namespace Internal
} // namespace Kesto
