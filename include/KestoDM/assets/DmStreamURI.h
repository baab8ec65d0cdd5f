#pragma once

#include <KestoDM/assets/DmURI.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>

#include <string>

namespace Kesto {

class InputStream;
class OutputStream;

/// The URI of a host's stream: definitions are read from an input stream or
/// written to an output stream instead of a file. Its name always begins with
/// "stream:/", which is put in front of a name that lacks it.
///
/// Made on a name and one stream, which the host owns and keeps alive for as
/// long as the URI is used. Valid with exactly one stream: a URI made on a
/// null stream is invalid. Held through std::shared_ptr<DmURI>; not copyable.
class KESTODM_API DmStreamURI : public DmURI, public DmInstanceCounter<DmStreamURI> {
public:
    /// @name Construction
    /// @{
    DmStreamURI(std::string name, InputStream* inputStream);
    DmStreamURI(std::string name, OutputStream* outputStream);
    ~DmStreamURI() override;
    /// @}

    /// @name Streams
    /// Not owned; null for the direction the URI was not made for.
    /// @{
    InputStream* getInputStream() const noexcept { return m_inputStream; }
    OutputStream* getOutputStream() const noexcept { return m_outputStream; }
    /// @}

    /// @name Queries
    /// @{
    /// Exactly one of the two streams is set.
    bool isValid() const override;
    /// @}

private:
    DmStreamURI(DmStreamURI const& other);

    void buildStreamURIName(std::string name);

    InputStream* m_inputStream = nullptr;
    OutputStream* m_outputStream = nullptr;
};

} // namespace Kesto
