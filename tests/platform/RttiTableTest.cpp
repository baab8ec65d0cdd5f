#include <KestoDM/platform/RttiTable.h>

#include <KestoDM/platform/Any.h>
#include <KestoDM/platform/Ptr.h>
#include <KestoDM/platform/RuntimeTypeInfo.h>
#include <KestoDM/platform/String.h>
#include <KestoDM/platform/UntypedTypeRep.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

using Kesto::Any;
using Kesto::Ptr;
using Kesto::String;
using Kesto::Internal::BuiltinType;
using Kesto::Internal::GlobalRttiTable;
using Kesto::Internal::RttiTable;
using Kesto::Internal::RuntimeTypeInfo;
using Kesto::Internal::UntypedTypeRep;
using Kind = RuntimeTypeInfo::Kind;

namespace {

template <class T>
void expectBuiltin(RttiTable const& table, char const* name) {
    RuntimeTypeInfo const* const record = table.getBuiltin<T>();
    ASSERT_NE(record, nullptr) << name;
    EXPECT_EQ(record->getKind(), Kind::kBuiltin) << name;
    EXPECT_EQ(record->getMangledName(), name);
    EXPECT_EQ(record->getUntypedTypeRep().size(), sizeof(T)) << name;
    EXPECT_EQ(record->getUntypedTypeRep().alignment(), alignof(T)) << name;
    EXPECT_TRUE(record->getUntypedTypeRep().isSameAs(UntypedTypeRep::of<T>())) << name;
    EXPECT_EQ(record->getElementType(), nullptr);
    EXPECT_TRUE(record->getMembers().empty());
    EXPECT_EQ(table.find(name), record);
}

// Runs `work` on 8 threads released at once, so that they race.
template <class Work>
void raceOnEightThreads(Work work) {
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&go, &work, t] {
            while (!go.load()) {
                std::this_thread::yield();
            }
            work(t);
        });
    }
    go.store(true);
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace

TEST(RttiTable, HasEveryBuiltinWithItsFixedName) {
    RttiTable const table;
    expectBuiltin<signed char>(table, "char");
    expectBuiltin<unsigned char>(table, "uchar");
    expectBuiltin<short>(table, "short");
    expectBuiltin<unsigned short>(table, "ushort");
    expectBuiltin<int>(table, "int");
    expectBuiltin<unsigned int>(table, "uint");
    expectBuiltin<std::int64_t>(table, "long");
    expectBuiltin<std::uint64_t>(table, "ulong");
    expectBuiltin<float>(table, "float");
    expectBuiltin<double>(table, "double");
    expectBuiltin<bool>(table, "bool");
    expectBuiltin<Any>(table, "any");
    expectBuiltin<String>(table, "string");
    expectBuiltin<Ptr<void>>(table, "ptr");
    EXPECT_EQ(table.size(), 14u);
}

TEST(RttiTable, BuiltinByEnumMatchesBuiltinByType) {
    RttiTable const table;
    EXPECT_EQ(table.getBuiltin(BuiltinType::kInt), table.getBuiltin<int>());
    EXPECT_EQ(table.getBuiltin(BuiltinType::kPtr), table.getBuiltin<Ptr<void>>());
    EXPECT_EQ(table.getBuiltin(static_cast<BuiltinType>(99)), nullptr);
    EXPECT_NE(table.getBuiltin<int>(), table.getBuiltin<unsigned int>());
}

TEST(RttiTable, GivesOneRecordPerMangledName) {
    RttiTable table;
    RuntimeTypeInfo const* const mesh = table.getOrInsertMangle("N3Geo4MeshE");
    ASSERT_NE(mesh, nullptr);
    EXPECT_EQ(mesh->getKind(), Kind::kUnresolved);
    EXPECT_EQ(mesh->getMangledName(), "N3Geo4MeshE");
    EXPECT_FALSE(mesh->getUntypedTypeRep().isValid());
    EXPECT_EQ(table.getOrInsertMangle("N3Geo4MeshE"), mesh);
    EXPECT_EQ(table.find("N3Geo4MeshE"), mesh);
    EXPECT_NE(table.getOrInsertMangle("N3Geo5PointE"), mesh);
    EXPECT_EQ(table.getOrInsertMangle("int"), table.getBuiltin<int>());
    EXPECT_EQ(table.size(), 16u);
}

TEST(RttiTable, EmptyNameHasNoRecord) {
    RttiTable table;
    EXPECT_EQ(table.getOrInsertMangle(""), nullptr);
    EXPECT_EQ(table.find(""), nullptr);
    EXPECT_EQ(table.find("never added"), nullptr);
    EXPECT_EQ(table.size(), 14u);
}

