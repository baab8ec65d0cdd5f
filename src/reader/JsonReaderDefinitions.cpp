// External operators, terminal node definitions, and the ports and job ports
// of definitions.
#include "reader/JsonReader.h"

namespace Kesto::Internal {

void JsonReader::readOperator(Value const&) {}
void JsonReader::readTerminalNodeDef(Value const&) {}
void JsonReader::readPort(Value const&) {}
void JsonReader::readJobPort(Value const&) {}

} // namespace Kesto::Internal
