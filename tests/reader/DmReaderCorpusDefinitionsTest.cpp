// The corpus files of operators, terminal node definitions, ports, job ports,
// overloads and associativity: the model each good file builds, and for each
// bad file the lines it prints and what of it still loads.
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmJobPort.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortsInterface.h>
#include <KestoDM/graph/DmWhileCompound.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmEnumValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>
#include <KestoDM/types/DmStructValue.h>

#include "reader/CorpusExpectations.h"
#include "reader/NodeDefReadingTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace Kesto;
using ::testing::Contains;

namespace {

class DmReaderCorpusDefinitionsTest : public KestoTest::NodeDefReadingTest {
protected:
    static std::string corpusPath(std::string const& name) {
        return std::string(KESTODM_TEST_DATA_DIR) + "/reader/" + name;
    }

    /// What the sidecar of the bad file `base` (without extension) expects.
    static KestoTest::CorpusExpectation sidecar(std::string const& base) {
        KestoTest::CorpusExpectation expected =
            KestoTest::expectationOf(std::string(KESTODM_TEST_DATA_DIR) + "/reader", base + ".json");
        EXPECT_TRUE(expected.problem.empty()) << expected.problem;
        return expected;
    }

    /// Loads the bad file `base` and checks its status and printed lines
    /// against its sidecar.
    void loadBad(std::string const& base) {
        auto const expected = sidecar(base);
        EXPECT_EQ(loadCorpus(base + ".json"), expected.status);
        EXPECT_EQ(printed(), expected.lines);
    }

    /// Loads the good file `name`, which must load silently.
    void loadGood(std::string const& name) {
        ASSERT_EQ(loadCorpus(name), DmStatus::kSuccess);
        EXPECT_TRUE(printed().empty());
    }

    /// Loads the corpus file `name` with `resolution`.
    DmStatus loadCorpusAs(std::string const& name, DmNameResolutionType resolution) {
        DmLibrary::LoadOptions options;
        options.nameResolution = resolution;
        return library().loadGraph(KestoTest::longForm(corpusPath(name)), options);
    }

    /// The lines printed since the last call.
    std::vector<std::string> lines() { return printed(); }

    static std::string lineOf(std::string const& kind, std::string const& file, std::string const& title,
                              std::string const& description) {
        return KestoTest::line(kind, "file:///" + file, title, description);
    }

    std::shared_ptr<DmCompound> compound(std::string const& name) {
        auto const all = library().getCompounds();
        auto const found = all.find(name);
        return found != all.end() ? found->second : nullptr;
    }

    DmScope* ns(std::string const& name) {
        return library().getGlobalNamespace()->fetchNamespace(name).get();
    }

    std::shared_ptr<DmBaseType const> arrayOf(std::shared_ptr<DmBaseType const> const& element) {
        return library().getArrayType(element);
    }

    /// The names of the ports of `definition`, in order.
    static std::vector<std::string> portNames(DmNodeDef const& definition) {
        std::vector<std::string> out;
        for (auto const& entry : definition.getPortsInterface()) {
            out.push_back(entry.first);
        }
        return out;
    }

    static std::string stringItem(DmEntity const& entity, std::string const& name) {
        if (!entity.getMetadata()) {
            return "<no metadata>";
        }
        auto const items = entity.getMetadata()->find(name);
        std::string out;
        if (items.size() != 1 || items[0]->getStringValue(out) != DmStatus::kSuccess) {
            return "<no item>";
        }
        return out;
    }

    template <class T>
    static std::shared_ptr<T> defaultOf(DmPortDescription const& port) {
        return std::dynamic_pointer_cast<T>(port.getDefaultValueOverride());
    }
};

} // namespace

// ---------------------------------------------------------------------------
// Good files

TEST_F(DmReaderCorpusDefinitionsTest, OperatorsAndATerminalBuildTheirModel) {
    loadGood("200_operators.json");
    auto const point = type("geo::Point");
    ASSERT_TRUE(point);

    auto const scale = cppOperator("geo::scale");
    ASSERT_TRUE(scale);
    EXPECT_EQ(scale->getName(), "scale");
    EXPECT_EQ(scale->getScope(), ns("geo"));
    EXPECT_EQ(scale->getURI(), uri("200_operators.json"));
    EXPECT_EQ(scale->getMangleName(DmMangledName::kMangledNameItanium), "_ZN3geo5scaleERKNS_5PointEfRS0_");
    EXPECT_EQ(scale->getMangleName(DmMangledName::kMangledNameMicrosoft),
              "?scale@geo@@YAXAEBUPoint@1@MAEAU21@@Z");
    EXPECT_EQ(scale->getResourceFileName(), "libgeo.so");
    EXPECT_EQ(scale->getCancellationPolicy(), DmExternOperator::kNone);
    EXPECT_TRUE(scale->isDefaultOverload());
    EXPECT_EQ(stringItem(*scale, "category"), "Geometry");
    DmPortsInterface const& ports = scale->getPortsInterface();
    EXPECT_EQ(portNames(*scale), (std::vector<std::string>{"point", "factor", "result"}));
    EXPECT_EQ(ports["point"]->getType(), point);
    EXPECT_EQ(ports["point"]->getCppPassingConvention(), kPassByReference);
    auto const factor = defaultOf<DmFloatValue>(*ports["factor"]);
    ASSERT_TRUE(factor);
    EXPECT_EQ(factor->getData(), 2.0f);
    EXPECT_EQ(ports["result"]->getDirection(), kDirectionOutput);
    EXPECT_EQ(ports["result"]->getCppPassingConvention(), kPassByMutablePtrValue);
    EXPECT_EQ(scale->getAssociatedPort(ports["result"].get()), ports["point"]);
    ASSERT_EQ(scale->getJobPorts().size(), 1u);
    EXPECT_EQ(scale->getJobPorts()[0]->getName(), "services");
    EXPECT_EQ(scale->getJobPorts()[0]->getType(), DmLibrary::getStringType());

    auto const join = cppOperator("geo::join");
    ASSERT_TRUE(join);
    EXPECT_EQ(join->associativity(), DmNodeDef::kLeftToRight);
    EXPECT_EQ(join->getCancellationPolicy(), DmExternOperator::kSafe);
    EXPECT_TRUE(join->getPortsInterface()["first"]->isAssociative());
    EXPECT_TRUE(join->getPortsInterface()["second"]->isAssociative());
    EXPECT_FALSE(join->getPortsInterface()["joined"]->isAssociative());
    EXPECT_EQ(join->getPortsInterface()["joined"]->getType(), arrayOf(DmLibrary::getFloatType()));
    EXPECT_EQ(join->getPortsInterface()["joined"]->getCppPassingConvention(), kPassByReturnValue);

    auto const display = terminal("geo::Display");
    ASSERT_TRUE(display);
    EXPECT_EQ(display->getURI(), uri("200_operators.json"));
    EXPECT_EQ(stringItem(*display, "icon"), "display.png");
    EXPECT_EQ(display->getPortsInterface()["shape"]->getType(), point);
    EXPECT_EQ(display->getPortsInterface()["shape"]->getDirection(), kDirectionInput);
    auto const count = defaultOf<DmIntValue>(*display->getPortsInterface()["count"]);
    ASSERT_TRUE(count);
    EXPECT_EQ(count->getData(), 1);
}

