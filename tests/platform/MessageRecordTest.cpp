#include <KestoDM/platform/BaMessageCategory.h>
#include <KestoDM/platform/BaMessageLog.h>
#include <KestoDM/platform/BaMessageRecord.h>
#include <KestoDM/platform/BaMessageTypes.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using Kesto::BaMessageCategory;
using Kesto::BaMessageLog;
using Kesto::BaMessageRecord;
using Kesto::BaMessageRecordContainer;
using Kesto::BaMessageTypes;

namespace {

std::shared_ptr<BaMessageRecord> makeRecord(BaMessageCategory category, std::string title) {
    return std::make_shared<BaMessageRecord>(category, "", std::move(title), "", "", "", -1, -1);
}

std::vector<std::string> titles(BaMessageRecordContainer const& container, BaMessageCategory filter) {
    std::vector<std::string> out;
    for (auto it = container.begin(filter); it != container.end(); ++it) {
        out.push_back(it->getTitle());
    }
    return out;
}

class SubjectRecord : public BaMessageRecord {
public:
    SubjectRecord() : BaMessageRecord(BaMessageCategory::kError, "loc", "T", "", "", "", -1, -1) {}
    std::string const& getSubject() const override { return m_subject; }

private:
    std::string m_subject = "/root/node";
};

} // namespace

TEST(BaMessageTypes, CategoriesHaveTheirFixedNumbers) {
    EXPECT_EQ(BaMessageTypes::kMessageFatal, 0);
    EXPECT_EQ(BaMessageTypes::kMessageInternalError, 1);
    EXPECT_EQ(BaMessageTypes::kMessageSevereError, 2);
    EXPECT_EQ(BaMessageTypes::kMessageError, 3);
    EXPECT_EQ(BaMessageTypes::kMessageWarning, 4);
    EXPECT_EQ(BaMessageTypes::kMessageInfo, 5);
    EXPECT_EQ(static_cast<int>(BaMessageCategory::kError), 1);
    EXPECT_EQ(static_cast<int>(BaMessageCategory::kWarning), 2);
    EXPECT_EQ(static_cast<int>(BaMessageCategory::kInfo), 3);
    EXPECT_EQ(static_cast<int>(BaMessageCategory::kAll), 5);
}

TEST(BaMessageRecord, KeepsWhatItWasGiven) {
    BaMessageRecord const record(BaMessageCategory::kWarning, "loc", "title", "desc", "detail", "src", 4, 9);
    EXPECT_EQ(record.getCategory(), BaMessageCategory::kWarning);
    EXPECT_EQ(record.getLocation(), "loc");
    EXPECT_EQ(record.getTitle(), "title");
    EXPECT_EQ(record.getDescription(), "desc");
    EXPECT_EQ(record.getDetailedDescription(), "detail");
    EXPECT_EQ(record.getSource(), "src");
    EXPECT_EQ(record.getLine(), 4);
    EXPECT_EQ(record.getColumn(), 9);
    EXPECT_EQ(record.getSubject(), "loc");
    EXPECT_EQ(record.size(), 0u);
}

TEST(BaMessageRecord, FormatsErrorWithLocationTitleAndDescription) {
    BaMessageRecord const record(BaMessageCategory::kError, "<value>", "Bad value", "not a number", "", "",
                                 -1, -1);
    EXPECT_EQ(record.getFormattedDescription(), "error: <value>: Bad value: not a number");
}

TEST(BaMessageRecord, FormatsWarningWithSourcePositionAndDetail) {
    BaMessageRecord const record(BaMessageCategory::kWarning, "", "T", "D", "X", "/a/b.json", 3, 7);
    EXPECT_EQ(record.getFormattedDescription(), "warning: /a/b.json:3:7: T: D (X)");
}

TEST(BaMessageRecord, FormatsInfoWithTitleOnly) {
    BaMessageRecord const record(BaMessageCategory::kInfo, "", "Loaded", "", "", "", -1, -1);
    EXPECT_EQ(record.getFormattedDescription(), "info: Loaded");
}

TEST(BaMessageRecord, ShowsSourceWithoutPositionWhenLineIsNone) {
    BaMessageRecord const record(BaMessageCategory::kError, "", "T", "", "", "f.json", -1, 5);
    EXPECT_EQ(record.getFormattedDescription(), "error: f.json: T");
}

TEST(BaMessageRecord, ShowsLineWithoutColumnWhenColumnIsNone) {
    BaMessageRecord const record(BaMessageCategory::kError, "", "T", "", "", "f.json", 12, -1);
    EXPECT_EQ(record.getFormattedDescription(), "error: f.json:12: T");
}

TEST(BaMessageRecord, IgnoresPositionWithoutSource) {
    BaMessageRecord const record(BaMessageCategory::kError, "here", "T", "", "", "", 1, 2);
    EXPECT_EQ(record.getFormattedDescription(), "error: here: T");
}

TEST(BaMessageRecord, FormattedLineUsesOverriddenSubject) {
    SubjectRecord const record;
    EXPECT_EQ(record.getFormattedDescription(), "error: /root/node: T");
}

TEST(BaMessageRecord, FormattedLineLeavesOutNestedRecords) {
    BaMessageRecord record(BaMessageCategory::kError, "", "Outer", "", "", "", -1, -1);
    record.addRecord(makeRecord(BaMessageCategory::kInfo, "Inner"));
    EXPECT_EQ(record.getFormattedDescription(), "error: Outer");
}

TEST(BaMessageRecordContainer, IgnoresNullRecords) {
    BaMessageLog log;
    log.addRecord(nullptr);
    EXPECT_EQ(log.size(), 0u);
    EXPECT_TRUE(log.begin() == log.end());
}

