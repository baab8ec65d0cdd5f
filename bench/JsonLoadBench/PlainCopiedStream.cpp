// Apart from the plain parse, so that its instantiation does not change the
// compiler's choices there.
#include "ReferenceDom.h"
#include "ReferenceParsers.h"

namespace KestoBench {
namespace {

/// RapidJSON copies its own in-situ stream into a local for its scanning
/// loops; a stream of another type loses that unless its traits say so.
struct PlainCopiedStream : rapidjson::InsituStringStream {
    explicit PlainCopiedStream(char* text) : rapidjson::InsituStringStream(text) {}
};

} // namespace
} // namespace KestoBench

template <>
struct rapidjson::StreamTraits<KestoBench::PlainCopiedStream> {
    enum { copyOptimization = 1 };
};

namespace KestoBench {

std::size_t parseInsituPlainCopied(char* text, std::size_t /*size*/) {
    ReferenceDom dom;
    PlainCopiedStream stream(text);
    dom.document.ParseStream<rapidjson::kParseInsituFlag>(stream);
    return dom.document.HasParseError() ? 0 : dom.result();
}

} // namespace KestoBench
