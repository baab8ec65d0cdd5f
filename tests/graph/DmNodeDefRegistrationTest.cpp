#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/graph/DmUnknownNodeDef.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include "graph/ModelTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::input;
using KestoTest::keysOf;
using KestoTest::makeLogger;
using KestoTest::makeNamespace;
using KestoTest::makeUserDef;
using KestoTest::output;
using KestoTest::PlainScope;
using KestoTest::setOf;
using KestoTest::UserDef;

namespace {

class DmNodeDefRegistrationTest : public KestoTest::ModelTest {};

} // namespace

// ---------------------------------------------------------------------------
// registerNodeDef

TEST_F(DmNodeDefRegistrationTest, RegisterNodeDefMakesASetOfTheName) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    EXPECT_EQ(ns->registerNodeDef(def), DmStatus::kSuccess);
    EXPECT_EQ(def->getScope(), ns.get());
    EXPECT_EQ(keysOf(ns->getNodeDefs()), (std::vector<std::string>{"op"}));

    auto const set = setOf(*ns, "op");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->getName(), "op");
    EXPECT_EQ(set->getScope(), ns.get());
    ASSERT_EQ(set->size(), 1u);
    EXPECT_EQ(set->getOverloads().front(), def);
    EXPECT_EQ(def->get_owner(), set.get());
    EXPECT_FALSE(set->isBuiltIn());
}

TEST_F(DmNodeDefRegistrationTest, RegisterNodeDefKeepsTheOrderOfRegistration) {
    auto const ns = makeNamespace("geo");
    for (auto const& name : {"b", "a", "c"}) {
        ASSERT_EQ(ns->registerNodeDef(makeUserDef(name)), DmStatus::kSuccess) << name;
    }
    EXPECT_EQ(keysOf(ns->getNodeDefs()), (std::vector<std::string>{"b", "a", "c"}));
}

TEST_F(DmNodeDefRegistrationTest, TwoDefinitionsOfOneNameMakeOneEntryWithTwoOverloads) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef();
    auto const second = makeUserDef();
    ASSERT_EQ(ns->registerNodeDef(first), DmStatus::kSuccess);
    EXPECT_EQ(ns->registerNodeDef(second), DmStatus::kSuccess);

    EXPECT_EQ(ns->getNodeDefs().size(), 1u);
    auto const set = setOf(*ns, "op");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->getOverloads(), (DmOverloadSet::OverloadList{first, second}));
    EXPECT_EQ(first->get_owner(), set.get());
    EXPECT_EQ(second->get_owner(), set.get());
    EXPECT_EQ(second->getScope(), ns.get());
}

TEST_F(DmNodeDefRegistrationTest, RegisterNodeDefGivesTheSetTheLibraryOfTheDefinition) {
    auto library = KestoTest::makeLibrary();
    ASSERT_NE(library, nullptr);
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    def->setLibrary(library.get());
    ASSERT_EQ(ns->registerNodeDef(def), DmStatus::kSuccess);
    EXPECT_EQ(setOf(*ns, "op")->getLibrary(), library.get());
}

TEST_F(DmNodeDefRegistrationTest, RegisterNodeDefOfABuiltInDefinitionMakesABuiltInSet) {
    auto const ns = makeNamespace("geo");
    auto const def = DmNativeNodeDef::newNativeNodeDef("pass", DmNativeNodeDef::kPass);
    ASSERT_NE(def, nullptr);
    ASSERT_EQ(ns->registerNodeDef(def), DmStatus::kSuccess);
    EXPECT_TRUE(setOf(*ns, "pass")->isBuiltIn());
}

TEST_F(DmNodeDefRegistrationTest, RegisterNodeDefOfASetFilesItAsItIs) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    auto const set = DmOverloadSet::newOverloadSet(def, false);
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(ns->registerNodeDef(set), DmStatus::kSuccess);
    EXPECT_EQ(set->getScope(), ns.get());
    std::shared_ptr<DmNodeDef> found;
    ASSERT_TRUE(ns->findNodeDef("op", found));
    EXPECT_EQ(found, set);
}

