#pragma once

#include "reader/DmRapidJson.h"

#include <cstdint>

namespace Kesto::Internal {

/// Forwards the parser's events to the DOM and stops it at the nesting limit.
class DepthLimitedHandler {
public:
    DepthLimitedHandler(rapidjson::Document& document, unsigned maxDepth)
        : m_document(document), m_maxDepth(maxDepth) {}

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

    bool tooDeep() const noexcept { return m_tooDeep; }

private:
    bool enter() {
        if (++m_depth > m_maxDepth) {
            m_tooDeep = true;
            return false;
        }
        return true;
    }

    rapidjson::Document& m_document;
    unsigned m_maxDepth;
    unsigned m_depth = 0;
    bool m_tooDeep = false;
};

} // namespace Kesto::Internal
