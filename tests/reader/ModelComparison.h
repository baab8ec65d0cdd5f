#pragma once

// Compares what two libraries hold, object by object, by full names: two
// reads of equal definitions must build equal models although every object
// is their own. Each difference is reported with the path at which it was
// found, for example "c.nodes[a].ports[input].defaultValue".

#include "graph/CompoundComparison.h"

#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/library/DmLibrary.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <typeinfo>
#include <vector>

namespace KestoTest {

class ModelComparison {
public:
    ModelComparison(Kesto::DmLibrary const& expected, Kesto::DmLibrary const& actual) {
        auto const e = expected.getCompounds();
        auto const a = actual.getCompounds();
        // The order of definitions follows the order of the objects in the file.
        same("library", "compounds", sortedKeysOf(e), sortedKeysOf(a));
        for (auto const& entry : e) {
            auto const other = a.find(entry.first);
            if (other != a.end()) {
                compareCompound(entry.first, *entry.second, *other->second);
            }
        }
    }

    std::vector<std::string> const& differences() const noexcept { return m_differences; }

private:
    template <class Map>
    static std::string sortedKeysOf(Map const& map) {
        std::vector<std::string> keys;
        for (auto const& entry : map) {
            keys.push_back(entry.first);
        }
        std::sort(keys.begin(), keys.end());
        std::string out;
        for (auto const& key : keys) {
            out += key + ",";
        }
        return out;
    }

    template <class Map>
    static std::string keysOf(Map const& map) {
        std::string out;
        for (auto const& entry : map) {
            out += (out.empty() ? "" : ",") + std::string(entry.first);
        }
        return "[" + out + "]";
    }

    void same(std::string const& path, char const* what, std::string const& expected,
              std::string const& actual) {
        if (expected != actual) {
            m_differences.push_back(path + ": " + what + " is " + actual + ", expected " + expected);
        }
    }

    static std::string nameOf(Kesto::DmNamedEntity const* entity) {
        return entity != nullptr ? fullName(*entity) : std::string("<none>");
    }

    static std::string typeOf(Kesto::DmPortDescription const& port) {
        return port.getType() ? fullName(*port.getType()) : std::string("<no type>");
    }

    static std::string describe(Kesto::DmPortDescription const& port) {
        return typeOf(port) + " dir " + std::to_string(int(port.getDirection())) + " kind " +
               std::to_string(int(port.getPortKind())) + " iteration " +
               std::to_string(int(port.getIterationAttribute())) + " linked " +
               (port.getLinkedPort() != nullptr ? port.getLinkedPort()->getName() : std::string("<none>")) +
               " default " + describeValue(port.getDefaultValueOverride().get()) + " metadata " +
               describeMetadata(port.getMetadata().get());
    }

    static std::string describe(Kesto::DmPort const& port) {
        std::string out = typeOf(*port.getPortDescription()) + (port.isFanIn() ? " fan-in" : "") +
                          (port.isMultiIn() ? " multi-in" : "") + " value " +
                          describeValue(port.getDefaultValue().get()) + " watch " +
                          describeWatchPoint(port.getWatchPoint().get()) + " members [";
        for (auto const& member : port.getMembers()) {
            out += member.first + ":" + describe(*member.second) + ";";
        }
        return out + "] connected " + std::to_string(port.getConnectedPorts().size());
    }

    static std::string describe(Kesto::DmTerminalStates const& states) {
        std::string out;
        for (auto const& state : states) {
            out += nameOf(state.getPort()->getNodeDef()) + "::" + state.getPort()->getName() +
                   (state.isEnabled() ? "=on;" : "=off;");
        }
        return out;
    }

