#include <KestoDM/platform/OutputStream.h>

#include <limits>

namespace Kesto {

OutputStream::~OutputStream() = default;

bool OutputStream::flush() {
    return true;
}

bool StdOutputStream::write(char const* data, std::size_t size) {
    if (!m_stream) {
        return false;
    }
    if (size == 0) {
        return true;
    }
    if (data == nullptr) {
        return false;
    }
    try {
        // std::ostream::write takes a signed count: write huge buffers in pieces.
        constexpr std::size_t kPiece = static_cast<std::size_t>(std::numeric_limits<std::streamsize>::max());
        while (size > 0 && m_stream) {
            std::size_t const piece = size < kPiece ? size : kPiece;
            m_stream.write(data, static_cast<std::streamsize>(piece));
            data += piece;
            size -= piece;
        }
    } catch (std::ios_base::failure const&) {
        return false; // a stream with exceptions enabled
    }
    return static_cast<bool>(m_stream);
}

bool StdOutputStream::flush() {
    if (!m_stream) {
        return false;
    }
    try {
        m_stream.flush();
    } catch (std::ios_base::failure const&) {
        return false;
    }
    return static_cast<bool>(m_stream);
}

} // namespace Kesto
