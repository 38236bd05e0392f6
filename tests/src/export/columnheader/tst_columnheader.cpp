#include "asciiexporter.h"
#include "settingscatalogue.h"

#include <exportrun.h>
#include <settingssynchronizer.h>

#include <QtTest>

using Settings = QMap<QString, QVariant>;

namespace {

// Settings with every data group off; @p on switches groups back on.
Settings allOffExcept(const Settings &on)
{
    Settings settings;
    for (const QString &key : dataGroupKeys())
        settings.insert(key, false);
    settings.insert(QStringLiteral("exportOrientation"), QStringLiteral("None"));
    for (auto it = on.cbegin(); it != on.cend(); ++it)
        settings.insert(it.key(), it.value());
    return settings;
}

QString headerLine(const Settings &settings)
{
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    for (auto it = settings.cbegin(); it != settings.cend(); ++it)
        store.setSetting(it.key(), it.value());
    TestSource source;
    AsciiExporter exporter(&source, &store);
    const QStringList lines = linesAfterHeaderBlock(exportSamples(&exporter, &source, {}));
    return lines.size() == 1 ? lines.first() : QStringLiteral("<%1 lines>").arg(lines.size());
}

} // namespace

class tst_ColumnHeader : public QObject
{
    Q_OBJECT

private slots:
    void group_data();
    void group();
    void allGroupsOffGivesAnEmptyLine();
    void orientationWord_data();
    void orientationWord();
    void rawGpsColumns();
    void rawGnssColumns();
    void trailingDelimiter_data();
    void trailingDelimiter();
    void everyGroupInOrder();
};

void tst_ColumnHeader::group_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("expected");

    QTest::newRow("packet counter alone, no trailing tab") << "exportPacketCounter"
                                                           << "PacketCounter";
    QTest::newRow("sample time fine") << "exportSampleTimeFine"
                                      << "SampleTimeFine";
    QTest::newRow("date") << "exportDateTime"
                          << "Year\tMonth\tDay\tSecond";
    QTest::newRow("UTC")
        << "exportUtc"
        << "UTC_Nano\tUTC_Year\tUTC_Month\tUTC_Day\tUTC_Hour\tUTC_Minute\tUTC_Second\tUTC_Valid";
    QTest::newRow("status") << "exportStatusFlags"
                            << "StatusWord";
    QTest::newRow("clipping") << "exportClipFlags"
                              << "ClippingFlags";
    QTest::newRow("RSSI") << "exportRssi"
                          << "RSSI";
    QTest::newRow("acceleration") << "exportCalibratedAcceleration"
                                  << "Acc_X\tAcc_Y\tAcc_Z";
    QTest::newRow("free acceleration") << "exportFreeAcceleration"
                                       << "FreeAcc_X\tFreeAcc_Y\tFreeAcc_Z";
    QTest::newRow("rate of turn") << "exportCalibratedAngularVelocity"
                                  << "Gyr_X\tGyr_Y\tGyr_Z";
    QTest::newRow("magnetic field") << "exportMagneticField"
                                    << "Mag_X\tMag_Y\tMag_Z";
    QTest::newRow("velocity increment") << "exportVelocityIncrement"
                                        << "VelInc_X\tVelInc_Y\tVelInc_Z";
    QTest::newRow("orientation increment") << "exportOrientationIncrement"
                                           << "OriInc_q0\tOriInc_q1\tOriInc_q2\tOriInc_q3";
    QTest::newRow("pressure") << "exportPressure"
                              << "Pressure";
    QTest::newRow("position") << "exportPosition"
                              << "Latitude\tLongitude\tAltitude";
    QTest::newRow("velocity") << "exportVelocity"
                              << "Vel_X\tVel_Y\tVel_Z";
    QTest::newRow("temperature") << "exportTemperature"
                                 << "Temperature";
    QTest::newRow("gyroscope temperatures") << "exportGyroTemperature"
                                            << "GyrTemp_X\tGyrTemp_Y\tGyrTemp_Z";
    QTest::newRow("raw accelerometer") << "exportScrAcceleration"
                                       << "SCRAcc_X\tSCRAcc_Y\tSCRAcc_Z";
    QTest::newRow("raw gyroscope") << "exportScrGyroscopeData"
                                   << "SCRGyr_X\tSCRGyr_Y\tSCRGyr_Z";
    QTest::newRow("raw magnetometer") << "exportScrMagneticField"
                                      << "SCRMag_X\tSCRMag_Y\tSCRMag_Z";
    QTest::newRow("raw temperature") << "exportScrTemperature"
                                     << "SCRTemperature";
    QTest::newRow("raw gyroscope temperatures") << "exportScrGyroTemperature"
                                                << "SCRGyrTemp_X\tSCRGyrTemp_Y\tSCRGyrTemp_Z";
    QTest::newRow("trigger 1") << "exportTriggerIn1"
                               << "TrigIn1_Polarity\tTrigIn1_Timestamp\tTrigIn1_FrameNumber";
    QTest::newRow("trigger 2") << "exportTriggerIn2"
                               << "TrigIn2_Polarity\tTrigIn2_Timestamp\tTrigIn2_FrameNumber";
    QTest::newRow("heading is declared but adds no column") << "exportHeading"
                                                            << "";
}

