#pragma once

// Valid synthetic graph files of a chosen number of operator nodes, for the
// benchmarks of whole loads. Every file loads without a single message: one
// operator "Bench::add" (two float inputs "a" and "b" by value, the float
// "result" by return value) and compounds whose nodes are all connected and
// given values.
//
//   chainGraph(n)  one compound "Bench::chain" with ports "x" and "y" and n
//                  nodes of Bench::add in a row: each node's "a" comes from
//                  the previous node's "result" ("x" for the first), its "b"
//                  holds a value, and the last result goes to "y".
//   wideGraph(n)   one compound "Bench::wide" of group nodes in a row; each
//                  group is a compound nested in it, of four block nodes;
//                  the blocks are compounds nested in the group: a plain
//                  one, a whileCompound, an iterateCompound and a
//                  forEachCompound, each with its ports "i" and "o" linked by
//                  the ports object of its loop kind, and each holding a chain of
//                  Bench::add nodes as above from ".i" to ".o" (the forEach
//                  block iterates over an array and gathers one).
//
// The text is laid out one object per line with four blanks of indent.

#include <cstddef>
#include <fstream>
#include <string>

namespace KestoBench {

/// What a generated file holds.
struct GraphCounts {
    std::size_t compounds = 0; ///< top-level and nested
    std::size_t nodes = 0;     ///< every node, operator nodes and compound nodes
    std::size_t connections = 0;
    std::size_t values = 0;
};

namespace ChainDetail {

inline void indent(std::string& text, int depth) {
    text.append(static_cast<std::size_t>(depth) * 4, ' ');
}

inline std::string const kHeaderAndOperator = R"({
    "header": {"metadata": [{"metaName": "mvrkFileFormatVersion", "metaValue": "100L"}]},
    "operators": [
        {
            "name": "Bench::add",
            "msMangle": "?add@Bench@@YAMMM@Z",
            "itaniumMangle": "_ZN5Bench3addEff",
            "cancellationPolicy": "Safe",
            "ports": [
                {"portName": "a", "portDirection": "input", "portType": "float", "portConvention": "byValue"},
                {"portName": "b", "portDirection": "input", "portType": "float", "portConvention": "byValue"},
                {"portName": "result", "portDirection": "output", "portType": "float", "portConvention": "byReturnValue"}
            ]
        }
    ],
    "compounds": [
)";

/// An interface port of `type`, with `more` keys.
inline std::string port(char const* name, char const* direction, char const* type = "float",
                        char const* more = "") {
    return std::string(R"({"portName": ")") + name + R"(", "portDirection": ")" + direction +
           R"(", "portType": ")" + type + "\"" + more + "}";
}

/// A list `key` of `count` entries made by `entry(text, index)`, each on a
/// line of its own at `depth`.
template <class Entry>
void list(std::string& text, int depth, char const* key, std::size_t count, Entry const& entry) {
    indent(text, depth);
    text += '"';
    text += key;
    text += "\": [\n";
    for (std::size_t i = 0; i < count; ++i) {
        indent(text, depth + 1);
        entry(text, i);
        text += i + 1 < count ? ",\n" : "\n";
    }
    indent(text, depth);
    text += ']';
}

/// The nodes, connections and values of a chain of `count` Bench::add nodes
/// named `<prefix><i>`, from the interface input `in` to the output `out`;
/// each list is preceded by a comma and a line break.
inline void chainBody(std::string& text, int depth, char const* in, char const* out, std::size_t count,
                      GraphCounts& counts) {
    text += ",\n";
    list(text, depth, "compoundNodes", count, [](std::string& t, std::size_t i) {
        t += R"({"nodeName": "n)" + std::to_string(i) + R"(", "nodeType": "Bench::add"})";
    });
    text += ",\n";
    list(text, depth, "connections", count + 1, [&](std::string& t, std::size_t i) {
        std::string const source = i == 0 ? std::string(".") + in : "n" + std::to_string(i - 1) + ".result";
        std::string const target = i == count ? std::string(".") + out : "n" + std::to_string(i) + ".a";
        t += R"({"source": ")" + source + R"(", "target": ")" + target + R"("})";
    });
    text += ",\n";
    list(text, depth, "values", count, [](std::string& t, std::size_t i) {
        t += R"({"valueName": "n)" + std::to_string(i) + R"(.b", "value": ")" + std::to_string(i % 97) +
             R"(.5"})";
    });
    counts.nodes += count;
    counts.connections += count + 1;
    counts.values += count;
}

