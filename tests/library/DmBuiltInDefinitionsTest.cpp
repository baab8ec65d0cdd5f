// The native definitions every library is born with.
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "graph/GraphTestSupport.h"
#include "library/BuiltInsTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::keysOf;
using KestoTest::makeLibrary;

namespace {

using Names = std::vector<std::string>;

/// One row of the table of built-ins: ports as "name:type", inputs first.
struct BuiltIn {
    char const* fullName;
    DmNativeNodeDef::NativeKind kind;
    Names inputs;
    Names outputs;
};

std::vector<BuiltIn> const& builtIns() {
    using K = DmNativeNodeDef;
    static std::vector<BuiltIn> const table{
        {"Core::Logic::if", K::kIf, {"condition:bool", "true_case:auto", "false_case:auto"}, {"output:auto"}},
        {"Core::Logic::equal", K::kEqual, {"first:auto", "second:auto"}, {"output:bool"}},
        {"Core::Logic::not_equal", K::kNotEqual, {"first:auto", "second:auto"}, {"output:bool"}},
        {"Core::Logic::greater", K::kGreater, {"first:auto", "second:auto"}, {"output:bool"}},
        {"Core::Logic::greater_or_equal", K::kGreaterOrEqual, {"first:auto", "second:auto"}, {"output:bool"}},
        {"Core::Logic::less", K::kLess, {"first:auto", "second:auto"}, {"output:bool"}},
        {"Core::Logic::less_or_equal", K::kLessOrEqual, {"first:auto", "second:auto"}, {"output:bool"}},
        {"Core::Graph::pass", K::kPass, {"input:auto"}, {"output:auto"}},
        {"Core::Internal::force_eval", K::kForceEval, {"input:auto", "discard:auto"}, {"output:auto"}},
        {"Core::Error::error", K::kError, {"input:auto", "message:string"}, {"output:auto"}},
        {"Core::Array::array_size", K::kArraySize, {"array:auto"}, {"size:long"}},
        {"Core::Array::get_from_array", K::kGetFromArray, {"array:auto", "index:long"}, {"value:auto"}},
        {"Core::Array::first_in_array", K::kFirstInArray, {"array:auto"}, {"first:auto"}},
        {"Core::Array::last_in_array", K::kLastInArray, {"array:auto"}, {"last:auto"}},
        {"Core::Array::set_in_array",
         K::kSetInArray,
         {"array:auto", "index:long", "value:auto"},
         {"out_array:auto"}},
        {"Core::Array::resize_array",
         K::kResizeArray,
         {"array:auto", "new_size:long", "default:auto"},
         {"resized:auto"}},
        {"Core::Array::array_dimensions", K::kArrayDimensions, {"array:auto"}, {"dimensions:int"}},
        {"Core::Array::build_array", K::kBuildArray, {"first:auto", "second:auto"}, {"array:auto"}},
        {"Core::Type_Conversion::to_type_any", K::kToTypeAny, {"from:auto"}, {"type_any:any"}},
        {"Core::Type_Conversion::from_type_any",
         K::kFromTypeAny,
         {"value_any:any", "to_type:auto"},
         {"converted:auto", "success:bool"}},
        {"Core::Type_Conversion::promote", K::kPromote, {"value:auto", "to_type:auto"}, {"promoted:auto"}},
    };
    return table;
}

std::shared_ptr<DmOverloadSet> findSet(DmLibrary const& library, std::string const& fullName) {
    std::shared_ptr<DmOverloadSet> set;
    EXPECT_TRUE(library.getGlobalNamespace()->findNodeDef(fullName, set)) << fullName;
    return set;
}

std::shared_ptr<DmNativeNodeDef> findNative(DmLibrary const& library, std::string const& fullName) {
    auto const set = findSet(library, fullName);
    if (!set || set->getOverloads().size() != 1) {
        ADD_FAILURE() << fullName << " is not a set of one overload";
        return nullptr;
    }
    return std::dynamic_pointer_cast<DmNativeNodeDef>(set->getOverloads().front());
}

/// The ports of a definition as "name:type", inputs and outputs apart.
void describePorts(DmNodeDef const& def, Names& inputs, Names& outputs) {
    for (auto const& entry : def.getPortsInterface()) {
        std::string const text = entry.first + ":" + entry.second->getType()->getName();
        (entry.second->isInput() ? inputs : outputs).push_back(text);
    }
}

/// The string values of the items of that name, in order.
Names itemValues(DmEntity const& entity, std::string const& name) {
    Names values;
    for (auto const& item : entity.getMetadata()->find(name)) {
        std::string value;
        EXPECT_EQ(item->getStringValue(value), DmStatus::kSuccess);
        values.push_back(value);
    }
    return values;
}

std::string displayFormat(DmEntity const& entity) {
    auto const displays = entity.getMetadata()->find("NodeValueDisplay");
    if (displays.size() != 1) {
        return "<" + std::to_string(displays.size()) + " displays>";
    }
    Names const formats = itemValues(*displays.front(), "format");
    return formats.size() == 1 ? formats.front() : "<no format>";
}

} // namespace

