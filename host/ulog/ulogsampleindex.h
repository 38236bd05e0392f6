#pragma once

#include <QtGlobal>

#include <functional>
#include <string_view>
#include <vector>

/**
 * The IMU's messages as the first pass over a log finds them: per message
 * its timestamp, where its payload lies and a hash of the payload, 24 bytes;
 * once ordered, 16 bytes a sample. The payloads themselves are read back
 * when each sample is read.
 */
class UlogSampleIndex
{
public:
    /** Reads @p size bytes at @p offset of the log; false when it cannot. */
    using ReadBack = std::function<bool(qint64 offset, char *into, qint64 size)>;

    /**
     * Makes room for as many samples as a log of @p logSize bytes could
     * hold: the room is only address space until samples fill it, and the
     * entries are not copied again and again as they grow.
     */
    void expectAtMost(qint64 logSize, std::size_t payloadSize);
    void add(quint64 timestamp, qint64 offset, std::string_view payload);

    /**
     * Sorts the samples by timestamp, those of the same timestamp in the
     * log's order, and drops exact repeats (the same bytes), which are read
     * back to compare. @p dropped is called with each repeat's payload.
     * False when a payload cannot be read back.
     */
    bool order(const ReadBack &readBack, const std::function<void(std::string_view)> &dropped);

    /** Whether no message was added, or none kept once ordered. */
    bool empty() const { return entries.empty() && sampleTimes.empty(); }
    // Once ordered:
    std::size_t size() const { return sampleTimes.size(); }
    const std::vector<quint64> &times() const { return sampleTimes; }
    qint64 offset(std::size_t sample) const { return qint64(locations[sample] >> 16); }
    int payloadSize(std::size_t sample) const { return int(locations[sample] & 0xFFFF); }
    /** The median step between samples, µs; 0 for fewer than two. */
    double medianStep() const;

private:
    struct Entry
    {
        quint64 timestamp;
        // The payload's offset in the upper 48 bits, its size in the lower 16.
        quint64 location;
        quint64 hash;
    };

    bool markRepeats(std::size_t from, std::size_t to, const ReadBack &readBack,
                     const std::function<void(std::string_view)> &dropped,
                     std::vector<bool> *repeat) const;

    std::vector<Entry> entries;
    std::vector<quint64> sampleTimes;
    std::vector<quint64> locations;
};
