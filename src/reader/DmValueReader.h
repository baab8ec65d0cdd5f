#pragma once

#include <KestoDM/platform/DmExport.h>

#include "reader/DmRapidJson.h"

#include <memory>

namespace Kesto {

class DmBaseValue;
class DmMessageLogger;
class SerializationData;

namespace Internal {

/// Fills `value` from the JSON node `node` of a graph file, by the kind of the
/// value's type; the value is marked as set. False, with the reason in
/// `logger`, when the node does not read as such a value.
KESTODM_API bool readValue(DmMessageLogger& logger, rapidjson::Value const& node,
                           std::shared_ptr<DmBaseValue> const& value);

/// Builds the serialization data of a class value from `node`: objects become
/// composite data, strings literal data, arrays sequences. False, reported,
/// for any other node.
KESTODM_API bool readSerializationData(DmMessageLogger& logger, rapidjson::Value const& node,
                                       SerializationData& out);

} // namespace Internal
} // namespace Kesto
