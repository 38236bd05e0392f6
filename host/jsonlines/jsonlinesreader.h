#pragma once

#include "jsontape.h"
#include "linereader.h"
#include "recordingfilereader.h"
#include "samplereader.h"

#include <QCoreApplication>
#include <QString>

#include <memory>
#include <string_view>

/**
 * Reads a recording in the JSON Lines format, one sample at a time.
 *
 * The first non-empty line is the recording object ("properties" and
 * "updateRate"); every further non-empty line is one sample. Only the current
 * sample is held, so memory does not grow with the length of the recording.
 * Besides standard JSON the bare literals NaN, Infinity and -Infinity are
 * accepted as numbers. Every number is read to the nearest double, or to its
 * exact value where the format wants an integer.
 *
 * A bad line stops the reading: errorString() then reads
 * "FILE:LINE: what is wrong". A bad sample line can be passed over with
 * skipBadLine(). The texts of the properties that the exported file's
 * comment lines show (StartTime, FilterProfile, FilterProfileVersion,
 * FilterProfileType, OptionFlags, FirmwareVersion) hold no line break and no
 * NUL; any other property keeps any text.
 */
class JsonLinesReader : public RecordingFileReader
{
    Q_DECLARE_TR_FUNCTIONS(JsonLinesReader)

public:
    using RecordingFileReader::open;
    /** Reads the recording object from @p device; see RecordingFileReader::open(). */
    bool open(QIODevice *device, const QString &name) override;
    /**
     * Moves to the next sample. Returns false at the end of the file and on a
     * bad line; hasError() tells the two apart.
     */
    bool readNext() override;

    bool hasBadLine() const override;
    void skipBadLine() override;

    /** How far reading has come into the recording, in bytes; for progress. */
    qint64 position() const override;
    /** The size of the recording in bytes; 0 when it is not known, as for a pipe. */
    qint64 size() const override;

protected:
    void reset(const QString &name) override;

private:
    bool nextContentLine();
    bool readRecordingObject();
    bool readProperties(JsonTape::Value object);
    bool readProperty(JsonTape::Member property, const QString &key);
    bool parseLine();
    bool fail(const QString &what);

    QIODevice *device = nullptr;
    std::unique_ptr<LineReader> lines;
    // The current line.
    std::string_view text;
    JsonTape tape;
    SampleReader sampleReader;
    bool badLine = false;
};
