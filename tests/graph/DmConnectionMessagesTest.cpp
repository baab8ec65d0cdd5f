// The words of refused connections and disconnections: one report per
// refusal, with its title, text, category and entity, in the library's log
// when the compound has a library and in the compound's own log otherwise.
// Refusals of ports connected through their entries, and a connection that
// is simply not there, report nothing.
#include "graph/CompoundTestSupport.h"
#include "library/LibraryTestSupport.h"

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaMessageCategory.h>
#include <KestoDM/platform/BaMessageTypes.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::input;
using KestoTest::makeLibrary;
using KestoTest::makeSceneOp;
using KestoTest::output;

using Failure = DmCompound::ConnectionFailureType;

class DmConnectionMessagesTest : public KestoTest::ConnectionTest {};

using Scene = KestoTest::ConnectionScene;

/// An associative "add": the associative inputs lhs and rhs, the output result.
std::shared_ptr<DmNativeNodeDef> makeAddDef() {
    return KestoTest::makeAssociativeDef("lhs", "rhs", "result");
}

/// The reports of a log, in order.
std::vector<std::shared_ptr<DmMessageReport>> reportsOf(DmMessageLogger const& logger) {
    std::vector<std::shared_ptr<DmMessageReport>> reports;
    for (auto it = logger.begin(); it != logger.end(); ++it) {
        reports.push_back(std::dynamic_pointer_cast<DmMessageReport>(it.getRecord()));
    }
    return reports;
}

/// The one report of `logger`; null, with a failure, when there is not exactly one.
std::shared_ptr<DmMessageReport> onlyReportOf(DmMessageLogger const& logger) {
    auto const reports = reportsOf(logger);
    EXPECT_EQ(reports.size(), 1u);
    if (reports.size() != 1u) {
        return nullptr;
    }
    EXPECT_NE(reports.front(), nullptr) << "not a DmMessageReport";
    return reports.front();
}

std::string connectionText(std::string const& source, std::string const& target, std::string const& reason) {
    return "One or more parameters are invalid in the connection involving '" + source + "' and '" + target +
           "' " + reason + ".";
}

/// Expects `report` to be a refused connection with these words, about `entity`.
void expectReport(std::shared_ptr<DmMessageReport> const& report, std::string const& title,
                  std::string const& text, BaMessageTypes::MessageCategory category,
                  DmNamedEntity const* entity, std::string const& entityName) {
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->getTitle(), title);
    EXPECT_EQ(report->getDescription(), text);
    EXPECT_EQ(report->getInternalCategory(), category);
    EXPECT_EQ(report->getCategory(), category == BaMessageTypes::kMessageError ? BaMessageCategory::kError
                                                                               : BaMessageCategory::kWarning);
    EXPECT_EQ(report->getEntity().lock().get(), entity);
    EXPECT_EQ(report->getEntityName(), entityName);
    EXPECT_EQ(report->getDetailedDescription(), "");
    EXPECT_EQ(report->getLine(), -1);
    EXPECT_EQ(report->getColumn(), -1);
}

void expectConnectionReport(DmMessageLogger const& logger, std::string const& source,
                            std::string const& target, std::string const& reason,
                            BaMessageTypes::MessageCategory category, DmNamedEntity const* entity,
                            std::string const& entityName) {
    expectReport(onlyReportOf(logger), "Connection failed.", connectionText(source, target, reason), category,
                 entity, entityName);
}

// ---------------------------------------------------------------------------
// One report per failure

