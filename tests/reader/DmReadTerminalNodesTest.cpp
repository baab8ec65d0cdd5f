// Terminal node definitions of graph files: inputs only, always locked, the
// default overload of their set, with the file's URI.
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "reader/NodeDefReadingTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Kesto;

namespace {

class DmReadTerminalNodesTest : public KestoTest::NodeDefReadingTest {};

} // namespace

TEST_F(DmReadTerminalNodesTest, TerminalIsReadWithInputsOnly) {
    std::string const text = terminals(
        R"({"name": "out::Render", "metadata": [{"metaName": "icon", "metaType": "string",)"
        R"( "metaValue": "eye.png"}], "ports": [{"portName": "image", "portType": "string"},)"
        R"( {"portName": "count", "portType": "int", "portDirection": "output", "portDefault": "3"}]})");
    ASSERT_EQ(load(text), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const render = terminal("out::Render");
    ASSERT_TRUE(render);
    EXPECT_EQ(render->getName(), "Render");
    EXPECT_EQ(render->getURI(), uri());
    EXPECT_TRUE(render->isOverloadsLocked());
    EXPECT_TRUE(render->isDefaultOverload());
    EXPECT_EQ(render->getMetadata()->find("icon").size(), 1u);
    DmPortsInterface const& ports = render->getPortsInterface();
    ASSERT_EQ(ports.size(), 2u);
    EXPECT_EQ(ports["image"]->getDirection(), kDirectionInput);
    EXPECT_EQ(ports["image"]->getType(), DmLibrary::getStringType());
    // The direction key is not read on a terminal.
    EXPECT_EQ(ports["count"]->getDirection(), kDirectionInput);
    EXPECT_FALSE(ports["count"]->hasCppPassingConvention());
    auto const count = std::dynamic_pointer_cast<DmIntValue>(ports["count"]->getDefaultValueOverride());
    ASSERT_TRUE(count);
    EXPECT_EQ(count->getData(), 3);
}

TEST_F(DmReadTerminalNodesTest, TerminalWithoutANameIsWarnedOnceAndSkippedInEveryPass) {
    std::string const text = terminals(R"({"ports": [{"portName": "a", "portType": "int"}]},)"
                                       R"( {"name": "t", "ports": [{"portName": "a", "portType": "int",)"
                                       R"( "portDefault": "9"}]})");
    ASSERT_EQ(load(text), DmStatus::kSuccess);
    EXPECT_EQ(printed(), (std::vector<std::string>{warning("Missing terminal name.",
                                                           "Terminal node needs to have at least a name.")}));
    auto const value = std::dynamic_pointer_cast<DmIntValue>(
        terminal("t")->getPortsInterface()["a"]->getDefaultValueOverride());
    ASSERT_TRUE(value);
    EXPECT_EQ(value->getData(), 9);
}

TEST_F(DmReadTerminalNodesTest, IllegalNameIsWarnedAndTheTerminalIsStillMade) {
    ASSERT_EQ(load(terminals(R"({"name": "out::my terminal", "ports": []})")), DmStatus::kSuccess);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{warning("Illegal terminal name",
                                                "The terminal \"out::my terminal\" has an illegal name.")}));
    EXPECT_TRUE(terminal("out::my terminal"));
}

TEST_F(DmReadTerminalNodesTest, TerminalWithoutPortsIsWarned) {
    ASSERT_EQ(load(terminals(R"({"name": "out::t"})")), DmStatus::kSuccess);
    EXPECT_EQ(printed(), (std::vector<std::string>{warning("Missing terminal node port interface.",
                                                           "The terminal node 'out::t' does not have a port "
                                                           "interface.")}));
    EXPECT_TRUE(terminal("out::t"));
}

TEST_F(DmReadTerminalNodesTest, WrongMetadataFormIsWarned) {
    ASSERT_EQ(load(terminals(R"({"name": "out::t", "ports": [], "metadata": 5})")), DmStatus::kSuccess);
    EXPECT_EQ(printed(), (std::vector<std::string>{
                             warning("Incorrect metadata format.",
                                     "The terminal node 'out::t' has an incorrect metadata format.")}));
}

TEST_F(DmReadTerminalNodesTest, AutoPortIsRefusedByATerminal) {
    EXPECT_EQ(
        load(terminals(
            R"({"name": "out::t", "ports": [{"portName": "a"}, {"portName": "b", "portType": "int"}]})")),
        DmStatus::kFailure);
    EXPECT_EQ(printed(),
              (std::vector<std::string>{error(
                  "Invalid port.", "The port 'out::t::a' could not be added to its node definition'")}));
    EXPECT_EQ(terminal("out::t")->getPortsInterface().size(), 1u);
}

TEST_F(DmReadTerminalNodesTest, ConventionIsIgnoredOutsideOperators) {
    ASSERT_EQ(load(terminals(R"({"name": "out::t", "ports": [{"portName": "a", "portType": "int",)"
                             R"( "portConvention": "byReference"}]})")),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_FALSE(terminal("out::t")->getPortsInterface()["a"]->hasCppPassingConvention());
}

TEST_F(DmReadTerminalNodesTest, SecondTerminalOfANameIsLeftOut) {
    ASSERT_EQ(load(terminals(R"({"name": "t", "ports": [{"portName": "a", "portType": "int"}]},)"
                             R"( {"name": "t", "ports": [{"portName": "b", "portType": "int"}]})"),
                   kAsOverload),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    ASSERT_EQ(set("t")->getOverloads().size(), 1u);
    EXPECT_TRUE(terminal("t")->getPortsInterface().hasPort("a"));
}
