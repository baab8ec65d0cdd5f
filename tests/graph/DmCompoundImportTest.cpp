// Importing a compound: the copy made, node by node, into another scope; how
// the copy is named there; what each step of the walk copies and in which
// order; how a failing step is recorded while the walk goes on; and the
// imports of the other kinds of definition.
#include "graph/CompoundComparison.h"
#include "graph/CompoundTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmForEachCompound.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/graph/DmWatchPoint.h>
#include <KestoDM/graph/DmWhileCompound.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "graph/DmCompoundVisitor.h"
#include "graph/DmCompoundVisitorImport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::addNode;
using KestoTest::connectionsOf;
using KestoTest::equalCompounds;
using KestoTest::expectConnected;
using KestoTest::fullName;
using KestoTest::independentCompounds;
using KestoTest::input;
using KestoTest::intValue;
using KestoTest::makeLibrary;
using KestoTest::makeNamespace;
using KestoTest::output;
using KestoTest::portNames;
using KestoTest::portPath;
using KestoTest::reservedNames;
using KestoTest::ReservingCompound;
using KestoTest::setOf;

using Names = std::vector<std::string>;

// ---------------------------------------------------------------------------
// Compounds of other classes

/// Counts the clones made of it: an import begins by cloning its source.
class CountingCompound : public DmCompound {
public:
    CountingCompound(std::string name, int* clones)
        : DmCompound(InternalConstructor(), std::move(name)), m_clones(clones) {}

    static std::shared_ptr<CountingCompound> make(std::string name, int* clones) {
        return initialized(std::make_shared<CountingCompound>(std::move(name), clones));
    }

    std::shared_ptr<DmCompound> clone() const override {
        ++*m_clones;
        return make(getName(), m_clones);
    }

private:
    int* m_clones;
};

/// Makes the int input "limit" for itself when initialized, as a loop makes
/// its own ports; its clones are of its class, and so make the port too.
class LimitedCompound : public DmCompound {
public:
    explicit LimitedCompound(std::string name) : DmCompound(InternalConstructor(), std::move(name)) {}

    static std::shared_ptr<LimitedCompound> make(std::string name) {
        return initialized(std::make_shared<LimitedCompound>(std::move(name)));
    }

    void initialize() override {
        DmCompound::initialize();
        addPortDescription(input("limit", DmLibrary::getIntType()), kFailOnClash);
    }

    std::shared_ptr<DmCompound> clone() const override { return make(getName()); }
};

/// Writes down each step of a walk over a compound.
class RecordingVisitor : public DmCompoundVisitor<RecordingVisitor> {
public:
    using DmCompoundVisitor::DmCompoundVisitor;

    void preVisit() { steps.push_back("pre"); }
    void visitMetadata(DmMetadata const& metadata) {
        steps.push_back("metadata:" + std::to_string(metadata.getMetadataItems()->size()));
    }
    void visitDefaultDisabledTerminals(DmCompound const& compound) {
        steps.push_back("terminals:" + compound.getName());
    }
    void visitPortDescription(DmPortDescription const& port) { steps.push_back("port:" + port.getName()); }
    void visitNestedCompound(std::shared_ptr<DmCompound> const& nested) {
        steps.push_back("nested:" + nested->getName());
    }
    void visitNode(std::shared_ptr<DmNode> const& node) { steps.push_back("node:" + node->getName()); }
    void visitConnection(DmConnection const& connection) {
        steps.push_back("connection:" + portPath(*connection.getSourcePort()) + ">" +
                        portPath(*connection.getTargetPort()));
    }
    void postVisit() { steps.push_back("post"); }

    std::vector<std::string> steps;
};

void ignoreValue(void const*, std::uint64_t, void const*) {}

int const kClientData = 7;

int intOf(std::shared_ptr<DmBaseValue> const& value) {
    auto const typed = std::dynamic_pointer_cast<DmIntValue>(value);
    return typed ? typed->getData() : -1;
}

std::shared_ptr<DmMetadataItem> item(std::string const& name, std::string const& value) {
    return std::make_shared<DmMetadataItem>(name, value);
}

std::string stringItem(DmEntity const& entity, std::string const& name) {
    auto const found = entity.getMetadata()->find(name);
    std::string value = "<missing>";
    if (!found.empty()) {
        found.front()->getStringValue(value);
    }
    return value;
}

std::shared_ptr<DmCompound> asCompound(std::shared_ptr<DmNodeDef> const& def) {
    return std::dynamic_pointer_cast<DmCompound>(def);
}

std::shared_ptr<DmCompound> compoundIn(DmScope const& scope, std::string const& name, std::size_t index = 0) {
    auto const set = setOf(scope, name);
    if (!set || set->getOverloads().size() <= index) {
        return nullptr;
    }
    return std::dynamic_pointer_cast<DmCompound>(set->getOverloads()[index]);
}

/// Every compound this test makes, connection, scope and watch point must be
/// gone at its end too.
class DmCompoundImportTest : public KestoTest::CompoundTest {
protected:
    void SetUp() override {
        CompoundTest::SetUp();
        expectBackAtEnd<DmWatchPoint>("watch points");
        m_lib = makeNamespace("lib", m_logger);
        m_user = makeNamespace("user", m_logger);
        m_op = makeOp("op");
    }

    void TearDown() override {
        m_op.reset();
        m_user.reset();
        m_lib.reset();
        m_logger.reset();
        CompoundTest::TearDown();
    }

    /// "name" with the int input "in" and the int output "out", in the namespace "lib".
    std::shared_ptr<DmNativeNodeDef> makeOp(std::string const& name) {
        auto def = KestoTest::makeOp(name);
        EXPECT_EQ(def->setScope(m_lib.get(), kFailOnClash), DmStatus::kSuccess);
        return def;
    }

    /// An associative "add": the associative int inputs a and b, the int output out.
    static std::shared_ptr<DmNativeNodeDef> makeAssociativeOp() {
        return KestoTest::makeAssociativeDef("a", "b", "out", DmNativeNodeDef::kBuildArray);
    }

    /// "graph" in "lib": the int input "a", the int output "r", and the chain
    /// .a -> n1 -> n2 -> .r of nodes on "op".
    std::shared_ptr<DmCompound> makeChain(std::string const& name = "graph") {
        auto compound = makeCompoundWithPorts(name, m_lib.get());
        addNode(*compound, "n1", m_op);
        addNode(*compound, "n2", m_op);
        expectConnected(*compound, ".a", "n1.in");
        expectConnected(*compound, "n1.out", "n2.in");
        expectConnected(*compound, "n2.out", ".r");
        return compound;
    }

    /// Imports `source` into "user" under `name`; the copy, or null.
    std::shared_ptr<DmCompound> importToUser(DmCompound& source, std::string const& name = "copy",
                                             DmNodeDef::ImportErrorFlags flags = 0) {
        std::shared_ptr<DmNodeDef> out;
        EXPECT_EQ(source.import(m_user, kFailOnClash, name, out, flags), DmStatus::kSuccess);
        return asCompound(out);
    }

    std::shared_ptr<DmNamespace> m_lib;
    std::shared_ptr<DmNamespace> m_user;
    std::shared_ptr<DmNativeNodeDef> m_op;
};

// ---------------------------------------------------------------------------
// Error flags

TEST_F(DmCompoundImportTest, ImportErrorFlagsAreAThirtyTwoBitMask) {
    EXPECT_EQ(sizeof(DmNodeDef::ImportErrorFlags), 4u);
    EXPECT_TRUE(std::is_unsigned<DmNodeDef::ImportErrorFlags>::value);
}

TEST_F(DmCompoundImportTest, AllowMissingNodeDefIsBitOne) {
    EXPECT_EQ(DmNodeDef::kImportAllowMissingNodeDef, 1u);
}

TEST_F(DmCompoundImportTest, ErrorFlagSetIsTrueWhenEveryGivenBitIsSet) {
    EXPECT_TRUE(DmNodeDef::errorFlagSet(1u, 1u));
    EXPECT_TRUE(DmNodeDef::errorFlagSet(0xFFu, 1u));
    EXPECT_TRUE(DmNodeDef::errorFlagSet(0x7u, 0x5u));
    EXPECT_FALSE(DmNodeDef::errorFlagSet(0u, 1u));
    EXPECT_FALSE(DmNodeDef::errorFlagSet(2u, 1u));
    EXPECT_FALSE(DmNodeDef::errorFlagSet(1u, 3u));
    EXPECT_FALSE(DmNodeDef::errorFlagSet(0x80000000u, 0x80000001u));
}

TEST_F(DmCompoundImportTest, ErrorFlagSetWithNoBitsGivenIsTrue) {
    EXPECT_TRUE(DmNodeDef::errorFlagSet(0u, 0u));
    EXPECT_TRUE(DmNodeDef::errorFlagSet(5u, 0u));
}

// ---------------------------------------------------------------------------
// The target scope

