// The corpus files of compounds, nodes, connections, values, watch points,
// loops and terminal states: the model each good file describes, and what is
// left of each bad file once its faulty objects have been reported and skipped.
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmCppOperator.h>
#include <KestoDM/graph/DmForEachCompound.h>
#include <KestoDM/graph/DmIterateCompound.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmTerminalStates.h>
#include <KestoDM/graph/DmValueNodeDef.h>
#include <KestoDM/graph/DmWatchPoint.h>
#include <KestoDM/graph/DmWhileCompound.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "assets/AssetTestSupport.h"
#include "reader/CompoundReadingSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Kesto;
using KestoTest::joined;

namespace {

using Strings = std::vector<std::string>;

class DmReaderCorpusCompoundsTest : public KestoTest::CompoundFileTest {
protected:
    /// Loads the corpus file `name` by its absolute path; the printed lines
    /// go to m_printed and the compounds read to m_result.
    DmStatus loadCorpus(std::string const& name) {
        DmStatus const status =
            m_library->loadGraph(KestoTest::longForm(std::string(KESTODM_TEST_DATA_DIR) + "/reader/" + name),
                                 DmLibrary::LoadOptions(), m_result);
        m_printed = m_library.takePrinted();
        return status;
    }

    /// The node `node` of the compound `compound`; the interface node for an empty name.
    std::shared_ptr<DmNode> node(std::string const& compoundName, std::string const& nodeName) const {
        auto const found = compound(compoundName);
        if (!found) {
            return nullptr;
        }
        return nodeName.empty() ? found->getSelfNode() : found->findNode(nodeName);
    }

    std::shared_ptr<DmPort> port(std::string const& compoundName, std::string const& nodeName,
                                 std::string const& portName) const {
        auto const found = node(compoundName, nodeName);
        return found ? (*found)[portName] : nullptr;
    }

    /// The full name of the definition of `node`; empty when it has none.
    static std::string definitionOf(DmNode const& node) {
        std::string out;
        if (node.getNodeDef() != nullptr) {
            node.getNodeDef()->resolveFullName(out);
        }
        return out;
    }

    /// The one overload behind the definition of `node` (a node names an
    /// overload set), or the definition itself.
    static DmNodeDef const* overloadOf(DmNode const& node) {
        auto const* const set = dynamic_cast<DmOverloadSet const*>(node.getNodeDef());
        if (set == nullptr) {
            return node.getNodeDef();
        }
        return set->getOverloads().size() == 1 ? set->getOverloads().front().get() : nullptr;
    }

    /// The names of the nodes of `compound`, in their order.
    Strings nodeNames(std::string const& compoundName) const {
        Strings out;
        for (auto const& entry : compound(compoundName)->getNodes()) {
            out.push_back(entry.first);
        }
        return out;
    }

    /// "<source path> -> <target path>" for each connection of `compound`, in order.
    Strings connectionsOf(std::string const& compoundName) const {
        Strings out;
        for (auto const& connection : compound(compoundName)->getConnections()) {
            out.push_back(pathOf(*connection->getSourcePort()) + " -> " +
                          pathOf(*connection->getTargetPort()));
        }
        return out;
    }

    static std::string pathOf(DmPort const& port) {
        DmNode const* const owner = port.getNode();
        return (owner->isSelfNode() ? std::string() : owner->getName()) + "." + port.getName();
    }

    /// The names of the members or entries of `port`, in their order.
    static Strings membersOf(DmPort const& port) {
        Strings out;
        for (auto const& entry : port.getMembers()) {
            out.push_back(entry.first);
        }
        return out;
    }

    /// "<terminal port name>=<on|off>" for each state, in order.
    static Strings statesOf(DmTerminalStates const& states) {
        Strings out;
        for (auto const& state : states) {
            out.push_back(state.getPort()->getName() + (state.isEnabled() ? "=on" : "=off"));
        }
        return out;
    }

    /// The names of the ports of the interface of `compound`, in their order.
    Strings portNames(std::string const& compoundName) const {
        Strings out;
        for (auto const& entry : compound(compoundName)->getPortsInterface().getPorts()) {
            out.push_back(entry.first);
        }
        return out;
    }

    /// The text of the one string item `name` of `metadata`; empty when there is none.
    static std::string stringItem(std::shared_ptr<DmMetadata> const& metadata, std::string const& name) {
        std::string out;
        if (metadata && metadata->find(name).size() == 1) {
            EXPECT_EQ(metadata->find(name).front()->getStringValue(out), DmStatus::kSuccess);
        }
        return out;
    }

    /// The default value of the port as a `T`, or null.
    template <class T>
    std::shared_ptr<T> defaultOf(std::shared_ptr<DmPort> const& port) const {
        return port ? std::dynamic_pointer_cast<T>(port->getDefaultValue()) : nullptr;
    }

