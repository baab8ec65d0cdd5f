// The library's view of its compounds: getCompounds.
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmUnknownNodeDef.h>
#include <KestoDM/library/DmLibrary.h>

#include "graph/GraphTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::keysOf;
using KestoTest::makeLibrary;
using KestoTest::namespaceAt;

namespace {

using Names = std::vector<std::string>;

std::shared_ptr<DmCompound> placeCompound(DmLibrary& library, std::string const& path,
                                          std::string const& name, DmNameResolutionType type = kFailOnClash) {
    auto compound = DmCompound::createCompound(name);
    EXPECT_EQ(compound->setScope(namespaceAt(library, path), type), DmStatus::kSuccess);
    return compound;
}

} // namespace

TEST(DmLibraryCompounds, ANewLibraryHasNone) {
    EXPECT_TRUE(makeLibrary()->getCompounds().empty());
}

TEST(DmLibraryCompounds, KeysAreFullNamesInWalkOrder) {
    auto const library = makeLibrary();
    auto const top = placeCompound(*library, "", "top");
    placeCompound(*library, "a::b", "deep");
    placeCompound(*library, "a", "first");
    auto const compounds = library->getCompounds();
    EXPECT_EQ(keysOf(compounds), (Names{"top", "a::first", "a::b::deep"}));
    EXPECT_EQ(compounds.at("top"), top);
}

TEST(DmLibraryCompounds, OtherDefinitionsAreNotListed) {
    auto const library = makeLibrary();
    auto const placeholder = DmUnknownNodeDef::newUnknownNodeDef("op");
    ASSERT_EQ(placeholder->setScope(namespaceAt(*library, "a"), kFailOnClash), DmStatus::kSuccess);
    placeCompound(*library, "a", "graph");
    EXPECT_EQ(keysOf(library->getCompounds()), Names{"a::graph"});
}

TEST(DmLibraryCompounds, OverloadsOfOneNameKeepTheFirst) {
    auto const library = makeLibrary();
    auto const first = placeCompound(*library, "a", "graph");
    placeCompound(*library, "a", "graph", kAsOverload);
    auto const compounds = library->getCompounds();
    ASSERT_EQ(compounds.size(), 1u);
    EXPECT_EQ(compounds.at("a::graph"), first);
}

TEST(DmLibraryCompounds, ResetDropsThem) {
    auto const library = makeLibrary();
    placeCompound(*library, "a", "graph");
    ASSERT_TRUE(library->reset());
    EXPECT_TRUE(library->getCompounds().empty());
}
