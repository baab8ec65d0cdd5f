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
        expectBackAtEnd<Kesto::DmExternOperator>("external operators");
        expectBackAtEnd<Kesto::DmCppOperator>("C++ operators");
        expectBackAtEnd<Kesto::DmExternSymbol>("extern symbols");
        expectBackAtEnd<Kesto::DmJobPort>("job ports");
    }
};

} // namespace KestoTest
