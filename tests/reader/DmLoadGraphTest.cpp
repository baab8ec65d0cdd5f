// The loadGraph family: how a spec, a reference, a URI or a path reaches a
// file, the statuses of a load, reloading, the printed log, and the URIs that
// a load registers.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmFileURI.h>
#include <KestoDM/assets/DmStreamURI.h>
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/library/DmUnknownDefinitionsSupport.h>
#include <KestoDM/platform/InputStream.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>
#include <KestoDM/types/DmStructType.h>

#include "graph/GraphTestSupport.h"
#include "reader/ReaderTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::graphText;
using KestoTest::line;
using KestoTest::longForm;
using KestoTest::PrintingLibrary;
using KestoTest::TempDir;

namespace {

using Lines = std::vector<std::string>;

/// Counts the ends of loads that it is told of.
class CountingSupport : public DmUnknownDefinitionsSupport {
public:
    void finishLoad(DmMessageLogger& logger) override {
        ++calls;
        lastLogger = &logger;
    }

    int calls = 0;
    DmMessageLogger* lastLogger = nullptr;
};

/// An operator that the library counts as one of its own.
class BuiltInOperator : public DmExternOperator {
public:
    BuiltInOperator() : DmExternOperator(InternalConstructor(), "builtIn", kSafe, std::string()) {}
    bool isBuiltIn() const override { return true; }
};

class DmLoadGraphTest : public testing::Test {
protected:
    /// The items named `name` on the metadata of `uri`.
    static std::size_t itemCount(DmURI const& uri, std::string const& name) {
        return uri.getMetadata()->find(name).size();
    }

    TempDir m_dir;
    PrintingLibrary m_library;
    DmLibrary::LoadOptions m_options;
};

} // namespace

// ---------------------------------------------------------------------------
// The four ways to a file

TEST_F(DmLoadGraphTest, LoadsAFileNamedInTheLongFileForm) {
    std::string const path = m_dir.write("a.json", graphText());
    EXPECT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
    EXPECT_TRUE(m_library->isJsonFileLoaded(path));
    std::shared_ptr<DmURI> const uri = m_library->findURI("a.json");
    ASSERT_NE(uri, nullptr);
    EXPECT_EQ(uri->getName(), "file:///a.json");
    EXPECT_EQ(m_library->findURI("file:///a.json"), uri);
    EXPECT_EQ(itemCount(*uri, "mvrkFileFormatVersion"), 1u);
}

TEST_F(DmLoadGraphTest, LoadsARelativeSpecFoundInASearchPath) {
    std::string const path = m_dir.write("graphs/sub/a.json", graphText());
    ASSERT_TRUE(m_library->addURISearchPath(m_dir.file("graphs")));
    EXPECT_EQ(m_library.load("halvern:sub/a.json"), DmStatus::kSuccess);
    EXPECT_TRUE(m_library->isJsonFileLoaded(path));
    ASSERT_NE(m_library->findURI("a.json"), nullptr);
    EXPECT_EQ(std::dynamic_pointer_cast<DmFileURI>(m_library->findURI("a.json"))->getFilePath(), path);
}

TEST_F(DmLoadGraphTest, LoadsTheShortFileForm) {
    std::string const path = m_dir.write("a.json", graphText());
    EXPECT_EQ(m_library.load("file:" + path), DmStatus::kSuccess);
    EXPECT_TRUE(m_library->isJsonFileLoaded(path));
}

TEST_F(DmLoadGraphTest, LoadsThroughAnAssetReference) {
    std::string const path = m_dir.write("a.json", graphText());
    auto const reference = std::make_shared<DmAssetReference>("halvern:" + path);
    EXPECT_EQ(m_library->loadGraph(reference, m_options), DmStatus::kSuccess);
    EXPECT_TRUE(reference->isResolved());
    EXPECT_TRUE(m_library->isJsonFileLoaded(path));
}

