#pragma once

#include "delimiterhandle.h"
#include "rowwriter.h"

#include <abstractexporter.h>

#include <QString>

class ExportSource;
class QFileDevice;
class QTextStream;
class SettingsSynchronizer;

/**
 * Exports one recording as delimited text: a block of "//" comment lines that
 * describes the recording (HeaderBlock), a line of column names, and one line
 * per sample (RowWriter).
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
    ExportSource *source;
    SettingsSynchronizer *settings;
    QTextStream *stream = nullptr;
    DelimiterHandle delimiter;
    DelimiterHandle emptyFieldText;
    RowWriter rows;
};
