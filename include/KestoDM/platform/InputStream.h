#pragma once

#include <KestoDM/platform/DmExport.h>

#include <istream>
#include <string>

namespace Kesto {

/// A source of bytes, as much as the library needs to read one document: all
/// of it at once. Hosts implement it over whatever they read from (a file, an
/// archive member, memory); `StdInputStream` adapts a std::istream.
class KESTODM_API InputStream {
public:
    virtual ~InputStream();

    /// Replaces `out` with every byte left in the stream. False when reading
    /// failed; `out` then holds what was read before the failure.
    virtual bool readAll(std::string& out) = 0;

protected:
    InputStream() = default;
    InputStream(InputStream const&) = default;
    InputStream& operator=(InputStream const&) = default;
};

/// An InputStream over a std::istream that the caller owns and keeps alive
/// for as long as the adapter is used. Made from the stream.
class KESTODM_API StdInputStream : public InputStream {
public:
    explicit StdInputStream(std::istream& stream) noexcept : m_stream(stream) {}

    /// Reads to the end of the stream, which is left at its end with only
    /// eofbit set. False when the stream was already failed or a read error
    /// happened (the stream is then bad). Never throws for the stream's
    /// state, whatever its exception mask.
    bool readAll(std::string& out) override;

private:
    std::istream& m_stream;
};

} // namespace Kesto
