#pragma once

#include <kvreceiverrecords.h>

/**
 * Gives @p pvt the seven dilutions of precision of @p dop: a receiver's
 * NAV-PVT carries those of the same epoch's NAV-DOP.
 */
inline void copyDilutions(const KvGpsDop &dop, KvGnssPvt &pvt)
{
    pvt.gDOP = dop.gDOP;
    pvt.pDOP = dop.pDOP;
    pvt.tDOP = dop.tDOP;
    pvt.vDOP = dop.vDOP;
    pvt.hDOP = dop.hDOP;
    pvt.nDOP = dop.nDOP;
    pvt.eDOP = dop.eDOP;
}