TEST_F(DmLoadGraphTest, NullAssetReferenceIsAnInvalidArgument) {
    EXPECT_EQ(m_library->loadGraph(std::shared_ptr<DmAssetReference>(), m_options),
              DmStatus::kInvalidArgument);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmLoadGraphTest, LoadsAStreamThroughItsReference) {
    std::istringstream text(graphText());
    StdInputStream input(text);
    auto const reference = std::make_shared<DmAssetReference>("stream:/graph", &input);
    EXPECT_EQ(m_library->loadGraph(reference, m_options), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
    ASSERT_EQ(m_library->getURIs().size(), 1u);
    std::shared_ptr<DmURI> const uri = m_library->getURIs().begin()->second;
    EXPECT_EQ(uri->getName(), "stream:/graph");
    EXPECT_NE(std::dynamic_pointer_cast<DmStreamURI>(uri), nullptr);
    EXPECT_EQ(itemCount(*uri, "mvrkFileFormatVersion"), 1u);
}

TEST_F(DmLoadGraphTest, LoadsThroughAFileURI) {
    std::string const path = m_dir.write("a.json", graphText());
    auto const uri = std::make_shared<DmFileURI>(path, "");
    EXPECT_EQ(m_library->loadGraph(std::shared_ptr<DmURI>(uri), m_options), DmStatus::kSuccess);
    EXPECT_TRUE(m_library->isJsonFileLoaded(path));
    EXPECT_EQ(itemCount(*uri, "mvrkFileFormatVersion"), 1u);
}

TEST_F(DmLoadGraphTest, InvalidURIIsAnInvalidArgumentWithoutMessage) {
    auto const uri = std::make_shared<DmFileURI>("graphs/", m_dir.path());
    ASSERT_FALSE(uri->isValid());
    EXPECT_EQ(m_library->loadGraph(std::shared_ptr<DmURI>(uri), m_options), DmStatus::kInvalidArgument);
    EXPECT_EQ(m_library->loadGraph(std::shared_ptr<DmURI>(), m_options), DmStatus::kInvalidArgument);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmLoadGraphTest, StreamURIWithoutStreamIsAnInvalidArgument) {
    auto const uri = std::make_shared<DmStreamURI>("stream:/none", static_cast<InputStream*>(nullptr));
    EXPECT_EQ(m_library->loadGraph(std::shared_ptr<DmURI>(uri), m_options), DmStatus::kInvalidArgument);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmLoadGraphTest, PathAndBaseRegisterTheirValidURI) {
    std::string const path = m_dir.write("a.json", graphText());
    EXPECT_EQ(m_library->loadGraph("a.json", m_dir.path(), m_options), DmStatus::kSuccess);
    std::shared_ptr<DmURI> const uri = m_library->findURI("a.json");
    ASSERT_NE(uri, nullptr);
    EXPECT_EQ(uri->getName(), "file:///a.json");
    EXPECT_EQ(std::dynamic_pointer_cast<DmFileURI>(uri)->getFilePath(), path);
    EXPECT_EQ(itemCount(*uri, "mvrkFileFormatVersion"), 1u);
    EXPECT_TRUE(m_library->isJsonFileLoaded(path));
}

TEST_F(DmLoadGraphTest, PathAndBaseUseTheURIOfTheRegister) {
    std::string const path = m_dir.write("a.json", graphText());
    m_dir.write("other/a.json", "");
    ASSERT_EQ(m_library->loadGraph("a.json", m_dir.path(), m_options), DmStatus::kSuccess);
    std::shared_ptr<DmURI> const uri = m_library->findURI("a.json");
    // The same path against another base finds the registered URI, which
    // names the first file: already loaded, so nothing is read.
    EXPECT_EQ(m_library->loadGraph("a.json", m_dir.file("other"), m_options), DmStatus::kSuccess);
    EXPECT_EQ(m_library->getURIs().size(), 1u);
    EXPECT_EQ(m_library->findURI("a.json"), uri);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmLoadGraphTest, AbsolutePathIsFoundAgainUnderItsOwnName) {
    std::string const path = m_dir.write("a.json", graphText());
    EXPECT_EQ(m_library->loadGraph(path, "", m_options), DmStatus::kSuccess);
    std::shared_ptr<DmURI> const uri = m_library->findURI(path);
    ASSERT_NE(uri, nullptr);
    // The long form of an absolute path keeps the path's own leading "/".
    EXPECT_EQ(uri->getName(), "file:///" + path);
    EXPECT_EQ(m_library->findURI("file:///" + path), uri);
    EXPECT_EQ(m_library->findURI("file://" + path), nullptr);
}

TEST_F(DmLoadGraphTest, PathAndBaseGivingAnInvalidURIRegisterNothing) {
    EXPECT_EQ(m_library->loadGraph("graphs/", m_dir.path(), m_options), DmStatus::kInvalidArgument);
    EXPECT_TRUE(m_library->getURIs().empty());
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmLoadGraphTest, PathAndBaseOfAMissingFileReportTheMissingFile) {
    EXPECT_EQ(m_library->loadGraph("none.json", m_dir.path(), m_options), DmStatus::kFileError);
    EXPECT_EQ(m_library.takePrinted(), Lines{line("error", "file:///none.json", "Non existing Json file.",
                                                  "Non existing Json file.")});
    EXPECT_NE(m_library->findURI("none.json"), nullptr);
}

// ---------------------------------------------------------------------------
// Unresolved references

TEST_F(DmLoadGraphTest, MissingFileIsAFileErrorWithoutMessage) {
    EXPECT_EQ(m_library.load("halvern:" + m_dir.file("none.json")), DmStatus::kFileError);
    EXPECT_EQ(m_library.load(longForm(m_dir.file("none.json"))), DmStatus::kFileError);
    EXPECT_EQ(m_library.load("file:" + m_dir.file("none.json")), DmStatus::kFileError);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
    EXPECT_EQ(m_library->getErrorLogger()->getMessageCount(), 0u);
    EXPECT_TRUE(m_library->getURIs().empty());
}

TEST_F(DmLoadGraphTest, StreamSpecWithoutStreamIsAFileError) {
    EXPECT_EQ(m_library.load("stream:/graph"), DmStatus::kFileError);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmLoadGraphTest, RelativeSpecWithNowhereToLookIsAnInvalidArgument) {
    EXPECT_EQ(m_library.load("halvern:a.json"), DmStatus::kInvalidArgument);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmLoadGraphTest, SpecWithoutAResolverIsAnInvalidArgument) {
    std::string const path = m_dir.write("a.json", graphText());
    EXPECT_EQ(m_library.load("nowhere:" + path), DmStatus::kInvalidArgument);
    EXPECT_EQ(m_library.load(path), DmStatus::kInvalidArgument);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
    EXPECT_FALSE(m_library->isJsonFileLoaded(path));
}

// ---------------------------------------------------------------------------
// Loading again

TEST_F(DmLoadGraphTest, SecondLoadSucceedsAtOnceAndAddsNothing) {
    std::string const path = m_dir.write("a.json", graphText());
    ASSERT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    // Not read again: a text that no longer parses goes unnoticed.
    m_dir.write("a.json", "");
    EXPECT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
    EXPECT_EQ(itemCount(*m_library->findURI("a.json"), "mvrkFileFormatVersion"), 1u);
}

TEST_F(DmLoadGraphTest, ReloadModeOtherThanOneAlsoSkipsALoadedFile) {
    std::string const path = m_dir.write("a.json", graphText());
    ASSERT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    m_dir.write("a.json", "");
    EXPECT_EQ(m_library.load(longForm(path), 2), DmStatus::kSuccess);
    EXPECT_EQ(m_library.load(longForm(path), 255), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmLoadGraphTest, ReloadModeOneReadsTheFileAgain) {
    std::string const path = m_dir.write("a.json", graphText());
    ASSERT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    EXPECT_EQ(m_library.load(longForm(path), 1), DmStatus::kSuccess);
    EXPECT_EQ(itemCount(*m_library->findURI("a.json"), "mvrkFileFormatVersion"), 2u);
    m_dir.write("a.json", "");
    EXPECT_EQ(m_library.load(longForm(path), 1), DmStatus::kReserved5);
    EXPECT_EQ(m_library.takePrinted(),
              Lines{line("error", path, "Asset has parsing errors.",
                         "Failed to parse " + path + " at position 1:1: The document is empty.")});
}

TEST_F(DmLoadGraphTest, FileThatFailsToParseIsNotMarkedAsLoaded) {
    std::string const path = m_dir.write("a.json", "{");
    EXPECT_EQ(m_library.load(longForm(path)), DmStatus::kReserved5);
    EXPECT_FALSE(m_library->isJsonFileLoaded(path));
    m_dir.write("a.json", graphText());
    EXPECT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
}

TEST_F(DmLoadGraphTest, FileWithoutHeaderIsMarkedAsLoadedAndSkippedNextTime) {
    std::string const path = m_dir.write("a.json", "{}");
    EXPECT_EQ(m_library.load(longForm(path)), DmStatus::kInvalidArgument);
    EXPECT_TRUE(m_library->isJsonFileLoaded(path));
    m_library.takePrinted();
    EXPECT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(), Lines{});
}

TEST_F(DmLoadGraphTest, ResetForgetsTheLoadedFiles) {
    std::string const path = m_dir.write("a.json", graphText());
    ASSERT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    ASSERT_TRUE(m_library->reset());
    EXPECT_FALSE(m_library->isJsonFileLoaded(path));
    EXPECT_EQ(m_library->findURI("a.json"), nullptr);
    EXPECT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    EXPECT_EQ(itemCount(*m_library->findURI("a.json"), "mvrkFileFormatVersion"), 1u);
}

// ---------------------------------------------------------------------------
// The result map

TEST_F(DmLoadGraphTest, ResultMapMayBeNull) {
    std::string const path = m_dir.write("a.json", graphText());
    EXPECT_EQ(m_library.load(longForm(path), 0, nullptr), DmStatus::kSuccess);
}

TEST_F(DmLoadGraphTest, ResultMapOfAFileWithoutCompoundsStaysEmpty) {
    std::string const path = m_dir.write("a.json", graphText());
    auto const result = std::make_shared<DmLibrary::CompoundMap>();
    EXPECT_EQ(m_library.load(longForm(path), 0, result), DmStatus::kSuccess);
    EXPECT_TRUE(result->empty());
}

// ---------------------------------------------------------------------------
// Statuses and the printed log

TEST_F(DmLoadGraphTest, ErrorReportedDuringAnOtherwiseSuccessfulLoadFailsIt) {
    std::string const path = m_dir.write("a.json", graphText(R"(, "extra": "scalar")"));
    EXPECT_EQ(m_library.load(longForm(path)), DmStatus::kFailure);
    std::string const badlyFormed =
        line("error", "file:///a.json", "Badly formed json file.", "The json file is badly formed.");
    EXPECT_EQ(m_library.takePrinted(), (Lines{badlyFormed, badlyFormed, badlyFormed, badlyFormed}));
}

TEST_F(DmLoadGraphTest, WarningAloneLeavesTheLoadSuccessful) {
    std::string const path =
        m_dir.write("a.json", "{" + KestoTest::kHeader + R"(, "header": {"other": "1"}})");
    EXPECT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(),
              Lines{line("warning", "file:///a.json", "File format version is not specified.",
                         "File format version is not specified in the header section of the json file "
                         "'file:///a.json'.")});
}

