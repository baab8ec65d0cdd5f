// The library's view of its node definitions: getNodeDefs.
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmUnknownNodeDef.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include "graph/GraphTestSupport.h"
#include "library/BuiltInsTestSupport.h"
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

std::shared_ptr<DmUnknownNodeDef> placeDef(DmLibrary& library, std::string const& path,
                                           std::string const& name,
                                           DmNameResolutionType type = kFailOnClash) {
    auto def = DmUnknownNodeDef::newUnknownNodeDef(name);
    EXPECT_EQ(def->setScope(namespaceAt(library, path), type), DmStatus::kSuccess);
    return def;
}

} // namespace

TEST(DmLibraryNodeDefs, KeysAreFullNamesInWalkOrder) {
    auto const library = makeLibrary();
    placeDef(*library, "", "top");
    placeDef(*library, "a", "first");
    placeDef(*library, "a::b", "deep");
    placeDef(*library, "a", "second");
    EXPECT_EQ(KestoTest::withoutBuiltIns(keysOf(library->getNodeDefs())),
              (Names{"top", "a::first", "a::second", "a::b::deep"}));
}

TEST(DmLibraryNodeDefs, EntriesAreTheOverloadSets) {
    auto const library = makeLibrary();
    auto const first = placeDef(*library, "a", "op");
    auto const second = placeDef(*library, "a", "op", kAsOverload);
    auto const defs = library->getNodeDefs();
    ASSERT_EQ(KestoTest::withoutBuiltIns(keysOf(defs)), Names{"a::op"});
    auto const set = std::dynamic_pointer_cast<DmOverloadSet>(defs.at("a::op"));
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->getOverloads(), (DmOverloadSet::OverloadList{first, second}));
}

TEST(DmLibraryNodeDefs, ADefinitionTakenOutIsNoLongerListed) {
    auto const library = makeLibrary();
    auto const def = placeDef(*library, "a", "op");
    ASSERT_EQ(def->setScope(nullptr, kFailOnClash), DmStatus::kSuccess);
    EXPECT_TRUE(KestoTest::withoutBuiltIns(keysOf(library->getNodeDefs())).empty());
}

TEST(DmLibraryNodeDefs, ResetDropsEveryDefinition) {
    auto const library = makeLibrary();
    placeDef(*library, "a", "op");
    library->reset();
    EXPECT_TRUE(KestoTest::withoutBuiltIns(keysOf(library->getNodeDefs())).empty());
    EXPECT_EQ(library->getNodeDefs().size(), 21u);
}
