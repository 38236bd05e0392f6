#pragma once

#include "kvtypes_global.h"

/**
 * Named values that the type library uses to mark data, shared by every module
 * that exchanges samples with the host.
 */
namespace KvConstants {

/** Zero, as the library compares against it. */
KVTYPES_EXPORT extern const double zero;

/** Positive infinity: the value of a quantity the sample does not hold (altitude). */
KVTYPES_EXPORT extern const double infinity;

} // namespace KvConstants
