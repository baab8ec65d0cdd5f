// The library's way of parsing, in a unit of its own: the parser's events go
// through the library's handler that counts the depth and forwards to the DOM.
#include "ReferenceDom.h"
#include "ReferenceParsers.h"

#include "reader/JsonDepthLimitedHandler.h"
#include "reader/JsonDocument.h"

#include <cstdint>

namespace KestoBench {
namespace {

template <class Stream>
struct Generator {
    char* text;
    std::size_t size;
    bool ok = false;

    bool operator()(rapidjson::Document& document) {
        Kesto::Internal::DepthLimitedHandler handler(document,
                                                     Kesto::Internal::JsonDocument::kMaxNestingDepth);
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
