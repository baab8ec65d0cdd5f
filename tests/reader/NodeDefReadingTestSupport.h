#pragma once

// A fixture for reading operators, terminal node definitions and their ports:
// texts of such objects, and the definitions a load placed in the library.
#include <KestoDM/graph/DmCppOperator.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmTerminalNodeDef.h>

#include "reader/DefinitionReadingTestSupport.h"

#include <memory>
#include <string>

namespace KestoTest {

class NodeDefReadingTest : public DefinitionReadingTest {
protected:
    /// An operator object named `name` with both symbols, the rest of its
    /// keys in `more` (each with a leading comma).
    static std::string op(std::string const& name, std::string const& more) {
        return R"({"name": ")" + name + R"(", "msMangle": "?f@@YAXXZ", "itaniumMangle": "_Z1fv")" + more +
               "}";
    }

    /// A port object of an operator: name, direction, type, `more` keys and
    /// the passing convention (none when empty).
    static std::string opPort(std::string const& name, std::string const& direction, std::string const& type,
                              std::string const& more = std::string(),
                              std::string const& convention = "byValue") {
        std::string text = R"({"portName": ")" + name + R"(", "portDirection": ")" + direction +
                           R"(", "portType": ")" + type + "\"";
        if (!convention.empty()) {
            text += R"(, "portConvention": ")" + convention + "\"";
        }
        return text + more + "}";
    }

    /// A file's "operators" section of `objects` (comma separated).
    static std::string operators(std::string const& objects) { return R"(, "operators": [)" + objects + "]"; }
    static std::string terminals(std::string const& objects) {
        return R"(, "terminalNodes": [)" + objects + "]";
    }

    /// The set of `name` (full name) in the library, or null.
    std::shared_ptr<Kesto::DmOverloadSet> set(std::string const& name) {
        std::shared_ptr<Kesto::DmOverloadSet> out;
        return library().getGlobalNamespace()->findNodeDef(name, out) ? out : nullptr;
    }

    /// The `index`th overload of `name` as a `T`, or null.
    template <class T>
    std::shared_ptr<T> overload(std::string const& name, std::size_t index = 0) {
        auto const found = set(name);
        if (!found || found->getOverloads().size() <= index) {
            return nullptr;
        }
        return std::dynamic_pointer_cast<T>(found->getOverloads()[index]);
    }

    std::shared_ptr<Kesto::DmCppOperator> cppOperator(std::string const& name, std::size_t index = 0) {
        return overload<Kesto::DmCppOperator>(name, index);
    }
    std::shared_ptr<Kesto::DmTerminalNodeDef> terminal(std::string const& name) {
        return overload<Kesto::DmTerminalNodeDef>(name);
    }

    /// Loads `text` as the file `file` (not "a.json") with `resolution`.
    Kesto::DmStatus loadAs(std::string const& file, std::string const& more,
                           Kesto::DmNameResolutionType resolution = Kesto::kFailOnClash) {
        std::string const path = write(more, file);
        Kesto::DmLibrary::LoadOptions options;
        options.nameResolution = resolution;
        return library().loadGraph(longForm(path), options);
    }

    /// Loads the corpus file `name` of the reader's test data.
    Kesto::DmStatus loadCorpus(std::string const& name) {
        return library().loadGraph(longForm(std::string(KESTODM_TEST_DATA_DIR) + "/reader/" + name),
                                   Kesto::DmLibrary::LoadOptions());
    }
};

} // namespace KestoTest
