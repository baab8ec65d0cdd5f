// Costs of the type model: comparing types (DmBaseType::equivalent and
// lessThan, on which overload de-duplication and connection checks rest) and
// laying a struct out on first need against reading the cached layout.
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmArrayType.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmExternBaseType.h>
#include <KestoDM/types/DmStructType.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

using Kesto::DmArrayType;
using Kesto::DmBaseType;
using Kesto::DmLibrary;
using Kesto::DmStructType;
using TypePtr = std::shared_ptr<DmBaseType const>;

/// Arrays nested `depth` times around `element`.
TypePtr nestArrays(TypePtr element, std::int64_t depth) {
    for (std::int64_t level = 0; level < depth; ++level) {
        element = std::make_shared<DmArrayType>(std::move(element));
    }
    return element;
}

/// The built-in member types cycled through by the wide structs.
std::vector<TypePtr> memberTypes() {
    return {DmLibrary::getBoolType(), DmLibrary::getIntType(),    DmLibrary::getDoubleType(),
            DmLibrary::getLongType(), DmLibrary::getStringType(), DmLibrary::getFloatType()};
}

/// A struct of `width` members on each of `levels` levels: the first width - 1
/// members of a level are built-ins, the last holds the next level down; the
/// innermost level's last member is of type `innermost`. Two calls give two
/// separate but equivalent trees, so a comparison walks every level.
std::shared_ptr<DmStructType> makeWideStruct(std::size_t width, std::size_t levels,
                                             TypePtr const& innermost) {
    std::vector<TypePtr> const builtIns = memberTypes();
    TypePtr inner = innermost;
    std::shared_ptr<DmStructType> type;
    for (std::size_t level = 0; level < levels; ++level) {
        type = Kesto::DmLibrary::createStructType("Level" + std::to_string(level));
        for (std::size_t index = 0; index + 1 < width; ++index) {
            type->addMember("m" + std::to_string(index), builtIns[index % builtIns.size()]);
        }
        type->addMember("next", inner);
        inner = type;
    }
    return type;
}

constexpr std::size_t kWideMembers = 100;
constexpr std::size_t kWideLevels = 3;

// Two separate array chains of the same depth over int: the loop walks to the bottom.
void BM_EquivalentDeepArray(benchmark::State& state) {
    TypePtr const first = nestArrays(DmLibrary::getIntType(), state.range(0));
    TypePtr const second = nestArrays(DmLibrary::getIntType(), state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(DmBaseType::equivalent(*first, *second));
    }
}
BENCHMARK(BM_EquivalentDeepArray)->Arg(10)->Arg(100);

// The same chains: lessThan recurses to the bottom and finds them equal.
void BM_LessThanDeepArray(benchmark::State& state) {
    TypePtr const first = nestArrays(DmLibrary::getIntType(), state.range(0));
    TypePtr const second = nestArrays(DmLibrary::getIntType(), state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(DmBaseType::lessThan(*first, *second));
    }
}
BENCHMARK(BM_LessThanDeepArray)->Arg(10)->Arg(100);

// Two separate equivalent trees of 3 levels of 100 members: every member is compared.
void BM_EquivalentWideStruct(benchmark::State& state) {
    auto const first = makeWideStruct(kWideMembers, kWideLevels, DmLibrary::getIntType());
    auto const second = makeWideStruct(kWideMembers, kWideLevels, DmLibrary::getIntType());
    for (auto _ : state) {
        benchmark::DoNotOptimize(DmBaseType::equivalent(*first, *second));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kWideMembers * kWideLevels));
}
BENCHMARK(BM_EquivalentWideStruct);

// Equivalent trees: lessThan checks each member's equivalence and finds no difference.
void BM_LessThanWideStructEqual(benchmark::State& state) {
    auto const first = makeWideStruct(kWideMembers, kWideLevels, DmLibrary::getIntType());
    auto const second = makeWideStruct(kWideMembers, kWideLevels, DmLibrary::getIntType());
    for (auto _ : state) {
        benchmark::DoNotOptimize(DmBaseType::lessThan(*first, *second));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kWideMembers * kWideLevels));
}
BENCHMARK(BM_LessThanWideStructEqual);

// Trees that differ only in the innermost last member (int against double):
// each level first finds its nested member not equivalent (walking the levels
// below), then descends into it, so the walk is quadratic in the depth.
void BM_LessThanWideStructDifferingInnermost(benchmark::State& state) {
    auto const first = makeWideStruct(kWideMembers, kWideLevels, DmLibrary::getIntType());
    auto const second = makeWideStruct(kWideMembers, kWideLevels, DmLibrary::getDoubleType());
    for (auto _ : state) {
        benchmark::DoNotOptimize(DmBaseType::lessThan(*first, *second));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kWideMembers * kWideLevels));
}
BENCHMARK(BM_LessThanWideStructDifferingInnermost);

/// A flat struct of `width` built-in members.
std::shared_ptr<DmStructType> makeFlatStruct(std::int64_t width) {
    std::vector<TypePtr> const builtIns = memberTypes();
    auto type = Kesto::DmLibrary::createStructType("Flat");
    for (std::int64_t index = 0; index < width; ++index) {
        type->addMember("m" + std::to_string(index),
                        builtIns[static_cast<std::size_t>(index) % builtIns.size()]);
    }
    return type;
}

// The first read of a fresh struct lays it out. Each iteration builds a new
// struct (its addMember calls leave the layout to be worked out) with the
// clock stopped, then times the first getSizeOf alone.
void BM_StructLayoutFirstRead(benchmark::State& state) {
    std::shared_ptr<DmStructType> type;
    for (auto _ : state) {
        state.PauseTiming();
        type = makeFlatStruct(state.range(0));
        state.ResumeTiming();
        benchmark::DoNotOptimize(type->getSizeOf());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_StructLayoutFirstRead)->Arg(10)->Arg(100);

// Later reads return the cached layout.
void BM_StructLayoutCachedRead(benchmark::State& state) {
    auto const type = makeFlatStruct(state.range(0));
    benchmark::DoNotOptimize(type->getSizeOf());
    for (auto _ : state) {
        benchmark::DoNotOptimize(type->getSizeOf());
    }
}
BENCHMARK(BM_StructLayoutCachedRead)->Arg(10)->Arg(100);

// A 3-level, 100-member nested struct: the first read also lays out the levels
// below and sets the absolute offsets of every sub-member.
void BM_StructLayoutFirstReadNested(benchmark::State& state) {
    std::shared_ptr<DmStructType> type;
    for (auto _ : state) {
        state.PauseTiming();
        type = makeWideStruct(kWideMembers, kWideLevels, DmLibrary::getIntType());
        state.ResumeTiming();
        benchmark::DoNotOptimize(type->getSizeOf());
    }
}
BENCHMARK(BM_StructLayoutFirstReadNested);

} // namespace