TEST_F(DmCompoundImportTest, ImportIntoNullScopeIsFailureWithNothingBuilt) {
    int clones = 0;
    auto source = CountingCompound::make("graph", &clones);
    addNode(*source, "n1", m_op);
    std::size_t const nodesOnOp = m_op->getInstantiatedNodes().size();
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(source->import(nullptr, kFailOnClash, "copy", out, 0), DmStatus::kFailure);
    EXPECT_EQ(clones, 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(m_op->getInstantiatedNodes().size(), nodesOnOp);
}

TEST_F(DmCompoundImportTest, ImportIntoNullScopeLeavesOutAsItWas) {
    auto source = makeChain();
    std::shared_ptr<DmNodeDef> out = m_op;
    EXPECT_EQ(source->import(nullptr, kMakeUnique, "copy", out, DmNodeDef::kImportAllowMissingNodeDef),
              DmStatus::kFailure);
    EXPECT_EQ(out, m_op);
}

TEST_F(DmCompoundImportTest, SuccessfulImportHandsOutTheCopyPlacedInTheScope) {
    auto source = makeChain();
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(source->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kSuccess);
    auto const copy = asCompound(out);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, source);
    EXPECT_EQ(copy->getName(), "copy");
    EXPECT_EQ(copy->getScope(), m_user.get());
    EXPECT_EQ(fullName(*copy), "user::copy");
    EXPECT_EQ(compoundIn(*m_user, "copy"), copy);
    EXPECT_EQ(m_user->getNestedScopes().size(), 1u);
    EXPECT_EQ(copy->getParentScope(), m_user.get());
}

TEST_F(DmCompoundImportTest, ImportLeavesTheSourceInItsScope) {
    auto source = makeChain();
    importToUser(*source);
    EXPECT_EQ(source->getName(), "graph");
    EXPECT_EQ(source->getScope(), m_lib.get());
    EXPECT_EQ(compoundIn(*m_lib, "graph"), source);
    EXPECT_EQ(setOf(*m_lib, "graph")->size(), 1u);
    EXPECT_FALSE(m_lib->hasNodeDef("copy"));
}

TEST_F(DmCompoundImportTest, ImportIntoTheSourcesOwnScopeUnderAnotherName) {
    auto source = makeChain();
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(source->import(m_lib, kFailOnClash, "twin", out, 0), DmStatus::kSuccess);
    EXPECT_EQ(compoundIn(*m_lib, "twin"), out);
    EXPECT_EQ(compoundIn(*m_lib, "graph"), source);
    EXPECT_TRUE(equalCompounds(*source, *asCompound(out)));
}

TEST_F(DmCompoundImportTest, ImportIntoAnotherCompoundMakesAPrivateDefinition) {
    auto source = makeChain();
    auto host = makeCompound("host", m_user.get());
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(source->import(host, kFailOnClash, "inner", out, 0), DmStatus::kSuccess);
    ASSERT_NE(out, nullptr);
    EXPECT_TRUE(out->isPrivate());
    EXPECT_EQ(out->getScope(), static_cast<DmScope*>(host.get()));
    EXPECT_EQ(fullName(*out), "user::host::inner");
}

// ---------------------------------------------------------------------------
// Name resolution

TEST_F(DmCompoundImportTest, FailOnClashWithATakenNameIsInvalidArgumentWithNothingBuilt) {
    int clones = 0;
    auto source = CountingCompound::make("graph", &clones);
    auto taken = makeCompound("copy", m_user.get());
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(source->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kInvalidArgument);
    EXPECT_EQ(clones, 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(setOf(*m_user, "copy")->size(), 1u);
    EXPECT_EQ(compoundIn(*m_user, "copy"), taken);
    EXPECT_EQ(m_user->getNodeDefs().size(), 1u);
}

TEST_F(DmCompoundImportTest, FailOnClashWithAFreeNameKeepsTheName) {
    auto source = makeChain();
    makeCompound("other", m_user.get());
    auto const copy = importToUser(*source, "copy");
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getName(), "copy");
}

TEST_F(DmCompoundImportTest, ClashIsJudgedInTheTargetScopeOnly) {
    // The source's own name, taken in its own scope, is free in the target.
    auto source = makeChain("graph");
    auto const copy = importToUser(*source, "graph");
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getName(), "graph");
    EXPECT_EQ(fullName(*copy), "user::graph");
}

TEST_F(DmCompoundImportTest, MakeUniqueRenamesTheCopyOnAClash) {
    auto source = makeChain();
    auto taken = makeCompound("copy", m_user.get());
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(source->import(m_user, kMakeUnique, "copy", out, 0), DmStatus::kSuccess);
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->getName(), "copy1");
    EXPECT_EQ(compoundIn(*m_user, "copy1"), out);
    EXPECT_EQ(compoundIn(*m_user, "copy"), taken);
    EXPECT_EQ(setOf(*m_user, "copy")->size(), 1u);
}

TEST_F(DmCompoundImportTest, MakeUniqueContinuesAfterTheHighestNumber) {
    auto source = makeChain();
    makeCompound("copy", m_user.get());
    makeCompound("copy3", m_user.get());
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(source->import(m_user, kMakeUnique, "copy", out, 0), DmStatus::kSuccess);
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->getName(), "copy4");
}

TEST_F(DmCompoundImportTest, MakeUniqueKeepsAFreeName) {
    auto source = makeChain();
    makeCompound("copy3", m_user.get());
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(source->import(m_user, kMakeUnique, "copy", out, 0), DmStatus::kSuccess);
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->getName(), "copy");
}

TEST_F(DmCompoundImportTest, AsOverloadJoinsTheSetOfATakenName) {
    auto source = makeChain();
    auto taken = makeChain("other");
    ASSERT_EQ(taken->setScope(m_user.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_TRUE(taken->setName("copy", kFailOnClash, kNameVerbatim));
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(source->import(m_user, kAsOverload, "copy", out, 0), DmStatus::kSuccess);
    auto const set = setOf(*m_user, "copy");
    ASSERT_NE(set, nullptr);
    ASSERT_EQ(set->size(), 2u);
    EXPECT_EQ(set->getOverloads()[0], taken);
    EXPECT_EQ(set->getOverloads()[1], out);
    EXPECT_EQ(out->getName(), "copy");
}

TEST_F(DmCompoundImportTest, TheCopysSelfNodeTakesTheNewName) {
    auto source = makeChain();
    auto const copy = importToUser(*source, "copy");
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getSelfNode()->getName(), "copy");
    EXPECT_EQ(source->getSelfNode()->getName(), "graph");
}

// ---------------------------------------------------------------------------
// What precedes the content: class, URI, library, reserved names

TEST_F(DmCompoundImportTest, TheCopyIsACloneOfTheSourcesClass) {
    auto source = LimitedCompound::make("loop");
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<LimitedCompound>(copy), nullptr);
}

TEST_F(DmCompoundImportTest, ImportClonesTheSourceOnce) {
    int clones = 0;
    auto source = CountingCompound::make("graph", &clones);
    importToUser(*source);
    EXPECT_EQ(clones, 1);
}

TEST_F(DmCompoundImportTest, ImportedCopyReportsIsImportedWithTheSourcesURI) {
    auto source = makeChain();
    auto const uri = std::make_shared<DmFileURI>("/library/graphs/chain.json", "");
    source->setURI(uri);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy->isImported());
    EXPECT_EQ(copy->getImportedURI(), uri);
    EXPECT_EQ(copy->getImportedURI()->getName(), "file:////library/graphs/chain.json");
    EXPECT_FALSE(source->isImported());
    EXPECT_EQ(source->getURI(), uri);
}

TEST_F(DmCompoundImportTest, ImportedCopyHasNoURIOfItsOwn) {
    auto source = makeChain();
    source->setURI(std::make_shared<DmFileURI>("/library/graphs/chain.json", ""));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getURI(), nullptr);
}

TEST_F(DmCompoundImportTest, SetOfTheImportedCopyReportsIsImported) {
    auto source = makeChain();
    source->setURI(std::make_shared<DmFileURI>("/library/graphs/chain.json", ""));
    importToUser(*source);
    auto const set = setOf(*m_user, "copy");
    ASSERT_NE(set, nullptr);
    EXPECT_TRUE(set->isImported());
    EXPECT_FALSE(setOf(*m_lib, "graph")->isImported());
}

TEST_F(DmCompoundImportTest, CopyOfASourceWithoutURIIsNotImported) {
    auto source = makeChain();
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getImportedURI(), nullptr);
    EXPECT_FALSE(copy->isImported());
}

TEST_F(DmCompoundImportTest, NestedCopiesReportIsImportedWithTheirSourcesURI) {
    auto source = makeChain();
    auto nested = makeCompound("inner");
    ASSERT_EQ(nested->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    auto const uri = std::make_shared<DmFileURI>("/library/graphs/chain.json", "");
    source->setURI(uri);
    ASSERT_EQ(nested->getURI(), uri);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const nestedCopy = compoundIn(*copy, "inner");
    ASSERT_NE(nestedCopy, nullptr);
    EXPECT_TRUE(nestedCopy->isImported());
    EXPECT_EQ(nestedCopy->getImportedURI(), uri);
    EXPECT_EQ(nestedCopy->getURI(), nullptr);
}

TEST_F(DmCompoundImportTest, CopyKeepsTheSourcesLibrary) {
    auto library = makeLibrary();
    ASSERT_NE(library, nullptr);
    auto const target = library->getGlobalNamespace()->fetchNamespace("user");
    auto source = makeChain();
    source->setLibrary(library.get());
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(source->import(target, kFailOnClash, "copy", out, 0), DmStatus::kSuccess);
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->getLibrary(), library.get());
    EXPECT_EQ(setOf(*target, "copy")->getLibrary(), library.get());
}