TEST(BaMessageRecordContainer, IteratesInOrderOfAddition) {
    BaMessageLog log;
    log.addRecord(makeRecord(BaMessageCategory::kWarning, "a"));
    log.addRecord(makeRecord(BaMessageCategory::kError, "b"));
    log.addRecord(makeRecord(BaMessageCategory::kInfo, "c"));
    log.addRecord(makeRecord(BaMessageCategory::kError, "d"));
    EXPECT_EQ(log.size(), 4u);
    EXPECT_EQ(titles(log, BaMessageCategory::kAll), (std::vector<std::string>{"a", "b", "c", "d"}));
}

TEST(BaMessageRecordContainer, FilteredIterationSkipsOtherCategories) {
    BaMessageLog log;
    log.addRecord(makeRecord(BaMessageCategory::kWarning, "a"));
    log.addRecord(makeRecord(BaMessageCategory::kError, "b"));
    log.addRecord(makeRecord(BaMessageCategory::kInfo, "c"));
    log.addRecord(makeRecord(BaMessageCategory::kError, "d"));
    EXPECT_EQ(titles(log, BaMessageCategory::kError), (std::vector<std::string>{"b", "d"}));
    EXPECT_EQ(titles(log, BaMessageCategory::kWarning), (std::vector<std::string>{"a"}));
    EXPECT_EQ(titles(log, BaMessageCategory::kInfo), (std::vector<std::string>{"c"}));
}

TEST(BaMessageRecordContainer, FilterWithNoMatchGivesEmptyRange) {
    BaMessageLog log;
    log.addRecord(makeRecord(BaMessageCategory::kInfo, "a"));
    EXPECT_TRUE(log.begin(BaMessageCategory::kError) == log.end());
}

TEST(BaMessageRecordContainer, IteratorGivesSharedRecord) {
    BaMessageLog log;
    auto const record = makeRecord(BaMessageCategory::kError, "a");
    log.addRecord(record);
    auto it = log.begin();
    EXPECT_EQ(it.getRecord(), record);
    EXPECT_EQ(&*it, record.get());
    auto const before = it++;
    EXPECT_EQ(before.getRecord(), record);
    EXPECT_TRUE(it == log.end());
}

TEST(BaMessageRecordContainer, ClearRemovesEveryRecord) {
    BaMessageLog log;
    log.addRecord(makeRecord(BaMessageCategory::kError, "a"));
    log.addRecord(makeRecord(BaMessageCategory::kInfo, "b"));
    log.clear();
    EXPECT_EQ(log.size(), 0u);
    EXPECT_TRUE(log.begin() == log.end());
    EXPECT_EQ(log.getCategoryCount(BaMessageCategory::kAll, true), 0u);
}

TEST(BaMessageRecordContainer, CopySharesTheRecords) {
    BaMessageLog log;
    auto const record = makeRecord(BaMessageCategory::kError, "a");
    log.addRecord(record);
    BaMessageLog const copy = log;
    log.clear();
    ASSERT_EQ(copy.size(), 1u);
    EXPECT_EQ(copy.begin().getRecord(), record);
}

TEST(BaMessageRecordContainer, CountsOnlyDirectRecordsWhenNotRecursive) {
    BaMessageLog log;
    auto const outer = makeRecord(BaMessageCategory::kError, "outer");
    outer->addRecord(makeRecord(BaMessageCategory::kError, "inner error"));
    outer->addRecord(makeRecord(BaMessageCategory::kWarning, "inner warning"));
    log.addRecord(outer);
    log.addRecord(makeRecord(BaMessageCategory::kWarning, "top warning"));
    EXPECT_EQ(log.getCategoryCount(BaMessageCategory::kError, false), 1u);
    EXPECT_EQ(log.getCategoryCount(BaMessageCategory::kWarning, false), 1u);
    EXPECT_EQ(log.getCategoryCount(BaMessageCategory::kInfo, false), 0u);
    EXPECT_EQ(log.getCategoryCount(BaMessageCategory::kAll, false), 2u);
}

TEST(BaMessageRecordContainer, RecursiveCountReachesEveryDepth) {
    BaMessageLog log;
    auto const outer = makeRecord(BaMessageCategory::kError, "outer");
    auto const middle = makeRecord(BaMessageCategory::kWarning, "middle");
    middle->addRecord(makeRecord(BaMessageCategory::kError, "deep error"));
    middle->addRecord(makeRecord(BaMessageCategory::kInfo, "deep info"));
    outer->addRecord(middle);
    log.addRecord(outer);
    log.addRecord(makeRecord(BaMessageCategory::kError, "top error"));
    EXPECT_EQ(log.getCategoryCount(BaMessageCategory::kError, true), 3u);
    EXPECT_EQ(log.getCategoryCount(BaMessageCategory::kWarning, true), 1u);
    EXPECT_EQ(log.getCategoryCount(BaMessageCategory::kInfo, true), 1u);
    EXPECT_EQ(log.getCategoryCount(BaMessageCategory::kAll, true), 5u);
    EXPECT_EQ(outer->getCategoryCount(BaMessageCategory::kAll, true), 3u);
}

TEST(BaMessageRecordContainer, IteratesNestedRecordsOfARecord) {
    auto const outer = makeRecord(BaMessageCategory::kError, "outer");
    outer->addRecord(makeRecord(BaMessageCategory::kInfo, "x"));
    outer->addRecord(makeRecord(BaMessageCategory::kError, "y"));
    EXPECT_EQ(titles(*outer, BaMessageCategory::kAll), (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(titles(*outer, BaMessageCategory::kError), (std::vector<std::string>{"y"}));
}
