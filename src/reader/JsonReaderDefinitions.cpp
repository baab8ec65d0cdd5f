// External operators, terminal node definitions, and the ports and job ports
// of definitions.
#include "reader/JsonReader.h"

#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmCppOperator.h>
#include <KestoDM/graph/DmLoopingCompound.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaMessageTypes.h>
#include <KestoDM/platform/NamingSupport.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include "reader/DmValueReader.h"

#include <string>
#include <utility>

namespace Kesto::Internal {

namespace {

using Value = rapidjson::Value;

std::string fullNameOf(DmNamedEntity const& entity) {
    std::string out;
    entity.resolveFullName(out);
    return out;
}

/// A value that says something: anything but null, an empty string, an
/// empty list or an empty object.
bool isNonEmpty(Value const* value) noexcept {
    if (value == nullptr || value->IsNull()) {
        return false;
    }
    if (value->IsString()) {
        return value->GetStringLength() != 0;
    }
    if (value->IsArray()) {
        return !value->Empty();
    }
    if (value->IsObject()) {
        return value->MemberCount() != 0;
    }
    return true;
}

/// The innermost element type of an array type, or the type itself.
DmBaseType const* innermost(DmBaseType const* type) {
    while (auto const array = dynamic_cast<DmArrayType const*>(type)) {
        type = array->getElementType().get();
    }
    return type;
}

bool hasKind(std::shared_ptr<DmBaseType const> const& type, DmTypeKind kind) {
    DmBaseType const* const inner = innermost(type.get());
    return inner != nullptr && inner->getTypeKind() == kind;
}

/// True for a type name of the file that names an array of auto.
bool namesArrayOfAuto(std::string_view text) {
    return JsonFormat::namesArrayOfAuto(JsonFormat::normalizeTypeName(text));
}

/// The URI text of the definitions that hold a name in a scope: that of the
/// first overload that has one, else the set's own.
std::string uriTextOf(DmOverloadSet const& set) {
    for (auto const& overload : set.getOverloads()) {
        if (overload && overload->getURI()) {
            return overload->getURI()->getName();
        }
    }
    return set.getURI() ? set.getURI()->getName() : std::string();
}

} // namespace

// ---------------------------------------------------------------------------
// Shared by operators and compounds

DmNodeDef::Associativity JsonReader::readAssociativity(Value const& object, std::string const& name) const {
    std::string_view const text = stringOf(object, JsonFormat::Key::kAssociativity);
    if (text.empty()) {
        return DmNodeDef::kNotAssociative;
    }
    if (auto const associativity = JsonFormat::parseAssociativity(text)) {
        return *associativity;
    }
    report(BaMessageTypes::kMessageError, "Invalid associativity constant.",
           "the node '" + name +
               "' has an invalid associativity annotation. It must be one of leftToRight or rightToLeft.");
    return DmNodeDef::kNotAssociative;
}

bool JsonReader::hasCompatiblePorts(Value const& object, DmNodeDef const& existing) const {
    DmPortsInterface const& ports = existing.getPortsInterface();
    Value const* const list = member(object, JsonFormat::Key::kPorts);
    if (list == nullptr) {
        return ports.size() == 0;
    }
    if (list->IsObject()) {
        // One object is a list of one.
        if (ports.size() != 1) {
            return false;
        }
    } else if (!list->IsArray() || list->Size() != ports.size()) {
        return false;
    }
    auto port = ports.begin();
    auto const matches = [&](Value const& entry) {
        if (!entry.IsObject() || port == ports.end()) {
            return false;
        }
        DmPortDescription const& existingPort = *port->second;
        ++port;
        auto const direction =
            JsonFormat::parsePortDirection(stringOf(entry, JsonFormat::Key::kPortDirection));
        return JsonFormat::normalizeName(stringOf(entry, JsonFormat::Key::kPortName)) ==
                   existingPort.getName() &&
               direction.value_or(kDirectionUnset) == existingPort.getDirection();
    };
    if (list->IsObject()) {
        return matches(*list);
    }
    for (Value const& entry : list->GetArray()) {
        if (!matches(entry)) {
            return false;
        }
    }
    return true;
}

void JsonReader::warnOfIncompatibleOverload(Value const& object, DmScope const& scope,
                                            std::string const& local, std::string const& kind,
                                            std::string const& name) const {
    std::shared_ptr<DmOverloadSet> existing;
    if (m_context.nameResolution == kMakeUnique || !scope.findNodeDef(local, existing) || !existing ||
        existing->empty() || hasCompatiblePorts(object, *existing)) {
        return;
    }
    report(BaMessageTypes::kMessageWarning, "Invalid overload ports interface.",
           kind + " '" + name + "' defined in '" + location() +
               "' has incompatible ports interface with existing definition from '" + uriTextOf(*existing) +
               "'.");
}

void JsonReader::checkAssociativity(DmNodeDef const& definition) const {
    int associative = 0;
    int outputs = 0;
    for (auto const& entry : definition.getPortsInterface()) {
        associative += entry.second->isAssociative() ? 1 : 0;
        outputs += entry.second->isOutput() ? 1 : 0;
    }
    if (associative == 0) {
        return;
    }
    std::string const name = fullNameOf(definition);
    if (definition.associativity() == DmNodeDef::kNotAssociative) {
        report(BaMessageTypes::kMessageWarning, "Invalid associative node definition.",
               "Associative node '" + name +
                   "' does not declare if associativity is leftToRight or rightToLeft.");
    }
    if (associative != 2) {
        report(BaMessageTypes::kMessageWarning, "Invalid associative node definition.",
               "Associative node '" + name + "' must have exactly two associative ports.");
    }
    if (outputs != 1) {
        report(BaMessageTypes::kMessageWarning, "Invalid associative node definition.",
               "Associative node '" + name + "' must have exactly one output port.");
    }
}

// ---------------------------------------------------------------------------
// Operators

void JsonReader::readOperator(Value const& object) {
    if (m_context.library == nullptr || (m_pass != 2 && m_pass != 3)) {
        return;
    }
    std::string const name = JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kName));
    if (name.empty()) {
        if (m_pass == 2) {
            // The title names compounds: the words of the format's first readers.
            report(BaMessageTypes::kMessageWarning, "Missing compound external operator name.",
                   "External operator needs to have at least a name.");
        }
        return;
    }
    if (m_pass == 3) {
        // Pass 2 queued one entry for each named object, in this order.
        std::shared_ptr<DmExternOperator> const definition = m_operators.next();
        if (!definition) {
            return;
        }
        walkPortsAgain(definition, object);
        return;
    }

    DmLibrary& library = *m_context.library;
    std::string scope;
    std::string local;
    DmScope::resolveLocalNameAndScope(name, scope, local);
    if (!NamingSupport::isLegalName(local)) {
        report(BaMessageTypes::kMessageWarning, "Illegal operator name",
               "The operator \"" + name + "\" has an illegal name.");
    }

    DmExternOperator::CancellationPolicy policy = library.getDefaultCancellationPolicy();
    std::string_view const policyText = stringOf(object, JsonFormat::Key::kCancellationPolicy);
    if (!policyText.empty()) {
        if (auto const parsed = JsonFormat::parseCancellationPolicy(policyText)) {
            policy = *parsed;
        } else {
            report(BaMessageTypes::kMessageError, "Invalid cancellation policy.",
                   "the node '" + name + "' has an invalid cancellation policy annotation '" +
                       std::string(policyText) +
                       "'. It must be one of 'None', 'Safe' or 'Unsafe'. Using default.");
        }
    }

    std::shared_ptr<DmCppOperator> const definition = DmCppOperator::createCppOperator(local, policy);
    std::shared_ptr<DmNamespace> const ns = library.getGlobalNamespace()->fetchNamespace(scope);
    if (!definition || !ns) {
        // Only an empty local name ("a::") makes nothing; it was reported as illegal.
        m_operators.push(nullptr);
        return;
    }
    definition->setAssociativity(readAssociativity(object, name));
    definition->initialize();
    definition->setURI(m_context.uri);

    warnOfIncompatibleOverload(object, *ns, local, "Operator", name);
    // A refused placement (a taken name under kFailOnClash) leaves the
    // operator out of the library; its ports are still read, and it goes
    // with the reader.
    static_cast<void>(definition->setScope(ns.get(), m_context.nameResolution));

    bool present = false;
    bool const converter = booleanOf(object, JsonFormat::Key::kIsConverter, &present);
    if (present) {
        definition->setConverter(converter);
    }
    bool const promoter = booleanOf(object, JsonFormat::Key::kIsPromoter, &present);
    if (present) {
        definition->setPromoter(promoter);
    }
    bool const isDefault = booleanOf(object, JsonFormat::Key::kIsDefaultOverload, &present);
    if (present) {
        static_cast<void>(definition->setIsDefaultOverload(isDefault));
    }
    bool const unlocked = booleanOf(object, JsonFormat::Key::kOverloadsUnlocked, &present);
    if (present) {
        static_cast<void>(definition->setOverloadsLocked(!unlocked));
    }

    std::string_view const microsoft = stringOf(object, JsonFormat::Key::kMsMangle);
    if (microsoft.empty()) {
        // The missing full stop is the message as users know it.
        report(BaMessageTypes::kMessageInfo, "Missing mangled name",
               "The external operator '" + name + "' does not have a MSVC mangled name.");
        definition->setMangleNameDeclared(DmMangledName::kMangledNameMicrosoft, false);
    }
    std::string_view const itanium = stringOf(object, JsonFormat::Key::kItaniumMangle);
    if (itanium.empty()) {
        report(BaMessageTypes::kMessageInfo, "Missing mangled name.",
               "The external operator '" + name + "' does not have an Itanium mangled name.");
        definition->setMangleNameDeclared(DmMangledName::kMangledNameItanium, false);
    }
    definition->setMangleName(DmMangledName::kMangledNameMicrosoft, std::string(microsoft));
    definition->setMangleName(DmMangledName::kMangledNameItanium, std::string(itanium));
    definition->setResourceFileName(std::string(stringOf(object, JsonFormat::Key::kResourceFileName)));

    m_entities.push_back(definition);
    m_definitions.push_back(definition);
    m_operators.push(definition);

    if (JsonReader::isList(member(object, JsonFormat::Key::kPorts))) {
        walkList(object, JsonFormat::Key::kPorts, JsonFormat::kPorts);
    } else {
        report(BaMessageTypes::kMessageWarning, "Missing external operator port interface.",
               "The external operator '" + name + "' does not have a port interface.");
    }
    checkAssociativity(*definition);
    walkListOrWarn(object, JsonFormat::Key::kMetadata, JsonFormat::kMetadata, "Incorrect metadata format.",
                   "The external operator '" + name + "' has an incorrect metadata format.");
    walkListOrWarn(object, JsonFormat::Key::kJobPorts, JsonFormat::kJobPorts, "Incorrect job port format.",
                   "The external operator '" + name + "' has an incorrect job port format.");
    if (isNonEmpty(member(object, JsonFormat::Key::kInstanceNamePort))) {
        report(
            BaMessageTypes::kMessageWarning, "InstanceNamePort no longer supported",
            "InstanceNamePort no longer supported, please recompile your external operators without it. You "
            "may want to use RuntimeServices job port instead.");
    }

    m_definitions.pop_back();
    m_entities.pop_back();
}

