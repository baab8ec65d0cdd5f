#pragma once

// Helpers for the asset tests: real directories on disk and a host resolver.
#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/assets/DmAssetResolverContext.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaContext.h>

#include <boost/filesystem.hpp>

#include <fstream>
#include <memory>
#include <string>

namespace KestoTest {

/// A fresh directory under the system's temporary directory, in canonical
/// form (the temporary directory may itself be reached through a link),
/// removed with everything in it at the end of the test.
class AssetDir {
public:
    AssetDir() {
        namespace fs = boost::filesystem;
        fs::path const made = fs::temp_directory_path() / fs::unique_path("kestodm-asset-%%%%-%%%%-%%%%");
        fs::create_directories(made);
        m_path = fs::canonical(made);
    }
    AssetDir(AssetDir const&) = delete;
    AssetDir& operator=(AssetDir const&) = delete;
    ~AssetDir() {
        boost::system::error_code ignored;
        boost::filesystem::remove_all(m_path, ignored);
    }

    std::string path() const { return m_path.string(); }
    std::string file(std::string const& name) const { return (m_path / name).string(); }

    /// Makes the file `name` (and its directories) with an empty JSON object.
    std::string touch(std::string const& name) const {
        boost::filesystem::create_directories((m_path / name).parent_path());
        std::ofstream(file(name)) << "{}";
        return file(name);
    }
    std::string makeDirectory(std::string const& name) const {
        boost::filesystem::create_directories(m_path / name);
        return file(name);
    }
    /// A symbolic link `name` to `target`.
    std::string link(std::string const& target, std::string const& name) const {
        boost::filesystem::create_symlink(target, m_path / name);
        return file(name);
    }

private:
    boost::filesystem::path m_path;
};

inline std::shared_ptr<Kesto::DmLibrary> newTestLibrary() {
    return Kesto::DmLibrary::newLibrary(std::make_shared<Kesto::BaContext>(), nullptr,
                                        Kesto::DmExternOperator::kSafe);
}

/// A context with the library and, when given, the reference of a referring file.
inline std::shared_ptr<Kesto::DmAssetResolverContext>
contextFor(std::shared_ptr<Kesto::DmLibrary> const& library,
           std::shared_ptr<Kesto::DmAssetReference> const& referrer = nullptr) {
    auto context = Kesto::DmAssetResolverContext::newAssetResolverContext();
    context->setLibrary(library);
    context->setRelativeAssetReference(referrer);
    return context;
}

/// The reference of a file that refers to others, as a resolution leaves it.
inline std::shared_ptr<Kesto::DmAssetReference> referrerAt(std::string const& filePath) {
    auto reference = Kesto::DmAssetReference::newAssetReference("file:" + filePath);
    reference->setFilePath(filePath);
    reference->setResolveStatus(Kesto::DmAssetReference::kResolved);
    return reference;
}

/// A resolver of the host: it resolves every reference of its key to a fixed
/// file, or fails with kFileNotFound when it has none, and counts its calls.
class HostResolver : public Kesto::DmAssetResolver {
public:
    HostResolver(std::string key, AccessMode mode, std::string file = std::string())
        : m_key(std::move(key)), m_mode(mode), m_file(std::move(file)) {}

    bool resolve(std::shared_ptr<Kesto::DmAssetReference> const& reference,
                 std::shared_ptr<Kesto::DmAssetResolverContext> const&,
                 std::shared_ptr<Kesto::DmMessageLogger> const&) const override {
        ++m_calls;
        if (m_file.empty()) {
            reference->setResolveStatus(Kesto::DmAssetReference::kFileNotFound);
            return false;
        }
        reference->setFilePath(m_file);
        reference->setAssetIdentity("file:" + m_file);
        reference->setResolveStatus(Kesto::DmAssetReference::kResolved);
        return true;
    }
    std::string const& schemeKey() const override { return m_key; }
    AccessMode getAccessMode() const override { return m_mode; }

    int calls() const { return m_calls; }

private:
    std::string m_key;
    AccessMode m_mode;
    std::string m_file;
    mutable int m_calls = 0;
};

} // namespace KestoTest
