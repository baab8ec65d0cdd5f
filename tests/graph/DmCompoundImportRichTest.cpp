// Importing a compound that uses every part of the model: nested private
// compounds, an associative node with multi-in entries, a fan-in port, struct
// members, watch points on node ports and on the compound's own ports, linked
// feedback ports, metadata everywhere, default values and overrides, and
// connections through entries, members and the self node. The copy, made in
// another namespace, must equal the source part for part and share nothing
// with it; the source must stay as it was, whatever is done to the copy.
#include "graph/CompoundComparison.h"
#include "graph/CompoundTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/graph/DmWatchPoint.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmStructValue.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::addNode;
using KestoTest::equalCompounds;
using KestoTest::expectConnected;
using KestoTest::fullName;
using KestoTest::independentCompounds;
using KestoTest::input;
using KestoTest::intValue;
using KestoTest::makeLibrary;
using KestoTest::makeURI;
using KestoTest::output;
using KestoTest::portPath;
using KestoTest::selfPort;

using Names = std::vector<std::string>;

void setInt(std::shared_ptr<DmBaseValue> const& value, int data) {
    auto const typed = std::dynamic_pointer_cast<DmIntValue>(value);
    ASSERT_NE(typed, nullptr);
    typed->setData(data);
}

std::shared_ptr<DmMetadataItem> item(std::string const& name, std::string const& value) {
    return std::make_shared<DmMetadataItem>(name, value);
}

/// One item, and a second holding a child, so that every entity carries a tree.
void annotate(DmEntity& entity, std::string const& text) {
    entity.getMetadata()->add(item("label", text));
    auto const parent = std::make_shared<DmMetadataItem>("ui");
    parent->getMetadata()->add(std::make_shared<DmMetadataItem>("order", std::int64_t(3)));
    entity.getMetadata()->add(parent);
}

std::shared_ptr<DmPort> member(std::shared_ptr<DmPort> const& port, std::string const& path) {
    std::shared_ptr<DmPort> found;
    EXPECT_TRUE(port && port->getMember(path, found)) << path;
    return found;
}

std::shared_ptr<DmMetadataItem> firstItem(DmEntity const& entity, std::string const& name) {
    auto const found = entity.getMetadata()->find(name);
    return found.empty() ? nullptr : found.front();
}

/// Counts compounds, connections, scopes and watch points as well.
class DmCompoundImportRichTest : public KestoTest::CompoundTest {
protected:
    void SetUp() override {
        CompoundTest::SetUp();
        expectBackAtEnd<DmWatchPoint>("watch points");

        m_library = makeLibrary();
        auto const& global = m_library->getGlobalNamespace();
        m_ops = global->fetchNamespace("ops");
        m_lib = global->fetchNamespace("lib");
        m_user = global->fetchNamespace("user");
        m_ref = global->fetchNamespace("ref");
        m_point = KestoTest::makeStruct("Point", "x");

        m_op = own(KestoTest::makeOp("op"));
        m_add = own(KestoTest::makeAssociativeDef("a", "b", "out", DmNativeNodeDef::kBuildArray));

        m_draw = own(DmNativeNodeDef::newNativeNodeDef("draw", DmNativeNodeDef::kPass));
        m_draw->addPortDescription(input("p", m_point), kFailOnClash);
        m_draw->addPortDescription(output("out", DmLibrary::getIntType()), kFailOnClash);

        m_terminal = DmTerminalNodeDef::createTerminalNodeDef("result", kNameVerbatim);
        m_terminal->addPortDescription(input("value", DmLibrary::getIntType()), kFailOnClash);
        ASSERT_EQ(m_terminal->setScope(m_ops.get(), kFailOnClash), DmStatus::kSuccess);

        m_uri = makeURI("/library/graphs/rich.json");
        m_source = buildRich(*m_lib);
        m_source->setURI(m_uri);
        m_reference = buildRich(*m_ref);
    }

    void TearDown() override {
        m_reference.reset();
        m_source.reset();
        m_uri.reset();
        m_terminal.reset();
        m_draw.reset();
        m_add.reset();
        m_op.reset();
        m_point.reset();
        m_ref.reset();
        m_user.reset();
        m_lib.reset();
        m_ops.reset();
        m_library.reset();
        CompoundTest::TearDown();
    }

