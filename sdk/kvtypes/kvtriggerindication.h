#pragma once

#include <QtGlobal>

/**
 * A trigger indication as the device reports it on one of its trigger inputs.
 * A default-made indication is invalid: the sample holds no trigger.
 */
struct KvTriggerIndication
{
    /** The data identifiers of the two trigger inputs, as ExportSource::triggerIndication() takes
     * them. */
    static constexpr quint32 triggerIn1Id = 0x4810;
    static constexpr quint32 triggerIn2Id = 0x4820;

    quint8 line = 0;
    quint8 polarity = 0;
    quint32 timestamp = 0;
    quint16 frameNumber = 0;
    bool valid = false;

    /** True when the sample holds this trigger. */
    bool isValid() const { return valid; }
};
