// Class values: a Ptr<void> to a native object. The class types here have no
// context, so their default object is null and they have no run-time record;
// a value made with an object of the test's own stands in for a default.
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmClassValue.h>
#include <KestoDM/types/DmStructValue.h>

#include "types/ValueTestSupport.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <memory>
#include <utility>

using namespace Kesto;
using namespace Kesto::ValueTest;

namespace {

/// A native object that counts its destruction.
struct Mesh {
    explicit Mesh(int* destroyed) : m_destroyed(destroyed) {}
    ~Mesh() { ++*m_destroyed; }
    int* m_destroyed;
};

std::shared_ptr<DmClassValue> valueOf(std::shared_ptr<DmClassType> const& type) {
    return as<DmClassValue>(type->createValue());
}

} // namespace

class DmClassValueTest : public ValueTestBase {};

// ---------------------------------------------------------------------------
// Making

TEST_F(DmClassValueTest, TypeWithoutContextHasANullDefaultObject) {
    auto const type = makeClassType("Mesh", "N9ValueTest4MeshE");
    EXPECT_EQ(type->getDefaultFn(), nullptr);
    EXPECT_EQ(type->getDefaultObject(), nullptr);
}

TEST_F(DmClassValueTest, CreateValueHoldsNoObjectAndIsImplicit) {
    auto const type = makeClassType("Mesh");
    auto const value = valueOf(type);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getType(), type);
    EXPECT_EQ(value->getData(), nullptr);
    EXPECT_FALSE(value->isMemberValue());
    EXPECT_TRUE(value->isImplicit());
}

TEST_F(DmClassValueTest, CreateDefaultValueHoldsTheDefaultObjectAndStaysImplicit) {
    auto const type = makeClassType("Mesh");
    auto const value = as<DmClassValue>(type->createDefaultValue());
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->getData(), type->getDefaultObject());
    EXPECT_TRUE(value->isImplicit());
    EXPECT_TRUE(value->isDefaultClass());
}

TEST_F(DmClassValueTest, ValueMadeWithAnObjectHoldsItAndStaysImplicit) {
    auto const type = makeClassType("Mesh");
    int destroyed = 0;
    Ptr<void> const object = Ptr<Mesh>::make(&destroyed);
    DmClassValue const value(type, object);
    EXPECT_EQ(value.getData(), object);
    EXPECT_EQ(object.use_count(), 2);
    EXPECT_TRUE(value.isImplicit());
}

// ---------------------------------------------------------------------------
// isDefaultClass

TEST_F(DmClassValueTest, IsDefaultClassWhileImplicit) {
    auto const type = makeClassType("Mesh");
    EXPECT_TRUE(valueOf(type)->isDefaultClass());
}

TEST_F(DmClassValueTest, IsDefaultClassWhileImplicitEvenWithAnotherObject) {
    auto const type = makeClassType("Mesh");
    int destroyed = 0;
    DmClassValue const value(type, Ptr<void>(Ptr<Mesh>::make(&destroyed)));
    ASSERT_NE(value.getData(), type->getDefaultObject());
    EXPECT_TRUE(value.isDefaultClass());
}

TEST_F(DmClassValueTest, IsDefaultClassWhenSetToTheDefaultObject) {
    auto const type = makeClassType("Mesh");
    auto const value = valueOf(type);
    EXPECT_TRUE(value->setData(type->getDefaultObject()));
    EXPECT_FALSE(value->isImplicit());
    EXPECT_TRUE(value->isDefaultClass());
}

TEST_F(DmClassValueTest, IsNotDefaultClassWhenSetToAnotherObject) {
    auto const type = makeClassType("Mesh");
    auto const value = valueOf(type);
    int destroyed = 0;
    EXPECT_TRUE(value->setData(Ptr<void>(Ptr<Mesh>::make(&destroyed))));
    EXPECT_FALSE(value->isImplicit());
    EXPECT_FALSE(value->isDefaultClass());
}

TEST_F(DmClassValueTest, ValueHoldingAnObjectOfItsOwnIsNotDefaultOnceSet) {
    auto const type = makeClassType("Mesh");
    int destroyed = 0;
    DmClassValue value(type, Ptr<void>(Ptr<Mesh>::make(&destroyed)));
    value.valueWasSet();
    EXPECT_FALSE(value.isDefaultClass());
}

// ---------------------------------------------------------------------------
// The object

