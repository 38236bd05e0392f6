#include "headerblock.h"

#include <exportsource.h>

#include <QTextStream>

void HeaderBlock::write(QTextStream &out, const ExportSource &source)
{
    out << tr("// Start Time: ");
    if (source.property(QStringLiteral("StartTime")).toString() != QLatin1String("0"))
        out << QStringLiteral("%1\n").arg(source.property(QStringLiteral("StartTime")).toString());
    else
        out << QStringLiteral("Unknown\n");

    out << tr("// Update Rate: ");
    if (source.updateRate() != 0.0)
        out << QStringLiteral("%1Hz\n").arg(source.updateRate(), 0, 'f', 1);
    else
        out << tr("Various\n");

    const QString profile = source.property(QStringLiteral("FilterProfile")).toString();
    const QString version = source.property(QStringLiteral("FilterProfileVersion")).toString();
    const QString type = source.property(QStringLiteral("FilterProfileType")).toString();
    if (!profile.isEmpty() && !version.isEmpty() && !type.isEmpty())
        out << tr("// Filter Profile: %1 (%3.%2)\n").arg(profile).arg(version).arg(type);
    else
        out << tr("// Filter Profile: Error: No KVA filter profile\n");

    const QString optionFlags = source.property(QStringLiteral("OptionFlags")).toString();
    if (!optionFlags.isEmpty())
        out << tr("// Option Flags: %1\n").arg(optionFlags);
    else
        out << tr("// Option Flags: Error: No option flags\n");

    // Unlike the lines above, this one has no line end of its own.
    const QString firmware = source.property(QStringLiteral("FirmwareVersion")).toString();
    if (!firmware.isEmpty())
        out << tr("// Firmware Version: %1").arg(firmware);
    else
        out << tr("// Firmware Version: Error: No firmware version");
}