/// A compound's name and its float ports "in"/"out" named `in` and `out`.
inline void compoundHead(std::string& text, int depth, std::string const& name, char const* in,
                         char const* out) {
    indent(text, depth);
    text += "{\n";
    indent(text, depth + 1);
    text += R"("name": ")" + name + "\",\n";
    indent(text, depth + 1);
    text += R"("ports": [)" + port(in, "input") + ", " + port(out, "output") + "]";
}

inline void compoundTail(std::string& text, int depth) {
    text += '\n';
    indent(text, depth);
    text += '}';
}

/// The loop object of the block kind `kind` (1 while, 2 iterate,
/// 3 forEach; 0 none), preceded by a comma and a line break.
inline void loop(std::string& text, int depth, std::size_t kind) {
    static char const* const kRows[] = {
        nullptr,
        R"("whileCompound": {"ports": {"portKind": "state", "inputPortName": "i", "outputPortName": "o"}})",
        R"("iterateCompound": {"ports": [{"portKind": "state", "inputPortName": "i", "outputPortName": "o"}]})",
        R"("forEachCompound": {"ports": [{"portKind": "inOutTarget", "inputPortName": "i", "outputPortName": "o"}]})"};
    if (kind != 0) {
        text += ",\n";
        indent(text, depth);
        text += kRows[kind];
    }
}

} // namespace ChainDetail

/// A chain of `count` Bench::add nodes in the compound "Bench::chain".
inline std::string chainGraph(std::size_t count, GraphCounts* shape = nullptr) {
    using namespace ChainDetail;
    GraphCounts counts;
    std::string text;
    text.reserve(count * 200 + 4096);
    text += kHeaderAndOperator;
    compoundHead(text, 2, "Bench::chain", "x", "y");
    chainBody(text, 3, "x", "y", count, counts);
    compoundTail(text, 2);
    text += "\n    ]\n}\n";
    counts.compounds = 1;
    if (shape != nullptr) {
        *shape = counts;
    }
    return text;
}

/// The number of Bench::add nodes in each block of wideGraph.
constexpr std::size_t kBlockNodes = 25;
/// The blocks of each group of wideGraph: plain, while, iterate, forEach.
constexpr std::size_t kGroupBlocks = 4;

