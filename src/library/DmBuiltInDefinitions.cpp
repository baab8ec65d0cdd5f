#include "library/DmBuiltInDefinitions.h"

#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include <boost/algorithm/string/replace.hpp>

#include <initializer_list>
#include <string>
#include <utility>

namespace Kesto {
namespace Internal {

namespace {

using TypePtr = std::shared_ptr<DmBaseType const>;
using PortList = std::initializer_list<std::pair<char const*, TypePtr>>;

char const kDocumentationFolder[] = "../docs/${language}/";
char const kIconFolder[] = "../icons/";

void addItem(DmEntity& entity, std::shared_ptr<DmMetadataItem> const& item) {
    entity.getMetadata()->add(item);
}

void addDocumentation(DmEntity& entity, std::string const& file) {
    addItem(entity, std::make_shared<DmMetadataItem>("documentation", kDocumentationFolder + file));
}

/// How a node shows its value: an item "NodeValueDisplay" holding the format.
void addDisplayFormat(DmEntity& entity, char const* format) {
    auto const display = std::make_shared<DmMetadataItem>("NodeValueDisplay");
    display->getMetadata()->add(std::make_shared<DmMetadataItem>("format", format));
    addItem(entity, display);
}

class Builder {
public:
    explicit Builder(DmLibrary& library) : m_library(library) {}

    std::shared_ptr<DmNamespace> makeNamespace(DmNamespace& parent, std::string const& name) {
        std::shared_ptr<DmNamespace> ns;
        parent.addNestedNamespace(name, ns);
        ns->makeConst();
        return ns;
    }

    /// Makes, places and fills one definition, in the order every built-in
    /// follows: library, scope, default overload, inputs, outputs, documentation.
    DmNativeNodeDef& make(DmNamespace& ns, char const* name, DmNativeNodeDef::NativeKind kind,
                          PortList inputs, PortList outputs) {
        auto const def = DmNativeNodeDef::newNativeNodeDef(name, kind);
        def->setLibrary(&m_library);
        def->setScope(&ns, kFailOnClash);
        def->setIsDefaultOverload(true);
        addPorts(*def, inputs, kDirectionInput);
        addPorts(*def, outputs, kDirectionOutput);
        finish(def);
        return *def;
    }

    /// "build_array": associative, and so its two inputs are made associative
    /// before they are placed.
    void makeBuildArray(DmNamespace& ns) {
        auto const def = DmNativeNodeDef::newNativeNodeDef("build_array", DmNativeNodeDef::kBuildArray);
        def->setLibrary(&m_library);
        def->setAssociativity(DmNodeDef::kLeftToRight);
        def->setScope(&ns, kFailOnClash);
        def->setIsDefaultOverload(true);
        TypePtr const autoType = DmLibrary::getAutoType();
        for (char const* input : {"first", "second"}) {
            auto const port =
                DmPortDescription::newPortDescription(input, autoType, kDirectionInput, kNameVerbatim);
            port->setAssociative(true);
            def->addPortDescription(port, kFailOnClash);
        }
        def->addPortDescription(
            DmPortDescription::newPortDescription("array", autoType, kDirectionOutput, kNameVerbatim),
            kFailOnClash);
        finish(def);
    }

    void makeComparison(DmNamespace& ns, char const* name, DmNativeNodeDef::NativeKind kind,
                        char const* format) {
        TypePtr const autoType = DmLibrary::getAutoType();
        TypePtr const boolType = DmLibrary::getBoolType();
        addDisplayFormat(
            make(ns, name, kind, {{"first", autoType}, {"second", autoType}}, {{"output", boolType}}),
            format);
    }

    void addIcon(DmNativeNodeDef::NativeKind kind, char const* file) {
        addItem(*m_table[kind], std::make_shared<DmMetadataItem>("icon", std::string(kIconFolder) + file));
    }

    void addNamedDocumentation(DmNativeNodeDef::NativeKind kind, char const* file) {
        addDocumentation(*m_table[kind], file);
    }

    NativeNodeDefTable const& table() const noexcept { return m_table; }

private:
    void addPorts(DmNativeNodeDef& def, PortList ports, PortDirection direction) {
        for (auto const& port : ports) {
            def.addPortDescription(
                DmPortDescription::newPortDescription(port.first, port.second, direction, kNameVerbatim),
                kFailOnClash);
        }
    }

    /// The generated documentation item, named after the full name, and the
    /// place in the table.
    void finish(std::shared_ptr<DmNativeNodeDef> const& def) {
        std::string fullName;
        def->resolveFullName(fullName);
        boost::algorithm::replace_all(fullName, "::", "_");
        addDocumentation(*def, fullName + ".md");
        m_table[def->getNativeKind()] = def;
    }

