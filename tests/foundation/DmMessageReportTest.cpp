#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/platform/BaMessageCategory.h>
#include <KestoDM/platform/BaMessageTypes.h>

#include "TestEntities.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

using namespace Kesto;

namespace {

std::shared_ptr<DmNamedEntity const> makeEntity(std::string name) {
    return std::make_shared<KestoTest::TestEntity>(std::move(name));
}

} // namespace

// ---------------------------------------------------------------------------
// Category mapping

TEST(DmMessageReport, FatalInternalSevereAndPlainErrorsMapToTheErrorRecordCategory) {
    for (BaMessageTypes::MessageCategory const category :
         {BaMessageTypes::kMessageFatal, BaMessageTypes::kMessageInternalError,
          BaMessageTypes::kMessageSevereError, BaMessageTypes::kMessageError}) {
        SCOPED_TRACE(static_cast<int>(category));
        EXPECT_EQ(DmMessageReport::toRecordCategory(category), BaMessageCategory::kError);
        EXPECT_EQ(static_cast<int>(DmMessageReport::toRecordCategory(category)), 1);
    }
}

TEST(DmMessageReport, WarningMapsToTheWarningRecordCategory) {
    EXPECT_EQ(DmMessageReport::toRecordCategory(BaMessageTypes::kMessageWarning),
              BaMessageCategory::kWarning);
    EXPECT_EQ(static_cast<int>(DmMessageReport::toRecordCategory(BaMessageTypes::kMessageWarning)), 2);
}

TEST(DmMessageReport, InfoMapsToTheInfoRecordCategory) {
    EXPECT_EQ(DmMessageReport::toRecordCategory(BaMessageTypes::kMessageInfo), BaMessageCategory::kInfo);
    EXPECT_EQ(static_cast<int>(DmMessageReport::toRecordCategory(BaMessageTypes::kMessageInfo)), 3);
}

TEST(DmMessageReport, ReportTakesTheRecordCategoryOfItsMessageCategory) {
    auto const entity = makeEntity("node");
    EXPECT_EQ(DmMessageReport(entity, BaMessageTypes::kMessageFatal, "t", "d").getCategory(),
              BaMessageCategory::kError);
    EXPECT_EQ(DmMessageReport(entity, BaMessageTypes::kMessageInternalError, "t", "d").getCategory(),
              BaMessageCategory::kError);
    EXPECT_EQ(DmMessageReport(entity, BaMessageTypes::kMessageSevereError, "t", "d").getCategory(),
              BaMessageCategory::kError);
    EXPECT_EQ(DmMessageReport(entity, BaMessageTypes::kMessageError, "t", "d").getCategory(),
              BaMessageCategory::kError);
    EXPECT_EQ(DmMessageReport(entity, BaMessageTypes::kMessageWarning, "t", "d").getCategory(),
              BaMessageCategory::kWarning);
    EXPECT_EQ(DmMessageReport(entity, BaMessageTypes::kMessageInfo, "t", "d").getCategory(),
              BaMessageCategory::kInfo);
}

TEST(DmMessageReport, NoEntityReportTakesTheRecordCategoryOfItsMessageCategory) {
    EXPECT_EQ(DmMessageReport(BaMessageTypes::kMessageError, "<value>", "t", "d").getCategory(),
              BaMessageCategory::kError);
    EXPECT_EQ(DmMessageReport(BaMessageTypes::kMessageWarning, "<value>", "t", "d").getCategory(),
              BaMessageCategory::kWarning);
    EXPECT_EQ(DmMessageReport(BaMessageTypes::kMessageInfo, "<value>", "t", "d").getCategory(),
              BaMessageCategory::kInfo);
}

TEST(DmMessageReport, KeepsTheInternalCategory) {
    auto const entity = makeEntity("node");
    for (BaMessageTypes::MessageCategory const category :
         {BaMessageTypes::kMessageFatal, BaMessageTypes::kMessageInternalError,
          BaMessageTypes::kMessageSevereError, BaMessageTypes::kMessageError, BaMessageTypes::kMessageWarning,
          BaMessageTypes::kMessageInfo}) {
        SCOPED_TRACE(static_cast<int>(category));
        EXPECT_EQ(DmMessageReport(entity, category, "t", "d").getInternalCategory(), category);
        EXPECT_EQ(DmMessageReport(category, "<value>", "t", "d").getInternalCategory(), category);
    }
}

// ---------------------------------------------------------------------------
// Constructors

TEST(DmMessageReport, TitleAndDescriptionConstructorLeavesTheRestEmpty) {
    auto const entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageWarning, "the title", "the description");
    EXPECT_EQ(report.getEntity().lock(), entity);
    EXPECT_EQ(report.getInternalCategory(), BaMessageTypes::kMessageWarning);
    EXPECT_EQ(report.getCategory(), BaMessageCategory::kWarning);
    EXPECT_EQ(report.getTitle(), "the title");
    EXPECT_EQ(report.getDescription(), "the description");
    EXPECT_EQ(report.getDetailedDescription(), "");
    EXPECT_EQ(report.getSource(), "");
    EXPECT_EQ(report.getLocation(), "");
    EXPECT_EQ(report.getLine(), -1);
    EXPECT_EQ(report.getColumn(), -1);
    EXPECT_EQ(report.size(), 0u);
}

