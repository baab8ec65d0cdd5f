#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/RuntimeAny.h>
#include <KestoDM/platform/UntypedArray.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmClassValue.h>
#include <KestoDM/types/DmEnumValue.h>
#include <KestoDM/types/DmStructValue.h>

#include "ValueTestSupport.h"
#include "fixture/TypesFixture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

using namespace Kesto;
using namespace Kesto::ValueTest;

namespace {

class DmValueFromAny : public ValueTestBase {
protected:
    std::shared_ptr<DmLibrary> makeLibrary() {
        return DmLibrary::newLibrary(std::make_shared<BaContext>(), nullptr, DmExternOperator::kNone);
    }

    static void place(std::shared_ptr<DmBaseType> const& type, DmLibrary& library) {
        ASSERT_EQ(type->setNamespace(library.getGlobalNamespace().get(), kFailOnClash), DmStatus::kSuccess);
    }

    // toAny, then fromAny: a value of the same type holding the same datum.
    template <class ValueClass, class T>
    void expectRoundTrip(T datum) {
        auto library = makeLibrary();
        auto value = std::make_shared<ValueClass>();
        value->setData(datum);
        std::shared_ptr<DmBaseValue> const back = DmBaseValue::fromAny(value->toAny(), *library);
        auto const typed = as<ValueClass>(back);
        ASSERT_NE(typed, nullptr);
        EXPECT_EQ(typed->getType(), value->getType());
        EXPECT_EQ(typed->getData(), datum);
        EXPECT_FALSE(typed->isImplicit());
    }
};

} // namespace

TEST_F(DmValueFromAny, EmptyAnyGivesNull) {
    auto library = makeLibrary();
    EXPECT_EQ(DmBaseValue::fromAny(Any(), *library), nullptr);
}

TEST_F(DmValueFromAny, BuiltInValuesComeBackEqual) {
    expectRoundTrip<DmBoolValue>(true);
    expectRoundTrip<DmCharValue>(static_cast<signed char>(-5));
    expectRoundTrip<DmUCharValue>(static_cast<unsigned char>(200));
    expectRoundTrip<DmShortValue>(static_cast<short>(-300));
    expectRoundTrip<DmUShortValue>(static_cast<unsigned short>(60000));
    expectRoundTrip<DmIntValue>(-123456);
    expectRoundTrip<DmUIntValue>(4000000000u);
    expectRoundTrip<DmLongValue>(static_cast<std::int64_t>(-9000000000));
    expectRoundTrip<DmULongValue>(static_cast<std::uint64_t>(18000000000000000000ull));
    expectRoundTrip<DmFloatValue>(1.5f);
    expectRoundTrip<DmDoubleValue>(-2.25);
    expectRoundTrip<DmStringValue>(String("text"));
}

TEST_F(DmValueFromAny, AnyValueGivesAValueOfTheTypeItHolds) {
    auto library = makeLibrary();
    DmAnyValue value;
    value.setData(Internal::RuntimeAny::create(7));
    auto const back = as<DmIntValue>(DmBaseValue::fromAny(value.toAny(), *library));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->getData(), 7);
}

TEST_F(DmValueFromAny, EnumValueComesBackEqual) {
    auto library = makeLibrary();
    auto const type = makeEnumType("Color", {{"red", 1}, {"green", 2}}, "N8FromAny5ColorE");
    place(type, *library);
    auto const value = as<DmEnumValue>(type->createValue());
    ASSERT_TRUE(value->setData(2));
    auto const back = as<DmEnumValue>(DmBaseValue::fromAny(value->toAny(), *library));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->getType(), type);
    EXPECT_EQ(back->getData(), 2);
}

TEST_F(DmValueFromAny, EnumIntegerThatIsNoKeyGivesNull) {
    auto library = makeLibrary();
    auto const type = makeEnumType("Shade", {{"light", 1}}, "N8FromAny5ShadeE");
    place(type, *library);
    Any const any = Internal::RuntimeAny::create(9, type->getRuntimeTypeInfo());
    EXPECT_EQ(DmBaseValue::fromAny(any, *library), nullptr);
}

