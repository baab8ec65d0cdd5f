#pragma once

#include <KestoDM/platform/DmExport.h>

#include "reader/DmLiteralText.h"
#include "reader/DmRapidJson.h"

#include <memory>
#include <string>
#include <string_view>

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

/// True for kOk; else reports `text` as badly formed (an error) or out of
/// range (a warning) about `location`, and gives false.
KESTODM_API bool checkLiteral(DmMessageLogger& logger, LiteralResult result, std::string_view text,
                              std::string const& location);

/// Builds the serialization data of a class value from `node`: objects become
/// composite data, strings literal data, arrays sequences. False, reported,
/// for any other node.
KESTODM_API bool readSerializationData(DmMessageLogger& logger, rapidjson::Value const& node,
                                       SerializationData& out);

} // namespace Internal
} // namespace Kesto
