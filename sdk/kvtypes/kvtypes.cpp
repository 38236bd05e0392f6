#include "kvconstants.h"

#include <limits>

namespace KvConstants {

const double infinity = std::numeric_limits<double>::infinity();

} // namespace KvConstants
