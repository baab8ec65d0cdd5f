// Shared ground of the value tests: a fixture that checks that every test
// gives back all the values, metadata items and types it made, and small
// factories for the composite types the tests build.
#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmMangledName.h>
#include <KestoDM/types/DmMetadataItem.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmStructValue.h>
#include <KestoDM/types/DmUnknownStructType.h>
#include <KestoDM/types/DmUnknownType.h>

#include "types/DmExternTypeFactory.h"
#include "types/DmTypeSingletons.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

namespace Kesto {
namespace ValueTest {

using TypeConstPtr = std::shared_ptr<DmBaseType const>;
using Singletons = Internal::TypeSingletons;

/// Records the live counts of values, struct values, array values, metadata
/// items and types when a test starts and expects each back at that number
/// when it ends: whatever a test makes must be gone by then. The process-wide
/// built-in types are made once, before the first count is taken.
class ValueTestBase : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        Singletons::autoType();
        Singletons::boolType();
        Singletons::charType();
        Singletons::ucharType();
        Singletons::shortType();
        Singletons::ushortType();
        Singletons::intType();
        Singletons::uintType();
        Singletons::longType();
        Singletons::ulongType();
        Singletons::floatType();
        Singletons::doubleType();
        Singletons::anyType();
        Singletons::arrayOfAnyType();
        Singletons::stringType();
        Singletons::undefinedType();
        Singletons::runtimeServicesType();
        Singletons::typeRegistryType();
    }

    void SetUp() override {
        m_values = DmInstanceCounter<DmBaseValue>::getInstanceCount();
        m_structValues = DmInstanceCounter<DmStructValue>::getInstanceCount();
        m_arrayValues = DmInstanceCounter<DmArrayValue>::getInstanceCount();
        m_items = DmInstanceCounter<DmMetadataItem>::getInstanceCount();
        m_types = DmInstanceCounter<DmBaseType>::getInstanceCount();
    }

    void TearDown() override {
        EXPECT_EQ(DmInstanceCounter<DmBaseValue>::getInstanceCount(), m_values) << "values left alive";
        EXPECT_EQ(DmInstanceCounter<DmStructValue>::getInstanceCount(), m_structValues)
            << "struct values left alive";
        EXPECT_EQ(DmInstanceCounter<DmArrayValue>::getInstanceCount(), m_arrayValues)
            << "array values left alive";
        EXPECT_EQ(DmInstanceCounter<DmMetadataItem>::getInstanceCount(), m_items)
            << "metadata items left alive";
        EXPECT_EQ(DmInstanceCounter<DmBaseType>::getInstanceCount(), m_types) << "types left alive";
    }

    /// Live values now, less those alive when the test started.
    unsigned int valuesMadeSinceStart() const {
        return DmInstanceCounter<DmBaseValue>::getInstanceCount() - m_values;
    }
    unsigned int arrayValuesMadeSinceStart() const {
        return DmInstanceCounter<DmArrayValue>::getInstanceCount() - m_arrayValues;
    }
    unsigned int structValuesMadeSinceStart() const {
        return DmInstanceCounter<DmStructValue>::getInstanceCount() - m_structValues;
    }

private:
    unsigned int m_values = 0;
    unsigned int m_structValues = 0;
    unsigned int m_arrayValues = 0;
    unsigned int m_items = 0;
    unsigned int m_types = 0;
};

/// The value as its concrete class; null when it is another one.
template <class ValueClass>
std::shared_ptr<ValueClass> as(std::shared_ptr<DmBaseValue> const& value) {
    return std::dynamic_pointer_cast<ValueClass>(value);
}

/// A struct type with the given members, in order; laid out at once so that
/// member offsets can be read.
inline std::shared_ptr<DmStructType>
makeStructType(std::string const& name, std::initializer_list<std::pair<std::string, TypeConstPtr>> members,
               std::string const& mangledName = std::string()) {
    auto type = DmLibrary::createStructType(name);
    for (auto const& member : members) {
        type->addMember(member.first, member.second);
    }
    if (!mangledName.empty()) {
        type->setTypeNameMangleName(DmMangledName(std::string(), mangledName));
    }
    type->getUntypedTypeRep();
    return type;
}

/// An unknown struct type with the given members, in order.
inline std::shared_ptr<DmUnknownStructType>
makeUnknownStructType(std::string const& name,
                      std::initializer_list<std::pair<std::string, TypeConstPtr>> members) {
    auto type = Internal::ExternTypeFactory::make<DmUnknownStructType>(name);
    for (auto const& member : members) {
        type->addMember(member.first, member.second);
    }
    type->getUntypedTypeRep();
    return type;
}

/// An enum type with the given keys and integers, in order.
inline std::shared_ptr<DmEnumType> makeEnumType(std::string const& name,
                                                std::initializer_list<std::pair<char const*, int>> keys,
                                                std::string const& mangledName = std::string()) {
    auto type = DmLibrary::createEnumType(name);
    for (auto const& key : keys) {
        type->addEnumeration(String(key.first), key.second);
    }
    if (!mangledName.empty()) {
        type->setTypeNameMangleName(DmMangledName(std::string(), mangledName));
    }
    return type;
}

/// A class type without context: it has no default function, so its default
/// object is null and it has no run-time record.
inline std::shared_ptr<DmClassType> makeClassType(std::string const& name,
                                                  std::string const& mangledName = std::string()) {
    auto type = DmLibrary::createClassType(name);
    if (!mangledName.empty()) {
        type->setTypeNameMangleName(DmMangledName(std::string(), mangledName));
    }
    return type;
}

inline std::shared_ptr<DmArrayType> makeArrayType(TypeConstPtr element) {
    return std::make_shared<DmArrayType>(std::move(element));
}

inline std::shared_ptr<DmUnknownType> makeUnknownType(std::string const& name) {
    return Internal::ExternTypeFactory::make<DmUnknownType>(name);
}

/// One live T in storage of its own, and a byte pointer at it that shares the
/// storage's ownership: what a member value is made with.
template <class T>
struct OwnedSlot {
    std::shared_ptr<T> object = std::make_shared<T>();

    std::shared_ptr<unsigned char const> bytes() const {
        return std::shared_ptr<unsigned char const>(object,
                                                    reinterpret_cast<unsigned char const*>(object.get()));
    }
};

/// The datum of the member value `name` of a struct value, read as T; the test
/// fails when there is no such member.
template <class ValueClass>
std::shared_ptr<ValueClass> member(DmStructValue const& value, std::string const& name) {
    std::shared_ptr<DmBaseValue> found;
    EXPECT_TRUE(value.getMember(name, found)) << name;
    auto typed = as<ValueClass>(found);
    EXPECT_NE(typed, nullptr) << name;
    return typed;
}

/// The T at the offset of member `name` in the struct's buffer.
template <class T>
T const& atOffset(DmStructValue const& value, DmStructType const& type, std::string const& name) {
    std::shared_ptr<DmStructType::Member> const found = type.findMember(name);
    return *reinterpret_cast<T const*>(value.getData() + (found ? found->getOffset() : 0));
}

} // namespace ValueTest
} // namespace Kesto