void JsonReader::walkPortsAgain(std::shared_ptr<DmNodeDef> const& definition, Value const& object) {
    m_entities.push_back(definition);
    m_definitions.push_back(definition);
    // Pass 2 reported ports of a wrong form.
    if (JsonReader::isList(member(object, JsonFormat::Key::kPorts))) {
        walkList(object, JsonFormat::Key::kPorts, JsonFormat::kPorts);
    }
    m_definitions.pop_back();
    m_entities.pop_back();
}

// ---------------------------------------------------------------------------
// Terminal node definitions

void JsonReader::readTerminalNodeDef(Value const& object) {
    if (m_context.library == nullptr || (m_pass != 2 && m_pass != 3)) {
        return;
    }
    std::string const name = JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kName));
    if (name.empty()) {
        if (m_pass == 2) {
            report(BaMessageTypes::kMessageWarning, "Missing terminal name.",
                   "Terminal node needs to have at least a name.");
        }
        return;
    }
    if (m_pass == 3) {
        std::shared_ptr<DmTerminalNodeDef> const definition = m_terminalNodeDefs.next();
        if (!definition) {
            return;
        }
        walkPortsAgain(definition, object);
        return;
    }

    std::string scope;
    std::string local;
    DmScope::resolveLocalNameAndScope(name, scope, local);
    if (!NamingSupport::isLegalName(local)) {
        report(BaMessageTypes::kMessageWarning, "Illegal terminal name",
               "The terminal \"" + name + "\" has an illegal name.");
    }
    std::shared_ptr<DmTerminalNodeDef> const definition =
        DmTerminalNodeDef::createTerminalNodeDef(local, kNameVerbatim);
    std::shared_ptr<DmNamespace> const ns = m_context.library->getGlobalNamespace()->fetchNamespace(scope);
    if (!definition || !ns) {
        m_terminalNodeDefs.push(nullptr);
        return;
    }
    definition->setURI(m_context.uri);
    static_cast<void>(definition->setOverloadsLocked(true));
    // As for operators, a refused placement leaves the definition out of the library.
    static_cast<void>(definition->setScope(ns.get(), m_context.nameResolution));

    m_entities.push_back(definition);
    m_definitions.push_back(definition);
    m_terminalNodeDefs.push(definition);
    if (JsonReader::isList(member(object, JsonFormat::Key::kPorts))) {
        walkList(object, JsonFormat::Key::kPorts, JsonFormat::kPorts);
    } else {
        report(BaMessageTypes::kMessageWarning, "Missing terminal node port interface.",
               "The terminal node '" + name + "' does not have a port interface.");
    }
    walkListOrWarn(object, JsonFormat::Key::kMetadata, JsonFormat::kMetadata, "Incorrect metadata format.",
                   "The terminal node '" + name + "' has an incorrect metadata format.");
    m_definitions.pop_back();
    m_entities.pop_back();
}

