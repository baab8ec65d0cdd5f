#pragma once

// Compares two compounds part by part: what an import copies must be equal in
// the copy, and the copy must hold none of the source's mutable objects. Each
// difference is reported with the path at which it was found, for example
// "graph.nodes[add].ports[first].members[e0].watchPoint".

#include "graph/CompoundTestSupport.h"

#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmConnection.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmTerminalStates.h>
#include <KestoDM/graph/DmWatchPoint.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBaseValue.h>
#include <KestoDM/types/DmBuiltInValue.h>
#include <KestoDM/types/DmMetadata.h>
#include <KestoDM/types/DmMetadataItem.h>
#include <KestoDM/types/DmStructValue.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace KestoTest {

/// A value as text: type, whether it was set, and the datum (struct members
/// in order, recursively).
inline std::string describeValue(Kesto::DmBaseValue const* value) {
    using namespace Kesto;
    if (value == nullptr) {
        return "null";
    }
    std::ostringstream out;
    out << (value->getType() ? fullName(*value->getType()) : std::string("<no type>"))
        << (value->isImplicit() ? " implicit " : " set ");
    if (auto const* structValue = dynamic_cast<DmStructValue const*>(value)) {
        out << "{";
        if (auto const& members = structValue->getMembers()) {
            for (auto const& member : *members) {
                out << member.first << "=" << describeValue(member.second.get()) << ";";
            }
        }
        out << "}";
    } else if (auto const* i = dynamic_cast<DmIntValue const*>(value)) {
        out << i->getData();
    } else if (auto const* l = dynamic_cast<DmLongValue const*>(value)) {
        out << l->getData();
    } else if (auto const* b = dynamic_cast<DmBoolValue const*>(value)) {
        out << (b->getData() ? "true" : "false");
    } else if (auto const* d = dynamic_cast<DmDoubleValue const*>(value)) {
        out << d->getData();
    } else if (auto const* f = dynamic_cast<DmFloatValue const*>(value)) {
        out << f->getData();
    } else if (auto const* s = dynamic_cast<DmStringValue const*>(value)) {
        out << '"' << s->getData().str() << '"';
    } else {
        out << "<opaque>";
    }
    return out.str();
}

/// A metadata tree as text: each item's name, value and children, in order.
inline std::string describeMetadata(Kesto::DmMetadata const* metadata) {
    if (metadata == nullptr) {
        return "";
    }
    std::string out;
    for (auto const& item : *metadata->getMetadataItems()) {
        out += item->getName();
        if (item->hasValue()) {
            out += "=" + describeValue(item->getValue().get());
        }
        std::string const children = describeMetadata(item->getMetadata().get());
        if (!children.empty()) {
            out += "{" + children + "}";
        }
        out += ";";
    }
    return out;
}

/// A watch point as text: "none", or its state and its parameters sorted by name.
inline std::string describeWatchPoint(Kesto::DmWatchPoint const* watch) {
    if (watch == nullptr) {
        return "none";
    }
    std::map<std::string, std::string> const sorted(watch->getParameters().begin(),
                                                    watch->getParameters().end());
    std::string out = watch->enabled() ? "enabled" : "disabled";
    for (auto const& parameter : sorted) {
        out += " " + parameter.first + "=" + parameter.second;
    }
    return out;
}

/// Walks an expected compound and an actual one side by side. `differences`
/// lists what is not equal, `sharedObjects` what the two hold in common
/// although a copy must have its own (entities, values, metadata, watch
/// points). The compounds' own names are not compared: a copy is renamed.
///
/// Definitions: a node on a definition private to its compound must be on the
/// definition of the same name private to the other compound; any other
/// definition must be the very same object on both sides.
class CompoundComparison {
public:
    CompoundComparison(Kesto::DmCompound const& expected, Kesto::DmCompound const& actual) {
        compareCompound(expected.getName(), expected, actual);
    }

    std::vector<std::string> const& differences() const noexcept { return m_differences; }
    std::vector<std::string> const& sharedObjects() const noexcept { return m_shared; }

private:
    template <class T>
    void same(std::string const& path, char const* what, T const& expected, T const& actual) {
        if (!(expected == actual)) {
            std::ostringstream out;
            out << path << ": " << what << " is " << actual << ", expected " << expected;
            m_differences.push_back(out.str());
        }
    }

    void differ(std::string const& path, std::string const& text) {
        m_differences.push_back(path + ": " + text);
    }

    void notShared(std::string const& path, void const* expected, void const* actual) {
        if (expected != nullptr && expected == actual) {
            m_shared.push_back(path);
        }
    }

