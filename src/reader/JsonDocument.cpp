#include "reader/JsonDocument.h"

#include "reader/JsonDepthLimitedHandler.h"

#include <KestoDM/assets/DmAssetReference.h>
#include <KestoDM/assets/DmAssetResolver.h>
#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmOSUtils.h>
#include <KestoDM/platform/BaEnvVar.h>
#include <KestoDM/platform/InputStream.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <variant>

namespace Kesto::Internal {

namespace {

/// The in-situ stream with RapidJSON's SSE white-space scan (when compiled in).
using SseStream = rapidjson::InsituStringStream;

/// The same stream under another type: RapidJSON's SSE specialisations name
/// InsituStringStream exactly, so this one is scanned byte by byte.
struct PlainStream : rapidjson::InsituStringStream {
    explicit PlainStream(char* text) : rapidjson::InsituStringStream(text) {}
};

/// Runs one parser over the buffer into the DOM; keeps the error.
template <class Stream>
struct Generator {
    char* text;
    std::size_t size;
    rapidjson::ParseResult result;
    bool tooDeep = false;

    bool operator()(rapidjson::Document& document) {
        DepthLimitedHandler handler(document, JsonDocument::kMaxNestingDepth);
        Stream stream(text);
        rapidjson::Reader reader;
        result = reader.Parse<rapidjson::kParseInsituFlag>(stream, handler);
        tooDeep = handler.tooDeep();
        // The parser takes a zero byte for the end of the text: anything
        // behind one is text after the root all the same.
        if (!result.IsError() && stream.Tell() < size) {
            result.Set(rapidjson::kParseErrorDocumentRootNotSingular, stream.Tell());
        }
        return !result.IsError();
    }
};

/// Line and column of `offset`: lines start at 1 and break at byte 10; the
/// column counts from 1 behind the last break.
std::pair<std::size_t, std::size_t> position(std::string_view text, std::size_t offset) {
    offset = std::min(offset, text.size());
    std::size_t line = 1;
    std::size_t lineStart = 0;
    for (std::size_t i = 0; i < offset; ++i) {
        if (text[i] == '\n') {
            ++line;
            lineStart = i + 1;
        }
    }
    return {line, offset - lineStart + 1};
}

} // namespace

void JsonDocument::BufferDeleter::operator()(char* buffer) const noexcept {
    std::free(buffer);
}

JsonDocument::JsonDocument(std::shared_ptr<DmMessageLogger> logger, Parser parser)
    : m_logger(std::move(logger)), m_parser(parser), m_valueAllocator(kValueChunkSize),
      m_document(&m_valueAllocator, kStackCapacity, &m_stackAllocator) {}

JsonDocument::~JsonDocument() = default;

void JsonDocument::clear() {
    m_parsed = false;
    m_document.SetNull();
    m_valueAllocator.Clear();
    m_buffer.reset();
    m_size = 0;
    m_streamText.clear();
    m_filePath.clear();
}

bool JsonDocument::usesSseParser() const {
    switch (m_parser) {
    case Parser::kSse:
        return true;
    case Parser::kPlain:
        return false;
    case Parser::kAutomatic:
        break;
    }
    return !BaEnvVar::getBool("KESTO_FORCE_NON_SSE_JSON_PARSER") &&
           !BaEnvVar::getBool("TOVARIN_USING_VALGRIND");
}

std::string JsonDocument::assetName(DmAssetReference const& asset) {
    if (asset.hasFilePath()) {
        return asset.getFilePath();
    }
    if (!asset.getAssetIdentity().empty()) {
        return asset.getAssetIdentity();
    }
    return asset.getAssetSpec();
}

void JsonDocument::report(int category, std::string const& location, std::string title,
                          std::string description) const {
    if (m_logger) {
        m_logger->reportMessage(
            std::make_shared<DmMessageReport>(static_cast<BaMessageTypes::MessageCategory>(category),
                                              location, std::move(title), std::move(description)));
    }
}

JsonDocument::Buffer JsonDocument::allocateBuffer(std::size_t size) {
    std::size_t const padded = (size + 1 + 15) / 16 * 16;
    auto* const memory = static_cast<char*>(std::aligned_alloc(16, padded));
    if (memory != nullptr) {
        std::memset(memory + size, 0, padded - size);
    }
    return Buffer(memory);
}

DmStatus JsonDocument::load(std::shared_ptr<DmAssetReference> const& asset) {
    clear();
    if (!asset) {
        report(BaMessageTypes::kMessageError, "<null>", "Failed to locate asset.",
               "Failed to locate <null>.");
        return DmStatus::kFileError;
    }
    std::string const name = assetName(*asset);
    if (!asset->isResolved()) {
        DmAssetReference::ResolveStatus const state = asset->getResolveStatus();
        if (state == DmAssetReference::kFileNotFound || state == DmAssetReference::kNoStream) {
            report(BaMessageTypes::kMessageError, name, "Failed to locate asset.",
                   "Failed to locate " + name + ".");
            return DmStatus::kFileError;
        }
        report(BaMessageTypes::kMessageError, name, DmAssetReference::resolveStatusText(state),
               "Failed to resolve " + name + ".");
        return DmStatus::kFailure;
    }
    DmStatus status = DmStatus::kSuccess;
    if (!readAsset(*asset, status)) {
        report(BaMessageTypes::kMessageError, name, "Failed to load asset.", "Failed to load " + name + ".");
        return status;
    }
    return parseBuffer(name, std::string_view());
}

std::string JsonDocument::readWholeFile(std::string const& path) {
    std::string text;
    auto opened = DmOSUtils::fopen(path.c_str(), "rb");
    if (auto* const handle = std::get_if<DmOSUtils::FileHandle>(&opened); handle != nullptr && *handle) {
        char block[65536];
        std::size_t count = 0;
        while ((count = std::fread(block, 1, sizeof block, handle->get())) != 0) {
            text.append(block, count);
        }
    }
    return text;
}

bool JsonDocument::readAsset(DmAssetReference const& asset, DmStatus& status) {
    DmAssetResolver const* const resolver = asset.getResolver();
    if (resolver == nullptr) {
        status = DmStatus::kFailure;
        return false;
    }
    InputStream* stream = nullptr;
    std::unique_ptr<InputStream> owned;
    switch (resolver->getAccessMode()) {
    case DmAssetResolver::kAccessFile:
        return readFile(asset.getFilePath(), status);
    case DmAssetResolver::kAccessInputStream:
        stream = asset.getExternalInputStream();
        break;
    case DmAssetResolver::kAccessOutputStream: {
        std::shared_ptr<DmAssetReference> const copy = std::make_shared<DmAssetReference>(asset);
        owned.reset(resolver->createInputStream(copy));
        stream = owned.get();
        break;
    }
    default:
        status = DmStatus::kFailure;
        return false;
    }
    if (stream == nullptr) {
        status = DmStatus::kFileError;
        return false;
    }
    std::string text;
    if (!stream->readAll(text)) {
        status = DmStatus::kFileError;
        return false;
    }
    m_buffer = allocateBuffer(text.size());
    if (!m_buffer) {
        status = DmStatus::kFailure;
        return false;
    }
    std::memcpy(m_buffer.get(), text.data(), text.size());
    m_size = text.size();
    m_streamText = std::move(text);
    return true;
}

bool JsonDocument::readFile(std::string const& path, DmStatus& status) {
    status = DmStatus::kFileError;
    auto opened = DmOSUtils::fopen(path.c_str(), "rb");
    auto* const handle = std::get_if<DmOSUtils::FileHandle>(&opened);
    if (handle == nullptr || !*handle) {
        return false;
    }
    std::FILE* const file = handle->get();
    if (std::fseek(file, 0, SEEK_END) != 0) {
        return false;
    }
    long const end = std::ftell(file);
    if (end < 0 || std::fseek(file, 0, SEEK_SET) != 0) {
        return false;
    }
    auto const size = static_cast<std::size_t>(end);
    Buffer buffer = allocateBuffer(size);
    if (!buffer) {
        status = DmStatus::kFailure;
        return false;
    }
    if (size != 0 && std::fread(buffer.get(), 1, size, file) != size) {
        return false;
    }
    m_buffer = std::move(buffer);
    m_size = size;
    m_filePath = path;
    status = DmStatus::kSuccess;
    return true;
}

DmStatus JsonDocument::parse(std::string_view text, std::string const& name) {
    clear();
    m_buffer = allocateBuffer(text.size());
    if (!m_buffer) {
        report(BaMessageTypes::kMessageError, name, "Failed to load asset.", "Failed to load " + name + ".");
        return DmStatus::kFailure;
    }
    if (!text.empty()) {
        std::memcpy(m_buffer.get(), text.data(), text.size());
    }
    m_size = text.size();
    // A view with a non-null data pointer, also for the empty text.
    return parseBuffer(name, text.data() != nullptr ? text : std::string_view(""));
}

DmStatus JsonDocument::parseBuffer(std::string const& name, std::string_view original) {
    rapidjson::ParseResult result;
    bool tooDeep = false;
    if (usesSseParser()) {
        Generator<SseStream> generator{m_buffer.get(), m_size, {}};
        m_document.Populate(generator);
        result = generator.result;
        tooDeep = generator.tooDeep;
    } else {
        Generator<PlainStream> generator{m_buffer.get(), m_size, {}};
        m_document.Populate(generator);
        result = generator.result;
        tooDeep = generator.tooDeep;
    }
    if (result.IsError()) {
        // The in-situ parse has rewritten the buffer (unescaped strings may now
        // hold line breaks): count in the text as it came.
        std::string reread;
        if (original.data() == nullptr) {
            if (!m_streamText.empty()) {
                original = m_streamText;
            } else if (!m_filePath.empty()) {
                reread = readWholeFile(m_filePath);
                original = reread;
            }
        }
        auto const [line, column] = position(original, result.Offset());
        std::string const message = tooDeep ? "The document nests arrays and objects deeper than " +
                                                  std::to_string(kMaxNestingDepth) + " levels."
                                            : std::string(rapidjson::GetParseError_En(result.Code()));
        report(BaMessageTypes::kMessageError, name, "Asset has parsing errors.",
               "Failed to parse " + name + " at position " + std::to_string(line) + ":" +
                   std::to_string(column) + ": " + message);
        m_document.SetNull();
        return DmStatus::kReserved5;
    }
    m_streamText.clear();
    m_streamText.shrink_to_fit();
    m_parsed = true;
    return DmStatus::kSuccess;
}

} // namespace Kesto::Internal
