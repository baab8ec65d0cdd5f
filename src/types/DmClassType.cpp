#include <KestoDM/types/DmClassType.h>

#include <KestoDM/types/DmClassValue.h>

#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaSharedLibraryManager.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/types/DmClassSerialization.h>

namespace Kesto {

Ptr<void> const DmClassType::s_nullPtr;

DmClassType::CppClassInfo::CppClassInfo(std::shared_ptr<DmClassSerialization> serializer,
                                        std::shared_ptr<BaContext> context)
    : m_serializer(std::move(serializer)), m_context(std::move(context)) {}

DmClassType::DmClassType(InternalConstructor, std::string const& name) : DmExternBaseType(name, kTypeClass) {}

DmClassType::~DmClassType() = default;

void DmClassType::initDefaultObject() const {
    std::shared_ptr<BaContext> const& context = m_cppClassInfo.getContext();
    std::string const& mangled = getTypeNameMangleName().getPlatformName();
    if (!context || mangled.empty()) {
        return;
    }
    std::string const symbol = Internal::getDefaultClassFunction(mangled);
    void* const address = context->getSharedLibraryManager()->getSymbolAddress(symbol);
    m_defaultFn = reinterpret_cast<Internal::DefaultClassFunction>(address);
}

Internal::DefaultClassFunction DmClassType::getDefaultFn() const {
    std::call_once(m_defaultFnOnce, [this] { initDefaultObject(); });
    return m_defaultFn;
}

Ptr<void> DmClassType::getDefaultObject() const {
    Internal::DefaultClassFunction const function = getDefaultFn();
    return function != nullptr ? function() : s_nullPtr;
}

Ptr<void> DmClassType::createObject() const {
    return getDefaultObject();
}

Internal::UntypedTypeRep DmClassType::getUntypedTypeRep() const {
    return Internal::UntypedTypeRep::of<Ptr<void>>();
}

Internal::RuntimeTypeInfo const* DmClassType::getRuntimeTypeInfo() const {
    std::string const& mangled = getTypeNameMangleName().getPlatformName();
    if (mangled.empty() || getDefaultFn() == nullptr) {
        return nullptr;
    }
    Internal::RttiTable& table = Internal::GlobalRttiTable::get();
    return table.getOrInsertClass(table.getOrInsertMangle(mangled));
}

std::shared_ptr<DmBaseValue> DmClassType::createValue() const {
    return std::make_shared<DmClassValue>(std::static_pointer_cast<DmClassType const>(shared_from_this()));
}

std::shared_ptr<DmBaseValue> DmClassType::createDefaultValue() const {
    return std::make_shared<DmClassValue>(std::static_pointer_cast<DmClassType const>(shared_from_this()),
                                          getDefaultObject());
}

std::shared_ptr<DmBaseValue>
DmClassType::createMemberValue(std::shared_ptr<unsigned char const> const& buffer) const {
    return std::make_shared<DmClassValue>(std::static_pointer_cast<DmClassType const>(shared_from_this()),
                                          buffer);
}

} // namespace Kesto
