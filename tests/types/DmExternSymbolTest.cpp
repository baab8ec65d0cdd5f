#include <KestoDM/types/DmExternSymbol.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/ExternTargetSet.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

using Kesto::DmExternSymbol;
using Kesto::DmMangledName;
using Kesto::ExternTargetSet;

namespace {

/// The model gives the target bits no meaning, so the tests use arbitrary ones.
ExternTargetSet::TargetEnvironments bits(std::uint32_t mask) {
    return static_cast<ExternTargetSet::TargetEnvironments>(mask);
}

std::uint32_t targetsOf(DmExternSymbol const& symbol) {
    return static_cast<std::uint32_t>(symbol.getTargetSet().getTargets());
}

/// A symbol with every field set to a distinct value.
DmExternSymbol makeFullSymbol() {
    DmExternSymbol symbol;
    symbol.addTargets(bits(0x5));
    symbol.setMangleName(DmMangledName::kMangledNameMicrosoft, "?draw@Geo@@YAXXZ");
    symbol.setMangleName(DmMangledName::kMangledNameItanium, "_ZN3Geo4drawEv");
    symbol.setResourceFileName("libGeo.so");
    return symbol;
}

void expectFullSymbol(DmExternSymbol const& symbol) {
    EXPECT_EQ(targetsOf(symbol), 0x5u);
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameMicrosoft), "?draw@Geo@@YAXXZ");
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameItanium), "_ZN3Geo4drawEv");
    EXPECT_EQ(symbol.getResourceFileName(), "libGeo.so");
}

} // namespace

// ---------------------------------------------------------------------------
// DmMangledName

TEST(DmMangledName, SchemesHaveFixedNumbers) {
    EXPECT_EQ(static_cast<int>(DmMangledName::kMangledNameMicrosoft), 0);
    EXPECT_EQ(static_cast<int>(DmMangledName::kMangledNameItanium), 1);
}

TEST(DmMangledName, NewNameIsEmpty) {
    DmMangledName const name;
    EXPECT_TRUE(name.isEmpty());
    EXPECT_EQ(name.get(DmMangledName::kMangledNameMicrosoft), "");
    EXPECT_EQ(name.get(DmMangledName::kMangledNameItanium), "");
    EXPECT_EQ(name.getPlatformName(), "");
}

TEST(DmMangledName, ConstructorTakesMicrosoftThenItanium) {
    DmMangledName const name("?f@@YAXXZ", "_Z1fv");
    EXPECT_EQ(name.get(DmMangledName::kMangledNameMicrosoft), "?f@@YAXXZ");
    EXPECT_EQ(name.get(DmMangledName::kMangledNameItanium), "_Z1fv");
    EXPECT_FALSE(name.isEmpty());
}

TEST(DmMangledName, SettingOneEntryLeavesTheOtherAlone) {
    DmMangledName name("?f@@YAXXZ", "_Z1fv");
    name.set(DmMangledName::kMangledNameItanium, "_Z1gv");
    EXPECT_EQ(name.get(DmMangledName::kMangledNameMicrosoft), "?f@@YAXXZ");
    EXPECT_EQ(name.get(DmMangledName::kMangledNameItanium), "_Z1gv");
    name.set(DmMangledName::kMangledNameMicrosoft, "?g@@YAXXZ");
    EXPECT_EQ(name.get(DmMangledName::kMangledNameMicrosoft), "?g@@YAXXZ");
    EXPECT_EQ(name.get(DmMangledName::kMangledNameItanium), "_Z1gv");
}

// On this platform native symbols resolve through the Itanium entry; the
// Microsoft entry is kept for files written elsewhere but never looked up.
TEST(DmMangledName, PlatformNameIsTheItaniumEntry) {
    DmMangledName const both("?f@@YAXXZ", "_Z1fv");
    EXPECT_EQ(both.getPlatformName(), "_Z1fv");
    DmMangledName const onlyMicrosoft("?f@@YAXXZ", "");
    EXPECT_EQ(onlyMicrosoft.getPlatformName(), "");
    DmMangledName const onlyItanium("", "N3Geo4MeshE");
    EXPECT_EQ(onlyItanium.getPlatformName(), "N3Geo4MeshE");
}

