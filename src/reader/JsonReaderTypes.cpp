// Namespaces, types with their members, and global variables of a graph file.
#include "reader/JsonReader.h"

namespace Kesto::Internal {

std::shared_ptr<DmBaseType const> JsonReader::resolveType(std::string_view, MissingType) {
    return nullptr;
}

void JsonReader::readNamespace(Value const&) {}
void JsonReader::readType(Value const&) {}
void JsonReader::readEnumMember(Value const&) {}
void JsonReader::readMethod(Value const&) {}
void JsonReader::readStructMember(Value const&) {}
void JsonReader::readGlobalVariable(Value const&) {}

} // namespace Kesto::Internal
