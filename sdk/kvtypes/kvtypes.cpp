#include "kvconstants.h"

#include <limits>

namespace KvConstants {

const double zero = 0.0;
const double infinity = std::numeric_limits<double>::infinity();

} // namespace KvConstants