    /// The description of the port `name` of `compound`'s interface node.
    DmPortDescription const* inside(std::string const& compoundName, std::string const& name) const {
        auto const found = port(compoundName, "", name);
        return found ? found->getPortDescription().get() : nullptr;
    }
};

} // namespace

// ---------------------------------------------------------------------------
// Good files

TEST_F(DmReaderCorpusCompoundsTest, CompoundBasicsBuildPortsNodesConnectionsAndValues) {
    ASSERT_EQ(loadCorpus("300_compound_basics.json"), DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const basic = compound("calc::basic");
    ASSERT_TRUE(basic);
    EXPECT_EQ(typeid(*basic), typeid(DmCompound));
    EXPECT_EQ(basic->getName(), "basic");
    ASSERT_TRUE(basic->getScope());
    EXPECT_EQ(basic->getScope()->getLocalScopeName(), "calc");
    ASSERT_TRUE(basic->getURI());
    EXPECT_EQ(basic->getURI()->getName(), "file:///300_compound_basics.json");
    EXPECT_EQ(stringItem(basic->getMetadata(), "author"), "kesto");

    EXPECT_EQ(portNames("calc::basic"), (Strings{"in", "scale", "out"}));
    auto const& ports = basic->getPortsInterface();
    EXPECT_EQ(ports["in"]->getDirection(), kDirectionInput);
    EXPECT_EQ(ports["in"]->getType(), DmLibrary::getIntType());
    EXPECT_EQ(ports["scale"]->getType(), DmLibrary::getFloatType());
    EXPECT_EQ(ports["out"]->getDirection(), kDirectionOutput);

    EXPECT_EQ(nodeNames("calc::basic"), (Strings{"adder", "number", "ratio", "later", "outward", "global"}));
    auto const adder = node("calc::basic", "adder");
    EXPECT_TRUE(dynamic_cast<DmCppOperator const*>(overloadOf(*adder)));
    EXPECT_EQ(definitionOf(*adder), "calc::add");
    ASSERT_EQ(adder->getMetadata()->find("posX").size(), 1u);
    auto const posX =
        std::dynamic_pointer_cast<DmIntValue>(adder->getMetadata()->find("posX").front()->getValue());
    ASSERT_TRUE(posX);
    EXPECT_EQ(posX->getData(), 120);
    EXPECT_EQ(node("calc::basic", "number")->getNodeDef(),
              DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType()).get());
    EXPECT_EQ(node("calc::basic", "ratio")->getNodeDef(),
              DmValueNodeDef::getValueNodeDef(DmLibrary::getFloatType()).get());
    EXPECT_EQ(definitionOf(*node("calc::basic", "later")), "calc::later");
    // Found from the compound's namespace outward; the leading "::" starts in the global namespace.
    EXPECT_EQ(definitionOf(*node("calc::basic", "outward")), "calc::helper");
    EXPECT_EQ(definitionOf(*node("calc::basic", "global")), "helper");

    EXPECT_EQ(connectionsOf("calc::basic"), (Strings{".in -> adder.a", "number.output -> adder.b",
                                                     "adder.sum -> later.x", "later.y -> .out"}));
    EXPECT_EQ(connectionsOf("calc::later"), (Strings{".x -> .y"}));

    auto const number = defaultOf<DmIntValue>(port("calc::basic", "number", "value"));
    ASSERT_TRUE(number);
    EXPECT_EQ(number->getData(), 5);
    auto const ratio = defaultOf<DmFloatValue>(port("calc::basic", "ratio", "value"));
    ASSERT_TRUE(ratio);
    EXPECT_FLOAT_EQ(ratio->getData(), 0.5f);
    auto const scale = defaultOf<DmFloatValue>(port("calc::basic", "", "scale"));
    ASSERT_TRUE(scale);
    EXPECT_FLOAT_EQ(scale->getData(), 2.5f);
}

