#include "ulogseries.h"

#include <algorithm>
#include <cstring>
#include <numeric>

UlogSeries::UlogSeries(int width)
    : valueCount(width)
{ }

void UlogSeries::append(quint64 time, const double *values)
{
    messageTimes.push_back(time);
    messageValues.insert(messageValues.end(), values, values + valueCount);
}

qint64 UlogSeries::order()
{
    if (!std::is_sorted(messageTimes.begin(), messageTimes.end())) {
        std::vector<std::size_t> order(messageTimes.size());
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
            return messageTimes[a] < messageTimes[b];
        });
        std::vector<quint64> times(order.size());
        std::vector<double> values(messageValues.size());
        for (std::size_t i = 0; i < order.size(); ++i) {
            times[i] = messageTimes[order[i]];
            std::copy_n(this->values(order[i]), valueCount,
                        values.begin() + std::ptrdiff_t(i * std::size_t(valueCount)));
        }
        messageTimes.swap(times);
        messageValues.swap(values);
    }
    // A repeat stands among the messages of its time, which are few.
    std::size_t kept = 0;
    std::size_t sameTimeFrom = 0;
    for (std::size_t i = 0; i < messageTimes.size(); ++i) {
        if (kept == 0 || messageTimes[kept - 1] != messageTimes[i])
            sameTimeFrom = kept;
        bool repeat = false;
        for (std::size_t j = sameTimeFrom; j < kept && !repeat; ++j)
            repeat = sameMessage(j, i);
        if (repeat)
            continue;
        messageTimes[kept] = messageTimes[i];
        std::copy_n(values(i), valueCount,
                    messageValues.begin() + std::ptrdiff_t(kept * std::size_t(valueCount)));
        ++kept;
    }
    const qint64 dropped = qint64(messageTimes.size() - kept);
    // The room the repeats leave stays: copying a series to give it back
    // would cost more than it saves.
    messageTimes.resize(kept);
    messageValues.resize(kept * std::size_t(valueCount));
    return dropped;
}

// The same bits, as the same bytes in the log give them.
bool UlogSeries::sameMessage(std::size_t a, std::size_t b) const
{
    return messageTimes[a] == messageTimes[b]
        && std::memcmp(values(a), values(b), sizeof(double) * std::size_t(valueCount)) == 0;
}