TEST_F(DmReaderCorpusDefinitionsTest, OperatorWithEveryAttributeKeepsThemAll) {
    loadGood("201_operator_attributes.json");
    auto const concat = cppOperator("text::concat");
    ASSERT_TRUE(concat);
    EXPECT_EQ(concat->getName(), "concat");
    EXPECT_EQ(concat->getScope(), ns("text"));
    EXPECT_EQ(concat->getURI(), uri("201_operator_attributes.json"));
    EXPECT_EQ(concat->getMangleName(DmMangledName::kMangledNameMicrosoft),
              "?concat@text@@YAXAEBV?$basic_string@DU?$char_traits@D@std@@@std@@0AEAV23@@Z");
    EXPECT_EQ(concat->getMangleName(DmMangledName::kMangledNameItanium),
              "_ZN4text6concatERKNSt7__cxx1112basic_stringIcEES4_RS2_");
    EXPECT_TRUE(concat->isMangleNameDeclared(DmMangledName::kMangledNameMicrosoft));
    EXPECT_TRUE(concat->isMangleNameDeclared(DmMangledName::kMangledNameItanium));
    EXPECT_EQ(concat->getResourceFileName(), "libtext.so");
    EXPECT_TRUE(concat->isConverter());
    EXPECT_TRUE(concat->isPromoter());
    EXPECT_TRUE(concat->isDefaultOverload());
    EXPECT_FALSE(concat->isOverloadsLocked());
    EXPECT_FALSE(set("text::concat")->isOverloadsLocked());
    EXPECT_EQ(concat->associativity(), DmNodeDef::kRightToLeft);
    EXPECT_EQ(concat->getCancellationPolicy(), DmExternOperator::kUnsafe);
    EXPECT_TRUE(concat->isComplete());

    EXPECT_EQ(stringItem(*concat, "category"), "Text");
    auto const weight = concat->getMetadata()->find("weight");
    ASSERT_EQ(weight.size(), 1u);
    std::int64_t weightValue = 0;
    EXPECT_EQ(weight[0]->getLongValue(weightValue), DmStatus::kSuccess);
    EXPECT_EQ(weightValue, 3);
    auto const docs = concat->getMetadata()->find("docs");
    ASSERT_EQ(docs.size(), 1u);
    EXPECT_FALSE(docs[0]->hasValue());
    EXPECT_EQ(stringItem(*docs[0], "summary"), "Joins two texts");

    DmPortsInterface const& ports = concat->getPortsInterface();
    EXPECT_EQ(portNames(*concat), (std::vector<std::string>{"left", "right", "joined"}));
    for (std::string const name : {"left", "right"}) {
        EXPECT_EQ(ports[name]->getDirection(), kDirectionInput) << name;
        EXPECT_TRUE(ports[name]->isAssociative()) << name;
        EXPECT_EQ(ports[name]->getType(), DmLibrary::getStringType()) << name;
        EXPECT_EQ(ports[name]->getCppPassingConvention(), kPassByReference) << name;
        EXPECT_TRUE(ports[name]->isComplete()) << name;
    }
    EXPECT_EQ(ports["joined"]->getDirection(), kDirectionOutput);
    EXPECT_FALSE(ports["joined"]->isAssociative());
    EXPECT_EQ(ports["joined"]->getCppPassingConvention(), kPassByReturnValue);
    ASSERT_EQ(concat->getJobPorts().size(), 1u);
    EXPECT_EQ(concat->getJobPorts()[0]->getName(), "runtime");
    EXPECT_EQ(concat->getJobPorts()[0]->getType(), DmLibrary::getULongType());
    EXPECT_TRUE(concat->getJobPorts()[0]->isComplete());

    auto const length = cppOperator("text::length");
    ASSERT_TRUE(length);
    EXPECT_FALSE(length->isConverter());
    EXPECT_FALSE(length->isPromoter());
    EXPECT_FALSE(length->isDefaultOverload());
    EXPECT_TRUE(length->isOverloadsLocked());
    EXPECT_EQ(length->associativity(), DmNodeDef::kNotAssociative);
    EXPECT_EQ(length->getCancellationPolicy(), DmExternOperator::kNone);
    EXPECT_EQ(length->getResourceFileName(), "");
    EXPECT_TRUE(length->getJobPorts().empty());
    EXPECT_EQ(portNames(*length), (std::vector<std::string>{"text", "count"}));

    // Without a policy the operator takes the library's default.
    auto const trim = cppOperator("trim");
    ASSERT_TRUE(trim);
    EXPECT_EQ(trim->getScope(), library().getGlobalNamespace().get());
    EXPECT_EQ(trim->getCancellationPolicy(), library().getDefaultCancellationPolicy());
    EXPECT_EQ(trim->getCancellationPolicy(), DmExternOperator::kSafe);
    EXPECT_EQ(trim->getURI(), uri("201_operator_attributes.json"));
}

