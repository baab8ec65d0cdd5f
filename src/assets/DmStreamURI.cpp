#include <KestoDM/assets/DmStreamURI.h>

#include <KestoDM/assets/DmURIParser.h>

#include <string_view>
#include <utility>

namespace Kesto {

DmStreamURI::DmStreamURI(std::string name, InputStream* inputStream)
    : DmURI(std::string()), m_inputStream(inputStream) {
    buildStreamURIName(std::move(name));
}

DmStreamURI::DmStreamURI(std::string name, OutputStream* outputStream)
    : DmURI(std::string()), m_outputStream(outputStream) {
    buildStreamURIName(std::move(name));
}

DmStreamURI::DmStreamURI(DmStreamURI const& other)
    : DmURI(other), DmInstanceCounter<DmStreamURI>(other), m_inputStream(other.m_inputStream),
      m_outputStream(other.m_outputStream) {}

DmStreamURI::~DmStreamURI() = default;

bool DmStreamURI::isValid() const {
    // A stream URI reads or writes, never both and never neither.
    return DmURI::isValid() && ((m_inputStream != nullptr) != (m_outputStream != nullptr));
}

void DmStreamURI::buildStreamURIName(std::string name) {
    std::string_view const prefix = DmURIParser::kStreamSchemeLongForm;
    if (std::string_view(name).substr(0, prefix.size()) != prefix)
        name.insert(0, prefix.data(), prefix.size());
    setName(std::move(name));
}

} // namespace Kesto
