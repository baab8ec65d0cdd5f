// Every graph file of the reader corpus (tests/data/reader) loaded alone into
// a fresh library. A good file loads without a word; a file named "_bad_"
// prints exactly the lines of its ".expected" file and ends with its status.
// Whatever a load made is gone with the library.
#include "graph/ModelTestSupport.h"
#include "reader/CorpusExpectations.h"
#include "reader/ReaderTestSupport.h"

#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmEntity.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmMetadata.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using KestoTest::CorpusExpectation;

std::string const kCorpus = std::string(KESTODM_TEST_DATA_DIR) + "/reader";

class DmReaderCorpusTest : public KestoTest::ModelTest, public ::testing::WithParamInterface<std::string> {
protected:
    void SetUp() override {
        ModelTest::SetUp();
        expectGraphsBackAtEnd();
        expectBackAtEnd<Kesto::DmEntity>("entities");
        expectBackAtEnd<Kesto::DmBaseType>("types");
        expectBackAtEnd<Kesto::DmMetadata>("metadata trees");
        expectBackAtEnd<Kesto::DmLibrary>("libraries");
    }
};

TEST_P(DmReaderCorpusTest, LoadsAloneWithExactlyItsMessagesAndLeavesNothingBehind) {
    std::string const name = GetParam();
    CorpusExpectation const expected = KestoTest::expectationOf(kCorpus, name);
    ASSERT_TRUE(expected.problem.empty()) << expected.problem;
    {
        KestoTest::PrintingLibrary library;
        Kesto::DmStatus const status = library.load(KestoTest::longForm(kCorpus + "/" + name));
        std::vector<std::string> const printed = library.takePrinted();
        EXPECT_EQ(printed, expected.lines) << KestoTest::describeDifference(expected.lines, printed);
        EXPECT_EQ(status, expected.status);
    }
}

INSTANTIATE_TEST_SUITE_P(Corpus, DmReaderCorpusTest, ::testing::ValuesIn(KestoTest::corpusFiles(kCorpus)),
                         [](::testing::TestParamInfo<std::string> const& info) {
                             return KestoTest::testNameOf(info.param);
                         });

TEST(DmReaderCorpusExpectations, EveryBadFileHasItsExpectationsAndEveryExpectationItsFile) {
    for (std::string const& name : KestoTest::corpusFiles(kCorpus)) {
        bool const bad = name.find("_bad_") != std::string::npos;
        EXPECT_EQ(KestoTest::hasSidecar(kCorpus, name), bad) << name;
    }
    for (std::string const& sidecar : KestoTest::sidecarFiles(kCorpus)) {
        EXPECT_TRUE(KestoTest::hasGraphFileFor(kCorpus, sidecar)) << sidecar << " has no graph file";
    }
}

// The reader's messages that a file can give: each is given by some "_bad_"
// file of the corpus.
TEST(DmReaderCorpusExpectations, TogetherTheBadFilesGiveEveryMessageOfTheReader) {
    std::vector<std::string> printedLines;
    for (std::string const& sidecar : KestoTest::sidecarFiles(kCorpus)) {
        CorpusExpectation const expected = KestoTest::expectationOfSidecar(kCorpus, sidecar);
        printedLines.insert(printedLines.end(), expected.lines.begin(), expected.lines.end());
    }
    std::vector<std::string> missing;
    for (KestoTest::MessagePattern const& pattern : KestoTest::readerMessages(kCorpus + "/messages.txt")) {
        if (!pattern.matchesAnyOf(printedLines)) {
            missing.push_back(pattern.text);
        }
    }
    std::string list;
    for (std::string const& text : missing) {
        list += "\n  " + text;
    }
    EXPECT_TRUE(missing.empty()) << missing.size() << " messages are given by no bad file:" << list;
}

} // namespace
