#pragma once

#include "graph/ModelTestSupport.h"

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/graph/DmJobPort.h>

#include <gtest/gtest.h>

namespace KestoTest {

/// ModelTest that also expects the job ports of operators to be gone when a
/// test ends.
class OperatorTest : public ModelTest {
protected:
    void SetUp() override {
        ModelTest::SetUp();
        m_jobPorts = count<Kesto::DmJobPort>();
    }

    void TearDown() override {
        EXPECT_EQ(count<Kesto::DmJobPort>(), m_jobPorts) << "job ports left alive";
        ModelTest::TearDown();
    }

private:
    unsigned int m_jobPorts = 0;
};

} // namespace KestoTest
