#include <KestoDM/platform/BaSharedLibraryManager.h>

#include <KestoDM/platform/BaSharedLibraryUtils.h>

#include <dlfcn.h>

namespace Kesto {

namespace {

bool startsWith(std::string const& text, std::string const& prefix) {
    return text.size() >= prefix.size() && text.compare(0, prefix.size(), prefix) == 0;
}

bool endsWith(std::string const& text, std::string const& suffix) {
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

std::string libraryPath(std::string const& name, std::string const& directory) {
    std::string file;
    if (!startsWith(name, BaSharedLibraryUtils::getLibraryPrefix())) {
        file = BaSharedLibraryUtils::getLibraryPrefix();
    }
    file += name;
    if (!endsWith(file, BaSharedLibraryUtils::getLibraryExtension())) {
        file += BaSharedLibraryUtils::getLibraryExtension();
    }
    if (directory.empty()) {
        return file;
    }
    std::string path = directory;
    if (path.back() != '/') {
        path += '/';
    }
    return path + file;
}

} // namespace

BaSharedLibraryManager::BaSharedLibraryManager() = default;

BaSharedLibraryManager::~BaSharedLibraryManager() {
    for (auto it = m_libraries.rbegin(); it != m_libraries.rend(); ++it) {
        dlclose(it->handle);
    }
}

bool BaSharedLibraryManager::loadSharedLibrary(std::string const& name, std::string const& directory) {
    std::string const path = libraryPath(name, directory);
    std::lock_guard<std::mutex> const lock(m_mutex);
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        char const* const message = dlerror();
        m_lastError = message != nullptr ? message : "cannot load " + path;
        return false;
    }
    m_lastError.clear();
    for (Library const& library : m_libraries) {
        if (library.handle == handle) {
            // The loader counts opens: give back the extra one.
            dlclose(handle);
            return true;
        }
    }
    m_libraries.push_back(Library{path, handle});
    return true;
}

void* BaSharedLibraryManager::getSymbolAddress(std::string const& name) const {
    std::lock_guard<std::mutex> const lock(m_mutex);
    for (Library const& library : m_libraries) {
        if (void* const address = dlsym(library.handle, name.c_str())) {
            return address;
        }
    }
    return nullptr;
}

std::vector<std::string> BaSharedLibraryManager::getLoadedLibraries() const {
    std::lock_guard<std::mutex> const lock(m_mutex);
    std::vector<std::string> paths;
    paths.reserve(m_libraries.size());
    for (Library const& library : m_libraries) {
        paths.push_back(library.path);
    }
    return paths;
}

std::string BaSharedLibraryManager::getLastError() const {
    std::lock_guard<std::mutex> const lock(m_mutex);
    return m_lastError;
}

} // namespace Kesto