TEST_F(DmLoadGraphTest, LogIsPrintedAndClearedAtTheEndOfALoad) {
    std::string const path = m_dir.write("a.json", "{}");
    EXPECT_EQ(m_library.load(longForm(path)), DmStatus::kInvalidArgument);
    EXPECT_EQ(m_library->getErrorLogger()->getMessageCount(), 0u);
    EXPECT_EQ(m_library.printedText(),
              "error: file:///a.json: Invalid Kesto JSON file.: 'file:///a.json' is not a valid Kesto JSON "
              "file: Missing the header's 'file format version' metadata.\n\n");
}

TEST_F(DmLoadGraphTest, MessagesOfTheHostBeforeALoadArePrintedWithIt) {
    m_library->getErrorLogger()->reportMessage(std::make_shared<DmMessageReport>(
        BaMessageTypes::kMessageError, "host", "Host error.", "Reported before the load."));
    std::string const path = m_dir.write("a.json", graphText());
    // The error came before the load: the load itself succeeds.
    EXPECT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(),
              Lines{line("error", "host", "Host error.", "Reported before the load.")});
    EXPECT_EQ(m_library->getErrorLogger()->getMessageCount(), 0u);
}

TEST(DmLoadGraphWithoutStream, MessagesStayInTheLogAndOnlyNewErrorsFailALoad) {
    TempDir dir;
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), nullptr, DmExternOperator::kSafe);
    DmLibrary::LoadOptions const options;
    std::string const bad = dir.write("bad.json", graphText(R"(, "extra": "1")"));
    std::string const good = dir.write("good.json", graphText());
    EXPECT_EQ(library->loadGraph(longForm(bad), options), DmStatus::kFailure);
    EXPECT_EQ(library->getErrorLogger()->getErrorCount(), 4u);
    EXPECT_EQ(library->loadGraph(longForm(good), options), DmStatus::kSuccess);
    EXPECT_EQ(library->getErrorLogger()->getErrorCount(), 4u);
    std::vector<std::string> const records = KestoTest::recordLines(*library->getErrorLogger());
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[0],
              line("error", "file:///bad.json", "Badly formed json file.", "The json file is badly formed."));
}

