// Global variables: how they are made, named and placed in namespaces, and
// how a namespace files them.
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmGlobalVariable.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>

#include "graph/GraphTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Kesto;
using KestoTest::fullName;
using KestoTest::keysOf;
using KestoTest::makeLibrary;
using KestoTest::makeLogger;
using KestoTest::makeNamespace;

namespace {

using Names = std::vector<std::string>;

/// Expects every global variable, namespace, value and named entity that a
/// test makes to be gone when it ends.
class DmGlobalVariableTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        // The process-wide types and namespaces come into being on first use;
        // they must not count as made by the first test.
        DmLibrary::getIntType();
        DmLibrary::getFloatType();
        DmLibrary::getStringType();
        DmLibrary::getBuiltInNamespace();
        DmLibrary::getReservedNamespace();
    }

    void SetUp() override {
        m_variables = count<DmGlobalVariable>();
        m_namespaces = count<DmNamespace>();
        m_values = count<DmBaseValue>();
        m_named = count<DmNamedEntity>();
    }

    void TearDown() override {
        EXPECT_EQ(count<DmGlobalVariable>(), m_variables) << "global variables left alive";
        EXPECT_EQ(count<DmNamespace>(), m_namespaces) << "namespaces left alive";
        EXPECT_EQ(count<DmBaseValue>(), m_values) << "values left alive";
        EXPECT_EQ(count<DmNamedEntity>(), m_named) << "named entities left alive";
    }

    template <class T>
    static unsigned int count() {
        return DmInstanceCounter<T>::getInstanceCount();
    }

    static std::shared_ptr<DmGlobalVariable> makeVariable(std::string const& name) {
        auto variable = DmGlobalVariable::createGlobalVariable(name, kNameVerbatim);
        EXPECT_NE(variable, nullptr);
        return variable;
    }

    /// The variable filed under `name` in `ns`, or null.
    static std::shared_ptr<DmGlobalVariable> filed(DmNamespace const& ns, std::string const& name) {
        auto const variables = ns.getGlobalVariables();
        auto const found = variables->find(name);
        return found == variables->end() ? nullptr : found->second;
    }

    static Names filedNames(DmNamespace const& ns) { return keysOf(*ns.getGlobalVariables()); }

    /// Two variables "v": `mover`, placed in `from`, tried to move to `to`,
    /// where `holder` sits, and was refused.
    struct Clash {
        std::shared_ptr<DmNamespace> from;
        std::shared_ptr<DmNamespace> to;
        std::shared_ptr<DmGlobalVariable> mover;
        std::shared_ptr<DmGlobalVariable> holder;
    };

    static Clash lostClash() {
        Clash clash{makeNamespace("from"), makeNamespace("to"), makeVariable("v"), makeVariable("v")};
        EXPECT_EQ(clash.mover->setNamespace(clash.from.get(), kFailOnClash), DmStatus::kSuccess);
        EXPECT_EQ(clash.holder->setNamespace(clash.to.get(), kFailOnClash), DmStatus::kSuccess);
        EXPECT_EQ(clash.mover->setNamespace(clash.to.get(), kFailOnClash), DmStatus::kFailure);
        return clash;
    }

private:
    unsigned int m_variables = 0;
    unsigned int m_namespaces = 0;
    unsigned int m_values = 0;
    unsigned int m_named = 0;
};

} // namespace

// ---------------------------------------------------------------------------
// createGlobalVariable

TEST_F(DmGlobalVariableTest, CreateKeepsAVerbatimName) {
    auto const variable = DmGlobalVariable::createGlobalVariable("my var!", kNameVerbatim);
    ASSERT_NE(variable, nullptr);
    EXPECT_EQ(variable->getName(), "my var!");
}

TEST_F(DmGlobalVariableTest, CreateLegalizesWhenAsked) {
    auto const variable = DmGlobalVariable::createGlobalVariable("my var", kNameLegalize);
    ASSERT_NE(variable, nullptr);
    EXPECT_EQ(variable->getName(), "my_var");
}