TEST_F(DmNodeDefRegistrationTest, RegisterNodeDefOfASetUnderATakenNameIsAnInvalidArgument) {
    auto const ns = makeNamespace("geo");
    auto const placed = makeUserDef();
    ASSERT_EQ(ns->registerNodeDef(placed), DmStatus::kSuccess);
    auto const def = makeUserDef();
    auto const set = DmOverloadSet::newOverloadSet(def, false);
    ASSERT_NE(set, nullptr);

    EXPECT_EQ(ns->registerNodeDef(set), DmStatus::kInvalidArgument);
    EXPECT_EQ(set->getScope(), ns.get());
    EXPECT_EQ(setOf(*ns, "op")->getOverloads().front(), placed);
}

TEST_F(DmNodeDefRegistrationTest, RegisterNodeDefReportsAnOverloadThatLacksAPortOfTheSet) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef();
    auto const second = UserDef::make("op");
    ASSERT_EQ(ns->registerNodeDef(first), DmStatus::kSuccess);
    EXPECT_EQ(ns->registerNodeDef(second), DmStatus::kFailure);
    EXPECT_EQ(setOf(*ns, "op")->size(), 2u);
    EXPECT_EQ(second->get_owner(), setOf(*ns, "op").get());
}

TEST_F(DmNodeDefRegistrationTest, RegisterNodeDefInAPlainScope) {
    PlainScope scope("scope", makeLogger());
    auto const def = makeUserDef();
    EXPECT_EQ(scope.registerNodeDef(def), DmStatus::kSuccess);
    EXPECT_EQ(def->getScope(), &scope);
    EXPECT_TRUE(scope.hasNodeDef("op"));
    EXPECT_EQ(def->get_owner(), setOf(scope, "op").get());
}

// ---------------------------------------------------------------------------
// unregisterNodeDef

TEST_F(DmNodeDefRegistrationTest, UnregisterNodeDefOfTheLastOverloadErasesTheEntry) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    ASSERT_EQ(ns->registerNodeDef(def), DmStatus::kSuccess);
    EXPECT_EQ(ns->unregisterNodeDef(def), DmStatus::kSuccess);
    EXPECT_TRUE(ns->getNodeDefs().empty());
    EXPECT_FALSE(ns->hasNodeDef("op"));
    EXPECT_EQ(def->get_owner(), nullptr);
}

TEST_F(DmNodeDefRegistrationTest, UnregisterNodeDefOfOneOfTwoOverloadsKeepsTheEntry) {
    auto const ns = makeNamespace("geo");
    auto const first = makeUserDef();
    auto const second = makeUserDef();
    ASSERT_EQ(ns->registerNodeDef(first), DmStatus::kSuccess);
    ASSERT_EQ(ns->registerNodeDef(second), DmStatus::kSuccess);
    EXPECT_EQ(ns->unregisterNodeDef(first), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->getOverloads(), (DmOverloadSet::OverloadList{second}));
    EXPECT_EQ(first->get_owner(), nullptr);
    EXPECT_EQ(second->get_owner(), set.get());
}

TEST_F(DmNodeDefRegistrationTest, UnregisterNodeDefOfAnAbsentNameSucceeds) {
    auto const ns = makeNamespace("geo");
    auto const placed = makeUserDef("placed");
    ASSERT_EQ(ns->registerNodeDef(placed), DmStatus::kSuccess);
    EXPECT_EQ(ns->unregisterNodeDef(makeUserDef("stranger")), DmStatus::kSuccess);
    EXPECT_EQ(keysOf(ns->getNodeDefs()), (std::vector<std::string>{"placed"}));
}

TEST_F(DmNodeDefRegistrationTest, UnregisterNodeDefOfAStrangerOfATakenNameFails) {
    auto const ns = makeNamespace("geo");
    auto const placed = makeUserDef();
    ASSERT_EQ(ns->registerNodeDef(placed), DmStatus::kSuccess);
    auto const stranger = makeUserDef();
    EXPECT_EQ(ns->unregisterNodeDef(stranger), DmStatus::kFailure);
    EXPECT_EQ(setOf(*ns, "op")->getOverloads(), (DmOverloadSet::OverloadList{placed}));
}

