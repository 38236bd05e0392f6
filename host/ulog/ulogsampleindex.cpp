#include "ulogsampleindex.h"

#include <algorithm>
#include <string>

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
    std::size_t kept = 0;
    std::size_t sameTimeFrom = 0;
    std::string payload;
    bool failed = false;
    for (const Entry &entry : entries) {
        if (kept == 0 || entries[kept - 1].timestamp != entry.timestamp)
            sameTimeFrom = kept;
        if (isRepeat(entry, sameTimeFrom, kept, readBack, &payload, &failed)) {
            dropped(payload);
            continue;
        }
        if (failed)
            return false;
        entries[kept++] = entry;
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

// Whether @p entry repeats one kept before it of the same timestamp: the
// same size and hash, and then the same bytes. @p payload gets its bytes.
bool UlogSampleIndex::isRepeat(const Entry &entry, std::size_t sameTimeFrom, std::size_t kept,
                               const ReadBack &readBack, std::string *payload, bool *failed) const
{
    const auto bytesAt = [&](quint64 location, std::string *into) {
        into->resize(location & 0xFFFF);
        *failed =
            *failed || !readBack(qint64(location >> 16), into->data(), qint64(location & 0xFFFF));
        return !*failed;
    };
    std::string other;
    payload->clear();
    for (std::size_t i = sameTimeFrom; i < kept; ++i) {
        const Entry &before = entries[i];
        if (before.hash != entry.hash || (before.location & 0xFFFF) != (entry.location & 0xFFFF))
            continue;
        if ((payload->empty() && !bytesAt(entry.location, payload))
            || !bytesAt(before.location, &other))
            return false;
        if (*payload == other)
            return true;
    }
    return false;
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