// ---------------------------------------------------------------------------
// Two files of one name

TEST_F(DmLoadGraphTest, SecondFileOfTheSameNameSharesTheURIAndIsReportedAsAPotentialDuplicate) {
    std::string const first = m_dir.write("one/a.json", graphText());
    std::string const second = m_dir.write("two/a.json", graphText());
    ASSERT_EQ(m_library.load(longForm(first)), DmStatus::kSuccess);
    std::shared_ptr<DmURI> const uri = m_library->findURI("a.json");
    EXPECT_EQ(m_library.load(longForm(second)), DmStatus::kSuccess);
    EXPECT_EQ(m_library.takePrinted(),
              Lines{line("warning", "file:///a.json", "Potential duplicate Json file of: '" + first + "'.",
                         "Potential duplicate Json file of: '" + first + "', found  at: '" + second + "'.")});
    EXPECT_EQ(m_library->getURIs().size(), 1u);
    EXPECT_EQ(m_library->findURI("a.json"), uri);
    EXPECT_TRUE(m_library->isJsonFileLoaded(second));
    // Both headers landed on the shared URI.
    EXPECT_EQ(itemCount(*uri, "mvrkFileFormatVersion"), 2u);
}

// ---------------------------------------------------------------------------
// The unknown-definitions support

TEST_F(DmLoadGraphTest, NoSupportUntilOneIsSet) {
    EXPECT_EQ(m_library->getUnknownDefinitionsSupport(), nullptr);
    auto const support = std::make_shared<CountingSupport>();
    m_library->setUnknownDefinitionsSupport(support);
    EXPECT_EQ(m_library->getUnknownDefinitionsSupport(), support);
    m_library->setUnknownDefinitionsSupport(nullptr);
    EXPECT_EQ(m_library->getUnknownDefinitionsSupport(), nullptr);
}

