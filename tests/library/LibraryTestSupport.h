#pragma once

#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include <memory>
#include <ostream>
#include <string>

namespace KestoTest {

/// A library of its own context that allows safe external operators; it
/// writes its messages to `stream` when one is given.
inline std::shared_ptr<Kesto::DmLibrary> makeLibrary(std::ostream* stream = nullptr) {
    return Kesto::DmLibrary::newLibrary(std::make_shared<Kesto::BaContext>(), stream,
                                        Kesto::DmExternOperator::kSafe);
}

/// The namespace at `path` below the library's global namespace, made if it
/// is missing; "" is the global namespace itself.
inline Kesto::DmNamespace* namespaceAt(Kesto::DmLibrary& library, std::string const& path) {
    return library.getGlobalNamespace()->fetchNamespace(path).get();
}

} // namespace KestoTest
