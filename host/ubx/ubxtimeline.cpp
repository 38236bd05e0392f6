#include "ubxtimeline.h"

namespace {

constexpr qint64 halfWeek = UbxTimeline::msPerWeek / 2;

// Rounds toward minus infinity, for times before week 0 too.
qint64 floorDivide(qint64 value, qint64 divisor)
{
    const qint64 quotient = value / divisor;
    return quotient * divisor > value ? quotient - 1 : quotient;
}

// Days from 1970-01-01 to a date of the proleptic Gregorian calendar.
qint64 daysFromCivil(qint64 year, int month, int day)
{
    year -= month <= 2 ? 1 : 0;
    const qint64 era = floorDivide(year, 400);
    const qint64 yearOfEra = year - era * 400;
    const qint64 dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const qint64 dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

} // namespace

qint64 UbxTimeline::place(quint32 iTOW, std::optional<qint32> shown, qint64 *shift)
{
    *shift = 0;
    if (started) {
        const qint64 step = qint64(iTOW) - qint64(previous);
        if (step < -halfWeek)
            ++week;
        else if (step > halfWeek)
            --week;
    }
    started = true;
    previous = iTOW;
    if (shown) {
        if (!weekShown)
            *shift = (*shown - week) * msPerWeek;
        week = *shown;
        weekShown = true;
    }
    return week * msPerWeek + iTOW;
}

bool UbxTimeline::knowsWeek() const
{
    return weekShown;
}

qint64 UbxTimeline::weekOf(qint64 time)
{
    return floorDivide(time, msPerWeek);
}

qint64 UbxTimeline::timeOfWeekOf(qint64 time)
{
    return time - weekOf(time) * msPerWeek;
}

qint32 UbxTimeline::weekOfDate(int year, int month, int day, int hour, int minute, int second,
                               quint32 iTOW)
{
    // GPS time starts on 1980-01-06.
    const qint64 days = daysFromCivil(year, month, day) - daysFromCivil(1980, 1, 6);
    const qint64 utc = ((days * 24 + hour) * 60 + minute) * 60000 + qint64(second) * 1000;
    return qint32(floorDivide(utc - qint64(iTOW) + halfWeek, msPerWeek));
}