TEST_F(DmCompoundImportTest, CopyTakesTheSourcesReservedNodeNames) {
    auto source = makeChain();
    auto const names = reservedNames({"begin", "end"});
    ASSERT_EQ(source->setReservedNodeNames(names), DmStatus::kSuccess);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    ASSERT_NE(copy->getReservedNodeNames(), nullptr);
    ASSERT_EQ(copy->getReservedNodeNames()->size(), 2u);
    EXPECT_EQ((*copy->getReservedNodeNames())[0].str(), "begin");
    EXPECT_EQ((*copy->getReservedNodeNames())[1].str(), "end");
    EXPECT_TRUE(copy->isReservedNodeName("end"));
}

TEST_F(DmCompoundImportTest, CopyOfASourceWithoutReservedNamesHasNone) {
    auto source = makeChain();
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getReservedNodeNames(), nullptr);
}

// ---------------------------------------------------------------------------
// Metadata and default terminal states

TEST_F(DmCompoundImportTest, CopiesTheCompoundsMetadataAsATreeOfItsOwn) {
    auto source = makeChain();
    auto const parent = item("ui", "panel");
    parent->getMetadata()->add(item("colour", "blue"));
    source->getMetadata()->add(parent);
    source->getMetadata()->add(std::make_shared<DmMetadataItem>("weight", 2.5));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(KestoTest::describeMetadata(copy->getMetadata().get()),
              KestoTest::describeMetadata(source->getMetadata().get()));
    EXPECT_NE(copy->getMetadata(), source->getMetadata());

    auto const copied = copy->getMetadata()->find("ui");
    ASSERT_EQ(copied.size(), 1u);
    EXPECT_NE(copied.front(), parent);
    ASSERT_EQ(copied.front()->getMetadata()->find("colour").size(), 1u);
    EXPECT_EQ(copied.front()->getMetadata()->find("colour").front()->setStringValue("red"),
              DmStatus::kSuccess);
    EXPECT_EQ(stringItem(*parent, "colour"), "blue");
}

TEST_F(DmCompoundImportTest, CopiesTheDefaultTerminalStatesKeepingTheSourcesDescriptions) {
    auto terminal = DmTerminalNodeDef::createTerminalNodeDef("result", kNameVerbatim);
    ASSERT_TRUE(terminal->addPortDescription(input("value", DmLibrary::getIntType()), kFailOnClash));
    ASSERT_TRUE(terminal->addPortDescription(input("flag", DmLibrary::getBoolType()), kFailOnClash));
    auto source = makeChain();
    auto const value = terminal->getPortsInterface()["value"];
    auto const flag = terminal->getPortsInterface()["flag"];
    ASSERT_EQ(source->getDefaultTerminalStates().setTerminalState(value, false), DmStatus::kSuccess);
    ASSERT_EQ(source->getDefaultTerminalStates().setTerminalState(flag, true), DmStatus::kSuccess);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const& states = copy->getDefaultTerminalStates();
    ASSERT_EQ(states.size(), 2u);
    EXPECT_EQ(states.getStates()[0].getPort(), value);
    EXPECT_FALSE(states.getStates()[0].isEnabled());
    EXPECT_EQ(states.getStates()[1].getPort(), flag);
    EXPECT_TRUE(states.getStates()[1].isEnabled());
    EXPECT_FALSE(states.isEnabled(value.get()));
}

// ---------------------------------------------------------------------------
// The compound's ports

TEST_F(DmCompoundImportTest, CopiesThePortsInOrderWithNameTypeAndDirection) {
    auto source = makeCompound("graph", m_lib.get());
    source->addPortDescription(input("b", DmLibrary::getIntType()), kFailOnClash);
    source->addPortDescription(output("z", DmLibrary::getStringType()), kFailOnClash);
    source->addPortDescription(input("a", DmLibrary::getBoolType()), kFailOnClash);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(portNames(copy->getPortsInterface()), (Names{"b", "z", "a"}));
    for (auto const& entry : source->getPortsInterface()) {
        auto const copied = copy->getPortsInterface()[entry.first];
        ASSERT_NE(copied, nullptr) << entry.first;
        EXPECT_NE(copied, entry.second) << entry.first;
        EXPECT_EQ(copied->getType(), entry.second->getType()) << entry.first;
        EXPECT_EQ(copied->getDirection(), entry.second->getDirection()) << entry.first;
        EXPECT_EQ(copied->getNodeDef(), copy.get()) << entry.first;
    }
}

TEST_F(DmCompoundImportTest, CopiesThePortKindAndIterationAttribute) {
    auto source = makeCompound("graph", m_lib.get());
    auto gather = input("gather", DmLibrary::getAutoType());
    auto items = input("items", DmLibrary::getAutoType());
    source->addPortDescription(gather, kFailOnClash);
    source->addPortDescription(items, kFailOnClash);
    ASSERT_EQ(gather->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
    ASSERT_TRUE(items->setIterationAttribute(kIterationTarget));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getPortsInterface()["gather"]->getPortKind(), kPortDefaultFanIn);
    EXPECT_EQ(copy->getPortsInterface()["gather"]->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(copy->getPortsInterface()["items"]->getPortKind(), kPortPlain);
    EXPECT_EQ(copy->getPortsInterface()["items"]->getIterationAttribute(), kIterationTarget);
}

TEST_F(DmCompoundImportTest, CopiesTheDefaultValueOverrideAsAValueOfItsOwn) {
    auto source = makeChain();
    auto const override = intValue(42);
    ASSERT_TRUE(source->getPortsInterface()["a"]->setDefaultValueOverride(override));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const copied = copy->getPortsInterface()["a"]->getDefaultValueOverride();
    ASSERT_NE(copied, nullptr);
    EXPECT_NE(copied, override);
    EXPECT_EQ(intOf(copied), 42);
    EXPECT_FALSE(copied->isImplicit());

    std::static_pointer_cast<DmIntValue>(copied)->setData(5);
    EXPECT_EQ(intOf(source->getPortsInterface()["a"]->getDefaultValueOverride()), 42);
}

TEST_F(DmCompoundImportTest, PortWithoutOverrideHasNoneInTheCopy) {
    auto source = makeChain();
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getPortsInterface()["a"]->getDefaultValueOverride(), nullptr);
    EXPECT_EQ(copy->getPortsInterface()["r"]->getDefaultValueOverride(), nullptr);
}

TEST_F(DmCompoundImportTest, CopiesThePortsMetadata) {
    auto source = makeChain();
    source->getPortsInterface()["a"]->getMetadata()->add(item("label", "first"));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(stringItem(*copy->getPortsInterface()["a"], "label"), "first");
    EXPECT_TRUE(copy->getPortsInterface()["r"]->getMetadata()->isEmpty());
    EXPECT_NE(copy->getPortsInterface()["a"]->getMetadata(), source->getPortsInterface()["a"]->getMetadata());
}

TEST_F(DmCompoundImportTest, TheCopysSelfNodeShowsTheCopiedPortsInverted) {
    auto source = makeChain();
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const self = copy->getSelfNode();
    EXPECT_EQ(portNames(self->getPorts()), (Names{"a", "r"}));
    EXPECT_TRUE((*self)["a"]->isOutput());
    EXPECT_TRUE((*self)["r"]->isInput());
}

TEST_F(DmCompoundImportTest, OwnPortOfTheCloneTakesTheSourcesOverrideAndMetadataOnce) {
    auto source = LimitedCompound::make("loop");
    source->addPortDescription(input("x", DmLibrary::getIntType()), kFailOnClash);
    auto const limit = source->getPortsInterface()["limit"];
    ASSERT_TRUE(limit->setDefaultValueOverride(intValue(10)));
    limit->getMetadata()->add(item("label", "iterations"));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(portNames(copy->getPortsInterface()), (Names{"limit", "x"}));
    EXPECT_EQ(portNames(copy->getSelfNode()->getPorts()), (Names{"limit", "x"}));
    auto const copied = copy->getPortsInterface()["limit"];
    EXPECT_EQ(intOf(copied->getDefaultValueOverride()), 10);
    EXPECT_NE(copied->getDefaultValueOverride(), limit->getDefaultValueOverride());
    EXPECT_EQ(stringItem(*copied, "label"), "iterations");
    EXPECT_EQ(copied->getMetadata()->getMetadataItems()->size(), 1u);
}

TEST_F(DmCompoundImportTest, WhileLoopsConditionTakesTheSourcesOverrideAndMetadataOnce) {
    auto source = DmWhileCompound::createWhileCompound("loop");
    ASSERT_TRUE(source->addPortDescription(input("count", DmLibrary::getIntType()), kFailOnClash));
    auto const condition = source->getPortsInterface()[DmWhileCompound::kLoopingConditionPortName];
    ASSERT_NE(condition, nullptr);
    auto stop = std::make_shared<DmBoolValue>();
    stop->setData(true);
    ASSERT_TRUE(condition->setDefaultValueOverride(stop));
    condition->getMetadata()->add(item("label", "again"));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const loop = std::dynamic_pointer_cast<DmWhileCompound>(copy);
    ASSERT_NE(loop, nullptr);
    EXPECT_EQ(portNames(copy->getPortsInterface()), (Names{"looping_condition", "count"}));
    auto const copied = copy->getPortsInterface()["looping_condition"];
    auto const value = std::dynamic_pointer_cast<DmBoolValue>(copied->getDefaultValueOverride());
    ASSERT_NE(value, nullptr);
    EXPECT_NE(value, stop);
    EXPECT_TRUE(value->getData());
    EXPECT_EQ(stringItem(*copied, "label"), "again");
    EXPECT_NE(loop->getLoopingConditionPort(), nullptr);
    EXPECT_TRUE(equalCompounds(*source, *copy));
}

