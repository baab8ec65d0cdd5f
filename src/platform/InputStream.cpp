#include <KestoDM/platform/InputStream.h>

namespace Kesto {

InputStream::~InputStream() = default;

bool StdInputStream::readAll(std::string& out) {
    out.clear();
    if (!m_stream) {
        return false;
    }
    // Failures are this call's result, not exceptions: switch them off while
    // reading (std::istream::read then turns a throwing buffer into badbit).
    std::ios_base::iostate const exceptions = m_stream.exceptions();
    m_stream.exceptions(std::ios_base::goodbit);
    char chunk[16384];
    do {
        m_stream.read(chunk, sizeof chunk);
        out.append(chunk, static_cast<std::size_t>(m_stream.gcount()));
    } while (m_stream);
    bool const ok = !m_stream.bad();
    if (ok) {
        // Reaching the end is what was asked for: leave only eofbit, so the
        // stream is not "failed" for its owner.
        m_stream.clear(std::ios_base::eofbit);
    }
    try {
        m_stream.exceptions(exceptions);
    } catch (std::ios_base::failure const&) {
        // Restoring the mask throws for a state it covers; the result says it already.
    }
    return ok;
}

} // namespace Kesto
