#include "rowwriter.h"

#include "columncatalogue.h"
#include "settingkeys.h"

#include <settingssynchronizer.h>

#include <QTextStream>

RowWriter::RowWriter(const ExportSource *source, SettingsSynchronizer *settings,
                     const DelimiterHandle &delimiter, const DelimiterHandle &emptyFieldText)
    : sampleSource(source)
    , settings(settings)
    , highPrecisionKey(QLatin1String(SettingKeys::highPrecision))
    , buffer(delimiter, emptyFieldText)
{
    if (!buffer.delimiterText().isEmpty())
        delimiterStart = buffer.delimiterText().at(0);
    for (const ColumnCatalogue::DataGroup &group : ColumnCatalogue::groups())
        groupKeys.append(QLatin1String(group.settingKey));
}

void RowWriter::writeColumnHeader(QTextStream &out)
{
    using namespace ColumnCatalogue;

    buffer.clear();
    const DataGroup *group = groups().begin();
    for (const QString &key : qAsConst(groupKeys)) {
        for (const Fields &fields : selectedFields(*group++, settings->setting(key))) {
            for (const char *name : fields.names)
                buffer.field(QLatin1String(name));
            for (int index = 0; index < fields.block.repeat; ++index) {
                for (const char *format : fields.block.formats)
                    buffer.field(QString::asprintf(format, index));
            }
        }
    }
    trimTrailingDelimiter(buffer.line());
    out << buffer.line();
}

bool RowWriter::writeSampleRow(QTextStream &out)
{
    using namespace ColumnCatalogue;

    buffer.clear();
    // Only sensor data makes a line: counters, time, status, clipping and
    // RSSI alone do not.
    bool hasData = false;
    const DataGroup *group = groups().begin();
    for (const QString &key : qAsConst(groupKeys)) {
        for (const Fields &fields : selectedFields(*group++, settings->setting(key)))
            hasData |= fields.write(*this, fields);
    }
    if (!hasData)
        return false;
    trimTrailingDelimiter(buffer.line());
    out << buffer.line();
    return true;
}

void RowWriter::formatValue(double value, Precision precision)
{
    // The store usually holds no value for the key: an invalid variant,
    // which reads as false without the cost of converting it.
    const QVariant highPrecision = settings->setting(highPrecisionKey);
    if (highPrecision.isValid() && highPrecision.toBool()) {
        buffer.general(value, 18);
        return;
    }
    buffer.fixed(value, precision == Geographic ? 9 : precision == Coarse ? 4 : 6);
}

// Removes one character, the delimiter's first, from the end of the line. A
// delimiter of several characters is thus only removed in part, or not at
// all when its first and last characters differ; files written so far look
// like this and readers rely on it.
void RowWriter::trimTrailingDelimiter(QString &line) const
{
    if (line.endsWith(delimiterStart))
        line.chop(1);
}
