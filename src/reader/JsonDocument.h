#pragma once

#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/platform/DmExport.h>

#include "reader/DmRapidJson.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace Kesto {

class DmAssetReference;
class DmMessageLogger;

namespace Internal {

/// One parsed JSON text: the text in a buffer of its own, parsed in place, and
/// the DOM over it (whose strings point into the buffer, so both live and die
/// together). Used for graph files and for the short texts of values.
///
/// Nesting is limited to kMaxNestingDepth arrays and objects, so that nothing
/// that walks the DOM afterwards (the passes of the reader, the value reader)
/// can run out of stack on hostile input; deeper texts fail like syntax errors.
class KESTODM_API JsonDocument {
public:
    using Value = rapidjson::Value;

    /// How a text is parsed. kAutomatic picks the SSE parser unless
    /// KESTO_FORCE_NON_SSE_JSON_PARSER or TOVARIN_USING_VALGRIND is on.
    enum class Parser { kAutomatic, kSse, kPlain };

    static constexpr unsigned kMaxNestingDepth = 1000;
    /// The allocation unit of the DOM's values and the parser stack's first size.
    static constexpr std::size_t kValueChunkSize = 65536;
    static constexpr std::size_t kStackCapacity = 1024;

    /// `logger` receives the messages of load and parse; may be null (silent).
    explicit JsonDocument(std::shared_ptr<DmMessageLogger> logger, Parser parser = Parser::kAutomatic);
    JsonDocument(JsonDocument const&) = delete;
    JsonDocument& operator=(JsonDocument const&) = delete;
    ~JsonDocument();

    /// Reads the whole asset and parses it. kSuccess; 3 or 4 when the asset
    /// is unresolved or cannot be read (4 for a missing file or stream); 5 for
    /// a text that does not parse. Every failure is reported.
    DmStatus load(std::shared_ptr<DmAssetReference> const& asset);
    /// Parses a copy of `text`; `name` stands for the text in messages.
    DmStatus parse(std::string_view text, std::string const& name);

    /// The root; null until a parse succeeded.
    Value const& getRoot() const noexcept { return m_document; }
    bool isParsed() const noexcept { return m_parsed; }
    /// The parser that the next parse uses.
    bool usesSseParser() const;
    /// What the asset is called in messages: its file path, else its identity, else its spec.
    static std::string assetName(DmAssetReference const& asset);

private:
    struct BufferDeleter {
        void operator()(char* buffer) const noexcept;
    };
    using Buffer = std::unique_ptr<char, BufferDeleter>;

    /// A buffer of `size` bytes plus the closing zero, aligned to 16 and
    /// padded to a multiple of 16 so that block reads stay inside it.
    static Buffer allocateBuffer(std::size_t size);
    void clear();
    bool readAsset(DmAssetReference const& asset, DmStatus& status);
    static std::string readWholeFile(std::string const& path);
    bool readFile(std::string const& path, DmStatus& status);
    DmStatus parseBuffer(std::string const& name, std::string_view original);
    void report(int category, std::string const& location, std::string title, std::string description) const;

    std::shared_ptr<DmMessageLogger> m_logger;
    Parser m_parser;
    Buffer m_buffer;
    std::size_t m_size = 0;
    rapidjson::MemoryPoolAllocator<> m_valueAllocator;
    rapidjson::CrtAllocator m_stackAllocator;
    rapidjson::Document m_document;
    bool m_parsed = false;
    /// Where the text came from, for the position of a parse error.
    std::string m_streamText;
    std::string m_filePath;
};

} // namespace Internal
} // namespace Kesto
