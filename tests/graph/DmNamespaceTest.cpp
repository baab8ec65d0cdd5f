#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmCollect.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmUninstantiableType.h>
#include <KestoDM/types/DmUnknownStructType.h>
#include <KestoDM/types/DmUnknownType.h>

#include "GraphTestSupport.h"
#include "types/DmExternTypeFactory.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::AcceptAll;
using KestoTest::keysOf;
using KestoTest::makeClass;
using KestoTest::makeEnum;
using KestoTest::makeLogger;
using KestoTest::makeNamespace;
using KestoTest::makeStruct;
using KestoTest::namesOf;
using KestoTest::PlainScope;
using KestoTest::RefuseName;

namespace {

using Names = std::vector<std::string>;

std::shared_ptr<DmNamespace> child(std::shared_ptr<DmNamespace> const& parent, std::string const& name) {
    std::shared_ptr<DmNamespace> out;
    EXPECT_EQ(parent->addNestedNamespace(name, out), DmStatus::kSuccess);
    return out;
}

bool holdsScope(DmScope const& parent, std::shared_ptr<DmNamespace> const& ns) {
    return parent.getNestedScopes().contains(std::shared_ptr<DmScope>(ns));
}

} // namespace

// ---------------------------------------------------------------------------
// createNamespace

TEST(DmNamespace, CreateNamespaceKeepsAVerbatimName) {
    auto const ns = DmNamespace::createNamespace("my space!", makeLogger(), kNameVerbatim);
    ASSERT_NE(ns, nullptr);
    EXPECT_EQ(ns->getName(), "my space!");
}

TEST(DmNamespace, CreateNamespaceLegalizesWhenAsked) {
    auto const ns = DmNamespace::createNamespace("my space", makeLogger(), kNameLegalize);
    ASSERT_NE(ns, nullptr);
    EXPECT_EQ(ns->getName(), "my_space");
}

TEST(DmNamespace, CreateNamespaceRefusesAnIllegalNameWhenItMustBeLegal) {
    EXPECT_EQ(DmNamespace::createNamespace("my space", makeLogger(), kNameMustBeLegal), nullptr);
    EXPECT_NE(DmNamespace::createNamespace("my_space", makeLogger(), kNameMustBeLegal), nullptr);
}

TEST(DmNamespace, CreateNamespaceRefusesTheEmptyName) {
    EXPECT_EQ(DmNamespace::createNamespace("", makeLogger(), kNameVerbatim), nullptr);
    EXPECT_EQ(DmNamespace::createNamespace("", makeLogger(), kNameLegalize), nullptr);
}

TEST(DmNamespace, CreateNamespaceRefusesANameWithoutLegalForm) {
    EXPECT_EQ(DmNamespace::createNamespace("!!", makeLogger(), kNameLegalize), nullptr);
}

TEST(DmNamespace, NewNamespaceIsCompleteValidAndEmpty) {
    auto const logger = makeLogger();
    auto const ns = makeNamespace("a", logger);
    EXPECT_TRUE(ns->isComplete());
    EXPECT_TRUE(ns->isValid());
    EXPECT_FALSE(ns->isConst());
    EXPECT_EQ(ns->getLogger(), logger);
    EXPECT_EQ(ns->getParentScope(), nullptr);
    EXPECT_TRUE(ns->getTypes().empty());
    EXPECT_TRUE(ns->getNestedNamespaces().empty());
    EXPECT_TRUE(ns->getNestedScopes().empty());
    EXPECT_TRUE(ns->getNodeDefs().empty());
    ASSERT_NE(ns->getGlobalVariables(), nullptr);
    EXPECT_TRUE(ns->getGlobalVariables()->empty());
    EXPECT_EQ(ns->getURI(), nullptr);
}

TEST(DmNamespace, NamespaceIsNoRoot) {
    auto const ns = makeNamespace("a");
    EXPECT_FALSE(ns->isGlobalNamespace());
    EXPECT_FALSE(ns->isBuiltInNamespace());
    EXPECT_FALSE(ns->isReservedNamespace());
}

TEST(DmNamespace, NamesAreTheEntityName) {
    auto const ns = makeNamespace("geometry");
    EXPECT_EQ(ns->getLocalScopeName(), "geometry");
    EXPECT_EQ(ns->getMapEntryKey(), "geometry");
    EXPECT_EQ(ns->getAsNamedEntity(), static_cast<DmNamedEntity*>(ns.get()));
}