void tst_ColumnHeader::group()
{
    QFETCH(QString, key);
    QFETCH(QString, expected);

    QCOMPARE(headerLine(allOffExcept({{key, true}})), expected);
}

void tst_ColumnHeader::allGroupsOffGivesAnEmptyLine()
{
    QCOMPARE(headerLine(allOffExcept({})), QString());
}

void tst_ColumnHeader::orientationWord_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");

    const QString euler = QStringLiteral("Roll\tPitch\tYaw");
    const QString matrix = QStringLiteral("Mat[1][1]\tMat[2][1]\tMat[3][1]\tMat[1][2]\tMat[2][2]\t"
                                          "Mat[3][2]\tMat[1][3]\tMat[2][3]\tMat[3][3]");
    const QString quaternion = QStringLiteral("Quat_q0\tQuat_q1\tQuat_q2\tQuat_q3");
    QTest::newRow("Euler") << "Euler" << euler;
    QTest::newRow("euler in lower case") << "euler" << euler;
    QTest::newRow("EULER in upper case") << "EULER" << euler;
    QTest::newRow("eUlEr mixed") << "eUlEr" << euler;
    QTest::newRow("Matrix") << "Matrix" << matrix;
    QTest::newRow("mATRIX") << "mATRIX" << matrix;
    QTest::newRow("Quaternion") << "Quaternion" << quaternion;
    QTest::newRow("QUATERNION") << "QUATERNION" << quaternion;
    QTest::newRow("None adds nothing") << "None"
                                       << "";
    QTest::newRow("an empty value adds nothing") << ""
                                                 << "";
    QTest::newRow("an unknown word adds nothing") << "Euler Angles"
                                                  << "";
    QTest::newRow("a word with a blank adds nothing") << " Euler"
                                                      << "";
}

void tst_ColumnHeader::orientationWord()
{
    QFETCH(QString, value);
    QFETCH(QString, expected);

    QCOMPARE(headerLine(allOffExcept({{QStringLiteral("exportOrientation"), value}})), expected);
}

void tst_ColumnHeader::rawGpsColumns()
{
    const QStringList columns =
        headerLine(allOffExcept({{"exportRawGps", true}})).split(QLatin1Char('\t'));
    QCOMPARE(columns.size(), 66);
    QCOMPARE(columns.mid(0, 3), (QStringList{"NSTimeOfWeek", "NanoSecRemainder", "GPSWeek"}));
    QCOMPARE(columns.at(13), QStringLiteral("PositionDOP"));
    QCOMPARE(columns.at(17), QStringLiteral("PositionDOP"));
    QCOMPARE(columns.at(33), QStringLiteral("NSVTimeOfWeek"));
    QCOMPARE(columns.mid(34, 4), (QStringList{"SVID[0]", "SVQI[0]", "SVID[1]", "SVQI[1]"}));
    QCOMPARE(columns.mid(64), (QStringList{"SVID[15]", "SVQI[15]"}));
}

