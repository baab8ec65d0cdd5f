// Compounds and what they hold: nodes, connections, values, watch points,
// reserved names and the links of loops.
#include "reader/JsonReader.h"

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolverContext.h>
#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmForEachCompound.h>
#include <KestoDM/graph/DmIterateCompound.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmTerminalStates.h>
#include <KestoDM/graph/DmValueNodeDef.h>
#include <KestoDM/graph/DmWatchPoint.h>
#include <KestoDM/graph/DmWhileCompound.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/NamingSupport.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "graph/DmMemberPath.h"
#include "reader/DmValueReader.h"

#include <string>
#include <utility>
#include <vector>

namespace Kesto::Internal {

namespace {

using Value = rapidjson::Value;

constexpr auto kWarning = BaMessageTypes::kMessageWarning;
constexpr auto kError = BaMessageTypes::kMessageError;
constexpr auto kInformation = BaMessageTypes::kMessageInfo;

/// Older files list the terminals a compound turns off in this metadata item.
constexpr std::string_view kDisabledTerminalsItem = "terminal_node_disabled_flags";

std::string quoted(std::string const& text) {
    return "'" + text + "'";
}

std::string fullNameOf(DmNamedEntity const& entity) {
    std::string out;
    entity.resolveFullName(out);
    return out;
}

/// The objects of a list key: the array's elements, or the object itself.
std::vector<Value const*> elementsOf(Value const& value) {
    std::vector<Value const*> out;
    if (value.IsArray()) {
        for (Value const& element : value.GetArray()) {
            out.push_back(&element);
        }
    } else {
        out.push_back(&value);
    }
    return out;
}

/// The words that differ between the three loop specialisations.
struct LoopWords {
    char const* kind;      ///< first word of the row messages
    char const* interface; ///< in the malformed-interface message
    char const* title;     ///< title of the malformed-interface message
    char const* linkWord;  ///< in the refused-link message
    std::string_view portKind;
};

LoopWords loopWords(JsonFormat::Section section) noexcept {
    switch (section) {
    case JsonFormat::kIterateCompound:
    case JsonFormat::kIterateCompoundPorts:
        return {"Iteration", "iteration", "Malformed iteration compound port interface.", "iteration",
                JsonFormat::kStatePortKind};
    case JsonFormat::kForEachCompound:
    case JsonFormat::kForEachCompoundPorts:
        return {"ForEach", "foreach", "Malformed foreach compound port interface", "ForEach",
                JsonFormat::kInOutTargetPortKind};
    default:
        return {"While", "while", "Malformed while compound port interface.", "while",
                JsonFormat::kStatePortKind};
    }
}

} // namespace

// ---------------------------------------------------------------------------
// Helpers

std::string JsonReader::compoundNameOf(Value const& object) {
    return JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kName));
}

JsonFormat::Section JsonReader::loopSectionOf(Value const& object) noexcept {
    // Tested in this order; only an object makes a loop.
    for (Section const section :
         {JsonFormat::kWhileCompound, JsonFormat::kIterateCompound, JsonFormat::kForEachCompound}) {
        Value const* const found = member(object, JsonFormat::sectionKey(section));
        if (found != nullptr && found->IsObject()) {
            return section;
        }
    }
    return JsonFormat::kNoSection;
}

DmCompound* JsonReader::openCompound() const noexcept {
    return m_definitions.empty() ? nullptr : dynamic_cast<DmCompound*>(m_definitions.back().get());
}

std::shared_ptr<DmNodeDef> JsonReader::findNodeDefFor(DmCompound const& compound,
                                                      std::string const& name) const {
    if (m_context.library == nullptr || name.empty()) {
        return nullptr;
    }
    DmNamespace const& global = *m_context.library->getGlobalNamespace();
    std::shared_ptr<DmNodeDef> found;
    constexpr std::string_view separator(DmScope::kSeparator, DmScope::kSeparatorLength);
    if (std::string_view(name).substr(0, separator.size()) == separator) {
        return global.findNodeDef(name.substr(separator.size()), found) ? found : nullptr;
    }
    // Nested definitions first, then each enclosing scope.
    DmScope const* scope = &compound;
    while (scope != nullptr) {
        if (scope->findNodeDef(name, found) && found) {
            return found;
        }
        auto const* const def = dynamic_cast<DmNodeDef const*>(scope);
        scope = def != nullptr ? def->getScope() : scope->getParentScope();
    }
    return global.findNodeDef(name, found) ? found : nullptr;
}

