// Metadata items of a graph file, read from the header of the file onto its
// URI: how the kind of an item is inferred or named, nesting, order, and the
// messages of items that cannot be read.
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "reader/ReaderTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::line;
using KestoTest::longForm;
using KestoTest::PrintingLibrary;
using KestoTest::TempDir;

namespace {

using Lines = std::vector<std::string>;
using Items = std::vector<std::shared_ptr<DmMetadataItem>>;

std::string const kVersionItem = R"({"metaName": "mvrkFileFormatVersion", "metaValue": "100L"})";

class DmMetadataReadingTest : public testing::Test {
protected:
    /// Loads a file whose header holds the version item, then `items` (a
    /// comma-separated list of item objects); the status of the load.
    DmStatus loadItems(std::string const& items, std::string const& more = std::string()) {
        std::string const path =
            m_dir.write("a.json", R"({"header": {"metadata": [)" + kVersionItem +
                                      (items.empty() ? "" : ", ") + items + "]}" + more + "}");
        return m_library.load(longForm(path));
    }

    /// The items of the file's URI after the version item.
    Items items() const {
        Items out;
        std::shared_ptr<DmURI> const uri = m_library->findURI("a.json");
        if (!uri) {
            return out;
        }
        for (auto const& item : *uri->getMetadata()->getMetadataItems()) {
            if (item->getName() != "mvrkFileFormatVersion") {
                out.push_back(item);
            }
        }
        return out;
    }

    /// The one item read from `item`; null, with a failure, when there is not exactly one.
    std::shared_ptr<DmMetadataItem> only() const {
        Items const all = items();
        EXPECT_EQ(all.size(), 1u);
        return all.size() == 1 ? all.front() : nullptr;
    }

    static Items children(DmMetadataItem const& item) {
        Items out;
        for (auto const& child : *item.getMetadata()->getMetadataItems()) {
            out.push_back(child);
        }
        return out;
    }

    static std::string message(std::string const& kind, std::string const& title, std::string const& text) {
        return line(kind, "file:///a.json", title, text);
    }

    TempDir m_dir;
    PrintingLibrary m_library;
};

template <class Value>
std::shared_ptr<Value> valueOf(std::shared_ptr<DmMetadataItem> const& item) {
    return item ? std::dynamic_pointer_cast<Value>(item->getValue()) : nullptr;
}

} // namespace

// ---------------------------------------------------------------------------
// Kinds inferred from the text