TEST(DmBuiltInDefinitions, IfOfLogicUnderCoreIsFoundWithOneDefaultOverload) {
    auto const library = makeLibrary();
    std::shared_ptr<DmNamespace> core = library->getGlobalNamespace()->getNestedNamespaces().at("Core");
    std::shared_ptr<DmOverloadSet> set;
    ASSERT_TRUE(core->getNestedNamespaces().at("Logic")->findNodeDef("if", set));
    ASSERT_NE(set, nullptr);
    ASSERT_EQ(set->getOverloads().size(), 1u);
    EXPECT_TRUE(set->getOverloads().front()->isDefaultOverload());
    EXPECT_EQ(set->getDefaultOverload(), set->getOverloads().front().get());
}

TEST(DmBuiltInDefinitions, ANewLibraryHoldsExactlyTwentyOneNativeDefinitionsOfEveryKind) {
    auto const library = makeLibrary();
    std::set<int> kinds;
    unsigned natives = 0;
    for (auto const& entry : library->getNodeDefs()) {
        auto const set = std::dynamic_pointer_cast<DmOverloadSet>(entry.second);
        ASSERT_NE(set, nullptr) << entry.first;
        for (auto const& overload : set->getOverloads()) {
            if (auto const native = std::dynamic_pointer_cast<DmNativeNodeDef>(overload)) {
                ++natives;
                kinds.insert(native->getNativeKind());
            }
        }
    }
    EXPECT_EQ(natives, 21u);
    ASSERT_EQ(kinds.size(), 21u);
    EXPECT_EQ(*kinds.begin(), 0);
    EXPECT_EQ(*kinds.rbegin(), 20);
}

TEST(DmBuiltInDefinitions, NamespacesAreMadeInTheirOrderAndAreConst) {
    auto const library = makeLibrary();
    auto const namespaces = library->getConstNamespaces();
    EXPECT_EQ(keysOf(namespaces), KestoTest::builtInNamespaceNames());
    for (auto const& entry : namespaces) {
        EXPECT_TRUE(entry.second->isConst()) << entry.first;
    }
}

TEST(DmBuiltInDefinitions, EachDefinitionHasItsKindNamespaceAndPortsInOrder) {
    auto const library = makeLibrary();
    EXPECT_EQ(keysOf(library->getNodeDefs()).size(), builtIns().size());
    for (BuiltIn const& row : builtIns()) {
        SCOPED_TRACE(row.fullName);
        auto const def = findNative(*library, row.fullName);
        ASSERT_NE(def, nullptr);
        EXPECT_EQ(def->getNativeKind(), row.kind);
        EXPECT_EQ(def->getLibrary(), library.get());
        EXPECT_TRUE(def->isBuiltIn());
        EXPECT_TRUE(def->get_owner()->isBuiltIn());
        Names inputs;
        Names outputs;
        describePorts(*def, inputs, outputs);
        EXPECT_EQ(inputs, row.inputs);
        EXPECT_EQ(outputs, row.outputs);
        // Inputs come first.
        std::size_t index = 0;
        for (auto const& entry : def->getPortsInterface()) {
            EXPECT_EQ(entry.second->isInput(), index < row.inputs.size()) << entry.first;
            ++index;
        }
        std::string fullName;
        def->resolveFullName(fullName);
        EXPECT_EQ(fullName, row.fullName);
    }
}

