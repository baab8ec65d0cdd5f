// The guard that brackets a load: only the outermost guard of a support
// object finishes that object's work.
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/library/DmUnknownDefinitionsSupport.h>

#include "library/DmUnknownDefinitionsGuard.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

using namespace Kesto;
using Kesto::Internal::UnknownDefinitionsGuard;

namespace {

class CountingSupport : public DmUnknownDefinitionsSupport {
public:
    void finishLoad(DmMessageLogger& logger) override {
        ++calls;
        lastLogger = &logger;
    }

    int calls = 0;
    DmMessageLogger* lastLogger = nullptr;
};

class DmUnknownDefinitionsGuardTest : public testing::Test {
protected:
    std::shared_ptr<CountingSupport> m_support = std::make_shared<CountingSupport>();
    std::shared_ptr<DmMessageLogger> m_logger = std::make_shared<DmMessageLogger>(nullptr);
};

} // namespace

TEST_F(DmUnknownDefinitionsGuardTest, GuardFinishesTheSupportWhenItEnds) {
    {
        UnknownDefinitionsGuard const guard(m_support, m_logger);
        EXPECT_TRUE(UnknownDefinitionsGuard::isActive(m_support.get()));
        EXPECT_EQ(m_support->calls, 0);
    }
    EXPECT_FALSE(UnknownDefinitionsGuard::isActive(m_support.get()));
    EXPECT_EQ(m_support->calls, 1);
    EXPECT_EQ(m_support->lastLogger, m_logger.get());
}

TEST_F(DmUnknownDefinitionsGuardTest, OnlyTheOutermostGuardFinishes) {
    {
        UnknownDefinitionsGuard const outer(m_support, m_logger);
        {
            UnknownDefinitionsGuard const inner(m_support, m_logger);
            { UnknownDefinitionsGuard const innermost(m_support, m_logger); }
            EXPECT_EQ(m_support->calls, 0);
            EXPECT_TRUE(UnknownDefinitionsGuard::isActive(m_support.get()));
        }
        EXPECT_EQ(m_support->calls, 0);
        EXPECT_TRUE(UnknownDefinitionsGuard::isActive(m_support.get()));
    }
    EXPECT_EQ(m_support->calls, 1);
}

TEST_F(DmUnknownDefinitionsGuardTest, NestedGuardUsesTheOuterLoggerWhenFinishing) {
    auto const innerLogger = std::make_shared<DmMessageLogger>(nullptr);
    {
        UnknownDefinitionsGuard const outer(m_support, m_logger);
        UnknownDefinitionsGuard const inner(m_support, innerLogger);
    }
    EXPECT_EQ(m_support->calls, 1);
    EXPECT_EQ(m_support->lastLogger, m_logger.get());
}

TEST_F(DmUnknownDefinitionsGuardTest, GuardsOfTwoSupportsEachFinishTheirOwn) {
    auto const other = std::make_shared<CountingSupport>();
    {
        UnknownDefinitionsGuard const first(m_support, m_logger);
        { UnknownDefinitionsGuard const second(other, m_logger); }
        EXPECT_EQ(other->calls, 1);
        EXPECT_EQ(m_support->calls, 0);
    }
    EXPECT_EQ(m_support->calls, 1);
    EXPECT_EQ(other->calls, 1);
}

TEST_F(DmUnknownDefinitionsGuardTest, SupportCanBeGuardedAgainAfterTheOutermostEnded) {
    { UnknownDefinitionsGuard const first(m_support, m_logger); }
    { UnknownDefinitionsGuard const second(m_support, m_logger); }
    EXPECT_EQ(m_support->calls, 2);
}

TEST_F(DmUnknownDefinitionsGuardTest, NullSupportDoesNothing) {
    {
        UnknownDefinitionsGuard const guard(nullptr, m_logger);
        EXPECT_FALSE(UnknownDefinitionsGuard::isActive(nullptr));
    }
    EXPECT_EQ(m_logger->getMessageCount(), 0u);
}

TEST_F(DmUnknownDefinitionsGuardTest, GuardKeepsTheSupportAndTheLoggerAlive) {
    CountingSupport* const support = m_support.get();
    std::weak_ptr<DmMessageLogger> const logger = m_logger;
    std::optional<UnknownDefinitionsGuard> guard;
    guard.emplace(m_support, m_logger);
    m_support.reset();
    m_logger.reset();
    EXPECT_FALSE(logger.expired());
    EXPECT_TRUE(UnknownDefinitionsGuard::isActive(support));
    guard.reset();
    EXPECT_TRUE(logger.expired());
}

TEST_F(DmUnknownDefinitionsGuardTest, GuardWithoutLoggerLeavesButDoesNotFinish) {
    {
        UnknownDefinitionsGuard const guard(m_support, nullptr);
        EXPECT_TRUE(UnknownDefinitionsGuard::isActive(m_support.get()));
    }
    EXPECT_FALSE(UnknownDefinitionsGuard::isActive(m_support.get()));
    EXPECT_EQ(m_support->calls, 0);
}
