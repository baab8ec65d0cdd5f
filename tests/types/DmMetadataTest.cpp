#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Kesto;

namespace {

using ItemPtr = std::shared_ptr<DmMetadataItem>;

ItemPtr makeItem(std::string name) {
    return std::make_shared<DmMetadataItem>(std::move(name));
}

/// The items of the list, in order, as a vector for whole comparisons.
std::vector<ItemPtr> itemsOf(DmMetadata const& metadata) {
    auto const items = metadata.getMetadataItems();
    return std::vector<ItemPtr>(items->begin(), items->end());
}

/// The item at `index` of the list.
ItemPtr itemAt(DmMetadata const& metadata, std::size_t index) {
    std::vector<ItemPtr> const items = itemsOf(metadata);
    return index < items.size() ? items[index] : nullptr;
}

} // namespace

// ---------------------------------------------------------------------------
// Adding

TEST(DmMetadata, NewMetadataIsEmpty) {
    DmMetadata const metadata;
    EXPECT_TRUE(metadata.isEmpty());
    ASSERT_NE(metadata.getMetadataItems(), nullptr);
    EXPECT_TRUE(metadata.getMetadataItems()->empty());
}

TEST(DmMetadata, AddAppendsTheItem) {
    DmMetadata metadata;
    ItemPtr const first = makeItem("first");
    ItemPtr const second = makeItem("second");
    EXPECT_EQ(metadata.add(first), DmStatus::kSuccess);
    EXPECT_EQ(metadata.add(second), DmStatus::kSuccess);
    EXPECT_EQ(itemsOf(metadata), (std::vector<ItemPtr>{first, second}));
    EXPECT_FALSE(metadata.isEmpty());
}

TEST(DmMetadata, AddingTheSameItemTwiceIsInvalidArgumentAndLeavesTheListUnchanged) {
    DmMetadata metadata;
    ItemPtr const item = makeItem("author");
    ItemPtr const other = makeItem("date");
    ASSERT_EQ(metadata.add(item), DmStatus::kSuccess);
    ASSERT_EQ(metadata.add(other), DmStatus::kSuccess);
    DmStatus const status = metadata.add(item);
    EXPECT_EQ(status, DmStatus::kInvalidArgument);
    EXPECT_EQ(itemsOf(metadata), (std::vector<ItemPtr>{item, other}));
}

TEST(DmMetadata, AddingANullItemIsInvalidArgumentAndLeavesTheListUnchanged) {
    DmMetadata metadata;
    ItemPtr const item = makeItem("author");
    ASSERT_EQ(metadata.add(item), DmStatus::kSuccess);
    DmStatus const status = metadata.add(nullptr);
    EXPECT_EQ(status, DmStatus::kInvalidArgument);
    EXPECT_EQ(itemsOf(metadata), (std::vector<ItemPtr>{item}));
}

TEST(DmMetadata, AddingANullItemToEmptyMetadataLeavesItEmpty) {
    DmMetadata metadata;
    EXPECT_EQ(metadata.add(nullptr), DmStatus::kInvalidArgument);
    EXPECT_TRUE(metadata.isEmpty());
}

TEST(DmMetadata, TwoDifferentItemsOfOneNameCoexist) {
    DmMetadata metadata;
    ItemPtr const first = makeItem("tag");
    ItemPtr const second = makeItem("tag");
    EXPECT_EQ(metadata.add(first), DmStatus::kSuccess);
    EXPECT_EQ(metadata.add(second), DmStatus::kSuccess);
    EXPECT_EQ(itemsOf(metadata), (std::vector<ItemPtr>{first, second}));
}

// ---------------------------------------------------------------------------
// Removing

TEST(DmMetadata, RemoveRemovesEveryItemOfThatNameAndSucceedsOnce) {
    DmMetadata metadata;
    ItemPtr const firstTag = makeItem("tag");
    ItemPtr const author = makeItem("author");
    ItemPtr const secondTag = makeItem("tag");
    ASSERT_EQ(metadata.add(firstTag), DmStatus::kSuccess);
    ASSERT_EQ(metadata.add(author), DmStatus::kSuccess);
    ASSERT_EQ(metadata.add(secondTag), DmStatus::kSuccess);
    EXPECT_EQ(metadata.remove("tag"), DmStatus::kSuccess);
    EXPECT_EQ(itemsOf(metadata), (std::vector<ItemPtr>{author}));
    EXPECT_EQ(metadata.remove("tag"), DmStatus::kInvalidArgument);
}