TEST_F(DmGlobalVariableTest, CreateRefusesAnIllegalNameWhenItMustBeLegal) {
    EXPECT_EQ(DmGlobalVariable::createGlobalVariable("my var", kNameMustBeLegal), nullptr);
    auto const legal = DmGlobalVariable::createGlobalVariable("my_var", kNameMustBeLegal);
    ASSERT_NE(legal, nullptr);
    EXPECT_EQ(legal->getName(), "my_var");
}

TEST_F(DmGlobalVariableTest, CreateRefusesTheEmptyName) {
    EXPECT_EQ(DmGlobalVariable::createGlobalVariable("", kNameVerbatim), nullptr);
    EXPECT_EQ(DmGlobalVariable::createGlobalVariable("", kNameLegalize), nullptr);
    EXPECT_EQ(DmGlobalVariable::createGlobalVariable("", kNameMustBeLegal), nullptr);
}

TEST_F(DmGlobalVariableTest, CreateRefusesANameWithoutLegalFormWhenLegalizing) {
    EXPECT_EQ(DmGlobalVariable::createGlobalVariable("!?", kNameLegalize), nullptr);
}

TEST_F(DmGlobalVariableTest, NewVariableHasNoNamespaceTypeOrDefaultValue) {
    auto const variable = makeVariable("v");
    EXPECT_EQ(variable->getNamespace(), nullptr);
    EXPECT_EQ(std::as_const(*variable).getNamespace(), nullptr);
    EXPECT_EQ(variable->getType(), nullptr);
    EXPECT_EQ(variable->getDefaultValue(), nullptr);
}

TEST_F(DmGlobalVariableTest, NewVariableIsCompleteValidAndNotConst) {
    auto const variable = makeVariable("v");
    EXPECT_TRUE(variable->isComplete());
    EXPECT_TRUE(variable->isValid());
    EXPECT_FALSE(variable->isConst());
}

TEST_F(DmGlobalVariableTest, VariableIsFoundByItsRuntimeUID) {
    auto const variable = makeVariable("v");
    auto const other = makeVariable("v");
    EXPECT_NE(variable->getRuntimeUID(), other->getRuntimeUID());
    EXPECT_EQ(DmNamedEntity::findByRuntimeUID(variable->getRuntimeUID()), variable);
}

// ---------------------------------------------------------------------------
// Type and default value

TEST_F(DmGlobalVariableTest, SetTypeStoresTheType) {
    auto const variable = makeVariable("v");
    variable->setType(DmLibrary::getIntType());
    EXPECT_EQ(variable->getType(), DmLibrary::getIntType());
    variable->setType(DmLibrary::getStringType());
    EXPECT_EQ(variable->getType(), DmLibrary::getStringType());
}

TEST_F(DmGlobalVariableTest, SetDefaultValueStoresTheValue) {
    auto const variable = makeVariable("v");
    std::shared_ptr<DmBaseValue const> const value = DmLibrary::getIntType()->createValue();
    variable->setType(DmLibrary::getIntType());
    variable->setDefaultValue(value);
    EXPECT_EQ(variable->getDefaultValue(), value);
}

TEST_F(DmGlobalVariableTest, TypeAndDefaultValueAreStoredWithoutChecks) {
    auto const variable = makeVariable("v");
    std::shared_ptr<DmBaseValue const> const value = DmLibrary::getFloatType()->createValue();
    variable->setType(DmLibrary::getIntType());
    variable->setDefaultValue(value);
    EXPECT_EQ(variable->getType(), DmLibrary::getIntType());
    EXPECT_EQ(variable->getDefaultValue(), value);
}

TEST_F(DmGlobalVariableTest, TypeAndDefaultValueCanBeClearedWithNull) {
    auto const variable = makeVariable("v");
    variable->setType(DmLibrary::getIntType());
    variable->setDefaultValue(DmLibrary::getIntType()->createValue());
    variable->setType(nullptr);
    variable->setDefaultValue(nullptr);
    EXPECT_EQ(variable->getType(), nullptr);
    EXPECT_EQ(variable->getDefaultValue(), nullptr);
}