void JsonReader::applyTerminalState(DmTerminalStates& states, std::string const& name, bool enabled,
                                    std::string const& owner, bool onCompound) {
    // "<definition>::<port>": the port follows the last ':'.
    std::size_t const colon = name.rfind(':');
    std::string const port = colon == std::string::npos ? name : name.substr(colon + 1);
    std::string definition = colon == std::string::npos ? std::string() : name.substr(0, colon);
    while (!definition.empty() && definition.back() == ':') {
        definition.pop_back();
    }
    std::string const on = onCompound ? " on compound " : " on node ";
    if (!NamingSupport::isLegalName(port)) {
        report(kWarning, "Illegal terminal port name",
               "The deactivated terminal port " + quoted(port) + on + quoted(owner) +
                   " has an illegal name.");
    }
    std::shared_ptr<DmNodeDef> found;
    if (m_context.library == nullptr || definition.empty() ||
        !m_context.library->getGlobalNamespace()->findNodeDef(definition, found) || !found) {
        report(kWarning, "Missing terminal node definition.",
               "The terminal node definition " + quoted(definition) +
                   " could not be resolved for deactivated terminal " + quoted(port) + on + owner);
        return;
    }
    // The terminal itself stands behind its set.
    std::shared_ptr<DmNodeDef> terminal = found;
    if (auto const set = std::dynamic_pointer_cast<DmOverloadSet>(found); set && set->size() == 1) {
        terminal = set->getOverloads().front();
    }
    if (!terminal || !terminal->isTerminal()) {
        report(kWarning, "Missing terminal node definition.",
               "The node definition " + quoted(definition) + " is not a terminal node definition.");
        return;
    }
    std::shared_ptr<DmPortDescription> const description = terminal->getPortsInterface()[port];
    if (!description) {
        report(kWarning, "Terminal port not found.",
               "The port " + quoted(port) + " could not be found on the terminal node definition " +
                   quoted(definition) + ".");
        return;
    }
    static_cast<void>(states.setTerminalState(description, enabled));
}

void JsonReader::readTerminalStates(Value const& object, DmTerminalStates& states, std::string const& owner,
                                    bool onCompound) {
    Value const* const list = member(object, JsonFormat::Key::kTerminalStates);
    if (list == nullptr) {
        return;
    }
    std::string const which = onCompound ? "compound " : "node ";
    if (!isList(list)) {
        report(kWarning, "Invalid array format.",
               "The 'terminalStates' for " + which + quoted(owner) + " should be an array.");
        return;
    }
    for (Value const* entry : elementsOf(*list)) {
        if (!entry->IsObject()) {
            report(kWarning,
                   onCompound ? "Deactivated terminal port should be specified as a object."
                              : "Terminal port should be specified as a object.",
                   "The array values for 'terminalStates' on " + which + quoted(owner) +
                       " should be specified as object.");
            continue;
        }
        std::string const name(stringOf(*entry, JsonFormat::Key::kName));
        if (name.empty()) {
            report(kWarning, "Missing member 'name'.",
                   "The objects inside the array 'terminalStates' must have the member 'name' on " + which +
                       quoted(owner) + ".");
            continue;
        }
        bool present = false;
        bool const enabled = booleanOf(*entry, JsonFormat::Key::kEnabled, &present);
        if (!present) {
            report(kWarning, "Missing member 'enabled'.",
                   "The objects inside the array 'terminalStates' must have the member 'enabled' on " +
                       which + quoted(owner) + ".");
            continue;
        }
        applyTerminalState(states, name, enabled, owner, onCompound);
    }
}