TEST_F(DmConnectionMessagesTest, RedundantConnectionIsAnErrorAboutTheTargetNode) {
    Scene scene;
    Failure failure = DmCompound::kConnectionOk;
    ASSERT_EQ(scene.attempt("n1.out", "n2.a", failure), DmStatus::kSuccess);
    EXPECT_EQ(scene.attempt("n1.out", "n2.a", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionRedundant);
    expectConnectionReport(*scene.logger, "n1.out", "n2.a", "(redundant connection)",
                           BaMessageTypes::kMessageError, scene.n2.get(), "n2");
    EXPECT_EQ(scene.logger->getErrorCount(), 1u);
    EXPECT_EQ(scene.logger->getWarningCount(), 0u);
}

TEST_F(DmConnectionMessagesTest, RedundantConnectionBetweenPortsAAndBReadsInFull) {
    auto const library = makeLibrary();
    auto const& logger = library->getErrorLogger();
    logger->clear();
    auto const compound = DmCompound::createCompound("comp");
    compound->setLibrary(library.get());
    auto const def = DmNativeNodeDef::newNativeNodeDef("op", DmNativeNodeDef::kPass);
    def->addPortDescription(output("a", DmLibrary::getIntType()), kFailOnClash);
    def->addPortDescription(input("b", DmLibrary::getIntType()), kFailOnClash);
    auto const first = DmNode::createNode("first", def);
    auto const second = DmNode::createNode("second", def);
    ASSERT_EQ(compound->addNode(first, kFailOnClash), DmStatus::kSuccess);
    ASSERT_EQ(compound->addNode(second, kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmConnection> made;
    ASSERT_EQ(compound->makeConnection("first.a", "second.b", made), DmStatus::kSuccess);
    EXPECT_EQ(compound->makeConnection("first.a", "second.b", made), DmStatus::kInvalidArgument);
    auto const report = onlyReportOf(*logger);
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->getTitle(), "Connection failed.");
    EXPECT_EQ(report->getDescription(), "One or more parameters are invalid in the connection involving "
                                        "'first.a' and 'second.b' (redundant connection).");
}

TEST_F(DmConnectionMessagesTest, TakenTargetIsAnErrorAboutTheTargetNode) {
    Scene scene;
    Failure failure = DmCompound::kConnectionOk;
    ASSERT_EQ(scene.attempt("n1.out", "n2.a", failure), DmStatus::kSuccess);
    EXPECT_EQ(scene.attempt("n3.out", "n2.a", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionTargetTaken);
    expectConnectionReport(*scene.logger, "n3.out", "n2.a", "(target already connected)",
                           BaMessageTypes::kMessageError, scene.n2.get(), "n2");
    EXPECT_EQ(scene.logger->getErrorCount(), 1u);
}

TEST_F(DmConnectionMessagesTest, NodeOutsideCompoundIsAWarningAboutTheCompound) {
    Scene scene;
    auto const stray = DmNode::createNode("stray", makeSceneOp());
    EXPECT_TRUE(scene.refusedAs(Scene::port(stray, "out"), Scene::port(scene.n2, "a"),
                                DmCompound::kConnectionNodesNotInCompound));
    expectConnectionReport(*scene.logger, "stray.out", "n2.a", "(source or target nodes are not in compound)",
                           BaMessageTypes::kMessageWarning, scene.compound.get(), "comp");
    EXPECT_EQ(scene.logger->getWarningCount(), 1u);
    EXPECT_EQ(scene.logger->getErrorCount(), 0u);
}

TEST_F(DmConnectionMessagesTest, TargetOutsideCompoundIsAWarningAboutTheCompound) {
    Scene scene;
    auto const stray = DmNode::createNode("stray", makeSceneOp());
    EXPECT_TRUE(scene.refusedAs(scene.selfPort("x"), Scene::port(stray, "a"),
                                DmCompound::kConnectionNodesNotInCompound));
    expectConnectionReport(*scene.logger, ".x", "stray.a", "(source or target nodes are not in compound)",
                           BaMessageTypes::kMessageWarning, scene.compound.get(), "comp");
}

TEST_F(DmConnectionMessagesTest, MissingSourceNodeIsAWarningAboutTheCompound) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs("ghost.out", "n2.a", DmCompound::kConnectionNodesNotInCompound));
    expectConnectionReport(*scene.logger, "ghost.out", "n2.a", "(source or target nodes are not in compound)",
                           BaMessageTypes::kMessageWarning, scene.compound.get(), "comp");
}

TEST_F(DmConnectionMessagesTest, MissingTargetNodeIsAWarningAboutTheCompound) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs(".x", "ghost.a", DmCompound::kConnectionNodesNotInCompound));
    expectConnectionReport(*scene.logger, ".x", "ghost.a", "(source or target nodes are not in compound)",
                           BaMessageTypes::kMessageWarning, scene.compound.get(), "comp");
}

