#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmNameUtils.h>
#include <KestoDM/graph/DmCollect.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaMessageCategory.h>
#include <KestoDM/platform/BaMessageTypes.h>

#include "GraphTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

using namespace Kesto;
using KestoTest::makeLibrary;
using KestoTest::makeLogger;
using KestoTest::makeNamespace;
using KestoTest::PlainScope;
using KestoTest::RootNamespace;
using KestoTest::scopeName;

// ---------------------------------------------------------------------------
// Enumerations and constants

TEST(DmScope, SeparatorIsTwoColons) {
    EXPECT_STREQ(DmScope::kSeparator, "::");
    EXPECT_EQ(DmScope::kSeparatorLength, 2u);
    EXPECT_EQ(std::strlen(DmScope::kSeparator), DmScope::kSeparatorLength);
}

TEST(DmScope, NameResolutionTypesHaveTheirNumbers) {
    EXPECT_EQ(sizeof(DmNameResolutionType), 1u);
    EXPECT_EQ(static_cast<int>(kFailOnClash), 0);
    EXPECT_EQ(static_cast<int>(kMakeUnique), 1);
    EXPECT_EQ(static_cast<int>(kAsOverload), 2);
}

TEST(DmScope, NameResolveFlagsHaveTheirNumbers) {
    EXPECT_EQ(sizeof(DmNameResolveFlags), 1u);
    EXPECT_EQ(static_cast<int>(kNameVerbatim), 0);
    EXPECT_EQ(static_cast<int>(kNameLegalize), 1);
    EXPECT_EQ(static_cast<int>(kNameMustBeLegal), 2);
}

TEST(DmScope, CollectMaskBitsHaveTheirNumbers) {
    EXPECT_EQ(sizeof(DmCollectMask), 1u);
    EXPECT_EQ(static_cast<int>(kCollectTypes), 1);
    EXPECT_EQ(static_cast<int>(kCollectCompounds), 2);
    EXPECT_EQ(static_cast<int>(kCollectExternOperators), 4);
}

TEST(DmScope, CollectMaskBitsCombine) {
    constexpr DmCollectMask all = kCollectTypes | kCollectCompounds | kCollectExternOperators;
    static_assert(std::is_same<std::remove_const_t<decltype(all)>, DmCollectMask>::value, "stays a mask");
    EXPECT_EQ(static_cast<int>(all), 7);
}

TEST(DmScope, CollectFlagsBitsHaveTheirNumbers) {
    EXPECT_EQ(sizeof(DmCollectFlags), 1u);
    EXPECT_EQ(static_cast<int>(kCollectNested), 1);
    EXPECT_EQ(static_cast<int>(kCollectNested | kCollectNested), 1);
}

// ---------------------------------------------------------------------------
// A plain scope

TEST(DmScope, PlainScopeIsValid) {
    PlainScope scope("s", makeLogger());
    EXPECT_TRUE(scope.isValid());
}

TEST(DmScope, PlainScopeIsNoRoot) {
    PlainScope scope("s", makeLogger());
    EXPECT_FALSE(scope.isGlobalNamespace());
    EXPECT_FALSE(scope.isBuiltInNamespace());
    EXPECT_FALSE(scope.isReservedNamespace());
}

TEST(DmScope, NewScopeHasNoParentNoNestedScopesAndNoDefinitions) {
    PlainScope scope("s", makeLogger());
    EXPECT_EQ(scope.getParentScope(), nullptr);
    EXPECT_TRUE(scope.getNestedScopes().empty());
    EXPECT_TRUE(scope.getNodeDefs().empty());
}

TEST(DmScope, KeepsTheLoggerItWasGiven) {
    auto const logger = makeLogger();
    PlainScope scope("s", logger);
    EXPECT_EQ(scope.getLogger(), logger);
}

