#pragma once

#include <QtGlobal>

#include <cstring>

/**
 * The device's 12-byte UTC time record, packed as the device sends it.
 */
#pragma pack(push, 1)
struct KvUtcTime
{
    quint32 nano = 0;
    quint16 year = 0;
    quint8 month = 0;
    quint8 day = 0;
    quint8 hour = 0;
    quint8 minute = 0;
    quint8 second = 0;
    quint8 valid = 0;

    /** True when all twelve bytes are zero: the sample holds no UTC time. */
    bool isZero() const
    {
        static const KvUtcTime zero;
        return std::memcmp(this, &zero, sizeof zero) == 0;
    }
};
#pragma pack(pop)

static_assert(sizeof(KvUtcTime) == 12, "the UTC time record is twelve bytes");
