#pragma once

#include <KestoDM/platform/DmExport.h>
#include <KestoDM/platform/Ptr.h>

#include <string>

namespace Kesto {
namespace Internal {

/// The function of a native library that gives a class's default object:
/// the value a variable of that class has before anything is assigned.
///
/// It is found by name in the library: the symbol is "kesto_default_"
/// followed by the class's mangled type name, with C linkage so that the name
/// is exactly that. For a class whose mangled name is "N3Geo4MeshE" the
/// library defines
///
///     extern "C" Kesto::Ptr<void> kesto_default_N3Geo4MeshE();
///
/// (exported, i.e. with default visibility) returning a Ptr to a new default
/// object, or a null Ptr when the class has no default object.
using DefaultClassFunction = Ptr<void> (*)();

/// The symbol name of the default-object function of the class with that
/// mangled name; the empty text for the empty name.
KESTODM_API std::string getDefaultClassFunction(std::string const& mangledName);

} // namespace Internal
} // namespace Kesto
