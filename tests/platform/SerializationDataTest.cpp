#include <KestoDM/platform/SerializationData.h>

#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

using Kesto::CompositeSerializationData;
using Kesto::LiteralSerializationData;
using Kesto::SequenceSerializationData;
using Kesto::SerializationData;

namespace {

// {name: "box", size: [1, 2], inner: {depth: "3"}}
SerializationData sampleTree() {
    SequenceSerializationData size;
    size.add(LiteralSerializationData("1"));
    size.add(LiteralSerializationData("2"));
    CompositeSerializationData inner;
    inner.add("depth", LiteralSerializationData("3"));
    CompositeSerializationData root;
    root.add("name", LiteralSerializationData("box"));
    root.add("size", size);
    root.add("inner", inner);
    return root;
}

} // namespace

TEST(SerializationData, DefaultIsAnEmptyComposite) {
    SerializationData const data;
    EXPECT_TRUE(data.isComposite());
    EXPECT_FALSE(data.isLiteral());
    EXPECT_FALSE(data.isSequence());
    EXPECT_EQ(data.asComposite().size(), 0u);
    EXPECT_TRUE(data.asComposite().empty());
}

TEST(SerializationData, IsOfTheKindItWasMadeFrom) {
    SerializationData const literal = LiteralSerializationData("1.5");
    SerializationData const sequence = SequenceSerializationData();
    SerializationData const composite = CompositeSerializationData();
    EXPECT_TRUE(literal.isLiteral());
    EXPECT_EQ(literal.asLiteral().getText(), "1.5");
    EXPECT_TRUE(sequence.isSequence());
    EXPECT_EQ(sequence.asSequence().size(), 0u);
    EXPECT_TRUE(composite.isComposite());
}

TEST(SerializationData, AssigningACompositeResetsToAnEmptyComposite) {
    SerializationData data = sampleTree();
    data = CompositeSerializationData();
    EXPECT_TRUE(data.isComposite());
    EXPECT_EQ(data.asComposite().size(), 0u);
    data = LiteralSerializationData("x");
    EXPECT_TRUE(data.isLiteral());
    data = SequenceSerializationData();
    EXPECT_TRUE(data.isSequence());
    data = CompositeSerializationData();
    EXPECT_TRUE(data.isComposite());
}

TEST(SerializationData, WrongKindThrowsBadVariantAccess) {
    SerializationData literal = LiteralSerializationData("1");
    SerializationData const composite;
    EXPECT_THROW(static_cast<void>(literal.asComposite()), std::bad_variant_access);
    EXPECT_THROW(static_cast<void>(literal.asSequence()), std::bad_variant_access);
    EXPECT_THROW(static_cast<void>(composite.asLiteral()), std::bad_variant_access);
    EXPECT_THROW(static_cast<void>(composite.asSequence()), std::bad_variant_access);
}

TEST(SerializationData, CompositeKeepsMembersInOrderOfAddition) {
    SerializationData const tree = sampleTree();
    CompositeSerializationData const& root = tree.asComposite();
    std::vector<std::string> names;
    for (auto const& [name, member] : root) {
        names.push_back(name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"name", "size", "inner"}));
    EXPECT_EQ(root.size(), 3u);
}

TEST(SerializationData, FindGivesTheFirstMemberOfThatName) {
    CompositeSerializationData composite;
    composite.add("key", LiteralSerializationData("first"));
    composite.add("other", LiteralSerializationData("other"));
    composite.add("key", LiteralSerializationData("second"));
    ASSERT_NE(composite.find("key"), nullptr);
    EXPECT_EQ(composite.find("key")->asLiteral().getText(), "first");
    EXPECT_EQ(composite.find("missing"), nullptr);
    CompositeSerializationData const& constComposite = composite;
    EXPECT_EQ(constComposite.find("other")->asLiteral().getText(), "other");
    composite.find("other")->asLiteral().setText("changed");
    EXPECT_EQ(constComposite.find("other")->asLiteral().getText(), "changed");
}

TEST(SerializationData, SequenceKeepsItemsInOrder) {
    SequenceSerializationData sequence;
    sequence.add(LiteralSerializationData("a"));
    sequence.add(CompositeSerializationData());
    sequence.add(LiteralSerializationData("c"));
    ASSERT_EQ(sequence.size(), 3u);
    EXPECT_EQ(sequence[0].asLiteral().getText(), "a");
    EXPECT_TRUE(sequence[1].isComposite());
    std::vector<bool> literals;
    for (SerializationData const& item : sequence) {
        literals.push_back(item.isLiteral());
    }
    EXPECT_EQ(literals, (std::vector<bool>{true, false, true}));
}

TEST(SerializationData, ReadsANestedTree) {
    SerializationData const tree = sampleTree();
    CompositeSerializationData const& root = tree.asComposite();
    EXPECT_EQ(root.find("name")->asLiteral().getText(), "box");
    SequenceSerializationData const& size = root.find("size")->asSequence();
    ASSERT_EQ(size.size(), 2u);
    EXPECT_EQ(size[1].asLiteral().getText(), "2");
    EXPECT_EQ(root.find("inner")->asComposite().find("depth")->asLiteral().getText(), "3");
}

TEST(SerializationData, FillsChildrenInPlace) {
    SerializationData root;
    SerializationData& list = root.asComposite().add("list", SequenceSerializationData());
    list.asSequence().add(LiteralSerializationData("1")).asLiteral().setText("one");
    SerializationData& child = list.asSequence().add(SerializationData());
    child.asComposite().add("leaf", LiteralSerializationData("2"));
    EXPECT_EQ(root.asComposite().find("list")->asSequence()[0].asLiteral().getText(), "one");
    EXPECT_EQ(
        root.asComposite().find("list")->asSequence()[1].asComposite().find("leaf")->asLiteral().getText(),
        "2");
}

TEST(SerializationData, CopiesAreDeep) {
    SerializationData const original = sampleTree();
    SerializationData copy = original;
    EXPECT_EQ(copy, original);
    copy.asComposite().find("inner")->asComposite().find("depth")->asLiteral().setText("4");
    copy.asComposite().find("size")->asSequence().add(LiteralSerializationData("9"));
    EXPECT_NE(copy, original);
    EXPECT_EQ(original.asComposite().find("inner")->asComposite().find("depth")->asLiteral().getText(), "3");
    EXPECT_EQ(original.asComposite().find("size")->asSequence().size(), 2u);

    SerializationData assigned;
    assigned = original;
    EXPECT_EQ(assigned, original);
    SerializationData moved = std::move(assigned);
    EXPECT_EQ(moved, original);
}

TEST(SerializationData, EqualityNeedsTheSameKindAndContents) {
    EXPECT_EQ(SerializationData(), SerializationData(CompositeSerializationData()));
    EXPECT_NE(SerializationData(), SerializationData(SequenceSerializationData()));
    EXPECT_NE(SerializationData(LiteralSerializationData("1")),
              SerializationData(LiteralSerializationData("2")));
    EXPECT_EQ(SerializationData(LiteralSerializationData("1")),
              SerializationData(LiteralSerializationData("1")));
}