TEST_F(DmReaderCorpusDefinitionsTest, TerminalNodeDefinitionsTakeInputsOnly) {
    loadGood("202_terminal_nodes.json");
    auto const print = terminal("out::Print");
    ASSERT_TRUE(print);
    EXPECT_EQ(print->getName(), "Print");
    EXPECT_EQ(print->getScope(), ns("out"));
    EXPECT_EQ(print->getURI(), uri("202_terminal_nodes.json"));
    EXPECT_TRUE(print->isTerminal());
    EXPECT_TRUE(print->isOverloadsLocked());
    EXPECT_EQ(stringItem(*print, "icon"), "print.png");
    EXPECT_EQ(portNames(*print), (std::vector<std::string>{"message", "level"}));
    DmPortsInterface const& ports = print->getPortsInterface();
    EXPECT_EQ(ports["message"]->getType(), DmLibrary::getStringType());
    EXPECT_EQ(ports["message"]->getDirection(), kDirectionInput);
    EXPECT_FALSE(ports["message"]->hasCppPassingConvention());
    EXPECT_TRUE(ports["message"]->isComplete());
    auto const level = defaultOf<DmIntValue>(*ports["level"]);
    ASSERT_TRUE(level);
    EXPECT_EQ(level->getData(), 2);
    ASSERT_TRUE(ports["level"]->getMetadata());
    EXPECT_EQ(ports["level"]->getMetadata()->find("max").size(), 1u);

    auto const chart = terminal("out::Chart");
    ASSERT_TRUE(chart);
    DmPortsInterface const& chartPorts = chart->getPortsInterface();
    EXPECT_EQ(chartPorts["points"]->getType(), arrayOf(DmLibrary::getFloatType()));
    auto const points = defaultOf<DmArrayValue>(*chartPorts["points"]);
    ASSERT_TRUE(points);
    ASSERT_EQ(points->size(), 2u);
    EXPECT_EQ(std::dynamic_pointer_cast<DmFloatValue>(points->at(1))->getData(), 1.5f);
    // A direction in the file is not read on a terminal.
    EXPECT_EQ(chartPorts["title"]->getDirection(), kDirectionInput);

    auto const flush = terminal("Flush");
    ASSERT_TRUE(flush);
    EXPECT_EQ(flush->getScope(), library().getGlobalNamespace().get());
    EXPECT_EQ(flush->getPortsInterface()["now"]->getType(), DmLibrary::getBoolType());
}

TEST_F(DmReaderCorpusDefinitionsTest, EveryPortAttributeOfTheSecondPassIsRead) {
    loadGood("203_port_attributes.json");
    auto const pair = type("ports::Pair");
    ASSERT_TRUE(pair);

    auto const conventions = cppOperator("ports::conventions");
    ASSERT_TRUE(conventions);
    DmPortsInterface const& c = conventions->getPortsInterface();
    EXPECT_EQ(portNames(*conventions),
              (std::vector<std::string>{"byValue", "byReference", "byPtrConstValue", "byPtrValue",
                                        "byReferenceToPtr", "byMutablePtrValue", "byReferenceToMutablePtr",
                                        "byReturnValue"}));
    EXPECT_EQ(c["byValue"]->getCppPassingConvention(), kPassByValue);
    EXPECT_EQ(c["byReference"]->getCppPassingConvention(), kPassByReference);
    // The older spelling reads as the pointer to a value.
    EXPECT_EQ(c["byPtrConstValue"]->getCppPassingConvention(), kPassByPtrValue);
    EXPECT_EQ(c["byPtrValue"]->getCppPassingConvention(), kPassByPtrValue);
    EXPECT_EQ(c["byReferenceToPtr"]->getCppPassingConvention(), kPassByReferenceToPtr);
    EXPECT_EQ(c["byMutablePtrValue"]->getCppPassingConvention(), kPassByMutablePtrValue);
    EXPECT_EQ(c["byReferenceToMutablePtr"]->getCppPassingConvention(), kPassByReferenceToMutablePtr);
    EXPECT_EQ(c["byReturnValue"]->getCppPassingConvention(), kPassByReturnValue);
    for (auto const& entry : c) {
        EXPECT_TRUE(entry.second->hasCppPassingConvention()) << entry.first;
        EXPECT_TRUE(entry.second->isComplete()) << entry.first;
    }
    EXPECT_EQ(c["byValue"]->getType(), DmLibrary::getIntType());
    EXPECT_EQ(c["byReference"]->getType(), DmLibrary::getFloatType());
    EXPECT_EQ(c["byPtrConstValue"]->getType(), DmLibrary::getDoubleType());
    EXPECT_EQ(c["byPtrValue"]->getType(), DmLibrary::getStringType());
    EXPECT_EQ(c["byReferenceToPtr"]->getType(), arrayOf(DmLibrary::getIntType()));
    EXPECT_EQ(c["byMutablePtrValue"]->getType(), pair);
    EXPECT_EQ(c["byReferenceToMutablePtr"]->getType(), arrayOf(arrayOf(DmLibrary::getStringType())));
    EXPECT_EQ(c["byReturnValue"]->getType(), DmLibrary::getULongType());
    EXPECT_EQ(c["byPtrValue"]->getDirection(), kDirectionInput);
    EXPECT_EQ(c["byMutablePtrValue"]->getDirection(), kDirectionOutput);

    auto const roles = cppOperator("ports::roles");
    ASSERT_TRUE(roles);
    DmPortsInterface const& r = roles->getPortsInterface();
    EXPECT_EQ(r["limit"]->getIterationAttribute(), kIterationLimit);
    EXPECT_EQ(r["counter"]->getIterationAttribute(), kIterationCounter);
    EXPECT_EQ(r["target"]->getIterationAttribute(), kIterationTarget);
    EXPECT_EQ(r["targetOut"]->getIterationAttribute(), kIterationTarget);
    EXPECT_EQ(r["targetOut"]->getDirection(), kDirectionOutput);
    EXPECT_TRUE(r["gather"]->isDefaultFanIn());
    EXPECT_EQ(r["gather"]->getPortKind(), kPortDefaultFanIn);
    EXPECT_EQ(r["limit"]->getPortKind(), kPortPlain);
    EXPECT_EQ(r["anything"]->getType(), DmLibrary::getAutoType());
    EXPECT_EQ(stringItem(*r["anything"], "hint"), "any type");
    EXPECT_EQ(r["pair"]->getType(), pair);
    EXPECT_EQ(roles->getAssociatedPort(r["pairOut"].get()), r["pair"]);
    EXPECT_FALSE(roles->getAssociatedPort(r["plainOut"].get()));
    EXPECT_FALSE(roles->getAssociatedPort(r["pair"].get()));
    EXPECT_EQ(r["plainOut"]->getType(), DmLibrary::getBoolType());

    auto const merge = cppOperator("ports::merge");
    ASSERT_TRUE(merge);
    EXPECT_EQ(merge->associativity(), DmNodeDef::kLeftToRight);
    EXPECT_TRUE(merge->getPortsInterface()["a"]->isAssociative());
    EXPECT_TRUE(merge->getPortsInterface()["b"]->isAssociative());
    EXPECT_EQ(merge->getPortsInterface()["merged"]->getPortKind(), kPortPlain);
}

