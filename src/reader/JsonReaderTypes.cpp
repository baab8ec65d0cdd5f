// Namespaces, types with their members, and global variables of a graph file.
#include "reader/JsonReader.h"

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmGlobalVariable.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaMessageTypes.h>
#include <KestoDM/platform/NamingSupport.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmClassSerialization.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmExternSymbol.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include "reader/DmValueReader.h"

#include <optional>
#include <string>
#include <utility>

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

namespace {

/// Splits a normalised qualified name into its namespace path and local name.
std::pair<std::string, std::string> split(std::string const& name) {
    std::pair<std::string, std::string> out;
    DmScope::resolveLocalNameAndScope(name, out.first, out.second);
    return out;
}

std::string fullNameOf(DmNamedEntity const& entity) {
    std::string out;
    entity.resolveFullName(out);
    return out;
}

} // namespace

template <class T>
std::shared_ptr<T> JsonReader::topEntityAs() const {
    return m_entities.empty() ? nullptr : std::dynamic_pointer_cast<T>(m_entities.back());
}

void JsonReader::walkListOrWarn(Value const& object, std::string_view key, Section section, std::string title,
                                std::string description) {
    Value const* const list = member(object, key);
    if (list != nullptr && !isList(list)) {
        report(BaMessageTypes::kMessageWarning, std::move(title), std::move(description));
        return;
    }
    walkList(object, key, section);
}

// ---------------------------------------------------------------------------
// Namespaces

void JsonReader::readNamespace(Value const& object) {
    if (m_context.library == nullptr) {
        return;
    }
    std::string const name = JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kName));
    if (name.empty()) {
        report(BaMessageTypes::kMessageWarning, "Missing namespace name.",
               "Namespace needs to have at least a name.");
        return;
    }
    if (!NamingSupport::isLegalName(split(name).second)) {
        report(BaMessageTypes::kMessageWarning, "Illegal namespace name",
               "The namespace \"" + name + "\" has an illegal name.");
    }
    DmNamespace& global = *m_context.library->getGlobalNamespace();
    if (name == global.getName() || name == DmLibrary::getBuiltInNamespace()->getName()) {
        report(BaMessageTypes::kMessageWarning, "Invalid namespace.",
               "Cannot persist the global or built-in namespaces");
        return;
    }
    std::shared_ptr<DmNamespace> const ns = global.fetchNamespace(name);
    if (!ns) {
        return;
    }
    ns->setURI(m_context.uri);
    m_entities.push_back(ns);
    walkListOrWarn(object, JsonFormat::Key::kMetadata, JsonFormat::kMetadata, "Incorrect metadata format.",
                   "The namespace '" + name + "' has an incorrect metadata format.");
    m_entities.pop_back();
}

// ---------------------------------------------------------------------------
// Types