TEST_F(DmConnectionMessagesTest, MissingSourcePortIsAWarningAboutTheSourceNode) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs("n1.nope", "n2.a", DmCompound::kConnectionSourcePortMissing));
    expectConnectionReport(*scene.logger, "n1.nope", "n2.a", "(source port not found on node)",
                           BaMessageTypes::kMessageWarning, scene.n1.get(), "n1");
}

TEST_F(DmConnectionMessagesTest, MissingTargetPortIsAWarningAboutTheTargetNode) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs("n1.out", "n2.nope", DmCompound::kConnectionTargetPortMissing));
    expectConnectionReport(*scene.logger, "n1.out", "n2.nope", "(target port not found on node)",
                           BaMessageTypes::kMessageWarning, scene.n2.get(), "n2");
}

TEST_F(DmConnectionMessagesTest, MissingPortOfTheSelfNodeIsAWarningAboutTheSelfNode) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs("n1.out", ".nope", DmCompound::kConnectionTargetPortMissing));
    // The self node is named as its compound.
    expectConnectionReport(*scene.logger, "n1.out", ".nope", "(target port not found on node)",
                           BaMessageTypes::kMessageWarning, scene.self().get(), "comp");
}

TEST_F(DmConnectionMessagesTest, PathWithMissingPortIsNamedAsGiven) {
    Scene scene;
    Failure failure = DmCompound::kConnectionOk;
    // The target path reaches no entry ("lhs" has no "other"); both paths
    // are quoted as they were given.
    auto const add = scene.addNode("add", makeAddDef());
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(add->addMultiInPortEntry("term", entry), DmStatus::kSuccess);
    EXPECT_EQ(scene.attempt(".x", "add.lhs.other", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionTargetPortMissing);
    expectConnectionReport(*scene.logger, ".x", "add.lhs.other", "(target port not found on node)",
                           BaMessageTypes::kMessageWarning, add.get(), "add");
}

TEST_F(DmConnectionMessagesTest, PlainNodeFeedingItselfIsAWarningAboutTheSourceNode) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n1, "out"), Scene::port(scene.n1, "a"),
                                DmCompound::kConnectionSingleNode));
    expectConnectionReport(*scene.logger, "n1.out", "n1.a",
                           "(single node connections can only be between internal ports)",
                           BaMessageTypes::kMessageWarning, scene.n1.get(), "n1");
}

TEST_F(DmConnectionMessagesTest, SourceNotOutputIsAWarningAboutTheSourceNode) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n1, "a"), Scene::port(scene.n2, "a"),
                                DmCompound::kConnectionSourceNotOutput));
    expectConnectionReport(*scene.logger, "n1.a", "n2.a", "(source is not an output)",
                           BaMessageTypes::kMessageWarning, scene.n1.get(), "n1");
}

TEST_F(DmConnectionMessagesTest, TargetNotInputIsAWarningAboutTheTargetNode) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "out"),
                                DmCompound::kConnectionTargetNotInput));
    expectConnectionReport(*scene.logger, "n1.out", "n2.out", "(target is not an input)",
                           BaMessageTypes::kMessageWarning, scene.n2.get(), "n2");
}

TEST_F(DmConnectionMessagesTest, SelfNodePortsAreNamedWithALeadingDot) {
    Scene scene;
    // The compound output y is an input inside: no source.
    EXPECT_TRUE(scene.refusedAs(scene.selfPort("y"), Scene::port(scene.n1, "a"),
                                DmCompound::kConnectionSourceNotOutput));
    expectConnectionReport(*scene.logger, ".y", "n1.a", "(source is not an output)",
                           BaMessageTypes::kMessageWarning, scene.self().get(), "comp");
}

