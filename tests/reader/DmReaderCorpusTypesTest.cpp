// The corpus files of namespaces, types, enum members, methods, struct
// members, global variables and dependencies: the model each good file
// describes, and what is left of each bad file once its faulty objects have
// been reported and skipped.
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/graph/DmGlobalVariable.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmClassSerialization.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmEnumValue.h>
#include <KestoDM/types/DmExternSymbol.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmStructValue.h>

#include "reader/NodeDefReadingTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Kesto;

namespace {

using Members = std::vector<std::pair<std::string, std::shared_ptr<DmBaseType const>>>;
using Enumerations = std::vector<std::pair<std::string, int>>;

/// The members of `type` in their order, each with its type.
Members membersOf(DmStructType const& type) {
    Members out;
    for (auto const& entry : type) {
        out.emplace_back(entry.first, entry.second->getType());
    }
    return out;
}

/// The keys of `type` in their order, each with its integer.
Enumerations enumerationsOf(DmEnumType const& type) {
    Enumerations out;
    for (auto const& entry : type.getEnumerations()) {
        out.emplace_back(entry.first.str(), entry.second);
    }
    return out;
}

/// The names of the metadata items of `metadata`, in their order.
std::vector<std::string> itemNames(std::shared_ptr<DmMetadata> const& metadata) {
    std::vector<std::string> out;
    if (metadata) {
        for (auto const& item : *metadata->getMetadataItems()) {
            out.push_back(item->getName());
        }
    }
    return out;
}

/// The one item called `name` of `metadata`, or null when there is not exactly one.
std::shared_ptr<DmMetadataItem> onlyItem(std::shared_ptr<DmMetadata> const& metadata,
                                         std::string const& name) {
    if (!metadata) {
        return nullptr;
    }
    auto const found = metadata->find(name);
    return found.size() == 1 ? found.front() : nullptr;
}

/// The text of the string item `name` of `metadata`; empty when there is none.
std::string stringItem(std::shared_ptr<DmMetadata> const& metadata, std::string const& name) {
    std::string out;
    auto const item = onlyItem(metadata, name);
    if (item) {
        EXPECT_EQ(item->getStringValue(out), DmStatus::kSuccess);
    }
    return out;
}

class DmReaderCorpusTypesTest : public KestoTest::NodeDefReadingTest {
protected:
    /// The namespace of full path `name` ("a::b"), or null.
    std::shared_ptr<DmNamespace const> space(std::string const& name) {
        auto const spaces = library().getConstNamespaces();
        auto const found = spaces.find(name);
        return found == spaces.end() ? nullptr : found->second;
    }

    std::shared_ptr<DmStructType const> structType(std::string const& name) {
        return typeAs<DmStructType>(name);
    }
    std::shared_ptr<DmEnumType const> enumType(std::string const& name) { return typeAs<DmEnumType>(name); }
    std::shared_ptr<DmClassType const> classType(std::string const& name) {
        return typeAs<DmClassType>(name);
    }

    /// The serializer of the class `name`, or null.
    std::shared_ptr<DmClassSerialization> serializerOf(std::string const& name) {
        auto const found = classType(name);
        return found ? found->getCppClassInfo().getSerializer() : nullptr;
    }

    /// The default value of the global `name` as a `T`, or null.
    template <class T>
    std::shared_ptr<T const> defaultOf(std::string const& name) {
        auto const variable = global(name);
        return variable ? std::dynamic_pointer_cast<T const>(variable->getDefaultValue()) : nullptr;
    }

    /// How many types of the library have the full name `name`.
    std::size_t typesNamed(std::string const& name) {
        std::size_t count = 0;
        for (auto const& entry : library().getTypes(false)) {
            count += entry.first == name ? 1 : 0;
        }
        return count;
    }

    static std::string corpusLine(std::string const& kind, std::string const& file, std::string const& title,
                                  std::string const& description) {
        return KestoTest::line(kind, "file:///" + file, title, description);
    }
};

std::shared_ptr<DmBaseType const> intType() {
    return DmLibrary::getIntType();
}

} // namespace

// ---------------------------------------------------------------------------
// Good files