void JsonReader::readType(Value const& object) {
    if (m_pass == 2) {
        // The same objects in the same order as in pass 1: the queue gives
        // each its type, or null for one that was not made.
        std::shared_ptr<DmBaseType> const type = m_types.next();
        if (auto const structType = std::dynamic_pointer_cast<DmStructType>(type)) {
            m_entities.push_back(structType);
            walkList(object, JsonFormat::Key::kStructMembers, JsonFormat::kStructMembers);
            m_entities.pop_back();
            auto const deferred = m_deferredTypes.find(structType.get());
            if (deferred != m_deferredTypes.end()) {
                placeType(structType, *deferred->second.ns, deferred->second.name);
                m_deferredTypes.erase(deferred);
            }
        }
        // With an unknown-definitions support, the complete type then takes
        // the place of a placeholder of its name; the support has no such
        // replacement yet.
        return;
    }
    if (m_pass != 1) {
        return;
    }
    if (m_context.library == nullptr || !m_context.logger) {
        m_types.push(nullptr);
        return;
    }
    std::string_view const structName = stringOf(object, JsonFormat::Key::kStructName);
    std::string_view const className = stringOf(object, JsonFormat::Key::kClassName);
    std::string_view const enumName = stringOf(object, JsonFormat::Key::kEnumName);
    int const names = int(!structName.empty()) + int(!className.empty()) + int(!enumName.empty());
    if (names != 1) {
        if (names == 0) {
            report(BaMessageTypes::kMessageWarning, "Missing type name.",
                   "Type needs to have either a struct, class, or enum name.");
        } else {
            report(BaMessageTypes::kMessageWarning, "Multiple type names defined.",
                   "Type needs to have only one struct, class, or enum name.");
        }
        m_types.push(nullptr);
        return;
    }
    std::string const name = JsonFormat::normalizeTypeName(!structName.empty()  ? structName
                                                           : !className.empty() ? className
                                                                                : enumName);
    auto const [scope, local] = split(name);
    if (!NamingSupport::isLegalName(local)) {
        report(BaMessageTypes::kMessageWarning, "Illegal type name",
               "The type \"" + name + "\" has an illegal name.");
    }

    std::shared_ptr<DmBaseType> type;
    std::shared_ptr<DmClassType> classType;
    std::shared_ptr<DmEnumType> enumType;
    if (!structName.empty()) {
        type = DmLibrary::createStructType(local);
    } else if (!className.empty()) {
        classType = DmLibrary::createClassType(local);
        if (classType) {
            std::shared_ptr<BaContext> const& context = m_context.library->getContext();
            classType->setCppClassInfo(DmClassType::CppClassInfo(
                std::make_shared<DmClassSerialization>(context, *m_context.logger), context));
        }
        type = classType;
    } else {
        enumType = DmLibrary::createEnumType(local);
        type = enumType;
    }
    // Null only for an empty local name ("a::"), already reported as illegal.
    m_types.push(type);
    if (!type) {
        return;
    }

    type->setURI(m_context.uri);
    std::shared_ptr<DmNamespace> const ns = m_context.library->getGlobalNamespace()->fetchNamespace(scope);
    // With an unknown-definitions support, the new type is handed to it here,
    // to replace a placeholder of its name in pass 2; the support has no such
    // replacement yet.

    // A type whose name is taken (a file read again, a type declared twice)
    // can only be compared with the type there once its members are read:
    // enum members and methods below, struct members in pass 2. Until then
    // references to the name find the type that has it.
    bool deferred = false;
    if (ns) {
        std::shared_ptr<DmBaseType> existing;
        deferred = ns->findType(std::string(local), existing);
        if (deferred) {
            m_deferredTypes[type.get()] = DeferredType{ns, name};
        } else {
            placeType(type, *ns, name);
        }
    } else {
        report(BaMessageTypes::kMessageError, "Type name already exists.",
               "Type '" + name + "' already exists in this namespace.");
    }

    std::string const itanium(stringOf(object, JsonFormat::Key::kItaniumTypeNameMangleName));
    std::string_view microsoft = stringOf(object, JsonFormat::Key::kMsTypeNameMangleName);
    if (microsoft.substr(0, JsonFormat::kMsTypeManglePrefix.size()) == JsonFormat::kMsTypeManglePrefix) {
        microsoft.remove_prefix(JsonFormat::kMsTypeManglePrefix.size());
    }
    type->setTypeNameMangleName(DmMangledName(std::string(microsoft), itanium));

    m_entities.push_back(type);
    if (classType) {
        walkListOrWarn(object, JsonFormat::Key::kMethods, JsonFormat::kMethods, "Incorrect methods format.",
                       "The class type '" + name + "' has an incorrect methods format.");
    } else if (enumType) {
        walkListOrWarn(object, JsonFormat::Key::kEnumMembers, JsonFormat::kEnumMembers,
                       "Incorrect enum format.",
                       "The enum type '" + name + "' has an incorrect enumeration list format.");
    }
    walkListOrWarn(object, JsonFormat::Key::kMetadata, JsonFormat::kMetadata, "Incorrect metadata format.",
                   "The type '" + name + "' has an incorrect metadata format.");
    m_entities.pop_back();
    // Enums and classes are complete at the end of their object.
    if (deferred && structName.empty()) {
        placeType(type, *ns, name);
        m_deferredTypes.erase(type.get());
    }
}

std::string JsonReader::typeNameOf(DmBaseType const& type) const {
    auto const deferred = m_deferredTypes.find(&type);
    return deferred != m_deferredTypes.end() ? deferred->second.name : fullNameOf(type);
}

