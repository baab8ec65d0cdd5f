// Namespaces declared by graph files: made by their path under the global
// namespace, given the file's URI and their metadata; the roots cannot be declared.
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include "reader/DefinitionReadingTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Kesto;
using Lines = std::vector<std::string>;

namespace {

class DmReadNamespacesTest : public KestoTest::DefinitionReadingTest {
protected:
    void SetUp() override {
        DefinitionReadingTest::SetUp();
        m_before = library().getConstNamespaces().size();
    }

    /// How many namespaces the load added to those a library is born with.
    std::size_t added() { return library().getConstNamespaces().size() - m_before; }

    std::shared_ptr<DmNamespace> nested(DmNamespace const& in, std::string const& name) {
        auto const found = in.getNestedNamespaces().find(name);
        return found == in.getNestedNamespaces().end() ? nullptr : found->second;
    }
    std::shared_ptr<DmNamespace> top(std::string const& name) {
        return nested(*library().getGlobalNamespace(), name);
    }

    std::size_t m_before = 0;
};

} // namespace

TEST_F(DmReadNamespacesTest, NamespaceIsMadeAlongItsPathWithTheFilesURI) {
    ASSERT_EQ(load(R"(, "namespaces": [{"name": "geometry::shapes"}])"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    std::shared_ptr<DmNamespace> const geometry = top("geometry");
    ASSERT_NE(geometry, nullptr);
    std::shared_ptr<DmNamespace> const shapes = nested(*geometry, "shapes");
    ASSERT_NE(shapes, nullptr);
    ASSERT_NE(uri(), nullptr);
    EXPECT_EQ(shapes->getURI(), uri());
    // Only the namespace the file declares is the file's.
    EXPECT_EQ(geometry->getURI(), nullptr);
    EXPECT_EQ(added(), 2u);
}

TEST_F(DmReadNamespacesTest, NameIsNormalised) {
    ASSERT_EQ(load(R"(, "namespaces": {"name": " geometry :: shapes "})"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    ASSERT_NE(top("geometry"), nullptr);
    EXPECT_NE(nested(*top("geometry"), "shapes"), nullptr);
}

TEST_F(DmReadNamespacesTest, MetadataLandsOnTheNamespace) {
    ASSERT_EQ(load(R"(, "namespaces": [{"name": "geometry", "metadata": [)"
                   R"({"metaName": "author", "metaType": "string", "metaValue": "me"},)"
                   R"({"metaName": "level", "metaValue": "3L"}]}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    std::shared_ptr<DmNamespace> const geometry = top("geometry");
    ASSERT_NE(geometry, nullptr);
    auto const& items = *geometry->getMetadata()->getMetadataItems();
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items.front()->getName(), "author");
    EXPECT_EQ(items.back()->getName(), "level");
}

TEST_F(DmReadNamespacesTest, NamespaceDeclaredTwiceIsOneNamespace) {
    ASSERT_EQ(load(R"(, "namespaces": [{"name": "geometry"}, {"name": "::geometry"}])"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_EQ(added(), 1u);
}

TEST_F(DmReadNamespacesTest, NamespaceWithoutNameIsAWarning) {
    EXPECT_EQ(load(R"(, "namespaces": [{"metadata": []}, {"name": ""}, {"name": 3}, {"name": "kept"}])"),
              DmStatus::kSuccess);
    Lines const one{warning("Missing namespace name.", "Namespace needs to have at least a name.")};
    EXPECT_EQ(printed(), (Lines{one[0], one[0], one[0]}));
    EXPECT_NE(top("kept"), nullptr);
    EXPECT_EQ(added(), 1u);
}

TEST_F(DmReadNamespacesTest, IllegalNameIsAWarningAndTheNamespaceIsStillMade) {
    EXPECT_EQ(load(R"(, "namespaces": [{"name": "geometry::2d"}])"), DmStatus::kSuccess);
    EXPECT_EQ(printed(), (Lines{warning("Illegal namespace name",
                                        "The namespace \"geometry::2d\" has an illegal name.")}));
    ASSERT_NE(top("geometry"), nullptr);
    ASSERT_NE(nested(*top("geometry"), "2d"), nullptr);
    EXPECT_EQ(nested(*top("geometry"), "2d")->getURI(), uri());
}

TEST_F(DmReadNamespacesTest, NamespaceNamedAsTheBuiltInNamespaceIsRefused) {
    EXPECT_EQ(
        load(R"(, "namespaces": [{"name": "_KestoBuiltInNamespace", "metadata": [{"metaName": "x"}]}])"),
        DmStatus::kSuccess);
    EXPECT_EQ(printed(),
              (Lines{warning("Invalid namespace.", "Cannot persist the global or built-in namespaces")}));
    EXPECT_EQ(added(), 0u);
    EXPECT_TRUE(DmLibrary::getBuiltInNamespace()->getMetadata()->find("x").empty());
}

TEST_F(DmReadNamespacesTest, NamespaceNamedAsTheGlobalNamespaceIsRefused) {
    EXPECT_EQ(load(R"(, "namespaces": [{"name": "_KestoGlobalNamespace", "metadata": [{"metaName": "x"}]}])"),
              DmStatus::kSuccess);
    EXPECT_EQ(printed(),
              (Lines{warning("Invalid namespace.", "Cannot persist the global or built-in namespaces")}));
    EXPECT_EQ(added(), 0u);
    EXPECT_EQ(library().getGlobalNamespace()->getURI(), nullptr);
    EXPECT_TRUE(library().getGlobalNamespace()->getMetadata()->find("x").empty());
}

TEST_F(DmReadNamespacesTest, MetadataThatIsNoListIsAWarning) {
    EXPECT_EQ(load(R"(, "namespaces": [{"name": "geometry", "metadata": "author"}])"), DmStatus::kSuccess);
    EXPECT_EQ(printed(), (Lines{warning("Incorrect metadata format.",
                                        "The namespace 'geometry' has an incorrect metadata format.")}));
    ASSERT_NE(top("geometry"), nullptr);
    EXPECT_EQ(top("geometry")->getURI(), uri());
}

TEST_F(DmReadNamespacesTest, NamespacesAreReadBeforeTheTypesThatFillThemWhateverTheOrder) {
    ASSERT_EQ(load(R"(, "types": [{"structName": "geometry::Point"}],)"
                   R"( "namespaces": [{"name": "geometry", "metadata": [{"metaName": "x"}]}])"),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    ASSERT_NE(top("geometry"), nullptr);
    EXPECT_EQ(top("geometry")->getTypes().size(), 1u);
    EXPECT_EQ(top("geometry")->getMetadata()->find("x").size(), 1u);
}
