// Compounds and what they hold: nodes, connections, values, watch points,
// reserved names and the links of loops.
#include "reader/JsonReader.h"

namespace Kesto::Internal {

void JsonReader::readCompound(Value const&) {}
void JsonReader::readCompoundNode(Value const&) {}
void JsonReader::readConnection(Value const&) {}
void JsonReader::readValueEntry(Value const&) {}
void JsonReader::readWatchPoint(Value const&) {}
void JsonReader::readReservedNodeNames(Value const&) {}
void JsonReader::readLoopSpecialisation(Section, Value const&) {}
void JsonReader::readLoopPort(Section, Value const&) {}

} // namespace Kesto::Internal