TEST_F(DmReaderCorpusDefinitionsTest, DefaultsOfEveryCommonTypeAreReadInTheThirdPass) {
    loadGood("204_port_defaults.json");
    auto const every = cppOperator("defaults::every");
    ASSERT_TRUE(every);
    DmPortsInterface const& p = every->getPortsInterface();
    ASSERT_TRUE(defaultOf<DmBoolValue>(*p["flag"]));
    EXPECT_TRUE(defaultOf<DmBoolValue>(*p["flag"])->getData());
    ASSERT_TRUE(defaultOf<DmCharValue>(*p["letter"]));
    EXPECT_EQ(defaultOf<DmCharValue>(*p["letter"])->getData(), -5);
    ASSERT_TRUE(defaultOf<DmUCharValue>(*p["byte"]));
    EXPECT_EQ(defaultOf<DmUCharValue>(*p["byte"])->getData(), 200);
    ASSERT_TRUE(defaultOf<DmShortValue>(*p["small"]));
    EXPECT_EQ(defaultOf<DmShortValue>(*p["small"])->getData(), -300);
    ASSERT_TRUE(defaultOf<DmUShortValue>(*p["usmall"]));
    EXPECT_EQ(defaultOf<DmUShortValue>(*p["usmall"])->getData(), 60000);
    ASSERT_TRUE(defaultOf<DmIntValue>(*p["count"]));
    EXPECT_EQ(defaultOf<DmIntValue>(*p["count"])->getData(), -70000);
    ASSERT_TRUE(defaultOf<DmUIntValue>(*p["ucount"]));
    EXPECT_EQ(defaultOf<DmUIntValue>(*p["ucount"])->getData(), 4000000000u);
    ASSERT_TRUE(defaultOf<DmLongValue>(*p["big"]));
    EXPECT_EQ(defaultOf<DmLongValue>(*p["big"])->getData(), -9000000000LL);
    ASSERT_TRUE(defaultOf<DmULongValue>(*p["ubig"]));
    EXPECT_EQ(defaultOf<DmULongValue>(*p["ubig"])->getData(), 18000000000000000000ULL);
    ASSERT_TRUE(defaultOf<DmFloatValue>(*p["ratio"]));
    EXPECT_EQ(defaultOf<DmFloatValue>(*p["ratio"])->getData(), 1.5f);
    ASSERT_TRUE(defaultOf<DmDoubleValue>(*p["precise"]));
    EXPECT_EQ(defaultOf<DmDoubleValue>(*p["precise"])->getData(), 2.25);
    ASSERT_TRUE(defaultOf<DmStringValue>(*p["label"]));
    EXPECT_EQ(defaultOf<DmStringValue>(*p["label"])->getData(), String("hello world"));

    auto const list = defaultOf<DmArrayValue>(*p["list"]);
    ASSERT_TRUE(list);
    ASSERT_EQ(list->size(), 3u);
    for (unsigned long long i = 0; i < 3; ++i) {
        auto const element = std::dynamic_pointer_cast<DmIntValue>(list->at(i));
        ASSERT_TRUE(element) << i;
        EXPECT_EQ(element->getData(), static_cast<int>(i) + 1);
    }

    auto const size = defaultOf<DmStructValue>(*p["size"]);
    ASSERT_TRUE(size);
    EXPECT_EQ(size->getType(), type("defaults::Size"));
    std::shared_ptr<DmBaseValue> width;
    std::shared_ptr<DmBaseValue> height;
    ASSERT_TRUE(size->getMember("width", width));
    ASSERT_TRUE(size->getMember("height", height));
    EXPECT_EQ(std::dynamic_pointer_cast<DmIntValue>(width)->getData(), 640);
    EXPECT_EQ(std::dynamic_pointer_cast<DmIntValue>(height)->getData(), 480);

    auto const color = defaultOf<DmEnumValue>(*p["color"]);
    ASSERT_TRUE(color);
    EXPECT_EQ(color->getData(), 20);
    String key;
    EXPECT_TRUE(color->getEnumerationName(key));
    EXPECT_EQ(key, String("green"));

    // An auto port reads its default with the type named beside it, and stays auto.
    EXPECT_EQ(p["loose"]->getType(), DmLibrary::getAutoType());
    ASSERT_TRUE(defaultOf<DmDoubleValue>(*p["loose"]));
    EXPECT_EQ(defaultOf<DmDoubleValue>(*p["loose"])->getData(), 0.5);
    EXPECT_EQ(p["looseList"]->getType(), DmLibrary::getAutoType());
    auto const looseList = defaultOf<DmArrayValue>(*p["looseList"]);
    ASSERT_TRUE(looseList);
    EXPECT_EQ(looseList->getType(), arrayOf(DmLibrary::getStringType()));
    ASSERT_EQ(looseList->size(), 2u);
    EXPECT_EQ(std::dynamic_pointer_cast<DmStringValue>(looseList->at(1))->getData(), String("b"));

    EXPECT_FALSE(p["none"]->getDefaultValueOverride());
    EXPECT_FALSE(p["result"]->getDefaultValueOverride());

    auto const show = terminal("defaults::Show");
    ASSERT_TRUE(show);
    auto const shown = defaultOf<DmStructValue>(*show->getPortsInterface()["size"]);
    ASSERT_TRUE(shown);
    std::shared_ptr<DmBaseValue> shownHeight;
    ASSERT_TRUE(shown->getMember("height", shownHeight));
    EXPECT_EQ(std::dynamic_pointer_cast<DmIntValue>(shownHeight)->getData(), 2);

    // A compound keeps the default of an auto input on its interface node.
    auto const graph = compound("defaults::graph");
    ASSERT_TRUE(graph);
    auto const seed = graph->getPortsInterface()["seed"];
    ASSERT_TRUE(seed);
    EXPECT_FALSE(seed->getDefaultValueOverride());
    std::shared_ptr<DmPort> const selfSeed = (*graph->getSelfNode())["seed"];
    ASSERT_TRUE(selfSeed);
    auto const seedValue = std::dynamic_pointer_cast<DmIntValue>(selfSeed->getDefaultValue());
    ASSERT_TRUE(seedValue);
    EXPECT_EQ(seedValue->getData(), 7);
    auto const scale = defaultOf<DmFloatValue>(*graph->getPortsInterface()["scale"]);
    ASSERT_TRUE(scale);
    EXPECT_EQ(scale->getData(), 0.25f);
}