TEST(DmMangledName, IsEmptyOnlyWhenBothEntriesAreEmpty) {
    EXPECT_FALSE(DmMangledName("?f@@YAXXZ", "").isEmpty());
    EXPECT_FALSE(DmMangledName("", "_Z1fv").isEmpty());
    DmMangledName name("?f@@YAXXZ", "_Z1fv");
    name.set(DmMangledName::kMangledNameMicrosoft, "");
    name.set(DmMangledName::kMangledNameItanium, "");
    EXPECT_TRUE(name.isEmpty());
}

TEST(DmMangledName, EqualWhenBothEntriesAreEqual) {
    EXPECT_TRUE(DmMangledName("a", "b") == DmMangledName("a", "b"));
    EXPECT_FALSE(DmMangledName("a", "b") != DmMangledName("a", "b"));
    EXPECT_TRUE(DmMangledName() == DmMangledName("", ""));
}

TEST(DmMangledName, DifferWhenEitherEntryDiffers) {
    EXPECT_TRUE(DmMangledName("a", "b") != DmMangledName("a", "c"));
    EXPECT_TRUE(DmMangledName("a", "b") != DmMangledName("c", "b"));
    // The same text in the other scheme is another name.
    EXPECT_TRUE(DmMangledName("a", "") != DmMangledName("", "a"));
    EXPECT_FALSE(DmMangledName("a", "") == DmMangledName("", "a"));
}

// ---------------------------------------------------------------------------
// DmExternSymbol: making

TEST(DmExternSymbol, NewSymbolIsEmpty) {
    DmExternSymbol const symbol;
    EXPECT_EQ(targetsOf(symbol), 0u);
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameMicrosoft), "");
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameItanium), "");
    EXPECT_TRUE(symbol.getMangledName().isEmpty());
    EXPECT_EQ(symbol.getResourceFileName(), "");
}

// ---------------------------------------------------------------------------
// DmExternSymbol: targets

TEST(DmExternSymbol, AddingTargetsOrsThemIn) {
    DmExternSymbol symbol;
    symbol.addTargets(bits(0x5));
    EXPECT_EQ(targetsOf(symbol), 0x5u);
    symbol.addTargets(ExternTargetSet(bits(0x6)));
    EXPECT_EQ(targetsOf(symbol), 0x7u);
}

TEST(DmExternSymbol, RemovingTargetsClearsOnlyThem) {
    DmExternSymbol symbol;
    symbol.addTargets(bits(0x7));
    symbol.removeTargets(bits(0x2));
    EXPECT_EQ(targetsOf(symbol), 0x5u);
}

TEST(DmExternSymbol, RemovingATargetThatIsNotSetChangesNothing) {
    DmExternSymbol symbol;
    symbol.addTargets(bits(0x5));
    symbol.removeTargets(bits(0x2));
    EXPECT_EQ(targetsOf(symbol), 0x5u);
}

TEST(DmExternSymbol, SupportsTargetsWhenAllAskedBitsAreSet) {
    DmExternSymbol symbol;
    symbol.addTargets(bits(0x5));
    EXPECT_TRUE(symbol.supportsTargets(bits(0x1)));
    EXPECT_TRUE(symbol.supportsTargets(bits(0x5)));
    EXPECT_FALSE(symbol.supportsTargets(bits(0x7)));
    EXPECT_FALSE(symbol.supportsTargets(bits(0x2)));
}

TEST(DmExternSymbol, SupportsAnEmptyRequestWithOrWithoutTargets) {
    DmExternSymbol symbol;
    EXPECT_TRUE(symbol.supportsTargets(ExternTargetSet()));
    symbol.addTargets(bits(0x5));
    EXPECT_TRUE(symbol.supportsTargets(ExternTargetSet()));
}

