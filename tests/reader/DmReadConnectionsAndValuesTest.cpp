// Connections, values and watch points of a compound in a graph file.
#include <KestoDM/graph/DmWatchPoint.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>

#include "reader/CompoundReadingSupport.h"

#include <gtest/gtest.h>

using namespace Kesto;
using KestoTest::joined;

namespace {

class DmReadConnectionsAndValuesTest : public KestoTest::CompoundFileTest {
protected:
    /// Loads compound "c" with the int ports "in" and "out", the nodes "a"
    /// and "b" on pass and "g" on get_from_array, and `more` (its further keys).
    DmStatus loadWith(std::string const& more) {
        return loadCompounds(R"([{"name": "c",
            "ports": [{"portName": "in", "portDirection": "input", "portType": "int"},
                      {"portName": "out", "portDirection": "output", "portType": "int"}],
            "compoundNodes": [{"nodeName": "a", "nodeType": "Core::Graph::pass"},
                              {"nodeName": "b", "nodeType": "Core::Graph::pass"},
                              {"nodeName": "g", "nodeType": "Core::Array::get_from_array"}])" +
                             more + "}]");
    }

    std::shared_ptr<DmPort> port(std::string const& node, std::string const& name) const {
        auto const c = compound("c");
        auto const n = node.empty() ? c->getSelfNode() : c->findNode(node);
        return n ? (*n)[name] : nullptr;
    }
};

} // namespace

