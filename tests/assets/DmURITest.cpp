#include <KestoDM/assets/DmURI.h>

#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmStreamURI.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/InputStream.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using Kesto::DmURI;

namespace {

// The smallest concrete URI: a name and nothing else.
class NamedURI : public DmURI {
public:
    explicit NamedURI(std::string name) : DmURI(std::move(name)) {}
    NamedURI(NamedURI const& other) = default;
};

std::shared_ptr<DmURI> makeURI(std::string name) {
    return std::make_shared<NamedURI>(std::move(name));
}

std::vector<std::string> dependencyNames(DmURI const& uri) {
    std::vector<std::string> names;
    for (auto const& entry : *uri.getDependencies())
        names.push_back(entry.first);
    return names;
}

// URIs that hold each other in a cycle never die on their own; the guard
// empties their maps when the test ends, passed or failed.
class CycleBreaker {
public:
    CycleBreaker(std::initializer_list<std::shared_ptr<DmURI>> uris) : m_uris(uris) {}
    CycleBreaker(CycleBreaker const&) = delete;
    CycleBreaker& operator=(CycleBreaker const&) = delete;
    ~CycleBreaker() {
        for (auto const& uri : m_uris)
            uri->getDependencies()->clear();
    }

private:
    std::vector<std::shared_ptr<DmURI>> m_uris;
};

} // namespace

// Identity.

TEST(DmURI, IsAbstractInUse) {
    EXPECT_FALSE((std::is_constructible_v<DmURI, std::string>));
    EXPECT_FALSE(std::is_copy_constructible_v<DmURI>);
    EXPECT_TRUE(std::has_virtual_destructor_v<DmURI>);
}

TEST(DmURI, KeepsItsName) {
    NamedURI const uri("file:///a.json");
    EXPECT_EQ(uri.getName(), "file:///a.json");
}

TEST(DmURI, MapEntryKeyIsACopyOfTheName) {
    NamedURI uri("file:///a.json");
    std::string key = uri.getMapEntryKey();
    EXPECT_EQ(key, "file:///a.json");
    key = "changed";
    EXPECT_EQ(uri.getName(), "file:///a.json");
}

TEST(DmURI, SetNameRenames) {
    NamedURI uri("old");
    uri.setName("new");
    EXPECT_EQ(uri.getName(), "new");
    EXPECT_EQ(uri.getMapEntryKey(), "new");
}

TEST(DmURI, IsValidAndComplete) {
    NamedURI const uri("u");
    EXPECT_TRUE(uri.isValid());
    EXPECT_TRUE(uri.isComplete());
    EXPECT_FALSE(uri.isConst());
}

TEST(DmURI, URIsOfTheSameNameAreEqual) {
    NamedURI const a("stream:/x");
    NamedURI const b("stream:/x");
    NamedURI const c("stream:/y");
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);
    EXPECT_FALSE(a == c);
    EXPECT_TRUE(a != c);
}

TEST(DmURI, EqualityIsCaseSensitive) {
    NamedURI const lower("file:///a.json");
    NamedURI const upper("file:///A.json");
    EXPECT_FALSE(lower == upper);
    EXPECT_TRUE(lower != upper);
    EXPECT_FALSE(lower == std::string("FILE:///a.json"));
}

TEST(DmURI, EqualityIgnoresTheKindOfURI) {
    std::istringstream text("{}");
    Kesto::StdInputStream input(text);
    Kesto::DmStreamURI const stream("x", &input);
    NamedURI const named("stream:/x");
    EXPECT_TRUE(stream == named);
    EXPECT_TRUE(named == stream);
}

TEST(DmURI, ComparesWithAText) {
    NamedURI const uri("file:///a.json");
    std::string const same = "file:///a.json";
    std::string const other = "file:///b.json";
    EXPECT_TRUE(uri == same);
    EXPECT_TRUE(same == uri);
    EXPECT_FALSE(uri != same);
    EXPECT_FALSE(same != uri);
    EXPECT_TRUE(uri != other);
    EXPECT_TRUE(other != uri);
    EXPECT_FALSE(uri == other);
}

TEST(DmURI, CountsItsInstances) {
    unsigned int const before = Kesto::DmInstanceCounter<DmURI>::getInstanceCount();
    {
        NamedURI const uri("u");
        EXPECT_EQ(Kesto::DmInstanceCounter<DmURI>::getInstanceCount(), before + 1);
        NamedURI const copy(uri);
        EXPECT_EQ(Kesto::DmInstanceCounter<DmURI>::getInstanceCount(), before + 2);
    }
    EXPECT_EQ(Kesto::DmInstanceCounter<DmURI>::getInstanceCount(), before);
}