TEST(DmMessageReport, DetailConstructorKeepsTheDetailAndHasNoPosition) {
    auto const entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "the title", "the description",
                                 "the detail");
    EXPECT_EQ(report.getEntity().lock(), entity);
    EXPECT_EQ(report.getInternalCategory(), BaMessageTypes::kMessageError);
    EXPECT_EQ(report.getCategory(), BaMessageCategory::kError);
    EXPECT_EQ(report.getTitle(), "the title");
    EXPECT_EQ(report.getDescription(), "the description");
    EXPECT_EQ(report.getDetailedDescription(), "the detail");
    EXPECT_EQ(report.getSource(), "");
    EXPECT_EQ(report.getLocation(), "");
    EXPECT_EQ(report.getLine(), -1);
    EXPECT_EQ(report.getColumn(), -1);
}

TEST(DmMessageReport, LineAndColumnConstructorKeepsThePositionWithoutASource) {
    auto const entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageSevereError, "the title", "the description",
                                 "the detail", 12, 7);
    EXPECT_EQ(report.getEntity().lock(), entity);
    EXPECT_EQ(report.getInternalCategory(), BaMessageTypes::kMessageSevereError);
    EXPECT_EQ(report.getCategory(), BaMessageCategory::kError);
    EXPECT_EQ(report.getTitle(), "the title");
    EXPECT_EQ(report.getDescription(), "the description");
    EXPECT_EQ(report.getDetailedDescription(), "the detail");
    EXPECT_EQ(report.getSource(), "");
    EXPECT_EQ(report.getLocation(), "");
    EXPECT_EQ(report.getLine(), 12);
    EXPECT_EQ(report.getColumn(), 7);
}

TEST(DmMessageReport, SourceConstructorKeepsEveryPart) {
    auto const entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageInfo, "the title", "the description",
                                 "the detail", "graph.kdm", 3, 14);
    EXPECT_EQ(report.getEntity().lock(), entity);
    EXPECT_EQ(report.getInternalCategory(), BaMessageTypes::kMessageInfo);
    EXPECT_EQ(report.getCategory(), BaMessageCategory::kInfo);
    EXPECT_EQ(report.getTitle(), "the title");
    EXPECT_EQ(report.getDescription(), "the description");
    EXPECT_EQ(report.getDetailedDescription(), "the detail");
    EXPECT_EQ(report.getSource(), "graph.kdm");
    EXPECT_EQ(report.getLocation(), "");
    EXPECT_EQ(report.getLine(), 3);
    EXPECT_EQ(report.getColumn(), 14);
}

TEST(DmMessageReport, NoEntityConstructorKeepsTheLocation) {
    DmMessageReport const report(BaMessageTypes::kMessageError, "<value>", "the title", "the description");
    EXPECT_TRUE(report.getEntity().expired());
    EXPECT_EQ(report.getInternalCategory(), BaMessageTypes::kMessageError);
    EXPECT_EQ(report.getCategory(), BaMessageCategory::kError);
    EXPECT_EQ(report.getLocation(), "<value>");
    EXPECT_EQ(report.getTitle(), "the title");
    EXPECT_EQ(report.getDescription(), "the description");
    EXPECT_EQ(report.getDetailedDescription(), "");
    EXPECT_EQ(report.getSource(), "");
    EXPECT_EQ(report.getLine(), -1);
    EXPECT_EQ(report.getColumn(), -1);
}

// ---------------------------------------------------------------------------
// Entity name

TEST(DmMessageReport, EntityNameIsTheEntitysName) {
    auto const entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "t", "d");
    EXPECT_EQ(report.getEntityName(), "node");
}

TEST(DmMessageReport, EntityNameIsTheEntitysFullName) {
    std::shared_ptr<DmNamedEntity const> const entity =
        std::make_shared<KestoTest::ScopedTestEntity>("scope", "node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "t", "d");
    EXPECT_EQ(report.getEntityName(), "scope::node");
}

TEST(DmMessageReport, EntityNameIsUnknownWhenTheEntityDiedBeforeItWasRead) {
    auto entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "t", "d");
    entity.reset();
    EXPECT_EQ(report.getEntityName(), "<unknown>");
}

TEST(DmMessageReport, EntityNameIsUnknownWithoutAnEntity) {
    DmMessageReport const report(BaMessageTypes::kMessageError, "<value>", "t", "d");
    EXPECT_EQ(report.getEntityName(), "<unknown>");
}