TEST_F(DmCompoundImportTest, WhileLoopsStatePairOnTheSelfNodeIsRestored) {
    auto source = DmWhileCompound::createWhileCompound("loop");
    ASSERT_TRUE(source->addPortDescription(input("state_in", DmLibrary::getArrayOfAnyType()), kFailOnClash));
    ASSERT_TRUE(
        source->addPortDescription(output("state_out", DmLibrary::getArrayOfAnyType()), kFailOnClash));
    ASSERT_TRUE(source->linkStatePorts("state_in", "state_out"));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const self = copy->getSelfNode();
    auto const in = (*self)["state_in"]->getPortDescription();
    auto const out = (*self)["state_out"]->getPortDescription();
    EXPECT_EQ(in->getLinkedPort(), out.get());
    EXPECT_EQ(out->getLinkedPort(), in.get());
    EXPECT_EQ(in->getIterationAttribute(), kIterationState);
    auto const sourceIn = (*source->getSelfNode())["state_in"]->getPortDescription();
    EXPECT_NE(sourceIn->getLinkedPort(), out.get());
}

TEST_F(DmCompoundImportTest, ForEachLoopIsCopiedWithItsTargets) {
    auto source = DmForEachCompound::createForEachCompound("each");
    auto list = input("list", DmLibrary::getArrayOfAnyType());
    ASSERT_TRUE(list->setIterationAttribute(kIterationTarget));
    ASSERT_TRUE(source->addPortDescription(list, kFailOnClash));
    ASSERT_TRUE(source->addPortDescription(output("results", DmLibrary::getArrayOfAnyType()), kFailOnClash));
    ASSERT_EQ(source->getPortsInterface()["results"]->getIterationAttribute(), kIterationTarget);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<DmForEachCompound>(copy), nullptr);
    EXPECT_EQ(copy->getPortsInterface()["list"]->getIterationAttribute(), kIterationTarget);
    EXPECT_EQ(copy->getPortsInterface()["results"]->getIterationAttribute(), kIterationTarget);
    // From the inside, a target shows one element at a time.
    EXPECT_EQ((*copy->getSelfNode())["list"]->getPortDescription()->getType(), DmLibrary::getAnyType());
    EXPECT_EQ(stringItem(*copy, "icon"), "../icons/LoopForEach.svg");
    EXPECT_TRUE(equalCompounds(*source, *copy));
}

TEST_F(DmCompoundImportTest, PortTheCopyCannotTakeFailsTheImportAndTheRestIsCopied) {
    auto source = ReservingCompound::make("graph");
    ASSERT_TRUE(source->addPortDescription(input("cond", DmLibrary::getBoolType()), kAsOverload));
    ASSERT_TRUE(source->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash));
    addNode(*source, "n1", m_op);
    expectConnected(*source, ".a", "n1.in");
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(source->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
    // The walk went on: the copy is as complete as it could be made.
    auto const partial = compoundIn(*m_user, "copy");
    ASSERT_NE(partial, nullptr);
    EXPECT_EQ(portNames(partial->getPortsInterface()), (Names{"a"}));
    EXPECT_EQ(KestoTest::keysOf(partial->getNodes()), (Names{"n1"}));
    EXPECT_EQ(connectionsOf(*partial), (Names{".a -> n1.in"}));
}

// ---------------------------------------------------------------------------
// Nested compounds

