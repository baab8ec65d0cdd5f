#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaSharedLibraryManager.h>
#include <KestoDM/platform/DefaultClassFunction.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/RttiTable.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>
#include <KestoDM/platform/UntypedTypeRep.h>
#include <KestoDM/types/DmClassSerialization.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmExternBaseType.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/DmTypeKind.h>

#include "types/fixture/TypesFixture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace Kesto;

namespace {

std::shared_ptr<DmClassType> makeWidgetType() {
    return DmLibrary::createClassType("Widget");
}

} // namespace

/// Each test has a context with the fixture library loaded, a serializer on
/// that context and the Widget class type. Objects of the fixture must go
/// before the context, which unloads the library; locals of a test body do.
class DmClassTypeTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(TypesFixture::load(*m_context)) << manager().getLastError();
        m_defaultAddress = manager().getSymbolAddress(TypesFixture::kWidgetDefaultFunction);
        m_widgetDestroyed = reinterpret_cast<TypesFixture::WidgetDestroyedFunction>(
            manager().getSymbolAddress(TypesFixture::kWidgetDestroyed));
        ASSERT_NE(m_defaultAddress, nullptr);
        ASSERT_NE(m_widgetDestroyed, nullptr);
    }

    BaSharedLibraryManager& manager() const { return *m_context->getSharedLibraryManager(); }

    DmClassType::CppClassInfo classInfo(std::shared_ptr<BaContext> const& context) const {
        return DmClassType::CppClassInfo(m_serializer, context);
    }

    /// The Widget type with its mangled name and the loaded context: all it needs.
    std::shared_ptr<DmClassType> makeReadyWidgetType() const {
        auto type = makeWidgetType();
        type->setTypeNameMangleName(DmMangledName("", TypesFixture::kWidgetTypeName));
        type->setCppClassInfo(classInfo(m_context));
        return type;
    }

    Internal::DefaultClassFunction expectedDefaultFn() const {
        return reinterpret_cast<Internal::DefaultClassFunction>(m_defaultAddress);
    }

    std::shared_ptr<BaContext> const m_context = std::make_shared<BaContext>();
    DmMessageLogger m_logger{nullptr};
    std::shared_ptr<DmClassSerialization> const m_serializer =
        std::make_shared<DmClassSerialization>(m_context, m_logger);
    void* m_defaultAddress = nullptr;
    TypesFixture::WidgetDestroyedFunction m_widgetDestroyed = nullptr;
};

// ---------------------------------------------------------------------------
// Making

TEST_F(DmClassTypeTest, NewTypeIsAClassOfItsName) {
    auto const type = makeWidgetType();
    EXPECT_EQ(type->getName(), "Widget");
    EXPECT_EQ(type->getTypeKind(), kTypeClass);
    EXPECT_TRUE(type->getTypeNameMangleName().isEmpty());
}

TEST_F(DmClassTypeTest, NewTypeHasNoClassInfo) {
    auto const type = makeWidgetType();
    EXPECT_EQ(type->getCppClassInfo().getSerializer(), nullptr);
    EXPECT_EQ(type->getCppClassInfo().getContext(), nullptr);
}

TEST_F(DmClassTypeTest, ClassInfoKeepsTheSerializerAndTheContext) {
    DmClassType::CppClassInfo const info(m_serializer, m_context);
    EXPECT_EQ(info.getSerializer(), m_serializer);
    EXPECT_EQ(info.getContext(), m_context);
    DmClassType::CppClassInfo const empty;
    EXPECT_EQ(empty.getSerializer(), nullptr);
    EXPECT_EQ(empty.getContext(), nullptr);
}

TEST_F(DmClassTypeTest, SettingTheClassInfoKeepsIt) {
    auto const type = makeWidgetType();
    type->setCppClassInfo(classInfo(m_context));
    EXPECT_EQ(type->getCppClassInfo().getSerializer(), m_serializer);
    EXPECT_EQ(type->getCppClassInfo().getContext(), m_context);
}

// ---------------------------------------------------------------------------
// Layout

TEST_F(DmClassTypeTest, ADatumIsAPtrOfSixteenBytes) {
    auto const type = makeWidgetType();
    Internal::UntypedTypeRep const rep = type->getUntypedTypeRep();
    EXPECT_TRUE(rep.isValid());
    EXPECT_EQ(rep.size(), 16u);
    EXPECT_EQ(rep.alignment(), 8u);
    EXPECT_TRUE(rep.isSameAs(Internal::UntypedTypeRep::of<Ptr<void>>()));
    EXPECT_EQ(type->getSizeOf(), 16u);
    EXPECT_EQ(type->getAlignmentOf(), 8u);
}

TEST_F(DmClassTypeTest, LayoutDoesNotNeedTheNativeSide) {
    auto const type = makeReadyWidgetType();
    EXPECT_EQ(type->getUntypedTypeRep().size(), 16u);
    EXPECT_EQ(type->getSizeOf(), 16u);
    EXPECT_EQ(type->getAlignmentOf(), 8u);
}

// ---------------------------------------------------------------------------
// Without the native side