    /// `def`, of the library, placed in "ops".
    std::shared_ptr<DmNativeNodeDef> own(std::shared_ptr<DmNativeNodeDef> def) {
        def->setLibrary(m_library.get());
        EXPECT_EQ(def->setScope(m_ops.get(), kFailOnClash), DmStatus::kSuccess) << def->getName();
        return def;
    }

    std::shared_ptr<DmCompound> compound(std::string const& name, DmScope& scope) {
        auto made = DmCompound::createCompound(name);
        made->setLibrary(m_library.get());
        EXPECT_EQ(made->setScope(&scope, kFailOnClash), DmStatus::kSuccess) << name;
        return made;
    }

    static std::shared_ptr<DmPort> at(std::shared_ptr<DmNode> const& owner, std::string const& name) {
        return (*owner)[name];
    }

    static void watch(std::shared_ptr<DmPort> const& port, bool enabled,
                      std::vector<std::pair<std::string, std::string>> const& parameters) {
        ASSERT_NE(port, nullptr);
        auto const& point = port->setWatchPoint();
        point->enable(enabled);
        for (auto const& parameter : parameters) {
            point->setParameter(parameter.first, parameter.second);
        }
    }

    /// "deep", private to "inner": the int input q, the int output o, a node on op.
    std::shared_ptr<DmCompound> buildDeep(DmCompound& owner) {
        auto deep = compound("deep", owner);
        annotate(*deep, "deep");
        deep->addPortDescription(input("q", DmLibrary::getIntType()), kFailOnClash);
        deep->addPortDescription(output("o", DmLibrary::getIntType()), kFailOnClash);
        auto const step = addNode(*deep, "step", m_op);
        expectConnected(*deep, selfPort(*deep, "q"), at(step, "in"));
        expectConnected(*deep, at(step, "out"), selfPort(*deep, "o"));
        return deep;
    }

    /// "inner", private to the rich compound: ports v and w, a node on op and
    /// one on its own private "deep", and a watch point on its port w.
    std::shared_ptr<DmCompound> buildInner(DmCompound& owner) {
        auto inner = compound("inner", owner);
        annotate(*inner, "inner");
        auto v = input("v", DmLibrary::getIntType());
        annotate(*v, "v");
        inner->addPortDescription(v, kFailOnClash);
        inner->addPortDescription(output("w", DmLibrary::getIntType()), kFailOnClash);
        auto const deep = buildDeep(*inner);
        auto const core = addNode(*inner, "core", m_op);
        auto const below = addNode(*inner, "below", deep);
        annotate(*core, "core");
        EXPECT_TRUE(at(core, "in")->setDefaultValue(intValue(21)));
        expectConnected(*inner, selfPort(*inner, "v"), at(below, "q"));
        expectConnected(*inner, at(below, "o"), at(core, "in"));
        expectConnected(*inner, at(core, "out"), selfPort(*inner, "w"));
        watch(selfPort(*inner, "w"), true, {{"probe", "inner"}});
        return inner;
    }

