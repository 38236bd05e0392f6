#pragma once

#include <QtGlobal>

/**
 * Raw receiver records as the device relays them from its GNSS receiver. The
 * members carry the raw integers of the receiver's navigation messages, with
 * the messages' field names, widths and signs; nothing is scaled. A record
 * whose time of week (iTOW) is 0 holds no data.
 */

/** Navigation solution (NAV-SOL). */
struct KvGpsSolution
{
    quint32 iTOW = 0; ///< GPS time of week, ms
    qint32 fTOW = 0; ///< remainder of the time of week, ns
    qint16 week = 0;
    quint8 gpsFix = 0;
    quint8 flags = 0;
    qint32 ecefX = 0; ///< cm
    qint32 ecefY = 0;
    qint32 ecefZ = 0;
    quint32 pAcc = 0; ///< cm
    qint32 ecefVX = 0; ///< cm/s
    qint32 ecefVY = 0;
    qint32 ecefVZ = 0;
    quint32 sAcc = 0; ///< cm/s
    quint16 pDOP = 0; ///< 0.01
    quint8 numSV = 0;
};

/** Dilution of precision (NAV-DOP), every value in units of 0.01. */
struct KvGpsDop
{
    quint32 iTOW = 0;
    quint16 gDOP = 0;
    quint16 pDOP = 0;
    quint16 tDOP = 0;
    quint16 vDOP = 0;
    quint16 hDOP = 0;
    quint16 nDOP = 0;
    quint16 eDOP = 0;
};

/** UTC time solution (NAV-TIMEUTC). */
struct KvGpsUtcTime
{
    quint32 iTOW = 0;
    quint32 tAcc = 0; ///< ns
    qint32 nano = 0; ///< ns
    quint16 year = 0;
    quint8 month = 0;
    quint8 day = 0;
    quint8 hour = 0;
    quint8 min = 0;
    quint8 sec = 0;
    quint8 valid = 0;
};

/** One channel of the satellite information (NAV-SVINFO). */
struct KvGpsChannel
{
    quint8 svid = 0;
    quint8 quality = 0;
};

/** Satellite information (NAV-SVINFO): at most maxChannels channels. */
struct KvGpsSatelliteInfo
{
    static constexpr int maxChannels = 16;

    quint32 iTOW = 0;
    quint8 numCh = 0; ///< channels in use, may exceed maxChannels
    KvGpsChannel channels[maxChannels];
};

/** Position, velocity and time (NAV-PVT) with the dilution values of NAV-DOP. */
struct KvGnssPvt
{
    quint32 iTOW = 0;
    quint16 year = 0;
    quint8 month = 0;
    quint8 day = 0;
    quint8 hour = 0;
    quint8 min = 0;
    quint8 sec = 0;
    quint8 valid = 0;
    quint32 tAcc = 0; ///< ns
    qint32 nano = 0; ///< ns
    quint8 fixType = 0;
    quint8 flags = 0;
    quint8 numSV = 0;
    qint32 lon = 0; ///< 1e-7 deg
    qint32 lat = 0; ///< 1e-7 deg
    qint32 height = 0; ///< mm
    qint32 hMSL = 0; ///< mm
    quint32 hAcc = 0; ///< mm
    quint32 vAcc = 0; ///< mm
    qint32 velN = 0; ///< mm/s
    qint32 velE = 0;
    qint32 velD = 0;
    qint32 gSpeed = 0; ///< mm/s
    qint32 headMot = 0; ///< 1e-5 deg
    quint32 sAcc = 0; ///< mm/s
    quint32 headAcc = 0; ///< 1e-5 deg
    qint32 headVeh = 0; ///< 1e-5 deg
    quint16 gDOP = 0; ///< 0.01
    quint16 pDOP = 0;
    quint16 tDOP = 0;
    quint16 vDOP = 0;
    quint16 hDOP = 0;
    quint16 nDOP = 0;
    quint16 eDOP = 0;
};

/** One satellite of NAV-SAT. */
struct KvGnssSatellite
{
    quint8 gnssId = 0;
    quint8 svId = 0;
    quint8 cno = 0; ///< dBHz
    quint32 flags = 0;
};

/** Satellite information (NAV-SAT): at most maxSatellites satellites. */
struct KvGnssSatelliteInfo
{
    static constexpr int maxSatellites = 60;

    quint32 iTOW = 0;
    quint8 numSvs = 0; ///< satellites reported, may exceed maxSatellites
    KvGnssSatellite satellites[maxSatellites];
};