TEST(DmMessageReport, EntityNameIsUnknownForANullEntity) {
    DmMessageReport const report(nullptr, BaMessageTypes::kMessageError, "t", "d");
    EXPECT_EQ(report.getEntityName(), "<unknown>");
}

TEST(DmMessageReport, EntityNameOnceReadStaysAfterTheEntityIsRenamed) {
    auto const entity = std::make_shared<KestoTest::TestEntity>("before");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "t", "d");
    EXPECT_EQ(report.getEntityName(), "before");
    ASSERT_TRUE(entity->setName("after", kFailOnClash, kNameVerbatim));
    ASSERT_EQ(entity->getName(), "after");
    EXPECT_EQ(report.getEntityName(), "before");
}

TEST(DmMessageReport, EntityNameReadFirstAfterARenameIsTheNewName) {
    auto const entity = std::make_shared<KestoTest::TestEntity>("before");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "t", "d");
    ASSERT_TRUE(entity->setName("after", kFailOnClash, kNameVerbatim));
    EXPECT_EQ(report.getEntityName(), "after");
}

TEST(DmMessageReport, EntityNameOnceReadStaysAfterTheEntityIsDestroyed) {
    auto entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "t", "d");
    EXPECT_EQ(report.getEntityName(), "node");
    entity.reset();
    EXPECT_EQ(report.getEntityName(), "node");
}

// ---------------------------------------------------------------------------
// Entity reference

TEST(DmMessageReport, GetEntityGivesTheEntity) {
    auto const entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "t", "d");
    EXPECT_EQ(report.getEntity().lock(), entity);
}

TEST(DmMessageReport, ReportDoesNotKeepTheEntityAlive) {
    auto entity = makeEntity("node");
    std::weak_ptr<DmNamedEntity const> const watcher = entity;
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "t", "d");
    EXPECT_EQ(entity.use_count(), 1);
    entity.reset();
    EXPECT_TRUE(watcher.expired());
    EXPECT_TRUE(report.getEntity().expired());
    EXPECT_EQ(report.getEntity().lock(), nullptr);
}

TEST(DmMessageReport, ReadingTheEntityNameDoesNotKeepTheEntityAlive) {
    auto entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "t", "d");
    EXPECT_EQ(report.getEntityName(), "node");
    EXPECT_EQ(entity.use_count(), 1);
    entity.reset();
    EXPECT_TRUE(report.getEntity().expired());
}

// ---------------------------------------------------------------------------
// Subject and formatted line

TEST(DmMessageReport, SubjectIsTheEntityNameWhenTheReportHasAnEntity) {
    std::shared_ptr<DmNamedEntity const> const entity =
        std::make_shared<KestoTest::ScopedTestEntity>("scope", "node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "t", "d");
    EXPECT_EQ(report.getSubject(), "scope::node");
}

TEST(DmMessageReport, SubjectIsUnknownWhenTheEntityHasDied) {
    auto entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "t", "d");
    entity.reset();
    EXPECT_EQ(report.getSubject(), "<unknown>");
}

TEST(DmMessageReport, SubjectIsTheLocationWithoutAnEntity) {
    DmMessageReport const report(BaMessageTypes::kMessageError, "<value>", "t", "d");
    EXPECT_EQ(report.getSubject(), "<value>");
}

TEST(DmMessageReport, FormattedLineNamesTheEntity) {
    auto const entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageError, "bad input",
                                 "the value is out of range", "expected 0..9", "graph.kdm", 3, 14);
    EXPECT_EQ(report.getFormattedDescription(),
              "error: graph.kdm:3:14: node: bad input: the value is out of range (expected 0..9)");
}

TEST(DmMessageReport, FormattedLineOfAWarningWithoutPositionOrDetail) {
    auto const entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageWarning, "unused",
                                 "the input is never read");
    EXPECT_EQ(report.getFormattedDescription(), "warning: node: unused: the input is never read");
}

TEST(DmMessageReport, FormattedLineNamesTheLocationWithoutAnEntity) {
    DmMessageReport const report(BaMessageTypes::kMessageInfo, "<value>", "note", "the value was rounded");
    EXPECT_EQ(report.getFormattedDescription(), "info: <value>: note: the value was rounded");
}

TEST(DmMessageReport, FormattedLineLeavesOutAnEmptyLocation) {
    DmMessageReport const report(BaMessageTypes::kMessageError, "", "the library could not be initialized",
                                 "library initialization failed");
    EXPECT_EQ(report.getFormattedDescription(),
              "error: the library could not be initialized: library initialization failed");
}

TEST(DmMessageReport, FormattedLineNamesAnUnknownEntityWhenItHasDied) {
    auto entity = makeEntity("node");
    DmMessageReport const report(entity, BaMessageTypes::kMessageSevereError, "gone", "the node was deleted");
    entity.reset();
    EXPECT_EQ(report.getFormattedDescription(), "error: <unknown>: gone: the node was deleted");
}
