#pragma once

#include "kvtypes_global.h"

/**
 * Named values that the type library uses to mark data, shared by every module
 * that exchanges samples with the host.
 */
namespace KvConstants {

/** Positive infinity: the value of a quantity the sample does not hold (altitude). */
KVTYPES_EXPORT extern const double infinity;

} // namespace KvConstants
