#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DefaultClassFunction.h>
#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/types/DmExternBaseType.h>

#include <memory>
#include <mutex>
#include <string>

namespace Kesto {

class BaContext;
class DmClassSerialization;

/// A native class, known by name and mangled name. A datum is a Ptr<void> to
/// an object. The class's default object comes from a native function found
/// through the context's shared libraries (see Internal::getDefaultClassFunction);
/// it is looked up at most once per type, safely from any thread.
class KESTODM_API DmClassType : public DmExternBaseType, public DmInstanceCounter<DmClassType> {
public:
    /// How the class is reached natively: its serializer and the context whose
    /// shared libraries hold its functions.
    class KESTODM_API CppClassInfo {
    public:
        CppClassInfo() = default;
        CppClassInfo(std::shared_ptr<DmClassSerialization> serializer, std::shared_ptr<BaContext> context);

        std::shared_ptr<DmClassSerialization> const& getSerializer() const noexcept { return m_serializer; }
        std::shared_ptr<BaContext> const& getContext() const noexcept { return m_context; }

    private:
        std::shared_ptr<DmClassSerialization> m_serializer;
        std::shared_ptr<BaContext> m_context;
    };

    DmClassType(InternalConstructor, std::string const& name);
    ~DmClassType() override;

    /// @name Native side
    /// @{
    CppClassInfo const& getCppClassInfo() const noexcept { return m_cppClassInfo; }
    CppClassInfo& getCppClassInfo() noexcept { return m_cppClassInfo; }
    /// Set before the default object is first asked for: the lookup happens once.
    void setCppClassInfo(CppClassInfo&& info) { m_cppClassInfo = std::move(info); }
    /// The function that makes the default object, or null.
    Internal::DefaultClassFunction getDefaultFn() const;
    /// The default object, or a null pointer without a default function.
    Ptr<void> getDefaultObject() const;
    /// A new object from the same source as the default object.
    Ptr<void> createObject() const;
    /// @}

    Internal::UntypedTypeRep getUntypedTypeRep() const override;
    /// Null without a mangled name or a default function.
    Internal::RuntimeTypeInfo const* getRuntimeTypeInfo() const override;

    /// @name Values
    /// @{
    /// A class value with no object.
    std::shared_ptr<DmBaseValue> createValue() const override;
    /// A class value holding the default object, still implicit.
    std::shared_ptr<DmBaseValue> createDefaultValue() const override;
    std::shared_ptr<DmBaseValue>
    createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const override;
    /// @}

private:
    void initDefaultObject() const;

    static Ptr<void> const s_nullPtr;

    CppClassInfo m_cppClassInfo;
    mutable std::once_flag m_defaultFnOnce;
    mutable Internal::DefaultClassFunction m_defaultFn = nullptr;
};

} // namespace Kesto
