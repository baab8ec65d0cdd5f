#include <KestoDM/platform/RuntimeTypeInfo.h>

namespace Kesto {
namespace Internal {

namespace {

// Never destroyed: records are read from static destructors too.
UntypedTypeRep const& emptyRep() {
    static UntypedTypeRep const* const rep = new UntypedTypeRep();
    return *rep;
}

std::vector<RuntimeTypeInfo const*> const& noMembers() {
    static std::vector<RuntimeTypeInfo const*> const* const members =
        new std::vector<RuntimeTypeInfo const*>();
    return *members;
}

} // namespace

RuntimeTypeInfo::RuntimeTypeInfo(std::string mangledName)
    : m_mangledName(std::move(mangledName)), m_kind(Kind::kUnresolved) {}

UntypedTypeRep const& RuntimeTypeInfo::getUntypedTypeRep() const noexcept {
    // While unresolved, m_rep may be written by a classification on another
    // thread; only a published kind makes it safe to read.
    return getKind() == Kind::kUnresolved ? emptyRep() : m_rep;
}

RuntimeTypeInfo const* RuntimeTypeInfo::getElementType() const noexcept {
    return getKind() == Kind::kArray ? m_elementType : nullptr;
}

std::vector<RuntimeTypeInfo const*> const& RuntimeTypeInfo::getMembers() const noexcept {
    return getKind() == Kind::kStruct ? m_members : noMembers();
}

void RuntimeTypeInfo::classify(Kind kind, UntypedTypeRep rep, RuntimeTypeInfo const* elementType,
                               std::vector<RuntimeTypeInfo const*> members) {
    m_rep = std::move(rep);
    m_elementType = elementType;
    m_members = std::move(members);
    m_kind.store(kind, std::memory_order_release);
}

} // namespace Internal
} // namespace Kesto