TEST_F(DmReaderCorpusTypesTest, NamespacesFileMakesNestedNamespacesWithTheirMetadataAndUri) {
    ASSERT_EQ(loadCorpus("100_namespaces.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const file = uri("100_namespaces.json");
    ASSERT_TRUE(file);

    auto const geo = space("geo");
    ASSERT_TRUE(geo);
    EXPECT_EQ(geo->getURI(), file);
    EXPECT_EQ(itemNames(geo->getMetadata()), (std::vector<std::string>{"author", "revision"}));
    EXPECT_EQ(stringItem(geo->getMetadata(), "author"), "Ada");
    std::int64_t revision = 0;
    ASSERT_TRUE(onlyItem(geo->getMetadata(), "revision"));
    EXPECT_EQ(onlyItem(geo->getMetadata(), "revision")->getLongValue(revision), DmStatus::kSuccess);
    EXPECT_EQ(revision, 3);

    auto const shapes = space("geo::shapes");
    ASSERT_TRUE(shapes);
    EXPECT_EQ(shapes->getURI(), file);
    EXPECT_TRUE(geo->getNestedNamespaces().contains("shapes"));
    EXPECT_EQ(itemNames(shapes->getMetadata()), (std::vector<std::string>{"stable", "group"}));
    bool stable = false;
    EXPECT_EQ(onlyItem(shapes->getMetadata(), "stable")->getBoolValue(stable), DmStatus::kSuccess);
    EXPECT_TRUE(stable);
    auto const group = onlyItem(shapes->getMetadata(), "group");
    ASSERT_TRUE(group);
    EXPECT_FALSE(group->hasValue());
    auto const order = onlyItem(group->getMetadata(), "order");
    ASSERT_TRUE(order);
    std::int64_t orderValue = 0;
    EXPECT_EQ(order->getLongValue(orderValue), DmStatus::kSuccess);
    EXPECT_EQ(orderValue, 7);

    // The blanks around the parts of the name are dropped.
    auto const filters = space("audio::filters");
    ASSERT_TRUE(filters);
    EXPECT_EQ(filters->getURI(), file);
    EXPECT_TRUE(filters->getMetadata()->isEmpty());
    EXPECT_EQ(space("audio")->getURI(), nullptr);
}

TEST_F(DmReaderCorpusTypesTest, StructTypesFileMakesStructsWithTheirMembersInOrder) {
    ASSERT_EQ(loadCorpus("101_struct_types.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const file = uri("101_struct_types.json");
    auto const point = structType("geo::Point");
    auto const segment = structType("geo::Segment");
    auto const polyline = structType("geo::Polyline");
    auto const scalars = structType("Scalars");
    ASSERT_TRUE(point && segment && polyline && scalars);

    EXPECT_EQ(point->getName(), "Point");
    EXPECT_EQ(point->getNamespace(), space("geo").get());
    EXPECT_EQ(point->getURI(), file);
    EXPECT_EQ(point->getTypeNameMangleName().get(DmMangledName::kMangledNameMicrosoft), "UPoint@geo@@");
    EXPECT_EQ(point->getTypeNameMangleName().get(DmMangledName::kMangledNameItanium), "N3geo5PointE");
    auto const doubleType = DmLibrary::getDoubleType();
    EXPECT_EQ(membersOf(*point), (Members{{"x", doubleType}, {"y", doubleType}, {"tag", intType()}}));

    EXPECT_EQ(segment->getURI(), file);
    EXPECT_TRUE(segment->getTypeNameMangleName().isEmpty());
    EXPECT_EQ(membersOf(*segment),
              (Members{{"from", point}, {"to", point}, {"label", DmLibrary::getStringType()}}));
    EXPECT_EQ(itemNames(segment->getMetadata()), (std::vector<std::string>{"doc"}));
    EXPECT_EQ(stringItem(segment->getMetadata(), "doc"), "A straight line.");

    auto const arrayOfUChar = library().getArrayType(DmLibrary::getUCharType());
    EXPECT_EQ(membersOf(*polyline), (Members{{"points", library().getArrayType(point)},
                                             {"weights", library().getArrayType(DmLibrary::getFloatType())},
                                             {"grid", library().getArrayType(arrayOfUChar)},
                                             {"closed", DmLibrary::getBoolType()}}));

    EXPECT_EQ(scalars->getNamespace(), library().getGlobalNamespace().get());
    EXPECT_EQ(membersOf(*scalars), (Members{{"b", DmLibrary::getBoolType()},
                                            {"c", DmLibrary::getCharType()},
                                            {"uc", DmLibrary::getUCharType()},
                                            {"s", DmLibrary::getShortType()},
                                            {"us", DmLibrary::getUShortType()},
                                            {"i", DmLibrary::getIntType()},
                                            {"ui", DmLibrary::getUIntType()},
                                            {"l", DmLibrary::getLongType()},
                                            {"ul", DmLibrary::getULongType()},
                                            {"f", DmLibrary::getFloatType()},
                                            {"d", DmLibrary::getDoubleType()},
                                            {"text", DmLibrary::getStringType()},
                                            {"anything", DmLibrary::getAnyType()}}));
}

TEST_F(DmReaderCorpusTypesTest, StructMemberNamingAStructDefinedLaterInTheFileResolves) {
    ASSERT_EQ(loadCorpus("101_struct_types.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    // "geo::Segment" stands before "geo::Point" in the file.
    auto const segment = structType("geo::Segment");
    ASSERT_TRUE(segment);
    auto const from = segment->findMember("from");
    ASSERT_TRUE(from);
    EXPECT_EQ(from->getType(), type("geo::Point"));
    EXPECT_TRUE(segment->isFullyResolved());
    // A value of the segment holds a whole point in that member.
    auto const value = std::dynamic_pointer_cast<DmStructValue>(segment->createDefaultValue());
    ASSERT_TRUE(value);
    std::shared_ptr<DmBaseValue> fromValue;
    ASSERT_TRUE(value->getMember("from", fromValue));
    auto const fromPoint = std::dynamic_pointer_cast<DmStructValue>(fromValue);
    ASSERT_TRUE(fromPoint);
    std::shared_ptr<DmBaseValue> tag;
    EXPECT_TRUE(fromPoint->getMember("tag", tag));
    EXPECT_GE(segment->getSizeOf(), 2 * type("geo::Point")->getSizeOf());
}

TEST_F(DmReaderCorpusTypesTest, EnumTypesFileMakesEnumsWithTheirKeysAndValues) {
    ASSERT_EQ(loadCorpus("102_enum_types.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const file = uri("102_enum_types.json");

    auto const axis = enumType("geo::Axis");
    ASSERT_TRUE(axis);
    EXPECT_EQ(axis->getName(), "Axis");
    EXPECT_EQ(axis->getURI(), file);
    EXPECT_EQ(enumerationsOf(*axis), (Enumerations{{"X", 0}, {"Y", 1}, {"Z", 2}}));
    EXPECT_EQ(stringItem(axis->getMetadata(), "doc"), "Axes of space.");
    EXPECT_TRUE(axis->getTypeNameMangleName().isEmpty());

    auto const priority = enumType("Priority");
    ASSERT_TRUE(priority);
    EXPECT_EQ(priority->getURI(), file);
    EXPECT_EQ(enumerationsOf(*priority),
              (Enumerations{{"Low", -10}, {"High", 100}, {"Max", 2147483647}, {"Min", -2147483647 - 1}}));
    EXPECT_EQ(priority->getDefaultValue(), -10);
    EXPECT_EQ(priority->getTypeNameMangleName(), DmMangledName("W4Priority@@", "8Priority"));

    // One member object in place of a list.
    auto const single = enumType("Single");
    ASSERT_TRUE(single);
    EXPECT_EQ(enumerationsOf(*single), (Enumerations{{"Only", 5}}));
}

TEST_F(DmReaderCorpusTypesTest, ClassTypesFileGivesEachClassItsExternalNamesAndBothSymbols) {
    ASSERT_EQ(loadCorpus("103_class_types.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const file = uri("103_class_types.json");

    auto const image = classType("media::Image");
    ASSERT_TRUE(image);
    EXPECT_EQ(image->getName(), "Image");
    EXPECT_EQ(image->getURI(), file);
    // The ".?A" before the Microsoft name is dropped.
    EXPECT_EQ(image->getTypeNameMangleName(), DmMangledName("VImage@media@@", "N5media5ImageE"));
    EXPECT_EQ(itemNames(image->getMetadata()), (std::vector<std::string>{"icon"}));
    EXPECT_EQ(stringItem(image->getMetadata(), "icon"), "image.png");
    auto const imageSerializer = serializerOf("media::Image");
    ASSERT_TRUE(imageSerializer);
    ASSERT_TRUE(imageSerializer->getDeserializeSymbol());
    ASSERT_TRUE(imageSerializer->getSerializeSymbol());
    EXPECT_EQ(imageSerializer->getDeserializeSymbol()->getMangledName(),
              DmMangledName("?deserialize@Image@media@@SA_NAEBVSerializationData@Kesto@@AEAV?$Ptr@X@4@@Z",
                            "_ZN5media5Image11deserializeERKN5Kesto17SerializationDataERNS2_3PtrIvEE"));
    EXPECT_EQ(imageSerializer->getSerializeSymbol()->getMangledName(),
              DmMangledName("?serialize@Image@media@@SA_NPEAXAEAVSerializationData@Kesto@@@Z",
                            "_ZN5media5Image9serializeEPvRN5Kesto17SerializationDataE"));

    // A Microsoft name without the prefix is taken as it stands; the order of
    // the two methods does not matter.
    auto const sound = classType("media::Sound");
    ASSERT_TRUE(sound);
    EXPECT_EQ(sound->getTypeNameMangleName(), DmMangledName("VSound@media@@", "N5media5SoundE"));
    auto const soundSerializer = serializerOf("media::Sound");
    ASSERT_TRUE(soundSerializer);
    ASSERT_TRUE(soundSerializer->getDeserializeSymbol());
    ASSERT_TRUE(soundSerializer->getSerializeSymbol());
    EXPECT_EQ(soundSerializer->getDeserializeSymbol()->getMangleName(DmMangledName::kMangledNameItanium),
              "_ZN5media5Sound11deserializeERKN5Kesto17SerializationDataERNS2_3PtrIvEE");
    EXPECT_EQ(soundSerializer->getSerializeSymbol()->getMangleName(DmMangledName::kMangledNameItanium),
              "_ZN5media5Sound9serializeEPvRN5Kesto17SerializationDataE");
    EXPECT_TRUE(sound->getMetadata()->isEmpty());
}

TEST_F(DmReaderCorpusTypesTest, GlobalVariablesFileGivesEachGlobalItsTypeAndDefaultValue) {
    ASSERT_EQ(loadCorpus("104_global_variables.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const mode = type("cfg::Mode");
    auto const size = type("cfg::Size");
    ASSERT_TRUE(mode && size);

    auto const names = [this] {
        std::vector<std::string> out;
        for (auto const& entry : library().getGlobalVariables()) {
            out.push_back(entry.first);
        }
        return out;
    }();
    // The global namespace's own first, then those of "cfg" in file order.
    EXPECT_EQ(names, (std::vector<std::string>{"verbose", "cfg::retries", "cfg::title", "cfg::scale",
                                               "cfg::primes", "cfg::mode", "cfg::window", "cfg::counter"}));

    ASSERT_TRUE(global("cfg::retries"));
    EXPECT_EQ(global("cfg::retries")->getName(), "retries");
    EXPECT_EQ(global("cfg::retries")->getNamespace(), space("cfg").get());
    EXPECT_EQ(global("cfg::retries")->getType(), intType());
    ASSERT_TRUE(defaultOf<DmIntValue>("cfg::retries"));
    EXPECT_EQ(defaultOf<DmIntValue>("cfg::retries")->getData(), 3);

    EXPECT_EQ(global("cfg::title")->getType(), DmLibrary::getStringType());
    ASSERT_TRUE(defaultOf<DmStringValue>("cfg::title"));
    EXPECT_EQ(defaultOf<DmStringValue>("cfg::title")->getData().str(), "Main window");

    EXPECT_EQ(global("cfg::scale")->getType(), DmLibrary::getDoubleType());
    ASSERT_TRUE(defaultOf<DmDoubleValue>("cfg::scale"));
    EXPECT_EQ(defaultOf<DmDoubleValue>("cfg::scale")->getData(), 1.5);

    EXPECT_EQ(global("verbose")->getNamespace(), library().getGlobalNamespace().get());
    EXPECT_EQ(global("verbose")->getType(), DmLibrary::getBoolType());
    ASSERT_TRUE(defaultOf<DmBoolValue>("verbose"));
    EXPECT_TRUE(defaultOf<DmBoolValue>("verbose")->getData());

    EXPECT_EQ(global("cfg::primes")->getType(), library().getArrayType(intType()));
    auto const primes = defaultOf<DmArrayValue>("cfg::primes");
    ASSERT_TRUE(primes);
    ASSERT_EQ(primes->size(), 4u);
    std::vector<int> primeValues;
    for (std::size_t i = 0; i < 4; ++i) {
        auto const element = std::dynamic_pointer_cast<DmIntValue>(primes->at(i));
        ASSERT_TRUE(element);
        primeValues.push_back(element->getData());
    }
    EXPECT_EQ(primeValues, (std::vector<int>{2, 3, 5, 7}));

    EXPECT_EQ(global("cfg::mode")->getType(), mode);
    auto const modeValue = defaultOf<DmEnumValue>("cfg::mode");
    ASSERT_TRUE(modeValue);
    String key;
    ASSERT_TRUE(modeValue->getEnumerationName(key));
    EXPECT_EQ(key.str(), "Safe");
    EXPECT_EQ(modeValue->getData(), 2);

    EXPECT_EQ(global("cfg::window")->getType(), size);
    auto const window = defaultOf<DmStructValue>("cfg::window");
    ASSERT_TRUE(window);
    std::shared_ptr<DmBaseValue> width;
    std::shared_ptr<DmBaseValue> height;
    ASSERT_TRUE(window->getMember("width", width));
    ASSERT_TRUE(window->getMember("height", height));
    ASSERT_TRUE(std::dynamic_pointer_cast<DmIntValue>(width));
    ASSERT_TRUE(std::dynamic_pointer_cast<DmIntValue>(height));
    EXPECT_EQ(std::dynamic_pointer_cast<DmIntValue>(width)->getData(), 640);
    EXPECT_EQ(std::dynamic_pointer_cast<DmIntValue>(height)->getData(), 480);

    // Without a default value the global has its type and no value.
    ASSERT_TRUE(global("cfg::counter"));
    EXPECT_EQ(global("cfg::counter")->getType(), DmLibrary::getLongType());
    EXPECT_EQ(global("cfg::counter")->getDefaultValue(), nullptr);
}

TEST_F(DmReaderCorpusTypesTest, DependencyBaseFileCarriesItsHeaderMetadataNamespaceTypesAndGlobal) {
    ASSERT_EQ(loadCorpus("105_dependency_base.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const file = uri("105_dependency_base.json");
    ASSERT_TRUE(file);
    EXPECT_EQ(stringItem(file->getMetadata(), "author"), "base");
    EXPECT_TRUE(file->getDependencies()->empty());
    ASSERT_TRUE(space("shared"));
    EXPECT_EQ(space("shared")->getURI(), file);
    EXPECT_EQ(stringItem(space("shared")->getMetadata(), "owner"), "base");
    auto const color = structType("shared::Color");
    ASSERT_TRUE(color);
    auto const floatType = DmLibrary::getFloatType();
    EXPECT_EQ(membersOf(*color), (Members{{"r", floatType}, {"g", floatType}, {"b", floatType}}));
    ASSERT_TRUE(enumType("shared::Channel"));
    EXPECT_EQ(enumerationsOf(*enumType("shared::Channel")),
              (Enumerations{{"Red", 0}, {"Green", 1}, {"Blue", 2}}));
    ASSERT_TRUE(defaultOf<DmFloatValue>("shared::gamma"));
    EXPECT_EQ(defaultOf<DmFloatValue>("shared::gamma")->getData(), 2.2f);
}

TEST_F(DmReaderCorpusTypesTest, DependencyIsReadFirstSoThatTheFileUsesItsTypes) {
    ASSERT_EQ(loadCorpus("106_depends_on_base.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const file = uri("106_depends_on_base.json");
    auto const base = uri("105_dependency_base.json");
    ASSERT_TRUE(file && base);
    ASSERT_EQ(file->getDependencies()->size(), 1u);
    EXPECT_EQ(file->getDependencies()->begin()->second, base);
    EXPECT_EQ(stringItem(base->getMetadata(), "author"), "base");

    auto const color = type("shared::Color");
    ASSERT_TRUE(color);
    EXPECT_EQ(color->getURI(), base);
    auto const light = structType("scene::Light");
    ASSERT_TRUE(light);
    EXPECT_EQ(light->getURI(), file);
    EXPECT_EQ(membersOf(*light), (Members{{"color", color},
                                          {"channel", type("shared::Channel")},
                                          {"intensity", DmLibrary::getFloatType()}}));

    ASSERT_TRUE(global("scene::ambient"));
    EXPECT_EQ(global("scene::ambient")->getType(), color);
    auto const ambient = defaultOf<DmStructValue>("scene::ambient");
    ASSERT_TRUE(ambient);
    std::shared_ptr<DmBaseValue> green;
    ASSERT_TRUE(ambient->getMember("g", green));
    ASSERT_TRUE(std::dynamic_pointer_cast<DmFloatValue>(green));
    EXPECT_EQ(std::dynamic_pointer_cast<DmFloatValue>(green)->getData(), 0.2f);
}

TEST_F(DmReaderCorpusTypesTest, DependencyAlreadyReadThroughAnotherFileCostsNothing) {
    // 107 names 106, which names 105, and then 105 itself: the second visit of
    // 105 finds it loaded and reads nothing.
    ASSERT_EQ(loadCorpus("107_depends_twice_on_base.json"), DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    auto const file = uri("107_depends_twice_on_base.json");
    auto const middle = uri("106_depends_on_base.json");
    auto const base = uri("105_dependency_base.json");
    ASSERT_TRUE(file && middle && base);
    EXPECT_TRUE(
        library().isJsonFileLoaded(std::string(KESTODM_TEST_DATA_DIR) + "/reader/105_dependency_base.json"));

    // Read once: one header item, one of each definition.
    EXPECT_EQ(base->getMetadata()->find("author").size(), 1u);
    EXPECT_EQ(space("shared")->getMetadata()->find("owner").size(), 1u);
    EXPECT_EQ(typesNamed("shared::Color"), 1u);
    EXPECT_EQ(typesNamed("shared::Channel"), 1u);
    EXPECT_EQ(enumType("shared::Channel")->size(), 3u);
    EXPECT_EQ(library().getGlobalVariables().count("shared::gamma"), 1u);

    // Both files still record the dependency, in the order the file names them.
    std::vector<std::string> dependencies;
    for (auto const& entry : *file->getDependencies()) {
        dependencies.push_back(entry.first);
    }
    EXPECT_EQ(dependencies, (std::vector<std::string>{"file:///106_depends_on_base.json",
                                                      "file:///105_dependency_base.json"}));
    EXPECT_EQ(file->getDependencies()->begin()->second, middle);
    EXPECT_TRUE(middle->hasDependency(base));

    auto const rig = structType("stage::Rig");
    ASSERT_TRUE(rig);
    EXPECT_EQ(membersOf(*rig), (Members{{"key", type("scene::Light")}, {"fill", type("shared::Color")}}));
}

// ---------------------------------------------------------------------------
// Bad files: what is left once the faulty objects are skipped

TEST_F(DmReaderCorpusTypesTest, BadNamespacesAreReportedAndTheRestLoads) {
    ASSERT_EQ(loadCorpus("150_bad_namespaces.json"), DmStatus::kSuccess);
    std::vector<std::string> const lines = printed();
    ASSERT_EQ(lines.size(), 8u);
    auto const file = uri("150_bad_namespaces.json");

    // An illegal local name is only a warning: the namespace is made.
    EXPECT_EQ(lines[4], corpusLine("warning", "150_bad_namespaces.json", "Illegal namespace name",
                                   "The namespace \"bad::9lives\" has an illegal name."));
    ASSERT_TRUE(space("bad::9lives"));
    EXPECT_EQ(space("bad::9lives")->getURI(), file);

    // Metadata that is no list: the namespace is made without it.
    ASSERT_TRUE(space("bad::flat"));
    EXPECT_EQ(space("bad::flat")->getURI(), file);
    EXPECT_TRUE(space("bad::flat")->getMetadata()->isEmpty());

    ASSERT_TRUE(space("bad::kept"));
    EXPECT_EQ(space("bad::kept")->getURI(), file);
    EXPECT_EQ(stringItem(space("bad::kept")->getMetadata(), "kept"), "yes");

    // The namespaces without a name added nothing: only "bad" and its three
    // are new beside those of a fresh library.
    KestoTest::PrintingLibrary fresh;
    auto const before = fresh->getConstNamespaces();
    std::vector<std::string> added;
    for (auto const& entry : library().getConstNamespaces()) {
        if (!before.contains(entry.first)) {
            added.push_back(entry.first);
        }
    }
    EXPECT_EQ(added, (std::vector<std::string>{"bad", "bad::9lives", "bad::flat", "bad::kept"}));
}

TEST_F(DmReaderCorpusTypesTest, NamespaceNamedAsTheBuiltInNamespaceIsRefused) {
    ASSERT_EQ(loadCorpus("150_bad_namespaces.json"), DmStatus::kSuccess);
    std::vector<std::string> const lines = printed();
    std::string const refused = corpusLine("warning", "150_bad_namespaces.json", "Invalid namespace.",
                                           "Cannot persist the global or built-in namespaces");
    ASSERT_EQ(lines.size(), 8u);
    // Once for the global namespace's name, once for the built-in one's.
    EXPECT_EQ(lines[5], refused);
    EXPECT_EQ(lines[6], refused);
    // Neither became a nested namespace, and the built-in namespace got
    // neither this file's URI nor the item of the object.
    EXPECT_FALSE(space("_KestoBuiltInNamespace"));
    EXPECT_FALSE(space("_KestoGlobalNamespace"));
    EXPECT_EQ(DmLibrary::getBuiltInNamespace()->getURI(), nullptr);
    EXPECT_TRUE(DmLibrary::getBuiltInNamespace()->getMetadata()->find("lost").empty());
    EXPECT_EQ(library().getGlobalNamespace()->getURI(), nullptr);
}

TEST_F(DmReaderCorpusTypesTest, BadTypeNamesAreReportedAndTheRestLoads) {
    ASSERT_EQ(loadCorpus("151_bad_type_names.json"), DmStatus::kFailure);
    std::vector<std::string> const lines = printed();
    ASSERT_EQ(lines.size(), 10u);
    EXPECT_EQ(lines[5], corpusLine("error", "151_bad_type_names.json", "Type name already exists.",
                                   "Type 'bad::Twice' already exists in this namespace."));
    auto const file = uri("151_bad_type_names.json");

    // Objects with no name or several names make no type.
    EXPECT_FALSE(type("bad::Both"));
    EXPECT_FALSE(type("bad::Three"));

    // An illegal name is only a warning: the struct is made with its members.
    auto const threeD = structType("bad::3D");
    ASSERT_TRUE(threeD);
    EXPECT_EQ(membersOf(*threeD), (Members{{"z", DmLibrary::getFloatType()}}));

    // The first of two clashing types stays.
    auto const twice = classType("bad::Twice");
    ASSERT_TRUE(twice);
    EXPECT_EQ(twice->getTypeNameMangleName().get(DmMangledName::kMangledNameItanium), "N3bad5TwiceE");
    auto const shape = structType("bad::Shape");
    ASSERT_TRUE(shape);
    EXPECT_EQ(membersOf(*shape), (Members{{"sides", intType()}}));

    // Lists that are no lists: the types are made without them.
    auto const listless = classType("bad::Listless");
    ASSERT_TRUE(listless);
    ASSERT_TRUE(serializerOf("bad::Listless"));
    EXPECT_FALSE(serializerOf("bad::Listless")->getDeserializeSymbol());
    ASSERT_TRUE(enumType("bad::Flat"));
    EXPECT_EQ(enumType("bad::Flat")->size(), 0u);
    ASSERT_TRUE(structType("bad::Noted"));
    EXPECT_TRUE(structType("bad::Noted")->getMetadata()->isEmpty());

    auto const fine = structType("bad::Fine");
    ASSERT_TRUE(fine);
    EXPECT_EQ(fine->getURI(), file);
    EXPECT_EQ(membersOf(*fine), (Members{{"value", intType()}}));
    EXPECT_EQ(stringItem(fine->getMetadata(), "kept"), "yes");
}

TEST_F(DmReaderCorpusTypesTest, BadEnumMembersAreReportedAndTheRestLoads) {
    ASSERT_EQ(loadCorpus("152_bad_enum_members.json"), DmStatus::kFailure);
    std::vector<std::string> const lines = printed();
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[2],
              corpusLine("error", "152_bad_enum_members.json", "Invalid enumeration.",
                         "Unable to add enumeration 'Low' with value '2' to the enum type 'bad::Level'."));
    auto const level = enumType("bad::Level");
    ASSERT_TRUE(level);
    // Refused keys and values leave the first "Low" alone; the keys of bad
    // values take the integers after the last one used.
    EXPECT_EQ(enumerationsOf(*level), (Enumerations{{"Low", 1}, {"Middle", 2}, {"Huge", 3}, {"High", 10}}));
    ASSERT_TRUE(enumType("bad::After"));
    EXPECT_EQ(enumerationsOf(*enumType("bad::After")), (Enumerations{{"One", 1}}));
}

TEST_F(DmReaderCorpusTypesTest, EnumValueThatIsNoNumberIsReportedAndTheKeyStillAdded) {
    ASSERT_EQ(loadCorpus("152_bad_enum_members.json"), DmStatus::kFailure);
    std::vector<std::string> const lines = printed();
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[4],
              corpusLine("error", "152_bad_enum_members.json", "Invalid enumeration value.",
                         "Enumeration 'Middle' of enum type 'bad::Level' has an invalid value 'medium'."));
    EXPECT_EQ(lines[5],
              corpusLine("error", "152_bad_enum_members.json", "Invalid enumeration value.",
                         "Enumeration 'Huge' of enum type 'bad::Level' has an invalid value '4294967296'."));
    auto const level = enumType("bad::Level");
    ASSERT_TRUE(level);
    int value = 0;
    ASSERT_TRUE(level->getValue(String("Middle"), value));
    EXPECT_EQ(value, 2);
    ASSERT_TRUE(level->getValue(String("Huge"), value));
    EXPECT_EQ(value, 3);
}

TEST_F(DmReaderCorpusTypesTest, BadMethodsAreReportedAsInformationAndTheRestLoads) {
    ASSERT_EQ(loadCorpus("153_bad_methods.json"), DmStatus::kSuccess);
    std::vector<std::string> const lines = printed();
    ASSERT_EQ(lines.size(), 4u);
    // The doubled word stands in the text.
    EXPECT_EQ(lines[0], corpusLine("info", "153_bad_methods.json", "Method type is missing name.",
                                   "Method type is missing name name for 'bad::Codec'"));

    // A method without one of its mangled names still gets its symbol, with
    // that name empty; the unhandled method sets nothing.
    auto const codec = serializerOf("bad::Codec");
    ASSERT_TRUE(codec);
    ASSERT_TRUE(codec->getDeserializeSymbol());
    EXPECT_EQ(codec->getDeserializeSymbol()->getMangledName(),
              DmMangledName("", "_ZN3bad5Codec11deserializeEv"));
    ASSERT_TRUE(codec->getSerializeSymbol());
    EXPECT_EQ(codec->getSerializeSymbol()->getMangledName(),
              DmMangledName("?serialize@Codec@bad@@SAXXZ", ""));

    auto const archive = serializerOf("bad::Archive");
    ASSERT_TRUE(archive);
    ASSERT_TRUE(archive->getDeserializeSymbol());
    ASSERT_TRUE(archive->getSerializeSymbol());
    EXPECT_EQ(archive->getDeserializeSymbol()->getMangledName(),
              DmMangledName("?deserialize@Archive@bad@@SAXXZ", "_ZN3bad7Archive11deserializeEv"));
    EXPECT_EQ(archive->getSerializeSymbol()->getMangledName(),
              DmMangledName("?serialize@Archive@bad@@SAXXZ", "_ZN3bad7Archive9serializeEv"));
}

TEST_F(DmReaderCorpusTypesTest, BadStructMembersAreReportedAndTheRestLoads) {
    ASSERT_EQ(loadCorpus("154_bad_struct_members.json"), DmStatus::kFailure);
    std::vector<std::string> const lines = printed();
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_EQ(lines[2], corpusLine("error", "154_bad_struct_members.json", "Missing member type",
                                   "Struct member 'untyped' is missing its type."));
    auto const record = structType("bad::Record");
    ASSERT_TRUE(record);
    // The member of illegal name stays; the nameless, untyped, unresolved,
    // duplicate and self-holding ones are left out.
    EXPECT_EQ(membersOf(*record),
              (Members{{"2nd", intType()}, {"id", intType()}, {"name", DmLibrary::getStringType()}}));
    auto const after = structType("bad::After");
    ASSERT_TRUE(after);
    EXPECT_EQ(membersOf(*after), (Members{{"record", type("bad::Record")}}));
}

TEST_F(DmReaderCorpusTypesTest, StructMemberOfATypeThatExistsNowhereIsReportedAndLeftOut) {
    ASSERT_EQ(loadCorpus("154_bad_struct_members.json"), DmStatus::kFailure);
    std::vector<std::string> const lines = printed();
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_EQ(lines[3], corpusLine("error", "154_bad_struct_members.json", "Missing member type.",
                                   "Unable to resolve type 'nowhere::Ghost' for struct member "
                                   "'bad::Record::ghost'."));
    EXPECT_EQ(lines[4], corpusLine("error", "154_bad_struct_members.json", "Missing member type.",
                                   "Unable to resolve type 'array<nowhere::Ghost>' for struct member "
                                   "'bad::Record::ghosts'."));
    auto const record = structType("bad::Record");
    ASSERT_TRUE(record);
    EXPECT_FALSE(record->findMember("ghost"));
    EXPECT_FALSE(record->findMember("ghosts"));
    EXPECT_TRUE(record->isFullyResolved());
    // Nothing stands in for the missing type.
    EXPECT_FALSE(type("nowhere::Ghost"));
    EXPECT_FALSE(space("nowhere"));
}

TEST_F(DmReaderCorpusTypesTest, BadGlobalsAreReportedAndTheRestLoads) {
    ASSERT_EQ(loadCorpus("155_bad_globals.json"), DmStatus::kFailure);
    std::vector<std::string> const lines = printed();
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[1], corpusLine("error", "155_bad_globals.json", "Illegal global name",
                                   "The global \"bad::9count\" has an illegal name."));

    // An illegal name is an error, and the global is still made in full.
    ASSERT_TRUE(global("bad::9count"));
    EXPECT_EQ(global("bad::9count")->getType(), intType());
    ASSERT_TRUE(defaultOf<DmIntValue>("bad::9count"));
    EXPECT_EQ(defaultOf<DmIntValue>("bad::9count")->getData(), 9);

    // The first of two globals of one name stays, with its own type and value.
    ASSERT_TRUE(global("bad::limit"));
    EXPECT_EQ(global("bad::limit")->getType(), intType());
    ASSERT_TRUE(defaultOf<DmIntValue>("bad::limit"));
    EXPECT_EQ(defaultOf<DmIntValue>("bad::limit")->getData(), 10);

    // Made in the first pass, these got no type or no value in the third.
    ASSERT_TRUE(global("bad::untyped"));
    EXPECT_EQ(global("bad::untyped")->getType(), nullptr);
    ASSERT_TRUE(global("bad::ghost"));
    EXPECT_EQ(global("bad::ghost")->getType(), nullptr);
    EXPECT_FALSE(type("nowhere::Ghost"));
    ASSERT_TRUE(global("bad::broken"));
    EXPECT_EQ(global("bad::broken")->getType(), intType());
    EXPECT_EQ(global("bad::broken")->getDefaultValue(), nullptr);
    ASSERT_TRUE(global("bad::pair"));
    EXPECT_EQ(global("bad::pair")->getType(), type("bad::Pair"));
    EXPECT_EQ(global("bad::pair")->getDefaultValue(), nullptr);

    ASSERT_TRUE(global("bad::after"));
    EXPECT_EQ(global("bad::after")->getType(), DmLibrary::getDoubleType());
    ASSERT_TRUE(defaultOf<DmDoubleValue>("bad::after"));
    EXPECT_EQ(defaultOf<DmDoubleValue>("bad::after")->getData(), 2.5);
    EXPECT_EQ(library().getGlobalVariables().size(), 7u);
}

TEST_F(DmReaderCorpusTypesTest, BadDependenciesAreReportedAndTheRestLoads) {
    ASSERT_EQ(loadCorpus("156_bad_dependencies.json"), DmStatus::kFailure);
    std::vector<std::string> const lines = printed();
    ASSERT_EQ(lines.size(), 5u);
    // A bare file name has no scheme, and no resolver takes it.
    EXPECT_EQ(lines[3], corpusLine("error", "156_bad_dependencies.json", "Undefined resolver scheme.",
                                   "'105_dependency_base.json' does not match a registered resolver."));
    EXPECT_EQ(lines[4], corpusLine("error", "156_bad_dependencies.json", "Resolver failed.",
                                   "'file:///nowhere/missing.json' can not be resolved."));

    // Only the dependency that resolved is recorded, and it was read.
    auto const file = uri("156_bad_dependencies.json");
    ASSERT_TRUE(file);
    ASSERT_EQ(file->getDependencies()->size(), 1u);
    EXPECT_EQ(file->getDependencies()->begin()->first, "file:///105_dependency_base.json");
    EXPECT_EQ(file->getDependencies()->begin()->second, uri("105_dependency_base.json"));
    ASSERT_TRUE(type("shared::Color"));

    auto const tint = structType("deps::Tint");
    ASSERT_TRUE(tint);
    EXPECT_EQ(tint->getURI(), file);
    EXPECT_EQ(membersOf(*tint), (Members{{"color", type("shared::Color")}}));
}

// ---------------------------------------------------------------------------
// Types whose name is taken

// The reloaded types are compared with the first ones once their members are read.
TEST_F(DmReaderCorpusTypesTest, FileOfStructsAndEnumsReadAgainKeepsTheFirstTypesWithoutAClash) {
    ASSERT_EQ(loadCorpus("101_struct_types.json"), DmStatus::kSuccess);
    ASSERT_EQ(loadCorpus("102_enum_types.json"), DmStatus::kSuccess);
    auto const point = type("geo::Point");
    auto const axis = type("geo::Axis");
    DmLibrary::LoadOptions reload;
    reload.reloadMode = 1;
    std::string const dir = std::string(KESTODM_TEST_DATA_DIR) + "/reader/";
    EXPECT_EQ(library().loadGraph(KestoTest::longForm(dir + "101_struct_types.json"), reload),
              DmStatus::kSuccess);
    EXPECT_EQ(library().loadGraph(KestoTest::longForm(dir + "102_enum_types.json"), reload),
              DmStatus::kSuccess);
    EXPECT_TRUE(printed().empty());
    EXPECT_EQ(type("geo::Point"), point);
    EXPECT_EQ(type("geo::Axis"), axis);
}

TEST_F(DmReaderCorpusTypesTest, StructDeclaredTwiceWithOtherMembersInOneFileReportsTheClash) {
    EXPECT_EQ(
        load(R"(, "types": [)"
             R"({"structName": "d::S", "structMembers": [{"memberName": "a", "memberType": "int"}]},)"
             R"({"structName": "d::S", "structMembers": [{"memberName": "b", "memberType": "string"}]}])"),
        DmStatus::kFailure);
    EXPECT_EQ(printed(), (std::vector<std::string>{error("Type name already exists.",
                                                         "Type 'd::S' already exists in this namespace.")}));
    ASSERT_TRUE(structType("d::S"));
    EXPECT_EQ(membersOf(*structType("d::S")), (Members{{"a", intType()}}));
}
