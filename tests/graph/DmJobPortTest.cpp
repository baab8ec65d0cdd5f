#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/graph/DmJobPort.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmStructType.h>

#include "graph/OperatorTestSupport.h"
#include "types/DmExternTypeFactory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

using namespace Kesto;
using KestoTest::makeEnum;
using KestoTest::makeStruct;
using KestoTest::namesOf;

namespace {

std::shared_ptr<DmJobPort> jobPort(std::string const& name,
                                   std::shared_ptr<DmBaseType const> type = DmLibrary::getIntType()) {
    return DmJobPort::createJobPort(name, std::move(type));
}

/// Asserts the three laws of a strict weak ordering over every pair and
/// triple of `ports`: irreflexive, asymmetric, and transitive both in "less"
/// and in "neither is less".
void expectStrictWeakOrdering(std::vector<std::shared_ptr<DmJobPort>> const& ports) {
    DmJobPortSorter const less;
    for (auto const& a : ports) {
        EXPECT_FALSE(less(a, a)) << a->getName();
        for (auto const& b : ports) {
            EXPECT_FALSE(less(a, b) && less(b, a)) << a->getName() << " " << b->getName();
            for (auto const& c : ports) {
                if (less(a, b) && less(b, c)) {
                    EXPECT_TRUE(less(a, c)) << a->getName() << " " << b->getName() << " " << c->getName();
                }
                bool const ab = !less(a, b) && !less(b, a);
                bool const bc = !less(b, c) && !less(c, b);
                if (ab && bc) {
                    EXPECT_FALSE(less(a, c) || less(c, a))
                        << a->getName() << " " << b->getName() << " " << c->getName();
                }
            }
        }
    }
}

class DmJobPortTest : public KestoTest::OperatorTest {};
class DmJobPortSorterTest : public KestoTest::OperatorTest {};

} // namespace

// ---------------------------------------------------------------------------
// Construction

TEST_F(DmJobPortTest, IsANamedEntity) {
    EXPECT_TRUE((std::is_base_of<DmNamedEntity, DmJobPort>::value));
}

TEST_F(DmJobPortTest, CreateKeepsNameAndType) {
    auto const port = jobPort("services", DmLibrary::getFloatType());
    ASSERT_NE(port, nullptr);
    EXPECT_EQ(port->getName(), "services");
    EXPECT_EQ(port->getType(), DmLibrary::getFloatType());
}

TEST_F(DmJobPortTest, CreateWithoutAFlagIsComplete) {
    EXPECT_TRUE(jobPort("services")->isComplete());
}

TEST_F(DmJobPortTest, CreateWithAFlagIsCompleteAsTheFlagSays) {
    EXPECT_TRUE(DmJobPort::createJobPort("services", DmLibrary::getIntType(), true)->isComplete());
    EXPECT_FALSE(DmJobPort::createJobPort("services", DmLibrary::getIntType(), false)->isComplete());
}

TEST_F(DmJobPortTest, TakesTheNameAsItStands) {
    EXPECT_EQ(jobPort("two words")->getName(), "two words");
    EXPECT_EQ(jobPort("")->getName(), "");
}

TEST_F(DmJobPortTest, SetTypeReplacesTheType) {
    auto const port = jobPort("services");
    port->setType(DmLibrary::getStringType());
    EXPECT_EQ(port->getType(), DmLibrary::getStringType());
    port->setType(nullptr);
    EXPECT_EQ(port->getType(), nullptr);
}

TEST_F(DmJobPortTest, CanBeFoundByItsRuntimeUID) {
    auto const port = jobPort("services");
    EXPECT_EQ(DmNamedEntity::findByRuntimeUID(port->getRuntimeUID()), port);
}

TEST_F(DmJobPortTest, IsCountedWhileItLives) {
    unsigned int const before = count<DmJobPort>();
    {
        auto const port = jobPort("services");
        EXPECT_EQ(count<DmJobPort>(), before + 1);
    }
    EXPECT_EQ(count<DmJobPort>(), before);
}

// ---------------------------------------------------------------------------
// Validity

TEST_F(DmJobPortTest, IsValidWithANameAndAValidType) {
    EXPECT_TRUE(jobPort("services")->isValid());
    EXPECT_TRUE(jobPort("services", makeStruct("Context"))->isValid());
}