TEST_F(DmConnectionMessagesTest, SelfNodeTargetNotInputIsAboutTheSelfNode) {
    Scene scene;
    EXPECT_TRUE(scene.refusedAs(Scene::port(scene.n1, "out"), scene.selfPort("x"),
                                DmCompound::kConnectionTargetNotInput));
    expectConnectionReport(*scene.logger, "n1.out", ".x", "(target is not an input)",
                           BaMessageTypes::kMessageWarning, scene.self().get(), "comp");
}

TEST_F(DmConnectionMessagesTest, EntriesAreNamedBelowTheirPort) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(add->addMultiInPortEntry("term", entry), DmStatus::kSuccess);
    Failure failure = DmCompound::kConnectionOk;
    ASSERT_EQ(scene.attempt(Scene::port(scene.n1, "out"), entry, failure), DmStatus::kSuccess);
    EXPECT_EQ(scene.attempt(Scene::port(scene.n1, "out"), entry, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionRedundant);
    expectConnectionReport(*scene.logger, "n1.out", "add.lhs.term", "(redundant connection)",
                           BaMessageTypes::kMessageError, add.get(), "add");
}

TEST_F(DmConnectionMessagesTest, FanInEntriesAreNamedBelowTheirPort) {
    Scene scene;
    auto const b = Scene::port(scene.n3, "b");
    ASSERT_EQ(b->setFanIn(true), DmStatus::kSuccess);
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(b->addMultiInPortEntry("item", entry), DmStatus::kSuccess);
    Failure failure = DmCompound::kConnectionOk;
    ASSERT_EQ(scene.attempt(Scene::port(scene.n1, "out"), entry, failure), DmStatus::kSuccess);
    EXPECT_EQ(scene.attempt(Scene::port(scene.n2, "out"), entry, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionTargetTaken);
    expectConnectionReport(*scene.logger, "n2.out", "n3.b.item", "(target already connected)",
                           BaMessageTypes::kMessageError, scene.n3.get(), "n3");
}

// ---------------------------------------------------------------------------
// Disconnection

TEST_F(DmConnectionMessagesTest, BreakingTwoInputsIsAWarningAboutTheSourcePort) {
    Scene scene;
    auto const a = Scene::port(scene.n1, "a");
    EXPECT_EQ(scene.compound->breakConnection(a, Scene::port(scene.n2, "a")), DmStatus::kConnectionError);
    auto const report = onlyReportOf(*scene.logger);
    expectReport(report, "Disconnnection failed.",
                 "One or more parameters are invalid in the disconnnection involving 'n1.a' and 'n2.a' "
                 "(source and target are both inputs or outputs).",
                 BaMessageTypes::kMessageWarning, a.get(), "n1.a");
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->getTitle().rfind("Disconnnection", 0), 0u);
}

TEST_F(DmConnectionMessagesTest, BreakingTwoOutputsIsAWarningAboutTheSourcePort) {
    Scene scene;
    auto const x = scene.selfPort("x");
    EXPECT_EQ(scene.compound->breakConnection(x, Scene::port(scene.n2, "out")), DmStatus::kConnectionError);
    // The port's own full name goes through the self node, named as the compound.
    expectReport(onlyReportOf(*scene.logger), "Disconnnection failed.",
                 "One or more parameters are invalid in the disconnnection involving '.x' and 'n2.out' "
                 "(source and target are both inputs or outputs).",
                 BaMessageTypes::kMessageWarning, x.get(), "comp.x");
}

TEST_F(DmConnectionMessagesTest, BreakingTwoEntryInputsNamesTheEntries) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    std::shared_ptr<DmPort> entry;
    ASSERT_EQ(add->addMultiInPortEntry("term", entry), DmStatus::kSuccess);
    EXPECT_EQ(scene.compound->breakConnection(entry, Scene::port(scene.n2, "a")), DmStatus::kConnectionError);
    expectReport(onlyReportOf(*scene.logger), "Disconnnection failed.",
                 "One or more parameters are invalid in the disconnnection involving 'add.lhs.term' and "
                 "'n2.a' (source and target are both inputs or outputs).",
                 BaMessageTypes::kMessageWarning, entry.get(), "add.lhs.term");
}

// ---------------------------------------------------------------------------
// What reports nothing

