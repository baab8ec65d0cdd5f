// External operators, terminal node definitions, and the ports and job ports
// of definitions.
#include "reader/JsonReader.h"

namespace Kesto::Internal {

void JsonReader::readOperator(Value const&) {}
void JsonReader::readTerminalNodeDef(Value const&) {}
void JsonReader::readPort(Value const&) {}
void JsonReader::readJobPort(Value const&) {}

DmNodeDef::Associativity JsonReader::readAssociativity(Value const&, std::string const&) const {
    return DmNodeDef::kNotAssociative;
}

bool JsonReader::hasCompatiblePorts(Value const&, DmNodeDef const&) const {
    return true;
}

void JsonReader::checkAssociativity(DmNodeDef const&) const {}

} // namespace Kesto::Internal
