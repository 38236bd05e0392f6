#pragma once

#include "recordingsample.h"

#include <QString>

#include <optional>
#include <vector>

/**
 * UTC from the log's clock: the median of the offsets of UTC from the log's
 * clock that the GPS messages show, added to a timestamp.
 */
class UlogClock
{
public:
    /** @p offsets: time_utc_usec - timestamp, µs, of each GPS message with a fix; none for no UTC.
     */
    explicit UlogClock(std::vector<qint64> offsets = {});

    /**
     * The median of @p offsets: the middle one, or for an even count the mean
     * of the two middle ones, truncated toward zero to whole µs.
     */
    static std::optional<qint64> median(std::vector<qint64> offsets);

    bool knowsUtc() const { return offset.has_value(); }
    /** Sets @p sample's utcTime and sampleDateTime for @p timestamp; nothing without UTC. */
    void fill(quint64 timestamp, RecordingSample &sample) const;
    /** "yyyy-MM-dd hh:mm:ss" at @p timestamp, UTC; "0" without UTC. */
    QString dateTimeText(quint64 timestamp) const;

private:
    std::optional<qint64> offset;
};