TEST_F(DmLoadGraphTest, EachLoadFinishesTheSupportOnceWithTheLibrarysLogger) {
    auto const support = std::make_shared<CountingSupport>();
    m_library->setUnknownDefinitionsSupport(support);
    std::string const path = m_dir.write("a.json", graphText());
    ASSERT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    EXPECT_EQ(support->calls, 1);
    EXPECT_EQ(support->lastLogger, m_library->getErrorLogger().get());
    // Skipped as loaded, and still a load.
    ASSERT_EQ(m_library.load(longForm(path)), DmStatus::kSuccess);
    EXPECT_EQ(support->calls, 2);
}

TEST_F(DmLoadGraphTest, FailedReadStillFinishesTheSupport) {
    auto const support = std::make_shared<CountingSupport>();
    m_library->setUnknownDefinitionsSupport(support);
    EXPECT_EQ(m_library.load(longForm(m_dir.write("a.json", ""))), DmStatus::kReserved5);
    EXPECT_EQ(support->calls, 1);
}

TEST_F(DmLoadGraphTest, UnresolvedLoadNeverReachesTheSupport) {
    auto const support = std::make_shared<CountingSupport>();
    m_library->setUnknownDefinitionsSupport(support);
    EXPECT_EQ(m_library.load(longForm(m_dir.file("none.json"))), DmStatus::kFileError);
    EXPECT_EQ(support->calls, 0);
}

