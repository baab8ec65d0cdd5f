#pragma once

// The reader corpus: graph files in one directory, each "_bad_" one with a
// ".expected" file beside it that holds what loading it alone prints:
//
//   # comment lines start with a hash
//   status: 3            optional, the DmStatus as a number; without it 3
//                        (kFailure) when a line is an error, else 0
//   warning: file:///150_bad_namespaces.json: Missing namespace name.: ...
//
// and messages.txt, the reader's messages that a file can give, one a line:
// kind, title and description separated by tabs, "<...>" standing for any
// text in the description.
#include <KestoDM/foundation/DmStatus.h>

#include <boost/filesystem.hpp>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace KestoTest {

struct CorpusExpectation {
    Kesto::DmStatus status = Kesto::DmStatus::kSuccess;
    std::vector<std::string> lines;
    /// Empty, or why the expectation could not be read.
    std::string problem;
};

inline bool endsWith(std::string const& text, std::string const& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// The names of the files of `directory` (not below it) that end in `extension`, sorted.
inline std::vector<std::string> filesEndingIn(std::string const& directory, std::string const& extension) {
    std::vector<std::string> names;
    for (auto const& entry : boost::filesystem::directory_iterator(directory)) {
        std::string const name = entry.path().filename().string();
        if (boost::filesystem::is_regular_file(entry.path()) && endsWith(name, extension)) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

inline std::vector<std::string> corpusFiles(std::string const& directory) {
    return filesEndingIn(directory, ".json");
}

inline std::vector<std::string> sidecarFiles(std::string const& directory) {
    return filesEndingIn(directory, ".expected");
}

inline std::string stem(std::string const& name) {
    return name.substr(0, name.rfind('.'));
}

inline bool hasSidecar(std::string const& directory, std::string const& graphFile) {
    return boost::filesystem::exists(directory + "/" + stem(graphFile) + ".expected");
}

inline bool hasGraphFileFor(std::string const& directory, std::string const& sidecar) {
    return boost::filesystem::exists(directory + "/" + stem(sidecar) + ".json");
}

/// A GoogleTest name made of a file name: letters and digits, the rest "_".
inline std::string testNameOf(std::string const& fileName) {
    std::string name = stem(fileName);
    for (char& c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c))) {
            c = '_';
        }
    }
    return name;
}

/// Reads a ".expected" file.
inline CorpusExpectation expectationOfSidecar(std::string const& directory, std::string const& sidecar) {
    CorpusExpectation out;
    std::ifstream in(directory + "/" + sidecar, std::ios::binary);
    if (!in) {
        out.problem = "cannot open " + sidecar;
        return out;
    }
    bool statusGiven = false;
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (line.empty() || line[0] == '#') {
            continue;
        }
        if (out.lines.empty() && !statusGiven && line.rfind("status: ", 0) == 0) {
            try {
                out.status = static_cast<Kesto::DmStatus::Status>(std::stoi(line.substr(8)));
            } catch (...) {
                out.problem = sidecar + ": the status line holds no number";
            }
            statusGiven = true;
            continue;
        }
        out.lines.push_back(line);
    }
    if (!statusGiven) {
        bool const anError = std::any_of(out.lines.begin(), out.lines.end(),
                                         [](std::string const& one) { return one.rfind("error: ", 0) == 0; });
        out.status = anError ? Kesto::DmStatus::kFailure : Kesto::DmStatus::kSuccess;
    }
    return out;
}

/// What loading the graph file `name` alone must give: its sidecar, or a
/// silent success for a file without one. A "_bad_" file without a sidecar
/// is a problem.
inline CorpusExpectation expectationOf(std::string const& directory, std::string const& name) {
    if (hasSidecar(directory, name)) {
        return expectationOfSidecar(directory, stem(name) + ".expected");
    }
    CorpusExpectation out;
    if (name.find("_bad_") != std::string::npos) {
        out.problem = name + " has no " + stem(name) + ".expected";
    }
    return out;
}

/// The lines missing from `printed` and the lines it has too many, for a failure message.
inline std::string describeDifference(std::vector<std::string> const& expected,
                                      std::vector<std::string> const& printed) {
    std::ostringstream out;
    for (std::string const& line : expected) {
        if (std::find(printed.begin(), printed.end(), line) == printed.end()) {
            out << "\n  not printed: " << line;
        }
    }
    for (std::string const& line : printed) {
        if (std::find(expected.begin(), expected.end(), line) == expected.end()) {
            out << "\n  not expected: " << line;
        }
    }
    return out.str();
}

/// One message of messages.txt, matched against printed lines.
struct MessagePattern {
    std::string text;
    std::regex pattern;

    bool matchesAnyOf(std::vector<std::string> const& lines) const {
        return std::any_of(lines.begin(), lines.end(),
                           [this](std::string const& line) { return std::regex_match(line, pattern); });
    }
};

inline std::string escapedForRegex(std::string const& text) {
    static std::string const special = R"(\^$.|?*+()[]{})";
    std::string out;
    for (char c : text) {
        if (special.find(c) != std::string::npos) {
            out += '\\';
        }
        out += c;
    }
    return out;
}

/// The messages of `path`; a line that is not kind, title and description
/// separated by tabs gives a pattern that matches nothing, named by its text.
inline std::vector<MessagePattern> readerMessages(std::string const& path) {
    std::vector<MessagePattern> out;
    std::ifstream in(path, std::ios::binary);
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        std::string::size_type const firstTab = line.find('\t');
        std::string::size_type const secondTab =
            firstTab == std::string::npos ? std::string::npos : line.find('\t', firstTab + 1);
        if (secondTab == std::string::npos) {
            out.push_back(MessagePattern{"badly formed line: " + line, std::regex("$^")});
            continue;
        }
        std::string const kind = line.substr(0, firstTab);
        std::string const title = line.substr(firstTab + 1, secondTab - firstTab - 1);
        std::string const description = line.substr(secondTab + 1);
        std::string expression = "^" + escapedForRegex(kind) + ": [^ ]*: " + escapedForRegex(title) + ": ";
        std::string::size_type done = 0;
        for (std::string::size_type hole = description.find("<...>"); hole != std::string::npos;
             hole = description.find("<...>", done)) {
            expression += escapedForRegex(description.substr(done, hole - done)) + ".*";
            done = hole + 5;
        }
        expression += escapedForRegex(description.substr(done)) + "$";
        out.push_back(MessagePattern{kind + " / " + title + " / " + description, std::regex(expression)});
    }
    return out;
}

} // namespace KestoTest