/// About `count` Bench::add nodes (rounded up to whole groups of four
/// blocks of kBlockNodes) in blocks of the three loop kinds and a plain one,
/// nested in groups nested in the compound "Bench::wide".
///
/// The plain, while and iterate blocks pass a float from "i" to "o"; the
/// forEach block iterates over an array<float> "i" (an iteration target, seen
/// as a float inside) and gathers the array<float> "o". The groups and the
/// wide compound thus carry two rows: floats through "i"/"o" ("x"/"y" on
/// Bench::wide) and arrays through "ai"/"ao" ("xs"/"ys").
inline std::string wideGraph(std::size_t count, GraphCounts* shape = nullptr) {
    using namespace ChainDetail;
    std::size_t const perGroup = kBlockNodes * kGroupBlocks;
    std::size_t const groups = (count + perGroup - 1) / perGroup;
    std::size_t const forEachBlock = kGroupBlocks - 1;
    GraphCounts counts;
    std::string text;
    text.reserve(groups * perGroup * 200 + 4096);
    text += kHeaderAndOperator;
    indent(text, 2);
    text += "{\n";
    indent(text, 3);
    text += R"("name": "Bench::wide",)"
            "\n";
    indent(text, 3);
    text += R"("ports": [)" + port("x", "input") + ", " + port("y", "output") + ", " +
            port("xs", "input", "array<float>") + ", " + port("ys", "output", "array<float>") + "],\n";
    list(text, 3, "compounds", groups, [&](std::string& t, std::size_t g) {
        // A group: its blocks nested in it, then the block nodes in two rows.
        t += "{\n";
        indent(t, 5);
        t += R"("name": "group)" + std::to_string(g) + "\",\n";
        indent(t, 5);
        t += R"("ports": [)" + port("i", "input") + ", " + port("o", "output") + ", " +
             port("ai", "input", "array<float>") + ", " + port("ao", "output", "array<float>") + "],\n";
        list(t, 5, "compounds", kGroupBlocks, [&](std::string& b, std::size_t k) {
            b += "{\n";
            indent(b, 7);
            b += R"("name": "block)" + std::to_string(k) + "\",\n";
            indent(b, 7);
            if (k == forEachBlock) {
                b += R"("ports": [)" +
                     port("i", "input", "array<float>", R"(, "portIterationTarget": "true")") + ", " +
                     port("o", "output", "array<float>") + "]";
            } else {
                b += R"("ports": [)" + port("i", "input") + ", " + port("o", "output") + "]";
            }
            loop(b, 7, k);
            chainBody(b, 7, "i", "o", kBlockNodes, counts);
            compoundTail(b, 6);
        });
        t += ",\n";
        list(t, 5, "compoundNodes", kGroupBlocks, [](std::string& b, std::size_t k) {
            b += R"({"nodeName": "b)" + std::to_string(k) + R"(", "nodeType": "block)" + std::to_string(k) +
                 R"("})";
        });
        t += ",\n";
        // .i -> b0 -> ... -> b(forEachBlock - 1) -> .o, and .ai -> bForEach -> .ao.
        list(t, 5, "connections", forEachBlock + 3, [&](std::string& b, std::size_t k) {
            std::string source;
            std::string target;
            if (k <= forEachBlock) {
                source = k == 0 ? std::string(".i") : "b" + std::to_string(k - 1) + ".o";
                target = k == forEachBlock ? std::string(".o") : "b" + std::to_string(k) + ".i";
            } else if (k == forEachBlock + 1) {
                source = ".ai";
                target = "b" + std::to_string(forEachBlock) + ".i";
            } else {
                source = "b" + std::to_string(forEachBlock) + ".o";
                target = ".ao";
            }
            b += R"({"source": ")" + source + R"(", "target": ")" + target + R"("})";
        });
        counts.compounds += 1 + kGroupBlocks;
        counts.nodes += kGroupBlocks;
        counts.connections += forEachBlock + 3;
        compoundTail(t, 4);
    });
    text += ",\n";
    list(text, 3, "compoundNodes", groups, [](std::string& t, std::size_t g) {
        t += R"({"nodeName": "g)" + std::to_string(g) + R"(", "nodeType": "group)" + std::to_string(g) +
             R"("})";
    });
    text += ",\n";
    // Two rows: .x -> g0.i -> ... -> .y and .xs -> g0.ai -> ... -> .ys.
    list(text, 3, "connections", 2 * (groups + 1), [&](std::string& t, std::size_t c) {
        bool const arrays = c > groups;
        std::size_t const g = arrays ? c - groups - 1 : c;
        char const* const in = arrays ? "ai" : "i";
        char const* const out = arrays ? "ao" : "o";
        std::string const source =
            g == 0 ? std::string(arrays ? ".xs" : ".x") : "g" + std::to_string(g - 1) + "." + out;
        std::string const target =
            g == groups ? std::string(arrays ? ".ys" : ".y") : "g" + std::to_string(g) + "." + in;
        t += R"({"source": ")" + source + R"(", "target": ")" + target + R"("})";
    });
    compoundTail(text, 2);
    text += "\n    ]\n}\n";
    counts.compounds += 1;
    counts.nodes += groups;
    counts.connections += 2 * (groups + 1);
    if (shape != nullptr) {
        *shape = counts;
    }
    return text;
}

/// Writes `text` to `path`; false when the file could not be written.
inline bool writeText(std::string const& path, std::string const& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    return static_cast<bool>(out);
}

} // namespace KestoBench