TEST_F(DmReadConnectionsAndValuesTest, ConnectionsJoinNodesAndTheInterface) {
    ASSERT_EQ(loadWith(R"(, "connections": [{"source": ".in", "target": "a.input"},
                                            {"source": "a.output", "target": "b.input"},
                                            {"source": "b.output", "target": ".out"}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    EXPECT_EQ(compound("c")->getConnections().size(), 3u);
    EXPECT_EQ(port("a", "input")->getConnectedPorts().size(), 1u);
    EXPECT_EQ(port("", "out")->getConnectedPorts().size(), 1u);
}

TEST_F(DmReadConnectionsAndValuesTest, ConnectionWithoutAnEndIsReported) {
    ASSERT_EQ(loadWith(R"(, "connections": [{"target": "b.input"}, {"source": "", "target": "b.input"},
                                            {"source": "a.output"}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(
        m_printed,
        (std::vector<std::string>{
            warning("Missing connection source.", "The connection does not have a source port name."),
            warning("Missing connection source.", "The connection does not have a source port name."),
            warning("Missing connection target.", "The connection does not have a target port name.")}));
    EXPECT_TRUE(compound("c")->getConnections().empty());
}

TEST_F(DmReadConnectionsAndValuesTest, RefusedConnectionIsReportedByTheCompoundAndTheRestLoads) {
    ASSERT_EQ(loadWith(R"(, "connections": [{"source": "a.nothing", "target": "b.input"},
                                            {"source": "a.output", "target": "b.input"}])"),
              DmStatus::kSuccess);
    ASSERT_EQ(m_printed.size(), 1u) << joined(m_printed);
    EXPECT_NE(m_printed.front().find("Connection failed."), std::string::npos) << m_printed.front();
    EXPECT_EQ(compound("c")->getConnections().size(), 1u);
}

TEST_F(DmReadConnectionsAndValuesTest, ValuesSetPortsByTheirTypeOrTheNamedType) {
    ASSERT_EQ(loadWith(R"(, "values": [{"valueName": "g.index", "value": "3"},
                                       {"valueName": "a.input", "valueType": "int", "value": "5"},
                                       {"valueName": ".in", "value": "7"}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const index = std::dynamic_pointer_cast<DmLongValue>(port("g", "index")->getDefaultValue());
    ASSERT_TRUE(index);
    EXPECT_EQ(index->getData(), 3);
    auto const input = std::dynamic_pointer_cast<DmIntValue>(port("a", "input")->getDefaultValue());
    ASSERT_TRUE(input);
    EXPECT_EQ(input->getData(), 5);
    EXPECT_TRUE(port("a", "input")->hasImmediateValue());
    auto const in = std::dynamic_pointer_cast<DmIntValue>(port("", "in")->getDefaultValue());
    ASSERT_TRUE(in);
    EXPECT_EQ(in->getData(), 7);
}

TEST_F(DmReadConnectionsAndValuesTest, ValueWithoutNameOrValueIsReported) {
    ASSERT_EQ(loadWith(R"(, "values": [{"value": "1"}, {"valueName": "g.index"}])"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed,
              (std::vector<std::string>{
                  warning("Missing value name.", "Default value needs to have at least a port name."),
                  warning("Missing value.", "Value 'g.index' is not specified.")}));
}

TEST_F(DmReadConnectionsAndValuesTest, ValuePathWithAMissingNodeIsReported) {
    ASSERT_EQ(loadWith(R"(, "values": {"valueName": "nobody.input", "value": "1"})"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed, (std::vector<std::string>{
                             warning("Node not found.", "The node 'nobody' could not be found.")}));
}

TEST_F(DmReadConnectionsAndValuesTest, ValuePathWithoutAPointIsReported) {
    ASSERT_EQ(loadWith(R"(, "values": {"valueName": "index", "value": "1"})"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed, (std::vector<std::string>{
                             warning("Port badly formed.", "The port 'index' is not a valid port.")}));
}

TEST_F(DmReadConnectionsAndValuesTest, ValuePathWithAMissingPortIsReported) {
    ASSERT_EQ(loadWith(R"(, "values": {"valueName": "g.size", "value": "1"})"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed, (std::vector<std::string>{warning(
                             "Port not found.", "The port 'g.size' could not be found in compound 'c'.")}));
}

TEST_F(DmReadConnectionsAndValuesTest, ValueOfAnAutoPortWithoutTypeIsReported) {
    ASSERT_EQ(loadWith(R"(, "values": {"valueName": "a.input", "value": "1"})"), DmStatus::kSuccess);
    EXPECT_EQ(m_printed, (std::vector<std::string>{warning(
                             "Invalid value type.", "Unable to determine the type for value 'a.input'.")}));
    EXPECT_FALSE(port("a", "input")->hasImmediateValue());
}

TEST_F(DmReadConnectionsAndValuesTest, BadValueTextIsReportedByTheValueReader) {
    EXPECT_EQ(loadWith(R"(, "values": {"valueName": "g.index", "value": "abc"})"), DmStatus::kFailure);
    EXPECT_EQ(m_printed,
              (std::vector<std::string>{KestoTest::line("error", "<value>", "Badly formed value.",
                                                        "The value 'abc' is not a valid value.")}));
    EXPECT_FALSE(port("g", "index")->hasImmediateValue());
}

TEST_F(DmReadConnectionsAndValuesTest, WatchPointIsSetWithItsStateParametersAndMetadata) {
    ASSERT_EQ(loadWith(R"(, "watchPoints": [{"portName": "a.output", "enabled": "true",
                                             "parameters": {"color": "red", "size": "2"},
                                             "metadata": {"metaName": "note"}},
                                            {"portName": ".in", "enabled": "false",
                                             "parameters": [{"one": "1"}, {"two": "2"}]}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(m_printed.empty()) << joined(m_printed);
    auto const watch = port("a", "output")->getWatchPoint();
    ASSERT_TRUE(watch);
    EXPECT_TRUE(watch->enabled());
    std::string value;
    EXPECT_EQ(watch->getParameter("color", value), DmStatus::kSuccess);
    EXPECT_EQ(value, "red");
    EXPECT_EQ(watch->getParameters().size(), 2u);
    EXPECT_EQ(watch->getMetadata()->find("note").size(), 1u);
    auto const second = port("", "in")->getWatchPoint();
    ASSERT_TRUE(second);
    EXPECT_FALSE(second->enabled());
    EXPECT_EQ(second->getParameters().size(), 2u);
}

TEST_F(DmReadConnectionsAndValuesTest, WatchPointWithoutPortOrOnAMissingNodeIsReported) {
    ASSERT_EQ(
        loadWith(R"(, "watchPoints": [{"enabled": "true"}, {"portName": "x.output"}, {"portName": "a"}])"),
        DmStatus::kSuccess);
    EXPECT_EQ(m_printed, (std::vector<std::string>{
                             warning("Missing port name.", "Watchpoint needs to have at least a port name."),
                             warning("Node not found.", "The node 'x' could not be found."),
                             warning("Port badly formed.", "The port 'a' is not a valid port.")}));
}
