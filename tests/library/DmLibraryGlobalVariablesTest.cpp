// The library's view of its global variables: getGlobalVariables and
// getConstGlobalVariables.
#include <KestoDM/graph/DmGlobalVariable.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include "graph/GraphTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::keysOf;
using KestoTest::makeLibrary;
using KestoTest::makeNamespace;
using KestoTest::namespaceAt;

namespace {

using Names = std::vector<std::string>;

/// A variable named `name` placed in the namespace at `path` ("" for the
/// global namespace itself).
std::shared_ptr<DmGlobalVariable> placeVariable(DmLibrary& library, std::string const& path,
                                                std::string const& name) {
    auto variable = DmGlobalVariable::createGlobalVariable(name, kNameVerbatim);
    EXPECT_NE(variable, nullptr);
    EXPECT_EQ(variable->setNamespace(namespaceAt(library, path), kFailOnClash), DmStatus::kSuccess);
    return variable;
}

} // namespace

TEST(DmLibraryGlobalVariables, NewLibraryHasNoGlobalVariables) {
    auto const library = makeLibrary();
    EXPECT_TRUE(library->getGlobalVariables().empty());
    EXPECT_TRUE(library->getConstGlobalVariables().empty());
}

TEST(DmLibraryGlobalVariables, VariablesAreKeyedByFullName) {
    auto const library = makeLibrary();
    auto const inGlobal = placeVariable(*library, "", "g");
    auto const inA = placeVariable(*library, "a", "v");
    auto const inB = placeVariable(*library, "a::b", "w");

    auto const variables = library->getGlobalVariables();
    EXPECT_EQ(keysOf(variables), (Names{"g", "a::v", "a::b::w"}));
    EXPECT_EQ(variables.find("g")->second, inGlobal);
    EXPECT_EQ(variables.find("a::v")->second, inA);
    EXPECT_EQ(variables.find("a::b::w")->second, inB);
}

TEST(DmLibraryGlobalVariables, VariablesComeNamespaceByNamespaceDepthFirstInTheOrderOfFiling) {
    auto const library = makeLibrary();
    placeVariable(*library, "", "g1");
    placeVariable(*library, "a", "v2");
    placeVariable(*library, "c", "u");
    placeVariable(*library, "a::b", "w");
    placeVariable(*library, "a", "v1");
    placeVariable(*library, "", "g2");

    EXPECT_EQ(keysOf(library->getGlobalVariables()),
              (Names{"g1", "g2", "a::v2", "a::v1", "a::b::w", "c::u"}));
}

TEST(DmLibraryGlobalVariables, ConstMapHoldsTheSameVariablesInTheSameOrder) {
    auto const library = makeLibrary();
    placeVariable(*library, "", "g");
    placeVariable(*library, "a", "v");
    placeVariable(*library, "a::b", "w");

    auto const variables = library->getGlobalVariables();
    auto const constVariables = library->getConstGlobalVariables();
    ASSERT_EQ(keysOf(constVariables), keysOf(variables));
    for (auto const& entry : variables) {
        EXPECT_EQ(constVariables.find(entry.first)->second, entry.second) << entry.first;
    }
}

TEST(DmLibraryGlobalVariables, EachCallMakesANewMap) {
    auto const library = makeLibrary();
    placeVariable(*library, "a", "v");
    auto variables = library->getGlobalVariables();
    variables.clear();
    EXPECT_EQ(keysOf(library->getGlobalVariables()), Names{"a::v"});
    EXPECT_EQ(library->getGlobalNamespace()->fetchNamespace("a")->getGlobalVariables()->size(), 1u);
}

TEST(DmLibraryGlobalVariables, VariableTakenOutIsNoLongerListed) {
    auto const library = makeLibrary();
    auto const kept = placeVariable(*library, "a", "kept");
    auto const removed = placeVariable(*library, "a", "removed");
    ASSERT_EQ(removed->setNamespace(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_EQ(keysOf(library->getGlobalVariables()), Names{"a::kept"});
    EXPECT_EQ(keysOf(library->getConstGlobalVariables()), Names{"a::kept"});
}

TEST(DmLibraryGlobalVariables, MovedVariableIsListedUnderItsNewFullName) {
    auto const library = makeLibrary();
    auto const variable = placeVariable(*library, "a", "v");
    ASSERT_EQ(variable->setNamespace(library->getGlobalNamespace()->fetchNamespace("b").get(), kFailOnClash),
              DmStatus::kSuccess);
    EXPECT_EQ(keysOf(library->getGlobalVariables()), Names{"b::v"});
}

TEST(DmLibraryGlobalVariables, VariableThatLostAClashIsNotListed) {
    auto const library = makeLibrary();
    auto const mover = placeVariable(*library, "a", "v");
    auto const holder = placeVariable(*library, "b", "v");
    ASSERT_EQ(mover->setNamespace(library->getGlobalNamespace()->fetchNamespace("b").get(), kFailOnClash),
              DmStatus::kFailure);

    auto const variables = library->getGlobalVariables();
    EXPECT_EQ(keysOf(variables), Names{"b::v"});
    EXPECT_EQ(variables.find("b::v")->second, holder);
}

TEST(DmLibraryGlobalVariables, VariablesOfANamespaceOutsideTheLibraryAreNotListed) {
    auto const library = makeLibrary();
    auto const outside = makeNamespace("outside");
    auto const variable = DmGlobalVariable::createGlobalVariable("v", kNameVerbatim);
    ASSERT_EQ(variable->setNamespace(outside.get(), kFailOnClash), DmStatus::kSuccess);
    EXPECT_TRUE(library->getGlobalVariables().empty());
}

TEST(DmLibraryGlobalVariables, EachLibraryListsOnlyItsOwnVariables) {
    auto const first = makeLibrary();
    auto const second = makeLibrary();
    placeVariable(*first, "a", "v");
    placeVariable(*second, "b", "w");
    EXPECT_EQ(keysOf(first->getGlobalVariables()), Names{"a::v"});
    EXPECT_EQ(keysOf(second->getGlobalVariables()), Names{"b::w"});
}

TEST(DmLibraryGlobalVariables, FullNameMetTwiceKeepsTheFirst) {
    auto const library = makeLibrary();
    // A verbatim name may hold the separator: "a::v" in the global namespace
    // has the same full name as "v" in the namespace a, and comes first.
    auto const literal = placeVariable(*library, "", "a::v");
    auto const nested = placeVariable(*library, "a", "v");

    auto const variables = library->getGlobalVariables();
    EXPECT_EQ(keysOf(variables), Names{"a::v"});
    EXPECT_EQ(variables.find("a::v")->second, literal);
}

TEST(DmLibraryGlobalVariables, ResetDropsEveryVariable) {
    auto const library = makeLibrary();
    std::weak_ptr<DmGlobalVariable> watch = placeVariable(*library, "a", "v");
    ASSERT_FALSE(watch.expired());
    ASSERT_TRUE(library->reset());
    EXPECT_TRUE(watch.expired());
    EXPECT_TRUE(library->getGlobalVariables().empty());
    EXPECT_TRUE(library->getConstGlobalVariables().empty());
}