std::shared_ptr<DmPort> JsonReader::findPortOfPath(DmCompound const& compound, std::string const& path) {
    std::size_t const point = path.find('.');
    if (point == std::string::npos) {
        report(kWarning, "Port badly formed.", "The port " + quoted(path) + " is not a valid port.");
        return nullptr;
    }
    std::string const nodeName = path.substr(0, point);
    std::shared_ptr<DmNode> const node =
        nodeName.empty() ? compound.getSelfNode() : compound.findNode(nodeName);
    if (!node) {
        report(kWarning, "Node not found.", "The node " + quoted(nodeName) + " could not be found.");
        return nullptr;
    }
    // The port, then its members or entries after further points.
    std::shared_ptr<DmPort> port;
    if (!findMemberByPath(&node->getPorts(), path.substr(point + 1), port)) {
        report(kWarning, "Port not found.",
               "The port " + quoted(path) + " could not be found in compound " +
                   quoted(fullNameOf(compound)) + ".");
    }
    return port;
}

// ---------------------------------------------------------------------------
// Compounds

void JsonReader::readCompound(Value const& object) {
    std::string const name = compoundNameOf(object);
    if (m_pass == 2) {
        if (name.empty()) {
            report(kWarning, "Missing compound name.", "Compound needs to have at least a name.");
            return;
        }
        std::string scopeName;
        std::string local;
        DmScope::resolveLocalNameAndScope(name, scopeName, local);
        if (!NamingSupport::isLegalName(local)) {
            report(kWarning, "Illegal compound name", "The compound \"" + name + "\" has an illegal name.");
        }
        std::shared_ptr<DmCompound> compound;
        switch (loopSectionOf(object)) {
        case JsonFormat::kWhileCompound:
            compound = DmWhileCompound::createWhileCompound(local);
            break;
        case JsonFormat::kIterateCompound:
            compound = DmIterateCompound::createIterateCompound(local);
            break;
        case JsonFormat::kForEachCompound:
            compound = DmForEachCompound::createForEachCompound(local);
            break;
        default:
            compound = DmCompound::createCompound(local);
            break;
        }
        // Later passes take one queue entry per named object, so even a
        // refused compound keeps its place.
        m_compounds.push(compound);
        if (!compound || m_context.library == nullptr) {
            return;
        }
        DmLibrary& library = *m_context.library;

        DmScope* scope = nullptr;
        std::string fullName = name;
        if (DmCompound* const parent = openCompound()) {
            // Nested: the parent is the scope, whatever the name says.
            scope = parent;
            std::string const parentName = fullNameOf(*parent);
            if (!scopeName.empty() && scopeName != parentName) {
                report(kError, "Bad nested compound scope.",
                       "The nested compound " + quoted(name) +
                           " does not have a valid scope. Its scope should be " + quoted(parentName) + ".");
            }
            fullName = parentName + DmScope::kSeparator + local;
        } else {
            scope = library.getGlobalNamespace()->fetchNamespace(scopeName).get();
        }

        static_cast<void>(compound->setAssociativity(readAssociativity(object, fullName)));
        compound->setURI(m_context.uri);
        compound->setCompleteness(false);
        compound->setLibrary(&library);

        if (scope != nullptr) {
            warnOfIncompatibleOverload(object, *scope, local, "Compound", fullName);
            DmStatus const status = compound->setScope(scope, m_context.nameResolution);
            if (status == DmStatus::kInvalidArgument) {
                m_status = status;
                // The global namespace has the empty path: it is named instead.
                std::string scopeText;
                scope->resolveScopeName(scopeText);
                if (scopeText.empty() && scope->getAsNamedEntity() != nullptr) {
                    scopeText = scope->getAsNamedEntity()->getName();
                }
                report(kError, "Compound cannot be scoped.",
                       "The compound " + fullName + " could not be scoped into " + scopeText + ".");
                if (m_context.nameResolution == kFailOnClash) {
                    report(kInformation, "Compound cannot be scoped.",
                           "Try changing the name resolution type or use a different name for compound " +
                               fullName + ".");
                }
            }
        }

        // After the placing, so that the overload set of the name has it too.
        bool unlockedPresent = false;
        bool const unlocked = booleanOf(object, JsonFormat::Key::kOverloadsUnlocked, &unlockedPresent);
        if (unlockedPresent) {
            static_cast<void>(compound->setOverloadsLocked(!unlocked));
        }
        compound->setConverter(booleanOf(object, JsonFormat::Key::kIsConverter));
        static_cast<void>(compound->setPromoter(booleanOf(object, JsonFormat::Key::kIsPromoter)));
        static_cast<void>(
            compound->setIsDefaultOverload(booleanOf(object, JsonFormat::Key::kIsDefaultOverload)));

        std::string const imported(stringOf(object, JsonFormat::Key::kUriImported));
        if (!imported.empty() && imported.size() <= 3) {
            report(kWarning, "Imported uri is too short.",
                   "Imported uri uriImported may be missing its prefix.");
        } else if (!imported.empty()) {
            auto const asset = std::make_shared<DmAssetReference>(imported);
            auto const context = std::make_shared<DmAssetResolverContext>();
            context->setRelativeAssetReference(m_context.asset);
            context->setLibrary(library.shared_from_this());
            if (library.resolveAssetReference(asset, context)) {
                std::shared_ptr<DmURI> const uri = library.createURIFromAssetReference(asset);
                if (!std::dynamic_pointer_cast<DmFileURI>(uri)) {
                    report(
                        kWarning, "Imported URI is not a file URI.",
                        quoted(imported) +
                            " is not a valid URI scheme to be used as imported URI. The URI's scheme must be "
                            "'file:'.");
                } else {
                    compound->setImportedURI(uri);
                }
            } else {
                report(kWarning, "Undefined resolver scheme.",
                       quoted(imported) + " does not match a registered resolver.");
            }
        }

        m_entities.push_back(compound);
        m_definitions.push_back(compound);
        Value const* const ports = member(object, JsonFormat::Key::kPorts);
        if (!isList(ports)) {
            report(kWarning, "Missing compound port interface.",
                   "The compound " + quoted(fullName) + " does not have a port interface.");
        } else {
            walkList(object, JsonFormat::Key::kPorts, JsonFormat::kPorts);
        }
        checkAssociativity(*compound);
        Value const* const metadata = member(object, JsonFormat::Key::kMetadata);
        if (metadata != nullptr && !isList(metadata)) {
            report(kWarning, "Incorrect metadata format.",
                   "The compound " + quoted(fullName) + " has an incorrect metadata format.");
        } else {
            walkList(object, JsonFormat::Key::kMetadata, JsonFormat::kMetadata);
        }
        Value const* const reserved = member(object, JsonFormat::Key::kReservedNodeNames);
        if (reserved != nullptr && !isList(reserved)) {
            report(kError, "Incorrect reservedNodeNames format.",
                   "The compound " + quoted(fullName) + " has an incorrect reservedNodeNames format.");
        } else {
            walkList(object, JsonFormat::Key::kReservedNodeNames, JsonFormat::kReservedNodeNames);
        }
        walkList(object, JsonFormat::Key::kCompounds, JsonFormat::kCompounds);
        m_definitions.pop_back();
        m_entities.pop_back();
        return;
    }

    if (name.empty()) {
        return;
    }
    std::shared_ptr<DmCompound> const compound = m_compounds.next();
    if (!compound) {
        return;
    }
    if (m_pass == 3) {
        std::string const fullName = fullNameOf(*compound);
        readTerminalStates(object, compound->getDefaultTerminalStates(), fullName, true);
        if (auto const& metadata = compound->getMetadata()) {
            auto const items = metadata->find(kDisabledTerminalsItem);
            for (auto const& item : items) {
                std::vector<std::shared_ptr<DmMetadataItem>> named{item};
                if (auto const& nested = item->getMetadata()) {
                    for (auto const& child : *nested->getMetadataItems()) {
                        named.push_back(child);
                    }
                }
                for (auto const& one : named) {
                    std::string terminal;
                    if (one->hasValue() && one->getStringValue(terminal) == DmStatus::kSuccess &&
                        !terminal.empty()) {
                        applyTerminalState(compound->getDefaultTerminalStates(), terminal, false, fullName,
                                           true);
                    }
                }
            }
            if (!items.empty()) {
                static_cast<void>(metadata->remove(kDisabledTerminalsItem));
            }
        }
        m_entities.push_back(compound);
        m_definitions.push_back(compound);
        // A port list of the wrong form was reported once, in pass 2.
        if (Value const* const ports = member(object, JsonFormat::Key::kPorts); isList(ports)) {
            walkList(object, JsonFormat::Key::kPorts, JsonFormat::kPorts);
        }
        walkList(object, JsonFormat::Key::kCompounds, JsonFormat::kCompounds);
        m_definitions.pop_back();
        m_entities.pop_back();
    } else if (m_pass == 4) {
        m_entities.push_back(compound);
        m_definitions.push_back(compound);
        walkList(object, JsonFormat::Key::kCompoundNodes, JsonFormat::kCompoundNodes);
        walkList(object, JsonFormat::Key::kConnections, JsonFormat::kConnections);
        walkList(object, JsonFormat::Key::kValues, JsonFormat::kValues);
        walkList(object, JsonFormat::Key::kWatchPoints, JsonFormat::kWatchPoints);
        if (Section const loop = loopSectionOf(object); loop != JsonFormat::kNoSection) {
            walkList(object, JsonFormat::sectionKey(loop), loop);
        }
        if (m_context.result) {
            (*m_context.result)[fullNameOf(*compound)] = compound;
        }
        walkList(object, JsonFormat::Key::kCompounds, JsonFormat::kCompounds);
        m_definitions.pop_back();
        m_entities.pop_back();
    }
}

