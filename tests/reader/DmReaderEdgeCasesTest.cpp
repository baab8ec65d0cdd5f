// Edge cases of the reader, each checked through a whole load: the exact
// status, the exact printed lines, and the model that the file leaves behind.
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>
#include <KestoDM/types/DmStructType.h>

#include "reader/NodeDefReadingTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using KestoTest::longForm;

namespace {

using Lines = std::vector<std::string>;

class DmReaderEdgeCasesTest : public KestoTest::NodeDefReadingTest {
protected:
    void SetUp() override {
        KestoTest::NodeDefReadingTest::SetUp();
        expectGraphsBackAtEnd();
    }

    /// Writes `text` as it stands into `name` and loads it; the status of the load.
    DmStatus loadText(std::string const& name, std::string const& text) {
        return library().loadGraph(longForm(m_dir.write(name, text)), DmLibrary::LoadOptions());
    }

    /// The compound of that full name in the library, or null.
    std::shared_ptr<DmCompound> compound(std::string const& name) {
        auto const all = library().getCompounds();
        auto const found = all.find(name);
        return found != all.end() ? found->second : nullptr;
    }

    /// The items named `name` in the metadata of the URI of `file`.
    std::vector<std::shared_ptr<DmMetadataItem>> uriItems(std::string const& file, std::string const& name) {
        std::vector<std::shared_ptr<DmMetadataItem>> out;
        auto const fileURI = uri(file);
        if (fileURI) {
            for (auto const& item : *fileURI->getMetadata()->getMetadataItems()) {
                if (item->getName() == name) {
                    out.push_back(item);
                }
            }
        }
        return out;
    }

    /// Expects that the definitions of `everySection(..., space)` were all read:
    /// those of the first passes and the contents of the compound, which
    /// come last.
    void expectWholeFileRead(std::string const& space) {
        EXPECT_EQ(library().getConstNamespaces().count(space), 1u) << space;
        auto const point = typeAs<DmStructType>(space + "::Point");
        ASSERT_TRUE(point) << space;
        EXPECT_TRUE(point->findMember("x"));
        auto const gain = global(space + "::gain");
        ASSERT_TRUE(gain) << space;
        EXPECT_EQ(gain->getType(), DmLibrary::getIntType());
        auto const gainValue = std::dynamic_pointer_cast<DmIntValue const>(gain->getDefaultValue());
        ASSERT_TRUE(gainValue) << space;
        EXPECT_EQ(gainValue->getData(), 3);
        auto const nop = cppOperator(space + "::nop");
        ASSERT_TRUE(nop) << space;
        EXPECT_TRUE(nop->getPortsInterface().hasPort("a"));
        auto const c = compound(space + "::c");
        ASSERT_TRUE(c) << space;
        auto const g = c->findNode("g");
        ASSERT_TRUE(g && c->findNode("p")) << space;
        EXPECT_EQ(c->getConnections().size(), 2u);
        auto const index = (*g)["index"];
        ASSERT_TRUE(index);
        auto const indexValue = std::dynamic_pointer_cast<DmLongValue>(index->getDefaultValue());
        ASSERT_TRUE(indexValue) << space;
        EXPECT_EQ(indexValue->getData(), 2);
    }

    /// A file of every section in the namespace `space`, after the header
    /// whose version item is `versionItem` (its members after the name).
    static std::string everySection(std::string const& versionItem, std::string const& space) {
        return R"({"header": {"metadata": [{"metaName": "mvrkFileFormatVersion")" + versionItem + R"(}]},
            "namespaces": {"name": ")" +
               space + R"("},
            "types": {"structName": ")" +
               space + R"(::Point", "structMembers": {"memberName": "x", "memberType": "int"}},
            "globalVariables": {"name": ")" +
               space + R"(::gain", "type": "int", "defaultValue": "3"},
            "operators": )" +
               op(space + "::nop", R"(, "ports": )" + opPort("a", "input", "int")) + R"(,
            "compounds": {"name": ")" +
               space + R"(::c",
                "ports": [{"portName": "in", "portDirection": "input", "portType": "int"},
                          {"portName": "out", "portDirection": "output", "portType": "int"}],
                "compoundNodes": [{"nodeName": "p", "nodeType": "Core::Graph::pass"},
                                  {"nodeName": "g", "nodeType": "Core::Array::get_from_array"}],
                "connections": [{"source": ".in", "target": "p.input"}, {"source": "p.output", "target": ".out"}],
                "values": {"valueName": "g.index", "value": "2"}}})";
    }
};

} // namespace

TEST_F(DmReaderEdgeCasesTest, ScalarUnderAnUnknownRootKeyIsBadlyFormedOnceInEachOfTheFourPasses) {
    EXPECT_EQ(load(R"(, "extra": "scalar",
                      "types": {"structName": "geo::Point", "structMembers": {"memberName": "x", "memberType": "int"}})"),
              DmStatus::kFailure);
    EXPECT_EQ(printed(), Lines(4, error("Badly formed json file.", "The json file is badly formed.")));
    // The known section beside it is read all the same.
    auto const point = typeAs<DmStructType>("geo::Point");
    ASSERT_TRUE(point);
    EXPECT_TRUE(point->findMember("x"));
}

TEST_F(DmReaderEdgeCasesTest,
       NewerVersionTypedLongIsOneErrorAndWithTheLongSuffixNoneAndBothFilesAreReadToTheEnd) {
    EXPECT_EQ(loadText("a.json", everySection(R"(, "metaType": "long", "metaValue": "101")", "typed")),
              DmStatus::kFailure);
    EXPECT_EQ(printed(), (Lines{error("File format version is more recent than library.",
                                      "File format version '101' is more recent than library '100' : "
                                      "file:///a.json")}));
    expectWholeFileRead("typed");

    EXPECT_EQ(loadText("b.json", everySection(R"(, "metaValue": "101L")", "suffixed")), DmStatus::kSuccess);
    EXPECT_EQ(printed(), Lines{});
    expectWholeFileRead("suffixed");
    // The text with the suffix reads to an int item, which the version check does not see.
    auto const version = uriItems("b.json", "mvrkFileFormatVersion");
    ASSERT_EQ(version.size(), 1u);
    auto const versionValue = std::dynamic_pointer_cast<DmIntValue>(version.front()->getValue());
    ASSERT_TRUE(versionValue);
    EXPECT_EQ(versionValue->getData(), 101);
}

TEST_F(DmReaderEdgeCasesTest, OneAndAHalfWithoutAMetaTypeIsAnUnknownValueAndWithTheDoubleTypeADouble) {
    EXPECT_EQ(loadText("a.json", R"({"header": {"metadata": [
                  {"metaName": "mvrkFileFormatVersion", "metaValue": "100L"},
                  {"metaName": "guessed", "metaValue": "1.5"},
                  {"metaName": "typed", "metaType": "double", "metaValue": "1.5"}]}})"),
              DmStatus::kFailure);
    EXPECT_EQ(printed(), (Lines{error("Unknown value.", "The type of the value '1.5' is unknown.")}));
    EXPECT_TRUE(uriItems("a.json", "guessed").empty());
    auto const typed = uriItems("a.json", "typed");
    ASSERT_EQ(typed.size(), 1u);
    auto const value = std::dynamic_pointer_cast<DmDoubleValue>(typed.front()->getValue());
    ASSERT_TRUE(value);
    EXPECT_EQ(value->getData(), 1.5);
}
