#pragma once

// RapidJSON alone, and RapidJSON through a depth-limited forwarding handler,
// each compiled in a translation unit of its own shaped like the library's
// JsonDocument.cpp (one SSE and one plain instantiation), so that the
// compiler makes comparable inlining decisions on both sides: in one large
// unit, GCC leaves the SSE white-space scan out of line and the same parse
// runs 50 % slower.
//
// Each function parses the zero-terminated, 16-byte aligned `text` of `size`
// bytes in place into a new DOM configured like the library's (64 KiB value
// chunks, 1 KiB parser stack), releases the DOM and returns the root's member
// count, or 0 when the parse failed.

#include <cstddef>

namespace KestoBench {

/// rapidjson::Document::ParseInsitu with the default flags: the SSE scan.
std::size_t parseInsitu(char* text, std::size_t size);
/// The same parse over a stream type that the SSE code does not match.
std::size_t parseInsituPlain(char* text, std::size_t size);
/// The plain stream with RapidJSON's stream-copy optimisation granted back.
std::size_t parseInsituPlainCopied(char* text, std::size_t size);

/// Document::Populate through a handler that forwards every event to the
/// DOM and refuses nesting deeper than the library's limit, and refuses text
/// behind a zero byte as the library does: SSE, then plain.
std::size_t parseThroughHandler(char* text, std::size_t size);
std::size_t parseThroughHandlerPlain(char* text, std::size_t size);

} // namespace KestoBench