TEST_F(DmMetadataReadingTest, TextEndingInFIsAFloat) {
    ASSERT_EQ(loadItems(R"({"metaName": "a", "metaValue": "1.5f"}, {"metaName": "b", "metaValue": "-2F"})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 2u);
    ASSERT_NE(valueOf<DmFloatValue>(all[0]), nullptr);
    EXPECT_EQ(valueOf<DmFloatValue>(all[0])->getData(), 1.5f);
    ASSERT_NE(valueOf<DmFloatValue>(all[1]), nullptr);
    EXPECT_EQ(valueOf<DmFloatValue>(all[1])->getData(), -2.0f);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmMetadataReadingTest, TextEndingInLIsAnInt) {
    ASSERT_EQ(loadItems(R"({"metaName": "a", "metaValue": "7L"}, {"metaName": "b", "metaValue": "-7l"},
                           {"metaName": "c", "metaValue": "8uL"}, {"metaName": "d", "metaValue": "9Ul"})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 4u);
    std::vector<int> values;
    for (auto const& item : all) {
        auto const value = valueOf<DmIntValue>(item);
        ASSERT_NE(value, nullptr) << item->getName();
        values.push_back(value->getData());
    }
    EXPECT_EQ(values, (std::vector<int>{7, -7, 8, 9}));
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmMetadataReadingTest, IntTextMustFitThirtyTwoBits) {
    EXPECT_EQ(loadItems(R"({"metaName": "low", "metaValue": "-2147483648L"},
                           {"metaName": "high", "metaValue": "2147483647L"},
                           {"metaName": "over", "metaValue": "2147483648L"},
                           {"metaName": "under", "metaValue": "-2147483649L"})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(valueOf<DmIntValue>(all[0])->getData(), -2147483647 - 1);
    EXPECT_EQ(valueOf<DmIntValue>(all[1])->getData(), 2147483647);
    EXPECT_EQ(
        m_library.takePrinted(),
        (Lines{message("warning", "Out-of-range value.", "The value '2147483648L' is out-of-range."),
               message("warning", "Out-of-range value.", "The value '-2147483649L' is out-of-range.")}));
}

TEST_F(DmMetadataReadingTest, LongTextReadsBackAsAnIntItem) {
    ASSERT_EQ(loadItems(R"({"metaName": "a", "metaValue": "7L"})"), DmStatus::kSuccess);
    std::shared_ptr<DmMetadataItem> const item = only();
    ASSERT_NE(item, nullptr);
    std::int64_t value = 42;
    // An int is no kind of item that the long getter knows: it succeeds and leaves the value.
    EXPECT_EQ(item->getLongValue(value), DmStatus::kSuccess);
    EXPECT_EQ(value, 42);
    EXPECT_EQ(valueOf<DmIntValue>(item)->getData(), 7);
}

TEST_F(DmMetadataReadingTest, TrueAndFalseAreBools) {
    ASSERT_EQ(loadItems(R"({"metaName": "a", "metaValue": "true"}, {"metaName": "b", "metaValue": "false"})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 2u);
    bool first = false;
    bool second = true;
    EXPECT_EQ(all[0]->getBoolValue(first), DmStatus::kSuccess);
    EXPECT_EQ(all[1]->getBoolValue(second), DmStatus::kSuccess);
    EXPECT_TRUE(first);
    EXPECT_FALSE(second);
    EXPECT_NE(valueOf<DmBoolValue>(all[0]), nullptr);
}

TEST_F(DmMetadataReadingTest, OtherTextsHaveNoKnownType) {
    EXPECT_EQ(loadItems(R"({"metaName": "a", "metaValue": "1.5"}, {"metaName": "b", "metaValue": "True"},
                           {"metaName": "c", "metaValue": "7"}, {"metaName": "d", "metaValue": "abc"},
                           {"metaName": "e", "metaValue": "7u"}, {"metaName": "f", "metaValue": "ok"})"),
              DmStatus::kFailure);
    EXPECT_EQ(items(), Items{});
    EXPECT_EQ(m_library.takePrinted(),
              (Lines{message("error", "Unknown value.", "The type of the value '1.5' is unknown."),
                     message("error", "Unknown value.", "The type of the value 'True' is unknown."),
                     message("error", "Unknown value.", "The type of the value '7' is unknown."),
                     message("error", "Unknown value.", "The type of the value 'abc' is unknown."),
                     message("error", "Unknown value.", "The type of the value '7u' is unknown."),
                     message("error", "Unknown value.", "The type of the value 'ok' is unknown.")}));
}

TEST_F(DmMetadataReadingTest, NumberTextsThatDoNotConvertAreBadlyFormed) {
    EXPECT_EQ(loadItems(R"({"metaName": "a", "metaValue": "xf"}, {"metaName": "b", "metaValue": "xL"},
                           {"metaName": "c", "metaValue": "1.5L"}, {"metaName": "d", "metaValue": "f"})"),
              DmStatus::kFailure);
    EXPECT_EQ(items(), Items{});
    EXPECT_EQ(m_library.takePrinted(),
              (Lines{message("error", "Badly formed value.", "The value 'xf' is not a valid value."),
                     message("error", "Badly formed value.", "The value 'xL' is not a valid value."),
                     message("error", "Badly formed value.", "The value '1.5L' is not a valid value."),
                     message("error", "Badly formed value.", "The value 'f' is not a valid value.")}));
}

// ---------------------------------------------------------------------------
// Kinds named by metaType

TEST_F(DmMetadataReadingTest, StringTypeKeepsTheText) {
    ASSERT_EQ(loadItems(R"({"metaName": "a", "metaType": "string", "metaValue": "7L"})"), DmStatus::kSuccess);
    std::string text;
    ASSERT_NE(only(), nullptr);
    EXPECT_EQ(only()->getStringValue(text), DmStatus::kSuccess);
    EXPECT_EQ(text, "7L");
    EXPECT_NE(valueOf<DmStringValue>(only()), nullptr);
}

TEST_F(DmMetadataReadingTest, LongTypeGivesALong) {
    ASSERT_EQ(loadItems(R"({"metaName": "a", "metaType": "long", "metaValue": "9000000000"},
                           {"metaName": "b", "metaType": "long", "metaValue": "-5L"})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 2u);
    std::int64_t first = 0;
    std::int64_t second = 0;
    EXPECT_EQ(all[0]->getLongValue(first), DmStatus::kSuccess);
    EXPECT_EQ(all[1]->getLongValue(second), DmStatus::kSuccess);
    EXPECT_EQ(first, 9000000000);
    EXPECT_EQ(second, -5);
    EXPECT_NE(valueOf<DmLongValue>(all[0]), nullptr);
}

TEST_F(DmMetadataReadingTest, DoubleTypeGivesADouble) {
    ASSERT_EQ(loadItems(R"({"metaName": "a", "metaType": "double", "metaValue": "1.5"})"),
              DmStatus::kSuccess);
    double value = 0;
    ASSERT_NE(only(), nullptr);
    EXPECT_EQ(only()->getDoubleValue(value), DmStatus::kSuccess);
    EXPECT_EQ(value, 1.5);
    EXPECT_NE(valueOf<DmDoubleValue>(only()), nullptr);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmMetadataReadingTest, BoolTypeIsTrueForTheThreeSpellingsOfTrue) {
    ASSERT_EQ(loadItems(R"({"metaName": "a", "metaType": "bool", "metaValue": "true"},
                           {"metaName": "b", "metaType": "bool", "metaValue": "TRUE"},
                           {"metaName": "c", "metaType": "bool", "metaValue": "True"},
                           {"metaName": "d", "metaType": "bool", "metaValue": "yes"},
                           {"metaName": "e", "metaType": "bool", "metaValue": "false"})"),
              DmStatus::kSuccess);
    std::vector<bool> values;
    for (auto const& item : items()) {
        bool value = false;
        EXPECT_EQ(item->getBoolValue(value), DmStatus::kSuccess);
        values.push_back(value);
    }
    EXPECT_EQ(values, (std::vector<bool>{true, true, true, false, false}));
}

TEST_F(DmMetadataReadingTest, TypedTextsThatDoNotConvertAreBadlyFormed) {
    EXPECT_EQ(loadItems(R"({"metaName": "a", "metaType": "long", "metaValue": "x"},
                           {"metaName": "b", "metaType": "double", "metaValue": "1.5.2"})"),
              DmStatus::kFailure);
    EXPECT_EQ(items(), Items{});
    EXPECT_EQ(m_library.takePrinted(),
              (Lines{message("error", "Badly formed value.", "The value 'x' is not a valid value."),
                     message("error", "Badly formed value.", "The value '1.5.2' is not a valid value.")}));
}

TEST_F(DmMetadataReadingTest, OtherTypesAreUnsupported) {
    EXPECT_EQ(loadItems(R"({"metaName": "a", "metaType": "int", "metaValue": "5"},
                           {"metaName": "b", "metaType": "String", "metaValue": "x"},
                           {"metaName": "c", "metaType": "float", "metaValue": "1.5f"})"),
              DmStatus::kFailure);
    EXPECT_EQ(items(), Items{});
    EXPECT_EQ(m_library.takePrinted(),
              (Lines{message("error", "Unsupported metadata type.",
                             "The metadata type 'int' for literal '5' is unsupported."),
                     message("error", "Unsupported metadata type.",
                             "The metadata type 'String' for literal 'x' is unsupported."),
                     message("error", "Unsupported metadata type.",
                             "The metadata type 'float' for literal '1.5f' is unsupported.")}));
}

TEST_F(DmMetadataReadingTest, EmptyOrNonStringTypeMeansInference) {
    ASSERT_EQ(loadItems(R"({"metaName": "a", "metaType": "", "metaValue": "true"},
                           {"metaName": "b", "metaType": 5, "metaValue": "2L"})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_NE(valueOf<DmBoolValue>(all[0]), nullptr);
    EXPECT_NE(valueOf<DmIntValue>(all[1]), nullptr);
}

TEST_F(DmMetadataReadingTest, OneAndAHalfNeedsTheDoubleType) {
    EXPECT_EQ(loadItems(R"({"metaName": "a", "metaValue": "1.5"})"), DmStatus::kFailure);
    EXPECT_EQ(items(), Items{});
    EXPECT_EQ(m_library.takePrinted(),
              Lines{message("error", "Unknown value.", "The type of the value '1.5' is unknown.")});
}

// ---------------------------------------------------------------------------
// Names and values

TEST_F(DmMetadataReadingTest, ItemWithoutNameIsSkippedWithAWarning) {
    EXPECT_EQ(loadItems(R"({"metaValue": "true", "metadata": [{"metaName": "child", "metaValue": "true"}]},
                           {"metaName": "", "metaValue": "true"}, {"metaName": 5},
                           {"metaName": "kept", "metaValue": "true"})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0]->getName(), "kept");
    std::string const missing = message("warning", "Missing metadata name.", "Metadata requires a name.");
    EXPECT_EQ(m_library.takePrinted(), (Lines{missing, missing, missing}));
}

TEST_F(DmMetadataReadingTest, ItemWithoutValueHasNone) {
    ASSERT_EQ(loadItems(R"({"metaName": "absent"}, {"metaName": "empty", "metaValue": ""},
                           {"metaName": "typed", "metaType": "long"}, {"metaName": "number", "metaValue": 5},
                           {"metaName": "odd", "metaType": "nothing", "metaValue": ""})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 5u);
    for (auto const& item : all) {
        EXPECT_FALSE(item->hasValue()) << item->getName();
    }
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmMetadataReadingTest, ItemsKeepTheirOrderAndNestToAnyDepth) {
    ASSERT_EQ(loadItems(R"({"metaName": "z", "metaValue": "1L"},
                           {"metaName": "a", "metadata": [
                               {"metaName": "a1", "metaValue": "true",
                                "metadata": {"metaName": "a1x", "metadata": [{"metaName": "a1xy", "metaValue": "2L"}]}},
                               {"metaName": "a2", "metaType": "string", "metaValue": "s"}]},
                           {"metaName": "m", "metaValue": "false"})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0]->getName(), "z");
    EXPECT_EQ(all[1]->getName(), "a");
    EXPECT_EQ(all[2]->getName(), "m");
    EXPECT_FALSE(all[1]->hasValue());
    Items const a = children(*all[1]);
    ASSERT_EQ(a.size(), 2u);
    EXPECT_EQ(a[0]->getName(), "a1");
    EXPECT_EQ(a[1]->getName(), "a2");
    Items const a1 = children(*a[0]);
    ASSERT_EQ(a1.size(), 1u);
    EXPECT_EQ(a1[0]->getName(), "a1x");
    Items const a1x = children(*a1[0]);
    ASSERT_EQ(a1x.size(), 1u);
    EXPECT_EQ(a1x[0]->getName(), "a1xy");
    EXPECT_EQ(valueOf<DmIntValue>(a1x[0])->getData(), 2);
    EXPECT_TRUE(children(*all[0]).empty());
}

TEST_F(DmMetadataReadingTest, NamesMayRepeat) {
    ASSERT_EQ(loadItems(R"({"metaName": "tag", "metaValue": "1L"}, {"metaName": "tag", "metaValue": "2L"})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(valueOf<DmIntValue>(all[0])->getData(), 1);
    EXPECT_EQ(valueOf<DmIntValue>(all[1])->getData(), 2);
}

TEST_F(DmMetadataReadingTest, IconIsReplacedRatherThanAddedTwice) {
    ASSERT_EQ(loadItems(R"({"metaName": "icon", "metaType": "string", "metaValue": "first.png"},
                           {"metaName": "other", "metaValue": "true"},
                           {"metaName": "icon", "metaType": "string", "metaValue": "second.png"})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0]->getName(), "other");
    EXPECT_EQ(all[1]->getName(), "icon");
    std::string text;
    EXPECT_EQ(all[1]->getStringValue(text), DmStatus::kSuccess);
    EXPECT_EQ(text, "second.png");
}

TEST_F(DmMetadataReadingTest, NestedIconIsReplacedWithinItsOwnItem) {
    ASSERT_EQ(loadItems(R"({"metaName": "icon", "metaType": "string", "metaValue": "top.png"},
                           {"metaName": "a", "metadata": [
                               {"metaName": "icon", "metaType": "string", "metaValue": "one.png"},
                               {"metaName": "icon", "metaType": "string", "metaValue": "two.png"}]})"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 2u);
    Items const nested = children(*all[1]);
    ASSERT_EQ(nested.size(), 1u);
    std::string text;
    EXPECT_EQ(nested[0]->getStringValue(text), DmStatus::kSuccess);
    EXPECT_EQ(text, "two.png");
    EXPECT_EQ(all[0]->getStringValue(text), DmStatus::kSuccess);
    EXPECT_EQ(text, "top.png");
}

TEST_F(DmMetadataReadingTest, FailedItemIsSkippedWithItsNestedItems) {
    EXPECT_EQ(
        loadItems(
            R"({"metaName": "bad", "metaValue": "?", "metadata": [{"metaName": "c", "metaValue": "true"}]},
                           {"metaName": "good", "metaValue": "true"})"),
        DmStatus::kFailure);
    Items const all = items();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0]->getName(), "good");
    EXPECT_EQ(m_library.takePrinted(),
              Lines{message("error", "Unknown value.", "The type of the value '?' is unknown.")});
}

TEST_F(DmMetadataReadingTest, ScalarsAmongItemsAreBadlyFormed) {
    EXPECT_EQ(loadItems(R"("loose", {"metaName": "good", "metaValue": "true"})"), DmStatus::kFailure);
    EXPECT_EQ(items().size(), 1u);
    EXPECT_EQ(m_library.takePrinted(),
              Lines{message("error", "Badly formed json file.", "The json file is badly formed.")});
}

// ---------------------------------------------------------------------------
// Where header metadata comes from

TEST_F(DmMetadataReadingTest, EveryHeaderObjectAddsToTheURI) {
    ASSERT_EQ(loadItems(R"({"metaName": "first", "metaValue": "true"})",
                        R"(, "header": [{"metadata": {"metaName": "second", "metaValue": "true"}},
                                        {"metadata": [{"metaName": "third", "metaValue": "true"}]}])"),
              DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0]->getName(), "first");
    EXPECT_EQ(all[1]->getName(), "second");
    EXPECT_EQ(all[2]->getName(), "third");
}

TEST_F(DmMetadataReadingTest, HeaderUnderAnUnknownRootKeyIsReadToo) {
    ASSERT_EQ(
        loadItems(R"({"metaName": "first", "metaValue": "true"})",
                  R"(, "extra": {"header": {"metadata": {"metaName": "nested", "metaValue": "true"}}})"),
        DmStatus::kSuccess);
    Items const all = items();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0]->getName(), "first");
    EXPECT_EQ(all[1]->getName(), "nested");
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmMetadataReadingTest, MetadataAtTheRootIsAnotherRootAndNoHeaderMetadata) {
    // Its item is walked as a root, whose two string members are badly formed in every pass.
    EXPECT_EQ(loadItems("", R"(, "metadata": {"metaName": "loose", "metaValue": "true"})"),
              DmStatus::kFailure);
    EXPECT_EQ(items(), Items{});
    EXPECT_EQ(m_library.takePrinted(),
              Lines(8, message("error", "Badly formed json file.", "The json file is badly formed.")));
}
