#pragma once

// Synthetic graph files for the loading benchmarks: a header with the format
// version item, then `operators` and `compounds` as the library's writer lays
// them out (pretty printed, four blanks of indent, every scalar a string).
// The content is deterministic for a given size: compounds with metadata
// nested two levels deep, interface ports, nodes with their own metadata,
// fan-in and multi-in names, connections, values (scalars, structs and
// arrays of arrays), watch points, terminal states, nested compounds,
// forEach loops, and lists written as nested arrays, which the reader
// flattens.

#include "reader/DmRapidJson.h"

#include <rapidjson/prettywriter.h>

#include <boost/filesystem.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace KestoBench {

/// What a generated file holds.
struct GraphFileShape {
    std::size_t bytes = 0;
    std::size_t operators = 0;
    std::size_t compounds = 0; ///< top-level and nested
    std::size_t nodes = 0;
    std::size_t connections = 0;
    std::size_t values = 0;
};

namespace Detail {

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

/// A small linear congruential generator: the same file on every machine.
class Random {
public:
    std::uint32_t next(std::uint32_t bound) {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<std::uint32_t>(m_state >> 33) % bound;
    }

private:
    std::uint64_t m_state = 0x4b6573746f444dULL;
};

inline void pair(Writer& w, char const* key, std::string const& value) {
    w.Key(key);
    w.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
}

inline void metaItem(Writer& w, char const* name, char const* type, std::string const& value) {
    w.StartObject();
    pair(w, "metaName", name);
    if (type != nullptr) {
        pair(w, "metaType", type);
    }
    pair(w, "metaValue", value);
    w.EndObject();
}

inline char const* scalarType(std::uint32_t i) {
    static char const* const types[] = {"float", "int", "double", "array<float>", "Bench::Geometry::Point"};
    return types[i % 5];
}

inline std::string literalOf(char const* type, std::uint32_t seed) {
    std::string const name(type);
    if (name == "float") {
        return std::to_string(seed % 1000) + ".25f";
    }
    if (name == "double") {
        return std::to_string(seed % 1000) + ".125";
    }
    return std::to_string(seed % 100000);
}

/// One port of a definition's or a compound's interface.
inline void port(Writer& w, std::string const& name, char const* direction, char const* type,
                 char const* convention, Random& random) {
    w.StartObject();
    pair(w, "portName", name);
    pair(w, "portDirection", direction);
    pair(w, "portType", type);
    if (std::string(direction) == "input" && random.next(3) == 0 && std::string(type) != "array<float>" &&
        std::string(type) != "Bench::Geometry::Point") {
        pair(w, "portDefault", literalOf(type, random.next(100000)));
    }
    if (convention != nullptr) {
        pair(w, "portConvention", convention);
    }
    if (random.next(4) == 0) {
        w.Key("metadata");
        w.StartArray();
        metaItem(w, "uiSoftMax", nullptr, std::to_string(random.next(500)) + "L");
        metaItem(w, "tooltip", "string", "The " + name + " of the operation, in scene units.");
        w.EndArray();
    }
    w.EndObject();
}

inline void writeOperator(Writer& w, std::size_t index, Random& random) {
    std::string const n = std::to_string(index);
    std::string const name = "op" + n;
    w.StartObject();
    pair(w, "name", "Bench::Ops::" + name);
    pair(w, "msMangle", "?" + name + "@Ops@Bench@@YAXAEBM0AEAM@Z");
    pair(w, "itaniumMangle", "_ZN5Bench3Ops" + std::to_string(name.size()) + name + "ERKfS2_Rf");
    pair(w, "resourceFileName", "benchops");
    w.Key("metadata");
    w.StartArray();
    metaItem(w, "category", "string", "Bench/Ops/Group" + std::to_string(index % 17));
    metaItem(w, "uiName", "string", "Operation " + n);
    metaItem(w, "documentation", "string",
             "Computes the result of operation " + n + " from its inputs; see the manual, chapter " +
                 std::to_string(index % 40) + ".");
    w.EndArray();
    if (index % 7 == 0) {
        pair(w, "isDefaultOverload", "true");
    }
    pair(w, "cancellationPolicy", "Safe");
    w.Key("ports");
    w.StartArray();
    std::uint32_t const inputs = 2 + random.next(3);
    for (std::uint32_t i = 0; i < inputs; ++i) {
        port(w, "in" + std::to_string(i), "input", scalarType(index + i), "byReference", random);
    }
    port(w, "output", "output", scalarType(index), "byReference", random);
    w.EndArray();
    w.EndObject();
}

/// The nodes, connections and values of a compound; `nodes` nodes on the
/// generated operators, a few of them value nodes.
inline void compoundBody(Writer& w, std::uint32_t nodes, std::size_t operators, Random& random,
                         GraphFileShape& shape) {
    w.Key("compoundNodes");
    w.StartArray();
    for (std::uint32_t i = 0; i < nodes; ++i) {
        std::string const n = std::to_string(i);
        w.StartObject();
        pair(w, "nodeName", "node" + n);
        if (i % 9 == 4) {
            pair(w, "valueType", "float");
        } else {
            pair(w, "nodeType",
                 "Bench::Ops::op" + std::to_string(random.next(static_cast<std::uint32_t>(operators))));
        }
        if (i % 11 == 5) {
            w.Key("fanInPortNames");
            w.StartObject();
            w.Key("in0");
            w.StartArray();
            w.String("a");
            w.String("b");
            w.String("c");
            w.EndArray();
            w.EndObject();
        }
        if (i % 13 == 6) {
            w.Key("multiInPortNames");
            w.StartArray();
            w.String("first");
            w.String("second");
            w.EndArray();
        }
        w.Key("metadata");
        w.StartArray();
        w.StartObject();
        pair(w, "metaName", "uiPosition");
        w.Key("metadata");
        w.StartArray();
        metaItem(w, "x", "double", std::to_string(random.next(4000)) + ".5");
        metaItem(w, "y", "double", std::to_string(random.next(4000)) + ".5");
        w.EndArray();
        w.EndObject();
        if (i % 5 == 0) {
            metaItem(w, "uiCollapsed", "bool", "true");
        }
        w.EndArray();
        w.EndObject();
    }
    w.EndArray();
    shape.nodes += nodes;

    // Connections: a chain through the nodes plus some cross links, written
    // as two nested arrays half the time.
    bool const nested = random.next(2) == 0;
    w.Key("connections");
    w.StartArray();
    if (nested) {
        w.StartArray();
    }
    auto connect = [&](std::string const& source, std::string const& target) {
        w.StartObject();
        pair(w, "source", source);
        pair(w, "target", target);
        w.EndObject();
        ++shape.connections;
    };
    connect(".in0", "node0.in0");
    for (std::uint32_t i = 1; i < nodes; ++i) {
        connect("node" + std::to_string(i - 1) + ".output", "node" + std::to_string(i) + ".in0");
        if (nested && i == nodes / 2) {
            w.EndArray();
            w.StartArray();
        }
        if (i % 3 == 0 && i > 3) {
            connect("node" + std::to_string(random.next(i - 1)) + ".output",
                    "node" + std::to_string(i) + ".in1");
        }
    }
    connect("node" + std::to_string(nodes - 1) + ".output", ".result");
    if (nested) {
        w.EndArray();
    }
    w.EndArray();

    w.Key("values");
    w.StartArray();
    for (std::uint32_t i = 0; i < nodes; i += 2) {
        std::string const target = "node" + std::to_string(i);
        w.StartObject();
        switch (i % 8) {
        case 0:
            pair(w, "valueName", target + ".in1");
            pair(w, "valueType", "float");
            pair(w, "value", literalOf("float", random.next(100000)));
            break;
        case 2: {
            pair(w, "valueName", target + ".in2");
            pair(w, "valueType", "Bench::Geometry::Point");
            w.Key("value");
            w.StartObject();
            pair(w, "x", literalOf("double", random.next(100000)));
            pair(w, "y", literalOf("double", random.next(100000)));
            pair(w, "z", literalOf("double", random.next(100000)));
            w.EndObject();
            break;
        }
        case 4: {
            pair(w, "valueName", target + ".in1");
            pair(w, "valueType", "array<array<float>>");
            w.Key("value");
            w.StartArray();
            for (int row = 0; row < 4; ++row) {
                w.StartArray();
                for (int column = 0; column < 4; ++column) {
                    std::string const cell = row == column ? "1.0f" : "0.0f";
                    w.String(cell.c_str());
                }
                w.EndArray();
            }
            w.EndArray();
            break;
        }
        default:
            pair(w, "valueName", target + ".in0");
            pair(w, "valueType", "int");
            pair(w, "value", literalOf("int", random.next(100000)));
            break;
        }
        w.EndObject();
        ++shape.values;
    }
    w.EndArray();
}

inline void compoundPorts(Writer& w, Random& random, bool nestedArrays) {
    w.Key("ports");
    w.StartArray();
    if (nestedArrays) {
        w.StartArray();
    }
    port(w, "in0", "input", "float", nullptr, random);
    port(w, "in1", "input", "int", nullptr, random);
    if (nestedArrays) {
        w.EndArray();
        w.StartArray();
    }
    port(w, "samples", "input", "array<float>", nullptr, random);
    port(w, "result", "output", "float", nullptr, random);
    if (nestedArrays) {
        w.EndArray();
    }
    w.EndArray();
}

inline void writeCompound(Writer& w, std::size_t index, std::size_t operators, Random& random,
                          GraphFileShape& shape) {
    std::string const n = std::to_string(index);
    w.StartObject();
    pair(w, "name", "Bench::Graphs::graph" + n);
    w.Key("metadata");
    w.StartArray();
    metaItem(w, "icon", "string", "graphs/graph" + std::to_string(index % 12) + ".svg");
    metaItem(w, "uiColor", nullptr, std::to_string(random.next(0xffffff)) + "L");
    w.StartObject();
    pair(w, "metaName", "layout");
    w.Key("metadata");
    w.StartArray();
    metaItem(w, "zoom", "double", "1.25");
    w.StartObject();
    pair(w, "metaName", "viewport");
    w.Key("metadata");
    w.StartArray();
    metaItem(w, "left", "long", std::to_string(random.next(1000)));
    metaItem(w, "top", "long", std::to_string(random.next(1000)));
    w.EndArray();
    w.EndObject();
    w.EndArray();
    w.EndObject();
    w.EndArray();
    if (index % 6 == 0) {
        pair(w, "isDefaultOverload", "true");
    }
    if (index % 10 == 3) {
        w.Key("terminalStates");
        w.StartArray();
        w.StartObject();
        pair(w, "name", "Bench::Terminals::display::enable");
        pair(w, "enabled", "false");
        w.EndObject();
        w.EndArray();
    }
    compoundPorts(w, random, index % 4 == 1);
    ++shape.compounds;

    std::uint32_t const nodes = 12 + random.next(40);
    if (index % 5 == 2) {
        // A nested compound looping over the samples.
        w.Key("compounds");
        w.StartArray();
        w.StartObject();
        pair(w, "name", "perSample");
        compoundPorts(w, random, false);
        compoundBody(w, 6 + random.next(10), operators, random, shape);
        w.Key("forEachCompound");
        w.StartObject();
        w.Key("ports");
        w.StartObject();
        pair(w, "portKind", "inOutTarget");
        pair(w, "inputPortName", "samples");
        pair(w, "outputPortName", "result");
        w.EndObject();
        w.EndObject();
        w.EndObject();
        w.EndArray();
        ++shape.compounds;
    }
    compoundBody(w, nodes, operators, random, shape);
    if (index % 8 == 7) {
        w.Key("watchPoints");
        w.StartArray();
        w.StartObject();
        pair(w, "portName", "node1.output");
        pair(w, "enabled", "true");
        w.Key("parameters");
        w.StartObject();
        pair(w, "mode", "log");
        pair(w, "every", "10");
        w.EndObject();
        w.EndObject();
        w.EndArray();
    }
    w.Key("reservedNodeNames");
    w.StartArray();
    w.StartObject();
    pair(w, "name", "legacyNode");
    w.EndObject();
    w.EndArray();
    w.EndObject();
}

} // namespace Detail