// ---------------------------------------------------------------------------
// Ports

void JsonReader::readPort(Value const& object) {
    if (m_context.library == nullptr || m_definitions.empty()) {
        return;
    }
    if (m_pass == 2) {
        createPort(*m_definitions.back(), object);
    } else if (m_pass == 3) {
        completePort(*m_definitions.back(), object);
    }
}

std::shared_ptr<DmBaseType const> JsonReader::resolvePortType(std::string_view text) {
    return resolveType(text, m_context.unknownDefinitions ? MissingType::kUnknown : MissingType::kUndefined);
}

void JsonReader::createPort(DmNodeDef& definition, Value const& object) {
    std::string const name = JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kPortName));
    if (name.empty()) {
        report(BaMessageTypes::kMessageWarning, "Missing port name.", "Port needs to have at least a name.");
        return;
    }
    std::string const definitionName = fullNameOf(definition);
    std::string const portName = definitionName + "::" + name;
    if (!NamingSupport::isLegalName(name)) {
        report(BaMessageTypes::kMessageWarning, "Illegal port name",
               "The port \"" + name + "\" on node definition \"" + definitionName +
                   "\" has an illegal name.");
    }
    std::shared_ptr<DmPortDescription> const port =
        DmPortDescription::newPortDescription(name, nullptr, kDirectionUnset, kNameVerbatim);
    if (!port) {
        return;
    }

    // Terminals take inputs only: their files carry no direction.
    if (definition.isTerminal()) {
        port->assignDirection(kDirectionInput);
    } else if (auto const direction =
                   JsonFormat::parsePortDirection(stringOf(object, JsonFormat::Key::kPortDirection))) {
        port->assignDirection(*direction);
    } else {
        report(BaMessageTypes::kMessageWarning, "Missing port direction.",
               "The port '" + portName + "' does not have a direction.");
    }

    if (booleanOf(object, JsonFormat::Key::kIsAssociative)) {
        if (port->isInput()) {
            // Not in the interface yet, so nothing refuses it; the definition
            // is checked as a whole once all its ports are read.
            static_cast<void>(port->setAssociative(true));
        } else {
            report(BaMessageTypes::kMessageError, "Output port marked associative.",
                   "The port '" + portName + "' can not be marked as associative.");
        }
    }

    bool typeComplete = true;
    std::string_view const typeText = stringOf(object, JsonFormat::Key::kPortType);
    std::shared_ptr<DmBaseType const> type;
    if (typeText.empty()) {
        type = DmLibrary::getAutoType();
    } else {
        type = namesArrayOfAuto(typeText) ? nullptr : resolvePortType(typeText);
        if (namesArrayOfAuto(typeText)) {
            report(BaMessageTypes::kMessageWarning, "Illegal array of auto type.",
                   "The port '" + portName + "' has illegal type '" + std::string(typeText) +
                       "', using 'auto' type instead.");
            type = DmLibrary::getAutoType();
        } else if (!type || hasKind(type, kTypeUndefined)) {
            report(BaMessageTypes::kMessageWarning, "Undefined port type.",
                   "The port '" + portName + "' has undefined type '" + std::string(typeText) + "'.");
            typeComplete = false;
        }
    }
    if (type) {
        static_cast<void>(port->setType(type));
    }

    if (dynamic_cast<DmExternOperator*>(&definition) != nullptr) {
        std::string_view const conventionText = stringOf(object, JsonFormat::Key::kPortConvention);
        if (conventionText.empty()) {
            report(BaMessageTypes::kMessageError, "Missing port convention.",
                   "Port '" + portName + "' of external operator must specify the passing convention");
        } else {
            CppPassingConvention const convention = JsonFormat::parsePassingConvention(conventionText);
            if (convention == kPassInvalid) {
                report(BaMessageTypes::kMessageError, "Invalid port convention.",
                       "The port '" + portName + "' has an invalid convention.");
            } else {
                static_cast<void>(port->setCppPassingConvention(convention));
            }
        }
    }

    if (booleanOf(object, JsonFormat::Key::kPortIterationLimit)) {
        if (port->isOutput()) {
            report(BaMessageTypes::kMessageError, "Invalid iteration limit",
                   "The output port '" + name + "' can not be an iteration limit.");
        } else {
            static_cast<void>(port->setIterationAttribute(kIterationLimit));
        }
    }
    if (booleanOf(object, JsonFormat::Key::kPortIterationCounter)) {
        if (port->isOutput()) {
            report(BaMessageTypes::kMessageError, "Invalid iteration counter",
                   "The output port '" + name + "' can not be an iteration counter.");
        } else {
            static_cast<void>(port->setIterationAttribute(kIterationCounter));
        }
    }
    if (booleanOf(object, JsonFormat::Key::kPortIterationTarget)) {
        static_cast<void>(port->setIterationAttribute(kIterationTarget));
    }

    if (booleanOf(object, JsonFormat::Key::kIsDefaultFanIn) &&
        port->setPortKind(kPortDefaultFanIn) != DmStatus::kSuccess) {
        // The words, and the quotation mark they lack, are those users know.
        report(BaMessageTypes::kMessageWarning, "Unable to set port Description as DefaultFanIn ",
               "for port '" + name + " on nodeDef '" + definitionName + "'.");
    }

    std::shared_ptr<DmPortDescription> associated;
    std::string const associatedName =
        JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kPortAssociated));
    if (!associatedName.empty()) {
        associated = definition.getPortsInterface()[associatedName];
        if (associated && dynamic_cast<DmCppOperator*>(&definition) == nullptr) {
            report(BaMessageTypes::kMessageWarning, "Invalid port association.",
                   "The in/out association between ports '" + name + "' and '" + associatedName +
                       "' can only be done in a C++ external operator, but '" + definitionName + "' is not.");
            associated.reset();
        }
    }

    port->setCompleteness(typeComplete && type && port->getDirection() != kDirectionUnset);
    if (!definition.addPortDescription(port, kFailOnClash)) {
        report(BaMessageTypes::kMessageError, "Invalid port.",
               "The port '" + portName + "' could not be added to its node definition'");
        return;
    }
    // Paired once the port belongs to the definition, which then drops the
    // pairing with the port.
    if (associated) {
        static_cast<DmCppOperator&>(definition).associatePorts(port, associated);
    }

    Value const* const metadata = member(object, JsonFormat::Key::kMetadata);
    if (JsonReader::isList(metadata)) {
        m_entities.push_back(port);
        walkList(object, JsonFormat::Key::kMetadata, JsonFormat::kMetadata);
        m_entities.pop_back();
    }
}