TEST(DmScope, SetParentSetsThePointerOnly) {
    PlainScope parent("p", makeLogger());
    PlainScope child("c", makeLogger());
    child.setParent(&parent);
    EXPECT_EQ(child.getParentScope(), &parent);
    EXPECT_TRUE(parent.getNestedScopes().empty());
    child.setParent(nullptr);
    EXPECT_EQ(child.getParentScope(), nullptr);
}

TEST(DmScope, AddNestedScopeInsertsOnceInOrder) {
    PlainScope scope("s", makeLogger());
    auto const first = std::make_shared<PlainScope>("a", makeLogger());
    auto const second = std::make_shared<PlainScope>("b", makeLogger());
    EXPECT_EQ(scope.addNestedScope(first), DmStatus::kSuccess);
    EXPECT_EQ(scope.addNestedScope(second), DmStatus::kSuccess);
    ASSERT_EQ(scope.getNestedScopes().size(), 2u);
    EXPECT_EQ(*scope.getNestedScopes().begin(), first);
    EXPECT_EQ(*std::next(scope.getNestedScopes().begin()), second);
}

TEST(DmScope, AddNestedScopeTwiceFails) {
    PlainScope scope("s", makeLogger());
    auto const nested = std::make_shared<PlainScope>("a", makeLogger());
    EXPECT_EQ(scope.addNestedScope(nested), DmStatus::kSuccess);
    EXPECT_EQ(scope.addNestedScope(nested), DmStatus::kFailure);
    EXPECT_EQ(scope.getNestedScopes().size(), 1u);
}

TEST(DmScope, NestedScopesAreKeptByIdentityNotByName) {
    PlainScope scope("s", makeLogger());
    EXPECT_EQ(scope.addNestedScope(std::make_shared<PlainScope>("a", makeLogger())), DmStatus::kSuccess);
    EXPECT_EQ(scope.addNestedScope(std::make_shared<PlainScope>("a", makeLogger())), DmStatus::kSuccess);
    EXPECT_EQ(scope.getNestedScopes().size(), 2u);
}

TEST(DmScope, RemoveNestedScopeRemovesAPresentScope) {
    PlainScope scope("s", makeLogger());
    auto const nested = std::make_shared<PlainScope>("a", makeLogger());
    ASSERT_EQ(scope.addNestedScope(nested), DmStatus::kSuccess);
    EXPECT_EQ(scope.removeNestedScope(nested), DmStatus::kSuccess);
    EXPECT_TRUE(scope.getNestedScopes().empty());
}

TEST(DmScope, RemoveNestedScopeOfAnAbsentScopeFails) {
    PlainScope scope("s", makeLogger());
    auto const nested = std::make_shared<PlainScope>("a", makeLogger());
    EXPECT_EQ(scope.removeNestedScope(nested), DmStatus::kFailure);
}

// ---------------------------------------------------------------------------
// resolveScopeName

TEST(DmScope, GlobalNamespaceHasTheEmptyPath) {
    auto const library = makeLibrary();
    EXPECT_EQ(scopeName(*library->getGlobalNamespace()), "");
}

TEST(DmScope, BuiltInAndReservedNamespacesHaveTheEmptyPath) {
    EXPECT_EQ(scopeName(*DmLibrary::getBuiltInNamespace()), "");
    EXPECT_EQ(scopeName(*DmLibrary::getReservedNamespace()), "");
}

TEST(DmScope, RootsReportNothing) {
    auto const library = makeLibrary();
    scopeName(*library->getGlobalNamespace());
    EXPECT_EQ(library->getErrorLogger()->getMessageCount(), 0u);
}

TEST(DmScope, NamespaceUnderTheGlobalNamespaceHasItsNameWithoutSeparator) {
    auto const library = makeLibrary();
    std::shared_ptr<DmNamespace> ns;
    ASSERT_EQ(library->getGlobalNamespace()->addNestedNamespace("geometry", ns), DmStatus::kSuccess);
    EXPECT_EQ(scopeName(*ns), "geometry");
}