/// Writes a graph file of about `targetBytes` (a compound more at most) to
/// `path`: one operator for every 40 kB, then compounds until the size is reached.
inline GraphFileShape writeGraphFile(std::string const& path, std::size_t targetBytes) {
    using namespace Detail;
    GraphFileShape shape;
    Random random;
    rapidjson::StringBuffer buffer;
    Writer w(buffer);
    w.StartObject();
    w.Key("header");
    w.StartObject();
    w.Key("metadata");
    w.StartArray();
    metaItem(w, "mvrkFileFormatVersion", nullptr, "100L");
    metaItem(w, "generator", "string", "GraphFileGenerator");
    w.EndArray();
    w.EndObject();

    shape.operators = targetBytes / 40000 + 8;
    w.Key("operators");
    w.StartArray();
    for (std::size_t i = 0; i < shape.operators; ++i) {
        writeOperator(w, i, random);
    }
    w.EndArray();

    w.Key("compounds");
    w.StartArray();
    for (std::size_t i = 0; buffer.GetSize() < targetBytes; ++i) {
        writeCompound(w, i, shape.operators, random, shape);
    }
    w.EndArray();
    w.EndObject();

    shape.bytes = buffer.GetSize();
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr || std::fwrite(buffer.GetString(), 1, shape.bytes, file) != shape.bytes) {
        if (file != nullptr) {
            std::fclose(file);
        }
        shape.bytes = 0;
        return shape;
    }
    std::fclose(file);
    return shape;
}

