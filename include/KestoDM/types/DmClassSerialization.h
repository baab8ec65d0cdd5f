#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/SerializationData.h>

#include <atomic>
#include <memory>
#include <string>

namespace Kesto {

class BaContext;
class DmExternSymbol;
class DmMessageLogger;

/// Turns objects of a native class into SerializationData and back through two
/// native functions, found by symbol in the context's shared libraries:
///
///     bool deserialize(Kesto::SerializationData const& data, Kesto::Ptr<void>& object);
///     bool serialize(void* object, Kesto::SerializationData& data);
///
/// A function found is kept; one that cannot be found is reported to the
/// logger each time it is looked for. The cache is atomic but not locked: a
/// race between two threads only repeats the lookup.
class KESTODM_API DmClassSerialization : public DmInstanceCounter<DmClassSerialization> {
public:
    using DeserializeFunction = bool (*)(SerializationData const&, Ptr<void>&);
    using SerializeFunction = bool (*)(void*, SerializationData&);

    DmClassSerialization(std::shared_ptr<BaContext> const& context, DmMessageLogger& logger);
    DmClassSerialization(std::shared_ptr<DmExternSymbol> const& deserialize,
                         std::shared_ptr<DmExternSymbol> const& serialize,
                         std::shared_ptr<BaContext> const& context, DmMessageLogger& logger);
    ~DmClassSerialization();

    /// @name Symbols
    /// Setting a symbol forgets the function found for the old one.
    /// @{
    std::shared_ptr<DmExternSymbol> const& getDeserializeSymbol() const noexcept {
        return m_deserializeSymbol;
    }
    void setDeserializeSymbol(std::shared_ptr<DmExternSymbol> const& symbol);
    std::shared_ptr<DmExternSymbol> const& getSerializeSymbol() const noexcept { return m_serializeSymbol; }
    void setSerializeSymbol(std::shared_ptr<DmExternSymbol> const& symbol);
    /// @}

    /// @name Calls
    /// @{
    /// The object the data describes, or null (no context, no function, or refused).
    Ptr<void> invokeDeserialize(SerializationData const& data);
    /// Resets `data` to an empty composite and lets the native function fill it.
    /// kFailure without object, context or function, or when the function refuses.
    DmStatus invokeSerialize(Ptr<void> const& object, SerializationData& data);
    /// @}

private:
    void* resolveFunction(std::shared_ptr<DmExternSymbol> const& symbol, char const* word) const;

    std::shared_ptr<DmExternSymbol> m_deserializeSymbol;
    std::shared_ptr<DmExternSymbol> m_serializeSymbol;
    std::shared_ptr<BaContext> m_context;
    DmMessageLogger* m_logger;
    std::atomic<DeserializeFunction> m_deserializeFn{nullptr};
    std::atomic<SerializeFunction> m_serializeFn{nullptr};
};

} // namespace Kesto
