#pragma once

#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>
#include <KestoDM/platform/UntypedTypeRep.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace Kesto {

class Any;
class String;
template <class T>
class Ptr;

namespace Internal {

/// The fixed types that every table has from birth, with their names.
enum class BuiltinType {
    kChar,   ///< signed char, "char"
    kUChar,  ///< unsigned char, "uchar"
    kShort,  ///< short, "short"
    kUShort, ///< unsigned short, "ushort"
    kInt,    ///< int, "int"
    kUInt,   ///< unsigned int, "uint"
    kLong,   ///< std::int64_t, "long"
    kULong,  ///< std::uint64_t, "ulong"
    kFloat,  ///< float, "float"
    kDouble, ///< double, "double"
    kBool,   ///< bool, "bool"
    kAny,    ///< Kesto::Any, "any"
    kString, ///< Kesto::String, "string"
    kPtr,    ///< Kesto::Ptr<void>, "ptr"
};
inline constexpr std::size_t kBuiltinTypeCount = 14;

/// Which built-in a C++ type is; no definition for other types, so asking for
/// one does not compile.
template <class T>
struct BuiltinTypeOf;

template <BuiltinType V>
using BuiltinTypeConstant = std::integral_constant<BuiltinType, V>;
template <>
struct BuiltinTypeOf<signed char> : BuiltinTypeConstant<BuiltinType::kChar> {};
template <>
struct BuiltinTypeOf<unsigned char> : BuiltinTypeConstant<BuiltinType::kUChar> {};
template <>
struct BuiltinTypeOf<short> : BuiltinTypeConstant<BuiltinType::kShort> {};
template <>
struct BuiltinTypeOf<unsigned short> : BuiltinTypeConstant<BuiltinType::kUShort> {};
template <>
struct BuiltinTypeOf<int> : BuiltinTypeConstant<BuiltinType::kInt> {};
template <>
struct BuiltinTypeOf<unsigned int> : BuiltinTypeConstant<BuiltinType::kUInt> {};
template <>
struct BuiltinTypeOf<std::int64_t> : BuiltinTypeConstant<BuiltinType::kLong> {};
template <>
struct BuiltinTypeOf<std::uint64_t> : BuiltinTypeConstant<BuiltinType::kULong> {};
template <>
struct BuiltinTypeOf<float> : BuiltinTypeConstant<BuiltinType::kFloat> {};
template <>
struct BuiltinTypeOf<double> : BuiltinTypeConstant<BuiltinType::kDouble> {};
template <>
struct BuiltinTypeOf<bool> : BuiltinTypeConstant<BuiltinType::kBool> {};
template <>
struct BuiltinTypeOf<Any> : BuiltinTypeConstant<BuiltinType::kAny> {};
template <>
struct BuiltinTypeOf<String> : BuiltinTypeConstant<BuiltinType::kString> {};
template <>
struct BuiltinTypeOf<Ptr<void>> : BuiltinTypeConstant<BuiltinType::kPtr> {};

/// The table of run-time type records: one record per mangled name, owned by
/// the table at a fixed address until the table dies. Made empty but for the
/// built-ins; the process-wide table is `GlobalRttiTable::get()`, and other
/// tables (made with the default constructor) are for tests and tools.
///
/// Thread-safe: one mutex guards the name map and every classification.
/// Reading a record needs no lock (see RuntimeTypeInfo), nor does getBuiltin,
/// whose records are fixed when the table is made.
///
/// Array values are held as Ptr<void> to an UntypedArray, whatever the
/// element type: copying an array value shares the array.
class KESTODM_API RttiTable {
public:
    /// @name Making
    /// @{
    RttiTable();
    ~RttiTable();
    RttiTable(RttiTable const&) = delete;
    RttiTable& operator=(RttiTable const&) = delete;
    /// @}

    /// @name Built-ins
    /// @{
    /// The record of built-in T (only the types of BuiltinType compile).
    template <class T>
    RuntimeTypeInfo const* getBuiltin() const noexcept {
        return getBuiltin(BuiltinTypeOf<std::remove_cv_t<T>>::value);
    }
    /// The record of a built-in; null for a value outside the enum.
    RuntimeTypeInfo const* getBuiltin(BuiltinType type) const noexcept;
    /// @}

    /// @name Looking up and adding
    /// @{
    /// The record of that name, or null; adds nothing.
    RuntimeTypeInfo const* find(std::string const& mangledName) const;
    /// The record of that name, added unresolved when new; null for the empty name.
    RuntimeTypeInfo const* getOrInsertMangle(std::string const& mangledName);
    /// Classifies an unresolved record of this table as a class and returns
    /// it; a class record is returned as it is. Null for null, for a record of
    /// another kind and for a record of another table.
    RuntimeTypeInfo const* getOrInsertClass(RuntimeTypeInfo const* record);
    /// As getOrInsertClass, for enums.
    RuntimeTypeInfo const* getOrInsertEnum(RuntimeTypeInfo const* record);
    /// As getOrInsertClass, for structs, with the member types in order and
    /// the struct's rep. Null also for a null member and an empty rep. A
    /// record that already is a struct is returned as it is: the members and
    /// rep given now are not used.
    RuntimeTypeInfo const* getOrInsertStruct(RuntimeTypeInfo const* record,
                                             std::vector<RuntimeTypeInfo const*> members, UntypedTypeRep rep);
    /// The one array record of `element`, named "array<" + element name + ">"
    /// (a record of that name added by getOrInsertMangle becomes it). Null
    /// for null, for an element of another table, and when the name is taken
    /// by a record of another kind.
    RuntimeTypeInfo const* getOrInsertArray(RuntimeTypeInfo const* element);
    /// The rep of an array value of elements of rep `element`: the rep of
    /// Ptr<void>, since an array value is a Ptr<void> to an UntypedArray (whose
    /// element rep is `element`). The same for every element rep.
    UntypedTypeRep getOrInsertArrayRep(UntypedTypeRep const& element) const;
    /// The number of records, built-ins included.
    std::size_t size() const;
    /// @}

private:
    /// The table's own mutable record for `record`, or null when it is not one
    /// of this table's. Needs the lock.
    RuntimeTypeInfo* ownedLocked(RuntimeTypeInfo const* record) const;
    /// Classifies `record` as `kind`, unless it is already that kind. Needs the lock.
    RuntimeTypeInfo const* classifyLocked(RuntimeTypeInfo const* record, RuntimeTypeInfo::Kind kind,
                                          UntypedTypeRep const& rep, RuntimeTypeInfo const* elementType,
                                          std::vector<RuntimeTypeInfo const*> members);
    RuntimeTypeInfo* insertLocked(std::string const& mangledName);

    mutable std::mutex m_mutex;
    std::unordered_map<std::string, std::unique_ptr<RuntimeTypeInfo>> m_records;
    RuntimeTypeInfo const* m_builtins[kBuiltinTypeCount] = {};
    UntypedTypeRep m_ptrRep;
    UntypedTypeRep m_intRep;
};

/// The process-wide RttiTable. Made on the first call (thread-safe) and never
/// destroyed, so records stay valid for static destructors of every module.
class KESTODM_API GlobalRttiTable {
public:
    GlobalRttiTable() = delete;

    static RttiTable& get();
};

} // namespace Internal
} // namespace Kesto
