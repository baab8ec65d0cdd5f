// Costs of values: making a struct value with every member given its default,
// reading a member once the member map is built, and filling large arrays
// with default elements (trivial ints, and texts that are handled one by one).
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmArrayValue.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmStructValue.h>

#include "types/DmTypeSingletons.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>

namespace {

using Kesto::DmArrayType;
using Kesto::DmArrayValue;
using Kesto::DmBaseType;
using Kesto::DmBaseValue;
using Kesto::DmStructType;
using Kesto::DmStructValue;
using Singletons = Kesto::Internal::TypeSingletons;

/// A struct of 16 members, int, double, string and bool in turn.
std::shared_ptr<DmStructType> makeSixteenMemberStruct() {
    auto type = Kesto::DmLibrary::createStructType("Sixteen");
    std::shared_ptr<DmBaseType const> const memberTypes[] = {
        Singletons::intType(), Singletons::doubleType(), Singletons::stringType(), Singletons::boolType()};
    for (int i = 0; i < 16; ++i) {
        type->addMember("m" + std::to_string(i), memberTypes[i % 4]);
    }
    type->getUntypedTypeRep();
    return type;
}

void BM_StructCreateDefaultValue16Members(benchmark::State& state) {
    std::shared_ptr<DmStructType> const type = makeSixteenMemberStruct();
    for (auto _ : state) {
        std::shared_ptr<DmBaseValue> value = type->createDefaultValue();
        benchmark::DoNotOptimize(value.get());
    }
}
BENCHMARK(BM_StructCreateDefaultValue16Members);

void BM_StructGetMemberOnBuiltMap(benchmark::State& state) {
    std::shared_ptr<DmStructType> const type = makeSixteenMemberStruct();
    std::shared_ptr<DmBaseValue> const value = type->createValue();
    auto const& structValue = static_cast<DmStructValue const&>(*value);
    structValue.getMembers();
    std::string const name = "m9";
    std::shared_ptr<DmBaseValue> member;
    for (auto _ : state) {
        bool const found = structValue.getMember(name, member);
        benchmark::DoNotOptimize(found);
        benchmark::DoNotOptimize(member.get());
    }
}
BENCHMARK(BM_StructGetMemberOnBuiltMap);

void assignArrayOf(benchmark::State& state, std::shared_ptr<DmBaseType const> const& element) {
    auto const size = static_cast<unsigned long long>(state.range(0));
    auto const type = std::make_shared<DmArrayType>(element);
    DmArrayValue value(type);
    for (auto _ : state) {
        bool const assigned = value.assignArray(size);
        benchmark::DoNotOptimize(assigned);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(size));
}

void BM_ArrayAssignArrayInts(benchmark::State& state) {
    assignArrayOf(state, Singletons::intType());
}
BENCHMARK(BM_ArrayAssignArrayInts)->Arg(100000);

void BM_ArrayAssignArrayStrings(benchmark::State& state) {
    assignArrayOf(state, Singletons::stringType());
}
BENCHMARK(BM_ArrayAssignArrayStrings)->Arg(100000);

} // namespace
