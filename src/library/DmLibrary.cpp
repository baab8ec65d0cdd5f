#include <KestoDM/library/DmLibrary.h>

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/platform/BaContext.h>

#include "library/DmLibraryFaults.h"

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

} // namespace Kesto