TEST(RttiTable, ClassifiesAClassOnce) {
    RttiTable table;
    RuntimeTypeInfo const* const record = table.getOrInsertMangle("N3Geo4MeshE");
    EXPECT_EQ(table.getOrInsertClass(record), record);
    EXPECT_EQ(record->getKind(), Kind::kClass);
    EXPECT_TRUE(record->getUntypedTypeRep().isSameAs(UntypedTypeRep::of<Ptr<void>>()));
    EXPECT_EQ(table.getOrInsertClass(record), record);
    EXPECT_EQ(record->getKind(), Kind::kClass);
}

TEST(RttiTable, ClassifiesAnEnumAsAnInt) {
    RttiTable table;
    RuntimeTypeInfo const* const record = table.getOrInsertMangle("N3Geo5ColorE");
    EXPECT_EQ(table.getOrInsertEnum(record), record);
    EXPECT_EQ(record->getKind(), Kind::kEnum);
    EXPECT_TRUE(record->getUntypedTypeRep().isSameAs(UntypedTypeRep::of<int>()));
    EXPECT_EQ(table.getOrInsertEnum(record), record);
}

TEST(RttiTable, RefusesToReclassifyAsAnotherKind) {
    RttiTable table;
    RuntimeTypeInfo const* const asClass = table.getOrInsertClass(table.getOrInsertMangle("N1A5ThingE"));
    RuntimeTypeInfo const* const asEnum = table.getOrInsertEnum(table.getOrInsertMangle("N1A4KindE"));
    UntypedTypeRep const rep = UntypedTypeRep::makeStruct({{0, UntypedTypeRep::of<int>()}}, 4, 4);
    EXPECT_EQ(table.getOrInsertEnum(asClass), nullptr);
    EXPECT_EQ(table.getOrInsertStruct(asClass, {table.getBuiltin<int>()}, rep), nullptr);
    EXPECT_EQ(table.getOrInsertClass(asEnum), nullptr);
    EXPECT_EQ(table.getOrInsertClass(table.getBuiltin<int>()), nullptr);
    EXPECT_EQ(table.getOrInsertClass(table.getOrInsertArray(table.getBuiltin<int>())), nullptr);
    EXPECT_EQ(asClass->getKind(), Kind::kClass);
    EXPECT_EQ(asEnum->getKind(), Kind::kEnum);
}

TEST(RttiTable, RefusesNullAndForeignRecords) {
    RttiTable table;
    RttiTable other;
    RuntimeTypeInfo const* const foreign = other.getOrInsertMangle("N1A5ThingE");
    EXPECT_EQ(table.getOrInsertClass(nullptr), nullptr);
    EXPECT_EQ(table.getOrInsertEnum(nullptr), nullptr);
    EXPECT_EQ(table.getOrInsertArray(nullptr), nullptr);
    EXPECT_EQ(table.getOrInsertClass(foreign), nullptr);
    EXPECT_EQ(table.getOrInsertArray(foreign), nullptr);
    EXPECT_EQ(foreign->getKind(), Kind::kUnresolved);
}

TEST(RttiTable, ClassifiesAStructWithItsMembersAndRep) {
    RttiTable table;
    RuntimeTypeInfo const* const record = table.getOrInsertMangle("N3Geo6SampleE");
    UntypedTypeRep const rep = UntypedTypeRep::makeStruct(
        {{0, UntypedTypeRep::of<int>()}, {8, UntypedTypeRep::of<String>()}}, 24, 8);
    std::vector<RuntimeTypeInfo const*> const members{table.getBuiltin<int>(), table.getBuiltin<String>()};
    EXPECT_EQ(table.getOrInsertStruct(record, members, rep), record);
    EXPECT_EQ(record->getKind(), Kind::kStruct);
    EXPECT_EQ(record->getMembers(), members);
    EXPECT_TRUE(record->getUntypedTypeRep().isSameAs(rep));
    // Classified once: a later call with other members does not change it.
    EXPECT_EQ(table.getOrInsertStruct(record, {table.getBuiltin<double>()}, UntypedTypeRep::of<double>()),
              record);
    EXPECT_EQ(record->getMembers(), members);
}

TEST(RttiTable, RefusesAStructWithANullMemberOrNoRep) {
    RttiTable table;
    RuntimeTypeInfo const* const record = table.getOrInsertMangle("N3Geo6SampleE");
    UntypedTypeRep const rep = UntypedTypeRep::makeStruct({{0, UntypedTypeRep::of<int>()}}, 4, 4);
    EXPECT_EQ(table.getOrInsertStruct(record, {table.getBuiltin<int>(), nullptr}, rep), nullptr);
    EXPECT_EQ(table.getOrInsertStruct(record, {table.getBuiltin<int>()}, UntypedTypeRep()), nullptr);
    EXPECT_EQ(record->getKind(), Kind::kUnresolved);
    EXPECT_TRUE(record->getMembers().empty());
}