TEST_F(DmReaderCorpusDefinitionsTest, AutoInputOfACompoundStaysAutoWhenItsDefaultIsKeptOnTheInterfaceNode) {
    loadGood("204_port_defaults.json");
    auto const graph = compound("defaults::graph");
    ASSERT_TRUE(graph);
    EXPECT_EQ(graph->getPortsInterface()["seed"]->getType(), DmLibrary::getAutoType());
}

TEST_F(DmReaderCorpusDefinitionsTest, JobPortsOfConcreteTypesAreAddedInOrder) {
    loadGood("205_job_ports.json");
    auto const run = cppOperator("jobs::run");
    ASSERT_TRUE(run);
    auto const& jobs = run->getJobPorts();
    ASSERT_EQ(jobs.size(), 3u);
    EXPECT_EQ(jobs[0]->getName(), "services");
    EXPECT_EQ(jobs[0]->getType(), DmLibrary::getStringType());
    EXPECT_EQ(jobs[1]->getName(), "settings");
    EXPECT_EQ(jobs[1]->getType(), type("jobs::Settings"));
    EXPECT_EQ(jobs[2]->getName(), "history");
    EXPECT_EQ(jobs[2]->getType(), arrayOf(DmLibrary::getDoubleType()));
    for (auto const& job : jobs) {
        EXPECT_TRUE(job->isComplete()) << job->getName();
    }
    // One object in place of a list is a list of one.
    auto const single = cppOperator("jobs::single");
    ASSERT_TRUE(single);
    ASSERT_EQ(single->getJobPorts().size(), 1u);
    EXPECT_EQ(single->getJobPorts()[0]->getName(), "counter");
    EXPECT_EQ(single->getJobPorts()[0]->getType(), DmLibrary::getLongType());
}