TEST_F(DmJobPortTest, IsNotValidWithoutAType) {
    EXPECT_FALSE(jobPort("services", nullptr)->isValid());
}

TEST_F(DmJobPortTest, IsNotValidWithATypeThatIsNotValid) {
    // The factories refuse the empty name; the library's own code can still make such a type.
    auto const nameless = std::make_shared<DmStructType>(Internal::ExternTypeFactory::tag(), "");
    ASSERT_FALSE(nameless->isValid());
    EXPECT_FALSE(jobPort("services", nameless)->isValid());
}

TEST_F(DmJobPortTest, IsNotValidWithoutAName) {
    EXPECT_FALSE(jobPort("")->isValid());
}

TEST_F(DmJobPortTest, AnIncompletePortWithAValidTypeIsStillValid) {
    EXPECT_TRUE(DmJobPort::createJobPort("services", DmLibrary::getIntType(), false)->isValid());
}

// ---------------------------------------------------------------------------
// Sorting

TEST_F(DmJobPortSorterTest, OrdersByName) {
    DmJobPortSorter const less;
    auto const alpha = jobPort("alpha");
    auto const beta = jobPort("beta");
    EXPECT_TRUE(less(*alpha, *beta));
    EXPECT_FALSE(less(*beta, *alpha));
}

TEST_F(DmJobPortSorterTest, PutsTheShorterNameFirstOnACommonPrefix) {
    DmJobPortSorter const less;
    auto const short_ = jobPort("port");
    auto const long_ = jobPort("port2");
    EXPECT_TRUE(less(*short_, *long_));
    EXPECT_FALSE(less(*long_, *short_));
}

TEST_F(DmJobPortSorterTest, ComparesNamesByteByByte) {
    DmJobPortSorter const less;
    // Upper case bytes come before lower case ones, and bytes above 127
    // after every ASCII byte.
    EXPECT_TRUE(less(*jobPort("Zeta"), *jobPort("alpha")));
    EXPECT_TRUE(less(*jobPort("zeta"), *jobPort("\xC3\xA9t\xC3\xA9")));
    EXPECT_FALSE(less(*jobPort("\xC3\xA9t\xC3\xA9"), *jobPort("zeta")));
}

TEST_F(DmJobPortSorterTest, NameDecidesBeforeType) {
    DmJobPortSorter const less;
    // string sorts after int as a type, but the name comes first.
    auto const a = jobPort("a", DmLibrary::getStringType());
    auto const b = jobPort("b", DmLibrary::getIntType());
    ASSERT_TRUE(DmBaseType::lessThan(DmLibrary::getIntType(), DmLibrary::getStringType()));
    EXPECT_TRUE(less(*a, *b));
    EXPECT_FALSE(less(*b, *a));
}

TEST_F(DmJobPortSorterTest, OrdersPortsOfOneNameByType) {
    DmJobPortSorter const less;
    auto const asInt = jobPort("services", DmLibrary::getIntType());
    auto const asString = jobPort("services", DmLibrary::getStringType());
    bool const intFirst = DmBaseType::lessThan(DmLibrary::getIntType(), DmLibrary::getStringType());
    ASSERT_TRUE(intFirst);
    EXPECT_TRUE(less(*asInt, *asString));
    EXPECT_FALSE(less(*asString, *asInt));
}

TEST_F(DmJobPortSorterTest, KeepsBothPortsOfOneNameAndDifferentTypesInASortedSet) {
    std::set<std::shared_ptr<DmJobPort>, DmJobPortSorter> ports;
    ports.insert(jobPort("services", DmLibrary::getStringType()));
    ports.insert(jobPort("services", DmLibrary::getIntType()));
    ASSERT_EQ(ports.size(), 2u);
    EXPECT_EQ((*ports.begin())->getType(), DmLibrary::getIntType());
    EXPECT_EQ((*ports.rbegin())->getType(), DmLibrary::getStringType());
}

TEST_F(DmJobPortSorterTest, PortsOfOneNameAndTypeAreEquivalent) {
    DmJobPortSorter const less;
    auto const first = jobPort("services");
    auto const second = jobPort("services");
    EXPECT_FALSE(less(*first, *second));
    EXPECT_FALSE(less(*second, *first));
}

