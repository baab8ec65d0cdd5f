// The loop objects of compounds in a graph file: their state and in/out
// port links, and what is refused.
#include <KestoDM/graph/DmForEachCompound.h>
#include <KestoDM/graph/DmIterateCompound.h>
#include <KestoDM/graph/DmWhileCompound.h>

#include "reader/CompoundReadingSupport.h"

#include <gtest/gtest.h>

using namespace Kesto;
using KestoTest::joined;

namespace {

/// An input "i" and an output "o" of arrays of int.
std::string const kPorts = R"("ports": [{"portName": "i", "portDirection": "input", "portType": "array<int>"},
                                        {"portName": "o", "portDirection": "output", "portType": "array<int>"}])";

class DmReadLoopsTest : public KestoTest::CompoundFileTest {
protected:
    /// One loop "l" of the kind `key` with the specialisation `rows`.
    DmStatus loadLoop(std::string const& key, std::string const& rows) {
        return loadCompounds(R"([{"name": "l", )" + kPorts + R"(, ")" + key + R"(": {"ports": )" + rows +
                             "}}]");
    }

    /// The description of the port `name` inside the loop, on its interface node.
    DmPortDescription const* description(std::string const& name) const {
        auto const port = (*compound("l")->getSelfNode())[name];
        return port ? port->getPortDescription().get() : nullptr;
    }
};

} // namespace

TEST_F(DmReadLoopsTest, WhileLoopLinksItsStatePorts) {
    ASSERT_EQ(
        loadLoop("whileCompound", R"({"portKind": "state", "inputPortName": "i", "outputPortName": "o"})"),
        DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    ASSERT_TRUE(std::dynamic_pointer_cast<DmWhileCompound>(compound("l")));
    ASSERT_TRUE(description("i") && description("i")->getLinkedPort());
    EXPECT_EQ(description("i")->getLinkedPort()->getName(), "o");
    EXPECT_EQ(description("i")->getIterationAttribute(), kIterationState);
}

TEST_F(DmReadLoopsTest, IterateLoopLinksItsStatePorts) {
    ASSERT_EQ(loadLoop("iterateCompound",
                       R"([{"portKind": "state", "inputPortName": "i", "outputPortName": "o"}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    ASSERT_TRUE(description("i")->getLinkedPort());
    EXPECT_EQ(description("i")->getLinkedPort()->getName(), "o");
}

TEST_F(DmReadLoopsTest, ForEachLoopLinksItsInOutPorts) {
    ASSERT_EQ(loadLoop("forEachCompound",
                       R"([{"portKind": "inOutTarget", "inputPortName": "i", "outputPortName": "o"}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    ASSERT_TRUE(std::dynamic_pointer_cast<DmForEachCompound>(compound("l")));
    ASSERT_TRUE(description("i")->getLinkedPort());
    EXPECT_EQ(description("i")->getLinkedPort()->getName(), "o");
    EXPECT_TRUE(description("i")->isIterationInOutTarget());
}

TEST_F(DmReadLoopsTest, RowOfAnotherKindIsSkippedSilently) {
    ASSERT_EQ(loadLoop("forEachCompound",
                       R"([{"portKind": "state", "inputPortName": "i", "outputPortName": "o"}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    EXPECT_FALSE(description("i")->getLinkedPort());
}

TEST_F(DmReadLoopsTest, PortInterfaceOfTheWrongFormIsReportedForEachKind) {
    ASSERT_EQ(loadCompounds(R"([{"name": "w", "ports": [], "whileCompound": {"ports": "x"}},
                                 {"name": "i", "ports": [], "iterateCompound": {}},
                                 {"name": "f", "ports": [], "forEachCompound": {"ports": 1}}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(
        m_printed,
        (std::vector<std::string>{
            warning("Malformed while compound port interface.",
                    "The port interface in the while compound specialization of 'w' should be an array or a "
                    "single object."),
            warning(
                "Malformed iteration compound port interface.",
                "The port interface in the iteration compound specialization of 'i' should be an array or a "
                "single object."),
            warning(
                "Malformed foreach compound port interface",
                "The port interface in the foreach compound specialization of 'f' should be an array or a "
                "single object.")}));
}

TEST_F(DmReadLoopsTest, RowWithoutItsKeysIsReported) {
    ASSERT_EQ(loadLoop("iterateCompound", R"([{"inputPortName": "i", "outputPortName": "o"},
                                              {"portKind": "state", "outputPortName": "o"},
                                              {"portKind": "state", "inputPortName": "i"}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(m_printed,
              (std::vector<std::string>{
                  warning("Missing port kind.",
                          "Iteration compound port specialization needs to have a port kind."),
                  warning("Missing input port name.",
                          "Iteration compound port specialization needs to have an input port name."),
                  warning("Missing output port name.",
                          "Iteration compound port specialization needs to have an output port name.")}));
}

TEST_F(DmReadLoopsTest, RefusedLinkIsReportedForEachKind) {
    ASSERT_EQ(loadCompounds(R"([{"name": "w", "ports": [],
                                  "whileCompound": {"ports": {"portKind": "state", "inputPortName": "x",
                                                              "outputPortName": "y"}}},
                                 {"name": "i", "ports": [],
                                  "iterateCompound": {"ports": {"portKind": "state", "inputPortName": "x",
                                                                "outputPortName": "y"}}},
                                 {"name": "f", "ports": [],
                                  "forEachCompound": {"ports": {"portKind": "inOutTarget", "inputPortName": "x",
                                                                "outputPortName": "y"}}}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(m_printed,
              (std::vector<std::string>{
                  warning("Failed to connect input/output ports.",
                          "Unable to link input or output port in while compound specialization."),
                  warning("Failed to connect input/output ports.",
                          "Unable to link input or output port in iteration compound specialization."),
                  warning("Failed to connect input/output ports.",
                          "Unable to link input or output port in ForEach compound specialization.")}));
}

TEST_F(DmReadLoopsTest, IteratePairWithOneIterationTargetIsAnError) {
    EXPECT_EQ(loadCompounds(R"([{"name": "l",
        "ports": [{"portName": "t", "portDirection": "input", "portType": "array<int>", "portIterationTarget": "true"},
                  {"portName": "o", "portDirection": "output", "portType": "array<int>"}],
        "iterateCompound": {"ports": {"portKind": "state", "inputPortName": "t", "outputPortName": "o"}}}])"),
              DmStatus::kFailure);
    EXPECT_EQ(m_printed,
              (std::vector<std::string>{
                  error("Failed to connect input/output ports.",
                        "The state port pair 't' and 'o' on iterate node have mismatched iteration target "
                        "properties. Ports haven't been linked.")}));
    EXPECT_FALSE(description("t")->getLinkedPort());
}