    template <class Map>
    static std::string joinKeys(Map const& map) {
        std::string out;
        for (auto const& entry : map) {
            out += (out.empty() ? "" : ",") + std::string(entry.first);
        }
        return "[" + out + "]";
    }

    void compareMetadata(std::string const& path, Kesto::DmEntity const& expected,
                         Kesto::DmEntity const& actual) {
        same(path, "metadata", describeMetadata(expected.getMetadata().get()),
             describeMetadata(actual.getMetadata().get()));
        notShared(path + ".metadata", expected.getMetadata().get(), actual.getMetadata().get());
        if (expected.getMetadata() && actual.getMetadata()) {
            shareMetadataItems(path + ".metadata", *expected.getMetadata(), *actual.getMetadata());
        }
    }

    void shareMetadataItems(std::string const& path, Kesto::DmMetadata const& expected,
                            Kesto::DmMetadata const& actual) {
        auto const expectedItems = expected.getMetadataItems();
        auto const actualItems = actual.getMetadataItems();
        auto e = expectedItems->begin();
        auto a = actualItems->begin();
        for (; e != expectedItems->end() && a != actualItems->end(); ++e, ++a) {
            std::string const itemPath = path + "[" + (*e)->getName() + "]";
            notShared(itemPath, e->get(), a->get());
            notShared(itemPath + ".value", (*e)->getValue().get(), (*a)->getValue().get());
            if ((*e)->getMetadata() && (*a)->getMetadata()) {
                shareMetadataItems(itemPath, *(*e)->getMetadata(), *(*a)->getMetadata());
            }
        }
    }

    void compareValue(std::string const& path, Kesto::DmBaseValue const* expected,
                      Kesto::DmBaseValue const* actual) {
        same(path, "value", describeValue(expected), describeValue(actual));
        notShared(path, expected, actual);
    }

    void compareWatchPoint(std::string const& path, Kesto::DmPort const& expected,
                           Kesto::DmPort const& actual) {
        same(path + ".watchPoint", "watch point", describeWatchPoint(expected.getWatchPoint().get()),
             describeWatchPoint(actual.getWatchPoint().get()));
        notShared(path + ".watchPoint", expected.getWatchPoint().get(), actual.getWatchPoint().get());
    }

    static std::string typeName(std::shared_ptr<Kesto::DmBaseType const> const& type) {
        return type ? fullName(*type) : std::string("<no type>");
    }

    void compareType(std::string const& path, std::shared_ptr<Kesto::DmBaseType const> const& expected,
                     std::shared_ptr<Kesto::DmBaseType const> const& actual) {
        bool const equal =
            expected && actual ? Kesto::DmBaseType::equivalent(expected, actual) : expected == actual;
        if (!equal) {
            differ(path, "type is " + typeName(actual) + ", expected " + typeName(expected));
        }
    }

    void compareDescription(std::string const& path, Kesto::DmPortDescription const& expected,
                            Kesto::DmPortDescription const& actual) {
        notShared(path, &expected, &actual);
        same(path, "name", expected.getName(), actual.getName());
        compareType(path, expected.getType(), actual.getType());
        same(path, "direction", int(expected.getDirection()), int(actual.getDirection()));
        same(path, "kind", int(expected.getPortKind()), int(actual.getPortKind()));
        same(path, "iteration attribute", int(expected.getIterationAttribute()),
             int(actual.getIterationAttribute()));
        compareValue(path + ".defaultValueOverride", expected.getDefaultValueOverride().get(),
                     actual.getDefaultValueOverride().get());
        compareMetadata(path, expected, actual);
        auto const partner = [](Kesto::DmPortDescription const& port) {
            return port.getLinkedPort() != nullptr ? port.getLinkedPort()->getName() : std::string("<none>");
        };
        same(path, "linked port", partner(expected), partner(actual));
    }

    void comparePort(std::string const& path, Kesto::DmPort const& expected, Kesto::DmPort const& actual) {
        notShared(path, &expected, &actual);
        same(path, "name", expected.getName(), actual.getName());
        same(path, "direction", int(expected.getPortDescription()->getDirection()),
             int(actual.getPortDescription()->getDirection()));
        compareType(path, expected.getPortDescription()->getType(), actual.getPortDescription()->getType());
        same(path, "fan-in", expected.isFanIn(), actual.isFanIn());
        same(path, "multi-in", expected.isMultiIn(), actual.isMultiIn());
        compareValue(path + ".defaultValue", expected.getDefaultValue().get(),
                     actual.getDefaultValue().get());
        same(path, "immediate value", expected.hasImmediateValue(), actual.hasImmediateValue());
        compareMetadata(path, expected, actual);
        compareWatchPoint(path, expected, actual);
        compareMembers(path, expected, actual);
    }