/// Graph files of the given sizes in a temporary directory made for this
/// process, removed when the set is destroyed.
class GraphFileSet {
public:
    explicit GraphFileSet(std::vector<std::size_t> const& sizes)
        : m_directory(boost::filesystem::temp_directory_path() /
                      boost::filesystem::unique_path("kestodm-graphfiles-%%%%-%%%%")) {
        boost::filesystem::create_directories(m_directory);
        m_directory = boost::filesystem::canonical(m_directory);
        for (std::size_t const size : sizes) {
            std::string const path = (m_directory / ("graph" + std::to_string(size) + ".json")).string();
            m_paths.push_back(path);
            m_shapes.push_back(writeGraphFile(path, size));
        }
    }
    GraphFileSet(GraphFileSet const&) = delete;
    GraphFileSet& operator=(GraphFileSet const&) = delete;
    ~GraphFileSet() {
        boost::system::error_code ignored;
        boost::filesystem::remove_all(m_directory, ignored);
    }

    std::string const& path(std::size_t i) const { return m_paths.at(i); }
    GraphFileShape const& shape(std::size_t i) const { return m_shapes.at(i); }

private:
    boost::filesystem::path m_directory;
    std::vector<std::string> m_paths;
    std::vector<GraphFileShape> m_shapes;
};

} // namespace KestoBench
