#pragma once

#include "graph/GraphTestSupport.h"

#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/types/DmBaseValue.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace KestoTest {

/// Records the live counts of the model's classes when a test starts and
/// expects each back at that number when it ends: whatever a test makes must
/// be gone by then. The process-wide types and namespaces are made before the
/// first count is taken.
class ModelTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        // Touch the process-wide objects so that they are not counted as
        // made by the first test.
        Kesto::DmLibrary::getAutoType();
        Kesto::DmLibrary::getIntType();
        Kesto::DmLibrary::getLongType();
        Kesto::DmLibrary::getFloatType();
        Kesto::DmLibrary::getBoolType();
        Kesto::DmLibrary::getStringType();
        Kesto::DmLibrary::getAnyType();
        Kesto::DmLibrary::getArrayOfAnyType();
        Kesto::DmLibrary::getUndefinedType();
        Kesto::DmLibrary::getBuiltInNamespace();
        Kesto::DmLibrary::getReservedNamespace();
    }

    void SetUp() override {
        m_defs = count<Kesto::DmNodeDef>();
        m_overloads = count<Kesto::DmOverload>();
        m_sets = count<Kesto::DmOverloadSet>();
        m_nodes = count<Kesto::DmNode>();
        m_ports = count<Kesto::DmPort>();
        m_descriptions = count<Kesto::DmPortDescription>();
        m_values = count<Kesto::DmBaseValue>();
        m_named = count<Kesto::DmNamedEntity>();
    }

    void TearDown() override {
        EXPECT_EQ(count<Kesto::DmNodeDef>(), m_defs) << "node definitions left alive";
        EXPECT_EQ(count<Kesto::DmOverload>(), m_overloads) << "overloads left alive";
        EXPECT_EQ(count<Kesto::DmOverloadSet>(), m_sets) << "overload sets left alive";
        EXPECT_EQ(count<Kesto::DmNode>(), m_nodes) << "nodes left alive";
        EXPECT_EQ(count<Kesto::DmPort>(), m_ports) << "ports left alive";
        EXPECT_EQ(count<Kesto::DmPortDescription>(), m_descriptions) << "port descriptions left alive";
        EXPECT_EQ(count<Kesto::DmBaseValue>(), m_values) << "values left alive";
        EXPECT_EQ(count<Kesto::DmNamedEntity>(), m_named) << "named entities left alive";
    }

    template <class T>
    static unsigned int count() {
        return Kesto::DmInstanceCounter<T>::getInstanceCount();
    }

private:
    unsigned int m_defs = 0;
    unsigned int m_overloads = 0;
    unsigned int m_sets = 0;
    unsigned int m_nodes = 0;
    unsigned int m_ports = 0;
    unsigned int m_descriptions = 0;
    unsigned int m_values = 0;
    unsigned int m_named = 0;
};

/// A port description that `flags` cannot refuse.
inline std::shared_ptr<Kesto::DmPortDescription>
port(std::string const& name, std::shared_ptr<Kesto::DmBaseType const> type, Kesto::PortDirection direction) {
    return Kesto::DmPortDescription::newPortDescription(name, std::move(type), direction,
                                                        Kesto::kNameVerbatim);
}

inline std::shared_ptr<Kesto::DmPortDescription> input(std::string const& name,
                                                       std::shared_ptr<Kesto::DmBaseType const> type) {
    return port(name, std::move(type), Kesto::kDirectionInput);
}

inline std::shared_ptr<Kesto::DmPortDescription> output(std::string const& name,
                                                        std::shared_ptr<Kesto::DmBaseType const> type) {
    return port(name, std::move(type), Kesto::kDirectionOutput);
}

/// The names of a node's ports or a definition's port descriptions, in order.
template <class Map>
std::vector<std::string> portNames(Map const& map) {
    return keysOf(map);
}

} // namespace KestoTest