TEST(DmMetadata, RemoveOfAnAbsentNameIsInvalidArgumentAndLeavesTheListUnchanged) {
    DmMetadata metadata;
    ItemPtr const author = makeItem("author");
    ASSERT_EQ(metadata.add(author), DmStatus::kSuccess);
    DmStatus const status = metadata.remove("tag");
    EXPECT_EQ(status, DmStatus::kInvalidArgument);
    EXPECT_EQ(itemsOf(metadata), (std::vector<ItemPtr>{author}));
}

TEST(DmMetadata, RemoveFromEmptyMetadataIsInvalidArgument) {
    DmMetadata metadata;
    EXPECT_EQ(metadata.remove("tag"), DmStatus::kInvalidArgument);
}

TEST(DmMetadata, RemoveMatchesTheWholeName) {
    DmMetadata metadata;
    ItemPtr const item = makeItem("tags");
    ASSERT_EQ(metadata.add(item), DmStatus::kSuccess);
    EXPECT_EQ(metadata.remove("tag"), DmStatus::kInvalidArgument);
    EXPECT_EQ(itemsOf(metadata), (std::vector<ItemPtr>{item}));
}

// ---------------------------------------------------------------------------
// Setting

TEST(DmMetadata, SetWithAnAbsentNameAddsTheItem) {
    DmMetadata metadata;
    ItemPtr const author = makeItem("author");
    ItemPtr const tag = makeItem("tag");
    ASSERT_EQ(metadata.add(author), DmStatus::kSuccess);
    DmStatus const status = metadata.set("tag", tag);
    EXPECT_EQ(status, DmStatus::kSuccess);
    EXPECT_EQ(itemsOf(metadata), (std::vector<ItemPtr>{author, tag}));
}

TEST(DmMetadata, SetReplacesEveryItemOfThatNameAndAppendsAtTheEnd) {
    DmMetadata metadata;
    ItemPtr const firstTag = makeItem("tag");
    ItemPtr const author = makeItem("author");
    ItemPtr const secondTag = makeItem("tag");
    ItemPtr const date = makeItem("date");
    ItemPtr const newTag = makeItem("tag");
    ASSERT_EQ(metadata.add(firstTag), DmStatus::kSuccess);
    ASSERT_EQ(metadata.add(author), DmStatus::kSuccess);
    ASSERT_EQ(metadata.add(secondTag), DmStatus::kSuccess);
    ASSERT_EQ(metadata.add(date), DmStatus::kSuccess);
    DmStatus const status = metadata.set("tag", newTag);
    EXPECT_TRUE(status.isSuccess());
    EXPECT_EQ(itemsOf(metadata), (std::vector<ItemPtr>{author, date, newTag}));
}

// ---------------------------------------------------------------------------
// Finding

TEST(DmMetadata, FindReturnsEveryItemOfThatNameInOrder) {
    DmMetadata metadata;
    ItemPtr const firstTag = makeItem("tag");
    ItemPtr const author = makeItem("author");
    ItemPtr const secondTag = makeItem("tag");
    ItemPtr const thirdTag = makeItem("tag");
    ASSERT_EQ(metadata.add(firstTag), DmStatus::kSuccess);
    ASSERT_EQ(metadata.add(author), DmStatus::kSuccess);
    ASSERT_EQ(metadata.add(secondTag), DmStatus::kSuccess);
    ASSERT_EQ(metadata.add(thirdTag), DmStatus::kSuccess);
    EXPECT_EQ(metadata.find("tag"), (std::vector<ItemPtr>{firstTag, secondTag, thirdTag}));
    EXPECT_EQ(metadata.find("author"), (std::vector<ItemPtr>{author}));
}

TEST(DmMetadata, FindOfAnAbsentNameIsEmpty) {
    DmMetadata metadata;
    ASSERT_EQ(metadata.add(makeItem("author")), DmStatus::kSuccess);
    EXPECT_TRUE(metadata.find("tag").empty());
    EXPECT_TRUE(metadata.find("").empty());
}

// ---------------------------------------------------------------------------
// Clearing

