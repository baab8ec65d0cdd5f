#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCollect.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmCppOperator.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmSelector.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include "graph/OperatorTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::AcceptAll;
using KestoTest::input;
using KestoTest::makeNamespace;
using KestoTest::makeStruct;
using KestoTest::makeURI;
using KestoTest::namesOf;
using KestoTest::output;
using KestoTest::RefuseName;
using KestoTest::setOf;
using KestoTest::UserDef;

namespace {

using Names = std::vector<std::string>;

/// A compound whose import counts the calls instead of copying, so that the
/// tests see whether an overload set lets it through.
class CountingCompound : public DmCompound {
public:
    explicit CountingCompound(std::string name) : DmCompound(InternalConstructor(), std::move(name)) {}

    static std::shared_ptr<CountingCompound> make(std::string name) {
        return initialized(std::make_shared<CountingCompound>(std::move(name)));
    }

    DmStatus import(std::shared_ptr<DmScope> const&, DmNameResolutionType, std::string const&,
                    std::shared_ptr<DmNodeDef>&, ImportErrorFlags) override {
        ++m_imports;
        return DmStatus::kSuccess;
    }

    int imports() const { return m_imports; }

private:
    int m_imports = 0;
};

/// Refuses one entity, whatever its name.
class RefuseEntity : public DmSelector {
public:
    explicit RefuseEntity(DmNamedEntity const* refused) : m_refused(refused) {}
    bool select(std::shared_ptr<DmNamedEntity> const& entity) const override {
        return entity.get() != m_refused;
    }

private:
    DmNamedEntity const* m_refused;
};

std::shared_ptr<DmExternOperator> makeOperator(std::string const& name) {
    return DmExternOperator::createExternOperator(name, DmExternOperator::kSafe, "", kNameVerbatim);
}

std::shared_ptr<DmCppOperator> makeCppOperator(std::string const& name) {
    return DmCppOperator::createCppOperator(name, DmExternOperator::kSafe, "", kNameVerbatim);
}

std::shared_ptr<DmCompound> makeCompound(std::string const& name) {
    auto compound = DmCompound::createCompound(name, kNameVerbatim);
    return compound;
}

/// Places `def` in `ns` (joining the set of its name) and expects success.
template <class Def>
std::shared_ptr<Def> place(std::shared_ptr<Def> def, DmNamespace& ns) {
    EXPECT_EQ(def->setScope(&ns, kAsOverload), DmStatus::kSuccess) << def->getName();
    return def;
}

DmCollectList collectFrom(DmNamespace const& ns, DmCollectMask mask, DmCollectFlags flags = DmCollectFlags{},
                          DmSelector const& selector = AcceptAll()) {
    DmCollectList list;
    ns.collect(list, selector, mask, flags);
    return list;
}

class DmCollectOperatorsTest : public KestoTest::OperatorTest {};
class DmOverloadSetImportTest : public KestoTest::OperatorTest {};

} // namespace

// ---------------------------------------------------------------------------
// Collecting external operators

TEST_F(DmCollectOperatorsTest, TakesTheOperatorsOfTheNamespaceInTheOrderOfTheirSets) {
    auto const ns = makeNamespace("math");
    auto const add = place(makeOperator("add"), *ns);
    auto const scale = place(makeCppOperator("scale"), *ns);
    auto const list = collectFrom(*ns, kCollectExternOperators);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0], add);
    EXPECT_EQ(list[1], scale);
}

TEST_F(DmCollectOperatorsTest, TakesEachOperatorOfASetInOrder) {
    auto const ns = makeNamespace("math");
    auto const first = place(makeCppOperator("add"), *ns);
    auto const second = place(makeOperator("add"), *ns);
    auto const third = place(makeCppOperator("add"), *ns);
    ASSERT_EQ(setOf(*ns, "add")->size(), 3u);
    auto const list = collectFrom(*ns, kCollectExternOperators);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0], first);
    EXPECT_EQ(list[1], second);
    EXPECT_EQ(list[2], third);
}

TEST_F(DmCollectOperatorsTest, PassesOverCompoundsAndOtherDefinitions) {
    auto const ns = makeNamespace("math");
    place(makeCompound("graph"), *ns);
    place(UserDef::make("user"), *ns);
    auto const op = place(makeOperator("add"), *ns);
    place(UserDef::make("add"), *ns);
    auto const list = collectFrom(*ns, kCollectExternOperators);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0], op);
}

TEST_F(DmCollectOperatorsTest, CompoundsAloneLeaveTheOperatorsOut) {
    auto const ns = makeNamespace("math");
    place(makeOperator("add"), *ns);
    auto const compound = place(makeCompound("graph"), *ns);
    auto const list = collectFrom(*ns, kCollectCompounds);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0], compound);
}

