#pragma once

// The vocabulary of graph files, shared by the reader and the writer: section
// and entity keys, the spellings of enumerations, the format version, and the
// rules for names and booleans. Nothing else spells a key of the format.

#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/platform/DmExport.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Kesto::Internal::JsonFormat {

/// The version this library reads and writes, and the header item that holds it.
inline constexpr std::int64_t kFormatVersion = 100;
inline constexpr std::string_view kFormatVersionItem = "mvrkFileFormatVersion";
/// The boolean text the writer emits.
inline constexpr std::string_view kTrue = "true";
inline constexpr std::string_view kFalse = "false";

/// Sections: the numbers the walker pushes on its section stack. The first
/// eight are the root sections, walked in this order whatever the file's order.
enum Section : std::uint8_t {
    kNoSection = 0,
    kHeader = 1,
    kDependencies = 2,
    kNamespaces = 3,
    kTypes = 4,
    kGlobalVariables = 5,
    kOperators = 6,
    kTerminalNodes = 7,
    kPorts = 8,
    kJobPorts = 9,
    kCompounds = 10,
    kCompoundNodes = 11,
    kConnections = 12,
    kValues = 13,
    kWatchPoints = 14,
    kReservedNodeNames = 15,
    kStructMembers = 16,
    kEnumMembers = 17,
    kMetadata = 18,
    kMethods = 19,
    kWhileCompound = 20,
    kWhileCompoundPorts = 21,
    kIterateCompound = 22,
    kIterateCompoundPorts = 23,
    kForEachCompound = 24,
    kForEachCompoundPorts = 25,
};

/// The key of a section.
KESTODM_API std::string_view sectionKey(Section section) noexcept;

/// The root sections in reading (and writing) order.
inline constexpr Section kRootSections[] = {kHeader,          kDependencies, kNamespaces,    kTypes,
                                            kGlobalVariables, kOperators,    kTerminalNodes, kCompounds};

namespace Key {
// Sections.
inline constexpr std::string_view kHeader = "header";
inline constexpr std::string_view kDependencies = "dependencies";
inline constexpr std::string_view kNamespaces = "namespaces";
inline constexpr std::string_view kTypes = "types";
inline constexpr std::string_view kGlobalVariables = "globalVariables";
inline constexpr std::string_view kOperators = "operators";
inline constexpr std::string_view kTerminalNodes = "terminalNodes";
inline constexpr std::string_view kCompounds = "compounds";
inline constexpr std::string_view kPorts = "ports";
inline constexpr std::string_view kJobPorts = "jobPorts";
inline constexpr std::string_view kCompoundNodes = "compoundNodes";
inline constexpr std::string_view kConnections = "connections";
inline constexpr std::string_view kValues = "values";
inline constexpr std::string_view kWatchPoints = "watchPoints";
inline constexpr std::string_view kReservedNodeNames = "reservedNodeNames";
inline constexpr std::string_view kStructMembers = "structMembers";
inline constexpr std::string_view kEnumMembers = "enumMembers";
inline constexpr std::string_view kMetadata = "metadata";
inline constexpr std::string_view kMethods = "methods";
inline constexpr std::string_view kWhileCompound = "whileCompound";
inline constexpr std::string_view kIterateCompound = "iterateCompound";
inline constexpr std::string_view kForEachCompound = "forEachCompound";
// Metadata items.
inline constexpr std::string_view kMetaName = "metaName";
inline constexpr std::string_view kMetaType = "metaType";
inline constexpr std::string_view kMetaValue = "metaValue";
// Shared by several objects.
inline constexpr std::string_view kName = "name";
inline constexpr std::string_view kUri = "uri";
inline constexpr std::string_view kIsConverter = "isConverter";
inline constexpr std::string_view kIsPromoter = "isPromoter";
inline constexpr std::string_view kIsDefaultOverload = "isDefaultOverload";
inline constexpr std::string_view kOverloadsUnlocked = "overloadsUnlocked";
inline constexpr std::string_view kAssociativity = "associativity";
// Types.
inline constexpr std::string_view kStructName = "structName";
inline constexpr std::string_view kClassName = "className";
inline constexpr std::string_view kEnumName = "enumName";
inline constexpr std::string_view kMsTypeNameMangleName = "msTypeNameMangleName";
inline constexpr std::string_view kItaniumTypeNameMangleName = "itaniumTypeNameMangleName";
inline constexpr std::string_view kMemberName = "memberName";
inline constexpr std::string_view kMemberType = "memberType";
inline constexpr std::string_view kMethod = "method";
inline constexpr std::string_view kEnumKey = "enumKey";
inline constexpr std::string_view kEnumValue = "enumValue";
// Global variables.
inline constexpr std::string_view kType = "type";
inline constexpr std::string_view kDefaultValue = "defaultValue";
// Operators.
inline constexpr std::string_view kMsMangle = "msMangle";
inline constexpr std::string_view kItaniumMangle = "itaniumMangle";
inline constexpr std::string_view kResourceFileName = "resourceFileName";
inline constexpr std::string_view kCancellationPolicy = "cancellationPolicy";
inline constexpr std::string_view kInstanceNamePort = "instanceNamePort";
// Ports.
inline constexpr std::string_view kPortName = "portName";
inline constexpr std::string_view kPortDirection = "portDirection";
inline constexpr std::string_view kPortType = "portType";
inline constexpr std::string_view kPortDefaultType = "portDefaultType";
inline constexpr std::string_view kPortDefault = "portDefault";
inline constexpr std::string_view kPortIterationLimit = "portIterationLimit";
inline constexpr std::string_view kPortIterationCounter = "portIterationCounter";
inline constexpr std::string_view kPortIterationTarget = "portIterationTarget";
inline constexpr std::string_view kIsAssociative = "isAssociative";
inline constexpr std::string_view kIsDefaultFanIn = "isDefaultFanIn";
inline constexpr std::string_view kLinkedFeedbackPort = "linkedFeedbackPort";
inline constexpr std::string_view kPortAssociated = "portAssociated";
inline constexpr std::string_view kPortConvention = "portConvention";
// Compounds.
inline constexpr std::string_view kUriImported = "uriImported";
inline constexpr std::string_view kTerminalStates = "terminalStates";
inline constexpr std::string_view kEnabled = "enabled";
inline constexpr std::string_view kPortKind = "portKind";
inline constexpr std::string_view kInputPortName = "inputPortName";
inline constexpr std::string_view kOutputPortName = "outputPortName";
// Nodes, connections, values, watch points.
inline constexpr std::string_view kNodeName = "nodeName";
inline constexpr std::string_view kValueType = "valueType";
inline constexpr std::string_view kNodeType = "nodeType";
inline constexpr std::string_view kFanInPortNames = "fanInPortNames";
inline constexpr std::string_view kMultiInPortNames = "multiInPortNames";
inline constexpr std::string_view kDeactivatedTerminals = "deactivatedTerminals";
inline constexpr std::string_view kSource = "source";
inline constexpr std::string_view kTarget = "target";
inline constexpr std::string_view kValueName = "valueName";
inline constexpr std::string_view kValue = "value";
inline constexpr std::string_view kParameters = "parameters";
} // namespace Key