void JsonReader::readReservedNodeNames(Value const& object) {
    DmCompound* const compound = openCompound();
    if (m_pass != 2 || compound == nullptr) {
        return;
    }
    // Every string member counts, whatever its key.
    std::shared_ptr<DmCompound::ReservedNames> names = compound->getReservedNodeNames();
    if (!names) {
        names = std::make_shared<DmCompound::ReservedNames>();
    }
    for (auto const& entry : object.GetObject()) {
        if (entry.value.IsString() && entry.value.GetStringLength() != 0) {
            names->push_back(
                String(std::string_view(entry.value.GetString(), entry.value.GetStringLength())));
        }
    }
    static_cast<void>(compound->setReservedNodeNames(names));
}

// ---------------------------------------------------------------------------
// Nodes

void JsonReader::readCompoundNode(Value const& object) {
    DmCompound* const compound = openCompound();
    if (m_pass != 4 || compound == nullptr) {
        return;
    }
    std::string const compoundName = fullNameOf(*compound);
    std::string const name(stringOf(object, JsonFormat::Key::kNodeName));
    if (name.empty()) {
        report(kWarning, "Missing node name.", "Node needs to have at least a name.");
        return;
    }
    if (!NamingSupport::isLegalName(name)) {
        report(kWarning, "Illegal node name",
               "The node \"" + name + "\" in compound \"" + compoundName + "\" has an illegal name.");
    }

    std::shared_ptr<DmNodeDef> definition;
    std::string const valueType(stringOf(object, JsonFormat::Key::kValueType));
    std::string const nodeType(stringOf(object, JsonFormat::Key::kNodeType));
    if (!valueType.empty()) {
        if (!nodeType.empty()) {
            report(kWarning, "Malformed value node definition.",
                   "The value node " + quoted(name) + " has an extra nodeType field that will be ignored.");
        }
        std::shared_ptr<DmBaseType const> const type = resolveType(valueType, MissingType::kUndefined);
        if (type && type->getTypeKind() == kTypeUndefined) {
            report(kWarning, "Undefined value type.",
                   "The value node definition " + quoted(valueType) + " has undefined type.");
        } else if (JsonFormat::namesArrayOfAuto(JsonFormat::normalizeTypeName(valueType))) {
            report(kWarning, "Illegal array of auto type.",
                   "The value node definition " + quoted(valueType) + " has illegal type.");
        }
        definition = type ? DmValueNodeDef::getValueNodeDef(type) : nullptr;
        if (!definition) {
            report(kWarning, "Missing node type.",
                   "The value node definition " + quoted(valueType) +
                       " could not be resolved for value node " + quoted(name) + ".");
            return;
        }
    } else {
        if (nodeType.empty()) {
            report(kWarning, "Missing node type.",
                   "The node " + quoted(name) + " is missing its node definition.");
            return;
        }
        definition = findNodeDefFor(*compound, JsonFormat::normalizeName(nodeType));
        if (!definition) {
            report(kWarning, "Missing node type.",
                   "The node definition " + quoted(nodeType) + " could not be resolved for node " +
                       quoted(name) + ".");
            return;
        }
    }

    std::shared_ptr<DmNode> const node = DmNode::createNode(name, definition);
    if (!node || compound->addNode(node, kFailOnClash) != DmStatus::kSuccess) {
        report(kWarning, "Duplicate node name.",
               "Node name " + quoted(name) + " is not unique for this compound.");
        return;
    }
    bool const associative = definition->associativity() != DmNodeDef::kNotAssociative;

    if (Value const* const entries = member(object, JsonFormat::Key::kMultiInPortNames)) {
        if (!associative) {
            report(kWarning, "Illegal use of multi-in port names.",
                   "The multi-in port names on node " + quoted(name) +
                       " cannot be used because it does not refer to an associative node definition.");
        } else if (!entries->IsArray()) {
            report(kError, "Invalid array format.",
                   "The multi-in port names for node " + quoted(name) + " should be an array.");
        } else {
            for (Value const& entry : entries->GetArray()) {
                if (!entry.IsString()) {
                    continue;
                }
                std::string const entryName(entry.GetString(), entry.GetStringLength());
                if (!NamingSupport::isLegalName(entryName)) {
                    report(kWarning, "Illegal port name",
                           "The port \"" + entryName + "\" on node \"" + name + "\" has an illegal name.");
                }
                std::shared_ptr<DmPort> added;
                if (node->addMultiInPortEntry(entryName, added) != DmStatus::kSuccess) {
                    report(kError, "Cannot add multi-in port.",
                           "The port member " + quoted(entryName) +
                               " could not be added as multi-in port to node " + quoted(name) + ".");
                }
            }
        }
    }

    if (Value const* const fanIns = member(object, JsonFormat::Key::kFanInPortNames)) {
        if (associative) {
            report(kWarning, "Illegal use of fan-in port names.",
                   "The fan-in ports on node " + quoted(name) +
                       " cannot be used because it refers to an associative node definition.");
        } else if (!fanIns->IsObject()) {
            report(kError, "Invalid object format.",
                   "The fan-in port names for node " + quoted(name) + " must be an object.");
        } else {
            // A default fan-in port need not be named here: only the named ones stay fan-in.
            for (auto const& port : node->getPorts()) {
                static_cast<void>(port.second->setFanIn(false));
            }
            for (auto const& entry : fanIns->GetObject()) {
                std::string const portName(entry.name.GetString(), entry.name.GetStringLength());
                std::shared_ptr<DmPort> const port = (*node)[portName];
                if (!port) {
                    report(kError, "Cannot find fan-in parent port. ",
                           "The port " + quoted(portName) + " could not be found on node " + quoted(name) +
                               ".");
                    continue;
                }
                if (port->setFanIn(true) != DmStatus::kSuccess) {
                    report(kError, "Unable to set fan-in. ",
                           "Unable to set port " + quoted(portName) + " on node " + quoted(name) +
                               " as fan-in.");
                    continue;
                }
                if (!entry.value.IsArray()) {
                    continue;
                }
                for (Value const& memberName : entry.value.GetArray()) {
                    if (!memberName.IsString()) {
                        continue;
                    }
                    std::string const text(memberName.GetString(), memberName.GetStringLength());
                    if (!NamingSupport::isLegalName(text)) {
                        report(kWarning, "Illegal port name",
                               "The port \"" + text + "\" on node \"" + name + "\" has an illegal name.");
                    }
                    std::shared_ptr<DmPort> added;
                    if (port->addMultiInPortEntry(text, added) != DmStatus::kSuccess) {
                        report(kError, "Cannot add fan-in port member. ",
                               "The port member " + quoted(text) +
                                   " could not be added as fan-in port member to port " + quoted(portName) +
                                   " on node " + quoted(name) + ".");
                    }
                }
            }
        }
    }

    // The older list of terminals that are off counts only without the newer form.
    Value const* const deactivated = member(object, JsonFormat::Key::kDeactivatedTerminals);
    if (deactivated != nullptr && member(object, JsonFormat::Key::kTerminalStates) == nullptr) {
        if (!deactivated->IsArray()) {
            report(kWarning, "Invalid array format.",
                   "The deactivated terminal names for node " + quoted(name) + " should be an array.");
        } else {
            for (Value const& entry : deactivated->GetArray()) {
                if (!entry.IsString()) {
                    report(kWarning, "Deactivated terminal port should be specified as a string.",
                           "The array values for 'deactivatedTerminals' on node " + quoted(name) +
                               " should be specified as strings.");
                    continue;
                }
                applyTerminalState(node->getTerminalStates(),
                                   std::string(entry.GetString(), entry.GetStringLength()), false, name,
                                   false);
            }
        }
    }
    readTerminalStates(object, node->getTerminalStates(), name, false);

    m_entities.push_back(node);
    walkList(object, JsonFormat::Key::kMetadata, JsonFormat::kMetadata);
    m_entities.pop_back();
}