    void compareCompound(std::string const& path, Kesto::DmCompound const& expected,
                         Kesto::DmCompound const& actual) {
        same(path, "class", typeid(expected).name(), typeid(actual).name());
        same(path, "scope", nameOf(expected.getScope() ? expected.getScope()->getAsNamedEntity() : nullptr),
             nameOf(actual.getScope() ? actual.getScope()->getAsNamedEntity() : nullptr));
        same(path, "metadata", describeMetadata(expected.getMetadata().get()),
             describeMetadata(actual.getMetadata().get()));
        same(path, "flags",
             std::to_string(expected.isConverter()) + std::to_string(expected.isPromoter()) +
                 std::to_string(expected.isDefaultOverload()) + std::to_string(expected.isOverloadsLocked()) +
                 std::to_string(int(expected.associativity())),
             std::to_string(actual.isConverter()) + std::to_string(actual.isPromoter()) +
                 std::to_string(actual.isDefaultOverload()) + std::to_string(actual.isOverloadsLocked()) +
                 std::to_string(int(actual.associativity())));
        same(path, "terminal states", describe(expected.getDefaultTerminalStates()),
             describe(actual.getDefaultTerminalStates()));
        std::string expectedReserved;
        std::string actualReserved;
        if (expected.getReservedNodeNames()) {
            for (auto const& name : *expected.getReservedNodeNames()) {
                expectedReserved += name.str() + ",";
            }
        }
        if (actual.getReservedNodeNames()) {
            for (auto const& name : *actual.getReservedNodeNames()) {
                actualReserved += name.str() + ",";
            }
        }
        same(path, "reserved node names", expectedReserved, actualReserved);
        same(path, "ports", keysOf(expected.getPortsInterface()), keysOf(actual.getPortsInterface()));
        for (auto const& port : expected.getPortsInterface()) {
            if (auto const other = actual.getPortsInterface()[port.first]) {
                same(path + ".ports[" + port.first + "]", "port", describe(*port.second), describe(*other));
            }
        }
        auto const expectedSelf = expected.getSelfNode();
        auto const actualSelf = actual.getSelfNode();
        for (auto const& port : expectedSelf->getPorts()) {
            if (auto const other = (*actualSelf)[port.first]) {
                same(path + ".selfNode[" + port.first + "]", "port", describe(*port.second),
                     describe(*other));
                same(path + ".selfNode[" + port.first + "]", "description",
                     describe(*port.second->getPortDescription()), describe(*other->getPortDescription()));
            }
        }
        same(path, "nodes", keysOf(expected.getNodes()), keysOf(actual.getNodes()));
        for (auto const& node : expected.getNodes()) {
            auto const other = actual.findNode(node.first);
            if (!other) {
                continue;
            }
            std::string const nodePath = path + ".nodes[" + node.first + "]";
            same(nodePath, "definition", nameOf(node.second->getNodeDef()), nameOf(other->getNodeDef()));
            same(nodePath, "metadata", describeMetadata(node.second->getMetadata().get()),
                 describeMetadata(other->getMetadata().get()));
            same(nodePath, "terminal states", describe(node.second->getTerminalStates()),
                 describe(other->getTerminalStates()));
            same(nodePath, "ports", keysOf(node.second->getPorts()), keysOf(other->getPorts()));
            for (auto const& port : node.second->getPorts()) {
                if (auto const otherPort = (*other)[port.first]) {
                    same(nodePath + ".ports[" + port.first + "]", "port", describe(*port.second),
                         describe(*otherPort));
                }
            }
        }
        auto const e = connectionsOf(expected);
        auto const a = connectionsOf(actual);
        std::string expectedConnections;
        std::string actualConnections;
        for (auto const& one : e) {
            expectedConnections += one + ";";
        }
        for (auto const& one : a) {
            actualConnections += one + ";";
        }
        same(path, "connections", expectedConnections, actualConnections);
        compareNested(path, expected, actual);
    }

    /// The library lists the compounds of its namespaces; those nested in a
    /// compound are compared here, by name.
    void compareNested(std::string const& path, Kesto::DmCompound const& expected,
                       Kesto::DmCompound const& actual) {
        auto const nested = [](Kesto::DmCompound const& compound) {
            std::vector<Kesto::DmCompound const*> out;
            for (auto const& scope : compound.getNestedScopes()) {
                if (auto const* one = dynamic_cast<Kesto::DmCompound const*>(scope.get())) {
                    out.push_back(one);
                }
            }
            return out;
        };
        auto const e = nested(expected);
        auto const a = nested(actual);
        same(path, "nested compound count", std::to_string(e.size()), std::to_string(a.size()));
        for (std::size_t i = 0; i < e.size() && i < a.size(); ++i) {
            same(path, "nested compound", e[i]->getName(), a[i]->getName());
            compareCompound(path + "::" + e[i]->getName(), *e[i], *a[i]);
        }
    }

    std::vector<std::string> m_differences;
};

/// Success when the two libraries hold equal compounds.
inline ::testing::AssertionResult equalModels(Kesto::DmLibrary const& expected,
                                              Kesto::DmLibrary const& actual) {
    ModelComparison const comparison(expected, actual);
    if (comparison.differences().empty()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << comparison.differences().size() << " difference(s):" << joinLines(comparison.differences());
}

} // namespace KestoTest