void JsonReader::placeType(std::shared_ptr<DmBaseType> const& type, DmNamespace& ns,
                           std::string const& name) {
    // Types of a file are filed under their own names whatever the load's
    // name resolution: a type cannot be renamed or overloaded. An equivalent
    // type of the name is no clash: the first one stays.
    if (type->setNamespace(&ns, kFailOnClash) != DmStatus::kSuccess) {
        report(BaMessageTypes::kMessageError, "Type name already exists.",
               "Type '" + name + "' already exists in this namespace.");
    }
}

void JsonReader::readEnumMember(Value const& object) {
    std::shared_ptr<DmEnumType> const type = topEntityAs<DmEnumType>();
    if (!type) {
        return;
    }
    std::string const key(stringOf(object, JsonFormat::Key::kEnumKey));
    if (key.empty()) {
        report(BaMessageTypes::kMessageWarning, "Missing enumeration key.",
               "Enumeration members must have a key name.");
        return;
    }
    std::string const text(stringOf(object, JsonFormat::Key::kEnumValue));
    if (text.empty()) {
        report(BaMessageTypes::kMessageWarning, "Missing enumeration value.",
               "Enumeration members must have a value.");
        return;
    }
    std::string const typeName = typeNameOf(*type);
    std::optional<int> const value = JsonFormat::parseEnumValue(text);
    if (!value) {
        // The key is worth keeping: it still names a member, only its number is lost.
        report(BaMessageTypes::kMessageError, "Invalid enumeration value.",
               "Enumeration '" + key + "' of enum type '" + typeName + "' has an invalid value '" + text +
                   "'.");
        static_cast<void>(type->addEnumeration(String(key)));
        return;
    }
    if (!type->addEnumeration(String(key), *value)) {
        report(BaMessageTypes::kMessageError, "Invalid enumeration.",
               "Unable to add enumeration '" + key + "' with value '" + text + "' to the enum type '" +
                   typeName + "'.");
    }
}

void JsonReader::readMethod(Value const& object) {
    std::shared_ptr<DmClassType> const type = topEntityAs<DmClassType>();
    if (!type) {
        return;
    }
    std::string const typeName = typeNameOf(*type);
    std::string const method(stringOf(object, JsonFormat::Key::kMethod));
    if (method.empty()) {
        report(BaMessageTypes::kMessageInfo, "Method type is missing name.",
               "Method type is missing name name for '" + typeName + "'");
        return;
    }
    std::string const microsoft(stringOf(object, JsonFormat::Key::kMsMangle));
    if (microsoft.empty()) {
        report(BaMessageTypes::kMessageInfo, "Missing MSVC mangled name.",
               "Class type '" + typeName + "' does not have a MSVC mangled name for method '" + method +
                   "'.");
    }
    std::string const itanium(stringOf(object, JsonFormat::Key::kItaniumMangle));
    if (itanium.empty()) {
        report(BaMessageTypes::kMessageInfo, "Missing Itanium mangled name.",
               "Class type '" + typeName + "' does not have an Itanium mangled name for method '" + method +
                   "'.");
    }
    std::shared_ptr<DmClassSerialization> const& serialization = type->getCppClassInfo().getSerializer();
    if (!serialization) {
        return;
    }
    auto const symbol = std::make_shared<DmExternSymbol>();
    symbol->setMangleName(DmMangledName::kMangledNameMicrosoft, microsoft);
    symbol->setMangleName(DmMangledName::kMangledNameItanium, itanium);
    if (method == JsonFormat::kDeserializeMethod) {
        serialization->setDeserializeSymbol(symbol);
    } else if (method == JsonFormat::kSerializeMethod) {
        serialization->setSerializeSymbol(symbol);
    } else {
        report(BaMessageTypes::kMessageInfo, "Unhandled method type name.",
               "Class type '" + typeName + "' has an unhandled method type name '" + method + "'.");
    }
}

