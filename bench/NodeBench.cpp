// Costs of nodes: making (and dropping) a node on a definition of three ports,
// and a port added to and removed from a definition that many nodes use, which
// the definition tells every node of, one call each.
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBuiltInType.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;

std::shared_ptr<DmPortDescription> port(std::string const& name, PortDirection direction) {
    return DmPortDescription::newPortDescription(name, DmLibrary::getIntType(), direction, kNameVerbatim);
}

/// "op" with the inputs a and b and the output out, all int.
std::shared_ptr<DmNativeNodeDef> makeThreePortDef() {
    auto def = DmNativeNodeDef::newNativeNodeDef("op", DmNativeNodeDef::kPass);
    def->addPortDescription(port("a", kDirectionInput), kFailOnClash);
    def->addPortDescription(port("b", kDirectionInput), kFailOnClash);
    def->addPortDescription(port("out", kDirectionOutput), kFailOnClash);
    return def;
}

/// One node made and dropped per iteration: its three ports with their
/// default values, registration with the definition and the way back.
void BM_CreateNode(benchmark::State& state) {
    auto const def = makeThreePortDef();
    std::string const name = "node";
    for (auto _ : state) {
        auto node = DmNode::createNode(name, def);
        benchmark::DoNotOptimize(node.get());
    }
}
BENCHMARK(BM_CreateNode);

/// One port added to a definition used by state.range(0) nodes, then removed
/// again, so that every iteration starts from the same state: two rounds of
/// change propagation per iteration.
void BM_AddAndRemovePort(benchmark::State& state) {
    auto const def = makeThreePortDef();
    std::vector<std::shared_ptr<DmNode>> nodes;
    auto const nodeCount = state.range(0);
    nodes.reserve(static_cast<std::size_t>(nodeCount));
    for (long i = 0; i < nodeCount; ++i) {
        nodes.push_back(DmNode::createNode("n" + std::to_string(i), def));
    }
    auto const extra = port("extra", kDirectionInput);
    for (auto _ : state) {
        bool const added = def->addPortDescription(extra, kFailOnClash);
        bool const removed = def->removePortDescription(extra);
        if (!added || !removed) {
            state.SkipWithError("the port did not come and go");
            break;
        }
    }
    state.counters["nodes"] = static_cast<double>(nodeCount);
}
BENCHMARK(BM_AddAndRemovePort)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

} // namespace
