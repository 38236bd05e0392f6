#pragma once

#include "columncatalogue.h"
#include "delimiterhandle.h"

#include <abstractexporter.h>

#include <QString>

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
    QString formatValue(double value, int precision) const;
    bool writeOrientation(QTextStream &row, ColumnCatalogue::OrientationFormat format);
    bool writeTrigger(QTextStream &row, quint32 dataId);

    QString gpsSolutionFields(const KvGpsSolution &record) const;
    QString gpsDopFields(const KvGpsDop &record) const;
    QString gpsUtcTimeFields(const KvGpsUtcTime &record) const;
    QString gpsSatelliteFields(const KvGpsSatelliteInfo &record) const;
    QString gnssPvtFields(const KvGnssPvt &record) const;
    QString gnssSatelliteFields(const KvGnssSatelliteInfo &record) const;

    void writeField(QTextStream &row, const QString &text) const;
    void writeEmptyFields(QTextStream &row, int count) const;
    bool writeValues(QTextStream &row, const KvVector &vector, int count, int precision) const;
    bool writeTruncated(QTextStream &row, const KvVector &vector) const;

    ExportSource *source;
    SettingsSynchronizer *settings;
    QTextStream *stream = nullptr;
    DelimiterHandle delimiter;
    DelimiterHandle emptyFieldText;
};