    DmLibrary& m_library;
    NativeNodeDefTable m_table;
};

} // namespace

NativeNodeDefTable buildBuiltInDefinitions(DmLibrary& library, DmNamespace& global) {
    using Kind = DmNativeNodeDef::NativeKind;
    TypePtr const autoType = DmLibrary::getAutoType();
    TypePtr const boolType = DmLibrary::getBoolType();
    TypePtr const longType = DmLibrary::getLongType();
    TypePtr const intType = DmLibrary::getIntType();
    TypePtr const stringType = DmLibrary::getStringType();
    TypePtr const anyType = DmLibrary::getAnyType();

    Builder builder(library);
    auto const core = builder.makeNamespace(global, "Core");
    auto const logic = builder.makeNamespace(*core, "Logic");
    auto const graph = builder.makeNamespace(*core, "Graph");
    auto const internal = builder.makeNamespace(*core, "Internal");
    auto const array = builder.makeNamespace(*core, "Array");
    auto const error = builder.makeNamespace(*core, "Error");

    builder.make(*logic, "if", Kind::kIf,
                 {{"condition", boolType}, {"true_case", autoType}, {"false_case", autoType}},
                 {{"output", autoType}});
    builder.makeComparison(*logic, "equal", Kind::kEqual, "Equal to {second}");
    builder.makeComparison(*logic, "not_equal", Kind::kNotEqual, "Not equal to {second}");
    builder.makeComparison(*logic, "greater", Kind::kGreater, "Greater than {second}");
    builder.makeComparison(*logic, "greater_or_equal", Kind::kGreaterOrEqual, "Greater or equal to {second}");
    builder.makeComparison(*logic, "less", Kind::kLess, "Less than {second}");
    builder.makeComparison(*logic, "less_or_equal", Kind::kLessOrEqual, "Less or equal than {second}");
    builder.make(*graph, "pass", Kind::kPass, {{"input", autoType}}, {{"output", autoType}});
    addItem(builder.make(*internal, "force_eval", Kind::kForceEval,
                         {{"input", autoType}, {"discard", autoType}}, {{"output", autoType}}),
            std::make_shared<DmMetadataItem>("internal", true));
    addDisplayFormat(builder.make(*error, "error", Kind::kError,
                                  {{"input", autoType}, {"message", stringType}}, {{"output", autoType}}),
                     "Error: {message}");
    builder.make(*array, "array_size", Kind::kArraySize, {{"array", autoType}}, {{"size", longType}});
    builder.make(*array, "get_from_array", Kind::kGetFromArray, {{"array", autoType}, {"index", longType}},
                 {{"value", autoType}});
    builder.make(*array, "first_in_array", Kind::kFirstInArray, {{"array", autoType}}, {{"first", autoType}});
    builder.make(*array, "last_in_array", Kind::kLastInArray, {{"array", autoType}}, {{"last", autoType}});
    builder.make(*array, "set_in_array", Kind::kSetInArray,
                 {{"array", autoType}, {"index", longType}, {"value", autoType}}, {{"out_array", autoType}});
    builder.make(*array, "resize_array", Kind::kResizeArray,
                 {{"array", autoType}, {"new_size", longType}, {"default", autoType}},
                 {{"resized", autoType}});
    builder.make(*array, "array_dimensions", Kind::kArrayDimensions, {{"array", autoType}},
                 {{"dimensions", intType}});
    builder.makeBuildArray(*array);

    auto const conversion = builder.makeNamespace(*core, "Type_Conversion");
    builder.make(*conversion, "to_type_any", Kind::kToTypeAny, {{"from", autoType}}, {{"type_any", anyType}});
    builder.make(*conversion, "from_type_any", Kind::kFromTypeAny,
                 {{"value_any", anyType}, {"to_type", autoType}},
                 {{"converted", autoType}, {"success", boolType}});
    builder.make(*conversion, "promote", Kind::kPromote, {{"value", autoType}, {"to_type", autoType}},
                 {{"promoted", autoType}});

    builder.addIcon(Kind::kArrayDimensions, "generic_arrays.svg");
    builder.addIcon(Kind::kArraySize, "array_size.svg");
    builder.addIcon(Kind::kBuildArray, "build_array.svg");
    builder.addIcon(Kind::kIf, "If.svg");
    builder.addIcon(Kind::kEqual, "Equal.svg");
    builder.addIcon(Kind::kFirstInArray, "first_in_array.svg");
    builder.addIcon(Kind::kNotEqual, "not_equal.svg");
    builder.addIcon(Kind::kGetFromArray, "get_from_array.svg");
    builder.addIcon(Kind::kGreater, "greater.svg");
    builder.addIcon(Kind::kGreaterOrEqual, "greater_or_equal.svg");
    builder.addIcon(Kind::kLastInArray, "last_in_array.svg");
    builder.addIcon(Kind::kLess, "less.svg");
    builder.addIcon(Kind::kLessOrEqual, "less_or_equal.svg");
    builder.addIcon(Kind::kResizeArray, "resize_array.svg");
    builder.addIcon(Kind::kSetInArray, "set_in_array.svg");

    builder.addNamedDocumentation(Kind::kIf, "if.md");
    builder.addNamedDocumentation(Kind::kEqual, "equal.md");
    builder.addNamedDocumentation(Kind::kNotEqual, "not_equal.md");
    builder.addNamedDocumentation(Kind::kGreater, "greater.md");
    builder.addNamedDocumentation(Kind::kGreaterOrEqual, "greater_or_equal.md");
    builder.addNamedDocumentation(Kind::kLess, "less.md");
    builder.addNamedDocumentation(Kind::kLessOrEqual, "less_or_equal.md");

    // From here on no one edits a built-in: the definitions and their sets.
    for (auto const& def : builder.table()) {
        def->makeConst();
        if (DmOverloadSet* const set = def->get_owner()) {
            set->makeConst();
        }
    }
    return builder.table();
}

} // namespace Internal
} // namespace Kesto
