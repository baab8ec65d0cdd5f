#pragma once

#include <KestoDM/platform/DmExport.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include <memory>

namespace Kesto {
namespace Internal {

/// The process-wide type singletons, shared by every library. Each is made on
/// first call (thread-safe), const from birth, and lives until process exit.
/// DmLibrary hands them out; the type and value layers reach them here.
/// Puts the process-wide types into the built-in and reserved namespaces, once
/// per process. Defined by the library, which owns those namespaces; code that
/// takes a singleton here calls it first, so it never sees a type unplaced.
KESTODM_API void placeProcessTypes();

/// A process-wide type, placed in its namespace.
template <class T>
std::shared_ptr<T> const& placed(std::shared_ptr<T> const& type) {
    placeProcessTypes();
    return type;
}

struct KESTODM_API TypeSingletons {
    static std::shared_ptr<DmAutoType> const& autoType();
    static std::shared_ptr<DmBoolType> const& boolType();
    static std::shared_ptr<DmCharType> const& charType();
    static std::shared_ptr<DmUCharType> const& ucharType();
    static std::shared_ptr<DmShortType> const& shortType();
    static std::shared_ptr<DmUShortType> const& ushortType();
    static std::shared_ptr<DmIntType> const& intType();
    static std::shared_ptr<DmUIntType> const& uintType();
    static std::shared_ptr<DmLongType> const& longType();
    static std::shared_ptr<DmULongType> const& ulongType();
    static std::shared_ptr<DmFloatType> const& floatType();
    static std::shared_ptr<DmDoubleType> const& doubleType();
    static std::shared_ptr<DmAnyType> const& anyType();
    static std::shared_ptr<DmArrayType> const& arrayOfAnyType();
    static std::shared_ptr<DmStringType> const& stringType();
    static std::shared_ptr<DmUndefinedType> const& undefinedType();
    static std::shared_ptr<DmClassType> const& runtimeServicesType();
    static std::shared_ptr<DmClassType> const& typeRegistryType();
};

} // namespace Internal
} // namespace Kesto
