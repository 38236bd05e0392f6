#include "ulogsampleindex.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <utility>

namespace {

// FNV-1a: a repeat is confirmed by its bytes, the hash only spares reading
// back messages that differ.
quint64 hashOf(std::string_view bytes)
{
    quint64 hash = 14695981039346656037ull;
    for (const char byte : bytes) {
        hash ^= quint8(byte);
        hash *= 1099511628211ull;
    }
    return hash;
}

} // namespace

void UlogSampleIndex::expectAtMost(qint64 logSize, std::size_t payloadSize)
{
    // Each data message has a header of 3 bytes and a message id of 2.
    entries.reserve(std::size_t(logSize) / (payloadSize + 5) + 1);
}

void UlogSampleIndex::add(quint64 timestamp, qint64 offset, std::string_view payload)
{
    entries.push_back(
        {timestamp, quint64(offset) << 16 | quint64(payload.size() & 0xFFFF), hashOf(payload)});
}

bool UlogSampleIndex::order(const ReadBack &readBack,
                            const std::function<void(std::string_view)> &dropped)
{
    const auto earlier = [](const Entry &a, const Entry &b) {
        return a.timestamp != b.timestamp ? a.timestamp < b.timestamp : a.location < b.location;
    };
    if (!std::is_sorted(entries.begin(), entries.end(), earlier))
        std::sort(entries.begin(), entries.end(), earlier);
    // A repeat stands among the messages of its timestamp.
    std::vector<bool> repeat(entries.size());
    for (std::size_t from = 0; from < entries.size();) {
        std::size_t to = from + 1;
        while (to < entries.size() && entries[to].timestamp == entries[from].timestamp)
            ++to;
        if (to - from > 1 && !markRepeats(from, to, readBack, dropped, &repeat))
            return false;
        from = to;
    }
    std::size_t kept = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (!repeat[i])
            entries[kept++] = entries[i];
    }
    entries.resize(kept);
    sampleTimes.resize(kept);
    locations.resize(kept);
    for (std::size_t i = 0; i < kept; ++i) {
        sampleTimes[i] = entries[i].timestamp;
        locations[i] = entries[i].location;
    }
    entries = std::vector<Entry>();
    return true;
}

// Marks in @p repeat the entries of [@p from, @p to), all of one timestamp,
// whose bytes an earlier one of them has. Only entries of the same hash and
// size are compared, so a log of many messages at one time costs no more
// than their sorting.
bool UlogSampleIndex::markRepeats(std::size_t from, std::size_t to, const ReadBack &readBack,
                                  const std::function<void(std::string_view)> &dropped,
                                  std::vector<bool> *repeat) const
{
    const auto key = [this](std::size_t i) {
        return std::make_pair(entries[i].hash, entries[i].location & 0xFFFF);
    };
    std::vector<std::size_t> group(to - from);
    std::iota(group.begin(), group.end(), from);
    // The log's order stays among entries of one key, so the first is kept.
    std::stable_sort(group.begin(), group.end(),
                     [&key](std::size_t a, std::size_t b) { return key(a) < key(b); });
    const auto bytesAt = [&readBack](quint64 location, std::string *into) {
        into->resize(location & 0xFFFF);
        return readBack(qint64(location >> 16), into->data(), qint64(location & 0xFFFF));
    };
    std::string payload;
    std::string other;
    for (std::size_t run = 0; run < group.size();) {
        std::size_t end = run + 1;
        while (end < group.size() && key(group[end]) == key(group[run]))
            ++end;
        for (std::size_t i = run + 1; i < end; ++i) {
            if (!bytesAt(entries[group[i]].location, &payload))
                return false;
            for (std::size_t j = run; j < i; ++j) {
                if ((*repeat)[group[j]])
                    continue;
                if (!bytesAt(entries[group[j]].location, &other))
                    return false;
                if (payload == other) {
                    (*repeat)[group[i]] = true;
                    dropped(payload);
                    break;
                }
            }
        }
        run = end;
    }
    return true;
}

double UlogSampleIndex::medianStep() const
{
    if (sampleTimes.size() < 2)
        return 0.0;
    std::vector<quint64> steps(sampleTimes.size() - 1);
    for (std::size_t i = 1; i < sampleTimes.size(); ++i)
        steps[i - 1] = sampleTimes[i] - sampleTimes[i - 1];
    const std::size_t middle = steps.size() / 2;
    std::nth_element(steps.begin(), steps.begin() + std::ptrdiff_t(middle), steps.end());
    if (steps.size() % 2 == 1)
        return double(steps[middle]);
    const quint64 below = *std::max_element(steps.begin(), steps.begin() + std::ptrdiff_t(middle));
    return (double(below) + double(steps[middle])) / 2.0;
}