TEST_F(DmNodeDefRegistrationTest, UnregisterNodeDefOfASetErasesItsEntry) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    ASSERT_EQ(ns->registerNodeDef(def), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");
    EXPECT_EQ(ns->unregisterNodeDef(set), DmStatus::kSuccess);
    EXPECT_TRUE(ns->getNodeDefs().empty());
}

TEST_F(DmNodeDefRegistrationTest, EmptiedSetOfAPlaceholderStaysWhileNodesUseIt) {
    auto const ns = makeNamespace("geo");
    auto const placeholder = DmUnknownNodeDef::newUnknownNodeDef("op");
    ASSERT_EQ(ns->registerNodeDef(placeholder), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");
    auto const node = DmNode::createNode("n", set);
    ASSERT_NE(node, nullptr);

    EXPECT_EQ(ns->unregisterNodeDef(placeholder), DmStatus::kSuccess);
    EXPECT_EQ(placeholder->get_owner(), nullptr);
    ASSERT_TRUE(ns->hasNodeDef("op"));
    EXPECT_EQ(setOf(*ns, "op"), set);
    EXPECT_TRUE(set->empty());
    EXPECT_EQ(node->getNodeDef(), set.get());
}

TEST_F(DmNodeDefRegistrationTest, EmptiedSetOfAPlaceholderGoesWithoutNodes) {
    auto const ns = makeNamespace("geo");
    auto const placeholder = DmUnknownNodeDef::newUnknownNodeDef("op");
    ASSERT_EQ(ns->registerNodeDef(placeholder), DmStatus::kSuccess);
    EXPECT_EQ(ns->unregisterNodeDef(placeholder), DmStatus::kSuccess);
    EXPECT_FALSE(ns->hasNodeDef("op"));
}

TEST_F(DmNodeDefRegistrationTest, EmptiedSetOfAPlaceholderGoesWhenOnlyThePlaceholderHasNodes) {
    auto const ns = makeNamespace("geo");
    auto const placeholder = DmUnknownNodeDef::newUnknownNodeDef("op");
    ASSERT_EQ(ns->registerNodeDef(placeholder), DmStatus::kSuccess);
    auto const node = DmNode::createNode("n", placeholder);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(ns->unregisterNodeDef(placeholder), DmStatus::kSuccess);
    EXPECT_FALSE(ns->hasNodeDef("op"));
    EXPECT_EQ(node->getNodeDef(), placeholder.get());
}

TEST_F(DmNodeDefRegistrationTest, EmptiedSetOfAKnownDefinitionGoesEvenWhileNodesUseIt) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    ASSERT_EQ(ns->registerNodeDef(def), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");
    auto const node = DmNode::createNode("n", set);
    ASSERT_NE(node, nullptr);

    EXPECT_EQ(ns->unregisterNodeDef(def), DmStatus::kSuccess);
    EXPECT_FALSE(ns->hasNodeDef("op"));
    EXPECT_EQ(node->getNodeDef(), set.get());
}

// ---------------------------------------------------------------------------
// findNodeDef and hasNodeDef on a plain scope

TEST_F(DmNodeDefRegistrationTest, FindNodeDefGivesTheEntry) {
    PlainScope scope("scope", makeLogger());
    auto const def = makeUserDef();
    ASSERT_EQ(scope.registerNodeDef(def), DmStatus::kSuccess);
    std::shared_ptr<DmNodeDef> found;
    ASSERT_TRUE(scope.findNodeDef("op", found));
    EXPECT_EQ(found.get(), def->get_owner());
    std::shared_ptr<DmOverloadSet> set;
    ASSERT_TRUE(scope.findNodeDef("op", set));
    EXPECT_EQ(set.get(), def->get_owner());
}

TEST_F(DmNodeDefRegistrationTest, FindNodeDefMissLeavesTheOutputUntouched) {
    PlainScope scope("scope", makeLogger());
    auto const other = makeUserDef("other");
    std::shared_ptr<DmNodeDef> found = other;
    EXPECT_FALSE(scope.findNodeDef("op", found));
    EXPECT_EQ(found, other);
    EXPECT_FALSE(scope.hasNodeDef("op"));
}

TEST_F(DmNodeDefRegistrationTest, PlainScopeDoesNotResolveAScopedNameEvenWhenTheLiteralKeyExists) {
    PlainScope scope("scope", makeLogger());
    auto const def = makeUserDef("a::op");
    ASSERT_EQ(scope.registerNodeDef(def), DmStatus::kSuccess);
    ASSERT_EQ(keysOf(scope.getNodeDefs()), (std::vector<std::string>{"a::op"}));

    auto const other = makeUserDef("other");
    std::shared_ptr<DmNodeDef> found = other;
    EXPECT_FALSE(scope.findNodeDef("a::op", found));
    EXPECT_EQ(found, other);
    std::shared_ptr<DmOverloadSet> set;
    EXPECT_FALSE(scope.findNodeDef("a::op", set));
    EXPECT_EQ(set, nullptr);
    EXPECT_FALSE(scope.hasNodeDef("a::op"));
}

// ---------------------------------------------------------------------------
// findNodeDef and hasNodeDef on a namespace

TEST_F(DmNodeDefRegistrationTest, NamespaceFindsALocalDefinition) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    ASSERT_EQ(ns->registerNodeDef(def), DmStatus::kSuccess);
    std::shared_ptr<DmOverloadSet> set;
    ASSERT_TRUE(ns->findNodeDef("op", set));
    EXPECT_EQ(set.get(), def->get_owner());
    EXPECT_TRUE(ns->hasNodeDef("op"));
}