TEST(DmExternSymbol, TargetSetIsACopy) {
    static_assert(
        std::is_same_v<decltype(std::declval<DmExternSymbol const&>().getTargetSet()), ExternTargetSet>,
        "getTargetSet returns the set by value");
    DmExternSymbol symbol;
    symbol.addTargets(bits(0x5));
    ExternTargetSet set = symbol.getTargetSet();
    set.addTargets(bits(0x2));
    set.removeTargets(bits(0x1));
    EXPECT_EQ(targetsOf(symbol), 0x5u);
    EXPECT_EQ(static_cast<std::uint32_t>(set.getTargets()), 0x6u);
}

// ---------------------------------------------------------------------------
// DmExternSymbol: names

TEST(DmExternSymbol, KeepsAMangledNamePerScheme) {
    DmExternSymbol symbol;
    symbol.setMangleName(DmMangledName::kMangledNameItanium, "_ZN3Geo4drawEv");
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameItanium), "_ZN3Geo4drawEv");
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameMicrosoft), "");
    symbol.setMangleName(DmMangledName::kMangledNameMicrosoft, "?draw@Geo@@YAXXZ");
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameMicrosoft), "?draw@Geo@@YAXXZ");
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameItanium), "_ZN3Geo4drawEv");
}

TEST(DmExternSymbol, SettingAMangledNameReplacesOnlyThatScheme) {
    DmExternSymbol symbol = makeFullSymbol();
    symbol.setMangleName(DmMangledName::kMangledNameItanium, "_ZN3Geo5eraseEv");
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameItanium), "_ZN3Geo5eraseEv");
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameMicrosoft), "?draw@Geo@@YAXXZ");
    symbol.setMangleName(DmMangledName::kMangledNameMicrosoft, "");
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameMicrosoft), "");
    EXPECT_EQ(symbol.getMangleName(DmMangledName::kMangledNameItanium), "_ZN3Geo5eraseEv");
}

TEST(DmExternSymbol, MangledNameHoldsBothSchemes) {
    DmExternSymbol const symbol = makeFullSymbol();
    EXPECT_EQ(symbol.getMangledName(), DmMangledName("?draw@Geo@@YAXXZ", "_ZN3Geo4drawEv"));
    EXPECT_EQ(symbol.getMangledName().getPlatformName(), "_ZN3Geo4drawEv");
}

TEST(DmExternSymbol, KeepsTheResourceFileName) {
    DmExternSymbol symbol;
    symbol.setResourceFileName("libGeo.so");
    EXPECT_EQ(symbol.getResourceFileName(), "libGeo.so");
    symbol.setResourceFileName("");
    EXPECT_EQ(symbol.getResourceFileName(), "");
}

// ---------------------------------------------------------------------------
// DmExternSymbol: copying and moving

TEST(DmExternSymbol, CopyKeepsEverything) {
    DmExternSymbol const original = makeFullSymbol();
    DmExternSymbol const copy(original);
    expectFullSymbol(copy);
    expectFullSymbol(original);
}

TEST(DmExternSymbol, CopyIsIndependentOfTheOriginal) {
    DmExternSymbol original = makeFullSymbol();
    DmExternSymbol const copy(original);
    original.removeTargets(bits(0x5));
    original.setMangleName(DmMangledName::kMangledNameItanium, "");
    original.setResourceFileName("other.so");
    expectFullSymbol(copy);
}

TEST(DmExternSymbol, CopyAssignmentKeepsEverything) {
    DmExternSymbol const original = makeFullSymbol();
    DmExternSymbol copy;
    copy.addTargets(bits(0x8));
    copy.setResourceFileName("old.so");
    copy = original;
    expectFullSymbol(copy);
}

TEST(DmExternSymbol, MoveKeepsEverything) {
    DmExternSymbol original = makeFullSymbol();
    DmExternSymbol const moved(std::move(original));
    expectFullSymbol(moved);
}

TEST(DmExternSymbol, MoveAssignmentKeepsEverything) {
    DmExternSymbol original = makeFullSymbol();
    DmExternSymbol moved;
    moved.addTargets(bits(0x8));
    moved.setMangleName(DmMangledName::kMangledNameMicrosoft, "?old@@YAXXZ");
    moved = std::move(original);
    expectFullSymbol(moved);
}