TEST(DmMetadata, ClearEmptiesTheList) {
    DmMetadata metadata;
    ASSERT_EQ(metadata.add(makeItem("author")), DmStatus::kSuccess);
    ASSERT_EQ(metadata.add(makeItem("tag")), DmStatus::kSuccess);
    ASSERT_FALSE(metadata.isEmpty());
    metadata.clear();
    EXPECT_TRUE(metadata.isEmpty());
    EXPECT_TRUE(metadata.getMetadataItems()->empty());
    EXPECT_TRUE(metadata.find("author").empty());
}

// ---------------------------------------------------------------------------
// Copies share, clones do not

TEST(DmMetadata, CopiesShareTheList) {
    DmMetadata original;
    DmMetadata copy = original;
    EXPECT_EQ(copy.getMetadataItems(), original.getMetadataItems());
    ItemPtr const item = makeItem("author");
    ASSERT_EQ(copy.add(item), DmStatus::kSuccess);
    EXPECT_EQ(itemsOf(original), (std::vector<ItemPtr>{item}));
    original.clear();
    EXPECT_TRUE(copy.isEmpty());
}

TEST(DmMetadata, CloneMakesANewList) {
    DmMetadata original;
    ASSERT_EQ(original.add(makeItem("author")), DmStatus::kSuccess);
    std::shared_ptr<DmMetadata> clone;
    original.clone(clone);
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone->getMetadataItems(), original.getMetadataItems());
    EXPECT_EQ(clone->getMetadataItems()->size(), 1u);
}

TEST(DmMetadata, CloneOfEmptyMetadataIsEmpty) {
    DmMetadata const original;
    std::shared_ptr<DmMetadata> clone;
    original.clone(clone);
    ASSERT_NE(clone, nullptr);
    EXPECT_TRUE(clone->isEmpty());
}

TEST(DmMetadata, CloneMakesNewItemsWithEqualNamesInOrder) {
    DmMetadata original;
    ASSERT_EQ(original.add(makeItem("author")), DmStatus::kSuccess);
    ASSERT_EQ(original.add(makeItem("tag")), DmStatus::kSuccess);
    ASSERT_EQ(original.add(makeItem("tag")), DmStatus::kSuccess);
    std::shared_ptr<DmMetadata> clone;
    original.clone(clone);
    ASSERT_NE(clone, nullptr);
    std::vector<ItemPtr> const originalItems = itemsOf(original);
    std::vector<ItemPtr> const clonedItems = itemsOf(*clone);
    ASSERT_EQ(clonedItems.size(), originalItems.size());
    for (std::size_t i = 0; i < clonedItems.size(); ++i) {
        SCOPED_TRACE(i);
        ASSERT_NE(clonedItems[i], nullptr);
        EXPECT_NE(clonedItems[i], originalItems[i]);
        EXPECT_EQ(clonedItems[i]->getName(), originalItems[i]->getName());
    }
}

TEST(DmMetadata, ClonedItemsHaveNewRuntimeUIDs) {
    DmMetadata original;
    ASSERT_EQ(original.add(makeItem("author")), DmStatus::kSuccess);
    ASSERT_EQ(original.add(makeItem("tag")), DmStatus::kSuccess);
    std::shared_ptr<DmMetadata> clone;
    original.clone(clone);
    ASSERT_NE(clone, nullptr);
    std::vector<ItemPtr> const originalItems = itemsOf(original);
    std::vector<ItemPtr> const clonedItems = itemsOf(*clone);
    ASSERT_EQ(clonedItems.size(), originalItems.size());
    for (std::size_t i = 0; i < clonedItems.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_NE(clonedItems[i]->getRuntimeUID(), originalItems[i]->getRuntimeUID());
        EXPECT_NE(clonedItems[i]->getRuntimeUID(), DmNamedEntity::kInvalidRuntimeUID);
    }
}

