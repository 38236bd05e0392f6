#pragma once

#include "delimiterhandle.h"
#include "rowbuffer.h"

#include <QChar>
#include <QString>
#include <QVector>

class ExportSource;
class QTextStream;
class SettingsSynchronizer;

/**
 * Writes the column-header line and the sample rows by walking the column
 * catalogue: for every group whose setting is on, its names, or the fields
 * its writers make of the source's current sample.
 *
 * Which groups are written is read from the settings for every line; the
 * delimiters are fixed when the writer is made.
 */
class RowWriter
{
public:
    /** Precision classes of formatValue(). */
    enum Precision { Ordinary, Geographic, Coarse };

    RowWriter(const ExportSource *source, SettingsSynchronizer *settings,
              const DelimiterHandle &delimiter, const DelimiterHandle &emptyFieldText);

    RowWriter(const RowWriter &) = delete;
    RowWriter &operator=(const RowWriter &) = delete;

    /** Writes the line of column names, without a line end. */
    void writeColumnHeader(QTextStream &out);
    /**
     * Writes the line of the source's current sample, without a line end,
     * and answers true; answers false and writes nothing for a sample
     * without sensor data.
     */
    bool writeSampleRow(QTextStream &out);

    // What the catalogue's writers build the line with.
    const ExportSource &source() const { return *sampleSource; }
    RowBuffer &row() { return buffer; }
    /** Writes @p value as the settings ask: fixed by precision class, or in high precision. */
    void formatValue(double value, Precision precision);

private:
    void trimTrailingDelimiter(QString &line) const;

    const ExportSource *sampleSource;
    SettingsSynchronizer *settings;

    // Made once, as the delimiters are: the setting keys read for every line
    // and every value (the store answers repeated keys fastest), the buffer
    // the lines are built in, and the character trimTrailingDelimiter()
    // looks for (none for an empty delimiter).
    QVector<QString> groupKeys;
    const QString highPrecisionKey;
    RowBuffer buffer;
    QChar delimiterStart = QChar::Null;
};
