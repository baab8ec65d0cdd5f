#pragma once

#include <KestoDM/platform/DmExport.h>

#include <cstddef>
#include <ostream>

namespace Kesto {

/// A sink of bytes that the library writes documents to. Hosts implement it
/// over whatever they write to; `StdOutputStream` adapts a std::ostream.
class KESTODM_API OutputStream {
public:
    virtual ~OutputStream();

    /// Writes `size` bytes from `data` (which may be null when size is 0).
    /// False when not all of them could be written.
    virtual bool write(char const* data, std::size_t size) = 0;
    /// Pushes buffered bytes on to their destination. The default has no
    /// buffer and succeeds.
    virtual bool flush();

protected:
    OutputStream() = default;
    OutputStream(OutputStream const&) = default;
    OutputStream& operator=(OutputStream const&) = default;
};

/// An OutputStream over a std::ostream that the caller owns and keeps alive
/// for as long as the adapter is used. Made from the stream.
class KESTODM_API StdOutputStream : public OutputStream {
public:
    explicit StdOutputStream(std::ostream& stream) noexcept : m_stream(stream) {}

    /// False when the stream is, or becomes, failed.
    bool write(char const* data, std::size_t size) override;
    /// Flushes the stream; false when it is, or becomes, failed.
    bool flush() override;

private:
    std::ostream& m_stream;
};

} // namespace Kesto