TEST(DmMetadata, CloneCopiesChildrenRecursively) {
    DmMetadata original;
    ItemPtr const parent = makeItem("parent");
    ItemPtr const child = makeItem("child");
    ItemPtr const grandchild = makeItem("grandchild");
    ASSERT_EQ(child->getMetadata()->add(grandchild), DmStatus::kSuccess);
    ASSERT_EQ(parent->getMetadata()->add(child), DmStatus::kSuccess);
    ASSERT_EQ(original.add(parent), DmStatus::kSuccess);

    std::shared_ptr<DmMetadata> clone;
    original.clone(clone);
    ASSERT_NE(clone, nullptr);

    ItemPtr const clonedParent = itemAt(*clone, 0);
    ASSERT_NE(clonedParent, nullptr);
    EXPECT_NE(clonedParent, parent);
    EXPECT_EQ(clonedParent->getName(), "parent");
    ASSERT_NE(clonedParent->getMetadata(), nullptr);
    EXPECT_NE(clonedParent->getMetadata(), parent->getMetadata());
    EXPECT_NE(clonedParent->getMetadata()->getMetadataItems(), parent->getMetadata()->getMetadataItems());

    ItemPtr const clonedChild = itemAt(*clonedParent->getMetadata(), 0);
    ASSERT_NE(clonedChild, nullptr);
    EXPECT_NE(clonedChild, child);
    EXPECT_EQ(clonedChild->getName(), "child");
    EXPECT_NE(clonedChild->getRuntimeUID(), child->getRuntimeUID());
    ASSERT_NE(clonedChild->getMetadata(), nullptr);
    EXPECT_NE(clonedChild->getMetadata(), child->getMetadata());

    ItemPtr const clonedGrandchild = itemAt(*clonedChild->getMetadata(), 0);
    ASSERT_NE(clonedGrandchild, nullptr);
    EXPECT_NE(clonedGrandchild, grandchild);
    EXPECT_EQ(clonedGrandchild->getName(), "grandchild");
    EXPECT_NE(clonedGrandchild->getRuntimeUID(), grandchild->getRuntimeUID());
    EXPECT_TRUE(clonedGrandchild->isLeaf());
}

TEST(DmMetadata, ChangesToTheCloneDoNotReachTheOriginal) {
    DmMetadata original;
    ItemPtr const author = makeItem("author");
    ItemPtr const tag = makeItem("tag");
    ASSERT_EQ(original.add(author), DmStatus::kSuccess);
    ASSERT_EQ(original.add(tag), DmStatus::kSuccess);
    std::shared_ptr<DmMetadata> clone;
    original.clone(clone);
    ASSERT_NE(clone, nullptr);

    ASSERT_EQ(clone->remove("author"), DmStatus::kSuccess);
    ASSERT_EQ(clone->add(makeItem("date")), DmStatus::kSuccess);
    ItemPtr const clonedTag = itemAt(*clone, 0);
    ASSERT_NE(clonedTag, nullptr);
    ASSERT_TRUE(clonedTag->setName("renamed", kFailOnClash, kNameVerbatim));

    EXPECT_EQ(itemsOf(original), (std::vector<ItemPtr>{author, tag}));
    EXPECT_EQ(author->getName(), "author");
    EXPECT_EQ(tag->getName(), "tag");
}

TEST(DmMetadata, ChangesToClonedChildrenDoNotReachTheOriginal) {
    DmMetadata original;
    ItemPtr const parent = makeItem("parent");
    ItemPtr const child = makeItem("child");
    ASSERT_EQ(parent->getMetadata()->add(child), DmStatus::kSuccess);
    ASSERT_EQ(original.add(parent), DmStatus::kSuccess);
    std::shared_ptr<DmMetadata> clone;
    original.clone(clone);
    ASSERT_NE(clone, nullptr);

    ItemPtr const clonedParent = itemAt(*clone, 0);
    ASSERT_NE(clonedParent, nullptr);
    ASSERT_EQ(clonedParent->getMetadata()->add(makeItem("extra")), DmStatus::kSuccess);
    ItemPtr const clonedChild = itemAt(*clonedParent->getMetadata(), 0);
    ASSERT_NE(clonedChild, nullptr);
    ASSERT_EQ(clonedChild->getMetadata()->add(makeItem("grandchild")), DmStatus::kSuccess);

    EXPECT_EQ(itemsOf(*parent->getMetadata()), (std::vector<ItemPtr>{child}));
    EXPECT_TRUE(child->isLeaf());
}

