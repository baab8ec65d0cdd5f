#pragma once

#include <KestoDM/platform/DmExport.h>

#include <mutex>
#include <string>
#include <vector>

namespace Kesto {

/// Loads shared libraries (plug-ins) and finds symbols in them. The
/// libraries stay loaded until the manager is destroyed, which unloads them
/// in reverse order of loading. Thread-safe.
class KESTODM_API BaSharedLibraryManager {
public:
    BaSharedLibraryManager();
    ~BaSharedLibraryManager();
    BaSharedLibraryManager(BaSharedLibraryManager const&) = delete;
    BaSharedLibraryManager& operator=(BaSharedLibraryManager const&) = delete;

    /// Loads `directory`/`file`, where `file` is `name` with the platform
    /// prefix ("lib") and extension (".so") added when missing. With an empty
    /// directory the system search path is used. A library already loaded is
    /// not added again, and that is a success. On failure returns false and
    /// keeps the loader's message for getLastError(); a success clears it.
    bool loadSharedLibrary(std::string const& name, std::string const& directory);

    /// The address of `name` in the first loaded library that has it, in
    /// order of loading; null when none has it.
    void* getSymbolAddress(std::string const& name) const;

    /// The paths of the loaded libraries, in order of loading.
    std::vector<std::string> getLoadedLibraries() const;

    std::string getLastError() const;

private:
    struct Library {
        std::string path;
        void* handle;
    };

    mutable std::mutex m_mutex;
    std::vector<Library> m_libraries;
    std::string m_lastError;
};

} // namespace Kesto
