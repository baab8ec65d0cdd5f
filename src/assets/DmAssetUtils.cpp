#include <KestoDM/assets/DmAssetUtils.h>

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolverContext.h>
#include <KestoDM/assets/DmURIParser.h>
#include <KestoDM/foundation/DmOSUtils.h>
#include <KestoDM/library/DmLibrary.h>

#include "assets/DmAssetFileSystemProbe.h"

#include <atomic>
#include <cctype>
#include <string_view>

namespace Kesto {

namespace {

std::atomic<std::uint64_t> s_fileSystemCalls{0};

bool isDriveLetter(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

// One try: `path` in the directory `base` ("" for a path tried as it stands).
// A directory that the library has listed answers from its table, whatever
// the disk holds now; only an unlisted one costs a file-system call.
bool tryPath(DmAssetReference& reference, DmLibrary const* library, std::string const& base,
             std::string const& path) {
    std::string_view tail = path;
    if (!base.empty()) {
        // A rooted path counts from the directory of the try, in the table and
        // on disk alike, so both give the same answer.
        while (!tail.empty() && tail.front() == '/') {
            tail.remove_prefix(1);
        }
    }
    std::string candidate;
    bool found = false;
    bool answered = false;
    if (tail.empty()) {
        // Nothing to look for; the directory itself is no asset.
        answered = true;
    } else if (library != nullptr) {
        candidate = DmOSUtils::appendPaths(base, tail);
        auto const cached = library->isJsonFilenameCachedForLoad(candidate);
        if (cached.first) {
            found = cached.second;
            answered = true;
        }
    }
    if (!answered) {
        s_fileSystemCalls.fetch_add(1, std::memory_order_relaxed);
        found = DmOSUtils::getExistingStrictCanonicalPath(tail, base, candidate);
    }
    if (!found) {
        reference.setResolveStatus(DmAssetReference::kFileNotFound);
        return false;
    }
    reference.setAssetIdentity(DmURIParser::buildFileSpec(candidate));
    reference.setResolveStatus(DmAssetReference::kResolved);
    reference.setFilePath(candidate);
    return true;
}

std::shared_ptr<DmLibrary> libraryOf(std::shared_ptr<DmAssetResolverContext> const& context) {
    return context ? context->library() : nullptr;
}

} // namespace

namespace Internal {

std::uint64_t assetFileSystemCallCount() noexcept {
    return s_fileSystemCalls.load(std::memory_order_relaxed);
}

void resetAssetFileSystemCallCount() noexcept {
    s_fileSystemCalls.store(0, std::memory_order_relaxed);
}

} // namespace Internal

void DmAssetUtils::adjustURIPath(std::string& path) {
    // The long file form puts a "/" before a drive letter ("file:///C:/a.json").
    // A rooted path keeps its "/": it is what makes the path absolute here.
    if (path.size() >= 3 && path[0] == '/' && isDriveLetter(path[1]) && path[2] == ':') {
        path.erase(0, 1);
    }
}

bool DmAssetUtils::updateAssetFromAbsolutePath(std::shared_ptr<DmAssetReference> const& reference,
                                               std::shared_ptr<DmAssetResolverContext> const& context,
                                               std::string const& path) {
    if (!reference || !DmOSUtils::isAbsolutePath(path)) {
        return false;
    }
    auto const library = libraryOf(context);
    return tryPath(*reference, library.get(), std::string(), path);
}

bool DmAssetUtils::updateAssetFromRelativePath(std::shared_ptr<DmAssetReference> const& reference,
                                               std::shared_ptr<DmAssetResolverContext> const& context,
                                               std::string const& path) {
    if (!reference || !context) {
        return false;
    }
    auto const relative = context->relativeAssetReference();
    if (!relative || !relative->hasFilePath()) {
        return false;
    }
    auto const library = context->library();
    return tryPath(*reference, library.get(), relative->getBasePath(), path);
}

bool DmAssetUtils::updateAssetFromSearchPaths(std::shared_ptr<DmAssetReference> const& reference,
                                              std::shared_ptr<DmAssetResolverContext> const& context,
                                              BaIndexedVector<String> const& searchPaths,
                                              std::string const& path) {
    if (!reference) {
        return false;
    }
    auto const library = libraryOf(context);
    for (String const& searchPath : searchPaths) {
        if (tryPath(*reference, library.get(), searchPath.str(), path)) {
            return true;
        }
    }
    return false;
}

bool DmAssetUtils::resolveFileSpec(std::shared_ptr<DmAssetReference> const& reference,
                                   std::shared_ptr<DmAssetResolverContext> const& context,
                                   BaIndexedVector<String> const* searchPaths) {
    std::string path = DmURIParser(reference->getAssetSpec()).getPath();
    if (path.empty()) {
        return false;
    }
    adjustURIPath(path);
    return updateAssetFromAbsolutePath(reference, context, path) ||
           updateAssetFromRelativePath(reference, context, path) ||
           (searchPaths != nullptr && updateAssetFromSearchPaths(reference, context, *searchPaths, path));
}

} // namespace Kesto