// ---------------------------------------------------------------------------
// Connections, values and watch points

void JsonReader::readConnection(Value const& object) {
    DmCompound* const compound = openCompound();
    if (m_pass != 4 || compound == nullptr) {
        return;
    }
    std::string const source(stringOf(object, JsonFormat::Key::kSource));
    std::string const target(stringOf(object, JsonFormat::Key::kTarget));
    if (source.empty()) {
        report(kWarning, "Missing connection source.", "The connection does not have a source port name.");
        return;
    }
    if (target.empty()) {
        report(kWarning, "Missing connection target.", "The connection does not have a target port name.");
        return;
    }
    // The compound logs why it refuses.
    std::shared_ptr<DmConnection> connection;
    static_cast<void>(compound->makeConnection(source, target, connection));
}

void JsonReader::readValueEntry(Value const& object) {
    DmCompound* const compound = openCompound();
    if (m_pass != 4 || compound == nullptr || !m_context.logger) {
        return;
    }
    std::string const path(stringOf(object, JsonFormat::Key::kValueName));
    if (path.empty()) {
        report(kWarning, "Missing value name.", "Default value needs to have at least a port name.");
        return;
    }
    Value const* const text = member(object, JsonFormat::Key::kValue);
    if (text == nullptr) {
        report(kWarning, "Missing value.", "Value " + quoted(path) + " is not specified.");
        return;
    }
    std::shared_ptr<DmPort> const port = findPortOfPath(*compound, path);
    if (!port) {
        return;
    }
    // The named type first; else the port's own, when it is concrete.
    std::shared_ptr<DmBaseType const> type;
    std::string_view const typeName = stringOf(object, JsonFormat::Key::kValueType);
    if (!typeName.empty()) {
        type = resolveType(typeName, MissingType::kNothing);
    } else {
        type = port->getPortDescription()->getType();
    }
    std::shared_ptr<DmBaseValue> const value =
        type && type->getTypeKind() != kTypeAuto && type->getTypeKind() != kTypeUndefined
            ? type->createValue()
            : nullptr;
    if (!value) {
        report(kWarning, "Invalid value type.",
               "Unable to determine the type for value " + quoted(path) + ".");
        return;
    }
    if (readValue(*m_context.logger, *text, value)) {
        static_cast<void>(port->setDefaultValue(value));
    }
}

