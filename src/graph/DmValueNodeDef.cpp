#include <KestoDM/graph/DmValueNodeDef.h>

#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include <mutex>
#include <unordered_map>

namespace Kesto {

namespace {

bool holdsConstants(DmBaseType const& type) {
    if (type.getTypeKind() == kTypeAuto) {
        return false;
    }
    if (type.getTypeKind() == kTypeArray) {
        auto const& element = static_cast<DmArrayType const&>(type).getElementType();
        return element && element->getTypeKind() != kTypeAuto;
    }
    return true;
}

// One definition per type object. The table holds them weakly: a definition
// lives while nodes or callers hold it, and holds its type through its ports,
// so a live entry's key cannot be reused by another type.
struct ValueNodeDefTable {
    std::mutex mutex;
    std::unordered_map<DmBaseType const*, std::weak_ptr<DmValueNodeDef>> entries;
    std::size_t sweepAt = 64;

    void sweep() {
        for (auto entry = entries.begin(); entry != entries.end();) {
            entry = entry->second.expired() ? entries.erase(entry) : std::next(entry);
        }
        sweepAt = std::max<std::size_t>(64, entries.size() * 2);
    }
};

ValueNodeDefTable& table() {
    static ValueNodeDefTable* const instance = new ValueNodeDefTable();
    return *instance;
}

} // namespace

std::shared_ptr<DmValueNodeDef>
DmValueNodeDef::getValueNodeDef(std::shared_ptr<DmBaseType const> const& type) {
    if (!type || !holdsConstants(*type)) {
        return nullptr;
    }
    ValueNodeDefTable& values = table();
    std::lock_guard<std::mutex> const lock(values.mutex);
    auto& slot = values.entries[type.get()];
    if (auto existing = slot.lock()) {
        return existing;
    }
    auto def = std::make_shared<DmValueNodeDef>(InternalConstructor(), type);
    slot = def;
    if (values.entries.size() >= values.sweepAt) {
        values.sweep();
    }
    return def;
}

DmValueNodeDef::DmValueNodeDef(InternalConstructor tag, std::shared_ptr<DmBaseType const> type)
    : DmNativeNodeDef(
          tag,
          [&type] {
              std::string name;
              type->resolveFullName(name);
              return name;
          }(),
          kNumKinds),
      m_type(std::move(type)) {
    // The ports go in while the definition still has fewer than two; then
    // the definition is frozen for good.
    addPortDescription(
        DmPortDescription::newPortDescription(kValuePortName, m_type, kDirectionInput, kNameVerbatim),
        kFailOnClash);
    addPortDescription(
        DmPortDescription::newPortDescription(kOutputPortName, m_type, kDirectionOutput, kNameVerbatim),
        kFailOnClash);
    getMetadata()->add(std::make_shared<DmMetadataItem>("icon", kIcon));
    makeConst();
}

DmValueNodeDef::~DmValueNodeDef() = default;

bool DmValueNodeDef::isValueNodeDef() const {
    return true;
}

} // namespace Kesto