TEST(DmScope, NestedNamespacesJoinTheirNamesWithSeparators) {
    auto const library = makeLibrary();
    auto const ns = library->getGlobalNamespace()->fetchNamespace("a::b::c");
    ASSERT_NE(ns, nullptr);
    EXPECT_EQ(scopeName(*ns), "a::b::c");
    EXPECT_EQ(library->getErrorLogger()->getMessageCount(), 0u);
}

TEST(DmScope, ParentThatIsAnyRootContributesNothing) {
    for (auto kind : {RootNamespace::kGlobal, RootNamespace::kBuiltIn, RootNamespace::kReserved}) {
        auto const root = RootNamespace::make("root", kind);
        std::shared_ptr<DmNamespace> child;
        ASSERT_EQ(root->addNestedNamespace("child", child), DmStatus::kSuccess);
        EXPECT_EQ(scopeName(*child), "child");
    }
}

TEST(DmScope, ResolveScopeNameAppendsToWhatIsThere) {
    auto const library = makeLibrary();
    auto const ns = library->getGlobalNamespace()->fetchNamespace("a::b");
    std::string out = "prefix/";
    ns->resolveScopeName(out);
    EXPECT_EQ(out, "prefix/a::b");
}

TEST(DmScope, OrphanNamespaceStillAppendsItsName) {
    auto const ns = makeNamespace("lonely");
    EXPECT_EQ(scopeName(*ns), "lonely");
}

TEST(DmScope, OrphanNamespaceReportsAMissingParentScope) {
    auto const logger = makeLogger();
    auto const ns = makeNamespace("lonely", logger);
    scopeName(*ns);
    ASSERT_EQ(logger->getMessageCount(), 1u);
    EXPECT_EQ(logger->getErrorCount(), 1u);
    auto const report = std::dynamic_pointer_cast<DmMessageReport>(logger->begin().getRecord());
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->getInternalCategory(), BaMessageTypes::kMessageError);
    EXPECT_EQ(report->getCategory(), BaMessageCategory::kError);
    EXPECT_EQ(report->getTitle(), "missing parent scope");
    EXPECT_EQ(report->getDescription(), "the scope lonely does not have a parent");
}

TEST(DmScope, MissingParentScopeReportIsAboutTheOrphan) {
    auto const logger = makeLogger();
    auto const ns = makeNamespace("lonely", logger);
    scopeName(*ns);
    ASSERT_EQ(logger->getMessageCount(), 1u);
    auto const report = std::dynamic_pointer_cast<DmMessageReport>(logger->begin().getRecord());
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->getEntity().lock(), ns);
    EXPECT_EQ(report->getFormattedDescription(),
              "error: lonely: missing parent scope: the scope lonely does not have a parent");
}

TEST(DmScope, OrphanAtTheTopOfAChainReportsOnceAndKeepsTheWholePath) {
    auto const logger = makeLogger();
    auto const top = makeNamespace("top", logger);
    auto const leaf = top->fetchNamespace("mid::leaf");
    ASSERT_NE(leaf, nullptr);
    EXPECT_EQ(scopeName(*leaf), "top::mid::leaf");
    ASSERT_EQ(logger->getMessageCount(), 1u);
    EXPECT_EQ(logger->begin()->getDescription(), "the scope top does not have a parent");
}

TEST(DmScope, OrphanPlainScopeReportsWithoutAnEntity) {
    auto const logger = makeLogger();
    PlainScope scope("plain", logger);
    EXPECT_EQ(scopeName(scope), "plain");
    ASSERT_EQ(logger->getMessageCount(), 1u);
    EXPECT_EQ(logger->begin()->getTitle(), "missing parent scope");
    EXPECT_EQ(logger->begin()->getDescription(), "the scope plain does not have a parent");
}

TEST(DmScope, OrphanWithoutALoggerStillAppendsItsName) {
    PlainScope scope("plain", nullptr);
    EXPECT_EQ(scopeName(scope), "plain");
}