TEST_F(DmNodeDefRegistrationTest, NamespaceWalksNestedNamespaces) {
    auto const ns = makeNamespace("root");
    auto const inner = ns->fetchNamespace("a::b");
    ASSERT_NE(inner, nullptr);
    auto const def = makeUserDef();
    ASSERT_EQ(inner->registerNodeDef(def), DmStatus::kSuccess);

    std::shared_ptr<DmNodeDef> found;
    ASSERT_TRUE(ns->findNodeDef("a::b::op", found));
    EXPECT_EQ(found.get(), def->get_owner());
    std::shared_ptr<DmOverloadSet> set;
    ASSERT_TRUE(ns->findNodeDef("a::b::op", set));
    EXPECT_EQ(set.get(), def->get_owner());
    EXPECT_TRUE(ns->hasNodeDef("a::b::op"));
    EXPECT_FALSE(ns->hasNodeDef("op"));
    EXPECT_FALSE(ns->hasNodeDef("a::op"));
}

TEST_F(DmNodeDefRegistrationTest, LeadingSeparatorNamesTheSameDefinition) {
    auto const ns = makeNamespace("root");
    auto const inner = ns->fetchNamespace("a");
    auto const local = makeUserDef("local");
    auto const nested = makeUserDef();
    ASSERT_EQ(ns->registerNodeDef(local), DmStatus::kSuccess);
    ASSERT_EQ(inner->registerNodeDef(nested), DmStatus::kSuccess);

    std::shared_ptr<DmNodeDef> found;
    ASSERT_TRUE(ns->findNodeDef("::local", found));
    EXPECT_EQ(found.get(), local->get_owner());
    ASSERT_TRUE(ns->findNodeDef("::a::op", found));
    EXPECT_EQ(found.get(), nested->get_owner());
}

TEST_F(DmNodeDefRegistrationTest, SeparatorAloneFindsNothing) {
    auto const ns = makeNamespace("root");
    ASSERT_EQ(ns->registerNodeDef(makeUserDef()), DmStatus::kSuccess);
    std::shared_ptr<DmNodeDef> found;
    EXPECT_FALSE(ns->findNodeDef("::", found));
    EXPECT_EQ(found, nullptr);
    EXPECT_FALSE(ns->hasNodeDef("::"));
}

