#include "settingscatalogue.h"

#include "settingkeys.h"

#include <QCoreApplication>

namespace {

/** One row of the catalogue: a key with its default and its description. */
struct Setting
{
    enum Type { Flag, Text, NoDefault };

    const char *key;
    Type type;
    bool flag;
    const char *text;
    const char *description; ///< untranslated; null for none
};

constexpr Setting flag(const char *key, bool value, const char *description)
{
    return {key, Setting::Flag, value, nullptr, description};
}

constexpr Setting text(const char *key, const char *value, const char *description)
{
    return {key, Setting::Text, false, value, description};
}

constexpr Setting descriptionOnly(const char *key, const char *description)
{
    return {key, Setting::NoDefault, false, nullptr, description};
}

// The SCR acceleration setting has its default under one key and its
// description under another (see SettingKeys::exportScrAccelerationDescription).
constexpr Setting catalogue[] = {
    text(SettingKeys::outputFileFormat, "<inputfile>-<seqnr>",
         QT_TRANSLATE_NOOP("AsciiExporterFactory",
                           "The format of the output file name. e.g. <inputfile>-<seqnr>. The .txt "
                           "extension is automatically appended.")),
    text(SettingKeys::outputFileExtension, "txt",
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "The extension of the output file name")),
    flag(SettingKeys::exportDateTime, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export date (yyyy-mm-dd seconds)")),
    flag(SettingKeys::exportUtc, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export 12 byte UTC Time")),
    flag(SettingKeys::exportPacketCounter, true,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the packet counter")),
    flag(SettingKeys::exportSampleTimeFine, true,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the sample time fine")),
    flag(SettingKeys::exportStatusFlags, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the status flags")),
    flag(SettingKeys::exportClipFlags, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the clip flags")),
    flag(SettingKeys::exportRssi, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the RSSI")),
    flag(SettingKeys::exportCalibratedAcceleration, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export calibrated acceleration data")),
    flag(SettingKeys::exportFreeAcceleration, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the free acceleration")),
    flag(SettingKeys::exportCalibratedAngularVelocity, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export calibrated rate gyroscope data")),
    flag(SettingKeys::exportMagneticField, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the calibrated magnetic field")),
    flag(SettingKeys::exportVelocityIncrement, false,
         QT_TRANSLATE_NOOP(
             "AsciiExporterFactory",
             "Export the incremental velocity value since the last successful transmission")),
    flag(SettingKeys::exportOrientationIncrement, false,
         QT_TRANSLATE_NOOP(
             "AsciiExporterFactory",
             "Export the incremental orientation value since the last successful transmission")),
    text(SettingKeys::exportOrientation, "Euler",
         QT_TRANSLATE_NOOP(
             "AsciiExporterFactory",
             "Export orientation data in the format of the orientations \"Quaternion\", \"Euler\", "
             "\"Matrix\" or no orientation output: \"None\"")),
    flag(SettingKeys::exportPosition, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export position data")),
    flag(SettingKeys::exportVelocity, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export velocity data")),
    flag(SettingKeys::exportHeading, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the heading")),
    flag(SettingKeys::exportTemperature, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export temperature data")),
    flag(SettingKeys::exportGyroTemperature, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export gyroscope temperature data")),
    flag(SettingKeys::exportPressure, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the calibrated pressure data in hPa")),
    flag(SettingKeys::exportScrAcceleration, false, nullptr),
    descriptionOnly(SettingKeys::exportScrAccelerationDescription,
                    QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export SCR acceleration data")),
    flag(SettingKeys::exportScrGyroscopeData, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export SCR gyroscope data")),
    flag(SettingKeys::exportScrMagneticField, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the SCR magnetic field")),
    flag(SettingKeys::exportScrTemperature, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export RAW temperature data")),
    flag(SettingKeys::exportScrGyroTemperature, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export SCR gyroscope temperature data")),
    flag(SettingKeys::exportRawGps, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the raw gps data")),
    flag(SettingKeys::exportRawGnss, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export the raw gnss data")),
    flag(SettingKeys::exportTriggerIn1, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export Trigger Indication 1")),
    flag(SettingKeys::exportTriggerIn2, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Export Trigger Indication 2")),
    flag(SettingKeys::insertNothing, true,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Insert nothing for empty fields")),
    flag(SettingKeys::insertNan, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Insert \"NaN\" for empty fields")),
    flag(SettingKeys::insertZero, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Insert 0 for empty fields")),
    flag(SettingKeys::insertOtherPlaceholder, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Insert custom text for empty fields")),
    text(SettingKeys::otherPlaceholder, "",
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use this custom placeholder for empty fields")),
    flag(SettingKeys::useCommaDelimiter, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use \",\" as a delimiter")),
    flag(SettingKeys::useOtherDelimiter, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory",
                           "Use a custom delimiter (enter custom delimiter)")),
    flag(SettingKeys::useSemiColonDelimiter, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use \";\" as a delimiter")),
    flag(SettingKeys::useSpaceDelimiter, false,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use \" \" as a delimiter")),
    flag(SettingKeys::useTabDelimiter, true,
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use \"\\t\" as a delimiter")),
    text(SettingKeys::otherDelimiter, "",
         QT_TRANSLATE_NOOP("AsciiExporterFactory", "Use this custom delimiter")),
};

} // namespace

namespace SettingsCatalogue {

QMap<QString, QVariant> defaults()
{
    QMap<QString, QVariant> map;
    for (const Setting &setting : catalogue) {
        if (setting.type == Setting::Flag)
            map.insert(QString::fromLatin1(setting.key), QVariant(setting.flag));
        else if (setting.type == Setting::Text)
            map.insert(QString::fromLatin1(setting.key),
                       QVariant(QString::fromLatin1(setting.text)));
    }
    return map;
}

QMap<QString, QString> descriptions()
{
    QMap<QString, QString> map;
    for (const Setting &setting : catalogue) {
        if (setting.description) {
            map.insert(QString::fromLatin1(setting.key),
                       QCoreApplication::translate("AsciiExporterFactory", setting.description));
        }
    }
    return map;
}

} // namespace SettingsCatalogue
