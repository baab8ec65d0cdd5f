#include <KestoDM/library/DmLibrary.h>

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/platform/BaContext.h>

#include "library/DmLibraryFaults.h"
#include "types/DmTypeSingletons.h"

#include <atomic>

namespace Kesto {

namespace Internal {

namespace {
std::atomic<bool> s_failInitialization{false};
} // namespace

void setFailLibraryInitialization(bool fail) noexcept {
    s_failInitialization.store(fail);
}

bool shouldFailLibraryInitialization() noexcept {
    return s_failInitialization.load();
}

} // namespace Internal

std::shared_ptr<DmLibrary> DmLibrary::newLibrary(std::shared_ptr<BaContext> context,
                                                 std::ostream* errorStream,
                                                 DmExternOperator::CancellationPolicy policy) {
    // One allocation for the library and its shared count; make_shared also
    // connects shared_from_this before initialize runs.
    auto library = std::make_shared<DmLibrary>(InternalConstructor(), std::move(context), policy);
    if (!library->initialize(errorStream)) {
        library->m_errorLogger->reportMessage(std::make_shared<DmMessageReport>(
            BaMessageTypes::kMessageError, std::string(), "the library could not be initialized",
            "library initialization failed"));
    }
    return library;
}

DmLibrary::DmLibrary(InternalConstructor, std::shared_ptr<BaContext> context,
                     DmExternOperator::CancellationPolicy policy)
    : m_context(std::move(context)), m_defaultCancellationPolicy(policy) {}

DmLibrary::~DmLibrary() {
    if (m_errorLogger) {
        m_errorLogger->printAndClearMessages();
    }
}

bool DmLibrary::initialize(std::ostream* errorStream) {
    m_errorLogger = std::make_shared<DmMessageLogger>(errorStream);
    return !Internal::shouldFailLibraryInitialization();
}

std::shared_ptr<DmAnyType> const& DmLibrary::getAnyType() {
    return Internal::TypeSingletons::anyType();
}

std::shared_ptr<DmArrayType> const& DmLibrary::getArrayOfAnyType() {
    return Internal::TypeSingletons::arrayOfAnyType();
}

std::shared_ptr<DmAutoType> const& DmLibrary::getAutoType() {
    return Internal::TypeSingletons::autoType();
}

std::shared_ptr<DmBoolType> const& DmLibrary::getBoolType() {
    return Internal::TypeSingletons::boolType();
}

std::shared_ptr<DmCharType> const& DmLibrary::getCharType() {
    return Internal::TypeSingletons::charType();
}

std::shared_ptr<DmUCharType> const& DmLibrary::getUCharType() {
    return Internal::TypeSingletons::ucharType();
}

std::shared_ptr<DmShortType> const& DmLibrary::getShortType() {
    return Internal::TypeSingletons::shortType();
}

std::shared_ptr<DmUShortType> const& DmLibrary::getUShortType() {
    return Internal::TypeSingletons::ushortType();
}

std::shared_ptr<DmIntType> const& DmLibrary::getIntType() {
    return Internal::TypeSingletons::intType();
}

std::shared_ptr<DmUIntType> const& DmLibrary::getUIntType() {
    return Internal::TypeSingletons::uintType();
}

std::shared_ptr<DmLongType> const& DmLibrary::getLongType() {
    return Internal::TypeSingletons::longType();
}

std::shared_ptr<DmULongType> const& DmLibrary::getULongType() {
    return Internal::TypeSingletons::ulongType();
}

std::shared_ptr<DmFloatType> const& DmLibrary::getFloatType() {
    return Internal::TypeSingletons::floatType();
}

std::shared_ptr<DmDoubleType> const& DmLibrary::getDoubleType() {
    return Internal::TypeSingletons::doubleType();
}

std::shared_ptr<DmStringType> const& DmLibrary::getStringType() {
    return Internal::TypeSingletons::stringType();
}

std::shared_ptr<DmUndefinedType> const& DmLibrary::getUndefinedType() {
    return Internal::TypeSingletons::undefinedType();
}

std::shared_ptr<DmClassType> const& DmLibrary::getRuntimeServicesType() {
    return Internal::TypeSingletons::runtimeServicesType();
}

std::shared_ptr<DmClassType> const& DmLibrary::getTypeRegistryType() {
    return Internal::TypeSingletons::typeRegistryType();
}

} // namespace Kesto
