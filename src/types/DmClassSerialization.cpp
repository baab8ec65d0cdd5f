#include <KestoDM/types/DmClassSerialization.h>

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaSharedLibraryManager.h>
#include <KestoDM/types/DmExternSymbol.h>

namespace Kesto {

DmClassSerialization::DmClassSerialization(std::shared_ptr<BaContext> const& context, DmMessageLogger& logger)
    : m_context(context), m_logger(&logger) {}

DmClassSerialization::DmClassSerialization(std::shared_ptr<DmExternSymbol> const& deserialize,
                                           std::shared_ptr<DmExternSymbol> const& serialize,
                                           std::shared_ptr<BaContext> const& context, DmMessageLogger& logger)
    : m_deserializeSymbol(deserialize), m_serializeSymbol(serialize), m_context(context), m_logger(&logger) {}

DmClassSerialization::~DmClassSerialization() = default;

void DmClassSerialization::setDeserializeSymbol(std::shared_ptr<DmExternSymbol> const& symbol) {
    m_deserializeSymbol = symbol;
    m_deserializeFn = nullptr;
}

void DmClassSerialization::setSerializeSymbol(std::shared_ptr<DmExternSymbol> const& symbol) {
    m_serializeSymbol = symbol;
    m_serializeFn = nullptr;
}

void* DmClassSerialization::resolveFunction(std::shared_ptr<DmExternSymbol> const& symbol,
                                            char const* word) const {
    if (!symbol) {
        return nullptr;
    }
    // Native libraries on this platform export Itanium symbols.
    std::string const& name = symbol->getMangleName(DmMangledName::kMangledNameItanium);
    if (name.empty()) {
        return nullptr;
    }
    void* const address = m_context->getSharedLibraryManager()->getSymbolAddress(name);
    if (address == nullptr) {
        m_logger->reportMessage(std::make_shared<DmMessageReport>(
            BaMessageTypes::kMessageError, std::string(), "Invalid serializer function.",
            std::string(word) + " function symbol '" + name + "' couldn't be located."));
    }
    return address;
}

Ptr<void> DmClassSerialization::invokeDeserialize(SerializationData const& data) {
    if (!m_context) {
        return Ptr<void>();
    }
    DeserializeFunction function = m_deserializeFn.load();
    if (function == nullptr) {
        function = reinterpret_cast<DeserializeFunction>(resolveFunction(m_deserializeSymbol, "Deserialize"));
        if (function == nullptr) {
            return Ptr<void>();
        }
        m_deserializeFn.store(function);
    }
    Ptr<void> object;
    if (!function(data, object)) {
        return Ptr<void>();
    }
    return object;
}

DmStatus DmClassSerialization::invokeSerialize(Ptr<void> const& object, SerializationData& data) {
    if (!object || !m_context) {
        return DmStatus::kFailure;
    }
    SerializeFunction function = m_serializeFn.load();
    if (function == nullptr) {
        function = reinterpret_cast<SerializeFunction>(resolveFunction(m_serializeSymbol, "Serialize"));
        if (function == nullptr) {
            return DmStatus::kFailure;
        }
        m_serializeFn.store(function);
    }
    data = CompositeSerializationData();
    return function(object.get(), data) ? DmStatus::kSuccess : DmStatus::kFailure;
}

} // namespace Kesto