TEST_F(DmCollectOperatorsTest, BothBitsTakeCompoundsAndOperatorsInTheOrderOfTheSets) {
    auto const ns = makeNamespace("math");
    place(makeOperator("add"), *ns);
    place(makeCompound("graph"), *ns);
    place(makeCppOperator("scale"), *ns);
    auto const list = collectFrom(*ns, kCollectCompounds | kCollectExternOperators);
    EXPECT_EQ(namesOf(list), (Names{"add", "graph", "scale"}));
}

TEST_F(DmCollectOperatorsTest, WithoutTheOperatorsBitTakesNoOperator) {
    auto const ns = makeNamespace("math");
    place(makeOperator("add"), *ns);
    EXPECT_TRUE(collectFrom(*ns, kCollectTypes, kCollectNested).empty());
}

TEST_F(DmCollectOperatorsTest, AsksTheSelectorForEachOperator) {
    auto const ns = makeNamespace("math");
    auto const first = place(makeOperator("add"), *ns);
    auto const second = place(makeOperator("add"), *ns);
    auto const list = collectFrom(*ns, kCollectExternOperators, DmCollectFlags{}, RefuseEntity(first.get()));
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0], second);
}

TEST_F(DmCollectOperatorsTest, ASelectorRefusingANameLeavesTheWholeSetOut) {
    auto const ns = makeNamespace("math");
    place(makeOperator("add"), *ns);
    place(makeOperator("add"), *ns);
    place(makeOperator("scale"), *ns);
    auto const list = collectFrom(*ns, kCollectExternOperators, DmCollectFlags{}, RefuseName("add"));
    EXPECT_EQ(namesOf(list), (Names{"scale"}));
}

TEST_F(DmCollectOperatorsTest, PassesOverBuiltInSets) {
    auto const ns = makeNamespace("math");
    auto const builtIn = DmOverloadSet::newOverloadSet(makeOperator("native"), true);
    ASSERT_EQ(ns->registerNodeDef(builtIn), DmStatus::kSuccess);
    auto const op = place(makeOperator("add"), *ns);
    auto const list = collectFrom(*ns, kCollectExternOperators);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0], op);
}

TEST_F(DmCollectOperatorsTest, TakesTypesBeforeOperators) {
    auto const ns = makeNamespace("math");
    place(makeOperator("add"), *ns);
    ASSERT_EQ(makeStruct("Point")->setNamespace(ns.get(), kFailOnClash), DmStatus::kSuccess);
    auto const list = collectFrom(*ns, kCollectTypes | kCollectExternOperators);
    EXPECT_EQ(namesOf(list), (Names{"Point", "add"}));
}

TEST_F(DmCollectOperatorsTest, StaysInTheNamespaceWithoutTheNestedFlag) {
    auto const ns = makeNamespace("math");
    place(makeOperator("inner"), *ns->fetchNamespace("x"));
    EXPECT_TRUE(collectFrom(*ns, kCollectExternOperators).empty());
}

TEST_F(DmCollectOperatorsTest, NestedWalksDepthFirstInOrder) {
    auto const ns = makeNamespace("math");
    place(makeOperator("top"), *ns);
    place(makeOperator("x1"), *ns->fetchNamespace("x"));
    place(makeCppOperator("xy1"), *ns->fetchNamespace("x::y"));
    place(makeOperator("z1"), *ns->fetchNamespace("z"));
    place(makeCppOperator("x2"), *ns->fetchNamespace("x"));
    auto const list = collectFrom(*ns, kCollectExternOperators, kCollectNested);
    EXPECT_EQ(namesOf(list), (Names{"top", "x1", "x2", "xy1", "z1"}));
}

TEST_F(DmCollectOperatorsTest, AppendsToTheTailOfTheList) {
    auto const ns = makeNamespace("math");
    place(makeOperator("add"), *ns);
    DmCollectList list;
    list.push_back(makeOperator("already"));
    ns->collect(list, AcceptAll(), kCollectExternOperators, DmCollectFlags{});
    EXPECT_EQ(namesOf(list), (Names{"already", "add"}));
}

TEST_F(DmCollectOperatorsTest, ALibraryGivesTheOperatorsOfAllItsNamespacesAndNoBuiltInDefinition) {
    auto const library = KestoTest::makeLibrary();
    ASSERT_NE(library, nullptr);
    auto const& global = library->getGlobalNamespace();
    auto const native = DmNativeNodeDef::newNativeNodeDef("pass", DmNativeNodeDef::kPass);
    ASSERT_EQ(global->registerNodeDef(native), DmStatus::kSuccess);
    ASSERT_TRUE(setOf(*global, "pass")->isBuiltIn());
    place(makeCppOperator("scale"), *global);
    place(makeOperator("add"), *global->fetchNamespace("math"));
    DmCollectList list;
    library->collect(list, AcceptAll(), kCollectExternOperators | kCollectCompounds, kCollectNested);
    EXPECT_EQ(namesOf(list), (Names{"scale", "add"}));
}

// ---------------------------------------------------------------------------
// Importing a set that holds operators or compounds

