// Watch points: the record a client sets on a port (flag, callback with its
// client data, parameters), and how a port makes, keeps and drops one.
#include "graph/ModelTestSupport.h"

#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmWatchPoint.h>
#include <KestoDM/library/DmLibrary.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;
using KestoTest::input;
using KestoTest::output;

/// Also expects every watch point made by a test to be gone at its end.
class DmWatchPointTest : public KestoTest::ModelTest {
protected:
    void SetUp() override {
        ModelTest::SetUp();
        expectBackAtEnd<DmWatchPoint>("watch points");
    }
};

/// What a client's callback saw.
struct Observer {
    struct Call {
        void const* data;
        std::uint64_t size;
    };
    mutable std::vector<Call> calls;
};

void observe(void const* data, std::uint64_t size, void const* clientData) {
    static_cast<Observer const*>(clientData)->calls.push_back({data, size});
}

void ignore(void const*, std::uint64_t, void const*) {}

std::shared_ptr<DmNativeNodeDef> makeDef() {
    auto def = DmNativeNodeDef::newNativeNodeDef("op", DmNativeNodeDef::kPass);
    def->addPortDescription(input("a", DmLibrary::getIntType()), kFailOnClash);
    def->addPortDescription(output("out", DmLibrary::getIntType()), kFailOnClash);
    return def;
}

// ---------------------------------------------------------------------------
// The record

TEST_F(DmWatchPointTest, CreateNewMakesDisabledEmptyWatchPoint) {
    auto const watchPoint = DmWatchPoint::createNew();
    ASSERT_NE(watchPoint, nullptr);
    EXPECT_EQ(watchPoint.use_count(), 1);
    EXPECT_FALSE(watchPoint->enabled());
    EXPECT_EQ(watchPoint->getCallBack(), nullptr);
    EXPECT_EQ(watchPoint->getClientData(), nullptr);
    EXPECT_TRUE(watchPoint->getParameters().empty());
}

TEST_F(DmWatchPointTest, CreateNewMakesDistinctWatchPoints) {
    auto const first = DmWatchPoint::createNew();
    auto const second = DmWatchPoint::createNew();
    EXPECT_NE(first, second);
}

TEST_F(DmWatchPointTest, EnableStoresFlag) {
    auto const watchPoint = DmWatchPoint::createNew();
    EXPECT_EQ(watchPoint->enable(true), DmStatus::kSuccess);
    EXPECT_TRUE(watchPoint->enabled());
    EXPECT_EQ(watchPoint->enable(true), DmStatus::kSuccess);
    EXPECT_TRUE(watchPoint->enabled());
    EXPECT_EQ(watchPoint->enable(false), DmStatus::kSuccess);
    EXPECT_FALSE(watchPoint->enabled());
}

TEST_F(DmWatchPointTest, SetCallBackStoresFunctionAndClientData) {
    auto const watchPoint = DmWatchPoint::createNew();
    Observer observer;
    EXPECT_EQ(watchPoint->setCallBack(&observe, &observer), DmStatus::kSuccess);
    EXPECT_EQ(watchPoint->getCallBack(), &observe);
    EXPECT_EQ(watchPoint->getClientData(), &observer);
}

TEST_F(DmWatchPointTest, StoredCallBackReachesClientThroughClientData) {
    auto const watchPoint = DmWatchPoint::createNew();
    Observer observer;
    ASSERT_EQ(watchPoint->setCallBack(&observe, &observer), DmStatus::kSuccess);

    int const datum = 42;
    DmWatchPoint::CallBack const callBack = watchPoint->getCallBack();
    ASSERT_NE(callBack, nullptr);
    callBack(&datum, sizeof datum, watchPoint->getClientData());
    callBack(nullptr, 0, watchPoint->getClientData());

    ASSERT_EQ(observer.calls.size(), 2u);
    EXPECT_EQ(observer.calls[0].data, &datum);
    EXPECT_EQ(observer.calls[0].size, sizeof datum);
    EXPECT_EQ(*static_cast<int const*>(observer.calls[0].data), 42);
    EXPECT_EQ(observer.calls[1].data, nullptr);
    EXPECT_EQ(observer.calls[1].size, 0u);
}