TEST_F(DmCompoundImportTest, NestedCompoundsAreImportedIntoTheCopyUnderTheirNames) {
    auto source = makeChain();
    auto inner = makeCompound("inner");
    auto helper = makeCompound("helper");
    ASSERT_EQ(inner->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(helper->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    inner->addPortDescription(input("v", DmLibrary::getIntType()), kFailOnClash);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(KestoTest::keysOf(copy->getNodeDefs()), (Names{"inner", "helper"}));
    EXPECT_EQ(copy->getNestedScopes().size(), 2u);
    auto const innerCopy = compoundIn(*copy, "inner");
    ASSERT_NE(innerCopy, nullptr);
    EXPECT_NE(innerCopy, inner);
    EXPECT_EQ(innerCopy->getScope(), static_cast<DmScope*>(copy.get()));
    EXPECT_TRUE(innerCopy->isPrivate());
    EXPECT_EQ(portNames(innerCopy->getPortsInterface()), (Names{"v"}));
    EXPECT_EQ(fullName(*innerCopy), "user::copy::inner");
    // The source keeps its own.
    EXPECT_EQ(compoundIn(*source, "inner"), inner);
    EXPECT_EQ(source->getNestedScopes().size(), 2u);
}

TEST_F(DmCompoundImportTest, NodeOnAPrivateDefinitionUsesTheCopiedDefinition) {
    auto source = makeCompound("graph", m_lib.get());
    auto inner = makeCompound("inner");
    ASSERT_EQ(inner->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    inner->addPortDescription(input("v", DmLibrary::getIntType()), kFailOnClash);
    addNode(*source, "user_of_inner", inner);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const innerCopy = compoundIn(*copy, "inner");
    ASSERT_NE(innerCopy, nullptr);
    auto const node = copy->findNode("user_of_inner");
    ASSERT_NE(node, nullptr);
    EXPECT_NE(node->getNodeDef(), inner.get());
    EXPECT_EQ(node->getNodeDef()->getName(), "inner");
    EXPECT_EQ(node->getNodeDef()->getScope(), static_cast<DmScope*>(copy.get()));
    EXPECT_EQ(portNames(node->getPorts()), (Names{"v"}));
    EXPECT_EQ(inner->getInstantiatedNodes().size(), 2u); // its self node and the source's node
}

TEST_F(DmCompoundImportTest, NestedOverloadsOfOneNameJoinOneSetInTheCopy) {
    auto source = makeCompound("graph", m_lib.get());
    auto first = makeCompound("helper");
    auto second = makeCompound("helper");
    first->addPortDescription(input("v", DmLibrary::getIntType()), kFailOnClash);
    second->addPortDescription(input("v", DmLibrary::getIntType()), kFailOnClash);
    second->addPortDescription(input("w", DmLibrary::getIntType()), kFailOnClash);
    ASSERT_EQ(first->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(second->setScope(source.get(), kAsOverload), DmStatus::kSuccess);
    auto const helpers = setOf(*source, "helper");
    ASSERT_EQ(helpers->size(), 2u);
    addNode(*source, "onSet", helpers);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const copied = setOf(*copy, "helper");
    ASSERT_NE(copied, nullptr);
    ASSERT_EQ(copied->size(), 2u);
    EXPECT_EQ(portNames(copied->getOverloads()[0]->getPortsInterface()), (Names{"v"}));
    EXPECT_EQ(portNames(copied->getOverloads()[1]->getPortsInterface()), (Names{"v", "w"}));
    EXPECT_EQ(copy->findNode("onSet")->getNodeDef(), copied.get());
    EXPECT_TRUE(equalCompounds(*source, *copy));
}

TEST_F(DmCompoundImportTest, NodeOnAPublicDefinitionKeepsThatDefinition) {
    auto source = makeChain();
    std::size_t const before = m_op->getInstantiatedNodes().size();
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->findNode("n1")->getNodeDef(), m_op.get());
    EXPECT_EQ(copy->findNode("n2")->getNodeDef(), m_op.get());
    EXPECT_EQ(m_op->getInstantiatedNodes().size(), before + 2);
}

TEST_F(DmCompoundImportTest, NestedImportThatFailsFailsTheImport) {
    auto source = makeChain();
    auto inner = makeCompound("inner");
    ASSERT_EQ(inner->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(inner->addNode(DmNode::createNode("orphan", nullptr), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(source->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
}

TEST_F(DmCompoundImportTest, NestedImportTakesTheSameFlags) {
    auto source = makeChain();
    auto inner = makeCompound("inner");
    ASSERT_EQ(inner->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(inner->addNode(DmNode::createNode("orphan", nullptr), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(source->import(m_user, kFailOnClash, "copy", out, DmNodeDef::kImportAllowMissingNodeDef),
              DmStatus::kSuccess);
    auto const innerCopy = compoundIn(*asCompound(out), "inner");
    ASSERT_NE(innerCopy, nullptr);
    ASSERT_NE(innerCopy->findNode("orphan"), nullptr);
    EXPECT_EQ(innerCopy->findNode("orphan")->getNodeDef(), nullptr);
}

TEST_F(DmCompoundImportTest, LaterNestedSuccessDoesNotClearAnEarlierFailure) {
    auto source = makeChain();
    auto failing = makeCompound("failing");
    auto fine = makeCompound("fine");
    ASSERT_EQ(failing->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(fine->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(failing->addNode(DmNode::createNode("orphan", nullptr), kFailOnClash), DmStatus::kSuccess);

    DmCompoundVisitorImport visitor(source, "copy", m_user, 0);
    visitor.preVisit();
    visitor.visitNestedCompound(failing);
    EXPECT_EQ(visitor.getStatus(), DmStatus::kFailure);
    visitor.visitNestedCompound(fine);
    EXPECT_EQ(visitor.getStatus(), DmStatus::kFailure);
    EXPECT_FALSE(visitor.checkStatus());
    EXPECT_NE(compoundIn(*visitor.getImportedCompound(), "fine"), nullptr);
}

TEST_F(DmCompoundImportTest, FailedNestedImportLeavesItsPartialCopyInTheCopy) {
    auto source = makeChain();
    auto inner = makeCompound("inner");
    ASSERT_EQ(inner->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(inner->addNode(DmNode::createNode("orphan", nullptr), kFailOnClash), DmStatus::kSuccess);
    addNode(*inner, "kept", m_op);
    DmCompoundVisitorImport visitor(source, "copy", m_user, 0);
    visitor.visit();
    EXPECT_EQ(visitor.getStatus(), DmStatus::kFailure);
    auto const innerCopy = compoundIn(*visitor.getImportedCompound(), "inner");
    ASSERT_NE(innerCopy, nullptr);
    EXPECT_EQ(KestoTest::keysOf(innerCopy->getNodes()), (Names{"kept"}));
}

// ---------------------------------------------------------------------------
// Nodes

TEST_F(DmCompoundImportTest, CopiesTheNodesInOrderUnderTheirNames) {
    auto source = makeCompound("graph", m_lib.get());
    auto other = makeOp("other");
    addNode(*source, "zeta", m_op);
    addNode(*source, "alpha", other);
    addNode(*source, "mid", m_op);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(KestoTest::keysOf(copy->getNodes()), (Names{"zeta", "alpha", "mid"}));
    EXPECT_EQ(copy->findNode("alpha")->getNodeDef(), other.get());
    for (auto const& entry : copy->getNodes()) {
        EXPECT_NE(entry.second, source->findNode(entry.first)) << entry.first;
        EXPECT_EQ(entry.second->getOwner(), copy.get()) << entry.first;
        EXPECT_EQ(portNames(entry.second->getPorts()), (Names{"in", "out"})) << entry.first;
    }
    EXPECT_EQ(source->findNode("zeta")->getOwner(), source.get());
}

TEST_F(DmCompoundImportTest, NodeWithoutDefinitionFailsTheImport) {
    auto source = makeChain();
    ASSERT_EQ(source->addNode(DmNode::createNode("orphan", nullptr), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(source->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
}

TEST_F(DmCompoundImportTest, NodeWithoutDefinitionPassesWithFlagBitOne) {
    auto source = makeChain();
    ASSERT_EQ(source->addNode(DmNode::createNode("orphan", nullptr), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(source->import(m_user, kFailOnClash, "copy", out, DmNodeDef::kImportAllowMissingNodeDef),
              DmStatus::kSuccess);
    auto const copy = asCompound(out);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(KestoTest::keysOf(copy->getNodes()), (Names{"n1", "n2", "orphan"}));
    auto const orphan = copy->findNode("orphan");
    EXPECT_EQ(orphan->getNodeDef(), nullptr);
    EXPECT_TRUE(orphan->getPorts().empty());
    EXPECT_EQ(connectionsOf(*copy), connectionsOf(*source));
}

TEST_F(DmCompoundImportTest, FlagBitOneAmongOtherBitsLetsANodeWithoutDefinitionThrough) {
    auto source = makeChain();
    ASSERT_EQ(source->addNode(DmNode::createNode("orphan", nullptr), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(
        source->import(m_user, kFailOnClash, "copy", out, 0xF0u | DmNodeDef::kImportAllowMissingNodeDef),
        DmStatus::kSuccess);
    EXPECT_NE(out, nullptr);
}

TEST_F(DmCompoundImportTest, OtherBitsAloneDoNotLetANodeWithoutDefinitionThrough) {
    auto source = makeChain();
    ASSERT_EQ(source->addNode(DmNode::createNode("orphan", nullptr), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(source->import(m_user, kFailOnClash, "copy", out, 0xFFFFFFFEu), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
}

TEST_F(DmCompoundImportTest, NodesAndConnectionsAfterAFailedNodeAreStillCopied) {
    auto source = makeCompound("graph", m_lib.get());
    source->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    addNode(*source, "n1", m_op);
    ASSERT_EQ(source->addNode(DmNode::createNode("orphan", nullptr), kFailOnClash), DmStatus::kSuccess);
    addNode(*source, "n2", m_op);
    expectConnected(*source, ".a", "n1.in");
    expectConnected(*source, "n1.out", "n2.in");
    DmCompoundVisitorImport visitor(source, "copy", m_user, 0);
    visitor.visit();
    EXPECT_EQ(visitor.getStatus(), DmStatus::kFailure);
    EXPECT_FALSE(visitor.checkStatus());
    auto const& copy = visitor.getImportedCompound();
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(KestoTest::keysOf(copy->getNodes()), (Names{"n1", "n2"}));
    EXPECT_EQ(connectionsOf(*copy), (Names{".a -> n1.in", "n1.out -> n2.in"}));
    // Registration, the last step, happened all the same.
    EXPECT_EQ(compoundIn(*m_user, "copy"), copy);
}

TEST_F(DmCompoundImportTest, FailedImportLeavesItsPartialCopyInTheScopeButHandsNothingOut) {
    auto source = makeChain();
    ASSERT_EQ(source->addNode(DmNode::createNode("orphan", nullptr), kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmNodeDef> out = m_op;
    EXPECT_EQ(source->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, m_op);
    auto const partial = compoundIn(*m_user, "copy");
    ASSERT_NE(partial, nullptr);
    EXPECT_EQ(KestoTest::keysOf(partial->getNodes()), (Names{"n1", "n2"}));
}

TEST_F(DmCompoundImportTest, NullNodeFailsTheWalk) {
    auto source = makeChain();
    DmCompoundVisitorImport visitor(source, "copy", m_user, DmNodeDef::kImportAllowMissingNodeDef);
    visitor.preVisit();
    EXPECT_EQ(visitor.getStatus(), DmStatus::kSuccess);
    visitor.visitNode(nullptr);
    EXPECT_EQ(visitor.getStatus(), DmStatus::kFailure);
    EXPECT_TRUE(visitor.getImportedCompound()->getNodes().empty());
}

TEST_F(DmCompoundImportTest, CopiesTheNodesMetadata) {
    auto source = makeChain();
    source->findNode("n1")->getMetadata()->add(item("position", "10,20"));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(stringItem(*copy->findNode("n1"), "position"), "10,20");
    EXPECT_TRUE(copy->findNode("n2")->getMetadata()->isEmpty());
    EXPECT_NE(copy->findNode("n1")->getMetadata(), source->findNode("n1")->getMetadata());
}

TEST_F(DmCompoundImportTest, CopiesTheEntriesOfAMultiInPort) {
    auto add = makeAssociativeOp();
    auto source = makeCompound("graph", m_lib.get());
    auto const sum = addNode(*source, "sum", add);
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(sum->addMultiInPortEntry("e", entry), DmStatus::kSuccess);
    ASSERT_EQ(sum->addMultiInPortEntry("e", entry), DmStatus::kSuccess);
    ASSERT_EQ(sum->addMultiInPortEntry("x", entry), DmStatus::kSuccess);
    ASSERT_EQ(KestoTest::keysOf(sum->getMultiInPort()->getMembers()), (Names{"e", "e1", "x"}));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const copied = copy->findNode("sum");
    ASSERT_NE(copied->getMultiInPort(), nullptr);
    EXPECT_EQ(copied->getMultiInPort()->getName(), "a");
    EXPECT_EQ(KestoTest::keysOf(copied->getMultiInPort()->getMembers()), (Names{"e", "e1", "x"}));
    EXPECT_EQ(portNames(copied->getPorts()), (Names{"a", "out"}));
}

TEST_F(DmCompoundImportTest, CopiesTheFanInFlagAndTheEntriesOfAFanInPort) {
    auto source = makeChain();
    auto const port = (*source->findNode("n2"))["in"];
    // The connection n1.out -> n2.in moves to the entry "element_0".
    ASSERT_EQ(port->setFanIn(true), DmStatus::kSuccess);
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(port->addMultiInPortEntry("extra", entry), DmStatus::kSuccess);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const copied = (*copy->findNode("n2"))["in"];
    EXPECT_TRUE(copied->isFanIn());
    EXPECT_EQ(KestoTest::keysOf(copied->getMembers()), (Names{"element_0", "extra"}));
    EXPECT_FALSE((*copy->findNode("n1"))["in"]->isFanIn());
    EXPECT_EQ(connectionsOf(*copy), connectionsOf(*source));
}

TEST_F(DmCompoundImportTest, CopiesTheEntriesOfAPortThatIsFanInByKind) {
    auto def = DmNativeNodeDef::newNativeNodeDef("gather", DmNativeNodeDef::kPass);
    auto items = input("items", DmLibrary::getAutoType());
    def->addPortDescription(items, kFailOnClash);
    ASSERT_EQ(items->setPortKind(kPortDefaultFanIn), DmStatus::kSuccess);
    auto source = makeCompound("graph", m_lib.get());
    auto const node = addNode(*source, "g", def);
    ASSERT_TRUE((*node)["items"]->isFanIn());
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ((*node)["items"]->addMultiInPortEntry("one", entry), DmStatus::kSuccess);
    ASSERT_EQ((*node)["items"]->addMultiInPortEntry("two", entry), DmStatus::kSuccess);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const copied = (*copy->findNode("g"))["items"];
    EXPECT_TRUE(copied->isFanIn());
    EXPECT_EQ(KestoTest::keysOf(copied->getMembers()), (Names{"one", "two"}));
}

TEST_F(DmCompoundImportTest, CopiesThePortsDefaultValuesAsValuesOfTheirOwn) {
    auto source = makeChain();
    auto const port = (*source->findNode("n1"))["in"];
    ASSERT_TRUE(port->setDefaultValue(intValue(3)));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const copied = (*copy->findNode("n1"))["in"];
    EXPECT_EQ(intOf(copied->getDefaultValue()), 3);
    EXPECT_TRUE(copied->hasImmediateValue());
    EXPECT_NE(copied->getDefaultValue(), port->getDefaultValue());
    EXPECT_FALSE((*copy->findNode("n2"))["in"]->hasImmediateValue());

    std::static_pointer_cast<DmIntValue>(copied->getDefaultValue())->setData(8);
    EXPECT_EQ(intOf(port->getDefaultValue()), 3);
}

TEST_F(DmCompoundImportTest, CopiesTheDefaultValuesOfStructMembers) {
    auto const point = KestoTest::makeStruct("Point", "x");
    auto def = DmNativeNodeDef::newNativeNodeDef("draw", DmNativeNodeDef::kPass);
    def->addPortDescription(input("p", point), kFailOnClash);
    auto source = makeCompound("graph", m_lib.get());
    auto const node = addNode(*source, "d", def);
    std::shared_ptr<DmPort> x;
    ASSERT_TRUE((*node)["p"]->getMember("x", x));
    ASSERT_TRUE(x->setDefaultValue(intValue(11)));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    std::shared_ptr<DmPort> copiedX;
    ASSERT_TRUE((*copy->findNode("d"))["p"]->getMember("x", copiedX));
    EXPECT_EQ(intOf(copiedX->getDefaultValue()), 11);
    auto const copiedStruct =
        std::dynamic_pointer_cast<DmStructValue>((*copy->findNode("d"))["p"]->getDefaultValue());
    ASSERT_NE(copiedStruct, nullptr);
    EXPECT_EQ(intOf(copiedStruct->findMember("x")), 11);

    std::static_pointer_cast<DmIntValue>(copiedX->getDefaultValue())->setData(12);
    EXPECT_EQ(intOf(x->getDefaultValue()), 11);
    auto const sourceStruct = std::dynamic_pointer_cast<DmStructValue>((*node)["p"]->getDefaultValue());
    EXPECT_EQ(intOf(sourceStruct->findMember("x")), 11);
}

TEST_F(DmCompoundImportTest, CopiesTheMetadataOfPortsEntriesAndMembers) {
    auto const point = KestoTest::makeStruct("Point", "x");
    auto def = DmNativeNodeDef::newNativeNodeDef("draw", DmNativeNodeDef::kPass);
    def->addPortDescription(input("p", point), kFailOnClash);
    def->addPortDescription(input("list", DmLibrary::getIntType()), kFailOnClash);
    auto source = makeCompound("graph", m_lib.get());
    auto const node = addNode(*source, "d", def);
    (*node)["p"]->getMetadata()->add(item("hint", "point"));
    std::shared_ptr<DmPort> member;
    ASSERT_TRUE((*node)["p"]->getMember("x", member));
    member->getMetadata()->add(item("hint", "member"));
    ASSERT_EQ((*node)["list"]->setFanIn(true), DmStatus::kSuccess);
    ASSERT_EQ((*node)["list"]->addMultiInPortEntry("e", member), DmStatus::kSuccess);
    member->getMetadata()->add(item("hint", "entry"));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const copied = copy->findNode("d");
    EXPECT_EQ(stringItem(*(*copied)["p"], "hint"), "point");
    std::shared_ptr<DmPort> found;
    ASSERT_TRUE((*copied)["p"]->getMember("x", found));
    EXPECT_EQ(stringItem(*found, "hint"), "member");
    ASSERT_TRUE((*copied)["list"]->getMember("e", found));
    EXPECT_EQ(stringItem(*found, "hint"), "entry");
}

TEST_F(DmCompoundImportTest, CopiesWatchPointsWithStateAndParameters) {
    auto source = makeChain();
    auto const watch = (*source->findNode("n1"))["out"]->setWatchPoint();
    watch->enable(true);
    watch->setParameter("rate", "10");
    watch->setParameter("format", "hex");
    (*source->findNode("n2"))["in"]->setWatchPoint();
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const copied = (*copy->findNode("n1"))["out"]->getWatchPoint();
    ASSERT_NE(copied, nullptr);
    EXPECT_NE(copied, watch);
    EXPECT_TRUE(copied->enabled());
    EXPECT_EQ(copied->getParameters(), watch->getParameters());
    auto const disabled = (*copy->findNode("n2"))["in"]->getWatchPoint();
    ASSERT_NE(disabled, nullptr);
    EXPECT_FALSE(disabled->enabled());
    EXPECT_TRUE(disabled->getParameters().empty());
    EXPECT_EQ((*copy->findNode("n1"))["in"]->getWatchPoint(), nullptr);
    EXPECT_EQ((*copy->findNode("n2"))["out"]->getWatchPoint(), nullptr);

    copied->setParameter("rate", "20");
    std::string rate;
    EXPECT_EQ(watch->getParameter("rate", rate), DmStatus::kSuccess);
    EXPECT_EQ(rate, "10");
}

TEST_F(DmCompoundImportTest, CopiedWatchPointHasNoCallBack) {
    auto source = makeChain();
    auto const watch = (*source->findNode("n1"))["out"]->setWatchPoint();
    watch->setCallBack(&ignoreValue, &kClientData);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const copied = (*copy->findNode("n1"))["out"]->getWatchPoint();
    ASSERT_NE(copied, nullptr);
    EXPECT_EQ(copied->getCallBack(), nullptr);
    EXPECT_EQ(copied->getClientData(), nullptr);
    EXPECT_EQ(watch->getCallBack(), &ignoreValue);
}

TEST_F(DmCompoundImportTest, CopiesWatchPointsOfEntriesAndMembers) {
    auto const point = KestoTest::makeStruct("Point", "x");
    auto def = DmNativeNodeDef::newNativeNodeDef("draw", DmNativeNodeDef::kPass);
    def->addPortDescription(input("p", point), kFailOnClash);
    auto add = makeAssociativeOp();
    auto source = makeCompound("graph", m_lib.get());
    auto const d = addNode(*source, "d", def);
    auto const sum = addNode(*source, "sum", add);
    std::shared_ptr<DmPort> port;
    ASSERT_TRUE((*d)["p"]->getMember("x", port));
    port->setWatchPoint()->setParameter("on", "member");
    ASSERT_EQ(sum->addMultiInPortEntry("e", port), DmStatus::kSuccess);
    port->setWatchPoint()->enable(true);
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    ASSERT_TRUE((*copy->findNode("d"))["p"]->getMember("x", port));
    ASSERT_NE(port->getWatchPoint(), nullptr);
    std::string on;
    EXPECT_EQ(port->getWatchPoint()->getParameter("on", on), DmStatus::kSuccess);
    EXPECT_EQ(on, "member");
    ASSERT_TRUE(copy->findNode("sum")->getMultiInPort()->getMember("e", port));
    ASSERT_NE(port->getWatchPoint(), nullptr);
    EXPECT_TRUE(port->getWatchPoint()->enabled());
}

// ---------------------------------------------------------------------------
// Connections

TEST_F(DmCompoundImportTest, CopiesTheConnectionsInTheOrderOfTheList) {
    auto source = makeCompound("graph", m_lib.get());
    source->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    source->addPortDescription(output("r", DmLibrary::getIntType()), kFailOnClash);
    addNode(*source, "n1", m_op);
    addNode(*source, "n2", m_op);
    expectConnected(*source, "n2.out", ".r");
    expectConnected(*source, "n1.out", "n2.in");
    expectConnected(*source, ".a", "n1.in");
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(connectionsOf(*copy), (Names{"n2.out -> .r", "n1.out -> n2.in", ".a -> n1.in"}));
    for (auto const& connection : copy->getConnections()) {
        EXPECT_EQ(connection->getSourcePort()->getNode()->getOwner(), copy.get());
        EXPECT_EQ(connection->getTargetPort()->getNode()->getOwner(), copy.get());
    }
    EXPECT_EQ(copy->getBindingConnections().size(), 2u);
}

TEST_F(DmCompoundImportTest, CopiesAConnectionThroughTheSelfNode) {
    auto source = makeCompound("graph", m_lib.get());
    source->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    source->addPortDescription(output("r", DmLibrary::getIntType()), kFailOnClash);
    expectConnected(*source, ".a", ".r");
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    ASSERT_EQ(copy->getConnections().size(), 1u);
    auto const& connection = copy->getConnections().front();
    EXPECT_EQ(connection->getSourcePort()->getNode(), copy->getSelfNode().get());
    EXPECT_EQ(connection->getTargetPort()->getNode(), copy->getSelfNode().get());
    EXPECT_EQ(connectionsOf(*copy), (Names{".a -> .r"}));
}

TEST_F(DmCompoundImportTest, CopiesConnectionsOfEntriesAndMembers) {
    auto const point = KestoTest::makeStruct("Point", "x");
    auto draw = DmNativeNodeDef::newNativeNodeDef("draw", DmNativeNodeDef::kPass);
    draw->addPortDescription(input("p", point), kFailOnClash);
    auto add = makeAssociativeOp();
    auto source = makeCompound("graph", m_lib.get());
    source->addPortDescription(input("s", point), kFailOnClash);
    auto const sum = addNode(*source, "sum", add);
    auto const n1 = addNode(*source, "n1", m_op);
    auto const d = addNode(*source, "d", draw);
    std::shared_ptr<DmPort> e;
    std::shared_ptr<DmPort> f;
    ASSERT_EQ(sum->addMultiInPortEntry("e", e), DmStatus::kSuccess);
    ASSERT_EQ(sum->addMultiInPortEntry("f", f), DmStatus::kSuccess);
    std::shared_ptr<DmPort> sx;
    std::shared_ptr<DmPort> px;
    ASSERT_TRUE((*source->getSelfNode())["s"]->getMember("x", sx));
    ASSERT_TRUE((*d)["p"]->getMember("x", px));
    expectConnected(*source, sx, e);
    expectConnected(*source, (*n1)["out"], f);
    expectConnected(*source, (*sum)["out"], px);
    ASSERT_EQ(connectionsOf(*source), (Names{".s.x -> sum.a.e", "n1.out -> sum.a.f", "sum.out -> d.p.x"}));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(connectionsOf(*copy), connectionsOf(*source));
    ASSERT_EQ(copy->getConnections().size(), 3u);
    auto const& first = copy->getConnections()[0];
    EXPECT_EQ(first->getSourcePort()->getParent(), (*copy->getSelfNode())["s"].get());
    EXPECT_EQ(first->getTargetPort()->getParent(), copy->findNode("sum")->getMultiInPort().get());
    EXPECT_EQ(copy->getConnections()[2]->getTargetPort()->getParent(), (*copy->findNode("d"))["p"].get());
}

TEST_F(DmCompoundImportTest, ConnectionWhoseNodeIsMissingInTheCopyFailsTheWalk) {
    auto source = makeChain();
    DmCompoundVisitorImport visitor(source, "copy", m_user, 0);
    visitor.preVisit();
    for (auto const& entry : source->getPortsInterface()) {
        visitor.visitPortDescription(*entry.second);
    }
    // No node was copied: the connection .a -> n1.in has no target.
    visitor.visitConnection(*source->getConnections().front());
    EXPECT_EQ(visitor.getStatus(), DmStatus::kFailure);
    EXPECT_TRUE(visitor.getImportedCompound()->getConnections().empty());
}

TEST_F(DmCompoundImportTest, ConnectionWhosePortIsMissingInTheCopyFailsTheWalk) {
    auto source = makeChain();
    DmCompoundVisitorImport visitor(source, "copy", m_user, 0);
    visitor.preVisit();
    for (auto const& entry : source->getNodes()) {
        visitor.visitNode(entry.second);
    }
    ASSERT_EQ(visitor.getStatus(), DmStatus::kSuccess);
    // The compound's ports were not copied: ".a" is missing on the self node.
    visitor.visitConnection(*source->getConnections().front());
    EXPECT_EQ(visitor.getStatus(), DmStatus::kFailure);
}

TEST_F(DmCompoundImportTest, ConnectionTheCopyRefusesFailsTheWalk) {
    auto source = makeChain();
    DmCompoundVisitorImport visitor(source, "copy", m_user, 0);
    visitor.preVisit();
    for (auto const& entry : source->getPortsInterface()) {
        visitor.visitPortDescription(*entry.second);
    }
    for (auto const& entry : source->getNodes()) {
        visitor.visitNode(entry.second);
    }
    visitor.visitConnection(*source->getConnections()[1]);
    ASSERT_EQ(visitor.getStatus(), DmStatus::kSuccess);
    // Made a second time, the connection is redundant.
    visitor.visitConnection(*source->getConnections()[1]);
    EXPECT_EQ(visitor.getStatus(), DmStatus::kFailure);
    EXPECT_EQ(visitor.getImportedCompound()->getConnections().size(), 1u);
}

// ---------------------------------------------------------------------------
// What follows the content: the compound's own ports, registration

TEST_F(DmCompoundImportTest, CopiesTheWatchPointsOfTheSelfNodesPorts) {
    auto source = makeChain();
    auto const watch = (*source->getSelfNode())["r"]->setWatchPoint();
    watch->enable(true);
    watch->setParameter("label", "result");
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const copied = (*copy->getSelfNode())["r"]->getWatchPoint();
    ASSERT_NE(copied, nullptr);
    EXPECT_NE(copied, watch);
    EXPECT_TRUE(copied->enabled());
    EXPECT_EQ(copied->getParameters(), watch->getParameters());
    EXPECT_EQ((*copy->getSelfNode())["a"]->getWatchPoint(), nullptr);
}

TEST_F(DmCompoundImportTest, LinksTheCopysPortsAsTheSourcesWithTheirAttribute) {
    auto source = makeCompound("graph", m_lib.get());
    source->addPortDescription(input("prev", DmLibrary::getIntType()), kFailOnClash);
    source->addPortDescription(input("items", DmLibrary::getAutoType()), kFailOnClash);
    source->addPortDescription(input("plain", DmLibrary::getIntType()), kFailOnClash);
    source->addPortDescription(output("next", DmLibrary::getIntType()), kFailOnClash);
    source->addPortDescription(output("result", DmLibrary::getAutoType()), kFailOnClash);
    ASSERT_TRUE(source->linkFeedbackPorts("prev", "next"));
    ASSERT_TRUE(source->getPortsInterface()["items"]->link(*source->getPortsInterface()["result"],
                                                           kIterationInOutTarget));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    auto const& ports = copy->getPortsInterface();
    EXPECT_EQ(ports["prev"]->getLinkedPort(), ports["next"].get());
    EXPECT_EQ(ports["next"]->getLinkedPort(), ports["prev"].get());
    EXPECT_EQ(ports["prev"]->getIterationAttribute(), kIterationFeedback);
    EXPECT_EQ(ports["next"]->getIterationAttribute(), kIterationFeedback);
    EXPECT_EQ(ports["items"]->getLinkedPort(), ports["result"].get());
    EXPECT_EQ(ports["result"]->getLinkedPort(), ports["items"].get());
    EXPECT_EQ(ports["items"]->getIterationAttribute(), kIterationInOutTarget);
    EXPECT_FALSE(ports["plain"]->isLinked());
    // The source's links stay between its own ports.
    EXPECT_EQ(source->getPortsInterface()["prev"]->getLinkedPort(),
              source->getPortsInterface()["next"].get());
}

TEST_F(DmCompoundImportTest, LinksAndSelfNodeWatchPointsAreRestoredLast) {
    auto source = makeChain();
    source->addPortDescription(input("prev", DmLibrary::getIntType()), kFailOnClash);
    source->addPortDescription(output("next", DmLibrary::getIntType()), kFailOnClash);
    ASSERT_TRUE(source->linkFeedbackPorts("prev", "next"));
    (*source->getSelfNode())["r"]->setWatchPoint()->setParameter("k", "v");

    DmCompoundVisitorImport visitor(source, "copy", m_user, 0);
    auto const& copy = visitor.getImportedCompound();
    visitor.preVisit();
    visitor.visitMetadata(*source->getMetadata());
    visitor.visitDefaultDisabledTerminals(*source);
    for (auto const& entry : source->getPortsInterface()) {
        visitor.visitPortDescription(*entry.second);
    }
    for (auto const& entry : source->getNodes()) {
        visitor.visitNode(entry.second);
    }
    for (auto const& connection : source->getConnections()) {
        visitor.visitConnection(*connection);
    }
    ASSERT_EQ(visitor.getStatus(), DmStatus::kSuccess);
    EXPECT_FALSE(copy->getPortsInterface()["prev"]->isLinked());
    EXPECT_EQ((*copy->getSelfNode())["r"]->getWatchPoint(), nullptr);
    EXPECT_FALSE(m_user->hasNodeDef("copy"));

    visitor.postVisit();
    EXPECT_EQ(visitor.getStatus(), DmStatus::kSuccess);
    EXPECT_EQ(copy->getPortsInterface()["prev"]->getLinkedPort(), copy->getPortsInterface()["next"].get());
    ASSERT_NE((*copy->getSelfNode())["r"]->getWatchPoint(), nullptr);
    EXPECT_EQ(compoundIn(*m_user, "copy"), copy);
}

TEST_F(DmCompoundImportTest, RegistrationThatFailsFailsTheImport) {
    // The set "copy" in the target has an overload with the port "extra",
    // which the copy lacks: the set takes the copy but reports a failure.
    auto taken = makeCompound("copy", m_user.get());
    taken->addPortDescription(input("extra", DmLibrary::getIntType()), kFailOnClash);
    auto source = makeChain();
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(source->import(m_user, kAsOverload, "copy", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
}

// ---------------------------------------------------------------------------
// The visitor

TEST_F(DmCompoundImportTest, VisitorStartsWithStatusZeroAndACloneOfTheSource) {
    auto source = makeChain();
    DmCompoundVisitorImport visitor(source, "copy", m_user, 0);
    EXPECT_EQ(visitor.getStatus(), DmStatus::kSuccess);
    EXPECT_TRUE(visitor.checkStatus());
    EXPECT_EQ(visitor.getSourceCompound(), source);
    ASSERT_NE(visitor.getImportedCompound(), nullptr);
    EXPECT_NE(visitor.getImportedCompound(), source);
    EXPECT_EQ(visitor.getImportedCompound()->getName(), "graph");
    EXPECT_TRUE(visitor.getImportedCompound()->getNodes().empty());
    EXPECT_TRUE(visitor.getImportedCompound()->getPortsInterface().empty());
}

TEST_F(DmCompoundImportTest, PreVisitRenamesTheCloneToTheWantedName) {
    auto source = makeChain();
    DmCompoundVisitorImport visitor(source, "wanted", m_user, 0);
    visitor.preVisit();
    EXPECT_EQ(visitor.getImportedCompound()->getName(), "wanted");
    EXPECT_EQ(visitor.getImportedCompound()->getSelfNode()->getName(), "wanted");
    EXPECT_EQ(visitor.getImportedCompound()->getScope(), nullptr);
}

TEST_F(DmCompoundImportTest, VisitorWithoutSourceDoesNothing) {
    DmCompoundVisitorImport visitor(nullptr, "copy", m_user, 0);
    visitor.visit();
    EXPECT_EQ(visitor.getImportedCompound(), nullptr);
    EXPECT_EQ(visitor.getStatus(), DmStatus::kSuccess);
    EXPECT_TRUE(m_user->getNodeDefs().empty());
}

TEST_F(DmCompoundImportTest, CheckStatusIsFalseAfterAFailure) {
    auto source = makeChain();
    DmCompoundVisitorImport visitor(source, "copy", m_user, 0);
    visitor.preVisit();
    visitor.visitNode(nullptr);
    EXPECT_EQ(visitor.getStatus(), DmStatus::kFailure);
    EXPECT_FALSE(visitor.checkStatus());
}

TEST_F(DmCompoundImportTest, TheWalkVisitsEachPartInItsOrder) {
    auto source = makeCompound("graph", m_lib.get());
    source->getMetadata()->add(item("one", "1"));
    source->getMetadata()->add(item("two", "2"));
    source->addPortDescription(output("r", DmLibrary::getIntType()), kFailOnClash);
    source->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    auto inner = makeCompound("inner");
    auto helper = makeCompound("helper");
    ASSERT_EQ(inner->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(helper->setScope(source.get(), kFailOnClash), DmStatus::kSuccess);
    addNode(*source, "n2", m_op);
    addNode(*source, "n1", m_op);
    expectConnected(*source, "n1.out", ".r");
    expectConnected(*source, ".a", "n2.in");
    expectConnected(*source, "n2.out", "n1.in");
    RecordingVisitor visitor(source);
    visitor.visit();
    EXPECT_EQ(visitor.steps,
              (Names{"pre", "metadata:2", "terminals:graph", "port:r", "port:a", "nested:inner",
                     "nested:helper", "node:n2", "node:n1", "connection:n1.out>.r", "connection:.a>n2.in",
                     "connection:n2.out>n1.in", "post"}));
}

TEST_F(DmCompoundImportTest, TheWalkOverNoSourceVisitsNothing) {
    RecordingVisitor visitor(nullptr);
    visitor.visit();
    EXPECT_TRUE(visitor.steps.empty());
    EXPECT_EQ(visitor.getSourceCompound(), nullptr);
}

// ---------------------------------------------------------------------------
// The whole copy

TEST_F(DmCompoundImportTest, CopyEqualsTheSourceAndSharesNothingWithIt) {
    auto source = makeChain();
    (*source->findNode("n1"))["in"]->setDefaultValue(intValue(4));
    source->findNode("n2")->getMetadata()->add(item("note", "second"));
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(equalCompounds(*source, *copy));
    EXPECT_TRUE(independentCompounds(*source, *copy));
}

TEST_F(DmCompoundImportTest, ComparisonNamesThePathOfADifference) {
    auto source = makeChain();
    auto const copy = importToUser(*source);
    ASSERT_NE(copy, nullptr);
    ASSERT_TRUE((*copy->findNode("n2"))["in"]->setDefaultValue(intValue(9)));
    KestoTest::CompoundComparison const comparison(*source, *copy);
    ASSERT_EQ(comparison.differences().size(), 2u);
    EXPECT_EQ(
        comparison.differences()[0].rfind("graph.nodes[n2].ports[in].defaultValue: value is int set 9", 0),
        0u)
        << comparison.differences()[0];
    EXPECT_EQ(comparison.differences()[1], "graph.nodes[n2].ports[in]: immediate value is 1, expected 0");
}

// ---------------------------------------------------------------------------
// Imports of the other definitions

TEST_F(DmCompoundImportTest, NativeDefinitionImportSucceedsWithNothingCopied) {
    std::shared_ptr<DmNodeDef> out = m_op;
    EXPECT_EQ(m_op->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kSuccess);
    EXPECT_EQ(out, m_op);
    EXPECT_TRUE(m_user->getNodeDefs().empty());
    std::shared_ptr<DmNodeDef> none;
    EXPECT_EQ(m_op->import(m_user, kMakeUnique, "op", none, 0), DmStatus::kSuccess);
    EXPECT_EQ(none, nullptr);
}

TEST_F(DmCompoundImportTest, TerminalDefinitionImportIsFailure) {
    auto terminal = DmTerminalNodeDef::createTerminalNodeDef("result", kNameVerbatim);
    ASSERT_TRUE(terminal->addPortDescription(input("value", DmLibrary::getIntType()), kFailOnClash));
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(terminal->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(m_user->getNodeDefs().empty());
}

TEST_F(DmCompoundImportTest, ExternalOperatorImportIsFailure) {
    auto const op = DmExternOperator::createExternOperator("ext", DmExternOperator::kSafe);
    ASSERT_NE(op, nullptr);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(op->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
    EXPECT_TRUE(m_user->getNodeDefs().empty());
}

/// "graph" in "lib" as a set of two compounds, each with a URI of its own.
class DmCompoundSetImportTest : public DmCompoundImportTest {
protected:
    void SetUp() override {
        DmCompoundImportTest::SetUp();
        m_first = makeChain("graph");
        m_second = makeCompound("other", nullptr);
        m_second->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
        m_second->addPortDescription(output("r", DmLibrary::getIntType()), kFailOnClash);
        m_second->addPortDescription(input("b", DmLibrary::getIntType()), kFailOnClash);
        ASSERT_TRUE(m_second->setName("graph", kAsOverload, kNameVerbatim));
        ASSERT_EQ(m_second->setScope(m_lib.get(), kAsOverload), DmStatus::kSuccess);
        m_firstURI = std::make_shared<DmFileURI>("/library/first.json", "");
        m_secondURI = std::make_shared<DmFileURI>("/library/second.json", "");
        m_first->setURI(m_firstURI);
        m_second->setURI(m_secondURI);
        m_set = setOf(*m_lib, "graph");
        ASSERT_NE(m_set, nullptr);
        ASSERT_EQ(m_set->size(), 2u);
    }

    void TearDown() override {
        m_set.reset();
        m_first.reset();
        m_second.reset();
        DmCompoundImportTest::TearDown();
    }

    std::shared_ptr<DmCompound> m_first;
    std::shared_ptr<DmCompound> m_second;
    std::shared_ptr<DmURI> m_firstURI;
    std::shared_ptr<DmURI> m_secondURI;
    std::shared_ptr<DmOverloadSet> m_set;
};

TEST_F(DmCompoundSetImportTest, ImportsEveryOverloadIntoOneSetOfTheName) {
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(m_set->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kSuccess);
    auto const set = setOf(*m_user, "copy");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(out, set);
    ASSERT_EQ(set->size(), 2u);
    auto const first = std::dynamic_pointer_cast<DmCompound>(set->getOverloads()[0]);
    auto const second = std::dynamic_pointer_cast<DmCompound>(set->getOverloads()[1]);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(first->getImportedURI(), m_firstURI);
    EXPECT_EQ(second->getImportedURI(), m_secondURI);
    EXPECT_TRUE(set->isImported());
    EXPECT_TRUE(equalCompounds(*m_first, *first));
    EXPECT_TRUE(equalCompounds(*m_second, *second));
    EXPECT_EQ(m_set->size(), 2u);
}

TEST_F(DmCompoundSetImportTest, ImportIntoNullScopeIsFailure) {
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(m_set->import(nullptr, kFailOnClash, "copy", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
}

TEST_F(DmCompoundSetImportTest, FailOnClashWithATakenNameIsInvalidArgument) {
    auto taken = makeCompound("copy", m_user.get());
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(m_set->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kInvalidArgument);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(setOf(*m_user, "copy")->size(), 1u);
}

TEST_F(DmCompoundSetImportTest, MakeUniqueImportsUnderANewName) {
    makeCompound("copy", m_user.get());
    std::shared_ptr<DmNodeDef> out;
    ASSERT_EQ(m_set->import(m_user, kMakeUnique, "copy", out, 0), DmStatus::kSuccess);
    auto const set = setOf(*m_user, "copy1");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(out, set);
    EXPECT_EQ(set->size(), 2u);
    EXPECT_EQ(setOf(*m_user, "copy")->size(), 1u);
}

TEST_F(DmCompoundSetImportTest, CompoundWithoutURIMakesTheImportFail) {
    m_second->setURI(nullptr);
    std::shared_ptr<DmNodeDef> out;
    EXPECT_EQ(m_set->import(m_user, kFailOnClash, "copy", out, 0), DmStatus::kFailure);
    EXPECT_EQ(out, nullptr);
    EXPECT_FALSE(m_user->hasNodeDef("copy"));
}

} // namespace
