#pragma once

#include <QtGlobal>

#include <vector>

/**
 * The messages that give one key of the recording its values, from a topic
 * slower than the IMU: each message's time (µs) and its few values. Such
 * topics hold far fewer messages than the IMU, so they are kept whole.
 */
class UlogSeries
{
public:
    /** A series of @p width values a message (1 to 4). */
    explicit UlogSeries(int width = 1);

    void append(quint64 time, const double *values);

    /**
     * Sorts the messages by time, those of the same time in the order
     * appended, and drops exact repeats: a message of the same time and
     * values as one before it. Returns the repeats dropped.
     */
    qint64 order();

    int width() const { return valueCount; }
    std::size_t size() const { return messageTimes.size(); }
    bool empty() const { return messageTimes.empty(); }
    /** The times, ascending once ordered. */
    const std::vector<quint64> &times() const { return messageTimes; }
    const double *values(std::size_t index) const
    {
        return messageValues.data() + index * std::size_t(valueCount);
    }

private:
    bool sameMessage(std::size_t a, std::size_t b) const;

    int valueCount;
    std::vector<quint64> messageTimes;
    std::vector<double> messageValues;
};
