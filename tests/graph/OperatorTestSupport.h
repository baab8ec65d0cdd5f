#pragma once

#include "graph/ModelTestSupport.h"

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmJobPort.h>

#include <gtest/gtest.h>

namespace KestoTest {

/// ModelTest that also expects the external operators and their job ports
/// to be gone when a test ends.
class OperatorTest : public ModelTest {
protected:
    void SetUp() override {
        ModelTest::SetUp();
        m_externOperators = count<Kesto::DmExternOperator>();
        m_jobPorts = count<Kesto::DmJobPort>();
    }

    void TearDown() override {
        EXPECT_EQ(count<Kesto::DmExternOperator>(), m_externOperators) << "external operators left alive";
        EXPECT_EQ(count<Kesto::DmJobPort>(), m_jobPorts) << "job ports left alive";
        ModelTest::TearDown();
    }

private:
    unsigned int m_externOperators = 0;
    unsigned int m_jobPorts = 0;
};

} // namespace KestoTest
