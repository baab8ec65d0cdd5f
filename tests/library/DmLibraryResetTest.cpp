// DmLibrary::reset: what goes, what is made again, what stays.
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaMessageCategory.h>
#include <KestoDM/platform/BaMessageTypes.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmStructType.h>

#include "graph/GraphTestSupport.h"
#include "library/BuiltInsTestSupport.h"
#include "library/DmLibraryFaults.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::keysOf;
using KestoTest::makeClass;
using KestoTest::makeStruct;

namespace {

using Names = std::vector<std::string>;

class DmLibraryReset : public testing::Test {
protected:
    void SetUp() override {
        Internal::setFailLibraryInitialization(false);
        m_library =
            DmLibrary::newLibrary(std::make_shared<BaContext>(), &m_stream, DmExternOperator::kUnsafe);
        ASSERT_NE(m_library, nullptr);
    }

    void TearDown() override { Internal::setFailLibraryInitialization(false); }

    /// Namespaces a, a::b, c; a struct in a, a class in c, a struct at the top
    /// and two arrays: the kinds of content that reset must drop.
    void fill() {
        auto const& global = m_library->getGlobalNamespace();
        ASSERT_EQ(makeStruct("T")->setNamespace(global->fetchNamespace("a").get(), kFailOnClash),
                  DmStatus::kSuccess);
        global->fetchNamespace("a::b");
        ASSERT_EQ(makeClass("C")->setNamespace(global->fetchNamespace("c").get(), kFailOnClash),
                  DmStatus::kSuccess);
        ASSERT_EQ(makeStruct("Top")->setNamespace(global.get(), kFailOnClash), DmStatus::kSuccess);
        std::shared_ptr<DmBaseType const> out;
        ASSERT_TRUE(m_library->retrieveType("array<array<a::T>>", out));
        m_library->addResourceFilePath("/resources");
        m_library->setJsonFileAsLoaded("/graphs/a.json");
    }

    std::ostringstream m_stream;
    std::shared_ptr<DmLibrary> m_library;
};

struct Counts {
    unsigned int namespaces = DmInstanceCounter<DmNamespace>::getInstanceCount();
    unsigned int scopes = DmInstanceCounter<DmScope>::getInstanceCount();
    unsigned int types = DmInstanceCounter<DmBaseType>::getInstanceCount();
    unsigned int structs = DmInstanceCounter<DmStructType>::getInstanceCount();
    unsigned int classes = DmInstanceCounter<DmClassType>::getInstanceCount();
    unsigned int arrays = DmInstanceCounter<DmArrayType>::getInstanceCount();
    unsigned int loggers = DmInstanceCounter<DmMessageLogger>::getInstanceCount();
    unsigned int reports = DmInstanceCounter<DmMessageReport>::getInstanceCount();
};

void expectSameCounts(Counts const& expected) {
    Counts const now;
    EXPECT_EQ(now.namespaces, expected.namespaces);
    EXPECT_EQ(now.scopes, expected.scopes);
    EXPECT_EQ(now.types, expected.types);
    EXPECT_EQ(now.structs, expected.structs);
    EXPECT_EQ(now.classes, expected.classes);
    EXPECT_EQ(now.arrays, expected.arrays);
    EXPECT_EQ(now.loggers, expected.loggers);
    EXPECT_EQ(now.reports, expected.reports);
}

} // namespace

TEST_F(DmLibraryReset, ResetSucceeds) {
    fill();
    EXPECT_TRUE(m_library->reset());
}

TEST_F(DmLibraryReset, ResetLeavesNoEntityOfTheOldGlobalNamespaceAlive) {
    Counts const fresh;
    fill();
    m_library->getErrorLogger()->reportMessage(
        std::make_shared<DmMessageReport>(BaMessageTypes::kMessageWarning, "<value>", "w", "pending"));
    ASSERT_TRUE(m_library->reset());
    expectSameCounts(fresh);
}