TEST_F(DmConnectionMessagesTest, SuccessfulConnectionsAndBreaksReportNothing) {
    Scene scene;
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(scene.attempt("n1.out", "n2.a", failure), DmStatus::kSuccess);
    EXPECT_EQ(scene.attempt(".x", ".y", failure), DmStatus::kSuccess);
    EXPECT_EQ(scene.attempt("n3.out", "n2.a", failure, true), DmStatus::kSuccessReplaced);
    EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n3, "out"), Scene::port(scene.n2, "a")),
              DmStatus::kSuccess);
    EXPECT_EQ(scene.compound->breakAllConnections(), DmStatus::kSuccess);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionMessagesTest, PortsConnectedThroughEntriesAreRefusedSilently) {
    Scene scene;
    auto const add = scene.addNode("add", makeAddDef());
    ASSERT_EQ(Scene::port(scene.n3, "a")->setFanIn(true), DmStatus::kSuccess);
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(scene.attempt(Scene::port(scene.n1, "out"), add->getMultiInPort(), failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.attempt(Scene::port(scene.n1, "out"), Scene::port(scene.n3, "a"), failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.attempt("n1.out", "n3.a", failure), DmStatus::kInvalidArgument);
    // Even when the source lies on the same node.
    EXPECT_EQ(scene.attempt(Scene::port(add, "result"), add->getMultiInPort(), failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.attempt(Scene::port(scene.n3, "out"), Scene::port(scene.n3, "a"), failure),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionMessagesTest, NullPortsAndEmptyPathsAreRefusedSilently) {
    Scene scene;
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(scene.attempt(nullptr, Scene::port(scene.n2, "a"), failure), DmStatus::kInvalidArgument);
    // A null target beats a source whose node would be refused.
    EXPECT_EQ(scene.attempt(Scene::port(scene.n1, "out"), nullptr, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.attempt(Scene::port(scene.n1, "a"), nullptr, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.attempt(std::string(), "n2.a", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.attempt("n1.out", std::string(), failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.compound->breakConnection(nullptr, Scene::port(scene.n2, "a")),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionOk);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionMessagesTest, BreakingAMissingConnectionReportsNothing) {
    Scene scene;
    EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n1, "out"), Scene::port(scene.n2, "a")),
              DmStatus::kFailure);
    EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n2, "a"), Scene::port(scene.n1, "out")),
              DmStatus::kFailure);
    EXPECT_EQ(scene.compound->breakAllConnections(scene.n1), DmStatus::kFailure);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

// ---------------------------------------------------------------------------
// Which log

TEST_F(DmConnectionMessagesTest, ReportsGoToTheLibraryLogWhenTheCompoundHasALibrary) {
    auto const library = makeLibrary();
    ASSERT_NE(library, nullptr);
    auto const& libraryLog = library->getErrorLogger();
    ASSERT_NE(libraryLog, nullptr);
    libraryLog->clear();
    {
        Scene scene;
        scene.compound->setLibrary(library.get());
        Failure failure = DmCompound::kConnectionOk;
        EXPECT_EQ(scene.attempt("n1.nope", "n2.a", failure), DmStatus::kInvalidArgument);
        EXPECT_EQ(scene.compound->breakConnection(Scene::port(scene.n1, "a"), Scene::port(scene.n2, "a")),
                  DmStatus::kConnectionError);
        EXPECT_EQ(scene.logger->getMessageCount(), 0u);
        auto const reports = reportsOf(*libraryLog);
        ASSERT_EQ(reports.size(), 2u);
        expectReport(reports[0], "Connection failed.",
                     connectionText("n1.nope", "n2.a", "(source port not found on node)"),
                     BaMessageTypes::kMessageWarning, scene.n1.get(), "n1");
        expectReport(reports[1], "Disconnnection failed.",
                     "One or more parameters are invalid in the disconnnection involving 'n1.a' and 'n2.a' "
                     "(source and target are both inputs or outputs).",
                     BaMessageTypes::kMessageWarning, Scene::port(scene.n1, "a").get(), "n1.a");
    }
    libraryLog->clear();
}

TEST_F(DmConnectionMessagesTest, ACompoundWithoutALibraryReportsNothing) {
    Scene scene;
    scene.compound->setLibrary(nullptr);
    EXPECT_EQ(scene.compound->getLogger(), nullptr);
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(scene.attempt("n1.out", "n2.out", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionTargetNotInput);
    EXPECT_EQ(scene.logger->getMessageCount(), 0u);
}

TEST_F(DmConnectionMessagesTest, ReportsFollowTheLibraryTheCompoundIsGivenLater) {
    auto const library = makeLibrary();
    auto const& libraryLog = library->getErrorLogger();
    libraryLog->clear();
    auto const compound = DmCompound::createCompound("comp");
    auto const n1 = DmNode::createNode("n1", makeSceneOp());
    ASSERT_EQ(compound->addNode(n1, kFailOnClash), DmStatus::kSuccess);
    compound->setLibrary(library.get());
    EXPECT_EQ(compound->getLogger(), libraryLog);
    std::shared_ptr<DmConnection> made;
    EXPECT_EQ(compound->makeConnection("n1.out", "n1.a", made), DmStatus::kInvalidArgument);
    expectConnectionReport(*libraryLog, "n1.out", "n1.a",
                           "(single node connections can only be between internal ports)",
                           BaMessageTypes::kMessageWarning, n1.get(), "n1");
    libraryLog->clear();
}

TEST_F(DmConnectionMessagesTest, RefusalWithoutAnyLogStillRefuses) {
    auto const compound = DmCompound::createCompound("comp");
    ASSERT_NE(compound, nullptr);
    auto const def = makeSceneOp();
    auto const n1 = DmNode::createNode("n1", def);
    ASSERT_EQ(compound->addNode(n1, kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmConnection> made;
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(compound->makeConnection("n1.out", "n1.a", false, made, failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(failure, DmCompound::kConnectionSingleNode);
    EXPECT_EQ(compound->breakConnection((*n1)["a"], (*n1)["b"]), DmStatus::kConnectionError);
}

TEST_F(DmConnectionMessagesTest, EachRefusalAddsOneReportInOrder) {
    Scene scene;
    Failure failure = DmCompound::kConnectionOk;
    ASSERT_EQ(scene.attempt("n1.out", "n2.a", failure), DmStatus::kSuccess);
    EXPECT_EQ(scene.attempt("n1.out", "n2.a", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.attempt("n3.out", "n2.a", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.attempt("n1.a", "n2.b", failure), DmStatus::kInvalidArgument);
    EXPECT_EQ(scene.attempt("n1.out", "n1.b", failure), DmStatus::kInvalidArgument);
    auto const reports = reportsOf(*scene.logger);
    ASSERT_EQ(reports.size(), 4u);
    EXPECT_EQ(reports[0]->getDescription(), connectionText("n1.out", "n2.a", "(redundant connection)"));
    EXPECT_EQ(reports[1]->getDescription(), connectionText("n3.out", "n2.a", "(target already connected)"));
    EXPECT_EQ(reports[2]->getDescription(), connectionText("n1.a", "n2.b", "(source is not an output)"));
    EXPECT_EQ(
        reports[3]->getDescription(),
        connectionText("n1.out", "n1.b", "(single node connections can only be between internal ports)"));
    EXPECT_EQ(scene.logger->getErrorCount(), 2u);
    EXPECT_EQ(scene.logger->getWarningCount(), 2u);
}

TEST_F(DmConnectionMessagesTest, ReportDoesNotKeepItsNodeAlive) {
    Scene scene;
    Failure failure = DmCompound::kConnectionOk;
    EXPECT_EQ(scene.attempt("n1.out", "n1.a", failure), DmStatus::kInvalidArgument);
    auto const report = onlyReportOf(*scene.logger);
    ASSERT_NE(report, nullptr);
    ASSERT_EQ(scene.compound->removeNode(scene.n1), DmStatus::kSuccess);
    scene.n1.reset();
    EXPECT_TRUE(report->getEntity().expired());
    EXPECT_EQ(report->getEntityName(), "<unknown>");
}

} // namespace
