#pragma once

#include <KestoDM/platform/DmExport.h>

#include <string>
#include <string_view>

namespace Kesto {
namespace Internal {

/// Names of entities. A legal name is not empty, starts with an ASCII letter
/// or '_', and goes on with ASCII letters, digits or '_' only.
struct KESTODM_API NamingSupport {
    static bool isLegalName(std::string_view name);

    /// Assigns `out` the legal form of `in`: every other byte becomes '_', and
    /// a leading digit gets a '_' before it. A name without any ASCII letter,
    /// digit or '_' (the empty name included) has no legal form: `out` is
    /// then empty.
    static void getLegalName(std::string_view in, std::string& out);
};

} // namespace Internal
} // namespace Kesto