TEST_F(DmJobPortSorterTest, APortIsNotLessThanItself) {
    DmJobPortSorter const less;
    auto const port = jobPort("services");
    EXPECT_FALSE(less(*port, *port));
    EXPECT_FALSE(less(port, port));
}

TEST_F(DmJobPortSorterTest, APortOfAnEnumTypeIsNotLessThanItself) {
    // Two enums with the same keys are each less than the other as types;
    // as job ports they are equivalent.
    DmJobPortSorter const less;
    auto const mode = makeEnum("Mode");
    ASSERT_TRUE(DmBaseType::lessThan(*mode, *mode));
    auto const port = jobPort("mode", mode);
    EXPECT_FALSE(less(*port, *port));
}

TEST_F(DmJobPortSorterTest, PortsOfEnumsWithTheSameKeysAreEquivalent) {
    DmJobPortSorter const less;
    auto const first = jobPort("mode", makeEnum("Mode"));
    auto const second = jobPort("mode", makeEnum("Other"));
    EXPECT_FALSE(less(*first, *second));
    EXPECT_FALSE(less(*second, *first));
}

TEST_F(DmJobPortSorterTest, IsAStrictWeakOrdering) {
    auto const mode = makeEnum("Mode");
    auto const point = makeStruct("Point");
    expectStrictWeakOrdering({
        jobPort("b", DmLibrary::getIntType()),
        jobPort("a", DmLibrary::getStringType()),
        jobPort("a", DmLibrary::getIntType()),
        jobPort("a", DmLibrary::getIntType()),
        jobPort("a", mode),
        jobPort("a", makeEnum("Other")),
        jobPort("a", point),
        jobPort("a", nullptr),
        jobPort("ab", DmLibrary::getFloatType()),
        jobPort("", DmLibrary::getIntType()),
    });
}

TEST_F(DmJobPortSorterTest, SortsByNameThenType) {
    std::vector<std::shared_ptr<DmJobPort>> ports{
        jobPort("b", DmLibrary::getIntType()),
        jobPort("a", DmLibrary::getStringType()),
        jobPort("ab", DmLibrary::getIntType()),
        jobPort("a", DmLibrary::getIntType()),
    };
    std::sort(ports.begin(), ports.end(), DmJobPortSorter());
    EXPECT_EQ(namesOf(ports), (std::vector<std::string>{"a", "a", "ab", "b"}));
    EXPECT_EQ(ports[0]->getType(), DmLibrary::getIntType());
    EXPECT_EQ(ports[1]->getType(), DmLibrary::getStringType());
}

TEST_F(DmJobPortSorterTest, APortWithoutATypeComesFirstAmongItsName) {
    DmJobPortSorter const less;
    auto const untyped = jobPort("services", nullptr);
    auto const typed = jobPort("services");
    EXPECT_TRUE(less(*untyped, *typed));
    EXPECT_FALSE(less(*typed, *untyped));
}

TEST_F(DmJobPortSorterTest, TheSharedFormsAgreeWithTheReferenceForm) {
    DmJobPortSorter const less;
    auto const a = jobPort("a");
    auto const b = jobPort("b");
    std::shared_ptr<DmJobPort const> const constA = a;
    std::shared_ptr<DmJobPort const> const constB = b;
    EXPECT_EQ(less(a, b), less(*a, *b));
    EXPECT_EQ(less(b, a), less(*b, *a));
    EXPECT_EQ(less(constA, constB), less(*a, *b));
    EXPECT_EQ(less(constB, constA), less(*b, *a));
}

TEST_F(DmJobPortSorterTest, AMissingPortComesFirst) {
    DmJobPortSorter const less;
    auto const port = jobPort("");
    std::shared_ptr<DmJobPort> const missing;
    std::shared_ptr<DmJobPort const> const constMissing;
    std::shared_ptr<DmJobPort const> const constPort = port;
    EXPECT_TRUE(less(missing, port));
    EXPECT_FALSE(less(port, missing));
    EXPECT_FALSE(less(missing, missing));
    EXPECT_TRUE(less(constMissing, constPort));
    EXPECT_FALSE(less(constPort, constMissing));
    EXPECT_FALSE(less(constMissing, constMissing));
}
