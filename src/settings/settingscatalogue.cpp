#include "settingscatalogue.h"

#include <QCoreApplication>

namespace {

struct DefaultEntry
{
    const char *key;
    bool isText;
    bool flag;
    const char *text;
};

constexpr DefaultEntry defaultTable[] = {
    {"outputFileFormat", true, false, "<inputfile>-<seqnr>"},
    {"outputFileExtension", true, false, "txt"},
    {"exportDateTime", false, false, nullptr},
    {"exportUtc", false, false, nullptr},
    {"exportPacketCounter", false, true, nullptr},
    {"exportSampleTimeFine", false, true, nullptr},
    {"exportStatusFlags", false, false, nullptr},
    {"exportClipFlags", false, false, nullptr},
    {"exportRssi", false, false, nullptr},
    {"exportCalibratedAcceleration", false, false, nullptr},
    {"exportFreeAcceleration", false, false, nullptr},
    {"exportCalibratedAngularVelocity", false, false, nullptr},
    {"exportMagneticField", false, false, nullptr},
    {"exportVelocityIncrement", false, false, nullptr},
    {"exportOrientationIncrement", false, false, nullptr},
    {"exportOrientation", true, false, "Euler"},
    {"exportPosition", false, false, nullptr},
    {"exportVelocity", false, false, nullptr},
    {"exportHeading", false, false, nullptr},
    {"exportTemperature", false, false, nullptr},
    {"exportGyroTemperature", false, false, nullptr},
    {"exportPressure", false, false, nullptr},
    {"exportScrAcceleration", false, false, nullptr},
    {"exportScrGyroscopeData", false, false, nullptr},
    {"exportScrMagneticField", false, false, nullptr},
    {"exportScrTemperature", false, false, nullptr},
    {"exportScrGyroTemperature", false, false, nullptr},
    {"exportRawGps", false, false, nullptr},
    {"exportRawGnss", false, false, nullptr},
    {"exportTriggerIn1", false, false, nullptr},
    {"exportTriggerIn2", false, false, nullptr},
    {"insertNothing", false, true, nullptr},
    {"insertNan", false, false, nullptr},
    {"insertZero", false, false, nullptr},
    {"insertOtherPlaceholder", false, false, nullptr},
    {"otherPlaceholder", true, false, ""},
    {"useCommaDelimiter", false, false, nullptr},
    {"useOtherDelimiter", false, false, nullptr},
    {"useSemiColonDelimiter", false, false, nullptr},
    {"useSpaceDelimiter", false, false, nullptr},
    {"useTabDelimiter", false, true, nullptr},
    {"otherDelimiter", true, false, ""},
};

struct DescriptionEntry
{
    const char *key;
    const char *text;
};

// The SCR acceleration setting is described under "exportScrcceleration" (no
// "A"): stored hosts know the key by that spelling, and nothing reads it.
constexpr DescriptionEntry descriptionTable[] = {
    {"outputFileFormat", QT_TRANSLATE_NOOP("AsciiExporterFactory", "The format of the output file name. e.g. <inputfile>-<seqnr>. The .txt extension is automatically appended.")},
    {"outputFileExtension", QT_TRANSLATE_NOOP("AsciiExporterFactory", "The extension of the output file name")},
    {"exportDateTime", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export date (yyyy-mm-dd seconds)")},
    {"exportUtc", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export 12 byte UTC Time")},
    {"exportPacketCounter", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the packet counter")},
    {"exportSampleTimeFine", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the sample time fine")},
    {"exportClipFlags", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the clip flags")},
    {"exportStatusFlags", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the status flags")},
    {"exportRssi", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the RSSI")},
    {"exportCalibratedAcceleration", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export calibrated acceleration data")},
    {"exportFreeAcceleration", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the free acceleration")},
    {"exportCalibratedAngularVelocity", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export calibrated rate gyroscope data")},
    {"exportMagneticField", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the calibrated magnetic field")},
    {"exportVelocityIncrement", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the incremental velocity value since the last successful transmission")},
    {"exportOrientationIncrement", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the incremental orientation value since the last successful transmission")},
    {"exportOrientation", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export orientation data in the format of the orientations \"Quaternion\", \"Euler\", \"Matrix\" or no orientation output: \"None\"")},
    {"exportPosition", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export position data")},
    {"exportVelocity", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export velocity data")},
    {"exportHeading", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the heading")},
    {"exportTemperature", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export temperature data")},
    {"exportPressure", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the calibrated pressure data in hPa")},
    {"exportGyroTemperature", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export gyroscope temperature data")},
    {"exportScrcceleration", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export SCR acceleration data")},
    {"exportScrGyroscopeData", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export SCR gyroscope data")},
    {"exportScrMagneticField", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the SCR magnetic field")},
    {"exportScrTemperature", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export RAW temperature data")},
    {"exportRawGps", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the raw gps data")},
    {"exportRawGnss", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the raw gnss data")},
    {"exportScrGyroTemperature", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export SCR gyroscope temperature data")},
    {"exportTriggerIn1", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export Trigger Indication 1")},
    {"exportTriggerIn2", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export Trigger Indication 2")},
    {"insertNan", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Insert \"NaN\" for empty fields")},
    {"useCommaDelimiter", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use \",\" as a delimiter")},
    {"useOtherDelimiter", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use a custom delimiter (enter custom delimiter)")},
    {"useSemiColonDelimiter", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use \";\" as a delimiter")},
    {"useSpaceDelimiter", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use \" \" as a delimiter")},
    {"useTabDelimiter", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use \"\\t\" as a delimiter")},
    {"otherDelimiter", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use this custom delimiter")},
    {"insertNothing", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Insert nothing for empty fields")},
    {"insertZero", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Insert 0 for empty fields")},
    {"insertOtherPlaceholder", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Insert custom text for empty fields")},
    {"otherPlaceholder", QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use this custom placeholder for empty fields")},
};

} // namespace

namespace SettingsCatalogue {

QMap<QString, QVariant> defaults()
{
    QMap<QString, QVariant> map;
    for (const DefaultEntry &entry : defaultTable) {
        map.insert(QString::fromLatin1(entry.key),
                   entry.isText ? QVariant(QString::fromLatin1(entry.text))
                                : QVariant(entry.flag));
    }
    return map;
}

QMap<QString, QString> descriptions()
{
    QMap<QString, QString> map;
    for (const DescriptionEntry &entry : descriptionTable) {
        map.insert(QString::fromLatin1(entry.key),
                   QCoreApplication::translate("AsciiExporterFactory", entry.text));
    }
    return map;
}

} // namespace SettingsCatalogue