TEST_F(DmNodeDefRegistrationTest, LookupThroughAMissingNamespaceCreatesNothing) {
    auto const ns = makeNamespace("root");
    std::shared_ptr<DmNodeDef> found;
    EXPECT_FALSE(ns->findNodeDef("missing::op", found));
    EXPECT_EQ(found, nullptr);
    EXPECT_TRUE(ns->getNestedNamespaces().empty());
    EXPECT_TRUE(ns->getNestedScopes().empty());
}

TEST_F(DmNodeDefRegistrationTest, NamespaceDoesNotLookIntoItsParent) {
    auto const ns = makeNamespace("root");
    auto const child = ns->fetchNamespace("child");
    ASSERT_EQ(ns->registerNodeDef(makeUserDef()), DmStatus::kSuccess);
    EXPECT_FALSE(child->hasNodeDef("op"));
}

// ---------------------------------------------------------------------------
// setScope of a definition

TEST_F(DmNodeDefRegistrationTest, SetScopePlacesTheDefinition) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    EXPECT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->getScope(), ns.get());
    EXPECT_EQ(def->get_owner(), setOf(*ns, "op").get());
}

TEST_F(DmNodeDefRegistrationTest, SetScopeToTheCurrentScopeSucceedsAndDoesNothing) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");
    EXPECT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(setOf(*ns, "op"), set);
    EXPECT_EQ(set->getOverloads(), (DmOverloadSet::OverloadList{def}));
    EXPECT_EQ(def->get_owner(), set.get());
}

TEST_F(DmNodeDefRegistrationTest, SetScopeOfAConstDefinitionIsAConstEntity) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    def->makeConst();
    EXPECT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(def->getScope(), nullptr);
    EXPECT_TRUE(ns->getNodeDefs().empty());
}