TEST_F(DmGlobalVariableTest, VariableKeepsItsDefaultValueAlive) {
    auto const variable = makeVariable("v");
    auto value = DmLibrary::getIntType()->createValue();
    std::weak_ptr<DmBaseValue> const watch = value;
    variable->setDefaultValue(std::move(value));
    EXPECT_FALSE(watch.expired());
    variable->setDefaultValue(nullptr);
    EXPECT_TRUE(watch.expired());
}

// ---------------------------------------------------------------------------
// Full names

TEST_F(DmGlobalVariableTest, FullNameWithoutANamespaceIsTheName) {
    auto const variable = makeVariable("v");
    EXPECT_EQ(fullName(*variable), "v");
    EXPECT_EQ(variable->getMapEntryKey(), "v");
}

TEST_F(DmGlobalVariableTest, FullNameInTheGlobalNamespaceIsTheName) {
    auto const library = makeLibrary();
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(fullName(*variable), "v");
    EXPECT_EQ(variable->getMapEntryKey(), "v");
    ASSERT_EQ(variable->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
}

TEST_F(DmGlobalVariableTest, FullNameInANamespaceHasTheNamespaceInFront) {
    auto const library = makeLibrary();
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(library->getGlobalNamespace()->fetchNamespace("ns").get(), kFailOnClash),
              DmStatus::kSuccess);
    EXPECT_EQ(variable->getName(), "v");
    EXPECT_EQ(fullName(*variable), "ns::v");
    EXPECT_EQ(variable->getMapEntryKey(), "ns::v");
}

TEST_F(DmGlobalVariableTest, FullNameDeepInNamespacesHasTheWholePath) {
    auto const library = makeLibrary();
    auto const variable = makeVariable("v");
    ASSERT_EQ(
        variable->setNamespace(library->getGlobalNamespace()->fetchNamespace("a::b::c").get(), kFailOnClash),
        DmStatus::kSuccess);
    EXPECT_EQ(fullName(*variable), "a::b::c::v");
    EXPECT_EQ(variable->getMapEntryKey(), "a::b::c::v");
}

TEST_F(DmGlobalVariableTest, FullNameAppendsToWhatIsThere) {
    auto const library = makeLibrary();
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(library->getGlobalNamespace()->fetchNamespace("ns").get(), kFailOnClash),
              DmStatus::kSuccess);
    std::string out = "global ";
    variable->resolveFullName(out);
    EXPECT_EQ(out, "global ns::v");
}