TEST(DmNamespace, RenamingChangesTheLocalScopeName) {
    auto const ns = makeNamespace("old");
    ASSERT_TRUE(ns->setName("new", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(ns->getLocalScopeName(), "new");
}

TEST(DmNamespace, NamespaceCanBeFoundByItsRuntimeUID) {
    auto const ns = makeNamespace("a");
    EXPECT_EQ(DmNamedEntity::findByRuntimeUID(ns->getRuntimeUID()), ns);
}

TEST(DmNamespace, InstanceCountsFollowNamespaces) {
    unsigned int const namespaces = DmInstanceCounter<DmNamespace>::getInstanceCount();
    unsigned int const scopes = DmInstanceCounter<DmScope>::getInstanceCount();
    {
        auto const ns = makeNamespace("a");
        ns->fetchNamespace("b::c");
        EXPECT_EQ(DmInstanceCounter<DmNamespace>::getInstanceCount(), namespaces + 3);
        EXPECT_EQ(DmInstanceCounter<DmScope>::getInstanceCount(), scopes + 3);
    }
    EXPECT_EQ(DmInstanceCounter<DmNamespace>::getInstanceCount(), namespaces);
    EXPECT_EQ(DmInstanceCounter<DmScope>::getInstanceCount(), scopes);
}

TEST(DmNamespace, DroppingANamespaceReleasesItsTypes) {
    unsigned int const structs = DmInstanceCounter<DmStructType>::getInstanceCount();
    {
        auto const ns = makeNamespace("a");
        ASSERT_EQ(makeStruct("T")->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
        EXPECT_EQ(DmInstanceCounter<DmStructType>::getInstanceCount(), structs + 1);
    }
    EXPECT_EQ(DmInstanceCounter<DmStructType>::getInstanceCount(), structs);
}

// ---------------------------------------------------------------------------
// addNestedNamespace by name

TEST(DmNamespace, AddNestedNamespaceByNameCreatesTheChild) {
    auto const parent = makeNamespace("p");
    std::shared_ptr<DmNamespace> out;
    EXPECT_EQ(parent->addNestedNamespace("c", out), DmStatus::kSuccess);
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->getName(), "c");
    EXPECT_EQ(out->getParentScope(), parent.get());
    EXPECT_EQ(parent->getNestedNamespaces().at("c"), out);
    EXPECT_TRUE(holdsScope(*parent, out));
}

TEST(DmNamespace, AddNestedNamespaceByNameGivesTheParentsLogger) {
    auto const logger = makeLogger();
    auto const parent = makeNamespace("p", logger);
    EXPECT_EQ(child(parent, "c")->getLogger(), logger);
}

TEST(DmNamespace, AddNestedNamespaceByNameKeepsTheNameVerbatim) {
    auto const parent = makeNamespace("p");
    EXPECT_EQ(child(parent, "not legal!")->getName(), "not legal!");
}

TEST(DmNamespace, AddNestedNamespaceByNameTwiceGivesTheSameNamespace) {
    auto const parent = makeNamespace("p");
    std::shared_ptr<DmNamespace> first;
    std::shared_ptr<DmNamespace> second;
    EXPECT_EQ(parent->addNestedNamespace("c", first), DmStatus::kSuccess);
    EXPECT_EQ(parent->addNestedNamespace("c", second), DmStatus::kSuccess);
    EXPECT_EQ(first, second);
    EXPECT_EQ(parent->getNestedNamespaces().size(), 1u);
    EXPECT_EQ(parent->getNestedScopes().size(), 1u);
}

TEST(DmNamespace, AddNestedNamespaceWithTheEmptyNameFails) {
    auto const parent = makeNamespace("p");
    std::shared_ptr<DmNamespace> out = makeNamespace("untouched");
    auto const before = out;
    EXPECT_EQ(parent->addNestedNamespace("", out), DmStatus::kFailure);
    EXPECT_EQ(out, before);
    EXPECT_TRUE(parent->getNestedNamespaces().empty());
}

TEST(DmNamespace, NestedNamespacesKeepTheirOrder) {
    auto const parent = makeNamespace("p");
    child(parent, "z");
    child(parent, "a");
    child(parent, "m");
    EXPECT_EQ(keysOf(parent->getNestedNamespaces()), (Names{"z", "a", "m"}));
}

// ---------------------------------------------------------------------------
// addNestedNamespace of a namespace

TEST(DmNamespace, AddNestedNamespaceAdoptsTheChild) {
    auto const parent = makeNamespace("p");
    auto const orphan = makeNamespace("c");
    EXPECT_EQ(parent->addNestedNamespace(orphan), DmStatus::kSuccess);
    EXPECT_EQ(orphan->getParentScope(), parent.get());
    EXPECT_EQ(parent->getNestedNamespaces().at("c"), orphan);
    EXPECT_TRUE(holdsScope(*parent, orphan));
}

TEST(DmNamespace, AddNestedNamespaceOfTheSameNamespaceTwiceFails) {
    auto const parent = makeNamespace("p");
    auto const orphan = makeNamespace("c");
    EXPECT_EQ(parent->addNestedNamespace(orphan), DmStatus::kSuccess);
    EXPECT_EQ(parent->addNestedNamespace(orphan), DmStatus::kFailure);
    EXPECT_EQ(parent->getNestedNamespaces().size(), 1u);
}

TEST(DmNamespace, AddNestedNamespaceAfterGetOrCreateFails) {
    auto const parent = makeNamespace("p");
    auto const existing = child(parent, "c");
    EXPECT_EQ(parent->addNestedNamespace(existing), DmStatus::kFailure);
}

TEST(DmNamespace, AddNestedNamespaceWithATakenNameFailsAndLeavesTheNewcomerAlone) {
    auto const parent = makeNamespace("p");
    auto const first = child(parent, "c");
    auto const second = makeNamespace("c");
    EXPECT_EQ(parent->addNestedNamespace(second), DmStatus::kFailure);
    EXPECT_EQ(second->getParentScope(), nullptr);
    EXPECT_EQ(parent->getNestedNamespaces().at("c"), first);
}

TEST(DmNamespace, AddNestedNamespaceOfNullIsAnInvalidArgument) {
    auto const parent = makeNamespace("p");
    EXPECT_EQ(parent->addNestedNamespace(std::shared_ptr<DmNamespace>()), DmStatus::kInvalidArgument);
}

TEST(DmNamespace, NamespaceCannotBeNestedInItself) {
    auto const ns = makeNamespace("p");
    EXPECT_EQ(ns->addNestedNamespace(ns), DmStatus::kInvalidArgument);
    EXPECT_EQ(ns->getParentScope(), nullptr);
    EXPECT_TRUE(ns->getNestedNamespaces().empty());
}

TEST(DmNamespace, NamespaceCannotBeNestedBelowItself) {
    auto const top = makeNamespace("top");
    auto const leaf = top->fetchNamespace("mid::leaf");
    EXPECT_EQ(leaf->addNestedNamespace(top), DmStatus::kInvalidArgument);
    EXPECT_EQ(top->getParentScope(), nullptr);
}

// ---------------------------------------------------------------------------
// removeNestedNamespace

TEST(DmNamespace, RemoveNestedNamespaceDetachesTheChild) {
    auto const parent = makeNamespace("p");
    auto const nested = child(parent, "c");
    EXPECT_EQ(parent->removeNestedNamespace(nested), DmStatus::kSuccess);
    EXPECT_EQ(nested->getParentScope(), nullptr);
    EXPECT_TRUE(parent->getNestedNamespaces().empty());
    EXPECT_TRUE(parent->getNestedScopes().empty());
}

TEST(DmNamespace, RemoveNestedNamespaceOfAStrangerSucceedsAndDoesNothing) {
    auto const parent = makeNamespace("p");
    auto const nested = child(parent, "c");
    auto const other = makeNamespace("q");
    auto const stranger = child(other, "s");
    EXPECT_EQ(parent->removeNestedNamespace(stranger), DmStatus::kSuccess);
    EXPECT_EQ(stranger->getParentScope(), other.get());
    EXPECT_EQ(parent->getNestedNamespaces().size(), 1u);
    EXPECT_EQ(parent->getNestedScopes().size(), 1u);
}

TEST(DmNamespace, RemoveNestedNamespaceOfAStrangerWithAChildsNameDoesNothing) {
    auto const parent = makeNamespace("p");
    auto const nested = child(parent, "c");
    auto const stranger = makeNamespace("c");
    EXPECT_EQ(parent->removeNestedNamespace(stranger), DmStatus::kSuccess);
    EXPECT_EQ(nested->getParentScope(), parent.get());
    EXPECT_EQ(parent->getNestedNamespaces().at("c"), nested);
    EXPECT_TRUE(holdsScope(*parent, nested));
}

TEST(DmNamespace, RemoveNestedNamespaceOfNullSucceeds) {
    auto const parent = makeNamespace("p");
    EXPECT_EQ(parent->removeNestedNamespace(nullptr), DmStatus::kSuccess);
}

TEST(DmNamespace, RemovedNamespaceCanBeAddedAgain) {
    auto const parent = makeNamespace("p");
    auto const nested = child(parent, "c");
    ASSERT_EQ(parent->removeNestedNamespace(nested), DmStatus::kSuccess);
    EXPECT_EQ(parent->addNestedNamespace(nested), DmStatus::kSuccess);
    EXPECT_EQ(nested->getParentScope(), parent.get());
}

// ---------------------------------------------------------------------------
// fetchNamespace

TEST(DmNamespace, FetchNamespaceOfTheEmptyNameIsTheNamespaceItself) {
    auto const ns = makeNamespace("p");
    EXPECT_EQ(ns->fetchNamespace(""), ns);
}

TEST(DmNamespace, FetchNamespaceOfTheSeparatorAloneIsTheNamespaceItself) {
    auto const ns = makeNamespace("p");
    EXPECT_EQ(ns->fetchNamespace("::"), ns);
    EXPECT_TRUE(ns->getNestedNamespaces().empty());
}

TEST(DmNamespace, FetchNamespaceCreatesTheWholePath) {
    auto const root = makeNamespace("root");
    auto const leaf = root->fetchNamespace("a::b::c");
    ASSERT_NE(leaf, nullptr);
    EXPECT_EQ(leaf->getName(), "c");
    auto const a = root->getNestedNamespaces().at("a");
    auto const b = a->getNestedNamespaces().at("b");
    EXPECT_EQ(b->getNestedNamespaces().at("c"), leaf);
    EXPECT_EQ(leaf->getParentScope(), b.get());
    EXPECT_EQ(b->getParentScope(), a.get());
    EXPECT_EQ(a->getParentScope(), root.get());
}

TEST(DmNamespace, FetchNamespaceReusesWhatExists) {
    auto const root = makeNamespace("root");
    auto const b = root->fetchNamespace("a::b");
    auto const c = root->fetchNamespace("a::b::c");
    EXPECT_EQ(root->fetchNamespace("a::b"), b);
    EXPECT_EQ(c->getParentScope(), b.get());
    EXPECT_EQ(root->getNestedNamespaces().size(), 1u);
    EXPECT_EQ(b->getNestedNamespaces().size(), 1u);
}

TEST(DmNamespace, FetchNamespaceIgnoresALeadingSeparator) {
    auto const root = makeNamespace("root");
    auto const plain = root->fetchNamespace("a::b");
    EXPECT_EQ(root->fetchNamespace("::a::b"), plain);
}

TEST(DmNamespace, FetchNamespaceWithATrailingSeparatorGivesTheLastNamedNamespace) {
    auto const root = makeNamespace("root");
    auto const a = root->fetchNamespace("a::");
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->getName(), "a");
    EXPECT_TRUE(a->getNestedNamespaces().empty());
}

TEST(DmNamespace, FetchNamespaceSkipsRepeatedSeparators) {
    auto const root = makeNamespace("root");
    auto const b = root->fetchNamespace("a::::b");
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(root->getNestedNamespaces().at("a")->getNestedNamespaces().at("b"), b);
}

// ---------------------------------------------------------------------------
// setScope

TEST(DmNamespace, SetScopeMovesUnderANamespace) {
    auto const parent = makeNamespace("p");
    auto const ns = makeNamespace("c");
    EXPECT_EQ(ns->setScope(parent.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(ns->getParentScope(), parent.get());
    EXPECT_EQ(parent->getNestedNamespaces().at("c"), ns);
    EXPECT_TRUE(holdsScope(*parent, ns));
}

TEST(DmNamespace, SetScopeOfAConstNamespaceIsRefused) {
    auto const parent = makeNamespace("p");
    auto const ns = makeNamespace("c");
    ns->makeConst();
    EXPECT_EQ(ns->setScope(parent.get(), kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(ns->setScope(nullptr, kFailOnClash), DmStatus::kConstEntity);
    EXPECT_EQ(ns->getParentScope(), nullptr);
}

TEST(DmNamespace, SetScopeWithMakeUniqueIsAnInvalidArgument) {
    auto const parent = makeNamespace("p");
    auto const ns = makeNamespace("c");
    EXPECT_EQ(ns->setScope(parent.get(), kMakeUnique), DmStatus::kInvalidArgument);
    EXPECT_EQ(ns->getParentScope(), nullptr);
}

TEST(DmNamespace, SetScopeAsOverloadIsAnInvalidArgument) {
    auto const parent = makeNamespace("p");
    auto const ns = makeNamespace("c");
    EXPECT_EQ(ns->setScope(parent.get(), kAsOverload), DmStatus::kInvalidArgument);
    EXPECT_EQ(ns->setScope(nullptr, kAsOverload), DmStatus::kInvalidArgument);
}

TEST(DmNamespace, ConstnessIsTestedBeforeTheResolutionType) {
    auto const ns = makeNamespace("c");
    ns->makeConst();
    EXPECT_EQ(ns->setScope(nullptr, kMakeUnique), DmStatus::kConstEntity);
}

TEST(DmNamespace, SetScopeUnderAScopeThatIsNoNamespaceFails) {
    PlainScope scope("plain", makeLogger());
    auto const ns = makeNamespace("c");
    EXPECT_EQ(ns->setScope(&scope, kFailOnClash), DmStatus::kFailure);
    EXPECT_EQ(ns->getParentScope(), nullptr);
}

TEST(DmNamespace, SetScopeUnderANamespaceWithATakenNameFails) {
    auto const parent = makeNamespace("p");
    auto const first = child(parent, "c");
    auto const ns = makeNamespace("c");
    EXPECT_EQ(ns->setScope(parent.get(), kFailOnClash), DmStatus::kFailure);
    EXPECT_EQ(ns->getParentScope(), nullptr);
}

TEST(DmNamespace, SetScopeUnderTheCurrentParentFails) {
    auto const parent = makeNamespace("p");
    auto const ns = child(parent, "c");
    EXPECT_EQ(ns->setScope(parent.get(), kFailOnClash), DmStatus::kFailure);
    EXPECT_EQ(ns->getParentScope(), parent.get());
}

TEST(DmNamespace, SetScopeToNullDetachesFromTheParent) {
    auto const parent = makeNamespace("p");
    auto const ns = child(parent, "c");
    EXPECT_EQ(ns->setScope(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(ns->getParentScope(), nullptr);
    EXPECT_TRUE(parent->getNestedNamespaces().empty());
    EXPECT_TRUE(parent->getNestedScopes().empty());
}

TEST(DmNamespace, SetScopeToNullWithoutAParentSucceeds) {
    auto const ns = makeNamespace("c");
    EXPECT_EQ(ns->setScope(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(ns->getParentScope(), nullptr);
}

TEST(DmNamespace, MovingWithoutDetachingLeavesTheOldParentsEntry) {
    auto const oldParent = makeNamespace("old");
    auto const newParent = makeNamespace("new");
    auto const ns = child(oldParent, "c");
    EXPECT_EQ(ns->setScope(newParent.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(ns->getParentScope(), newParent.get());
    EXPECT_EQ(newParent->getNestedNamespaces().at("c"), ns);
    // Callers detach first; the old parent is not told.
    EXPECT_EQ(oldParent->getNestedNamespaces().at("c"), ns);
    EXPECT_TRUE(holdsScope(*oldParent, ns));
}

TEST(DmNamespace, DetachingThenMovingLeavesNothingBehind) {
    auto const oldParent = makeNamespace("old");
    auto const newParent = makeNamespace("new");
    auto const ns = child(oldParent, "c");
    ASSERT_EQ(ns->setScope(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(ns->setScope(newParent.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_TRUE(oldParent->getNestedNamespaces().empty());
    EXPECT_TRUE(oldParent->getNestedScopes().empty());
    EXPECT_EQ(ns->getParentScope(), newParent.get());
}

TEST(DmNamespace, SetScopeCannotMakeACycle) {
    auto const top = makeNamespace("top");
    auto const leaf = top->fetchNamespace("leaf");
    EXPECT_EQ(top->setScope(leaf.get(), kFailOnClash), DmStatus::kInvalidArgument);
    EXPECT_EQ(top->getParentScope(), nullptr);
}

// ---------------------------------------------------------------------------
// registerType and unregisterType

TEST(DmNamespace, RegisterTypeFilesItUnderItsName) {
    auto const ns = makeNamespace("a");
    auto const type = makeStruct("T");
    EXPECT_EQ(ns->registerType(type), DmStatus::kSuccess);
    EXPECT_EQ(ns->getTypes().at("T"), type);
}

TEST(DmNamespace, RegisterTypeDoesNotSetTheTypesNamespace) {
    auto const ns = makeNamespace("a");
    auto const type = makeStruct("T");
    ASSERT_EQ(ns->registerType(type), DmStatus::kSuccess);
    EXPECT_EQ(type->getNamespace(), nullptr);
}

TEST(DmNamespace, RegisterTypeKeepsTheOrderOfRegistration) {
    auto const ns = makeNamespace("a");
    ASSERT_EQ(ns->registerType(makeStruct("Z")), DmStatus::kSuccess);
    ASSERT_EQ(ns->registerType(makeClass("A")), DmStatus::kSuccess);
    ASSERT_EQ(ns->registerType(makeEnum("M")), DmStatus::kSuccess);
    EXPECT_EQ(keysOf(ns->getTypes()), (Names{"Z", "A", "M"}));
}

TEST(DmNamespace, RegisterTypeOfAnEquivalentTypeUnderATakenNameKeepsTheFirst) {
    auto const ns = makeNamespace("a");
    auto const first = makeStruct("T");
    auto const second = makeStruct("T");
    ASSERT_TRUE(DmBaseType::equivalent(*first, *second));
    EXPECT_EQ(ns->registerType(first), DmStatus::kSuccess);
    EXPECT_EQ(ns->registerType(second), DmStatus::kSuccess);
    EXPECT_EQ(ns->getTypes().size(), 1u);
    EXPECT_EQ(ns->getTypes().at("T"), first);
}

TEST(DmNamespace, RegisterTypeOfTheSameTypeTwiceSucceeds) {
    auto const ns = makeNamespace("a");
    auto const type = makeStruct("T");
    EXPECT_EQ(ns->registerType(type), DmStatus::kSuccess);
    EXPECT_EQ(ns->registerType(type), DmStatus::kSuccess);
    EXPECT_EQ(ns->getTypes().size(), 1u);
}

TEST(DmNamespace, RegisterTypeOfAnotherTypeUnderATakenNameFails) {
    auto const ns = makeNamespace("a");
    auto const first = makeStruct("T", "x");
    auto const second = makeStruct("T", "y");
    EXPECT_EQ(ns->registerType(first), DmStatus::kSuccess);
    EXPECT_EQ(ns->registerType(second), DmStatus::kFailure);
    EXPECT_EQ(ns->getTypes().at("T"), first);
}

TEST(DmNamespace, TwoClassTypesOfOneNameClash) {
    auto const ns = makeNamespace("a");
    EXPECT_EQ(ns->registerType(makeClass("C")), DmStatus::kSuccess);
    EXPECT_EQ(ns->registerType(makeClass("C")), DmStatus::kFailure);
}

TEST(DmNamespace, RegisterTypeOfNullIsAnInvalidArgument) {
    auto const ns = makeNamespace("a");
    EXPECT_EQ(ns->registerType(nullptr), DmStatus::kInvalidArgument);
}

TEST(DmNamespace, UnregisterTypeRemovesIt) {
    auto const ns = makeNamespace("a");
    auto const type = makeStruct("T");
    ASSERT_EQ(ns->registerType(type), DmStatus::kSuccess);
    EXPECT_EQ(ns->unregisterType(type), DmStatus::kSuccess);
    EXPECT_TRUE(ns->getTypes().empty());
}

TEST(DmNamespace, UnregisterTypeOfAnAbsentNameFails) {
    auto const ns = makeNamespace("a");
    EXPECT_EQ(ns->unregisterType(makeStruct("T")), DmStatus::kFailure);
}

TEST(DmNamespace, UnregisterTypeOfAnEquivalentNewcomerKeepsTheFirst) {
    auto const ns = makeNamespace("a");
    auto const first = makeStruct("T");
    auto const second = makeStruct("T");
    ASSERT_EQ(ns->registerType(first), DmStatus::kSuccess);
    ASSERT_EQ(ns->registerType(second), DmStatus::kSuccess);
    EXPECT_EQ(ns->unregisterType(second), DmStatus::kFailure);
    EXPECT_EQ(ns->getTypes().at("T"), first);
}

TEST(DmNamespace, UnregisterTypeOfNullIsAnInvalidArgument) {
    auto const ns = makeNamespace("a");
    EXPECT_EQ(ns->unregisterType(nullptr), DmStatus::kInvalidArgument);
}

// ---------------------------------------------------------------------------
// findType and getType

TEST(DmNamespace, FindTypeFindsALocalType) {
    auto const ns = makeNamespace("a");
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(ns->findType("T", out));
    EXPECT_EQ(out, type);
}

TEST(DmNamespace, FindTypeWalksNestedNamespaces) {
    auto const root = makeNamespace("root");
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(root->fetchNamespace("a::b").get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(root->findType("a::b::T", out));
    EXPECT_EQ(out, type);
}

TEST(DmNamespace, FindTypeWithALeadingSeparatorIsTheSameName) {
    auto const root = makeNamespace("root");
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(root->fetchNamespace("a").get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType const> plain;
    std::shared_ptr<DmBaseType const> leading;
    EXPECT_TRUE(root->findType("a::T", plain));
    EXPECT_TRUE(root->findType("::a::T", leading));
    EXPECT_EQ(plain, leading);
}

TEST(DmNamespace, FindTypeOfTheSeparatorAloneFindsNothing) {
    auto const root = makeNamespace("root");
    ASSERT_EQ(makeStruct("T")->setNamespace(root.get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType const> out;
    EXPECT_FALSE(root->findType("::", out));
    EXPECT_EQ(out, nullptr);
}

TEST(DmNamespace, FindTypeOfAMissingNamespaceCreatesNothing) {
    auto const root = makeNamespace("root");
    std::shared_ptr<DmBaseType const> out;
    EXPECT_FALSE(root->findType("a::b::T", out));
    EXPECT_TRUE(root->getNestedNamespaces().empty());
}

TEST(DmNamespace, FindTypeMissLeavesTheOutputUntouched) {
    auto const root = makeNamespace("root");
    std::shared_ptr<DmBaseType const> out = DmLibrary::getIntType();
    EXPECT_FALSE(root->findType("T", out));
    EXPECT_EQ(out, DmLibrary::getIntType());
}

TEST(DmNamespace, FindTypeDoesNotSeeTheBuiltIns) {
    auto const root = makeNamespace("root");
    std::shared_ptr<DmBaseType const> out;
    EXPECT_FALSE(root->findType("int", out));
}

TEST(DmNamespace, FindTypeDoesNotLookIntoParents) {
    auto const root = makeNamespace("root");
    ASSERT_EQ(makeStruct("T")->setNamespace(root.get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType const> out;
    EXPECT_FALSE(root->fetchNamespace("a")->findType("T", out));
}

TEST(DmNamespace, NonConstFindTypeGivesTheSameType) {
    auto const root = makeNamespace("root");
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(root->fetchNamespace("a").get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType> out;
    EXPECT_TRUE(root->findType("a::T", out));
    EXPECT_EQ(out, type);
    std::shared_ptr<DmBaseType> missing;
    EXPECT_FALSE(root->findType("a::U", missing));
    EXPECT_EQ(missing, nullptr);
}

TEST(DmNamespace, GetTypeFindsBuiltIns) {
    auto const root = makeNamespace("root");
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(root->getType("int", out));
    EXPECT_EQ(out, DmLibrary::getIntType());
    EXPECT_TRUE(root->getType("array<any>", out));
    EXPECT_EQ(out, DmLibrary::getArrayOfAnyType());
}

TEST(DmNamespace, GetTypeFindsOwnTypes) {
    auto const root = makeNamespace("root");
    auto const type = makeStruct("T");
    ASSERT_EQ(type->setNamespace(root->fetchNamespace("a").get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(root->getType("a::T", out));
    EXPECT_EQ(out, type);
}

TEST(DmNamespace, BuiltInTypesShadowEverything) {
    auto const root = makeNamespace("root");
    auto const impostor = makeStruct("int");
    ASSERT_EQ(impostor->setNamespace(root.get(), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType const> out;
    EXPECT_TRUE(root->getType("int", out));
    EXPECT_EQ(out, DmLibrary::getIntType());
    EXPECT_TRUE(root->findType("int", out));
    EXPECT_EQ(out, impostor);
}

TEST(DmNamespace, GetTypeDoesNotSeeTheReservedTypes) {
    auto const root = makeNamespace("root");
    std::shared_ptr<DmBaseType const> out;
    EXPECT_FALSE(root->getType("__undefined__", out));
}

TEST(DmNamespace, GetTypeMissIsFalse) {
    auto const root = makeNamespace("root");
    std::shared_ptr<DmBaseType const> out;
    EXPECT_FALSE(root->getType("nothing::here", out));
    EXPECT_EQ(out, nullptr);
}

// ---------------------------------------------------------------------------
// collect

TEST(DmNamespace, CollectTypesTakesTheKindsThatFilesDefine) {
    auto const ns = makeNamespace("a");
    ASSERT_EQ(makeClass("C")->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(makeStruct("S")->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(makeEnum("E")->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(std::make_shared<DmUndefinedType>("Undef")->setNamespace(ns.get(), kFailOnClash),
              DmStatus::kSuccess);
    ASSERT_EQ(
        Internal::ExternTypeFactory::make<DmUnknownType>("Unknown")->setNamespace(ns.get(), kFailOnClash),
        DmStatus::kSuccess);
    ASSERT_EQ(Internal::ExternTypeFactory::make<DmUnknownStructType>("UnknownStruct")
                  ->setNamespace(ns.get(), kFailOnClash),
              DmStatus::kSuccess);
    DmCollectList list;
    ns->collect(list, AcceptAll(), kCollectTypes, DmCollectFlags{});
    EXPECT_EQ(namesOf(list), (Names{"C", "S", "E", "Undef", "Unknown", "UnknownStruct"}));
}

TEST(DmNamespace, CollectTypesPassesOverBuiltInsAutoAndArrays) {
    auto const ns = makeNamespace("a");
    ASSERT_EQ(ns->registerType(std::make_shared<DmIntType>()), DmStatus::kSuccess);
    ASSERT_EQ(ns->registerType(std::make_shared<DmAutoType>()), DmStatus::kSuccess);
    ASSERT_EQ(ns->registerType(std::make_shared<DmArrayType>(DmLibrary::getIntType())), DmStatus::kSuccess);
    ASSERT_EQ(ns->registerType(makeStruct("S")), DmStatus::kSuccess);
    DmCollectList list;
    ns->collect(list, AcceptAll(), kCollectTypes, DmCollectFlags{});
    EXPECT_EQ(namesOf(list), (Names{"S"}));
}

TEST(DmNamespace, CollectAsksTheSelector) {
    auto const ns = makeNamespace("a");
    ASSERT_EQ(makeStruct("keep")->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(makeStruct("drop")->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    DmCollectList list;
    ns->collect(list, RefuseName("drop"), kCollectTypes, DmCollectFlags{});
    EXPECT_EQ(namesOf(list), (Names{"keep"}));
}

TEST(DmNamespace, CollectAppendsToTheTailOfTheList) {
    auto const ns = makeNamespace("a");
    ASSERT_EQ(makeStruct("S")->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    DmCollectList list;
    list.push_back(makeClass("already"));
    ns->collect(list, AcceptAll(), kCollectTypes, DmCollectFlags{});
    EXPECT_EQ(namesOf(list), (Names{"already", "S"}));
}

TEST(DmNamespace, CollectWithoutTheTypesBitTakesNoTypes) {
    auto const ns = makeNamespace("a");
    ASSERT_EQ(makeStruct("S")->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    DmCollectList list;
    ns->collect(list, AcceptAll(), kCollectCompounds | kCollectExternOperators, kCollectNested);
    EXPECT_TRUE(list.empty());
}

TEST(DmNamespace, CollectWithoutTheNestedFlagStaysInTheNamespace) {
    auto const ns = makeNamespace("a");
    ASSERT_EQ(makeStruct("S")->setNamespace(ns->fetchNamespace("inner").get(), kFailOnClash),
              DmStatus::kSuccess);
    DmCollectList list;
    ns->collect(list, AcceptAll(), kCollectTypes, DmCollectFlags{});
    EXPECT_TRUE(list.empty());
}

TEST(DmNamespace, CollectNestedWalksDepthFirstInOrder) {
    auto const ns = makeNamespace("a");
    ASSERT_EQ(makeStruct("top")->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(makeStruct("x1")->setNamespace(ns->fetchNamespace("x").get(), kFailOnClash),
              DmStatus::kSuccess);
    ASSERT_EQ(makeStruct("xy1")->setNamespace(ns->fetchNamespace("x::y").get(), kFailOnClash),
              DmStatus::kSuccess);
    ASSERT_EQ(makeStruct("z1")->setNamespace(ns->fetchNamespace("z").get(), kFailOnClash),
              DmStatus::kSuccess);
    ASSERT_EQ(makeStruct("x2")->setNamespace(ns->fetchNamespace("x").get(), kFailOnClash),
              DmStatus::kSuccess);
    DmCollectList list;
    ns->collect(list, AcceptAll(), kCollectTypes, kCollectNested);
    EXPECT_EQ(namesOf(list), (Names{"top", "x1", "x2", "xy1", "z1"}));
}

TEST(DmNamespace, CollectNestedAppliesTheSelectorEverywhere) {
    auto const ns = makeNamespace("a");
    ASSERT_EQ(makeStruct("drop")->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(makeStruct("drop")->setNamespace(ns->fetchNamespace("x").get(), kFailOnClash),
              DmStatus::kSuccess);
    ASSERT_EQ(makeStruct("keep")->setNamespace(ns->fetchNamespace("x").get(), kFailOnClash),
              DmStatus::kSuccess);
    DmCollectList list;
    ns->collect(list, RefuseName("drop"), kCollectTypes, kCollectNested);
    EXPECT_EQ(namesOf(list), (Names{"keep"}));
}
