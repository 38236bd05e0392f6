#pragma once

#include <QMap>
#include <QSet>
#include <QtGlobal>

/** What a UBX log holds, as its reader found it. */
struct UbxLogStatistics
{
    qint64 bytes = 0;
    qint64 frames = 0;
    /** Bytes inside the frames taken; every other byte was passed over. */
    qint64 frameBytes = 0;
    qint64 badChecksums = 0;
    /** Frames whose length ran past the end of the log. */
    qint64 cutFrames = 0;
    /** Frames of each message (class and id), good frames only. */
    QMap<quint16, qint64> messages;
    /** Messages of a kind that is read, but whose length does not fit it; not used. */
    qint64 wrongLengths = 0;
    /** Navigation messages that came again in an epoch; the first one counts. */
    qint64 repeated = 0;
    /** Navigation messages at time of week 0, whose records count as holding no data. */
    qint64 atTimeOfWeekZero = 0;
    qint64 epochs = 0;
    /** GPS time of the first and the last epoch, in ms from the start of week 0. */
    qint64 firstTime = 0;
    qint64 lastTime = 0;
    /** Whether the log showed its week; without, weeks count from 0 at its start. */
    bool weekKnown = false;
    /** Satellites named by NAV-SVINFO (svid) and by NAV-SAT (gnssId << 8 | svId). */
    QSet<quint8> gpsSatellites;
    QSet<quint16> gnssSatellites;

    qint64 skippedBytes() const { return bytes - frameBytes; }
    /** Good frames of navigation messages that no sample takes. */
    qint64 messagesPassedOver() const { return wrongLengths + repeated + atTimeOfWeekZero; }
};