TEST_F(DmReaderCorpusDefinitionsTest, OverloadsWithCompatiblePortsJoinOneSet) {
    ASSERT_EQ(loadCorpusAs("206_overloads.json", kAsOverload), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const add = set("calc::add");
    ASSERT_TRUE(add);
    ASSERT_EQ(add->getOverloads().size(), 2u);
    auto const ints = cppOperator("calc::add", 0);
    auto const floats = cppOperator("calc::add", 1);
    ASSERT_TRUE(ints);
    ASSERT_TRUE(floats);
    EXPECT_EQ(ints->getMangleName(DmMangledName::kMangledNameItanium), "_ZN4calc3addEii");
    EXPECT_EQ(floats->getMangleName(DmMangledName::kMangledNameItanium), "_ZN4calc3addEff");
    EXPECT_EQ(ints->getPortsInterface()["sum"]->getType(), DmLibrary::getIntType());
    EXPECT_EQ(floats->getPortsInterface()["sum"]->getType(), DmLibrary::getFloatType());
    EXPECT_FALSE(ints->isDefaultOverload());
    EXPECT_TRUE(floats->isDefaultOverload());
    EXPECT_EQ(portNames(*floats), (std::vector<std::string>{"a", "b", "sum"}));
    EXPECT_TRUE(cppOperator("calc::negate"));
}

TEST_F(DmReaderCorpusDefinitionsTest, OverloadsWithCompatiblePortsKeepTheFirstUnderTheDefaultResolution) {
    loadGood("206_overloads.json");
    ASSERT_TRUE(set("calc::add"));
    ASSERT_EQ(set("calc::add")->getOverloads().size(), 1u);
    EXPECT_EQ(cppOperator("calc::add")->getPortsInterface()["a"]->getType(), DmLibrary::getIntType());
    EXPECT_TRUE(cppOperator("calc::negate"));
}

TEST_F(DmReaderCorpusDefinitionsTest, FeedbackLinkPairsACompoundInputWithAnOutput) {
    loadGood("207_feedback.json");
    auto const accumulate = compound("loops::accumulate");
    ASSERT_TRUE(accumulate);
    DmPortsInterface const& ports = accumulate->getPortsInterface();
    EXPECT_EQ(ports["total"]->getLinkedPort(), ports["next"].get());
    EXPECT_EQ(ports["next"]->getLinkedPort(), ports["total"].get());
    EXPECT_TRUE(ports["total"]->isFeedback());
    EXPECT_TRUE(ports["next"]->isFeedback());
    EXPECT_FALSE(ports["step"]->isLinked());
    auto const total = defaultOf<DmIntValue>(*ports["total"]);
    ASSERT_TRUE(total);
    EXPECT_EQ(total->getData(), 0);
}

// ---------------------------------------------------------------------------
// Edge cases

TEST_F(DmReaderCorpusDefinitionsTest, BadDirectionTextIsReportedAndThePortStaysInTheInterface) {
    EXPECT_EQ(loadCorpus("250_bad_ports.json"), DmStatus::kFailure);
    EXPECT_THAT(lines(), Contains(lineOf("warning", "250_bad_ports.json", "Missing port direction.",
                                         "The port 'bad::ports::sideways' does not have a direction.")));
    auto const ports = cppOperator("bad::ports");
    ASSERT_TRUE(ports);
    auto const sideways = ports->getPortsInterface()["sideways"];
    ASSERT_TRUE(sideways);
    EXPECT_EQ(portNames(*ports).front(), "sideways");
    EXPECT_EQ(sideways->getDirection(), kDirectionUnset);
    EXPECT_EQ(sideways->getType(), DmLibrary::getIntType());
    EXPECT_FALSE(sideways->isComplete());
}

TEST_F(DmReaderCorpusDefinitionsTest, OperatorRepeatingANameWithOtherPortsIsReported) {
    EXPECT_EQ(loadCorpus("257_bad_overloads.json"), DmStatus::kSuccess);
    std::string const message =
        "Operator 'dup::f' defined in 'file:///257_bad_overloads.json' has incompatible "
        "ports interface with existing definition from 'file:///257_bad_overloads.json'.";
    EXPECT_EQ(lines(), (std::vector<std::string>(3, lineOf("warning", "257_bad_overloads.json",
                                                           "Invalid overload ports interface.", message))));
}

TEST_F(DmReaderCorpusDefinitionsTest, ArrayOfAutoPortTypeEndsAsAnAutoPortWithAWarning) {
    EXPECT_EQ(loadCorpus("250_bad_ports.json"), DmStatus::kFailure);
    EXPECT_THAT(lines(), Contains(lineOf("warning", "250_bad_ports.json", "Illegal array of auto type.",
                                         "The port 'bad::ports::autos' has illegal type 'array<auto>', using "
                                         "'auto' type instead.")));
    auto const autos = cppOperator("bad::ports")->getPortsInterface()["autos"];
    ASSERT_TRUE(autos);
    EXPECT_EQ(autos->getType(), DmLibrary::getAutoType());
    EXPECT_TRUE(autos->isComplete());
}

TEST_F(DmReaderCorpusDefinitionsTest, IterationLimitOnAnOutputIsAnErrorAndStaysUnset) {
    EXPECT_EQ(loadCorpus("254_bad_iteration.json"), DmStatus::kFailure);
    EXPECT_THAT(lines(), Contains(lineOf("error", "254_bad_iteration.json", "Invalid iteration limit",
                                         "The output port 'limit' can not be an iteration limit.")));
    auto const limit = cppOperator("iter::f")->getPortsInterface()["limit"];
    ASSERT_TRUE(limit);
    EXPECT_EQ(limit->getIterationAttribute(), kIterationNone);
    EXPECT_EQ(limit->getDirection(), kDirectionOutput);
}

TEST_F(DmReaderCorpusDefinitionsTest, CompoundFeedbackNamingAMissingPortIsNotFound) {
    EXPECT_EQ(loadCorpus("260_bad_feedback.json"), DmStatus::kFailure);
    EXPECT_THAT(lines(), Contains(lineOf("error", "260_bad_feedback.json", "Feedback port not found.",
                                         "The output feedback port 'nowhere' was not found.")));
    auto const missing = compound("fb::missing");
    ASSERT_TRUE(missing);
    EXPECT_FALSE(missing->getPortsInterface()["a"]->isLinked());
    EXPECT_FALSE(missing->getPortsInterface()["r"]->isLinked());
}

// ---------------------------------------------------------------------------
// Bad files: their lines, and what loads after the faulty objects

TEST_F(DmReaderCorpusDefinitionsTest, BadPortsAreReportedAndTheRestLoads) {
    loadBad("250_bad_ports");
    auto const ops = cppOperator("bad::ports");
    ASSERT_TRUE(ops);
    DmPortsInterface const& ports = ops->getPortsInterface();
    EXPECT_EQ(portNames(*ops), (std::vector<std::string>{"sideways", "autos", "limit", "good"}));
    auto const good = defaultOf<DmIntValue>(*ports["good"]);
    ASSERT_TRUE(good);
    EXPECT_EQ(good->getData(), 3);
    ASSERT_TRUE(terminal("bad::Sink"));
    EXPECT_EQ(terminal("bad::Sink")->getPortsInterface()["in"]->getType(), DmLibrary::getIntType());
}

TEST_F(DmReaderCorpusDefinitionsTest, BadOperatorsAreReportedAndTheRestLoads) {
    loadBad("251_bad_operators");
    auto const policy = cppOperator("bad::policy");
    ASSERT_TRUE(policy);
    EXPECT_EQ(policy->getCancellationPolicy(), library().getDefaultCancellationPolicy());
    EXPECT_TRUE(policy->getPortsInterface().hasPort("in"));
    auto const good = cppOperator("bad::good");
    ASSERT_TRUE(good);
    EXPECT_EQ(good->getPortsInterface()["in"]->getType(), DmLibrary::getIntType());
    EXPECT_EQ(good->getMangleName(DmMangledName::kMangledNameItanium), "_ZN3bad4goodEv");
}

TEST_F(DmReaderCorpusDefinitionsTest, BadPortTypesAreReportedAndTheRestLoads) {
    loadBad("252_bad_port_types");
    auto const f = cppOperator("types::f");
    ASSERT_TRUE(f);
    DmPortsInterface const& ports = f->getPortsInterface();
    EXPECT_EQ(portNames(*f), (std::vector<std::string>{"thing", "things", "nested", "good"}));
    EXPECT_EQ(ports["thing"]->getType()->getTypeKind(), kTypeUndefined);
    EXPECT_FALSE(ports["thing"]->isComplete());
    EXPECT_FALSE(ports["things"]->isComplete());
    EXPECT_EQ(ports["nested"]->getType(), DmLibrary::getAutoType());
    EXPECT_TRUE(ports["good"]->isComplete());
    auto const after = cppOperator("types::after");
    ASSERT_TRUE(after);
    EXPECT_EQ(after->getPortsInterface()["in"]->getType(), DmLibrary::getFloatType());
    EXPECT_TRUE(after->getPortsInterface()["in"]->isComplete());
}

TEST_F(DmReaderCorpusDefinitionsTest, BadConventionsAreReportedAndTheRestLoads) {
    loadBad("253_bad_conventions");
    auto const f = cppOperator("conv::f");
    ASSERT_TRUE(f);
    DmPortsInterface const& ports = f->getPortsInterface();
    EXPECT_EQ(portNames(*f), (std::vector<std::string>{"none", "odd", "lower", "good"}));
    EXPECT_FALSE(ports["none"]->hasCppPassingConvention());
    EXPECT_FALSE(ports["odd"]->hasCppPassingConvention());
    EXPECT_FALSE(ports["lower"]->hasCppPassingConvention());
    EXPECT_EQ(ports["good"]->getCppPassingConvention(), kPassByReturnValue);
    auto const after = cppOperator("conv::after");
    ASSERT_TRUE(after);
    EXPECT_EQ(after->getPortsInterface()["in"]->getCppPassingConvention(), kPassByReferenceToMutablePtr);
    auto const sink = terminal("conv::Sink");
    ASSERT_TRUE(sink);
    EXPECT_FALSE(sink->getPortsInterface()["in"]->hasCppPassingConvention());
}

TEST_F(DmReaderCorpusDefinitionsTest, BadIterationRolesAreReportedAndTheRestLoads) {
    loadBad("254_bad_iteration");
    DmPortsInterface const& ports = cppOperator("iter::f")->getPortsInterface();
    EXPECT_EQ(ports["counter"]->getIterationAttribute(), kIterationNone);
    // The refused limit leaves the target that follows it.
    EXPECT_EQ(ports["both"]->getIterationAttribute(), kIterationTarget);
    EXPECT_EQ(ports["inLimit"]->getIterationAttribute(), kIterationLimit);
    auto const after = cppOperator("iter::after");
    ASSERT_TRUE(after);
    EXPECT_EQ(after->getPortsInterface()["counter"]->getIterationAttribute(), kIterationCounter);
}

TEST_F(DmReaderCorpusDefinitionsTest, BadJobPortsAreReportedAndTheRestLoads) {
    loadBad("255_bad_job_ports");
    auto const f = cppOperator("jobs::f");
    ASSERT_TRUE(f);
    auto const& jobs = f->getJobPorts();
    ASSERT_EQ(jobs.size(), 2u);
    // A job port of an undefined type is kept, not complete.
    EXPECT_EQ(jobs[0]->getName(), "missing");
    EXPECT_EQ(jobs[0]->getType()->getTypeKind(), kTypeUndefined);
    EXPECT_FALSE(jobs[0]->isComplete());
    EXPECT_EQ(jobs[1]->getName(), "services");
    EXPECT_EQ(jobs[1]->getType(), DmLibrary::getStringType());
    auto const wrongForm = cppOperator("jobs::wrongForm");
    ASSERT_TRUE(wrongForm);
    EXPECT_TRUE(wrongForm->getJobPorts().empty());
    EXPECT_TRUE(wrongForm->getPortsInterface().hasPort("in"));
    auto const after = cppOperator("jobs::after");
    ASSERT_TRUE(after);
    ASSERT_EQ(after->getJobPorts().size(), 1u);
    EXPECT_EQ(after->getJobPorts()[0]->getType(), DmLibrary::getLongType());
}

TEST_F(DmReaderCorpusDefinitionsTest, BadAssociativityIsReportedAndTheRestLoads) {
    loadBad("256_bad_associativity");
    auto const sideways = cppOperator("assoc::sideways");
    ASSERT_TRUE(sideways);
    EXPECT_EQ(sideways->associativity(), DmNodeDef::kNotAssociative);
    EXPECT_TRUE(sideways->getPortsInterface()["a"]->isAssociative());
    auto const three = cppOperator("assoc::three");
    ASSERT_TRUE(three);
    EXPECT_EQ(three->associativity(), DmNodeDef::kLeftToRight);
    EXPECT_TRUE(three->getPortsInterface()["c"]->isAssociative());
    auto const twoOutputs = cppOperator("assoc::twoOutputs");
    ASSERT_TRUE(twoOutputs);
    EXPECT_EQ(twoOutputs->associativity(), DmNodeDef::kRightToLeft);
    auto const outputMarked = cppOperator("assoc::outputMarked");
    ASSERT_TRUE(outputMarked);
    EXPECT_FALSE(outputMarked->getPortsInterface()["r"]->isAssociative());
    EXPECT_EQ(outputMarked->getPortsInterface()["r"]->getDirection(), kDirectionOutput);
    auto const fine = cppOperator("assoc::fine");
    ASSERT_TRUE(fine);
    EXPECT_EQ(fine->associativity(), DmNodeDef::kLeftToRight);
    EXPECT_TRUE(fine->getPortsInterface()["b"]->isAssociative());

    auto const graph = compound("assoc::graph");
    ASSERT_TRUE(graph);
    EXPECT_EQ(graph->associativity(), DmNodeDef::kNotAssociative);
    auto const upward = compound("assoc::upwardGraph");
    ASSERT_TRUE(upward);
    EXPECT_EQ(upward->associativity(), DmNodeDef::kNotAssociative);
    auto const fineGraph = compound("assoc::fineGraph");
    ASSERT_TRUE(fineGraph);
    EXPECT_EQ(fineGraph->associativity(), DmNodeDef::kRightToLeft);
    EXPECT_TRUE(fineGraph->getPortsInterface()["a"]->isAssociative());
}

TEST_F(DmReaderCorpusDefinitionsTest, BadOverloadsAreReportedAndTheRestLoads) {
    loadBad("257_bad_overloads");
    // Under the default resolution the repeated names stay out of the library.
    ASSERT_TRUE(set("dup::f"));
    ASSERT_EQ(set("dup::f")->getOverloads().size(), 1u);
    EXPECT_EQ(portNames(*cppOperator("dup::f")), (std::vector<std::string>{"a", "r"}));
    EXPECT_EQ(cppOperator("dup::f")->getPortsInterface()["r"]->getDirection(), kDirectionOutput);
    auto const after = cppOperator("dup::after");
    ASSERT_TRUE(after);
    EXPECT_TRUE(after->getPortsInterface().hasPort("in"));
}

TEST_F(DmReaderCorpusDefinitionsTest, IncompatibleOverloadsAreReportedAndJoinTheSetAsOverloads) {
    ASSERT_EQ(loadCorpusAs("257_bad_overloads.json", kAsOverload), DmStatus::kSuccess);
    EXPECT_EQ(lines(), sidecar("257_bad_overloads").lines);
    ASSERT_TRUE(set("dup::f"));
    EXPECT_EQ(set("dup::f")->getOverloads().size(), 4u);
    EXPECT_TRUE(cppOperator("dup::after"));
}

TEST_F(DmReaderCorpusDefinitionsTest, BadTerminalsAreReportedAndTheRestLoads) {
    loadBad("258_bad_terminals");
    auto const illegal = terminal("term::2nd");
    ASSERT_TRUE(illegal);
    EXPECT_EQ(illegal->getName(), "2nd");
    ASSERT_TRUE(terminal("term::portless"));
    EXPECT_EQ(terminal("term::portless")->getPortsInterface().size(), 0u);
    ASSERT_TRUE(terminal("term::listless"));
    EXPECT_EQ(terminal("term::listless")->getPortsInterface().size(), 0u);
    ASSERT_TRUE(terminal("term::badMetadata"));
    EXPECT_TRUE(terminal("term::badMetadata")->getPortsInterface().hasPort("in"));
    ASSERT_TRUE(terminal("term::autoPort"));
    EXPECT_EQ(portNames(*terminal("term::autoPort")), (std::vector<std::string>{"in"}));
    auto const after = terminal("term::after");
    ASSERT_TRUE(after);
    auto const done = defaultOf<DmStringValue>(*after->getPortsInterface()["in"]);
    ASSERT_TRUE(done);
    EXPECT_EQ(done->getData(), String("done"));
}

TEST_F(DmReaderCorpusDefinitionsTest, BadPortDefaultsAreReportedAndTheRestLoads) {
    loadBad("259_bad_port_defaults");
    auto const f = cppOperator("defaults::f");
    ASSERT_TRUE(f);
    DmPortsInterface const& ports = f->getPortsInterface();
    for (std::string const name : {"count", "flag", "list", "loose", "looseUndefined"}) {
        ASSERT_TRUE(ports[name]) << name;
        EXPECT_FALSE(ports[name]->getDefaultValueOverride()) << name;
    }
    EXPECT_EQ(ports["looseUndefined"]->getType(), DmLibrary::getAutoType());
    ASSERT_TRUE(defaultOf<DmIntValue>(*ports["good"]));
    EXPECT_EQ(defaultOf<DmIntValue>(*ports["good"])->getData(), 3);
    auto const after = cppOperator("defaults::after");
    ASSERT_TRUE(after);
    ASSERT_TRUE(defaultOf<DmDoubleValue>(*after->getPortsInterface()["in"]));
    EXPECT_EQ(defaultOf<DmDoubleValue>(*after->getPortsInterface()["in"])->getData(), 0.5);
}

TEST_F(DmReaderCorpusDefinitionsTest, BadFeedbackLinksAreReportedAndTheRestLoads) {
    loadBad("260_bad_feedback");
    auto const op = cppOperator("fb::op");
    ASSERT_TRUE(op);
    EXPECT_FALSE(op->getPortsInterface()["a"]->isLinked());
    ASSERT_TRUE(compound("fb::toInput"));
    EXPECT_FALSE(compound("fb::toInput")->getPortsInterface()["a"]->isLinked());
    EXPECT_FALSE(compound("fb::toInput")->getPortsInterface()["b"]->isLinked());
    ASSERT_TRUE(compound("fb::onOutput"));
    EXPECT_FALSE(compound("fb::onOutput")->getPortsInterface()["r"]->isLinked());
    auto const loop = std::dynamic_pointer_cast<DmWhileCompound>(compound("fb::loop"));
    ASSERT_TRUE(loop);
    EXPECT_FALSE(loop->getPortsInterface()["a"]->isFeedback());
    auto const after = compound("fb::after");
    ASSERT_TRUE(after);
    EXPECT_EQ(after->getPortsInterface()["a"]->getLinkedPort(), after->getPortsInterface()["r"].get());
    EXPECT_TRUE(after->getPortsInterface()["a"]->isFeedback());
}

TEST_F(DmReaderCorpusDefinitionsTest, BadOperatorFormsAreReportedAndTheRestLoads) {
    loadBad("261_bad_operator_form");
    auto const illegal = cppOperator("ops::2nd");
    ASSERT_TRUE(illegal);
    EXPECT_EQ(illegal->getName(), "2nd");
    auto const unmangled = cppOperator("ops::unmangled");
    ASSERT_TRUE(unmangled);
    EXPECT_FALSE(unmangled->isMangleNameDeclared(DmMangledName::kMangledNameMicrosoft));
    EXPECT_FALSE(unmangled->isMangleNameDeclared(DmMangledName::kMangledNameItanium));
    EXPECT_EQ(unmangled->getMangleName(DmMangledName::kMangledNameItanium), "");
    EXPECT_TRUE(unmangled->getPortsInterface().hasPort("in"));
    ASSERT_TRUE(cppOperator("ops::portless"));
    EXPECT_EQ(cppOperator("ops::portless")->getPortsInterface().size(), 0u);
    ASSERT_TRUE(cppOperator("ops::listless"));
    EXPECT_EQ(cppOperator("ops::listless")->getPortsInterface().size(), 0u);
    ASSERT_TRUE(cppOperator("ops::badMetadata"));
    EXPECT_TRUE(cppOperator("ops::badMetadata")->getPortsInterface().hasPort("in"));
    auto const after = cppOperator("ops::after");
    ASSERT_TRUE(after);
    EXPECT_TRUE(after->isMangleNameDeclared(DmMangledName::kMangledNameItanium));
    EXPECT_EQ(after->getPortsInterface()["in"]->getType(), DmLibrary::getIntType());
}

TEST_F(DmReaderCorpusDefinitionsTest, BadPortNamesAreReportedAndTheRestLoads) {
    loadBad("262_bad_port_names");
    auto const f = cppOperator("names::f");
    ASSERT_TRUE(f);
    EXPECT_EQ(portNames(*f), (std::vector<std::string>{"2a", "a", "b"}));
    // The first port of a name stays.
    EXPECT_EQ(f->getPortsInterface()["a"]->getDirection(), kDirectionInput);
    EXPECT_EQ(f->getPortsInterface()["a"]->getType(), DmLibrary::getIntType());
    EXPECT_EQ(f->getPortsInterface()["b"]->getType(), DmLibrary::getFloatType());
    ASSERT_TRUE(cppOperator("names::after"));
    EXPECT_TRUE(cppOperator("names::after")->getPortsInterface().hasPort("in"));
}

TEST_F(DmReaderCorpusDefinitionsTest, BadDefaultFanInIsReportedAndTheRestLoads) {
    loadBad("263_bad_default_fan_in");
    DmPortsInterface const& ports = cppOperator("fan::f")->getPortsInterface();
    EXPECT_FALSE(ports["one"]->isDefaultFanIn());
    EXPECT_FALSE(ports["out"]->isDefaultFanIn());
    EXPECT_TRUE(ports["many"]->isDefaultFanIn());
    auto const after = cppOperator("fan::after");
    ASSERT_TRUE(after);
    EXPECT_TRUE(after->getPortsInterface()["any"]->isDefaultFanIn());
    EXPECT_EQ(after->getPortsInterface()["any"]->getType(), DmLibrary::getAutoType());
}

TEST_F(DmReaderCorpusDefinitionsTest, BadPortAssociationsAreReportedAndTheRestLoads) {
    loadBad("264_bad_port_association");
    auto const sink = terminal("assoc::Sink");
    ASSERT_TRUE(sink);
    EXPECT_EQ(portNames(*sink), (std::vector<std::string>{"a", "b"}));
    auto const graph = compound("assoc::graph");
    ASSERT_TRUE(graph);
    EXPECT_EQ(portNames(*graph), (std::vector<std::string>{"in", "out"}));
    auto const op = cppOperator("assoc::op");
    ASSERT_TRUE(op);
    DmPortsInterface const& ports = op->getPortsInterface();
    // A name that is not in the interface associates nothing, without a message.
    EXPECT_FALSE(op->getAssociatedPort(ports["out"].get()));
    EXPECT_EQ(op->getAssociatedPort(ports["pair"].get()), ports["in"]);
}