TEST_F(DmWatchPointTest, SetCallBackReplacesBothAndClears) {
    auto const watchPoint = DmWatchPoint::createNew();
    Observer observer;
    Observer other;
    ASSERT_EQ(watchPoint->setCallBack(&observe, &observer), DmStatus::kSuccess);
    EXPECT_EQ(watchPoint->setCallBack(&ignore, &other), DmStatus::kSuccess);
    EXPECT_EQ(watchPoint->getCallBack(), &ignore);
    EXPECT_EQ(watchPoint->getClientData(), &other);
    EXPECT_EQ(watchPoint->setCallBack(nullptr, nullptr), DmStatus::kSuccess);
    EXPECT_EQ(watchPoint->getCallBack(), nullptr);
    EXPECT_EQ(watchPoint->getClientData(), nullptr);
}

TEST_F(DmWatchPointTest, SetParameterThenGetParameter) {
    auto const watchPoint = DmWatchPoint::createNew();
    EXPECT_EQ(watchPoint->setParameter("format", "hex"), DmStatus::kSuccess);
    std::string value;
    EXPECT_EQ(watchPoint->getParameter("format", value), DmStatus::kSuccess);
    EXPECT_EQ(value, "hex");
}

TEST_F(DmWatchPointTest, GetParameterOfUnsetNameIsInvalidAndLeavesOutAlone) {
    auto const watchPoint = DmWatchPoint::createNew();
    ASSERT_EQ(watchPoint->setParameter("format", "hex"), DmStatus::kSuccess);
    std::string value = "untouched";
    EXPECT_EQ(watchPoint->getParameter("missing", value), DmStatus::kInvalidArgument);
    EXPECT_EQ(value, "untouched");
}

TEST_F(DmWatchPointTest, SettingParameterTwiceKeepsLastValue) {
    auto const watchPoint = DmWatchPoint::createNew();
    EXPECT_EQ(watchPoint->setParameter("format", "hex"), DmStatus::kSuccess);
    EXPECT_EQ(watchPoint->setParameter("format", "decimal"), DmStatus::kSuccess);
    std::string value;
    EXPECT_EQ(watchPoint->getParameter("format", value), DmStatus::kSuccess);
    EXPECT_EQ(value, "decimal");
    EXPECT_EQ(watchPoint->getParameters().size(), 1u);
}

TEST_F(DmWatchPointTest, EmptyParameterValueIsStillSet) {
    auto const watchPoint = DmWatchPoint::createNew();
    EXPECT_EQ(watchPoint->setParameter("label", ""), DmStatus::kSuccess);
    std::string value = "before";
    EXPECT_EQ(watchPoint->getParameter("label", value), DmStatus::kSuccess);
    EXPECT_EQ(value, "");
}

TEST_F(DmWatchPointTest, ParametersAccessorGivesTheMap) {
    auto const watchPoint = DmWatchPoint::createNew();
    ASSERT_EQ(watchPoint->setParameter("format", "hex"), DmStatus::kSuccess);
    ASSERT_EQ(watchPoint->setParameter("limit", "16"), DmStatus::kSuccess);
    DmWatchPoint::Parameters const expected{{"format", "hex"}, {"limit", "16"}};
    EXPECT_EQ(watchPoint->getParameters(), expected);

    watchPoint->getParameters()["extra"] = "yes";
    std::string value;
    EXPECT_EQ(watchPoint->getParameter("extra", value), DmStatus::kSuccess);
    EXPECT_EQ(value, "yes");
}

TEST_F(DmWatchPointTest, CopyHasEveryField) {
    auto const watchPoint = DmWatchPoint::createNew();
    Observer observer;
    ASSERT_EQ(watchPoint->enable(true), DmStatus::kSuccess);
    ASSERT_EQ(watchPoint->setCallBack(&observe, &observer), DmStatus::kSuccess);
    ASSERT_EQ(watchPoint->setParameter("format", "hex"), DmStatus::kSuccess);

    DmWatchPoint const copy(*watchPoint);
    EXPECT_TRUE(copy.enabled());
    EXPECT_EQ(copy.getCallBack(), &observe);
    EXPECT_EQ(copy.getClientData(), &observer);
    EXPECT_EQ(copy.getParameters(), watchPoint->getParameters());

    // The copy stands alone afterwards.
    ASSERT_EQ(watchPoint->setParameter("format", "decimal"), DmStatus::kSuccess);
    std::string value;
    EXPECT_EQ(copy.getParameter("format", value), DmStatus::kSuccess);
    EXPECT_EQ(value, "hex");
}