TEST(DmBuiltInDefinitions, ErrorAndForceEvalBindTheirPortsByName) {
    auto const library = makeLibrary();
    auto const error = findNative(*library, "Core::Error::error");
    auto const forceEval = findNative(*library, "Core::Internal::force_eval");
    ASSERT_NE(error, nullptr);
    ASSERT_NE(forceEval, nullptr);
    EXPECT_EQ(keysOf(error->getPortsInterface().getPorts()), (Names{"input", "message", "output"}));
    EXPECT_EQ(keysOf(forceEval->getPortsInterface().getPorts()), (Names{"input", "discard", "output"}));
    EXPECT_EQ(error->getPortsInterface()["message"]->getType(), DmLibrary::getStringType());
    EXPECT_TRUE(forceEval->getPortsInterface()["discard"]->isInput());
}

TEST(DmBuiltInDefinitions, BuildArrayIsTheOneAssociativeDefinition) {
    auto const library = makeLibrary();
    for (BuiltIn const& row : builtIns()) {
        auto const def = findNative(*library, row.fullName);
        ASSERT_NE(def, nullptr);
        bool const buildArray = row.kind == DmNativeNodeDef::kBuildArray;
        EXPECT_EQ(def->associativity(), buildArray ? DmNodeDef::kLeftToRight : DmNodeDef::kNotAssociative)
            << row.fullName;
        for (auto const& entry : def->getPortsInterface()) {
            bool const associative = buildArray && entry.second->isInput();
            EXPECT_EQ(entry.second->isAssociative(), associative) << row.fullName << " " << entry.first;
        }
    }
}

TEST(DmBuiltInDefinitions, BuildArrayNodeShowsOneMultiInPort) {
    auto const library = makeLibrary();
    auto const set = findSet(*library, "Core::Array::build_array");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->associativity(), DmNodeDef::kLeftToRight);
    auto const node = DmNode::createNode("build", set);
    EXPECT_EQ(keysOf(node->getPorts()), (Names{"first", "array"}));
    ASSERT_NE(node->getMultiInPort(), nullptr);
    EXPECT_EQ(node->getMultiInPort()->getName(), "first");
}

TEST(DmBuiltInDefinitions, ComparisonsAndErrorShowTheirDisplayFormat) {
    auto const library = makeLibrary();
    EXPECT_EQ(displayFormat(*findNative(*library, "Core::Logic::equal")), "Equal to {second}");
    EXPECT_EQ(displayFormat(*findNative(*library, "Core::Logic::not_equal")), "Not equal to {second}");
    EXPECT_EQ(displayFormat(*findNative(*library, "Core::Logic::greater")), "Greater than {second}");
    EXPECT_EQ(displayFormat(*findNative(*library, "Core::Logic::greater_or_equal")),
              "Greater or equal to {second}");
    EXPECT_EQ(displayFormat(*findNative(*library, "Core::Logic::less")), "Less than {second}");
    EXPECT_EQ(displayFormat(*findNative(*library, "Core::Logic::less_or_equal")),
              "Less or equal than {second}");
    EXPECT_EQ(displayFormat(*findNative(*library, "Core::Error::error")), "Error: {message}");
}

TEST(DmBuiltInDefinitions, OnlyTheSevenHaveADisplayFormat) {
    auto const library = makeLibrary();
    std::set<std::string> const formatted{"Core::Logic::equal",   "Core::Logic::not_equal",
                                          "Core::Logic::greater", "Core::Logic::greater_or_equal",
                                          "Core::Logic::less",    "Core::Logic::less_or_equal",
                                          "Core::Error::error"};
    for (BuiltIn const& row : builtIns()) {
        auto const def = findNative(*library, row.fullName);
        EXPECT_EQ(def->getMetadata()->find("NodeValueDisplay").size(), formatted.count(row.fullName))
            << row.fullName;
    }
}