TEST_F(DmLoadGraphTest, ResetDropsTheSupport) {
    auto const support = std::make_shared<CountingSupport>();
    m_library->setUnknownDefinitionsSupport(support);
    ASSERT_TRUE(m_library->reset());
    EXPECT_EQ(m_library->getUnknownDefinitionsSupport(), nullptr);
    EXPECT_EQ(m_library.load(longForm(m_dir.write("a.json", graphText()))), DmStatus::kSuccess);
    EXPECT_EQ(support->calls, 0);
    EXPECT_EQ(support.use_count(), 1);
}

// ---------------------------------------------------------------------------
// setURIForExternalOperatorsAndTypes

TEST_F(DmLoadGraphTest, URIForOperatorsAndTypesReachesTheLibrarysOwnDefinitionsOnly) {
    DmNamespace& ns = *m_library->getGlobalNamespace()->fetchNamespace("geo");
    auto const op = DmExternOperator::createExternOperator("scale", DmExternOperator::kSafe);
    ASSERT_EQ(op->setScope(&ns, kAsOverload), DmStatus::kSuccess);
    auto const builtIn = std::make_shared<BuiltInOperator>();
    ASSERT_EQ(builtIn->setScope(&ns, kAsOverload), DmStatus::kSuccess);
    auto const point = KestoTest::makeStruct("Point");
    ASSERT_EQ(point->setNamespace(&ns, kFailOnClash), DmStatus::kSuccess);
    auto const handle = KestoTest::makeClass("Handle");
    ASSERT_EQ(handle->setNamespace(&ns, kFailOnClash), DmStatus::kSuccess);
    auto const colour = KestoTest::makeEnum("Colour");
    ASSERT_EQ(colour->setNamespace(&ns, kFailOnClash), DmStatus::kSuccess);
    std::shared_ptr<DmBaseType const> array;
    ASSERT_TRUE(m_library->retrieveType("array<geo::Point>", array));

    auto const uri = std::make_shared<DmFileURI>("types.json", m_dir.path());
    m_library->setURIForExternalOperatorsAndTypes(uri);

    EXPECT_EQ(op->getURI(), uri);
    EXPECT_EQ(builtIn->getURI(), nullptr);
    EXPECT_EQ(point->getURI(), uri);
    EXPECT_EQ(handle->getURI(), uri);
    EXPECT_EQ(colour->getURI(), uri);
    EXPECT_EQ(array->getURI(), nullptr);
    EXPECT_EQ(DmLibrary::getIntType()->getURI(), nullptr);
    EXPECT_EQ(DmLibrary::getArrayOfAnyType()->getURI(), nullptr);
    for (auto const& entry : m_library->getNodeDefs()) {
        auto const set = std::dynamic_pointer_cast<DmOverloadSet>(entry.second);
        if (set && entry.first.rfind("Core::", 0) == 0) {
            for (auto const& overload : set->getOverloads()) {
                EXPECT_EQ(overload->getURI(), nullptr) << entry.first;
            }
        }
    }
}

TEST_F(DmLoadGraphTest, URIForOperatorsAndTypesReplacesAnEarlierOne) {
    auto const point = KestoTest::makeStruct("Point");
    ASSERT_EQ(point->setNamespace(m_library->getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    auto const first = std::make_shared<DmFileURI>("first.json", m_dir.path());
    auto const second = std::make_shared<DmFileURI>("second.json", m_dir.path());
    m_library->setURIForExternalOperatorsAndTypes(first);
    m_library->setURIForExternalOperatorsAndTypes(second);
    EXPECT_EQ(point->getURI(), second);
    m_library->setURIForExternalOperatorsAndTypes(nullptr);
    EXPECT_EQ(point->getURI(), nullptr);
}
