#include <KestoDM/graph/DmSelector.h>

namespace Kesto {

// Out of line so that the class has one home for its virtual table.
DmSelector::~DmSelector() = default;

} // namespace Kesto
