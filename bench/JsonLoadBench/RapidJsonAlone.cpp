#include "ReferenceDom.h"
#include "ReferenceParsers.h"

namespace KestoBench {

std::size_t parseInsitu(char* text, std::size_t /*size*/) {
    ReferenceDom dom;
    dom.document.ParseInsitu(text);
    return dom.document.HasParseError() ? 0 : dom.result();
}

std::size_t parseInsituPlain(char* text, std::size_t /*size*/) {
    ReferenceDom dom;
    PlainStream stream(text);
    dom.document.ParseStream<rapidjson::kParseInsituFlag>(stream);
    return dom.document.HasParseError() ? 0 : dom.result();
}

} // namespace KestoBench