TEST_F(DmLibraryReset, ResetMakesANewGlobalNamespaceWithOnlyTheBuiltIns) {
    fill();
    std::weak_ptr<DmNamespace> const oldWeak = m_library->getGlobalNamespace();
    ASSERT_TRUE(m_library->reset());
    auto const& global = m_library->getGlobalNamespace();
    ASSERT_NE(global, nullptr);
    EXPECT_TRUE(oldWeak.expired());
    EXPECT_EQ(global->getName(), "_KestoGlobalNamespace");
    EXPECT_TRUE(global->isGlobalNamespace());
    EXPECT_TRUE(global->getTypes().empty());
    EXPECT_EQ(keysOf(global->getNestedNamespaces()), Names{"Core"});
}

TEST_F(DmLibraryReset, ResetEmptiesTheResourceFilePaths) {
    fill();
    ASSERT_FALSE(m_library->getResourceFilePaths().empty());
    ASSERT_TRUE(m_library->reset());
    EXPECT_TRUE(m_library->getResourceFilePaths().empty());
}

TEST_F(DmLibraryReset, ResetEmptiesTheTableOfJsonFiles) {
    fill();
    ASSERT_TRUE(m_library->isJsonFileLoaded("/graphs/a.json"));
    ASSERT_TRUE(m_library->reset());
    EXPECT_FALSE(m_library->isJsonFileLoaded("/graphs/a.json"));
    EXPECT_TRUE(m_library->getJsonFiles().empty());
}

TEST_F(DmLibraryReset, ResetMakesANewLoggerOnTheSameStream) {
    auto const oldLogger = m_library->getErrorLogger();
    ASSERT_TRUE(m_library->reset());
    ASSERT_NE(m_library->getErrorLogger(), nullptr);
    EXPECT_NE(m_library->getErrorLogger(), oldLogger);
    EXPECT_EQ(m_library->getErrorLogger()->getErrorStream(), &m_stream);
    EXPECT_EQ(m_library->getGlobalNamespace()->getLogger(), m_library->getErrorLogger());
}

TEST_F(DmLibraryReset, ResetLosesUnprintedMessages) {
    auto const oldLogger = m_library->getErrorLogger();
    oldLogger->reportMessage(
        std::make_shared<DmMessageReport>(BaMessageTypes::kMessageError, "<value>", "lost", "never printed"));
    ASSERT_TRUE(m_library->reset());
    EXPECT_EQ(oldLogger->getMessageCount(), 0u);
    EXPECT_EQ(m_library->getErrorLogger()->getMessageCount(), 0u);
    m_library.reset();
    EXPECT_EQ(m_stream.str(), "");
}

TEST_F(DmLibraryReset, ResetKeepsTheContextAndTheCancellationPolicy) {
    auto const context = m_library->getContext();
    ASSERT_TRUE(m_library->reset());
    EXPECT_EQ(m_library->getContext(), context);
    EXPECT_EQ(m_library->getDefaultCancellationPolicy(), DmExternOperator::kUnsafe);
}

TEST_F(DmLibraryReset, ResetKeepsTheSingletonsTheSameObjects) {
    fill();
    DmBaseType const* const intType = DmLibrary::getIntType().get();
    DmBaseType const* const arrayOfAny = DmLibrary::getArrayOfAnyType().get();
    DmBaseType const* const undefined = DmLibrary::getUndefinedType().get();
    ASSERT_TRUE(m_library->reset());
    EXPECT_EQ(DmLibrary::getIntType().get(), intType);
    EXPECT_EQ(DmLibrary::getArrayOfAnyType().get(), arrayOfAny);
    EXPECT_EQ(DmLibrary::getUndefinedType().get(), undefined);
    std::shared_ptr<DmBaseType const> out;
    ASSERT_TRUE(m_library->retrieveType("int", out));
    EXPECT_EQ(out.get(), intType);
}

TEST_F(DmLibraryReset, ResetLeavesTheProcessWideNamespacesUnchanged) {
    fill();
    DmNamespace const* const builtIn = DmLibrary::getBuiltInNamespace().get();
    DmNamespace const* const reserved = DmLibrary::getReservedNamespace().get();
    auto const builtInTypes = keysOf(DmLibrary::getBuiltInNamespace()->getTypes());
    auto const reservedTypes = keysOf(DmLibrary::getReservedNamespace()->getTypes());
    ASSERT_TRUE(m_library->reset());
    EXPECT_EQ(DmLibrary::getBuiltInNamespace().get(), builtIn);
    EXPECT_EQ(DmLibrary::getReservedNamespace().get(), reserved);
    EXPECT_EQ(keysOf(DmLibrary::getBuiltInNamespace()->getTypes()), builtInTypes);
    EXPECT_EQ(keysOf(DmLibrary::getReservedNamespace()->getTypes()), reservedTypes);
    EXPECT_EQ(DmLibrary::getIntType()->getNamespace(), builtIn);
}