void JsonReader::readStructMember(Value const& object) {
    std::shared_ptr<DmStructType> const type = topEntityAs<DmStructType>();
    if (!type) {
        return;
    }
    std::string const name = JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kMemberName));
    if (name.empty()) {
        report(BaMessageTypes::kMessageWarning, "Missing member name.",
               "Struct members must have at least a name.");
        return;
    }
    std::string const structName = typeNameOf(*type);
    if (!NamingSupport::isLegalName(name)) {
        report(BaMessageTypes::kMessageWarning, "Illegal struct member name",
               "The member \"" + name + "\" in struct \"" + structName + "\" has an illegal name.");
    }
    std::string_view const typeText = stringOf(object, JsonFormat::Key::kMemberType);
    if (typeText.empty()) {
        report(BaMessageTypes::kMessageError, "Missing member type",
               "Struct member '" + name + "' is missing its type.");
        return;
    }
    // A type that is still unknown (also as an array's element) is to be
    // recorded with the unknown-definitions support once it makes placeholders.
    std::shared_ptr<DmBaseType const> const memberType =
        resolveType(typeText, m_context.unknownDefinitions ? MissingType::kUnknown : MissingType::kNothing);
    if (!memberType) {
        report(BaMessageTypes::kMessageError, "Missing member type.",
               "Unable to resolve type '" + JsonFormat::normalizeTypeName(typeText) +
                   "' for struct member '" + structName + "::" + name + "'.");
        return;
    }
    if (!type->addMember(name, memberType)) {
        report(BaMessageTypes::kMessageError, "Invalid struct member.",
               "Struct member '" + structName + "::" + name +
                   "' cannot be added: the struct has a member of that name, or would hold itself.");
    }
}

// ---------------------------------------------------------------------------
// Global variables

void JsonReader::readGlobalVariable(Value const& object) {
    if (m_context.library == nullptr) {
        return;
    }
    if (m_pass == 1) {
        std::string const name = JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kName));
        if (name.empty()) {
            report(BaMessageTypes::kMessageError, "Missing global name.", "Global needs to have a name.");
            m_globalVariableNames.push(std::string());
            return;
        }
        auto const [scope, local] = split(name);
        if (!NamingSupport::isLegalName(local)) {
            report(BaMessageTypes::kMessageError, "Illegal global name",
                   "The global \"" + name + "\" has an illegal name.");
        }
        std::shared_ptr<DmGlobalVariable> const variable =
            DmGlobalVariable::createGlobalVariable(local, kNameVerbatim);
        std::shared_ptr<DmNamespace> const ns =
            m_context.library->getGlobalNamespace()->fetchNamespace(scope);
        if (!variable || !ns) {
            // Only an empty local name ("a::") gets here, reported as illegal.
            m_globalVariableNames.push(std::string());
            return;
        }
        // Globals of a file are filed under their own names whatever the
        // load's name resolution: a global cannot be renamed.
        if (variable->setNamespace(ns.get(), kFailOnClash) != DmStatus::kSuccess) {
            report(BaMessageTypes::kMessageError, "Global name already exists.",
                   "Global '" + name + "' already exists in this namespace.");
            m_globalVariableNames.push(std::string());
            return;
        }
        m_globalVariableNames.push(variable->getMapEntryKey());
        return;
    }
    if (m_pass != 3) {
        return;
    }
    // Only the globals this file made: a name that clashed names another's.
    std::string const fullName = m_globalVariableNames.next();
    if (fullName.empty()) {
        return;
    }
    DmLibrary::GlobalVariableMap const variables = m_context.library->getGlobalVariables();
    auto const found = variables.find(fullName);
    if (found == variables.end()) {
        return;
    }
    DmGlobalVariable& variable = *found->second;
    std::string const name = JsonFormat::normalizeName(stringOf(object, JsonFormat::Key::kName));
    std::string_view const typeText = stringOf(object, JsonFormat::Key::kType);
    if (typeText.empty()) {
        report(BaMessageTypes::kMessageError, "Missing global type.", "Global needs to have a type.");
        return;
    }
    std::shared_ptr<DmBaseType const> const type =
        resolveType(typeText, m_context.unknownDefinitions ? MissingType::kUnknown : MissingType::kNothing);
    if (!type) {
        report(BaMessageTypes::kMessageError, "Invalid global type.",
               "The global variable '" + name + "' has invalid type '" +
                   JsonFormat::normalizeTypeName(typeText) + "'");
        return;
    }
    variable.setType(type);
    Value const* const node = member(object, JsonFormat::Key::kDefaultValue);
    if (node == nullptr || !m_context.logger) {
        return;
    }
    std::shared_ptr<DmBaseValue> const value = type->createValue();
    if (!value || !readValue(*m_context.logger, *node, value)) {
        report(BaMessageTypes::kMessageError, "Invalid global default value.",
               "Global '" + name + "' has an invalid default value.");
        return;
    }
    variable.setDefaultValue(value);
}

} // namespace Kesto::Internal