/// Spellings that the format reserves without giving them a use; nothing may
/// give them another meaning.
namespace Reserved {
inline constexpr std::string_view kPortTypeKind = "portTypeKind";
inline constexpr std::string_view kNotCppPort = "NotCppPort";
inline constexpr std::string_view kNative = "native";
inline constexpr std::string_view kStruct = "struct";
inline constexpr std::string_view kClass = "class";
inline constexpr std::string_view kArray = "array";
inline constexpr std::string_view kIsFanIn = "isFanIn";
inline constexpr std::string_view kMetaKey = "metaKey";
inline constexpr std::string_view kUniqueId = "unique_id";
inline constexpr std::string_view kValueNode = "valueNode";
inline constexpr std::string_view kTerminalOutput = "_terminal_output";
inline constexpr std::string_view kData = "data";
inline constexpr std::string_view kNativeMarker = "<NATIVE>";
} // namespace Reserved

/// Metadata item types.
namespace MetaType {
inline constexpr std::string_view kString = "string";
inline constexpr std::string_view kLong = "long";
inline constexpr std::string_view kDouble = "double";
inline constexpr std::string_view kBool = "bool";
} // namespace MetaType

/// Class methods a type object may name.
inline constexpr std::string_view kDeserializeMethod = "deserialize";
inline constexpr std::string_view kSerializeMethod = "serialize";
/// A prefix of Microsoft type manglings that the reader drops.
inline constexpr std::string_view kMsTypeManglePrefix = ".?A";
/// Loop port kinds.
inline constexpr std::string_view kStatePortKind = "state";
inline constexpr std::string_view kInOutTargetPortKind = "inOutTarget";

/// @name Booleans
/// A boolean key is true for "true", "TRUE" or "True" and false for any other text.
/// @{
KESTODM_API bool isTrueText(std::string_view text) noexcept;
/// @}

/// @name Enumerations
/// Each parse gives nothing for a text it does not know.
/// @{
KESTODM_API std::optional<PortDirection> parsePortDirection(std::string_view text) noexcept;
KESTODM_API std::string_view portDirectionText(PortDirection direction) noexcept;
/// kPassInvalid for an unknown text; "byPtrConstValue" reads as kPassByPtrValue.
KESTODM_API CppPassingConvention parsePassingConvention(std::string_view text) noexcept;
/// Empty for kPassInvalid.
KESTODM_API std::string_view passingConventionText(CppPassingConvention convention) noexcept;
KESTODM_API std::optional<DmNodeDef::Associativity> parseAssociativity(std::string_view text) noexcept;
/// Empty for kNotAssociative.
KESTODM_API std::string_view associativityText(DmNodeDef::Associativity associativity) noexcept;
KESTODM_API std::optional<DmExternOperator::CancellationPolicy>
parseCancellationPolicy(std::string_view text) noexcept;
KESTODM_API std::string_view cancellationPolicyText(DmExternOperator::CancellationPolicy policy) noexcept;
/// @}

/// @name Names
/// @{
/// Drops white space at both ends, and inside except between two ordinary
/// characters (letters, digits, '_'), where it stays as written:
/// " Math :: add " gives "Math::add", "array< int >" gives "array<int>".
KESTODM_API std::string normalizeName(std::string_view name);
/// A normalised type name with the two old spellings replaced, each at its
/// first occurrence: "Kesto::Object" becomes "Object", then "Kesto::FCurve"
/// becomes "Math::FCurve".
KESTODM_API std::string normalizeTypeName(std::string_view name);
/// True for a normalised type name of the array form whose innermost element
/// is "auto" ("array<array<auto>>"): no type is made of such a name.
KESTODM_API bool namesArrayOfAuto(std::string_view typeName);
/// @}

/// @name Enumeration values
/// @{
/// The integer of an `enumValue` text, converted as the standard library
/// converts a decimal int: leading white space and a sign, then digits; what
/// follows the digits is ignored. Nothing for a text without digits or outside
/// the range of 32 bits.
KESTODM_API std::optional<int> parseEnumValue(std::string_view text);
/// @}

} // namespace Kesto::Internal::JsonFormat