TEST(DmScope, ComputeFullScopeNameEmptiesTheOutputFirst) {
    auto const library = makeLibrary();
    auto const ns = library->getGlobalNamespace()->fetchNamespace("a::b");
    std::string out = "left over";
    std::string& result = DmNameUtils::computeFullScopeName(*ns, out);
    EXPECT_EQ(&result, &out);
    EXPECT_EQ(out, "a::b");
}

TEST(DmScope, ComputeFullScopeNameOfARootIsEmpty) {
    auto const library = makeLibrary();
    std::string out = "left over";
    EXPECT_EQ(DmNameUtils::computeFullScopeName(*library->getGlobalNamespace(), out), "");
}

// ---------------------------------------------------------------------------
// equalScopeName

TEST(DmScope, ScopeIsEqualToItself) {
    auto const ns = makeNamespace("a");
    EXPECT_TRUE(ns->equalScopeName(ns.get()));
}

TEST(DmScope, ScopeIsNotEqualToNull) {
    auto const library = makeLibrary();
    EXPECT_FALSE(library->getGlobalNamespace()->equalScopeName(nullptr));
}

TEST(DmScope, SamePathsInTwoLibrariesAreEqual) {
    auto const first = makeLibrary();
    auto const second = makeLibrary();
    auto const left = first->getGlobalNamespace()->fetchNamespace("a::b");
    auto const right = second->getGlobalNamespace()->fetchNamespace("a::b");
    EXPECT_TRUE(left->equalScopeName(right.get()));
    EXPECT_TRUE(right->equalScopeName(left.get()));
}

TEST(DmScope, GlobalNamespacesOfTwoLibrariesAreEqual) {
    auto const first = makeLibrary();
    auto const second = makeLibrary();
    EXPECT_TRUE(first->getGlobalNamespace()->equalScopeName(second->getGlobalNamespace().get()));
}

TEST(DmScope, DifferentLocalNamesAreNotEqual) {
    auto const library = makeLibrary();
    auto const left = library->getGlobalNamespace()->fetchNamespace("a::b");
    auto const right = library->getGlobalNamespace()->fetchNamespace("a::c");
    EXPECT_FALSE(left->equalScopeName(right.get()));
}

TEST(DmScope, SameLocalNamesUnderDifferentParentsAreNotEqual) {
    auto const library = makeLibrary();
    auto const left = library->getGlobalNamespace()->fetchNamespace("a::x");
    auto const right = library->getGlobalNamespace()->fetchNamespace("b::x");
    EXPECT_FALSE(left->equalScopeName(right.get()));
}

TEST(DmScope, ChainsOfDifferentDepthAreNotEqual) {
    auto const library = makeLibrary();
    auto const deep = library->getGlobalNamespace()->fetchNamespace("x");
    auto const orphan = makeNamespace("x");
    EXPECT_FALSE(deep->equalScopeName(orphan.get()));
    EXPECT_FALSE(orphan->equalScopeName(deep.get()));
}

TEST(DmScope, RootOfALibraryIsNotEqualToAnOrphanOfItsName) {
    auto const library = makeLibrary();
    auto const orphan = makeNamespace("_KestoGlobalNamespace");
    EXPECT_FALSE(library->getGlobalNamespace()->equalScopeName(orphan.get()));
}

TEST(DmScope, SameNameUnderOneParentIsEqualWithoutWalkingFurther) {
    auto const library = makeLibrary();
    auto const parent = library->getGlobalNamespace()->fetchNamespace("p");
    PlainScope left("x", makeLogger());
    PlainScope right("x", makeLogger());
    left.setParent(parent.get());
    right.setParent(parent.get());
    EXPECT_TRUE(left.equalScopeName(&right));
}

TEST(DmScope, OrphansOfTheSameNameAreEqual) {
    auto const left = makeNamespace("a");
    auto const right = makeNamespace("a");
    EXPECT_TRUE(left->equalScopeName(right.get()));
}