    void compareMembers(std::string const& path, Kesto::DmPort const& expected, Kesto::DmPort const& actual) {
        auto const& e = expected.getMembers();
        auto const& a = actual.getMembers();
        same(path, "members", joinKeys(e), joinKeys(a));
        for (auto const& member : e) {
            auto const other = a.find(member.first);
            if (other != a.end()) {
                comparePort(path + ".members[" + member.first + "]", *member.second, *other->second);
            }
        }
    }

    /// A self node shows the compound's ports; what a copy carries there is
    /// the watch points.
    void compareSelfNode(std::string const& path, Kesto::DmCompound const& expected,
                         Kesto::DmCompound const& actual) {
        auto const e = expected.getSelfNode();
        auto const a = actual.getSelfNode();
        if (!e || !a) {
            same(path, "has self node", bool(e), bool(a));
            return;
        }
        notShared(path, e.get(), a.get());
        if (a->getName() != actual.getName()) {
            differ(path, "self node is named " + a->getName() + ", its compound " + actual.getName());
        }
        same(path, "ports", joinKeys(e->getPorts()), joinKeys(a->getPorts()));
        for (auto const& port : e->getPorts()) {
            if (auto const other = (*a)[port.first]) {
                std::string const portPath = path + ".ports[" + port.first + "]";
                notShared(portPath, port.second.get(), other.get());
                same(portPath, "direction", int(port.second->getPortDescription()->getDirection()),
                     int(other->getPortDescription()->getDirection()));
                compareWatchPoint(portPath, *port.second, *other);
            }
        }
    }

    void compareDefinition(std::string const& path, Kesto::DmNode const& expected,
                           Kesto::DmNode const& actual, Kesto::DmCompound const& expectedOwner,
                           Kesto::DmCompound const& actualOwner) {
        Kesto::DmNodeDef const* const e = expected.getNodeDef();
        Kesto::DmNodeDef const* const a = actual.getNodeDef();
        if (e == nullptr || a == nullptr) {
            same(path, "has definition", e != nullptr, a != nullptr);
            return;
        }
        bool const expectedPrivate = e->getScope() == static_cast<Kesto::DmScope const*>(&expectedOwner);
        bool const actualPrivate = a->getScope() == static_cast<Kesto::DmScope const*>(&actualOwner);
        same(path, "definition private to its compound", expectedPrivate, actualPrivate);
        if (expectedPrivate && actualPrivate) {
            same(path, "definition", e->getName(), a->getName());
            notShared(path + ".definition", e, a);
        } else if (!expectedPrivate && !actualPrivate && e != a) {
            differ(path, "definition is " + fullName(*a) + " (another object), expected " + fullName(*e));
        }
    }

    void compareNode(std::string const& path, Kesto::DmNode const& expected, Kesto::DmNode const& actual,
                     Kesto::DmCompound const& expectedOwner, Kesto::DmCompound const& actualOwner) {
        notShared(path, &expected, &actual);
        compareDefinition(path, expected, actual, expectedOwner, actualOwner);
        compareMetadata(path, expected, actual);
        auto const multiIn = [](Kesto::DmNode const& node) {
            auto const port = node.getMultiInPort();
            return port ? port->getName() : std::string("<none>");
        };
        same(path, "multi-in port", multiIn(expected), multiIn(actual));
        same(path, "ports", joinKeys(expected.getPorts()), joinKeys(actual.getPorts()));
        for (auto const& port : expected.getPorts()) {
            if (auto const other = actual[port.first]) {
                comparePort(path + ".ports[" + port.first + "]", *port.second, *other);
            }
        }
    }

    void compareConnections(std::string const& path, Kesto::DmCompound const& expected,
                            Kesto::DmCompound const& actual) {
        auto const e = connectionsOf(expected);
        auto const a = connectionsOf(actual);
        same(path, "connection count", e.size(), a.size());
        for (std::size_t i = 0; i < std::min(e.size(), a.size()); ++i) {
            same(path + "[" + std::to_string(i) + "]", "connection", e[i], a[i]);
            notShared(path + "[" + std::to_string(i) + "]", expected.getConnections()[i].get(),
                      actual.getConnections()[i].get());
        }
    }

