// Cost of importing a large compound: a chain of nodes over three definitions,
// each node's output feeding the next node's input, copied node by node into
// another namespace. The copy is dropped outside the timed part, except in
// the benchmark that measures both.
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNativeNodeDef.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmBuiltInValue.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Kesto;

std::shared_ptr<DmPortDescription> port(std::string const& name, PortDirection direction) {
    return DmPortDescription::newPortDescription(name, DmLibrary::getIntType(), direction, kNameVerbatim);
}

/// The source of the imports and what it needs, kept alive together.
struct Chain {
    std::shared_ptr<DmMessageLogger> logger;
    std::shared_ptr<DmNamespace> lib;
    std::vector<std::shared_ptr<DmNativeNodeDef>> defs;
    std::shared_ptr<DmCompound> compound;
};

/// "lib::chain": the int input a and the int output r, and `nodeCount` nodes
/// n0, n1, ... on "inc", "scale" and "clamp" in turn, connected
/// .a -> n0 -> n1 -> ... -> .r. Every "clamp" has a second input, "limit",
/// with a default value of its own.
Chain makeChain(long nodeCount) {
    Chain chain;
    chain.logger = std::make_shared<DmMessageLogger>(nullptr);
    chain.lib = DmNamespace::createNamespace("lib", chain.logger, kNameVerbatim);
    for (char const* name : {"inc", "scale", "clamp"}) {
        auto def = DmNativeNodeDef::newNativeNodeDef(name, DmNativeNodeDef::kPass);
        def->addPortDescription(port("in", kDirectionInput), kFailOnClash);
        if (std::string(name) == "clamp") {
            def->addPortDescription(port("limit", kDirectionInput), kFailOnClash);
        }
        def->addPortDescription(port("out", kDirectionOutput), kFailOnClash);
        def->setScope(chain.lib.get(), kFailOnClash);
        chain.defs.push_back(def);
    }
    chain.compound = DmCompound::createCompound("chain");
    chain.compound->addPortDescription(port("a", kDirectionInput), kFailOnClash);
    chain.compound->addPortDescription(port("r", kDirectionOutput), kFailOnClash);
    chain.compound->setScope(chain.lib.get(), kFailOnClash);

    std::shared_ptr<DmPort> previous = (*chain.compound->getSelfNode())["a"];
    for (long i = 0; i < nodeCount; ++i) {
        auto const& def = chain.defs[static_cast<std::size_t>(i % 3)];
        auto node = DmNode::createNode("n" + std::to_string(i), def);
        chain.compound->addNode(node, kAsOverload);
        if (auto limit = (*node)["limit"]) {
            auto value = std::make_shared<DmIntValue>();
            value->setData(static_cast<int>(i));
            limit->setDefaultValue(value);
        }
        std::shared_ptr<DmConnection> connection;
        chain.compound->makeConnection(previous, (*node)["in"], connection);
        previous = (*node)["out"];
    }
    std::shared_ptr<DmConnection> connection;
    chain.compound->makeConnection(previous, (*chain.compound->getSelfNode())["r"], connection);
    return chain;
}

bool importChain(Chain const& chain, std::shared_ptr<DmNamespace>& target, std::shared_ptr<DmNodeDef>& out) {
    target = DmNamespace::createNamespace("user", chain.logger, kNameVerbatim);
    return chain.compound->import(target, kFailOnClash, "copy", out, 0) == DmStatus::kSuccess;
}

void report(benchmark::State& state, Chain const& chain) {
    auto const nodes = static_cast<long>(chain.compound->getNodes().size());
    state.counters["nodes"] = static_cast<double>(nodes);
    state.counters["connections"] = static_cast<double>(chain.compound->getConnections().size());
    state.SetItemsProcessed(static_cast<long>(state.iterations()) * nodes);
}

/// The import alone: the copy of state.range(0) nodes with their connections.
void BM_ImportChain(benchmark::State& state) {
    Chain const chain = makeChain(state.range(0));
    for (auto _ : state) {
        std::shared_ptr<DmNamespace> target;
        std::shared_ptr<DmNodeDef> out;
        if (!importChain(chain, target, out)) {
            state.SkipWithError("the import failed");
            break;
        }
        benchmark::DoNotOptimize(out.get());
        state.PauseTiming();
        out.reset();
        target.reset();
        state.ResumeTiming();
    }
    report(state, chain);
}
BENCHMARK(BM_ImportChain)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

/// The import and the release of the copy.
void BM_ImportAndDropChain(benchmark::State& state) {
    Chain const chain = makeChain(state.range(0));
    for (auto _ : state) {
        std::shared_ptr<DmNamespace> target;
        std::shared_ptr<DmNodeDef> out;
        if (!importChain(chain, target, out)) {
            state.SkipWithError("the import failed");
            break;
        }
        benchmark::DoNotOptimize(out.get());
    }
    report(state, chain);
}
BENCHMARK(BM_ImportAndDropChain)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