TEST(DmMetadata, ChangesToTheOriginalDoNotReachTheClone) {
    DmMetadata original;
    ItemPtr const author = makeItem("author");
    ASSERT_EQ(original.add(author), DmStatus::kSuccess);
    std::shared_ptr<DmMetadata> clone;
    original.clone(clone);
    ASSERT_NE(clone, nullptr);

    ASSERT_EQ(original.add(makeItem("tag")), DmStatus::kSuccess);
    ASSERT_EQ(author->getMetadata()->add(makeItem("child")), DmStatus::kSuccess);

    ASSERT_EQ(clone->getMetadataItems()->size(), 1u);
    ItemPtr const clonedAuthor = itemAt(*clone, 0);
    ASSERT_NE(clonedAuthor, nullptr);
    EXPECT_TRUE(clonedAuthor->isLeaf());
}

TEST(DmMetadata, CloneReplacesWhatTheTargetHeld) {
    DmMetadata original;
    ASSERT_EQ(original.add(makeItem("author")), DmStatus::kSuccess);
    auto clone = std::make_shared<DmMetadata>();
    ASSERT_EQ(clone->add(makeItem("stale")), DmStatus::kSuccess);
    std::shared_ptr<DmMetadata> const before = clone;
    original.clone(clone);
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->find("stale").size(), 0u);
    EXPECT_EQ(clone->find("author").size(), 1u);
    EXPECT_EQ(before->find("stale").size(), 1u);
}

// ---------------------------------------------------------------------------
// DmMetadataItem

TEST(DmMetadataItem, IsComplete) {
    ItemPtr const item = makeItem("author");
    EXPECT_TRUE(item->isComplete());
}

TEST(DmMetadataItem, KeepsItsName) {
    ItemPtr const item = makeItem("author");
    EXPECT_EQ(item->getName(), "author");
}

TEST(DmMetadataItem, IsALeafWithoutChildren) {
    ItemPtr const item = makeItem("author");
    EXPECT_TRUE(item->isLeaf());
}

TEST(DmMetadataItem, IsNotALeafWithChildren) {
    ItemPtr const item = makeItem("author");
    ASSERT_NE(item->getMetadata(), nullptr);
    ASSERT_EQ(item->getMetadata()->add(makeItem("first name")), DmStatus::kSuccess);
    EXPECT_FALSE(item->isLeaf());
}

TEST(DmMetadataItem, IsALeafAgainOnceItsChildrenAreRemoved) {
    ItemPtr const item = makeItem("author");
    ASSERT_EQ(item->getMetadata()->add(makeItem("first name")), DmStatus::kSuccess);
    ASSERT_EQ(item->getMetadata()->remove("first name"), DmStatus::kSuccess);
    EXPECT_TRUE(item->isLeaf());
}

TEST(DmMetadataItem, NewItemHasNoValue) {
    ItemPtr const item = makeItem("author");
    EXPECT_FALSE(item->hasValue());
    EXPECT_EQ(item->getValue(), nullptr);
}

TEST(DmMetadataItem, ClearOfAnItemWithoutValueKeepsTheChildren) {
    ItemPtr const item = makeItem("author");
    ItemPtr const child = makeItem("first name");
    ASSERT_EQ(item->getMetadata()->add(child), DmStatus::kSuccess);
    item->clear();
    EXPECT_FALSE(item->hasValue());
    EXPECT_EQ(itemsOf(*item->getMetadata()), (std::vector<ItemPtr>{child}));
}

TEST(DmMetadataItem, CloneHasTheNameAndANewRuntimeUID) {
    ItemPtr const item = makeItem("author");
    ItemPtr const clone = item->clone();
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone, item);
    EXPECT_EQ(clone->getName(), "author");
    EXPECT_NE(clone->getRuntimeUID(), item->getRuntimeUID());
    EXPECT_FALSE(clone->hasValue());
    EXPECT_TRUE(clone->isComplete());
}

TEST(DmMetadataItem, CloneHasItsOwnChildren) {
    ItemPtr const item = makeItem("author");
    ItemPtr const child = makeItem("first name");
    ASSERT_EQ(item->getMetadata()->add(child), DmStatus::kSuccess);
    ItemPtr const clone = item->clone();
    ASSERT_NE(clone, nullptr);
    ASSERT_NE(clone->getMetadata(), nullptr);
    EXPECT_NE(clone->getMetadata(), item->getMetadata());
    ItemPtr const clonedChild = itemAt(*clone->getMetadata(), 0);
    ASSERT_NE(clonedChild, nullptr);
    EXPECT_NE(clonedChild, child);
    EXPECT_EQ(clonedChild->getName(), "first name");
    EXPECT_FALSE(clone->isLeaf());
}