TEST_F(DmReaderCorpusCompoundsTest, NodeNamingACompoundLaterInTheFileResolves) {
    ASSERT_EQ(loadCorpus("300_compound_basics.json"), DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const later = node("calc::basic", "later");
    ASSERT_TRUE(later);
    EXPECT_EQ(overloadOf(*later), compound("calc::later").get());
    EXPECT_TRUE((*later)["x"] && (*later)["y"]);
}

TEST_F(DmReaderCorpusCompoundsTest, NestedCompoundsAreScopedInTheirParentsWithReservedNames) {
    ASSERT_EQ(loadCorpus("301_nested_compounds.json"), DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const outer = compound("shapes::outer");
    auto const inner = compound("shapes::outer::inner");
    auto const deep = compound("shapes::outer::inner::deep");
    auto const scoped = compound("shapes::outer::scoped");
    ASSERT_TRUE(outer && inner && deep && scoped);
    EXPECT_EQ(inner->getScope(), static_cast<DmScope*>(outer.get()));
    EXPECT_EQ(deep->getScope(), static_cast<DmScope*>(inner.get()));
    EXPECT_EQ(scoped->getScope(), static_cast<DmScope*>(outer.get()));
    EXPECT_EQ(stringItem(scoped->getMetadata(), "tag"), "scoped");
    EXPECT_EQ(inner->getURI(), outer->getURI());

    EXPECT_EQ(overloadOf(*node("shapes::outer", "i")), inner.get());
    EXPECT_EQ(overloadOf(*node("shapes::outer", "s")), scoped.get());
    EXPECT_EQ(overloadOf(*node("shapes::outer::inner", "d")), deep.get());
    EXPECT_EQ(connectionsOf("shapes::outer"), (Strings{".in -> i.v"}));

    ASSERT_TRUE(outer->getReservedNodeNames());
    Strings reserved;
    for (auto const& name : *outer->getReservedNodeNames()) {
        reserved.push_back(name.str());
    }
    EXPECT_EQ(reserved, (Strings{"spare", "keep", "hold"}));
    EXPECT_TRUE(outer->isReservedNodeName("hold"));
    EXPECT_FALSE(inner->isReservedNodeName("hold"));
}

TEST_F(DmReaderCorpusCompoundsTest, ResultMapHoldsTheCompoundsOfTheFileParentsFirst) {
    ASSERT_EQ(loadCorpus("301_nested_compounds.json"), DmStatus::kSuccess);
    Strings keys;
    for (auto const& entry : *m_result) {
        keys.push_back(entry.first);
    }
    EXPECT_EQ(keys, (Strings{"shapes::outer", "shapes::outer::inner", "shapes::outer::inner::deep",
                             "shapes::outer::scoped"}));
    EXPECT_EQ((*m_result)["shapes::outer"], m_library->getCompounds().find("shapes::outer")->second);
}

TEST_F(DmReaderCorpusCompoundsTest, WatchPointsHoldTheirStateParametersAndMetadata) {
    ASSERT_EQ(loadCorpus("302_watch_points.json"), DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const output = port("probe::watched", "n", "output")->getWatchPoint();
    ASSERT_TRUE(output);
    EXPECT_TRUE(output->enabled());
    EXPECT_EQ(output->getParameters(), (DmWatchPoint::Parameters{{"color", "red"}, {"width", "2"}}));
    EXPECT_EQ(stringItem(output->getMetadata(), "label"), "result");

    auto const in = port("probe::watched", "", "in")->getWatchPoint();
    ASSERT_TRUE(in);
    EXPECT_FALSE(in->enabled());
    EXPECT_EQ(in->getParameters(), (DmWatchPoint::Parameters{{"first", "1"}, {"second", "2"}}));

    auto const value = port("probe::watched", "n", "value")->getWatchPoint();
    ASSERT_TRUE(value);
    EXPECT_TRUE(value->getParameters().empty());
    EXPECT_FALSE(port("probe::watched", "", "out")->getWatchPoint());
}

TEST_F(DmReaderCorpusCompoundsTest, ImportedURIResolvesToTheNamedFile) {
    ASSERT_EQ(loadCorpus("303_uri_imported.json"), DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const copy = compound("imports::copy");
    ASSERT_TRUE(copy && copy->getImportedURI());
    EXPECT_EQ(copy->getImportedURI()->getName(), "file:///300_compound_basics.json");
    EXPECT_TRUE(copy->isImported());
    // Only named: the imported file is not read.
    EXPECT_FALSE(compound("calc::basic"));
    ASSERT_TRUE(compound("imports::own"));
    EXPECT_FALSE(compound("imports::own")->getImportedURI());
}

TEST_F(DmReaderCorpusCompoundsTest, TerminalStatesInBothFormsAndOnNodes) {
    ASSERT_EQ(loadCorpus("304_terminal_states.json"), DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const listed = compound("term::listed");
    ASSERT_TRUE(listed);
    EXPECT_EQ(statesOf(listed->getDefaultTerminalStates()), (Strings{"shown=off", "played=on"}));
    std::shared_ptr<DmOverloadSet> display;
    ASSERT_TRUE(m_library->getGlobalNamespace()->findNodeDef("out::Display", display));
    auto const terminal = std::dynamic_pointer_cast<DmTerminalNodeDef>(display->getOverloads().front());
    ASSERT_TRUE(terminal);
    EXPECT_EQ(listed->getDefaultTerminalStates().getStates()[0].getPort(),
              terminal->getPortsInterface()["shown"]);

    auto const older = compound("term::older");
    EXPECT_EQ(statesOf(older->getDefaultTerminalStates()), (Strings{"logged=off", "played=off"}));
    EXPECT_TRUE(older->getMetadata()->find("terminal_node_disabled_flags").empty());
    EXPECT_EQ(stringItem(older->getMetadata(), "kept"), "yes");

    EXPECT_EQ(statesOf(node("term::user", "listed")->getTerminalStates()), (Strings{"shown=on"}));
    EXPECT_EQ(statesOf(node("term::user", "off")->getTerminalStates()), (Strings{"shown=off", "played=off"}));
    // With terminalStates given, deactivatedTerminals are not read.
    EXPECT_EQ(statesOf(node("term::user", "both")->getTerminalStates()), (Strings{"played=off"}));
}

TEST_F(DmReaderCorpusCompoundsTest, MultiInEntriesAndFanInMembersAreMade) {
    ASSERT_EQ(loadCorpus("305_multi_in_fan_in.json"), DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const m = node("bag::user", "m");
    ASSERT_TRUE(m && m->getMultiInPort());
    EXPECT_EQ(membersOf(*m->getMultiInPort()), (Strings{"first", "second", "third"}));
    EXPECT_EQ(m->getNodeDef()->associativity(), DmNodeDef::kLeftToRight);

    auto const g = node("bag::user", "g");
    ASSERT_TRUE(g);
    EXPECT_TRUE((*g)["extras"]->isFanIn());
    EXPECT_EQ(membersOf(*(*g)["extras"]), (Strings{"e0", "e1"}));
    // The default fan-in port of the definition is not fan-in once the names are given.
    EXPECT_EQ(g->getNodeDef()->getPortsInterface()["items"]->getPortKind(), kPortDefaultFanIn);
    EXPECT_FALSE((*g)["items"]->isFanIn());
    // Paths go on to entries and members after a further point.
    EXPECT_EQ(connectionsOf("bag::user"),
              (Strings{".x -> g.items", ".x -> g.e1", ".x -> m.second", "m.merged -> .y"}));
    std::shared_ptr<DmPort> e1;
    std::shared_ptr<DmPort> second;
    ASSERT_TRUE((*g)["extras"]->getMember("e1", e1));
    ASSERT_TRUE(m->getMultiInPort()->getMember("second", second));
    auto const& connections = compound("bag::user")->getConnections();
    ASSERT_EQ(connections.size(), 4u);
    EXPECT_EQ(connections[1]->getTargetPort(), e1.get());
    EXPECT_EQ(connections[2]->getTargetPort(), second.get());
}

TEST_F(DmReaderCorpusCompoundsTest, LoopCompoundsLinkTheirStateAndInOutPorts) {
    ASSERT_EQ(loadCorpus("306_loops.json"), DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    ASSERT_TRUE(std::dynamic_pointer_cast<DmWhileCompound>(compound("loops::untilDone")));
    ASSERT_TRUE(std::dynamic_pointer_cast<DmIterateCompound>(compound("loops::steps")));
    ASSERT_TRUE(std::dynamic_pointer_cast<DmForEachCompound>(compound("loops::each")));

    auto const count = inside("loops::untilDone", "count");
    ASSERT_TRUE(count && count->getLinkedPort());
    EXPECT_EQ(count->getLinkedPort()->getName(), "total");

    auto const acc = inside("loops::steps", "acc");
    ASSERT_TRUE(acc && acc->getLinkedPort());
    EXPECT_EQ(acc->getLinkedPort()->getName(), "result");
    EXPECT_EQ(compound("loops::steps")->getPortsInterface()["limit"]->getIterationAttribute(),
              kIterationLimit);
    EXPECT_FALSE(inside("loops::steps", "limit")->getLinkedPort());

    auto const items = inside("loops::each", "items");
    ASSERT_TRUE(items && items->getLinkedPort());
    EXPECT_EQ(items->getLinkedPort()->getName(), "mapped");
    EXPECT_TRUE(items->isIterationInOutTarget());

    EXPECT_EQ(overloadOf(*node("loops::user", "w")), compound("loops::untilDone").get());
    EXPECT_EQ(overloadOf(*node("loops::user", "i")), compound("loops::steps").get());
    EXPECT_EQ(overloadOf(*node("loops::user", "f")), compound("loops::each").get());
}

// ---------------------------------------------------------------------------
// Bad files: what loads after the faulty objects

TEST_F(DmReaderCorpusCompoundsTest, CompoundsAfterBadNamesAndFormsStillLoad) {
    ASSERT_EQ(loadCorpus("350_bad_compound_names.json"), DmStatus::kFailure);
    EXPECT_EQ(m_printed.size(), 8u) << joined(m_printed);
    // Nameless compounds are left out, with their nodes.
    EXPECT_EQ(m_result->size(), 6u);
    EXPECT_TRUE(compound("names::2nd"));
    EXPECT_TRUE(compound("names::noPorts"));
    EXPECT_TRUE(compound("names::badReserved"));
    EXPECT_FALSE(compound("names::badReserved")->getReservedNodeNames() &&
                 !compound("names::badReserved")->getReservedNodeNames()->empty());
    auto const fine = compound("names::fine");
    ASSERT_TRUE(fine);
    EXPECT_EQ(portNames("names::fine"), (Strings{"in"}));
    EXPECT_EQ(stringItem(fine->getMetadata(), "kept"), "yes");
    EXPECT_EQ(nodeNames("names::fine"), (Strings{"n"}));
    EXPECT_EQ(connectionsOf("names::fine"), (Strings{".in -> n.value"}));
}

TEST_F(DmReaderCorpusCompoundsTest, NestedCompoundWithAnotherCompoundsScopeIsReportedAndStaysUnderItsParent) {
    ASSERT_EQ(loadCorpus("351_bad_nested_scope.json"), DmStatus::kFailure);
    EXPECT_EQ(m_printed,
              (Strings{KestoTest::line(
                  "error", "file:///351_bad_nested_scope.json", "Bad nested compound scope.",
                  "The nested compound 'nest::other::inner' does not have a valid scope. Its scope "
                  "should be 'nest::outer'.")}));
    auto const outer = compound("nest::outer");
    auto const inner = compound("nest::outer::inner");
    ASSERT_TRUE(outer && inner);
    EXPECT_EQ(inner->getScope(), static_cast<DmScope*>(outer.get()));
    EXPECT_FALSE(compound("nest::other::inner"));
    EXPECT_EQ(nodeNames("nest::outer::inner"), (Strings{"v"}));
    EXPECT_EQ(overloadOf(*node("nest::outer", "i")), inner.get());
    ASSERT_TRUE(compound("nest::outer::after"));
    EXPECT_EQ(compound("nest::outer::after")->getScope(), static_cast<DmScope*>(outer.get()));
}

TEST_F(DmReaderCorpusCompoundsTest, ShortImportedURIGivesTheMessageNamingTheKey) {
    ASSERT_EQ(loadCorpus("352_bad_uri_imported.json"), DmStatus::kSuccess);
    ASSERT_FALSE(m_printed.empty());
    EXPECT_EQ(m_printed.front(),
              KestoTest::line("warning", "file:///352_bad_uri_imported.json", "Imported uri is too short.",
                              "Imported uri uriImported may be missing its prefix."));
    ASSERT_TRUE(compound("imp::short"));
    EXPECT_FALSE(compound("imp::short")->getImportedURI());
}

TEST_F(DmReaderCorpusCompoundsTest, ImportedURIOfAStreamResolverIsNotAFileURI) {
    // Only a host resolver can hand out URIs of another kind than files.
    m_library->registerAssetResolver(std::make_shared<KestoTest::HostResolver>(
        "pipe", DmAssetResolver::kAccessInputStream, "/unused.json"));
    ASSERT_EQ(loadCompounds(R"([{"name": "imp::piped", "uriImported": "pipe:graph", "ports": []}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(m_printed,
              (Strings{KestoTest::line("warning", "file:///a.json", "Imported URI is not a file URI.",
                                       "'pipe:graph' is not a valid URI scheme to be used as imported URI. "
                                       "The URI's scheme must be 'file:'.")}));
    ASSERT_TRUE(compound("imp::piped"));
    EXPECT_FALSE(compound("imp::piped")->getImportedURI());
}

TEST_F(DmReaderCorpusCompoundsTest, CompoundsWithBadImportedURIsHaveNoneAndTheLastIsImported) {
    ASSERT_EQ(loadCorpus("352_bad_uri_imported.json"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed.size(), 3u) << joined(m_printed);
    ASSERT_TRUE(compound("imp::scheme") && compound("imp::missing"));
    EXPECT_FALSE(compound("imp::scheme")->getImportedURI());
    EXPECT_FALSE(compound("imp::missing")->getImportedURI());
    ASSERT_TRUE(compound("imp::fine") && compound("imp::fine")->getImportedURI());
    EXPECT_EQ(compound("imp::fine")->getImportedURI()->getName(), "file:///300_compound_basics.json");
}

TEST_F(DmReaderCorpusCompoundsTest, BadTerminalStatesLeaveTheGoodOnes) {
    ASSERT_EQ(loadCorpus("353_bad_terminal_states.json"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed.size(), 10u) << joined(m_printed);
    EXPECT_TRUE(compound("states::text")->getDefaultTerminalStates().empty());
    EXPECT_TRUE(compound("states::entries")->getDefaultTerminalStates().empty());
    EXPECT_TRUE(compound("states::unresolved")->getDefaultTerminalStates().empty());
    // The good entry of the older form is applied, and the item removed.
    auto const older = compound("states::older");
    EXPECT_EQ(statesOf(older->getDefaultTerminalStates()), (Strings{"on=off"}));
    EXPECT_TRUE(older->getMetadata()->find("terminal_node_disabled_flags").empty());
    EXPECT_EQ(statesOf(compound("states::fine")->getDefaultTerminalStates()), (Strings{"on=off"}));
}

TEST_F(DmReaderCorpusCompoundsTest, BadLoopRowsLeaveTheGoodLinks) {
    ASSERT_EQ(loadCorpus("354_bad_loop_specialisations.json"), DmStatus::kFailure);
    EXPECT_EQ(m_printed.size(), 12u) << joined(m_printed);
    EXPECT_TRUE(std::dynamic_pointer_cast<DmWhileCompound>(compound("spec::w")));
    EXPECT_TRUE(std::dynamic_pointer_cast<DmIterateCompound>(compound("spec::i")));
    EXPECT_TRUE(std::dynamic_pointer_cast<DmForEachCompound>(compound("spec::f")));
    ASSERT_TRUE(inside("spec::rows", "s")->getLinkedPort());
    EXPECT_EQ(inside("spec::rows", "s")->getLinkedPort()->getName(), "t");
    EXPECT_FALSE(inside("spec::iterRows", "target")->getLinkedPort());
    ASSERT_TRUE(inside("spec::iterRows", "acc")->getLinkedPort());
    EXPECT_EQ(inside("spec::iterRows", "acc")->getLinkedPort()->getName(), "res");
    ASSERT_TRUE(inside("spec::eachRows", "items")->getLinkedPort());
    EXPECT_EQ(inside("spec::eachRows", "items")->getLinkedPort()->getName(), "out");
}

TEST_F(DmReaderCorpusCompoundsTest, SecondNodeOfOneNameIsDroppedAndConnectionsGoToTheFirst) {
    ASSERT_EQ(loadCorpus("355_bad_nodes.json"), DmStatus::kSuccess);
    ASSERT_FALSE(m_printed.empty());
    EXPECT_EQ(m_printed.back(),
              KestoTest::line("warning", "file:///355_bad_nodes.json", "Duplicate node name.",
                              "Node name 'first' is not unique for this compound."));
    auto const first = node("nodes::host", "first");
    ASSERT_TRUE(first);
    EXPECT_EQ(definitionOf(*first), "ops::pass");
    EXPECT_EQ(stringItem(first->getMetadata(), "which"), "first");
    EXPECT_EQ(first->getConnections().size(), 2u);
    EXPECT_EQ(connectionsOf("nodes::host"), (Strings{"source.output -> first.in", "first.out -> after.in"}));
}

TEST_F(DmReaderCorpusCompoundsTest, NodesAfterBadOnesStillLoad) {
    ASSERT_EQ(loadCorpus("355_bad_nodes.json"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed.size(), 11u) << joined(m_printed);
    EXPECT_EQ(nodeNames("nodes::host"),
              (Strings{"bad name", "extra", "undefined", "first", "source", "after"}));
    EXPECT_EQ(node("nodes::host", "extra")->getNodeDef(),
              DmValueNodeDef::getValueNodeDef(DmLibrary::getIntType()).get());
    EXPECT_EQ(definitionOf(*node("nodes::host", "bad name")), "ops::pass");
    EXPECT_EQ(definitionOf(*node("nodes::host", "after")), "ops::pass");
}

TEST_F(DmReaderCorpusCompoundsTest, BadMultiInNamesLeaveTheGoodEntries) {
    ASSERT_EQ(loadCorpus("356_bad_multi_in.json"), DmStatus::kFailure);
    EXPECT_EQ(m_printed.size(), 5u) << joined(m_printed);
    EXPECT_FALSE(node("multi::host", "plain")->getMultiInPort());
    EXPECT_EQ(membersOf(*node("multi::host", "names")->getMultiInPort()), (Strings{"x y", "e1"}));
    // A repeated entry name is made unique.
    Strings const twice = membersOf(*node("multi::host", "twice")->getMultiInPort());
    ASSERT_EQ(twice.size(), 3u);
    EXPECT_EQ(twice[0], "e0");
    EXPECT_NE(twice[1], "e0");
    EXPECT_EQ(twice[2], "e2");
    EXPECT_EQ(membersOf(*node("multi::host", "fine")->getMultiInPort()), (Strings{"m0", "m1"}));
}

TEST_F(DmReaderCorpusCompoundsTest, BadFanInNamesLeaveTheGoodMembers) {
    ASSERT_EQ(loadCorpus("357_bad_fan_in.json"), DmStatus::kFailure);
    EXPECT_EQ(m_printed.size(), 7u) << joined(m_printed);
    EXPECT_FALSE((*node("fan::host", "assoc"))["a"]->isFanIn());
    EXPECT_FALSE((*node("fan::host", "wrong"))["all"]->isFanIn());
    auto const items = (*node("fan::host", "wrong"))["items"];
    EXPECT_TRUE(items->isFanIn());
    Strings const members = membersOf(*items);
    ASSERT_EQ(members.size(), 3u);
    EXPECT_EQ(members[0], "a b");
    EXPECT_EQ(members[1], "m1");
    auto const more = (*node("fan::host", "fine"))["more"];
    EXPECT_TRUE(more->isFanIn());
    EXPECT_EQ(membersOf(*more), (Strings{"f0", "f1"}));
}

TEST_F(DmReaderCorpusCompoundsTest, RefusedConnectionsAreReportedByTheCompoundAndTheGoodOnesMade) {
    ASSERT_EQ(loadCorpus("358_bad_connections.json"), DmStatus::kFailure);
    ASSERT_EQ(m_printed.size(), 11u) << joined(m_printed);
    EXPECT_EQ(m_printed[3], KestoTest::line("warning", "links::host", "Connection failed.",
                                            "One or more parameters are invalid in the connection involving "
                                            "'nobody.out' and 'b.in' (source or target nodes are not in "
                                            "compound)."));
    EXPECT_EQ(m_printed[9], KestoTest::line("error", "b", "Connection failed.",
                                            "One or more parameters are invalid in the connection involving "
                                            "'a.out' and 'b.in' (redundant connection)."));
    EXPECT_EQ(m_printed[10], KestoTest::line("error", "b", "Connection failed.",
                                             "One or more parameters are invalid in the connection involving "
                                             "'.x' and 'b.in' (target already connected)."));
    EXPECT_EQ(connectionsOf("links::host"), (Strings{".x -> a.in", "a.out -> b.in", "b.out -> .y"}));
}

TEST_F(DmReaderCorpusCompoundsTest, ValuePathWithAMissingNodeGivesNodeNotFound) {
    ASSERT_EQ(loadCorpus("359_bad_values.json"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed[4], KestoTest::line("warning", "file:///359_bad_values.json", "Node not found.",
                                            "The node 'nobody' could not be found."))
        << joined(m_printed);
}

TEST_F(DmReaderCorpusCompoundsTest, ValuePathWithoutAPointGivesPortBadlyFormed) {
    ASSERT_EQ(loadCorpus("359_bad_values.json"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed[3], KestoTest::line("warning", "file:///359_bad_values.json", "Port badly formed.",
                                            "The port 'count' is not a valid port."))
        << joined(m_printed);
}

TEST_F(DmReaderCorpusCompoundsTest, ValuesAfterBadOnesAreSet) {
    ASSERT_EQ(loadCorpus("359_bad_values.json"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed.size(), 8u) << joined(m_printed);
    EXPECT_FALSE(port("vals::host", "n", "in")->hasImmediateValue());
    auto const count = defaultOf<DmIntValue>(port("vals::host", "n", "count"));
    ASSERT_TRUE(count);
    EXPECT_EQ(count->getData(), 4);
    auto const x = defaultOf<DmIntValue>(port("vals::host", "", "x"));
    ASSERT_TRUE(x);
    EXPECT_EQ(x->getData(), 9);
}

TEST_F(DmReaderCorpusCompoundsTest, WatchPointsAfterBadOnesAreSet) {
    ASSERT_EQ(loadCorpus("360_bad_watch_points.json"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed.size(), 5u) << joined(m_printed);
    EXPECT_FALSE(port("watch::host", "n", "value")->getWatchPoint());
    auto const watch = port("watch::host", "n", "output")->getWatchPoint();
    ASSERT_TRUE(watch);
    EXPECT_TRUE(watch->enabled());
    EXPECT_EQ(watch->getParameters(), (DmWatchPoint::Parameters{{"color", "blue"}}));
}

TEST_F(DmReaderCorpusCompoundsTest, CompoundThatCannotBeScopedEndsTheReadWithStatusSixAndTheFirstStays) {
    ASSERT_EQ(loadCorpus("361_bad_scoping.json"), DmStatus::kInvalidArgument);
    EXPECT_EQ(m_printed.size(), 2u) << joined(m_printed);
    auto const twice = compound("clash::twice");
    ASSERT_TRUE(twice);
    EXPECT_EQ(twice->getMetadata()->find("first").size(), 1u);
    EXPECT_TRUE(twice->getMetadata()->find("second").empty());
    auto const t = node("clash::after", "t");
    ASSERT_TRUE(t);
    EXPECT_EQ(overloadOf(*t), twice.get());
}

TEST_F(DmReaderCorpusCompoundsTest, BadNodeTerminalStatesLeaveTheGoodOnes) {
    ASSERT_EQ(loadCorpus("362_bad_node_terminal_states.json"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed.size(), 11u) << joined(m_printed);
    EXPECT_EQ(nodeNames("nts::host"),
              (Strings{"text", "entries", "unresolved", "deactivatedText", "deactivatedEntries", "fine"}));
    EXPECT_TRUE(node("nts::host", "entries")->getTerminalStates().empty());
    EXPECT_TRUE(node("nts::host", "deactivatedEntries")->getTerminalStates().empty());
    EXPECT_EQ(statesOf(node("nts::host", "fine")->getTerminalStates()), (Strings{"on=off"}));
}

TEST_F(DmReaderCorpusCompoundsTest, AssociativeCompoundAfterBadOnesIsUsedWithEntries) {
    ASSERT_EQ(loadCorpus("363_bad_compound_associativity.json"), DmStatus::kFailure);
    EXPECT_EQ(m_printed.size(), 4u) << joined(m_printed);
    EXPECT_EQ(compound("assoc::badText")->associativity(), DmNodeDef::kNotAssociative);
    EXPECT_EQ(compound("assoc::three")->associativity(), DmNodeDef::kRightToLeft);
    EXPECT_EQ(compound("assoc::fine")->associativity(), DmNodeDef::kLeftToRight);
    auto const f = node("assoc::user", "f");
    ASSERT_TRUE(f && f->getMultiInPort());
    EXPECT_EQ(membersOf(*f->getMultiInPort()), (Strings{"e0", "e1", "e2"}));
}

TEST_F(DmReaderCorpusCompoundsTest, BadFeedbackLinksLeaveThePortsUnlinked) {
    ASSERT_EQ(loadCorpus("364_bad_feedback.json"), DmStatus::kFailure);
    EXPECT_EQ(m_printed.size(), 3u) << joined(m_printed);
    auto const& plain = compound("fb::plain")->getPortsInterface();
    // Linked from "fed" only: the link goes both ways.
    ASSERT_TRUE(plain["out"]->getLinkedPort());
    EXPECT_EQ(plain["out"]->getLinkedPort()->getName(), "fed");
    EXPECT_FALSE(plain["in"]->getLinkedPort());
    ASSERT_TRUE(plain["fed"]->getLinkedPort());
    EXPECT_EQ(plain["fed"]->getLinkedPort()->getName(), "out");
    // The loop's own state link is still made.
    ASSERT_TRUE(inside("fb::loop", "s")->getLinkedPort());
    EXPECT_EQ(inside("fb::loop", "s")->getLinkedPort()->getName(), "t");
}

// ---------------------------------------------------------------------------
// Found while writing the corpus

// The warning names the file of the existing compound; today the text ends in "from ''".
TEST_F(DmReaderCorpusCompoundsTest, IncompatibleCompoundNamesTheFileOfTheExistingDefinition) {
    EXPECT_EQ(load(R"(, "compounds": [
        {"name": "clash::twice", "ports": [{"portName": "a", "portDirection": "input", "portType": "int"}]},
        {"name": "clash::twice", "ports": [{"portName": "b", "portDirection": "output", "portType": "int"}]}])"),
              DmStatus::kInvalidArgument);
    ASSERT_FALSE(m_printed.empty());
    EXPECT_EQ(
        m_printed.front(),
        warning("Invalid overload ports interface.",
                "Compound 'clash::twice' defined in 'file:///a.json' has incompatible ports interface with "
                "existing definition from 'file:///a.json'."));
}

TEST_F(DmReaderCorpusCompoundsTest, IncompatibleCompoundUnderMakeUniqueIsRenamedWithoutAWarning) {
    EXPECT_EQ(load(R"(, "compounds": [
        {"name": "clash::twice", "ports": [{"portName": "a", "portDirection": "input", "portType": "int"}]},
        {"name": "clash::twice", "ports": [{"portName": "b", "portDirection": "output", "portType": "int"}]}])",
                   "a.json", kMakeUnique),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    ASSERT_TRUE(compound("clash::twice") && compound("clash::twice1"));
    EXPECT_TRUE(compound("clash::twice1")->getPortsInterface().hasPort("b"));
}