void JsonReader::completePort(DmNodeDef& definition, Value const& object) {
    std::string const name = JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kPortName));
    std::shared_ptr<DmPortDescription> const port =
        name.empty() ? nullptr : definition.getPortsInterface()[name];
    if (!port) {
        return;
    }
    std::string const portName = fullNameOf(definition) + "::" + name;
    auto* const compound = dynamic_cast<DmCompound*>(&definition);

    Value const* const defaultNode = member(object, JsonFormat::Key::kPortDefault);
    if (defaultNode != nullptr && !defaultNode->IsNull()) {
        bool const autoPort = port->getType() && port->getType()->getTypeKind() == kTypeAuto;
        std::shared_ptr<DmBaseType const> type = port->getType();
        std::string_view const defaultTypeText = stringOf(object, JsonFormat::Key::kPortDefaultType);
        if (autoPort && !defaultTypeText.empty()) {
            type = resolvePortType(defaultTypeText);
        }
        std::shared_ptr<DmBaseValue> const value = type ? type->createValue() : nullptr;
        if (!value || !m_context.logger || !readValue(*m_context.logger, *defaultNode, value)) {
            report(BaMessageTypes::kMessageError, "Invalid default port value.",
                   "Unable to process the default value for port '" + portName + "'.");
        } else if (compound != nullptr && autoPort && port->isInput()) {
            // The writer takes an auto input's default from the interface node.
            std::shared_ptr<DmNode> const self = compound->getSelfNode();
            std::shared_ptr<DmPort> const selfPort = self ? (*self)[name] : nullptr;
            if (!selfPort || !selfPort->setDefaultValue(value)) {
                report(BaMessageTypes::kMessageError, "Invalid default value assignment.",
                       "Default value for port '" + portName + "' is not allowed.");
            }
        } else if (!port->setDefaultValueOverride(value)) {
            report(BaMessageTypes::kMessageError, "Invalid default value assignment.",
                   "Default value for port '" + portName + "' is not allowed.");
        }
    }

    std::string const feedback =
        JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kLinkedFeedbackPort));
    if (!feedback.empty()) {
        if (compound == nullptr || dynamic_cast<DmLoopingCompound*>(compound) != nullptr) {
            report(BaMessageTypes::kMessageError, "Invalid port attribute.",
                   "The feedback attribute can only be on non looping construct compounds.");
        } else if (!port->isInput()) {
            report(BaMessageTypes::kMessageError, "Invalid port attribute.",
                   "The feedback attribute must be on an input port.");
        } else {
            std::shared_ptr<DmPortDescription> const output = definition.getPortsInterface()[feedback];
            if (!output || !output->isOutput()) {
                report(BaMessageTypes::kMessageError, "Feedback port not found.",
                       "The output feedback port '" + feedback + "' was not found.");
            } else {
                static_cast<void>(compound->linkFeedbackPorts(name, feedback));
            }
        }
    }
}