TEST_F(DmClassValueTest, DroppingTheValueReleasesTheObject) {
    auto const type = makeClassType("Mesh");
    int destroyed = 0;
    {
        auto const value = valueOf(type);
        ASSERT_TRUE(value->setData(Ptr<void>(Ptr<Mesh>::make(&destroyed))));
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST_F(DmClassValueTest, SettingAnotherObjectReleasesTheFormerOne) {
    auto const type = makeClassType("Mesh");
    int first = 0;
    int second = 0;
    auto const value = valueOf(type);
    ASSERT_TRUE(value->setData(Ptr<void>(Ptr<Mesh>::make(&first))));
    ASSERT_TRUE(value->setData(Ptr<void>(Ptr<Mesh>::make(&second))));
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
}

TEST_F(DmClassValueTest, CloneSharesTheObjectAndKeepsTheSetFlag) {
    auto const type = makeClassType("Mesh");
    int destroyed = 0;
    Ptr<void> const object = Ptr<Mesh>::make(&destroyed);
    auto const value = valueOf(type);
    ASSERT_TRUE(value->setData(object));
    auto const clone = as<DmClassValue>(value->clone());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->getData(), object);
    EXPECT_EQ(object.use_count(), 3);
    EXPECT_FALSE(clone->isImplicit());
    EXPECT_FALSE(clone->isDefaultClass());
    EXPECT_TRUE(valueOf(type)->clone()->isImplicit());
}

TEST_F(DmClassValueTest, AssignFromAValueOfTheSameTypeSharesTheObject) {
    auto const type = makeClassType("Mesh");
    int destroyed = 0;
    Ptr<void> const object = Ptr<Mesh>::make(&destroyed);
    auto const source = valueOf(type);
    ASSERT_TRUE(source->setData(object));
    DmClassValue target(type);
    EXPECT_TRUE(target.assign(source));
    EXPECT_EQ(target.getData(), object);
    EXPECT_FALSE(target.isImplicit());
}

TEST_F(DmClassValueTest, AssignFromAnotherClassOfTheSameNameFails) {
    auto const type = makeClassType("Mesh");
    auto const other = makeClassType("Mesh");
    int destroyed = 0;
    auto const source = valueOf(other);
    ASSERT_TRUE(source->setData(Ptr<void>(Ptr<Mesh>::make(&destroyed))));
    DmClassValue target(type);
    EXPECT_FALSE(target.assign(source));
    EXPECT_EQ(target.getData(), nullptr);
    EXPECT_TRUE(target.isImplicit());
}

TEST_F(DmClassValueTest, AssignFromAnArrayValueFails) {
    auto const type = makeClassType("Mesh");
    auto const arrayType = makeArrayType(Singletons::intType());
    DmClassValue target(type);
    EXPECT_FALSE(target.assign(arrayType->createValue(1ull)));
    EXPECT_TRUE(target.isImplicit());
}

TEST_F(DmClassValueTest, MemberValueWritesTheObjectIntoTheStructBuffer) {
    auto const type = makeClassType("Mesh");
    auto const holder = makeStructType("Holder", {{"mesh", type}});
    auto const value = as<DmStructValue>(holder->createValue());
    ASSERT_NE(value, nullptr);
    auto const mesh = member<DmClassValue>(*value, "mesh");
    ASSERT_NE(mesh, nullptr);
    EXPECT_TRUE(mesh->isMemberValue());
    EXPECT_TRUE(mesh->isDefaultClass());
    int destroyed = 0;
    Ptr<void> const object = Ptr<Mesh>::make(&destroyed);
    ASSERT_TRUE(mesh->setData(object));
    EXPECT_EQ(atOffset<Ptr<void>>(*value, *holder, "mesh"), object);
    EXPECT_FALSE(mesh->isDefaultClass());
    EXPECT_FALSE(value->isImplicit());
}

// ---------------------------------------------------------------------------
// toAny without a run-time record

TEST_F(DmClassValueTest, ToAnyIsEmptyWithoutARunTimeRecord) {
    auto const type = makeClassType("Mesh", "N9ValueTest9NoDefaultE");
    ASSERT_EQ(type->getRuntimeTypeInfo(), nullptr);
    int destroyed = 0;
    auto const value = valueOf(type);
    EXPECT_TRUE(value->toAny().isEmpty());
    ASSERT_TRUE(value->setData(Ptr<void>(Ptr<Mesh>::make(&destroyed))));
    EXPECT_TRUE(value->toAny().isEmpty());
}

// ---------------------------------------------------------------------------
// Hosts reach the datum operations of class and array values

TEST_F(DmClassValueTest, DatumOperationsOfClassAndArrayValuesAreExported) {
    // The operations class and array values inherit from their Ptr<void> base.
    char const* const symbols[] = {
        "_ZN5Kesto14DmBuiltInValueINS_3PtrIvEEE6assignERKSt10shared_ptrINS_11DmBaseValueEE",
        "_ZN5Kesto14DmBuiltInValueINS_3PtrIvEEE7setDataERKS2_",
        "_ZN5Kesto14DmBuiltInValueINS_3PtrIvEEE20copyAssignFromBufferEPKv",
    };
    for (char const* const symbol : symbols) {
        EXPECT_NE(dlsym(RTLD_DEFAULT, symbol), nullptr) << symbol;
    }
}

TEST_F(DmClassValueTest, OperationsCalledOnTheValueItselfWork) {
    auto const type = makeClassType("Mesh");
    int destroyed = 0;
    Ptr<void> const object = Ptr<Mesh>::make(&destroyed);
    DmClassValue value(type);
    EXPECT_TRUE(value.setData(object));
    DmClassValue copy(type);
    EXPECT_TRUE(copy.copyAssignFromBuffer(&object));
    EXPECT_EQ(copy.getData(), object);
    auto const source = std::make_shared<DmClassValue>(type);
    EXPECT_TRUE(value.assign(source));
    EXPECT_EQ(value.getData(), nullptr);
}