TEST_F(DmOverloadSetImportTest, ASetHoldingAnOperatorIsNotImported) {
    auto const source = makeNamespace("source");
    auto const target = makeNamespace("target");
    place(makeOperator("add"), *source);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "add")->import(target, kFailOnClash, "add", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(target->getNodeDefs().empty());
}

TEST_F(DmOverloadSetImportTest, ASetHoldingACppOperatorIsNotImported) {
    auto const source = makeNamespace("source");
    auto const target = makeNamespace("target");
    place(makeCppOperator("scale"), *source);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "scale")->import(target, kMakeUnique, "scale", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(target->getNodeDefs().empty());
}

TEST_F(DmOverloadSetImportTest, AnOperatorAnywhereInTheSetStopsTheImportBeforeAnyOverloadIsCopied) {
    auto const source = makeNamespace("source");
    auto const target = makeNamespace("target");
    auto const user = place(UserDef::make("add"), *source);
    place(makeOperator("add"), *source);
    auto const later = place(UserDef::make("add"), *source);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "add")->import(target, kFailOnClash, "add", out, 0), DmStatus::kFailure);
    EXPECT_EQ(user->imports().size(), 0u);
    EXPECT_EQ(later->imports().size(), 0u);
    EXPECT_EQ(out, nullptr);
}

TEST_F(DmOverloadSetImportTest, AnOperatorFailsTheImportBeforeANameClashIsLookedAt) {
    auto const source = makeNamespace("source");
    auto const target = makeNamespace("target");
    place(makeOperator("add"), *source);
    place(UserDef::make("add"), *target);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "add")->import(target, kFailOnClash, "add", out, 0), DmStatus::kFailure);
    EXPECT_EQ(setOf(*target, "add")->size(), 1u);
}

TEST_F(DmOverloadSetImportTest, ASetHoldingAnOperatorIntoNoScopeIsAFailure) {
    auto const source = makeNamespace("source");
    place(makeOperator("add"), *source);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "add")->import(nullptr, kFailOnClash, "add", out, 0), DmStatus::kFailure);
}

TEST_F(DmOverloadSetImportTest, ASetHoldingACompoundWithoutAURIIsNotImported) {
    auto const source = makeNamespace("source");
    auto const target = makeNamespace("target");
    auto const compound = place(CountingCompound::make("graph"), *source);
    ASSERT_EQ(compound->getURI(), nullptr);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "graph")->import(target, kFailOnClash, "graph", out, 0), DmStatus::kFailure);
    EXPECT_EQ(compound->imports(), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(target->getNodeDefs().empty());
}

TEST_F(DmOverloadSetImportTest, ACompoundWithoutAURIStopsTheOtherOverloadsToo) {
    auto const source = makeNamespace("source");
    auto const target = makeNamespace("target");
    auto const user = place(UserDef::make("graph"), *source);
    place(CountingCompound::make("graph"), *source);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "graph")->import(target, kFailOnClash, "graph", out, 0), DmStatus::kFailure);
    EXPECT_EQ(user->imports().size(), 0u);
}

TEST_F(DmOverloadSetImportTest, ASetHoldingACompoundWithAURIIsImported) {
    auto const source = makeNamespace("source");
    auto const target = makeNamespace("target");
    auto const compound = CountingCompound::make("graph");
    compound->setURI(makeURI("/graphs/source.json"));
    place(compound, *source);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "graph")->import(target, kFailOnClash, "graph", out, 0), DmStatus::kSuccess);
    EXPECT_EQ(compound->imports(), 1);
}

TEST_F(DmOverloadSetImportTest, ASetOfCompoundsIsImportedOnlyWhenEachHasAURI) {
    auto const source = makeNamespace("source");
    auto const target = makeNamespace("target");
    auto const withURI = CountingCompound::make("graph");
    withURI->setURI(makeURI("/graphs/source.json"));
    place(withURI, *source);
    auto const withoutURI = place(CountingCompound::make("graph"), *source);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "graph")->import(target, kFailOnClash, "graph", out, 0), DmStatus::kFailure);
    EXPECT_EQ(withURI->imports(), 0);
    EXPECT_EQ(withoutURI->imports(), 0);
    withoutURI->setURI(makeURI("/graphs/other.json"));
    EXPECT_EQ(setOf(*source, "graph")->import(target, kFailOnClash, "graph", out, 0), DmStatus::kSuccess);
    EXPECT_EQ(withURI->imports(), 1);
    EXPECT_EQ(withoutURI->imports(), 1);
}

TEST_F(DmOverloadSetImportTest, ASetOfPlainDefinitionsIsStillImported) {
    auto const source = makeNamespace("source");
    auto const target = makeNamespace("target");
    auto const user = place(UserDef::make("add"), *source);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(setOf(*source, "add")->import(target, kFailOnClash, "add", out, 0), DmStatus::kSuccess);
    EXPECT_EQ(user->imports().size(), 1u);
}