TEST_F(DmLibraryReset, ResetTwiceEndsInTheSameStateAsOnce) {
    fill();
    ASSERT_TRUE(m_library->reset());
    auto const typesOnce = keysOf(m_library->getTypes(true));
    Counts const once;
    fill();
    ASSERT_TRUE(m_library->reset());
    ASSERT_TRUE(m_library->reset());
    EXPECT_EQ(keysOf(m_library->getTypes(true)), typesOnce);
    EXPECT_EQ(keysOf(m_library->getGlobalNamespace()->getNestedNamespaces()), Names{"Core"});
    expectSameCounts(once);
}

TEST_F(DmLibraryReset, ContentFetchedBeforeResetStaysAliveWhileShared) {
    fill();
    auto const ns = m_library->getGlobalNamespace()->fetchNamespace("a");
    std::shared_ptr<DmBaseType const> type;
    ASSERT_TRUE(m_library->retrieveType("a::T", type));
    ASSERT_TRUE(m_library->reset());
    EXPECT_EQ(ns->getName(), "a");
    EXPECT_EQ(type->getName(), "T");
    EXPECT_EQ(ns->getTypes().at("T"), type);
}

TEST_F(DmLibraryReset, ContentFetchedBeforeResetNoLongerBelongsToTheLibrary) {
    fill();
    std::shared_ptr<DmBaseType const> type;
    ASSERT_TRUE(m_library->retrieveType("a::T", type));
    ASSERT_TRUE(m_library->reset());
    std::shared_ptr<DmBaseType const> out;
    EXPECT_FALSE(m_library->retrieveType("a::T", out));
    EXPECT_FALSE(m_library->getTypes(false).contains("a::T"));
    EXPECT_EQ(keysOf(m_library->getConstNamespaces()), KestoTest::builtInNamespaceNames());
}

TEST_F(DmLibraryReset, ArraysAreMadeAnewAfterReset) {
    std::weak_ptr<DmBaseType const> const before = m_library->getArrayType(DmLibrary::getIntType());
    ASSERT_FALSE(before.expired());
    ASSERT_TRUE(m_library->reset());
    EXPECT_TRUE(before.expired());
    auto const after = m_library->getArrayType(DmLibrary::getIntType());
    ASSERT_NE(after, nullptr);
    EXPECT_EQ(after->getNamespace(), m_library->getGlobalNamespace().get());
}

TEST_F(DmLibraryReset, FailedInitializationInResetIsReportedAndReturnsFalse) {
    Internal::setFailLibraryInitialization(true);
    bool const result = m_library->reset();
    Internal::setFailLibraryInitialization(false);
    EXPECT_FALSE(result);
    auto const& logger = m_library->getErrorLogger();
    ASSERT_NE(logger, nullptr);
    ASSERT_EQ(logger->getMessageCount(), 1u);
    auto const report = std::dynamic_pointer_cast<DmMessageReport>(logger->begin().getRecord());
    ASSERT_NE(report, nullptr);
    EXPECT_EQ(report->getInternalCategory(), BaMessageTypes::kMessageError);
    EXPECT_EQ(report->getCategory(), BaMessageCategory::kError);
    EXPECT_EQ(report->getTitle(), "the library could not be initialized");
    EXPECT_EQ(report->getDescription(), "library initialization failed");
}

TEST_F(DmLibraryReset, FailedResetStillLeavesAUsableLibrary) {
    Internal::setFailLibraryInitialization(true);
    EXPECT_FALSE(m_library->reset());
    Internal::setFailLibraryInitialization(false);
    ASSERT_NE(m_library->getGlobalNamespace(), nullptr);
    EXPECT_NE(m_library->getArrayType(DmLibrary::getIntType()), nullptr);
    EXPECT_TRUE(m_library->reset());
    EXPECT_EQ(m_library->getErrorLogger()->getMessageCount(), 0u);
}
