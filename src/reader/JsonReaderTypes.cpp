// Namespaces, types with their members, and global variables of a graph file.
#include "reader/JsonReader.h"

#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include <string>

namespace Kesto::Internal {

std::shared_ptr<DmBaseType const> JsonReader::resolveType(std::string_view name, MissingType missing) {
    if (m_context.library == nullptr) {
        return nullptr;
    }
    DmLibrary& library = *m_context.library;
    std::string const typeName = JsonFormat::normalizeTypeName(name);
    if (typeName.empty()) {
        return nullptr;
    }
    std::shared_ptr<DmBaseType const> found;
    if (library.retrieveType(typeName, found)) {
        return found;
    }
    switch (missing) {
    case MissingType::kNothing:
        return nullptr;
    case MissingType::kUnknown:
        // Placeholders are the support's to make; until it makes them, a
        // missing name stays missing, as without a support.
        return nullptr;
    case MissingType::kUndefined:
        break;
    }
    std::string elementName;
    if (DmLibrary::isArrayType(typeName, elementName)) {
        // The element stands in for itself; the array is the library's one of it.
        std::shared_ptr<DmBaseType const> const element = resolveType(elementName, missing);
        return element ? library.getArrayType(element) : nullptr;
    }
    std::string scope;
    std::string local;
    DmScope::resolveLocalNameAndScope(typeName, scope, local);
    std::shared_ptr<DmNamespace> const ns = library.getGlobalNamespace()->fetchNamespace(scope);
    if (local.empty() || !ns) {
        return nullptr;
    }
    auto const undefined = std::make_shared<DmUndefinedType>(local);
    if (undefined->setNamespace(ns.get(), kFailOnClash) != DmStatus::kSuccess) {
        return nullptr;
    }
    return undefined;
}

void JsonReader::readNamespace(Value const&) {}
void JsonReader::readType(Value const&) {}
void JsonReader::readEnumMember(Value const&) {}
void JsonReader::readMethod(Value const&) {}
void JsonReader::readStructMember(Value const&) {}
void JsonReader::readGlobalVariable(Value const&) {}

} // namespace Kesto::Internal
