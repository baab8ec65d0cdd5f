#pragma once

#include "reader/DmRapidJson.h"
#include "reader/JsonDocument.h"

namespace KestoBench {

/// A DOM configured like the library's.
struct ReferenceDom {
    rapidjson::MemoryPoolAllocator<> values{Kesto::Internal::JsonDocument::kValueChunkSize};
    rapidjson::CrtAllocator stack;
    rapidjson::Document document{&values, Kesto::Internal::JsonDocument::kStackCapacity, &stack};

    std::size_t result() const { return document.IsObject() ? document.MemberCount() : 0; }
};

/// The in-situ stream under another type, which RapidJSON's SSE
/// specialisations do not match: scanned byte by byte.
struct PlainStream : rapidjson::InsituStringStream {
    explicit PlainStream(char* text) : rapidjson::InsituStringStream(text) {}
};

} // namespace KestoBench