// ---------------------------------------------------------------------------
// Watch points on ports

TEST_F(DmWatchPointTest, PortStartsWithoutWatchPoint) {
    auto def = makeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ((*node)["a"]->getWatchPoint(), nullptr);
}

TEST_F(DmWatchPointTest, SetWatchPointMakesOneAtFirstUse) {
    auto def = makeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    unsigned int const before = count<DmWatchPoint>();
    auto const watchPoint = port->setWatchPoint();
    ASSERT_NE(watchPoint, nullptr);
    EXPECT_EQ(count<DmWatchPoint>(), before + 1);
    EXPECT_EQ(port->getWatchPoint(), watchPoint);
    EXPECT_FALSE(watchPoint->enabled());
}

TEST_F(DmWatchPointTest, SetWatchPointTwiceGivesSameWatchPoint) {
    auto def = makeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    auto const first = port->setWatchPoint();
    ASSERT_EQ(first->setParameter("format", "hex"), DmStatus::kSuccess);
    unsigned int const made = count<DmWatchPoint>();
    auto const second = port->setWatchPoint();
    EXPECT_EQ(second, first);
    EXPECT_EQ(count<DmWatchPoint>(), made);
    std::string value;
    EXPECT_EQ(second->getParameter("format", value), DmStatus::kSuccess);
    EXPECT_EQ(value, "hex");
}

TEST_F(DmWatchPointTest, PortsHaveWatchPointsOfTheirOwn) {
    auto def = makeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const a = (*node)["a"]->setWatchPoint();
    auto const out = (*node)["out"]->setWatchPoint();
    EXPECT_NE(a, out);
}

TEST_F(DmWatchPointTest, RemoveWatchPointReleasesIt) {
    auto def = makeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    unsigned int const before = count<DmWatchPoint>();
    port->setWatchPoint();
    EXPECT_EQ(port->removeWatchPoint(), DmStatus::kSuccess);
    EXPECT_EQ(port->getWatchPoint(), nullptr);
    EXPECT_EQ(count<DmWatchPoint>(), before);
}

TEST_F(DmWatchPointTest, RemoveWatchPointWithoutOneFails) {
    auto def = makeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    EXPECT_EQ(port->removeWatchPoint(), DmStatus::kFailure);
    port->setWatchPoint();
    ASSERT_EQ(port->removeWatchPoint(), DmStatus::kSuccess);
    EXPECT_EQ(port->removeWatchPoint(), DmStatus::kFailure);
}

TEST_F(DmWatchPointTest, SetWatchPointAfterRemovalMakesFreshOne) {
    auto def = makeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    ASSERT_EQ(port->setWatchPoint()->setParameter("format", "hex"), DmStatus::kSuccess);
    ASSERT_EQ(port->removeWatchPoint(), DmStatus::kSuccess);
    auto const fresh = port->setWatchPoint();
    ASSERT_NE(fresh, nullptr);
    EXPECT_TRUE(fresh->getParameters().empty());
}

TEST_F(DmWatchPointTest, WatchPointHeldByClientOutlivesRemoval) {
    auto def = makeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    auto const port = (*node)["a"];
    auto const held = port->setWatchPoint();
    ASSERT_EQ(held->enable(true), DmStatus::kSuccess);
    ASSERT_EQ(port->removeWatchPoint(), DmStatus::kSuccess);
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_TRUE(held->enabled());
}

TEST_F(DmWatchPointTest, WatchPointDiesWithItsPort) {
    auto def = makeDef();
    auto node = DmNode::createNode("n", def);
    ASSERT_NE(node, nullptr);
    unsigned int const before = count<DmWatchPoint>();
    (*node)["a"]->setWatchPoint();
    (*node)["out"]->setWatchPoint();
    EXPECT_EQ(count<DmWatchPoint>(), before + 2);
    node.reset();
    EXPECT_EQ(count<DmWatchPoint>(), before);
}

} // namespace