TEST(DmScope, RootsOfDifferentKindsAreNotEqual) {
    auto const global = RootNamespace::make("root", RootNamespace::kGlobal);
    auto const builtIn = RootNamespace::make("root", RootNamespace::kBuiltIn);
    auto const reserved = RootNamespace::make("root", RootNamespace::kReserved);
    auto const orphan = makeNamespace("root");
    EXPECT_FALSE(global->equalScopeName(builtIn.get()));
    EXPECT_FALSE(builtIn->equalScopeName(reserved.get()));
    EXPECT_FALSE(reserved->equalScopeName(global.get()));
    EXPECT_FALSE(global->equalScopeName(orphan.get()));
}

TEST(DmScope, ChildrenOfRootsOfDifferentKindsAreNotEqual) {
    auto const global = RootNamespace::make("root", RootNamespace::kGlobal);
    auto const builtIn = RootNamespace::make("root", RootNamespace::kBuiltIn);
    auto const left = global->fetchNamespace("a");
    auto const right = builtIn->fetchNamespace("a");
    EXPECT_FALSE(left->equalScopeName(right.get()));
}

TEST(DmScope, RootsOfTheSameKindAndNameAreEqual) {
    auto const left = RootNamespace::make("root", RootNamespace::kBuiltIn);
    auto const right = RootNamespace::make("root", RootNamespace::kBuiltIn);
    EXPECT_TRUE(left->equalScopeName(right.get()));
}

TEST(DmScope, NameComparisonIsByteWise) {
    auto const left = makeNamespace("Name");
    auto const right = makeNamespace("name");
    auto const longer = makeNamespace("Name ");
    EXPECT_FALSE(left->equalScopeName(right.get()));
    EXPECT_FALSE(left->equalScopeName(longer.get()));
}

// ---------------------------------------------------------------------------
// resolveLocalNameAndScope

TEST(DmScope, PlainNameHasAnEmptyScope) {
    std::string scope = "old";
    std::string local = "old";
    DmScope::resolveLocalNameAndScope("node", scope, local);
    EXPECT_EQ(scope, "");
    EXPECT_EQ(local, "node");
}

TEST(DmScope, TwoComponentNameSplitsAtTheSeparator) {
    std::string scope;
    std::string local;
    DmScope::resolveLocalNameAndScope("a::node", scope, local);
    EXPECT_EQ(scope, "a");
    EXPECT_EQ(local, "node");
}

TEST(DmScope, ThreeComponentNameSplitsAtTheLastSeparator) {
    std::string scope;
    std::string local;
    DmScope::resolveLocalNameAndScope("a::b::node", scope, local);
    EXPECT_EQ(scope, "a::b");
    EXPECT_EQ(local, "node");
}

TEST(DmScope, LeadingSeparatorGivesAnEmptyScope) {
    std::string scope = "old";
    std::string local;
    DmScope::resolveLocalNameAndScope("::node", scope, local);
    EXPECT_EQ(scope, "");
    EXPECT_EQ(local, "node");
}

TEST(DmScope, TrailingSeparatorGivesAnEmptyLocalName) {
    std::string scope;
    std::string local = "old";
    DmScope::resolveLocalNameAndScope("a::", scope, local);
    EXPECT_EQ(scope, "a");
    EXPECT_EQ(local, "");
}

TEST(DmScope, EmptyNameGivesTwoEmptyParts) {
    std::string scope = "old";
    std::string local = "old";
    DmScope::resolveLocalNameAndScope("", scope, local);
    EXPECT_EQ(scope, "");
    EXPECT_EQ(local, "");
}

TEST(DmScope, ResolveLocalNameAndScopeTakesItsInputFromAnOutput) {
    std::string scope;
    std::string local = "a::b::node";
    DmScope::resolveLocalNameAndScope(local, scope, local);
    EXPECT_EQ(scope, "a::b");
    EXPECT_EQ(local, "node");
}
