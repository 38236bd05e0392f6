#pragma once

#include "jsontape.h"
#include "recordingsample.h"
#include "tapefieldreader.h"

#include <QCoreApplication>
#include <QStringList>

#include <array>
#include <memory>

/**
 * Reads sample lines into a RecordingSample, key by key, following the
 * format's table of sample keys. Keys the format does not know are ignored;
 * a known key given twice in one object is an error.
 *
 * A line is read one of two ways, with the same table: fast, by simdjson's
 * on-demand parser, which takes every line it can read with certainty; or
 * carefully, from a JsonTape, which takes every line and says what is wrong
 * with a bad one.
 *
 * Keys the line holds overwrite the sample's data, the others set it to
 * "missing". The sample must be the same object from line to line: it is
 * the sample of the line before, whose storage is then used again.
 */
class SampleReader
{
    Q_DECLARE_TR_FUNCTIONS(SampleReader)

public:
    /** Bytes that must be readable after the end of a line given to readFast(). */
    static constexpr std::size_t padding = 64;
    /**
     * The longest line readFast() takes. simdjson reads a number of many
     * digits its slow way, which reads an exponent of 655,360 or more as
     * about 65,536: only a number whose digits move its point by some 65,000
     * places comes out wrong by that ("0." 655,359 zeros "1e655360" as 0,
     * not 1), and no line shorter than this holds one.
     */
    static constexpr std::size_t longestFastLine = 60000;

    SampleReader();
    ~SampleReader();

    /** The keys a sample line may hold, in the order of the format's table. */
    static QStringList keys();

    /**
     * Reads the line @p text of @p length bytes, followed by at least
     * `padding` readable bytes. Returns false when the line is not one it can
     * take with certainty, or is longer than `longestFastLine`; @p sample
     * then holds a mix of old and new data, and the line must be read with
     * read().
     */
    bool readFast(const char *text, std::size_t length, RecordingSample &sample);

    /**
     * Reads the sample object @p object. On failure returns false;
     * errorString() says what is wrong.
     */
    bool read(const JsonTape::Value &object, RecordingSample &sample);

    QString errorString() const { return tapeFields.errorString(); }

    /** The index of the key at each member position of the line before. */
    using KeyOrder = std::array<quint8, 64>;

private:
    struct OnDemand;

    std::unique_ptr<OnDemand> onDemand;
    TapeFieldReader tapeFields;
    // The keys whose data the sample may hold, one bit each: the others
    // need no reset.
    quint64 heldKeys;
    KeyOrder keyOrder = {};
};