void JsonReader::readWatchPoint(Value const& object) {
    DmCompound* const compound = openCompound();
    if (m_pass != 4 || compound == nullptr) {
        return;
    }
    std::string const path(stringOf(object, JsonFormat::Key::kPortName));
    if (path.empty()) {
        report(kWarning, "Missing port name.", "Watchpoint needs to have at least a port name.");
        return;
    }
    std::shared_ptr<DmPort> const port = findPortOfPath(*compound, path);
    if (!port) {
        return;
    }
    std::shared_ptr<DmWatchPoint> const watchPoint = port->setWatchPoint();
    if (!watchPoint) {
        report(kWarning, "Cannot set watchpoint.", "Cannot set watchpoint on port " + quoted(path) + ".");
        return;
    }
    bool present = false;
    bool const enabled = booleanOf(object, JsonFormat::Key::kEnabled, &present);
    if (present) {
        static_cast<void>(watchPoint->enable(enabled));
    }
    if (Value const* const parameters = member(object, JsonFormat::Key::kParameters); isList(parameters)) {
        for (Value const* one : elementsOf(*parameters)) {
            if (!one->IsObject()) {
                continue;
            }
            for (auto const& entry : one->GetObject()) {
                if (entry.value.IsString()) {
                    static_cast<void>(watchPoint->setParameter(
                        std::string(entry.name.GetString(), entry.name.GetStringLength()),
                        std::string(entry.value.GetString(), entry.value.GetStringLength())));
                }
            }
        }
    }
    m_entities.push_back(watchPoint);
    walkList(object, JsonFormat::Key::kMetadata, JsonFormat::kMetadata);
    m_entities.pop_back();
}

