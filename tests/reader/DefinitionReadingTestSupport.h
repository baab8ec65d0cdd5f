#pragma once

// A fixture for reading definitions from graph files: one file "a.json" (and
// others beside it) in a temporary directory, loaded into a library whose
// printed log the test reads; the library is dropped before the fixture
// checks that nothing of the model is left alive.
#include <KestoDM/assets/DmURI.h>
#include <KestoDM/graph/DmGlobalVariable.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmClassSerialization.h>
#include <KestoDM/types/DmExternSymbol.h>

#include "graph/ModelTestSupport.h"
#include "reader/ReaderTestSupport.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace KestoTest {

class DefinitionReadingTest : public ModelTest {
protected:
    void SetUp() override {
        ModelTest::SetUp();
        expectBackAtEnd<Kesto::DmClassSerialization>("class serializations");
        expectBackAtEnd<Kesto::DmExternSymbol>("extern symbols");
        m_library.emplace();
    }

    void TearDown() override {
        m_library.reset();
        ModelTest::TearDown();
    }

    Kesto::DmLibrary& library() { return **m_library; }

    /// Writes `name` with the header and `more` (root members, each with a leading comma).
    std::string write(std::string const& more, std::string const& name = "a.json") {
        return m_dir.write(name, graphText(more));
    }

    /// Writes and loads "a.json"; the status of the load.
    Kesto::DmStatus load(std::string const& more,
                         Kesto::DmNameResolutionType resolution = Kesto::kFailOnClash) {
        std::string const path = write(more);
        Kesto::DmLibrary::LoadOptions options;
        options.nameResolution = resolution;
        return library().loadGraph(longForm(path), options);
    }

    /// The lines printed since the last call.
    std::vector<std::string> printed() { return m_library->takePrinted(); }

    std::shared_ptr<Kesto::DmBaseType const> type(std::string const& name) {
        std::shared_ptr<Kesto::DmBaseType const> out;
        return library().retrieveType(name, out) ? out : nullptr;
    }

    template <class T>
    std::shared_ptr<T const> typeAs(std::string const& name) {
        return std::dynamic_pointer_cast<T const>(type(name));
    }

    std::shared_ptr<Kesto::DmGlobalVariable> global(std::string const& name) {
        auto const variables = library().getGlobalVariables();
        auto const found = variables.find(name);
        return found == variables.end() ? nullptr : found->second;
    }

    std::shared_ptr<Kesto::DmURI> uri(std::string const& name = "a.json") { return library().findURI(name); }

    static std::string warning(std::string const& title, std::string const& description) {
        return line("warning", "file:///a.json", title, description);
    }
    static std::string error(std::string const& title, std::string const& description) {
        return line("error", "file:///a.json", title, description);
    }
    static std::string info(std::string const& title, std::string const& description) {
        return line("info", "file:///a.json", title, description);
    }

    TempDir m_dir;
    std::optional<PrintingLibrary> m_library;
};

} // namespace KestoTest