TEST(DmBuiltInDefinitions, ForceEvalIsMarkedInternal) {
    auto const library = makeLibrary();
    auto const items = findNative(*library, "Core::Internal::force_eval")->getMetadata()->find("internal");
    ASSERT_EQ(items.size(), 1u);
    bool value = false;
    ASSERT_EQ(items.front()->getBoolValue(value), DmStatus::kSuccess);
    EXPECT_TRUE(value);
    EXPECT_TRUE(findNative(*library, "Core::Graph::pass")->getMetadata()->find("internal").empty());
}

TEST(DmBuiltInDefinitions, IconsNameTheirFilesWithTheirCapitals) {
    auto const library = makeLibrary();
    auto const icon = [&library](char const* fullName) {
        return itemValues(*findNative(*library, fullName), "icon");
    };
    EXPECT_EQ(icon("Core::Array::array_dimensions"), Names{"../icons/generic_arrays.svg"});
    EXPECT_EQ(icon("Core::Array::array_size"), Names{"../icons/array_size.svg"});
    EXPECT_EQ(icon("Core::Array::build_array"), Names{"../icons/build_array.svg"});
    EXPECT_EQ(icon("Core::Logic::if"), Names{"../icons/If.svg"});
    EXPECT_EQ(icon("Core::Logic::equal"), Names{"../icons/Equal.svg"});
    EXPECT_EQ(icon("Core::Array::first_in_array"), Names{"../icons/first_in_array.svg"});
    EXPECT_EQ(icon("Core::Logic::not_equal"), Names{"../icons/not_equal.svg"});
    EXPECT_EQ(icon("Core::Array::get_from_array"), Names{"../icons/get_from_array.svg"});
    EXPECT_EQ(icon("Core::Logic::greater"), Names{"../icons/greater.svg"});
    EXPECT_EQ(icon("Core::Logic::greater_or_equal"), Names{"../icons/greater_or_equal.svg"});
    EXPECT_EQ(icon("Core::Array::last_in_array"), Names{"../icons/last_in_array.svg"});
    EXPECT_EQ(icon("Core::Logic::less"), Names{"../icons/less.svg"});
    EXPECT_EQ(icon("Core::Logic::less_or_equal"), Names{"../icons/less_or_equal.svg"});
    EXPECT_EQ(icon("Core::Array::resize_array"), Names{"../icons/resize_array.svg"});
    EXPECT_EQ(icon("Core::Array::set_in_array"), Names{"../icons/set_in_array.svg"});
}

TEST(DmBuiltInDefinitions, DefinitionsOutsideTheIconTableHaveNoIcon) {
    auto const library = makeLibrary();
    for (char const* name : {"Core::Graph::pass", "Core::Internal::force_eval", "Core::Error::error",
                             "Core::Type_Conversion::to_type_any", "Core::Type_Conversion::from_type_any",
                             "Core::Type_Conversion::promote"}) {
        EXPECT_TRUE(itemValues(*findNative(*library, name), "icon").empty()) << name;
    }
}

TEST(DmBuiltInDefinitions, EveryDefinitionIsDocumentedUnderItsFullName) {
    auto const library = makeLibrary();
    for (BuiltIn const& row : builtIns()) {
        std::string file = row.fullName;
        for (std::string::size_type at = file.find("::"); at != std::string::npos; at = file.find("::")) {
            file.replace(at, 2, "_");
        }
        Names const docs = itemValues(*findNative(*library, row.fullName), "documentation");
        ASSERT_FALSE(docs.empty()) << row.fullName;
        EXPECT_EQ(docs.front(), "../docs/${language}/" + file + ".md");
    }
}