// Dependencies.

TEST(DmURI, NewURIHasAnEmptyDependencyMap) {
    NamedURI const uri("u");
    ASSERT_NE(uri.getDependencies(), nullptr);
    EXPECT_TRUE(uri.getDependencies()->empty());
}

TEST(DmURI, AddDependencyFilesTheURIUnderItsName) {
    auto const uri = makeURI("a");
    auto const dependency = makeURI("b");
    EXPECT_TRUE(uri->addDependency(dependency));
    ASSERT_EQ(uri->getDependencies()->size(), 1u);
    EXPECT_EQ(uri->getDependencies()->at("b"), dependency);
}

TEST(DmURI, DependenciesKeepTheOrderOfAddition) {
    auto const uri = makeURI("a");
    auto const z = makeURI("z");
    auto const m = makeURI("m");
    auto const b = makeURI("b");
    EXPECT_TRUE(uri->addDependency(z));
    EXPECT_TRUE(uri->addDependency(m));
    EXPECT_TRUE(uri->addDependency(b));
    EXPECT_EQ(dependencyNames(*uri), (std::vector<std::string>{"z", "m", "b"}));
}

TEST(DmURI, AddDependencyOfNullIsFalse) {
    auto const uri = makeURI("a");
    EXPECT_FALSE(uri->addDependency(nullptr));
    EXPECT_TRUE(uri->getDependencies()->empty());
}

TEST(DmURI, AddDependencyOfItselfIsFalseAndAddsNothing) {
    auto const uri = makeURI("a");
    EXPECT_FALSE(uri->addDependency(uri));
    EXPECT_TRUE(uri->getDependencies()->empty());
    EXPECT_FALSE(uri->hasDependency(uri));
}

TEST(DmURI, AddDependencyTwiceGivesTrueThenFalse) {
    auto const uri = makeURI("a");
    auto const dependency = makeURI("b");
    EXPECT_TRUE(uri->addDependency(dependency));
    EXPECT_FALSE(uri->addDependency(dependency));
    EXPECT_EQ(uri->getDependencies()->size(), 1u);
}

TEST(DmURI, AddDependencyOfATakenNameKeepsTheFirstURI) {
    auto const uri = makeURI("a");
    auto const first = makeURI("b");
    auto const second = makeURI("b");
    EXPECT_TRUE(uri->addDependency(first));
    EXPECT_FALSE(uri->addDependency(second));
    EXPECT_EQ(uri->getDependencies()->at("b"), first);
}

TEST(DmURI, RemoveDependencyErasesIt) {
    auto const uri = makeURI("a");
    auto const b = makeURI("b");
    auto const c = makeURI("c");
    uri->addDependency(b);
    uri->addDependency(c);
    EXPECT_TRUE(uri->removeDependency(b));
    EXPECT_EQ(dependencyNames(*uri), (std::vector<std::string>{"c"}));
    EXPECT_FALSE(uri->hasDependency(b));
}

TEST(DmURI, RemoveDependencyErasesByName) {
    auto const uri = makeURI("a");
    uri->addDependency(makeURI("b"));
    EXPECT_TRUE(uri->removeDependency(makeURI("b")));
    EXPECT_TRUE(uri->getDependencies()->empty());
}

TEST(DmURI, RemoveDependencyOfAnAbsentURIIsFalse) {
    auto const uri = makeURI("a");
    uri->addDependency(makeURI("b"));
    EXPECT_FALSE(uri->removeDependency(makeURI("c")));
    EXPECT_FALSE(uri->removeDependency(nullptr));
    EXPECT_EQ(uri->getDependencies()->size(), 1u);
}

TEST(DmURI, RemovedDependencyCanBeAddedAgain) {
    auto const uri = makeURI("a");
    auto const b = makeURI("b");
    auto const c = makeURI("c");
    uri->addDependency(b);
    uri->addDependency(c);
    uri->removeDependency(b);
    EXPECT_TRUE(uri->addDependency(b));
    EXPECT_EQ(dependencyNames(*uri), (std::vector<std::string>{"c", "b"}));
}

TEST(DmURI, HasDependencyOfNullIsFalse) {
    auto const uri = makeURI("a");
    uri->addDependency(makeURI("b"));
    EXPECT_FALSE(uri->hasDependency(nullptr));
}