// ---------------------------------------------------------------------------
// Loops

void JsonReader::readLoopSpecialisation(Section section, Value const& object) {
    DmCompound* const compound = openCompound();
    if (m_pass != 4 || compound == nullptr) {
        return;
    }
    LoopWords const words = loopWords(section);
    Value const* const ports = member(object, JsonFormat::Key::kPorts);
    if (!isList(ports)) {
        report(kWarning, words.title,
               std::string("The port interface in the ") + words.interface + " compound specialization of " +
                   quoted(fullNameOf(*compound)) + " should be an array or a single object.");
        return;
    }
    walkList(object, JsonFormat::Key::kPorts, static_cast<Section>(section + 1));
}

void JsonReader::readLoopPort(Section section, Value const& object) {
    DmCompound* const compound = openCompound();
    if (m_pass != 4 || compound == nullptr) {
        return;
    }
    LoopWords const words = loopWords(section);
    std::string const prefix = std::string(words.kind) + " compound port specialization needs to have ";
    std::string_view const kind = stringOf(object, JsonFormat::Key::kPortKind);
    std::string const input(stringOf(object, JsonFormat::Key::kInputPortName));
    std::string const output(stringOf(object, JsonFormat::Key::kOutputPortName));
    if (kind.empty()) {
        report(kWarning, "Missing port kind.", prefix + "a port kind.");
        return;
    }
    if (input.empty()) {
        report(kWarning, "Missing input port name.", prefix + "an input port name.");
        return;
    }
    if (output.empty()) {
        report(kWarning, "Missing output port name.", prefix + "an output port name.");
        return;
    }
    if (kind != words.portKind) {
        return;
    }
    bool linked = false;
    if (auto* const loop = dynamic_cast<DmWhileCompound*>(compound)) {
        linked = loop->linkStatePorts(input, output);
    } else if (auto* const iterate = dynamic_cast<DmIterateCompound*>(compound)) {
        std::shared_ptr<DmNode> const self = iterate->getSelfNode();
        std::shared_ptr<DmPort> const in = self ? (*self)[input] : nullptr;
        std::shared_ptr<DmPort> const out = self ? (*self)[output] : nullptr;
        auto const isTarget = [](DmPort const& port) {
            return port.getPortDescription()->getIterationAttribute() == kIterationTarget;
        };
        if (in && out && isTarget(*in) != isTarget(*out)) {
            report(kError, "Failed to connect input/output ports.",
                   "The state port pair " + quoted(input) + " and " + quoted(output) +
                       " on iterate node have mismatched iteration target properties. Ports haven't been "
                       "linked.");
            return;
        }
        linked = iterate->linkStatePorts(input, output);
    } else if (auto* const forEach = dynamic_cast<DmForEachCompound*>(compound)) {
        linked = forEach->setInOutPort(input, output);
    }
    if (!linked) {
        report(kWarning, "Failed to connect input/output ports.",
               std::string("Unable to link input or output port in ") + words.linkWord +
                   " compound specialization.");
    }
}

} // namespace Kesto::Internal