TEST_F(DmClassTypeTest, WithoutAContextThereIsNoDefaultObject) {
    auto const type = makeWidgetType();
    type->setTypeNameMangleName(DmMangledName("", TypesFixture::kWidgetTypeName));
    EXPECT_EQ(type->getDefaultFn(), nullptr);
    EXPECT_EQ(type->getDefaultObject(), nullptr);
    EXPECT_EQ(type->createObject(), nullptr);
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

TEST_F(DmClassTypeTest, ClassInfoWithoutAContextGivesNoDefaultObject) {
    auto const type = makeWidgetType();
    type->setTypeNameMangleName(DmMangledName("", TypesFixture::kWidgetTypeName));
    type->setCppClassInfo(DmClassType::CppClassInfo(m_serializer, nullptr));
    EXPECT_EQ(type->getDefaultFn(), nullptr);
    EXPECT_EQ(type->getDefaultObject(), nullptr);
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

TEST_F(DmClassTypeTest, WithoutAMangledNameThereIsNoDefaultObject) {
    auto const type = makeWidgetType();
    type->setCppClassInfo(classInfo(m_context));
    EXPECT_EQ(type->getDefaultFn(), nullptr);
    EXPECT_EQ(type->getDefaultObject(), nullptr);
    EXPECT_EQ(type->createObject(), nullptr);
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

// The default function is found through the Itanium entry on this platform.
TEST_F(DmClassTypeTest, MicrosoftEntryAloneGivesNoDefaultObject) {
    auto const type = makeWidgetType();
    type->setTypeNameMangleName(DmMangledName(TypesFixture::kWidgetTypeName, ""));
    type->setCppClassInfo(classInfo(m_context));
    EXPECT_EQ(type->getDefaultFn(), nullptr);
    EXPECT_EQ(type->getDefaultObject(), nullptr);
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

TEST_F(DmClassTypeTest, ClassWithoutADefaultFunctionInTheLibrariesHasNoDefaultObject) {
    auto const type = makeWidgetType();
    type->setTypeNameMangleName(DmMangledName("", "N7Fixture12NoSuchWidgetE"));
    type->setCppClassInfo(classInfo(m_context));
    EXPECT_EQ(type->getDefaultFn(), nullptr);
    EXPECT_EQ(type->getDefaultObject(), nullptr);
    EXPECT_EQ(type->createObject(), nullptr);
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

TEST_F(DmClassTypeTest, ContextWithoutTheLibraryGivesNoDefaultObject) {
    auto const type = makeWidgetType();
    type->setTypeNameMangleName(DmMangledName("", TypesFixture::kWidgetTypeName));
    type->setCppClassInfo(classInfo(std::make_shared<BaContext>()));
    EXPECT_EQ(type->getDefaultFn(), nullptr);
    EXPECT_EQ(type->getDefaultObject(), nullptr);
}

TEST_F(DmClassTypeTest, TypeWithoutADefaultFunctionAddsNoRuntimeRecord) {
    char const* const name = "N7Fixture18UnrecordedWidgetE";
    ASSERT_EQ(Internal::GlobalRttiTable::get().find(name), nullptr);
    auto const type = makeWidgetType();
    type->setTypeNameMangleName(DmMangledName("", name));
    type->setCppClassInfo(classInfo(m_context));
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
    EXPECT_EQ(Internal::GlobalRttiTable::get().find(name), nullptr);
}

// ---------------------------------------------------------------------------
// With the native side

TEST_F(DmClassTypeTest, DefaultFunctionIsTheLibrarysKestoDefaultSymbol) {
    EXPECT_EQ(Internal::getDefaultClassFunction(TypesFixture::kWidgetTypeName),
              TypesFixture::kWidgetDefaultFunction);
    auto const type = makeReadyWidgetType();
    Internal::DefaultClassFunction const function = type->getDefaultFn();
    ASSERT_NE(function, nullptr);
    EXPECT_EQ(function, expectedDefaultFn());
}

TEST_F(DmClassTypeTest, DefaultObjectIsTheLibrarysDefaultWidget) {
    auto const type = makeReadyWidgetType();
    Ptr<void> const object = type->getDefaultObject();
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(TypesFixture::widgetOf(object).label, "default");
    EXPECT_EQ(TypesFixture::widgetOf(object).count, 0);
}

TEST_F(DmClassTypeTest, DefaultObjectIsTheOneTheLibraryShares) {
    auto const type = makeReadyWidgetType();
    Ptr<void> const first = type->getDefaultObject();
    Ptr<void> const second = type->getDefaultObject();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(first.get(), expectedDefaultFn()().get());
}

TEST_F(DmClassTypeTest, CreateObjectGivesWhatTheDefaultFunctionGives) {
    auto const type = makeReadyWidgetType();
    Ptr<void> const created = type->createObject();
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created.get(), type->getDefaultObject().get());
    EXPECT_EQ(TypesFixture::widgetOf(created).label, "default");
}

TEST_F(DmClassTypeTest, RuntimeTypeInfoIsAClassRecordOfTheMangledName) {
    auto const type = makeReadyWidgetType();
    Internal::RuntimeTypeInfo const* const record = type->getRuntimeTypeInfo();
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->getKind(), Internal::RuntimeTypeInfo::Kind::kClass);
    EXPECT_EQ(record->getMangledName(), TypesFixture::kWidgetTypeName);
    EXPECT_EQ(record->getUntypedTypeRep().size(), 16u);
    EXPECT_EQ(record->getElementType(), nullptr);
    EXPECT_TRUE(record->getMembers().empty());
}

TEST_F(DmClassTypeTest, RuntimeTypeInfoIsTheProcessWideRecord) {
    auto const type = makeReadyWidgetType();
    Internal::RuntimeTypeInfo const* const record = type->getRuntimeTypeInfo();
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(type->getRuntimeTypeInfo(), record);
    EXPECT_EQ(Internal::GlobalRttiTable::get().find(TypesFixture::kWidgetTypeName), record);
    EXPECT_EQ(makeReadyWidgetType()->getRuntimeTypeInfo(), record);
}

// ---------------------------------------------------------------------------
// Looking the default function up once

TEST_F(DmClassTypeTest, DefaultFunctionAskedFromManyThreadsAtOnceIsTheSame) {
    auto const type = makeReadyWidgetType();
    constexpr std::size_t kThreads = 8;
    std::vector<Internal::DefaultClassFunction> functions(kThreads, nullptr);
    std::vector<void*> objects(kThreads, nullptr);
    std::atomic<std::size_t> waiting{kThreads};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            // Start together, so that the first calls overlap.
            waiting.fetch_sub(1);
            while (waiting.load() != 0) {
                std::this_thread::yield();
            }
            functions[i] = type->getDefaultFn();
            objects[i] = type->getDefaultObject().get();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < kThreads; ++i) {
        EXPECT_EQ(functions[i], expectedDefaultFn()) << "thread " << i;
        EXPECT_NE(objects[i], nullptr) << "thread " << i;
        EXPECT_EQ(objects[i], objects[0]) << "thread " << i;
    }
}

// The lookup happens once per type: class info set after the first lookup is
// kept, but the function found (or not found) stays as it was.
TEST_F(DmClassTypeTest, ClassInfoSetAfterTheFirstLookupDoesNotRedoIt) {
    auto const type = makeReadyWidgetType();
    ASSERT_EQ(type->getDefaultFn(), expectedDefaultFn());
    type->setCppClassInfo(classInfo(std::make_shared<BaContext>()));
    EXPECT_EQ(type->getCppClassInfo().getContext()->getSharedLibraryManager()->getLoadedLibraries().size(),
              0u);
    EXPECT_EQ(type->getDefaultFn(), expectedDefaultFn());
    Ptr<void> const object = type->getDefaultObject();
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(TypesFixture::widgetOf(object).label, "default");
}

TEST_F(DmClassTypeTest, ClassInfoSetAfterAFailedLookupDoesNotRedoIt) {
    auto const type = makeWidgetType();
    type->setTypeNameMangleName(DmMangledName("", TypesFixture::kWidgetTypeName));
    ASSERT_EQ(type->getDefaultFn(), nullptr);
    type->setCppClassInfo(classInfo(m_context));
    EXPECT_EQ(type->getDefaultFn(), nullptr);
    EXPECT_EQ(type->getDefaultObject(), nullptr);
    EXPECT_EQ(type->getRuntimeTypeInfo(), nullptr);
}

TEST_F(DmClassTypeTest, MangledNameSetAfterAFailedLookupDoesNotRedoIt) {
    auto const type = makeWidgetType();
    type->setCppClassInfo(classInfo(m_context));
    ASSERT_EQ(type->getDefaultObject(), nullptr);
    type->setTypeNameMangleName(DmMangledName("", TypesFixture::kWidgetTypeName));
    EXPECT_EQ(type->getDefaultFn(), nullptr);
    EXPECT_EQ(type->getDefaultObject(), nullptr);
}

TEST_F(DmClassTypeTest, EachTypeLooksUpItsOwnDefaultFunction) {
    auto const failed = makeWidgetType();
    failed->setTypeNameMangleName(DmMangledName("", TypesFixture::kWidgetTypeName));
    ASSERT_EQ(failed->getDefaultFn(), nullptr);
    EXPECT_EQ(makeReadyWidgetType()->getDefaultFn(), expectedDefaultFn());
}

// ---------------------------------------------------------------------------
// Ownership

TEST_F(DmClassTypeTest, DefaultObjectOutlivesThePtrsTheTypeGave) {
    auto const type = makeReadyWidgetType();
    int const before = m_widgetDestroyed();
    Ptr<void> object = type->getDefaultObject();
    ASSERT_NE(object, nullptr);
    EXPECT_GE(object.use_count(), 2);
    Ptr<void> created = type->createObject();
    object.reset();
    created.reset();
    EXPECT_EQ(m_widgetDestroyed(), before);
    EXPECT_EQ(TypesFixture::widgetOf(type->getDefaultObject()).label, "default");
}