TEST_F(DmNodeDefRegistrationTest, SetScopeToATakenNameFailsOnClash) {
    auto const ns = makeNamespace("geo");
    auto const placed = makeUserDef();
    auto const def = makeUserDef();
    ASSERT_EQ(placed->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_EQ(def->getScope(), nullptr);
    EXPECT_EQ(def->get_owner(), nullptr);
    EXPECT_EQ(setOf(*ns, "op")->getOverloads(), (DmOverloadSet::OverloadList{placed}));
}

TEST_F(DmNodeDefRegistrationTest, SetScopeToATakenNameMakesTheNameUnique) {
    auto const ns = makeNamespace("geo");
    auto const placed = makeUserDef();
    auto const def = makeUserDef();
    ASSERT_EQ(placed->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->setScope(ns.get(), kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(def->getName(), "op1");
    EXPECT_EQ(keysOf(ns->getNodeDefs()), (std::vector<std::string>{"op", "op1"}));
    EXPECT_EQ(def->get_owner(), setOf(*ns, "op1").get());
    EXPECT_EQ(setOf(*ns, "op1")->getName(), "op1");
}

TEST_F(DmNodeDefRegistrationTest, SetScopeWithAFreeNameKeepsTheNameUnderMakeUnique) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    EXPECT_EQ(def->setScope(ns.get(), kMakeUnique), DmStatus::kSuccess);
    EXPECT_EQ(def->getName(), "op");
}

TEST_F(DmNodeDefRegistrationTest, SetScopeAsOverloadJoinsTheSetOfTheName) {
    auto const ns = makeNamespace("geo");
    auto const placed = makeUserDef();
    auto const def = makeUserDef();
    ASSERT_EQ(placed->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    EXPECT_EQ(def->getName(), "op");
    EXPECT_EQ(setOf(*ns, "op")->getOverloads(), (DmOverloadSet::OverloadList{placed, def}));
}

TEST_F(DmNodeDefRegistrationTest, SetScopeAsOverloadWithAFreeNameMakesANewSet) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    EXPECT_EQ(def->setScope(ns.get(), kAsOverload), DmStatus::kSuccess);
    EXPECT_EQ(setOf(*ns, "op")->getOverloads(), (DmOverloadSet::OverloadList{def}));
}

TEST_F(DmNodeDefRegistrationTest, SetScopeMovesTheDefinitionOutOfItsScope) {
    auto const from = makeNamespace("from");
    auto const to = makeNamespace("to");
    auto const def = makeUserDef();
    ASSERT_EQ(def->setScope(from.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->setScope(to.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_FALSE(from->hasNodeDef("op"));
    EXPECT_TRUE(to->hasNodeDef("op"));
    EXPECT_EQ(def->getScope(), to.get());
    EXPECT_EQ(def->get_owner(), setOf(*to, "op").get());
}

TEST_F(DmNodeDefRegistrationTest, SetScopeToNullDetachesTheDefinition) {
    auto const ns = makeNamespace("geo");
    auto const def = makeUserDef();
    ASSERT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->setScope(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->getScope(), nullptr);
    EXPECT_EQ(def->get_owner(), nullptr);
    EXPECT_TRUE(ns->getNodeDefs().empty());
}

TEST_F(DmNodeDefRegistrationTest, SetScopeToNullOfADetachedDefinitionSucceeds) {
    auto const def = makeUserDef();
    EXPECT_EQ(def->setScope(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->getScope(), nullptr);
}

TEST_F(DmNodeDefRegistrationTest, BuiltInDefinitionRefusesToMoveOncePlaced) {
    auto const from = makeNamespace("from");
    auto const to = makeNamespace("to");
    auto const def = DmNativeNodeDef::newNativeNodeDef("pass", DmNativeNodeDef::kPass);
    ASSERT_NE(def, nullptr);
    ASSERT_EQ(def->setScope(from.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->setScope(to.get(), kFailOnClash), DmStatus::kFailure);
    EXPECT_EQ(def->setScope(nullptr, kFailOnClash), DmStatus::kFailure);
    EXPECT_EQ(def->getScope(), from.get());
    EXPECT_TRUE(from->hasNodeDef("pass"));
    EXPECT_FALSE(to->hasNodeDef("pass"));
}

TEST_F(DmNodeDefRegistrationTest, TerminalRefusesToJoinASetAsOverload) {
    auto const ns = makeNamespace("geo");
    auto const placed = makeUserDef("result");
    ASSERT_EQ(placed->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const terminal = DmTerminalNodeDef::createTerminalNodeDef("result", kNameVerbatim);
    ASSERT_NE(terminal, nullptr);
    EXPECT_EQ(terminal->setScope(ns.get(), kAsOverload), DmStatus::kFailure);
    EXPECT_EQ(terminal->getScope(), nullptr);
    EXPECT_EQ(setOf(*ns, "result")->size(), 1u);
}

TEST_F(DmNodeDefRegistrationTest, DefinitionRefusesToJoinATerminalAsOverload) {
    auto const ns = makeNamespace("geo");
    auto const terminal = DmTerminalNodeDef::createTerminalNodeDef("result", kNameVerbatim);
    ASSERT_NE(terminal, nullptr);
    ASSERT_EQ(terminal->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const def = makeUserDef("result");
    EXPECT_EQ(def->setScope(ns.get(), kAsOverload), DmStatus::kFailure);
    EXPECT_EQ(def->getScope(), nullptr);
    EXPECT_EQ(setOf(*ns, "result")->size(), 1u);
}

TEST_F(DmNodeDefRegistrationTest, EmptySetOfTheNameCountsAsAbsent) {
    auto const ns = makeNamespace("geo");
    auto const placeholder = DmUnknownNodeDef::newUnknownNodeDef("op");
    ASSERT_EQ(placeholder->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const set = setOf(*ns, "op");
    auto const node = DmNode::createNode("n", set);
    ASSERT_EQ(placeholder->setScope(nullptr, kFailOnClash), DmStatus::kSuccess);
    ASSERT_TRUE(set->empty());

    auto const def = makeUserDef();
    EXPECT_EQ(def->setScope(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(def->getName(), "op");
    EXPECT_EQ(setOf(*ns, "op"), set);
    EXPECT_EQ(set->getOverloads(), (DmOverloadSet::OverloadList{def}));
    EXPECT_EQ(def->get_owner(), set.get());
}
