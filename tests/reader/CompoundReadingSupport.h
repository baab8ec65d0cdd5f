#pragma once

// A fixture for reading compounds from graph files written by the test: the
// file is loaded into a fresh library, what the load printed is kept, and the
// compounds are found by their full names.
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmNode.h>
#include <KestoDM/graph/DmPort.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBuiltInType.h>

#include "reader/ReaderTestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace KestoTest {

class CompoundFileTest : public ::testing::Test {
protected:
    /// Writes a graph file `name` with the header and `more` (root members,
    /// each with a leading comma) and loads it; the printed lines are kept in
    /// m_printed.
    Kesto::DmStatus load(std::string const& more, std::string const& name = "a.json",
                         Kesto::DmNameResolutionType resolution = Kesto::kFailOnClash) {
        std::string const path = m_dir.write(name, graphText(more));
        Kesto::DmLibrary::LoadOptions options;
        options.nameResolution = resolution;
        Kesto::DmStatus const status = m_library->loadGraph("file://" + path, options, m_result);
        m_printed = m_library.takePrinted();
        return status;
    }

    /// Loads a file holding only `compounds`, the text of the list.
    Kesto::DmStatus loadCompounds(std::string const& compounds, std::string const& name = "a.json") {
        return load(R"(, "compounds": )" + compounds, name);
    }

    /// The compound of that full name in the library, or null.
    std::shared_ptr<Kesto::DmCompound> compound(std::string const& fullName) const {
        // Nested compounds are found through the result map of the load.
        if (auto const read = m_result->find(fullName); read != m_result->end()) {
            return read->second;
        }
        auto const all = m_library->getCompounds();
        auto const found = all.find(fullName);
        return found != all.end() ? found->second : nullptr;
    }

    /// A line of the log about a.json.
    static std::string warning(std::string const& title, std::string const& description) {
        return line("warning", "file:///a.json", title, description);
    }
    static std::string error(std::string const& title, std::string const& description) {
        return line("error", "file:///a.json", title, description);
    }
    static std::string info(std::string const& title, std::string const& description) {
        return line("info", "file:///a.json", title, description);
    }

    /// A terminal definition of the full name `name` with the int input `port`.
    void makeTerminal(std::string const& name, std::string const& port) {
        std::string scope;
        std::string local;
        Kesto::DmScope::resolveLocalNameAndScope(name, scope, local);
        auto const terminal = Kesto::DmTerminalNodeDef::createTerminalNodeDef(local, Kesto::kNameVerbatim);
        terminal->addPortDescription(
            Kesto::DmPortDescription::newPortDescription(port, Kesto::DmLibrary::getIntType(),
                                                         Kesto::kDirectionInput, Kesto::kNameVerbatim),
            Kesto::kFailOnClash);
        ASSERT_EQ(terminal->setScope(m_library->getGlobalNamespace()->fetchNamespace(scope).get(),
                                     Kesto::kFailOnClash),
                  Kesto::DmStatus::kSuccess);
    }

    TempDir m_dir;
    PrintingLibrary m_library;
    std::shared_ptr<Kesto::DmLibrary::CompoundMap> m_result =
        std::make_shared<Kesto::DmLibrary::CompoundMap>();
    std::vector<std::string> m_printed;
};

/// The printed lines, for a failure message.
inline std::string joined(std::vector<std::string> const& lines) {
    std::string out;
    for (auto const& one : lines) {
        out += "\n  " + one;
    }
    return out;
}

} // namespace KestoTest
