#include <KestoDM/types/DmMangledName.h>

namespace Kesto {

DmMangledName::DmMangledName(std::string microsoft, std::string itanium)
    : m_names{std::move(microsoft), std::move(itanium)} {}

} // namespace Kesto