TEST(DmBuiltInDefinitions, SevenDefinitionsHaveASecondDocumentationItem) {
    auto const library = makeLibrary();
    auto const docs = [&library](char const* fullName) {
        return itemValues(*findNative(*library, fullName), "documentation");
    };
    EXPECT_EQ(docs("Core::Logic::if"),
              (Names{"../docs/${language}/Core_Logic_if.md", "../docs/${language}/if.md"}));
    EXPECT_EQ(docs("Core::Logic::less_or_equal"), (Names{"../docs/${language}/Core_Logic_less_or_equal.md",
                                                         "../docs/${language}/less_or_equal.md"}));
    EXPECT_EQ(docs("Core::Logic::equal").size(), 2u);
    EXPECT_EQ(docs("Core::Logic::not_equal").size(), 2u);
    EXPECT_EQ(docs("Core::Logic::greater").size(), 2u);
    EXPECT_EQ(docs("Core::Logic::greater_or_equal").size(), 2u);
    EXPECT_EQ(docs("Core::Logic::less").size(), 2u);
    EXPECT_EQ(docs("Core::Graph::pass"), Names{"../docs/${language}/Core_Graph_pass.md"});
}

TEST(DmBuiltInDefinitions, DefinitionsAndTheirSetsAreConst) {
    auto const library = makeLibrary();
    for (BuiltIn const& row : builtIns()) {
        auto const def = findNative(*library, row.fullName);
        EXPECT_TRUE(def->isConst()) << row.fullName;
        EXPECT_TRUE(def->get_owner()->isConst()) << row.fullName;
    }
}

TEST(DmBuiltInDefinitions, AlteringABuiltInIsRefusedAsForAConstEntity) {
    auto const library = makeLibrary();
    auto const def = findNative(*library, "Core::Logic::if");
    auto const set = def->get_owner();
    auto const before = keysOf(def->getPortsInterface().getPorts());
    EXPECT_EQ(def->setScope(library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(def->setScope(nullptr, kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(set->setScope(nullptr, kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(def->reorderPortDescription(0, "output"), DmStatus::kConstEntity);
    EXPECT_EQ(set->reorderPortDescription(0, "output"), DmStatus::kConstEntity);
    EXPECT_FALSE(def->setName("when", kFailOnClash, kNameVerbatim));
    EXPECT_FALSE(set->setName("when", kFailOnClash, kNameVerbatim));
    EXPECT_FALSE(def->setAssociativity(DmNodeDef::kLeftToRight));
    auto const extra = DmPortDescription::newPortDescription("extra", DmLibrary::getIntType(),
                                                             kDirectionInput, kNameVerbatim);
    EXPECT_FALSE(def->addPortDescription(extra, kFailOnClash));
    EXPECT_FALSE(set->addPortDescription(extra, kFailOnClash));
    EXPECT_FALSE(def->removePortDescription(def->getPortsInterface()["condition"]));
    EXPECT_FALSE(def->renamePortDescription("condition", "test"));
    EXPECT_EQ(keysOf(def->getPortsInterface().getPorts()), before);
    EXPECT_EQ(def->getName(), "if");
    EXPECT_EQ(def->getScope(), set->getScope());
}

TEST(DmBuiltInDefinitions, ResetBuildsTheDefinitionsAnew) {
    auto const library = makeLibrary();
    std::weak_ptr<DmNativeNodeDef> const before = findNative(*library, "Core::Logic::if");
    ASSERT_TRUE(library->reset());
    EXPECT_TRUE(before.expired());
    auto const after = findNative(*library, "Core::Logic::if");
    ASSERT_NE(after, nullptr);
    EXPECT_TRUE(after->isConst());
    EXPECT_EQ(library->getNodeDefs().size(), 21u);
}

TEST(DmBuiltInDefinitions, TwoLibrariesHoldSeparateDefinitions) {
    auto const first = makeLibrary();
    auto const second = makeLibrary();
    auto const a = findNative(*first, "Core::Logic::if");
    auto const b = findNative(*second, "Core::Logic::if");
    EXPECT_NE(a, b);
    EXPECT_EQ(a->getLibrary(), first.get());
    EXPECT_EQ(b->getLibrary(), second.get());
}

TEST(DmBuiltInDefinitions, ANewLibraryLogsNothing) {
    auto const library = makeLibrary();
    EXPECT_EQ(library->getErrorLogger()->getMessageCount(), 0u);
}