    void compareTerminalStates(std::string const& path, Kesto::DmTerminalStates const& expected,
                               Kesto::DmTerminalStates const& actual) {
        same(path, "record count", expected.size(), actual.size());
        for (std::size_t i = 0; i < std::min(expected.size(), actual.size()); ++i) {
            auto const& e = expected.getStates()[i];
            auto const& a = actual.getStates()[i];
            std::string const recordPath = path + "[" + std::to_string(i) + "]";
            if (e.getPort() != a.getPort()) {
                differ(recordPath, "the record is of another port description");
            }
            same(recordPath, "enabled", e.isEnabled(), a.isEnabled());
        }
    }

    static std::vector<std::string> reservedNames(Kesto::DmCompound const& compound) {
        std::vector<std::string> out;
        if (auto const& names = compound.getReservedNodeNames()) {
            for (auto const& name : *names) {
                out.push_back(name.str());
            }
        }
        return out;
    }

    static std::vector<Kesto::DmCompound const*> nestedCompounds(Kesto::DmCompound const& compound) {
        std::vector<Kesto::DmCompound const*> out;
        for (auto const& scope : compound.getNestedScopes()) {
            if (auto const* nested = dynamic_cast<Kesto::DmCompound const*>(scope.get())) {
                out.push_back(nested);
            }
        }
        return out;
    }

    void compareCompound(std::string const& path, Kesto::DmCompound const& expected,
                         Kesto::DmCompound const& actual) {
        notShared(path, &expected, &actual);
        compareMetadata(path, expected, actual);
        same(path, "library", static_cast<void const*>(expected.getLibrary()),
             static_cast<void const*>(actual.getLibrary()));
        std::string const names = [&] {
            std::string out;
            for (auto const& name : reservedNames(expected)) {
                out += name + ",";
            }
            return out;
        }();
        std::string const actualNames = [&] {
            std::string out;
            for (auto const& name : reservedNames(actual)) {
                out += name + ",";
            }
            return out;
        }();
        same(path, "reserved node names", names, actualNames);
        compareTerminalStates(path + ".defaultTerminalStates", expected.getDefaultTerminalStates(),
                              actual.getDefaultTerminalStates());

        same(path, "ports", joinKeys(expected.getPortsInterface()), joinKeys(actual.getPortsInterface()));
        for (auto const& port : expected.getPortsInterface()) {
            if (auto const other = actual.getPortsInterface()[port.first]) {
                compareDescription(path + ".ports[" + port.first + "]", *port.second, *other);
            }
        }
        compareSelfNode(path + ".selfNode", expected, actual);

        same(path, "definitions", joinKeys(expected.getNodeDefs()), joinKeys(actual.getNodeDefs()));
        auto const expectedNested = nestedCompounds(expected);
        auto const actualNested = nestedCompounds(actual);
        same(path, "nested compound count", expectedNested.size(), actualNested.size());
        for (std::size_t i = 0; i < std::min(expectedNested.size(), actualNested.size()); ++i) {
            std::string const nestedPath = path + ".nested[" + expectedNested[i]->getName() + "]";
            same(nestedPath, "name", expectedNested[i]->getName(), actualNested[i]->getName());
            compareCompound(nestedPath, *expectedNested[i], *actualNested[i]);
        }

        same(path, "nodes", joinKeys(expected.getNodes()), joinKeys(actual.getNodes()));
        for (auto const& node : expected.getNodes()) {
            if (auto const other = actual.findNode(node.first)) {
                compareNode(path + ".nodes[" + node.first + "]", *node.second, *other, expected, actual);
            }
        }
        compareConnections(path + ".connections", expected, actual);
    }

    std::vector<std::string> m_differences;
    std::vector<std::string> m_shared;
};

inline std::string joinLines(std::vector<std::string> const& lines) {
    std::string out;
    for (auto const& line : lines) {
        out += "\n  " + line;
    }
    return out;
}

/// Success when `actual` equals `expected` in everything an import copies.
inline ::testing::AssertionResult equalCompounds(Kesto::DmCompound const& expected,
                                                 Kesto::DmCompound const& actual) {
    CompoundComparison const comparison(expected, actual);
    if (comparison.differences().empty()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << comparison.differences().size() << " difference(s):" << joinLines(comparison.differences());
}

/// Success when `copy` holds none of the objects of `source`.
inline ::testing::AssertionResult independentCompounds(Kesto::DmCompound const& source,
                                                       Kesto::DmCompound const& copy) {
    CompoundComparison const comparison(source, copy);
    if (comparison.sharedObjects().empty()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "shared with the source:" << joinLines(comparison.sharedObjects());
}

} // namespace KestoTest