    /// The compound every test imports, placed in `scope` under "rich".
    std::shared_ptr<DmCompound> buildRich(DmNamespace& scope) {
        auto rich = compound("rich", scope);
        // The compound itself.
        annotate(*rich, "rich");
        rich->getMetadata()->add(std::make_shared<DmMetadataItem>("weight", 2.5));
        rich->getMetadata()->add(std::make_shared<DmMetadataItem>("visible", true));
        auto reserved = std::make_shared<DmCompound::ReservedNames>();
        reserved->push_back(String("reserved"));
        EXPECT_EQ(rich->setReservedNodeNames(reserved), DmStatus::kSuccess);
        EXPECT_EQ(rich->getDefaultTerminalStates().setTerminalState(m_terminal->getPortsInterface()["value"],
                                                                    false),
                  DmStatus::kSuccess);

        // Its ports, with overrides, metadata, a struct and a feedback pair.
        auto a = input("a", DmLibrary::getIntType());
        EXPECT_TRUE(a->setDefaultValueOverride(intValue(3)));
        annotate(*a, "a");
        rich->addPortDescription(a, kFailOnClash);
        auto s = input("s", m_point);
        annotate(*s, "s");
        rich->addPortDescription(s, kFailOnClash);
        auto items = input("items", DmLibrary::getAutoType());
        rich->addPortDescription(items, kFailOnClash);
        EXPECT_EQ(items->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
        rich->addPortDescription(input("prev", DmLibrary::getIntType()), kFailOnClash);
        auto r = output("r", DmLibrary::getIntType());
        annotate(*r, "r");
        rich->addPortDescription(r, kFailOnClash);
        rich->addPortDescription(output("pass", DmLibrary::getIntType()), kFailOnClash);
        auto next = output("next", DmLibrary::getIntType());
        EXPECT_TRUE(next->setDefaultValueOverride(intValue(-1)));
        rich->addPortDescription(next, kFailOnClash);
        EXPECT_TRUE(rich->linkFeedbackPorts("prev", "next"));

        // A nested private compound, used by a node.
        auto const inner = buildInner(*rich);

        // The nodes.
        auto const n1 = addNode(*rich, "n1", m_op);
        annotate(*n1, "n1");
        EXPECT_TRUE(at(n1, "in")->setDefaultValue(intValue(5)));
        annotate(*at(n1, "in"), "n1.in");
        auto const useInner = addNode(*rich, "useInner", inner);
        EXPECT_TRUE(at(useInner, "v")->setDefaultValue(intValue(6)));
        auto const sum = addNode(*rich, "sum", m_add);
        annotate(*sum, "sum");
        std::shared_ptr<DmPort> e;
        std::shared_ptr<DmPort> e1;
        std::shared_ptr<DmPort> f;
        EXPECT_EQ(sum->addMultiInPortEntry("e", e), DmStatus::kSuccess);
        EXPECT_EQ(sum->addMultiInPortEntry("e", e1), DmStatus::kSuccess);
        EXPECT_EQ(sum->addMultiInPortEntry("f", f), DmStatus::kSuccess);
        annotate(*e1, "sum.a.e1");
        watch(f, true, {{"rate", "10"}, {"format", "hex"}});
        auto const d = addNode(*rich, "d", m_draw);
        auto const px = member(at(d, "p"), "x");
        EXPECT_TRUE(px->setDefaultValue(intValue(11)));
        annotate(*px, "d.p.x");
        watch(px, false, {{"when", "changed"}});
        auto const gather = addNode(*rich, "gather", m_op);
        auto const n2 = addNode(*rich, "n2", m_op);
        watch(at(n2, "out"), true, {{"label", "n2 out"}});
        annotate(*at(n2, "out"), "n2.out");

        // The connections: through entries, members and the self node.
        expectConnected(*rich, selfPort(*rich, "a"), at(n1, "in"));
        expectConnected(*rich, at(n1, "out"), at(useInner, "v"));
        expectConnected(*rich, at(useInner, "w"), e);
        expectConnected(*rich, member(selfPort(*rich, "s"), "x"), e1);
        expectConnected(*rich, at(n1, "out"), f);
        expectConnected(*rich, at(sum, "out"), px);
        expectConnected(*rich, at(d, "out"), at(gather, "in"));
        // The connection of gather.in moves to its entry "element_0".
        EXPECT_EQ(at(gather, "in")->setFanIn(true), DmStatus::kSuccess);
        std::shared_ptr<DmPort> late;
        EXPECT_EQ(at(gather, "in")->addMultiInPortEntry("late", late), DmStatus::kSuccess);
        annotate(*late, "gather.in.late");
        expectConnected(*rich, at(n2, "out"), late);
        expectConnected(*rich, at(gather, "out"), selfPort(*rich, "r"));
        expectConnected(*rich, selfPort(*rich, "a"), selfPort(*rich, "pass"));
        expectConnected(*rich, selfPort(*rich, "prev"), at(n2, "in"));
        expectConnected(*rich, at(n2, "out"), selfPort(*rich, "next"));

        // Watch points on the compound's own ports.
        watch(selfPort(*rich, "r"), true, {{"label", "result"}, {"history", "16"}});
        watch(selfPort(*rich, "a"), false, {});
        return rich;
    }

    /// The rich source imported into "user" as "copy".
    std::shared_ptr<DmCompound> importCopy() {
        std::shared_ptr<DmNodeDef> out;
        EXPECT_EQ(m_source->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kSuccess);
        return std::dynamic_pointer_cast<DmCompound>(out);
    }

    static std::shared_ptr<DmCompound> nested(DmCompound const& owner, std::string const& name) {
        std::shared_ptr<DmOverloadSet> set;
        if (!owner.findNodeDef(name, set) || !set || set->empty()) {
            return nullptr;
        }
        return std::dynamic_pointer_cast<DmCompound>(set->getOverloads().front());
    }

    std::shared_ptr<DmLibrary> m_library;
    std::shared_ptr<DmNamespace> m_ops;
    std::shared_ptr<DmNamespace> m_lib;
    std::shared_ptr<DmNamespace> m_user;
    std::shared_ptr<DmNamespace> m_ref;
    std::shared_ptr<DmStructType> m_point;
    std::shared_ptr<DmNativeNodeDef> m_op;
    std::shared_ptr<DmNativeNodeDef> m_add;
    std::shared_ptr<DmNativeNodeDef> m_draw;
    std::shared_ptr<DmTerminalNodeDef> m_terminal;
    std::shared_ptr<DmURI> m_uri;
    std::shared_ptr<DmCompound> m_source;
    std::shared_ptr<DmCompound> m_reference;
};

TEST_F(DmCompoundImportRichTest, TheSourceIsBuiltAsIntended) {
    // Two builds are equal, and the source has all the parts the tests rely on.
    EXPECT_TRUE(equalCompounds(*m_reference, *m_source));
    EXPECT_EQ(m_source->getConnections().size(), 12u);
    EXPECT_EQ(m_source->getNestedScopes().size(), 1u);
    EXPECT_EQ(m_source->getNodes().size(), 6u);
    EXPECT_EQ(m_source->getLibrary(), m_library.get());
    EXPECT_TRUE(m_source->getPortsInterface()["prev"]->isLinked());
    EXPECT_TRUE(m_source->findNode("gather")->getPorts().find("in")->second->isFanIn());
    EXPECT_EQ(m_library->getErrorLogger()->getMessageCount(), 0u);
}

TEST_F(DmCompoundImportRichTest, ImportIntoAnotherNamespaceSucceeds) {
    auto const copy = importCopy();
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(fullName(*copy), "user::copy");
    EXPECT_EQ(fullName(*m_source), "lib::rich");
    EXPECT_EQ(copy->getScope(), m_user.get());
    EXPECT_EQ(m_library->getErrorLogger()->getMessageCount(), 0u);
}

TEST_F(DmCompoundImportRichTest, CopyEqualsTheSourceInEveryPart) {
    auto const copy = importCopy();
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(equalCompounds(*m_source, *copy));
}

TEST_F(DmCompoundImportRichTest, CopySharesNoObjectWithTheSource) {
    auto const copy = importCopy();
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(independentCompounds(*m_source, *copy));
}

TEST_F(DmCompoundImportRichTest, ImportLeavesTheSourceAsItWas) {
    auto const copy = importCopy();
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(equalCompounds(*m_reference, *m_source));
    EXPECT_EQ(m_source->getName(), "rich");
    EXPECT_EQ(m_source->getScope(), m_lib.get());
    EXPECT_EQ(m_source->getURI(), m_uri);
    EXPECT_FALSE(m_source->isImported());
}

TEST_F(DmCompoundImportRichTest, NestedPrivateCompoundsAreCopiedAndUsedByTheCopysNodes) {
    auto const copy = importCopy();
    ASSERT_NE(copy, nullptr);
    auto const inner = nested(*copy, "inner");
    ASSERT_NE(inner, nullptr);
    EXPECT_NE(inner, nested(*m_source, "inner"));
    EXPECT_EQ(fullName(*inner), "user::copy::inner");
    EXPECT_EQ(copy->findNode("useInner")->getNodeDef(), inner.get());
    auto const deep = nested(*inner, "deep");
    ASSERT_NE(deep, nullptr);
    EXPECT_EQ(fullName(*deep), "user::copy::inner::deep");
    EXPECT_EQ(inner->findNode("below")->getNodeDef(), deep.get());
    EXPECT_EQ(nested(*m_source, "inner")->findNode("below")->getNodeDef(),
              nested(*nested(*m_source, "inner"), "deep").get());
}

TEST_F(DmCompoundImportRichTest, TheCopyAndItsNestedCopiesReportTheSourcesURI) {
    auto const copy = importCopy();
    ASSERT_NE(copy, nullptr);
    auto const inner = nested(*copy, "inner");
    ASSERT_NE(inner, nullptr);
    auto const deep = nested(*inner, "deep");
    ASSERT_NE(deep, nullptr);
    for (auto const& imported : {copy, inner, deep}) {
        EXPECT_TRUE(imported->isImported()) << imported->getName();
        EXPECT_EQ(imported->getImportedURI(), m_uri) << imported->getName();
        EXPECT_EQ(imported->getURI(), nullptr) << imported->getName();
        EXPECT_EQ(imported->getLibrary(), m_library.get()) << imported->getName();
    }
}

TEST_F(DmCompoundImportRichTest, EditingTheCopyLeavesTheSourceAlone) {
    auto const copy = importCopy();
    ASSERT_NE(copy, nullptr);

    // Values, edited in place.
    setInt(copy->getPortsInterface()["a"]->getDefaultValueOverride(), 99);
    setInt(at(copy->findNode("n1"), "in")->getDefaultValue(), 77);
    setInt(member(at(copy->findNode("d"), "p"), "x")->getDefaultValue(), 0);
    auto const point =
        std::dynamic_pointer_cast<DmStructValue>(at(copy->findNode("d"), "p")->getDefaultValue());
    ASSERT_NE(point, nullptr);
    EXPECT_TRUE(point->setMember("x", intValue(-5)));
    ASSERT_TRUE(at(copy->findNode("n2"), "in")->setDefaultValue(intValue(13)));

    // Metadata, edited in place and added.
    ASSERT_NE(firstItem(*copy, "ui"), nullptr);
    ASSERT_NE(firstItem(*firstItem(*copy, "ui"), "order"), nullptr);
    EXPECT_EQ(firstItem(*firstItem(*copy, "ui"), "order")->setLongValue(42), DmStatus::kSuccess);
    EXPECT_EQ(firstItem(*copy->findNode("n1"), "label")->setStringValue("edited"), DmStatus::kSuccess);
    EXPECT_EQ(firstItem(*copy->getPortsInterface()["s"], "label")->setStringValue("edited"),
              DmStatus::kSuccess);
    EXPECT_EQ(firstItem(*member(at(copy->findNode("d"), "p"), "x"), "label")->setStringValue("edited"),
              DmStatus::kSuccess);
    copy->getMetadata()->add(item("extra", "1"));
    at(copy->findNode("n2"), "out")->getMetadata()->clear();

    // Watch points.
    auto const n2Watch = at(copy->findNode("n2"), "out")->getWatchPoint();
    ASSERT_NE(n2Watch, nullptr);
    n2Watch->enable(false);
    n2Watch->setParameter("label", "changed");
    selfPort(*copy, "r")->getWatchPoint()->setParameter("history", "32");
    EXPECT_EQ(selfPort(*copy, "a")->removeWatchPoint(), DmStatus::kSuccess);
    at(copy->findNode("n1"), "out")->setWatchPoint()->enable(true);

    // Entries, nodes, connections, ports, links, terminal states.
    std::shared_ptr<DmPort> entry;
    EXPECT_EQ(copy->findNode("sum")->addMultiInPortEntry("g", entry), DmStatus::kSuccess);
    EXPECT_EQ(at(copy->findNode("gather"), "in")->addMultiInPortEntry("more", entry), DmStatus::kSuccess);
    std::shared_ptr<DmConnection> made;
    EXPECT_EQ(copy->breakConnection(selfPort(*copy, "a"), selfPort(*copy, "pass")), DmStatus::kSuccess);
    EXPECT_EQ(copy->removeNode(copy->findNode("n2")), DmStatus::kSuccess);
    EXPECT_EQ(copy->addNode(DmNode::createNode("added", m_op), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(copy->makeConnection(selfPort(*copy, "a"), at(copy->findNode("added"), "in"), made),
              DmStatus::kSuccess);
    EXPECT_TRUE(copy->getPortsInterface()["prev"]->unlink());
    EXPECT_TRUE(copy->renamePortDescription("r", "result"));
    EXPECT_TRUE(copy->addPortDescription(input("more", DmLibrary::getIntType()), kFailOnClash));
    EXPECT_EQ(
        copy->getDefaultTerminalStates().setTerminalState(m_terminal->getPortsInterface()["value"], true),
        DmStatus::kSuccess);
    EXPECT_EQ(copy->setReservedNodeNames(nullptr), DmStatus::kSuccess);

    // The copied private compounds.
    auto const inner = nested(*copy, "inner");
    ASSERT_NE(inner, nullptr);
    EXPECT_TRUE(inner->addPortDescription(input("extra", DmLibrary::getIntType()), kFailOnClash));
    setInt(at(inner->findNode("core"), "in")->getDefaultValue(), 0);
    EXPECT_EQ(inner->removeNode(inner->findNode("below")), DmStatus::kSuccess);
    auto const deep = nested(*inner, "deep");
    ASSERT_NE(deep, nullptr);
    EXPECT_TRUE(deep->renamePortDescription("q", "query"));

    EXPECT_FALSE(equalCompounds(*m_source, *copy));
    EXPECT_TRUE(equalCompounds(*m_reference, *m_source));
    EXPECT_TRUE(independentCompounds(*m_source, *copy));
}

TEST_F(DmCompoundImportRichTest, EditingTheSourceLeavesTheCopyAlone) {
    auto const copy = importCopy();
    ASSERT_NE(copy, nullptr);
    setInt(m_source->getPortsInterface()["next"]->getDefaultValueOverride(), 100);
    setInt(at(m_source->findNode("useInner"), "v")->getDefaultValue(), 60);
    EXPECT_EQ(firstItem(*m_source, "label")->setStringValue("edited"), DmStatus::kSuccess);
    member(m_source->findNode("sum")->getMultiInPort(), "f")->getWatchPoint()->setParameter("rate", "1");
    EXPECT_EQ(m_source->removeNode(m_source->findNode("gather")), DmStatus::kSuccess);
    auto const inner = nested(*m_source, "inner");
    EXPECT_TRUE(inner->renamePortDescription("w", "out"));
    selfPort(*inner, "out")->getWatchPoint()->enable(false);

    EXPECT_FALSE(equalCompounds(*m_reference, *m_source));
    EXPECT_TRUE(equalCompounds(*m_reference, *copy));
}

TEST_F(DmCompoundImportRichTest, ImportingTheCopyAgainGivesACompoundEqualToTheSource) {
    auto const copy = importCopy();
    ASSERT_NE(copy, nullptr);
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(copy->import(m_ref, kMakeUnique, "rich", out, 0), DmStatus::kSuccess);
    auto const second = std::dynamic_pointer_cast<DmCompound>(out);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(fullName(*second), "ref::rich1");
    EXPECT_TRUE(equalCompounds(*m_source, *second));
    EXPECT_TRUE(independentCompounds(*copy, *second));
    // A copy of a copy has no URI to report: the first copy had none.
    EXPECT_FALSE(second->isImported());
}

TEST_F(DmCompoundImportRichTest, CopyRemovedFromItsNamespaceTakesItsObjectsAlong) {
    auto copy = importCopy();
    ASSERT_NE(copy, nullptr);
    std::size_t const nodesOnOp = m_op->getInstantiatedNodes().size();
    EXPECT_EQ(m_user->unregisterNodeDef(copy), DmStatus::kSuccess);
    copy.reset();
    EXPECT_FALSE(m_user->hasNodeDef("copy"));
    // n1, gather and n2 were nodes on op in the copy; core in the copied "inner"; step in its "deep".
    EXPECT_EQ(m_op->getInstantiatedNodes().size(), nodesOnOp - 5);
    EXPECT_TRUE(equalCompounds(*m_reference, *m_source));
}

} // namespace
