// The library's way of parsing, rebuilt here: the parser's events go through
// a handler that counts the depth and forwards to the DOM.
#include "ReferenceDom.h"
#include "ReferenceParsers.h"

#include <cstdint>

namespace KestoBench {
namespace {

class DepthLimitedHandler {
public:
    explicit DepthLimitedHandler(rapidjson::Document& document) : m_document(document) {}

    bool Null() { return m_document.Null(); }
    bool Bool(bool b) { return m_document.Bool(b); }
    bool Int(int i) { return m_document.Int(i); }
    bool Uint(unsigned i) { return m_document.Uint(i); }
    bool Int64(std::int64_t i) { return m_document.Int64(i); }
    bool Uint64(std::uint64_t i) { return m_document.Uint64(i); }
    bool Double(double d) { return m_document.Double(d); }
    bool RawNumber(char const* str, rapidjson::SizeType length, bool copy) {
        return m_document.RawNumber(str, length, copy);
    }
    bool String(char const* str, rapidjson::SizeType length, bool copy) {
        return m_document.String(str, length, copy);
    }
    bool Key(char const* str, rapidjson::SizeType length, bool copy) {
        return m_document.Key(str, length, copy);
    }
    bool StartObject() { return enter() && m_document.StartObject(); }
    bool EndObject(rapidjson::SizeType count) {
        --m_depth;
        return m_document.EndObject(count);
    }
    bool StartArray() { return enter() && m_document.StartArray(); }
    bool EndArray(rapidjson::SizeType count) {
        --m_depth;
        return m_document.EndArray(count);
    }

private:
    bool enter() { return ++m_depth <= Kesto::Internal::JsonDocument::kMaxNestingDepth; }

    rapidjson::Document& m_document;
    unsigned m_depth = 0;
};

template <class Stream>
struct Generator {
    char* text;
    std::size_t size;
    bool ok = false;

    bool operator()(rapidjson::Document& document) {
        DepthLimitedHandler handler(document);
        Stream stream(text);
        rapidjson::Reader reader;
        ok = !reader.Parse<rapidjson::kParseInsituFlag>(stream, handler).IsError() && stream.Tell() >= size;
        return ok;
    }
};

template <class Stream>
std::size_t populate(char* text, std::size_t size) {
    ReferenceDom dom;
    Generator<Stream> generator{text, size};
    dom.document.Populate(generator);
    return generator.ok ? dom.result() : 0;
}

} // namespace

std::size_t parseThroughHandler(char* text, std::size_t size) {
    return populate<rapidjson::InsituStringStream>(text, size);
}

std::size_t parseThroughHandlerPlain(char* text, std::size_t size) {
    return populate<PlainStream>(text, size);
}

} // namespace KestoBench