TEST(RttiTable, GivesOneArrayRecordPerElement) {
    RttiTable table;
    RuntimeTypeInfo const* const ints = table.getOrInsertArray(table.getBuiltin<int>());
    ASSERT_NE(ints, nullptr);
    EXPECT_EQ(ints->getKind(), Kind::kArray);
    EXPECT_EQ(ints->getMangledName(), "array<int>");
    EXPECT_EQ(ints->getElementType(), table.getBuiltin<int>());
    EXPECT_TRUE(ints->getUntypedTypeRep().isSameAs(UntypedTypeRep::of<Ptr<void>>()));
    EXPECT_EQ(table.getOrInsertArray(table.getBuiltin<int>()), ints);
    EXPECT_EQ(table.getOrInsertMangle("array<int>"), ints);

    RuntimeTypeInfo const* const nested = table.getOrInsertArray(ints);
    EXPECT_EQ(nested->getMangledName(), "array<array<int>>");
    EXPECT_EQ(nested->getElementType(), ints);

    RuntimeTypeInfo const* const meshes = table.getOrInsertArray(table.getOrInsertMangle("N3Geo4MeshE"));
    EXPECT_EQ(meshes->getMangledName(), "array<N3Geo4MeshE>");
    EXPECT_NE(meshes, ints);
}

TEST(RttiTable, ArrayOfAnUnresolvedNameBecomesTheArrayRecord) {
    RttiTable table;
    RuntimeTypeInfo const* const early = table.getOrInsertMangle("array<double>");
    EXPECT_EQ(early->getElementType(), nullptr);
    EXPECT_EQ(table.getOrInsertArray(table.getBuiltin<double>()), early);
    EXPECT_EQ(early->getKind(), Kind::kArray);
    EXPECT_EQ(early->getElementType(), table.getBuiltin<double>());
}

TEST(RttiTable, ArrayNameTakenByAnotherKindGivesNoArray) {
    RttiTable table;
    table.getOrInsertClass(table.getOrInsertMangle("array<float>"));
    EXPECT_EQ(table.getOrInsertArray(table.getBuiltin<float>()), nullptr);
}

TEST(RttiTable, ArrayRepIsTheRepOfPtrToVoid) {
    RttiTable const table;
    EXPECT_TRUE(
        table.getOrInsertArrayRep(UntypedTypeRep::of<int>()).isSameAs(UntypedTypeRep::of<Ptr<void>>()));
    EXPECT_TRUE(
        table.getOrInsertArrayRep(UntypedTypeRep::of<String>()).isSameAs(UntypedTypeRep::of<Ptr<void>>()));
}

TEST(RttiTable, RacingThreadsGetTheSameRecords) {
    RttiTable table;
    std::vector<std::string> names;
    for (int i = 0; i < 50; ++i) {
        names.push_back("N4Race" + std::to_string(i) + "E");
    }
    std::vector<std::vector<RuntimeTypeInfo const*>> seen(8);
    std::vector<std::vector<RuntimeTypeInfo const*>> classified(8);
    std::vector<std::vector<RuntimeTypeInfo const*>> arrays(8);
    raceOnEightThreads([&](int t) {
        for (std::string const& name : names) {
            RuntimeTypeInfo const* const record = table.getOrInsertMangle(name);
            seen[t].push_back(record);
            classified[t].push_back(table.getOrInsertClass(record));
            arrays[t].push_back(table.getOrInsertArray(record));
            EXPECT_EQ(record->getKind(), Kind::kClass);
            EXPECT_TRUE(record->getUntypedTypeRep().isValid());
        }
    });
    for (int t = 0; t < 8; ++t) {
        EXPECT_EQ(seen[t], seen[0]);
        EXPECT_EQ(classified[t], seen[0]);
        EXPECT_EQ(arrays[t], arrays[0]);
    }
    EXPECT_EQ(table.size(), 14u + 2 * names.size());
}

TEST(RttiTable, RacingThreadsReadRecordsWhileOthersClassifyThem) {
    RttiTable table;
    RuntimeTypeInfo const* const record = table.getOrInsertMangle("N4Race5LaterE");
    raceOnEightThreads([&](int t) {
        if (t == 0) {
            table.getOrInsertEnum(record);
            return;
        }
        for (int i = 0; i < 1000; ++i) {
            // Either still unresolved with no rep, or an enum with its rep: never half of each.
            if (record->getKind() == Kind::kEnum) {
                EXPECT_TRUE(record->getUntypedTypeRep().isSameAs(UntypedTypeRep::of<int>()));
                return;
            }
        }
    });
    EXPECT_EQ(record->getKind(), Kind::kEnum);
}

TEST(RttiTable, GlobalTableIsOneTableForTheProcess) {
    RttiTable& first = GlobalRttiTable::get();
    std::vector<RttiTable*> fromThreads(8);
    raceOnEightThreads([&](int t) { fromThreads[t] = &GlobalRttiTable::get(); });
    for (RttiTable* table : fromThreads) {
        EXPECT_EQ(table, &first);
    }
    EXPECT_EQ(first.getBuiltin<String>()->getMangledName(), "string");
}
