#pragma once

#include <QtGlobal>

#include <optional>

/**
 * Places the navigation messages of a UBX log on GPS time: the week and the
 * time of week (iTOW), as milliseconds from the start of GPS week 0.
 *
 * A message carries its iTOW only, which starts again at 0 every week. Its
 * week is the last one the stream has shown (NAV-SOL's week, or the week of
 * a NAV-PVT or NAV-TIMEUTC date that its flags call valid), carried from one
 * message to the next across a wrap: an iTOW more than half a week behind
 * the previous message's belongs to the next week, one more than half a
 * week ahead to the previous week.
 *
 * Until the stream shows a week, weeks are counted from 0; the first week
 * shown moves every time given before it (see place()).
 */
class UbxTimeline
{
public:
    static constexpr qint64 msPerWeek = 7 * 24 * 3600 * 1000LL;

    /**
     * The time of the next message, whose time of week is @p iTOW and which
     * shows @p week, if any. @p shift is set to what the times given so far
     * must be moved by: not 0 only when this message is the first to show a
     * week.
     */
    qint64 place(quint32 iTOW, std::optional<qint32> week, qint64 *shift);

    /** Whether the stream has shown a week, so that the times are GPS times. */
    bool knowsWeek() const;

    /** The week of @p time, and its time of week. */
    static qint64 weekOf(qint64 time);
    static qint64 timeOfWeekOf(qint64 time);

    /**
     * The GPS week that puts the UTC date and time given nearest to @p iTOW.
     * UTC runs behind GPS time by the leap seconds, far less than the half
     * week that would matter.
     */
    static qint32 weekOfDate(int year, int month, int day, int hour, int minute, int second,
                             quint32 iTOW);

private:
    qint64 week = 0;
    quint32 previous = 0;
    bool started = false;
    bool weekShown = false;
};