void tst_ColumnHeader::rawGnssColumns()
{
    const QStringList columns =
        headerLine(allOffExcept({{"exportRawGnss", true}})).split(QLatin1Char('\t'));
    QCOMPARE(columns.size(), 275);
    QCOMPARE(columns.mid(13, 2), (QStringList{"Longitude", "Latitude"}));
    QCOMPARE(columns.at(25), QStringLiteral("HeadingAccurayEst"));
    QCOMPARE(columns.at(34), QStringLiteral("NSVTimeOfWeek"));
    QCOMPARE(columns.mid(35, 4), (QStringList{"GnssId[0]", "SvId[0]", "Cno[0]", "Flags[0]"}));
    QCOMPARE(columns.mid(271), (QStringList{"GnssId[59]", "SvId[59]", "Cno[59]", "Flags[59]"}));
}

void tst_ColumnHeader::trailingDelimiter_data()
{
    QTest::addColumn<Settings>("delimiter");
    QTest::addColumn<QString>("expected");

    const Settings custom{{"useTabDelimiter", false}, {"useOtherDelimiter", true}};
    const auto withText = [&](const char *text) {
        Settings s = custom;
        s.insert(QStringLiteral("otherDelimiter"), QString::fromUtf8(text));
        return s;
    };
    QTest::newRow("tab is removed") << Settings() << "PacketCounter\tSampleTimeFine";
    QTest::newRow("comma is removed")
        << Settings{{"useCommaDelimiter", true}} << "PacketCounter,SampleTimeFine";
    QTest::newRow("semicolon is removed")
        << Settings{{"useSemiColonDelimiter", true}} << "PacketCounter;SampleTimeFine";
    QTest::newRow("blank is removed")
        << Settings{{"useSpaceDelimiter", true}, {"useTabDelimiter", false}}
        << "PacketCounter SampleTimeFine";
    QTest::newRow("comma and blank are not removed at all")
        << withText(", ") << "PacketCounter, SampleTimeFine, ";
    QTest::newRow("a doubled character loses only its last")
        << withText("||") << "PacketCounter||SampleTimeFine|";
    QTest::newRow("first and last alike lose only the last")
        << withText("-+-") << "PacketCounter-+-SampleTimeFine-+";
    QTest::newRow("an empty delimiter removes nothing")
        << withText("") << "PacketCounterSampleTimeFine";
    QTest::newRow("a non-ASCII delimiter")
        << withText("\u00a7") << QString::fromUtf8("PacketCounter\u00a7SampleTimeFine");
}

void tst_ColumnHeader::trailingDelimiter()
{
    QFETCH(Settings, delimiter);
    QFETCH(QString, expected);

    Settings settings =
        allOffExcept({{"exportPacketCounter", true}, {"exportSampleTimeFine", true}});
    for (auto it = delimiter.cbegin(); it != delimiter.cend(); ++it)
        settings.insert(it.key(), it.value());
    QCOMPARE(headerLine(settings), expected);
}

void tst_ColumnHeader::everyGroupInOrder()
{
    Settings on;
    for (const QString &key : dataGroupKeys())
        on.insert(key, true);
    on.insert(QStringLiteral("exportOrientation"), QStringLiteral("Quaternion"));
    const QStringList columns = headerLine(on).split(QLatin1Char('\t'));
    QCOMPARE(columns.size(),
             1 + 1 + 4 + 8 + 1 + 1 + 1 + 3 + 3 + 3 + 3 + 3 + 4 + 1 + 4 + 3 + 3 + 1 + 3 + 3 + 3 + 3
                 + 1 + 3 + 66 + 275 + 3 + 3);
    // pressure comes before orientation, orientation before position
    QCOMPARE(columns.indexOf(QStringLiteral("Pressure")) + 1,
             columns.indexOf(QStringLiteral("Quat_q0")));
    QCOMPARE(columns.indexOf(QStringLiteral("Quat_q3")) + 1,
             columns.indexOf(QStringLiteral("Latitude")));
    QCOMPARE(columns.first(), QStringLiteral("PacketCounter"));
    QCOMPARE(columns.last(), QStringLiteral("TrigIn2_FrameNumber"));
    // the GNSS group follows the GPS satellite block
    QCOMPARE(columns.at(columns.indexOf(QStringLiteral("SVQI[15]")) + 1),
             QStringLiteral("NUTimeOfWeek"));
}

QTEST_GUILESS_MAIN(tst_ColumnHeader)
#include "tst_columnheader.moc"