TEST_F(DmValueFromAny, TypeTheLibraryDoesNotKnowGivesNull) {
    auto library = makeLibrary();
    auto const type = makeEnumType("Stray", {{"a", 0}}, "N8FromAny5StrayE");
    Any const any = Internal::RuntimeAny::create(0, type->getRuntimeTypeInfo());
    EXPECT_EQ(DmBaseValue::fromAny(any, *library), nullptr);
}

TEST_F(DmValueFromAny, ArrayValueComesBackWithTheSameElements) {
    auto library = makeLibrary();
    std::shared_ptr<DmBaseType const> const arrayType = library->getArrayType(DmLibrary::getIntType());
    auto const value =
        as<DmArrayValue>(std::static_pointer_cast<DmArrayType const>(arrayType)->createValue(3ull));
    ASSERT_NE(value, nullptr);
    for (unsigned long long i = 0; i < 3; ++i) {
        as<DmIntValue>(value->at(i))->setData(static_cast<int>(10 * i));
    }
    auto const back = as<DmArrayValue>(DmBaseValue::fromAny(value->toAny(), *library));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->getType(), arrayType);
    ASSERT_EQ(back->size(), 3u);
    EXPECT_EQ(as<DmIntValue>(back->at(2))->getData(), 20);
}

TEST_F(DmValueFromAny, ArrayTypeNotMadeYetIsMadeFromItsElement) {
    auto library = makeLibrary();
    auto const standalone = makeArrayType(DmLibrary::getDoubleType());
    auto const value = as<DmArrayValue>(standalone->createValue(2ull));
    as<DmDoubleValue>(value->at(1))->setData(0.5);
    auto const back = as<DmArrayValue>(DmBaseValue::fromAny(value->toAny(), *library));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->getType()->getName(), "array<double>");
    EXPECT_EQ(back->getType()->getNamespace(), library->getGlobalNamespace().get());
    EXPECT_EQ(as<DmDoubleValue>(back->at(1))->getData(), 0.5);
}

TEST_F(DmValueFromAny, StructValueComesBackEqual) {
    auto library = makeLibrary();
    auto const type = makeStructType(
        "Pair", {{"a", DmLibrary::getIntType()}, {"b", DmLibrary::getStringType()}}, "N8FromAny4PairE");
    place(type, *library);
    auto const value = as<DmStructValue>(type->createValue());
    ASSERT_TRUE(value->setMember("a", [] {
        auto v = std::make_shared<DmIntValue>();
        v->setData(4);
        return v;
    }()));
    ASSERT_TRUE(value->setMember("b", [] {
        auto v = std::make_shared<DmStringValue>();
        v->setData(String("four"));
        return v;
    }()));
    auto const back = as<DmStructValue>(DmBaseValue::fromAny(value->toAny(), *library));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(as<DmIntValue>(back->findMember("a"))->getData(), 4);
    EXPECT_EQ(as<DmStringValue>(back->findMember("b"))->getData(), String("four"));
}

TEST_F(DmValueFromAny, ClassObjectComesBackTheSameObject) {
    auto const context = std::make_shared<BaContext>();
    ASSERT_TRUE(TypesFixture::load(*context));
    auto library = DmLibrary::newLibrary(context, nullptr, DmExternOperator::kNone);
    auto const type = makeClassType("Widget", TypesFixture::kWidgetTypeName);
    type->setCppClassInfo(DmClassType::CppClassInfo(nullptr, context));
    place(type, *library);
    auto const make = reinterpret_cast<TypesFixture::MakeWidgetFunction>(
        context->getSharedLibraryManager()->getSymbolAddress(TypesFixture::kMakeWidget));
    ASSERT_NE(make, nullptr);
    auto const value = as<DmClassValue>(type->createValue());
    value->setData(make("mine", 3));
    auto const back = as<DmClassValue>(DmBaseValue::fromAny(value->toAny(), *library));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->getType(), type);
    EXPECT_EQ(back->getData(), value->getData());
    EXPECT_EQ(TypesFixture::widgetOf(back->getData()).label, "mine");
}

TEST_F(DmValueFromAny, BarePtrGivesNull) {
    auto library = makeLibrary();
    Any const any = Internal::RuntimeAny::create(Ptr<void>(Ptr<int>::make(1)));
    EXPECT_EQ(DmBaseValue::fromAny(any, *library), nullptr);
}
