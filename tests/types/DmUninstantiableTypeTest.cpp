// Types of which no datum exists: "auto" and the undefined types.
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/UntypedTypeRep.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmTypeKind.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>

using namespace Kesto;

namespace {

/// The two uninstantiable singletons and an undefined type made by hand.
struct UninstantiableCase {
    char const* label;
    char const* name;
    DmTypeKind kind;
    std::shared_ptr<DmBaseType const> (*make)();
};

std::ostream& operator<<(std::ostream& out, UninstantiableCase const& entry) {
    return out << entry.label;
}

UninstantiableCase const kUninstantiables[] = {
    {"Auto", "auto", kTypeAuto, [] { return std::shared_ptr<DmBaseType const>(DmLibrary::getAutoType()); }},
    {"LibraryUndefined", "__undefined__", kTypeUndefined,
     [] { return std::shared_ptr<DmBaseType const>(DmLibrary::getUndefinedType()); }},
    {"NamedUndefined", "Missing", kTypeUndefined,
     [] { return std::shared_ptr<DmBaseType const>(std::make_shared<DmUndefinedType>("Missing")); }},
};

class DmUninstantiableTypeCase : public testing::TestWithParam<UninstantiableCase> {
protected:
    void SetUp() override { m_type = GetParam().make(); }

    std::shared_ptr<DmBaseType const> m_type;
};

std::string caseName(testing::TestParamInfo<UninstantiableCase> const& info) {
    return info.param.label;
}

} // namespace

TEST_P(DmUninstantiableTypeCase, HasItsName) {
    EXPECT_EQ(m_type->getName(), GetParam().name);
}

TEST_P(DmUninstantiableTypeCase, HasItsKind) {
    EXPECT_EQ(m_type->getTypeKind(), GetParam().kind);
}

TEST_P(DmUninstantiableTypeCase, SizeIsZero) {
    EXPECT_EQ(m_type->getSizeOf(), 0u);
}

TEST_P(DmUninstantiableTypeCase, AlignmentIsZero) {
    EXPECT_EQ(m_type->getAlignmentOf(), 0u);
}

TEST_P(DmUninstantiableTypeCase, IsNotNative) {
    EXPECT_FALSE(m_type->isNative());
}

TEST_P(DmUninstantiableTypeCase, IsNotPOD) {
    EXPECT_FALSE(m_type->isPOD());
}

TEST_P(DmUninstantiableTypeCase, HasNoRuntimeTypeInfo) {
    EXPECT_EQ(m_type->getRuntimeTypeInfo(), nullptr);
}

TEST_P(DmUninstantiableTypeCase, UntypedTypeRepIsTheOpaqueSixteenByteRep) {
    Internal::UntypedTypeRep const rep = m_type->getUntypedTypeRep();
    ASSERT_TRUE(rep.isValid());
    EXPECT_EQ(rep.size(), 16u);
    EXPECT_EQ(rep.alignment(), 8u);
    EXPECT_TRUE(rep.isSameAs(Internal::UntypedTypeRep::opaque16()));
}

INSTANTIATE_TEST_SUITE_P(AutoAndUndefined, DmUninstantiableTypeCase, testing::ValuesIn(kUninstantiables),
                         caseName);

TEST(DmUninstantiableType, AutoIsConstFromBirth) {
    EXPECT_TRUE(DmLibrary::getAutoType()->isConst());
}

TEST(DmUninstantiableType, LibraryUndefinedIsConstFromBirth) {
    EXPECT_TRUE(DmLibrary::getUndefinedType()->isConst());
}

TEST(DmUninstantiableType, AutoIsTheSameObjectOnEveryCall) {
    EXPECT_EQ(DmLibrary::getAutoType().get(), DmLibrary::getAutoType().get());
}

TEST(DmUninstantiableType, UndefinedTypeMadeByHandIsNotTheLibrarysUndefinedType) {
    auto const made = std::make_shared<DmUndefinedType>("__undefined__");
    EXPECT_NE(made.get(), DmLibrary::getUndefinedType().get());
}
