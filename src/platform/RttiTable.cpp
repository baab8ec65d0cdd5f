#include <KestoDM/platform/RttiTable.h>

#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/String.h>

#include <utility>

namespace Kesto {
namespace Internal {

namespace {

using Kind = RuntimeTypeInfo::Kind;

struct BuiltinEntry {
    BuiltinType type;
    char const* name;
    UntypedTypeRep (*rep)();
};

// In the order of BuiltinType.
BuiltinEntry const kBuiltins[kBuiltinTypeCount] = {
    {BuiltinType::kChar, "char", &UntypedTypeRep::of<signed char>},
    {BuiltinType::kUChar, "uchar", &UntypedTypeRep::of<unsigned char>},
    {BuiltinType::kShort, "short", &UntypedTypeRep::of<short>},
    {BuiltinType::kUShort, "ushort", &UntypedTypeRep::of<unsigned short>},
    {BuiltinType::kInt, "int", &UntypedTypeRep::of<int>},
    {BuiltinType::kUInt, "uint", &UntypedTypeRep::of<unsigned int>},
    {BuiltinType::kLong, "long", &UntypedTypeRep::of<std::int64_t>},
    {BuiltinType::kULong, "ulong", &UntypedTypeRep::of<std::uint64_t>},
    {BuiltinType::kFloat, "float", &UntypedTypeRep::of<float>},
    {BuiltinType::kDouble, "double", &UntypedTypeRep::of<double>},
    {BuiltinType::kBool, "bool", &UntypedTypeRep::of<bool>},
    {BuiltinType::kAny, "any", &UntypedTypeRep::of<Any>},
    {BuiltinType::kString, "string", &UntypedTypeRep::of<String>},
    {BuiltinType::kPtr, "ptr", &UntypedTypeRep::of<Ptr<void>>},
};

} // namespace

RttiTable::RttiTable() : m_ptrRep(UntypedTypeRep::of<Ptr<void>>()), m_intRep(UntypedTypeRep::of<int>()) {
    for (BuiltinEntry const& entry : kBuiltins) {
        RuntimeTypeInfo* const record = insertLocked(entry.name);
        record->classify(Kind::kBuiltin, entry.rep(), nullptr, {});
        m_builtins[static_cast<std::size_t>(entry.type)] = record;
    }
}

RttiTable::~RttiTable() = default;

RuntimeTypeInfo const* RttiTable::getBuiltin(BuiltinType type) const noexcept {
    auto const index = static_cast<std::size_t>(type);
    return index < kBuiltinTypeCount ? m_builtins[index] : nullptr;
}

RuntimeTypeInfo const* RttiTable::find(std::string const& mangledName) const {
    std::lock_guard<std::mutex> const lock(m_mutex);
    auto const found = m_records.find(mangledName);
    return found != m_records.end() ? found->second.get() : nullptr;
}

RuntimeTypeInfo const* RttiTable::getOrInsertMangle(std::string const& mangledName) {
    if (mangledName.empty()) {
        return nullptr;
    }
    std::lock_guard<std::mutex> const lock(m_mutex);
    return insertLocked(mangledName);
}

RuntimeTypeInfo const* RttiTable::getOrInsertClass(RuntimeTypeInfo const* record) {
    std::lock_guard<std::mutex> const lock(m_mutex);
    return classifyLocked(record, Kind::kClass, m_ptrRep, nullptr, {});
}

RuntimeTypeInfo const* RttiTable::getOrInsertEnum(RuntimeTypeInfo const* record) {
    std::lock_guard<std::mutex> const lock(m_mutex);
    return classifyLocked(record, Kind::kEnum, m_intRep, nullptr, {});
}

RuntimeTypeInfo const* RttiTable::getOrInsertStruct(RuntimeTypeInfo const* record,
                                                    std::vector<RuntimeTypeInfo const*> members,
                                                    UntypedTypeRep rep) {
    if (!rep.isValid()) {
        return nullptr;
    }
    std::lock_guard<std::mutex> const lock(m_mutex);
    for (RuntimeTypeInfo const* member : members) {
        if (ownedLocked(member) == nullptr) {
            return nullptr; // null, or not a record of this table
        }
    }
    return classifyLocked(record, Kind::kStruct, rep, nullptr, std::move(members));
}

RuntimeTypeInfo const* RttiTable::getOrInsertArray(RuntimeTypeInfo const* element) {
    std::lock_guard<std::mutex> const lock(m_mutex);
    if (ownedLocked(element) == nullptr) {
        return nullptr;
    }
    RuntimeTypeInfo* const record = insertLocked("array<" + element->getMangledName() + ">");
    return classifyLocked(record, Kind::kArray, m_ptrRep, element, {});
}

UntypedTypeRep RttiTable::getOrInsertArrayRep(UntypedTypeRep const&) const {
    return m_ptrRep;
}

std::size_t RttiTable::size() const {
    std::lock_guard<std::mutex> const lock(m_mutex);
    return m_records.size();
}

RuntimeTypeInfo* RttiTable::ownedLocked(RuntimeTypeInfo const* record) const {
    if (record == nullptr) {
        return nullptr;
    }
    auto const found = m_records.find(record->getMangledName());
    return found != m_records.end() && found->second.get() == record ? found->second.get() : nullptr;
}

RuntimeTypeInfo const* RttiTable::classifyLocked(RuntimeTypeInfo const* record, Kind kind,
                                                 UntypedTypeRep const& rep,
                                                 RuntimeTypeInfo const* elementType,
                                                 std::vector<RuntimeTypeInfo const*> members) {
    RuntimeTypeInfo* const owned = ownedLocked(record);
    if (owned == nullptr) {
        return nullptr;
    }
    Kind const current = owned->getKind();
    if (current == kind) {
        return owned; // classified before: the first classification stands
    }
    if (current != Kind::kUnresolved) {
        return nullptr;
    }
    owned->classify(kind, rep, elementType, std::move(members));
    return owned;
}

RuntimeTypeInfo* RttiTable::insertLocked(std::string const& mangledName) {
    auto& slot = m_records[mangledName];
    if (slot == nullptr) {
        slot.reset(new RuntimeTypeInfo(mangledName));
    }
    return slot.get();
}

RttiTable& GlobalRttiTable::get() {
    // Never destroyed: Any values and records are used from static
    // destructors of every module. The static pointer keeps the table
    // reachable, so leak checkers do not count it.
    static RttiTable* const table = new RttiTable();
    return *table;
}

} // namespace Internal
} // namespace Kesto