TEST(DmURI, HasDependencyFindsADirectDependency) {
    auto const uri = makeURI("a");
    auto const b = makeURI("b");
    uri->addDependency(b);
    EXPECT_TRUE(uri->hasDependency(b));
}

TEST(DmURI, HasDependencyMatchesByName) {
    auto const uri = makeURI("a");
    uri->addDependency(makeURI("b"));
    EXPECT_TRUE(uri->hasDependency(makeURI("b")));
    EXPECT_FALSE(uri->hasDependency(makeURI("B")));
}

TEST(DmURI, HasDependencyFollowsDependenciesTransitively) {
    auto const a = makeURI("a");
    auto const b = makeURI("b");
    auto const c = makeURI("c");
    auto const d = makeURI("d");
    a->addDependency(b);
    b->addDependency(c);
    c->addDependency(d);
    EXPECT_TRUE(a->hasDependency(c));
    EXPECT_TRUE(a->hasDependency(d));
    EXPECT_TRUE(b->hasDependency(d));
    EXPECT_FALSE(d->hasDependency(a));
    EXPECT_FALSE(c->hasDependency(b));
}

TEST(DmURI, HasDependencySearchesEveryBranch) {
    auto const a = makeURI("a");
    auto const b = makeURI("b");
    auto const c = makeURI("c");
    auto const d = makeURI("d");
    auto const e = makeURI("e");
    a->addDependency(b);
    a->addDependency(c);
    b->addDependency(d);
    c->addDependency(e);
    EXPECT_TRUE(a->hasDependency(e));
    EXPECT_TRUE(a->hasDependency(d));
}

TEST(DmURI, HasDependencyOfAnUnrelatedURIIsFalse) {
    auto const a = makeURI("a");
    auto const b = makeURI("b");
    a->addDependency(b);
    b->addDependency(makeURI("c"));
    EXPECT_FALSE(a->hasDependency(makeURI("x")));
}

TEST(DmURI, HasDependencyWithoutDependenciesIsFalse) {
    auto const a = makeURI("a");
    EXPECT_FALSE(a->hasDependency(makeURI("b")));
}

TEST(DmURI, HasDependencyEndsOnACycle) {
    auto const a = makeURI("a");
    auto const b = makeURI("b");
    CycleBreaker const breaker{a, b};
    a->addDependency(b);
    b->addDependency(a);
    EXPECT_FALSE(a->hasDependency(makeURI("x")));
    EXPECT_FALSE(b->hasDependency(makeURI("x")));
    EXPECT_TRUE(a->hasDependency(b));
    EXPECT_TRUE(b->hasDependency(a));
}

TEST(DmURI, URIOnACycleDependsOnItself) {
    auto const a = makeURI("a");
    auto const b = makeURI("b");
    auto const c = makeURI("c");
    CycleBreaker const breaker{a, b, c};
    a->addDependency(b);
    b->addDependency(c);
    c->addDependency(a);
    EXPECT_TRUE(a->hasDependency(a));
    EXPECT_TRUE(b->hasDependency(b));
}

TEST(DmURI, HasDependencyEndsOnACycleThatDoesNotPassThroughTheStart) {
    auto const a = makeURI("a");
    auto const b = makeURI("b");
    auto const c = makeURI("c");
    CycleBreaker const breaker{a, b, c};
    a->addDependency(b);
    b->addDependency(c);
    c->addDependency(b);
    EXPECT_FALSE(a->hasDependency(makeURI("x")));
    EXPECT_FALSE(a->hasDependency(a));
    EXPECT_TRUE(a->hasDependency(c));
}

TEST(DmURI, CopyKeepsTheNameAndTheDependencies) {
    NamedURI original("a");
    auto const b = makeURI("b");
    original.addDependency(b);
    NamedURI const copy(original);
    EXPECT_EQ(copy.getName(), "a");
    ASSERT_EQ(copy.getDependencies()->size(), 1u);
    EXPECT_EQ(copy.getDependencies()->at("b"), b);
}

TEST(DmURI, CopyHasADependencyMapOfItsOwn) {
    NamedURI original("a");
    original.addDependency(makeURI("b"));
    NamedURI copy(original);
    EXPECT_NE(copy.getDependencies(), original.getDependencies());
    copy.addDependency(makeURI("c"));
    original.removeDependency(makeURI("b"));
    EXPECT_EQ(dependencyNames(original), std::vector<std::string>{});
    EXPECT_EQ(dependencyNames(copy), (std::vector<std::string>{"b", "c"}));
}
