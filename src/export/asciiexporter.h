#pragma once

#include "columncatalogue.h"
#include "delimiterhandle.h"
#include "rowbuffer.h"

#include <abstractexporter.h>

#include <QString>
#include <QVector>

class ExportSource;
class KvVector;
class QFileDevice;
class QTextStream;
class SettingsSynchronizer;
struct KvGnssPvt;
struct KvGnssSatelliteInfo;
struct KvGpsDop;
struct KvGpsSatelliteInfo;
struct KvGpsSolution;
struct KvGpsUtcTime;

/**
 * Exports one recording as delimited text: a block of "//" comment lines that
 * describes the recording, a line of column names, and one line per sample.
 *
 * The field delimiter and the empty-field text are fixed when the exporter is
 * made; which data groups are written is read from the settings for every
 * sample.
 */
class AsciiExporter : public AbstractExporter
{
    Q_OBJECT

public:
    AsciiExporter(ExportSource *source, SettingsSynchronizer *settings, QObject *parent = nullptr);
    ~AsciiExporter() override;

    bool start(QFileDevice *device) override;
    bool writeSample() override;
    bool finish() override;
    QString name() const override;

private:
    /** Precision classes of formatValue(). */
    enum Precision { Ordinary = 0, Geographic = 1, Coarse = 2 };

    void writeHeaderBlock(QTextStream &out);
    void writeColumnHeader(QTextStream &out);
    void trimTrailingDelimiter(QString &line) const;
    bool writeSampleRow(QTextStream &out);
    /** Writes @p value as the settings ask: fixed by precision class, or in high precision. */
    void formatValue(RowBuffer &row, double value, int precision) const;
    bool writeOrientation(RowBuffer &row, ColumnCatalogue::OrientationFormat format);
    bool writeTrigger(RowBuffer &row, quint32 dataId);

    void writeGpsSolution(RowBuffer &row, const KvGpsSolution &record) const;
    void writeGpsDop(RowBuffer &row, const KvGpsDop &record) const;
    void writeGpsUtcTime(RowBuffer &row, const KvGpsUtcTime &record) const;
    void writeGpsSatellites(RowBuffer &row, const KvGpsSatelliteInfo &record) const;
    void writeGnssPvt(RowBuffer &row, const KvGnssPvt &record) const;
    void writeGnssSatellites(RowBuffer &row, const KvGnssSatelliteInfo &record) const;

    bool writeValues(RowBuffer &row, const KvVector &vector, int count, int precision) const;
    bool writeTruncated(RowBuffer &row, const KvVector &vector) const;

    ExportSource *source;
    SettingsSynchronizer *settings;
    QTextStream *stream = nullptr;
    DelimiterHandle delimiter;
    DelimiterHandle emptyFieldText;

    // Made once, as the delimiters are: the setting key of every group in
    // catalogue order, the character trimTrailingDelimiter() looks for, and
    // the buffer the rows are built in.
    QVector<QString> groupKeys;
    QChar delimiterStart;
    RowBuffer row;
};
