#include "ulogclock.h"

#include <algorithm>

namespace {

constexpr qint64 usPerSecond = 1000000;

// Floor division: a time before 1970 still falls into its own second.
qint64 floorDivide(qint64 value, qint64 by)
{
    const qint64 quotient = value / by;
    return (value % by != 0 && value < 0) ? quotient - 1 : quotient;
}

} // namespace

UlogClock::UlogClock(std::vector<qint64> offsets)
    : offset(median(std::move(offsets)))
{ }

std::optional<qint64> UlogClock::median(std::vector<qint64> offsets)
{
    if (offsets.empty())
        return std::nullopt;
    const std::size_t middle = offsets.size() / 2;
    std::nth_element(offsets.begin(), offsets.begin() + std::ptrdiff_t(middle), offsets.end());
    if (offsets.size() % 2 == 1)
        return offsets[middle];
    const qint64 below =
        *std::max_element(offsets.begin(), offsets.begin() + std::ptrdiff_t(middle));
    const qint64 above = offsets[middle];
    // / truncates toward zero. Values of one sign are halved first, so
    // that their sum cannot overflow.
    if ((below < 0) != (above < 0))
        return (below + above) / 2;
    return below / 2 + above / 2 + (below % 2 + above % 2) / 2;
}

void UlogClock::fill(quint64 timestamp, RecordingSample &sample) const
{
    if (!offset)
        return;
    const qint64 us = qint64(timestamp) + *offset;
    const qint64 second = floorDivide(us, usPerSecond);
    const qint64 usInSecond = us - second * usPerSecond;
    const QDateTime at = QDateTime::fromMSecsSinceEpoch(second * 1000 + usInSecond / 1000, Qt::UTC);
    sample.sampleDateTime = at;
    const QDate date = at.date();
    const QTime time = at.time();
    sample.utcTime.nano = quint32(usInSecond * 1000);
    sample.utcTime.year = quint16(date.year());
    sample.utcTime.month = quint8(date.month());
    sample.utcTime.day = quint8(date.day());
    sample.utcTime.hour = quint8(time.hour());
    sample.utcTime.minute = quint8(time.minute());
    sample.utcTime.second = quint8(time.second());
    sample.utcTime.valid = 0x07;
}

QString UlogClock::dateTimeText(quint64 timestamp) const
{
    if (!offset)
        return QStringLiteral("0");
    RecordingSample sample;
    fill(timestamp, sample);
    const KvUtcTime &utc = sample.utcTime;
    return QString::asprintf("%04d-%02d-%02d %02d:%02d:%02d", utc.year, utc.month, utc.day,
                             utc.hour, utc.minute, utc.second);
}
