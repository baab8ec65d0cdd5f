#pragma once

// Helpers for the reader tests: graph files written into temporary
// directories, a library whose printed log is captured, and the records of a
// logger as lines.
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>
#include <KestoDM/platform/BaMessageRecord.h>

#include <boost/filesystem.hpp>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace KestoTest {

/// A fresh directory under the system's temporary directory, in canonical
/// form, removed with everything in it at the end of the test.
class TempDir {
public:
    TempDir() {
        namespace fs = boost::filesystem;
        fs::path const made = fs::temp_directory_path() / fs::unique_path("kestodm-reader-%%%%-%%%%-%%%%");
        fs::create_directories(made);
        m_path = fs::canonical(made);
    }
    TempDir(TempDir const&) = delete;
    TempDir& operator=(TempDir const&) = delete;
    ~TempDir() {
        boost::system::error_code ignored;
        boost::filesystem::remove_all(m_path, ignored);
    }

    std::string path() const { return m_path.string(); }
    std::string file(std::string const& name) const { return (m_path / name).string(); }

    /// Writes `text` byte for byte into `name` (directories made) and returns its path.
    std::string write(std::string const& name, std::string const& text) const {
        boost::filesystem::create_directories((m_path / name).parent_path());
        std::ofstream out(file(name), std::ios::binary);
        out << text;
        return file(name);
    }

private:
    boost::filesystem::path m_path;
};

/// The header of a graph file of the current version, as the writer emits it.
inline std::string const kHeader =
    R"("header": {"metadata": [{"metaName": "mvrkFileFormatVersion", "metaValue": "100L"}]})";

/// A graph file: the header, then `more` (further root members, with their
/// leading comma when not empty).
inline std::string graphText(std::string const& more = std::string()) {
    return "{" + kHeader + more + "}";
}

/// One printed line of a record, as the log prints it.
inline std::string line(std::string const& kind, std::string const& subject, std::string const& title,
                        std::string const& description) {
    return kind + ": " + subject + ": " + title + ": " + description;
}

/// The non-empty lines of `text`.
inline std::vector<std::string> linesOf(std::string const& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    std::string one;
    while (std::getline(in, one)) {
        if (!one.empty()) {
            out.push_back(one);
        }
    }
    return out;
}

/// The records of `logger`, each formatted as the log prints it.
inline std::vector<std::string> recordLines(Kesto::DmMessageLogger const& logger) {
    std::vector<std::string> out;
    for (auto it = logger.begin(); it != logger.end(); ++it) {
        out.push_back(it->getFormattedDescription());
    }
    return out;
}

/// A library that prints its log into a string, with the loads of the tests.
class PrintingLibrary {
public:
    PrintingLibrary()
        : m_library(Kesto::DmLibrary::newLibrary(std::make_shared<Kesto::BaContext>(), &m_printed,
                                                 Kesto::DmExternOperator::kSafe)) {}

    Kesto::DmLibrary& operator*() const { return *m_library; }
    Kesto::DmLibrary* operator->() const { return m_library.get(); }
    std::shared_ptr<Kesto::DmLibrary> const& get() const { return m_library; }

    /// The lines printed since the last call, and forgets them.
    std::vector<std::string> takePrinted() {
        std::vector<std::string> out = linesOf(m_printed.str());
        m_printed.str(std::string());
        return out;
    }
    std::string printedText() const { return m_printed.str(); }

    Kesto::DmStatus load(std::string const& spec, std::uint8_t reloadMode = 0,
                         std::shared_ptr<Kesto::DmLibrary::CompoundMap> const& result = nullptr) {
        Kesto::DmLibrary::LoadOptions options;
        options.reloadMode = reloadMode;
        return m_library->loadGraph(spec, options, result);
    }

private:
    std::ostringstream m_printed;
    std::shared_ptr<Kesto::DmLibrary> m_library;
};

/// The spec of the file at the absolute `path` in the long file form.
inline std::string longForm(std::string const& path) {
    return "file://" + path;
}

} // namespace KestoTest