// ---------------------------------------------------------------------------
// Job ports

void JsonReader::readJobPort(Value const& object) {
    if (m_pass != 2 || m_definitions.empty()) {
        return;
    }
    auto* const definition = dynamic_cast<DmCppOperator*>(m_definitions.back().get());
    if (definition == nullptr) {
        return;
    }
    std::string const name = JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kPortName));
    if (name.empty()) {
        report(BaMessageTypes::kMessageWarning, "Missing job port name.",
               "Job port needs to have at least a name.");
        return;
    }
    std::string_view const typeText = stringOf(object, JsonFormat::Key::kPortType);
    std::shared_ptr<DmBaseType const> const type =
        typeText.empty() || namesArrayOfAuto(typeText) ? nullptr : resolvePortType(typeText);
    if (!type && typeText.empty()) {
        report(BaMessageTypes::kMessageWarning, "Missing job port type.",
               "Job port '" + name + "' must have a concrete type.");
        return;
    }
    if (type && type->getTypeKind() == kTypeAuto) {
        report(BaMessageTypes::kMessageWarning, "Missing job port type.",
               "Job port '" + name + "' must have a concrete type.");
        return;
    }
    if (namesArrayOfAuto(typeText)) {
        report(BaMessageTypes::kMessageWarning, "Illegal array of auto type.",
               "The job port '" + name + "' has illegal type '" + std::string(typeText) +
                   "'. Job ports must have concrete types.");
        return;
    }
    if (!type || hasKind(type, kTypeUndefined)) {
        report(BaMessageTypes::kMessageWarning, "Undefined job port type.",
               "The job port '" + name + "' has undefined type '" + std::string(typeText) + "'.");
        // Kept, as a port keeps its undefined type, but not complete.
        if (type) {
            static_cast<void>(definition->addJobPort(name, type, false));
        }
        return;
    }
    static_cast<void>(definition->addJobPort(name, type));
}

} // namespace Kesto::Internal