TEST_F(DmGlobalVariableTest, FullNameFollowsTheNamespace) {
    auto const library = makeLibrary();
    auto const global = library->getGlobalNamespace();
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(global->fetchNamespace("a").get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(variable->setNamespace(global->fetchNamespace("b::c").get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(fullName(*variable), "b::c::v");
    ASSERT_EQ(variable->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(fullName(*variable), "v");
}

TEST_F(DmGlobalVariableTest, FullNameInAnOrphanNamespaceKeepsTheNamespaceNameAndReports) {
    auto const logger = makeLogger();
    auto const ns = makeNamespace("ns", logger);
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(logger->getMessageCount(), 0u);
    EXPECT_EQ(fullName(*variable), "ns::v");
    ASSERT_EQ(logger->getMessageCount(), 1u);
    EXPECT_EQ(logger->begin()->getTitle(), "missing parent scope");
    EXPECT_EQ(logger->begin()->getDescription(), "the scope ns does not have a parent");
}

// ---------------------------------------------------------------------------
// setNamespace: resolution types

TEST_F(DmGlobalVariableTest, SetNamespaceWithMakeUniqueIsAnInvalidArgument) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    EXPECT_EQ(variable->setNamespace(ns.get(), kMakeUnique), DmStatus::kInvalidArgument);
    EXPECT_EQ(variable->getNamespace(), nullptr);
    EXPECT_TRUE(ns->getGlobalVariables()->empty());
}

TEST_F(DmGlobalVariableTest, SetNamespaceAsOverloadIsAnInvalidArgument) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    EXPECT_EQ(variable->setNamespace(ns.get(), kAsOverload), DmStatus::kInvalidArgument);
    EXPECT_EQ(variable->getNamespace(), nullptr);
    EXPECT_TRUE(ns->getGlobalVariables()->empty());
}

TEST_F(DmGlobalVariableTest, SetNamespaceWithMakeUniqueOnATakenNameIsStillAnInvalidArgument) {
    auto const ns = makeNamespace("ns");
    auto const first = makeVariable("v");
    ASSERT_EQ(first->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const second = makeVariable("v");
    EXPECT_EQ(second->setNamespace(ns.get(), kMakeUnique), DmStatus::kInvalidArgument);
    EXPECT_EQ(second->getName(), "v");
    EXPECT_EQ(second->getNamespace(), nullptr);
    EXPECT_EQ(filed(*ns, "v"), first);
    EXPECT_EQ(filedNames(*ns), Names{"v"});
}

TEST_F(DmGlobalVariableTest, MoveWithMakeUniqueLeavesThePlacedVariableWhereItIs) {
    auto const from = makeNamespace("from");
    auto const to = makeNamespace("to");
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(from.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(variable->setNamespace(to.get(), kMakeUnique), DmStatus::kInvalidArgument);
    EXPECT_EQ(variable->getNamespace(), from.get());
    EXPECT_EQ(filed(*from, "v"), variable);
    EXPECT_TRUE(to->getGlobalVariables()->empty());
}

TEST_F(DmGlobalVariableTest, TakingOutWithMakeUniqueIsAnInvalidArgumentAndKeepsThePlace) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(variable->setNamespace(nullptr, kMakeUnique), DmStatus::kInvalidArgument);
    EXPECT_EQ(variable->getNamespace(), ns.get());
    EXPECT_EQ(filed(*ns, "v"), variable);
}

TEST_F(DmGlobalVariableTest, SameNamespaceWithAsOverloadIsStillAnInvalidArgument) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(variable->setNamespace(ns.get(), kAsOverload), DmStatus::kInvalidArgument);
    EXPECT_EQ(filed(*ns, "v"), variable);
}

// ---------------------------------------------------------------------------
// setNamespace: placing, moving, taking out

TEST_F(DmGlobalVariableTest, SetNamespacePlacesAndFilesTheVariable) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    EXPECT_EQ(variable->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(variable->getNamespace(), ns.get());
    EXPECT_EQ(std::as_const(*variable).getNamespace(), ns.get());
    EXPECT_EQ(filedNames(*ns), Names{"v"});
    EXPECT_EQ(filed(*ns, "v"), variable);
}

TEST_F(DmGlobalVariableTest, NamespaceFilesTheVariableUnderItsNameNotItsFullName) {
    auto const library = makeLibrary();
    auto const ns = library->getGlobalNamespace()->fetchNamespace("a::b");
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(filedNames(*ns), Names{"v"});
    EXPECT_TRUE(library->getGlobalNamespace()->getGlobalVariables()->empty());
}

TEST_F(DmGlobalVariableTest, NamespaceKeepsItsVariablesInTheOrderOfPlacement) {
    auto const ns = makeNamespace("ns");
    for (char const* name : {"c", "a", "b"}) {
        ASSERT_EQ(makeVariable(name)->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    }
    EXPECT_EQ(filedNames(*ns), (Names{"c", "a", "b"}));
}

TEST_F(DmGlobalVariableTest, NamespaceOwnsItsVariables) {
    auto const ns = makeNamespace("ns");
    auto variable = makeVariable("v");
    std::weak_ptr<DmGlobalVariable> const watch = variable;
    ASSERT_EQ(variable->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    variable.reset();
    ASSERT_FALSE(watch.expired());
    EXPECT_EQ(filed(*ns, "v"), watch.lock());
    ASSERT_EQ(watch.lock()->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_TRUE(watch.expired());
}

TEST_F(DmGlobalVariableTest, SetNamespaceToTheSameNamespaceSucceedsAndKeepsOneEntry) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(variable->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(variable->getNamespace(), ns.get());
    EXPECT_EQ(filedNames(*ns), Names{"v"});
    EXPECT_EQ(filed(*ns, "v"), variable);
}

TEST_F(DmGlobalVariableTest, SetNamespaceMovesTheVariable) {
    auto const from = makeNamespace("from");
    auto const to = makeNamespace("to");
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(from.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(variable->setNamespace(to.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(variable->getNamespace(), to.get());
    EXPECT_TRUE(from->getGlobalVariables()->empty());
    EXPECT_EQ(filed(*to, "v"), variable);
}

TEST_F(DmGlobalVariableTest, SetNamespaceToNullTakesTheVariableOut) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(variable->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(variable->getNamespace(), nullptr);
    EXPECT_TRUE(ns->getGlobalVariables()->empty());
}

TEST_F(DmGlobalVariableTest, SetNamespaceToNullWithoutANamespaceSucceeds) {
    auto const variable = makeVariable("v");
    EXPECT_EQ(variable->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(variable->getNamespace(), nullptr);
}

TEST_F(DmGlobalVariableTest, VariablesOfOneNameLiveInTwoNamespaces) {
    auto const a = makeNamespace("a");
    auto const b = makeNamespace("b");
    auto const first = makeVariable("v");
    auto const second = makeVariable("v");
    EXPECT_EQ(first->setNamespace(a.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setNamespace(b.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(filed(*a, "v"), first);
    EXPECT_EQ(filed(*b, "v"), second);
}

TEST_F(DmGlobalVariableTest, NameIsFreeAgainOnceItsVariableLeft) {
    auto const ns = makeNamespace("ns");
    auto const first = makeVariable("v");
    auto const second = makeVariable("v");
    ASSERT_EQ(first->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(first->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(filed(*ns, "v"), second);
}

// ---------------------------------------------------------------------------
// setNamespace: clashes

TEST_F(DmGlobalVariableTest, PlacingOnATakenNameIsAFailureAndKeepsTheFirst) {
    auto const ns = makeNamespace("ns");
    auto const first = makeVariable("v");
    auto const second = makeVariable("v");
    ASSERT_EQ(first->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setNamespace(ns.get(), kFailOnClash), DmStatus::kFailure);
    EXPECT_EQ(second->getNamespace(), nullptr);
    EXPECT_EQ(filedNames(*ns), Names{"v"});
    EXPECT_EQ(filed(*ns, "v"), first);
    EXPECT_EQ(first->getNamespace(), ns.get());
}

TEST_F(DmGlobalVariableTest, VariablesClashWhateverTheirTypes) {
    auto const ns = makeNamespace("ns");
    auto const first = makeVariable("v");
    auto const second = makeVariable("v");
    first->setType(DmLibrary::getIntType());
    second->setType(DmLibrary::getIntType());
    ASSERT_EQ(first->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(second->setNamespace(ns.get(), kFailOnClash), DmStatus::kFailure);
    EXPECT_EQ(filed(*ns, "v"), first);
}

TEST_F(DmGlobalVariableTest, AfterAClashTheVariableIsInNoMapButStillNamesTheOldNamespace) {
    auto const library = makeLibrary();
    auto const global = library->getGlobalNamespace();
    auto const from = global->fetchNamespace("from");
    auto const to = global->fetchNamespace("to");
    auto const mover = makeVariable("v");
    auto const holder = makeVariable("v");
    ASSERT_EQ(mover->setNamespace(from.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(holder->setNamespace(to.get(), kFailOnClash), DmStatus::kSuccess);

    EXPECT_EQ(mover->setNamespace(to.get(), kFailOnClash), DmStatus::kFailure);

    EXPECT_TRUE(from->getGlobalVariables()->empty());
    EXPECT_EQ(filedNames(*to), Names{"v"});
    EXPECT_EQ(filed(*to, "v"), holder);
    EXPECT_EQ(mover->getNamespace(), from.get());
    EXPECT_EQ(fullName(*mover), "from::v");
    EXPECT_EQ(holder->getNamespace(), to.get());
}

TEST_F(DmGlobalVariableTest, AfterAClashTakingOutClearsTheNamespace) {
    auto const [from, to, mover, holder] = lostClash();
    ASSERT_FALSE(HasFailure()) << "the clash was not set up";

    EXPECT_EQ(mover->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(mover->getNamespace(), nullptr);
    EXPECT_TRUE(from->getGlobalVariables()->empty());
    EXPECT_EQ(filed(*to, "v"), holder);
}

TEST_F(DmGlobalVariableTest, AfterAClashPlacingInTheOldNamespaceSucceedsWithoutFilingIt) {
    auto const [from, to, mover, holder] = lostClash();
    ASSERT_FALSE(HasFailure()) << "the clash was not set up";

    // The variable already names that namespace: nothing is done.
    EXPECT_EQ(mover->setNamespace(from.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(mover->getNamespace(), from.get());
    EXPECT_TRUE(from->getGlobalVariables()->empty());
}

TEST_F(DmGlobalVariableTest, AfterAClashTakingOutThenPlacingFilesTheVariableAgain) {
    auto const [from, to, mover, holder] = lostClash();
    ASSERT_FALSE(HasFailure()) << "the clash was not set up";

    ASSERT_EQ(mover->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(mover->setNamespace(from.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(mover->getNamespace(), from.get());
    EXPECT_EQ(filed(*from, "v"), mover);
}

TEST_F(DmGlobalVariableTest, AfterAClashPlacingElsewhereFilesTheVariable) {
    auto const [from, to, mover, holder] = lostClash();
    ASSERT_FALSE(HasFailure()) << "the clash was not set up";
    auto const other = makeNamespace("other");

    EXPECT_EQ(mover->setNamespace(other.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(mover->getNamespace(), other.get());
    EXPECT_EQ(filed(*other, "v"), mover);
    EXPECT_TRUE(from->getGlobalVariables()->empty());
    EXPECT_EQ(filed(*to, "v"), holder);
}

TEST_F(DmGlobalVariableTest, TakingOutAVariableThatLostAClashLeavesTheNewcomerOfItsName) {
    auto const [from, to, mover, holder] = lostClash();
    ASSERT_FALSE(HasFailure()) << "the clash was not set up";
    auto const newcomer = makeVariable("v");
    ASSERT_EQ(newcomer->setNamespace(from.get(), kFailOnClash), DmStatus::kSuccess);

    EXPECT_EQ(mover->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(mover->getNamespace(), nullptr);
    EXPECT_EQ(filed(*from, "v"), newcomer);
    EXPECT_EQ(newcomer->getNamespace(), from.get());
}

TEST_F(DmGlobalVariableTest, PlacingWhereItIsAsksTheNamespaceNothing) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    ASSERT_EQ(variable->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    // Placing it where it is asks the namespace nothing.
    EXPECT_EQ(variable->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(ns->registerGlobalVariable(variable), DmStatus::kFailure);
    EXPECT_EQ(filed(*ns, "v"), variable);
}

// ---------------------------------------------------------------------------
// The namespace's side: registerGlobalVariable and unregisterGlobalVariable

TEST_F(DmGlobalVariableTest, RegisterGlobalVariableFilesItUnderItsName) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    EXPECT_EQ(ns->registerGlobalVariable(variable), DmStatus::kSuccess);
    EXPECT_EQ(filedNames(*ns), Names{"v"});
    EXPECT_EQ(filed(*ns, "v"), variable);
    // Filing alone does not give the variable its namespace.
    EXPECT_EQ(variable->getNamespace(), nullptr);
}

TEST_F(DmGlobalVariableTest, RegisterGlobalVariableOnATakenNameIsAFailureAndKeepsTheFirst) {
    auto const ns = makeNamespace("ns");
    auto const first = makeVariable("v");
    auto const second = makeVariable("v");
    ASSERT_EQ(ns->registerGlobalVariable(first), DmStatus::kSuccess);
    EXPECT_EQ(ns->registerGlobalVariable(second), DmStatus::kFailure);
    EXPECT_EQ(filedNames(*ns), Names{"v"});
    EXPECT_EQ(filed(*ns, "v"), first);
}

TEST_F(DmGlobalVariableTest, RegisterGlobalVariableTwiceIsAFailureTheSecondTime) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    ASSERT_EQ(ns->registerGlobalVariable(variable), DmStatus::kSuccess);
    EXPECT_EQ(ns->registerGlobalVariable(variable), DmStatus::kFailure);
    EXPECT_EQ(filedNames(*ns), Names{"v"});
}

TEST_F(DmGlobalVariableTest, RegisterNullGlobalVariableIsAnInvalidArgument) {
    auto const ns = makeNamespace("ns");
    EXPECT_EQ(ns->registerGlobalVariable(nullptr), DmStatus::kInvalidArgument);
    EXPECT_TRUE(ns->getGlobalVariables()->empty());
}

TEST_F(DmGlobalVariableTest, UnregisterGlobalVariableRemovesIt) {
    auto const ns = makeNamespace("ns");
    auto const kept = makeVariable("a");
    auto const removed = makeVariable("b");
    ASSERT_EQ(ns->registerGlobalVariable(kept), DmStatus::kSuccess);
    ASSERT_EQ(ns->registerGlobalVariable(removed), DmStatus::kSuccess);
    EXPECT_EQ(ns->unregisterGlobalVariable(removed), DmStatus::kSuccess);
    EXPECT_EQ(filedNames(*ns), Names{"a"});
}

TEST_F(DmGlobalVariableTest, UnregisterGlobalVariableOfAnAbsentNameIsAFailure) {
    auto const ns = makeNamespace("ns");
    auto const kept = makeVariable("a");
    ASSERT_EQ(ns->registerGlobalVariable(kept), DmStatus::kSuccess);
    EXPECT_EQ(ns->unregisterGlobalVariable(makeVariable("b")), DmStatus::kFailure);
    EXPECT_EQ(filedNames(*ns), Names{"a"});
}

TEST_F(DmGlobalVariableTest, UnregisterGlobalVariableTwiceIsAFailureTheSecondTime) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    ASSERT_EQ(ns->registerGlobalVariable(variable), DmStatus::kSuccess);
    ASSERT_EQ(ns->unregisterGlobalVariable(variable), DmStatus::kSuccess);
    EXPECT_EQ(ns->unregisterGlobalVariable(variable), DmStatus::kFailure);
}

TEST_F(DmGlobalVariableTest, UnregisterGlobalVariableOfAnotherVariableOfTheNameKeepsTheFiledOne) {
    auto const ns = makeNamespace("ns");
    auto const first = makeVariable("v");
    auto const second = makeVariable("v");
    ASSERT_EQ(ns->registerGlobalVariable(first), DmStatus::kSuccess);
    EXPECT_EQ(ns->unregisterGlobalVariable(second), DmStatus::kFailure);
    EXPECT_EQ(filed(*ns, "v"), first);
}

TEST_F(DmGlobalVariableTest, UnregisterNullGlobalVariableIsAnInvalidArgument) {
    auto const ns = makeNamespace("ns");
    auto const variable = makeVariable("v");
    ASSERT_EQ(ns->registerGlobalVariable(variable), DmStatus::kSuccess);
    EXPECT_EQ(ns->unregisterGlobalVariable(nullptr), DmStatus::kInvalidArgument);
    EXPECT_EQ(filedNames(*ns), Names{"v"});
}
