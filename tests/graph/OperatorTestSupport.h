#pragma once

#include "graph/ModelTestSupport.h"

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/graph/DmCppOperator.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmJobPort.h>
#include <KestoDM/types/DmExternSymbol.h>

#include <gtest/gtest.h>

namespace KestoTest {

/// ModelTest that also expects the external operators, their symbols and
/// their job ports to be gone when a test ends.
class OperatorTest : public ModelTest {
protected:
    void SetUp() override {
        ModelTest::SetUp();
        m_externOperators = count<Kesto::DmExternOperator>();
        m_cppOperators = count<Kesto::DmCppOperator>();
        m_symbols = count<Kesto::DmExternSymbol>();
        m_jobPorts = count<Kesto::DmJobPort>();
    }

    void TearDown() override {
        EXPECT_EQ(count<Kesto::DmExternOperator>(), m_externOperators) << "external operators left alive";
        EXPECT_EQ(count<Kesto::DmCppOperator>(), m_cppOperators) << "C++ operators left alive";
        EXPECT_EQ(count<Kesto::DmExternSymbol>(), m_symbols) << "extern symbols left alive";
        EXPECT_EQ(count<Kesto::DmJobPort>(), m_jobPorts) << "job ports left alive";
        ModelTest::TearDown();
    }

private:
    unsigned int m_externOperators = 0;
    unsigned int m_cppOperators = 0;
    unsigned int m_symbols = 0;
    unsigned int m_jobPorts = 0;
};

} // namespace KestoTest
