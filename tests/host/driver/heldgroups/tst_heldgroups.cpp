#include "groupselection.h"
#include "heldgroups.h"
#include "recordingsample.h"

#include <settingssynchronizer.h>

#include <QtTest>

#include <functional>

// Which groups of the options page a sample holds data for, by the rules of
// the exporter's columns, and which groups the settings choose.
class tst_HeldGroups : public QObject
{
    Q_OBJECT

private slots:
    void samples_data();
    void samples();
    void everyGroupHasItsOwnBit();
    void rowMakingGroups();
    void chosen_data();
    void chosen();
};

using Change = std::function<void(RecordingSample &)>;
Q_DECLARE_METATYPE(Change)

void tst_HeldGroups::samples_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QStringList>("held");

    const auto row = [](const char *name, const Change &change, const QStringList &held) {
        QTest::newRow(name) << change << held;
    };
    row("an empty sample holds nothing", [](RecordingSample &) {}, {});
    row("a packet counter of 0 is held when the reader says so",
        [](RecordingSample &s) { s.hasPacketCounter = true; }, {"Packet Counter"});
    row("a packet counter without the reader's word is not",
        [](RecordingSample &s) { s.packetCounter = 7; }, {});
    row("a sample time", [](RecordingSample &s) { s.hasSampleTimeFine = true; },
        {"Sample Time Fine"});
    row("a date and time",
        [](RecordingSample &s) { s.sampleDateTime = QDateTime(QDate(2026, 11, 21), QTime(9, 30)); },
        {"Date and time"});
    row("a UTC time", [](RecordingSample &s) { s.utcTime.year = 2026; }, {"UTC Time"});
    row("a status word of 0", [](RecordingSample &s) { s.hasStatusWord = true; }, {"Status Word"});
    row("clipping flags of 0", [](RecordingSample &s) { s.hasClippingFlags = true; },
        {"Clipping Flags"});
    row("an RSSI of 0", [](RecordingSample &s) { s.hasRssi = true; }, {"RSSI"});
    row("an acceleration",
        [](RecordingSample &s) {
            s.calibratedAcceleration = {1, 2, 3};
        },
        {"Acceleration"});
    row("a free acceleration",
        [](RecordingSample &s) {
            s.freeAcceleration = {1, 2, 3};
        },
        {"Free Acceleration"});
    row("a rate of turn",
        [](RecordingSample &s) {
            s.calibratedAngularVelocity = {1, 2, 3};
        },
        {"Rate Of Turn"});
    row("a magnetic field",
        [](RecordingSample &s) {
            s.magneticField = {1, 2, 3};
        },
        {"Magnetic Field"});
    row("a velocity increment",
        [](RecordingSample &s) {
            s.velocityIncrement = {1, 2, 3};
        },
        {"Velocity Increment"});
    row("an orientation increment",
        [](RecordingSample &s) { s.orientationIncrement = KvQuaternion(1, 0, 0, 0); },
        {"Orientation Increment"});
    row("a latitude and longitude",
        [](RecordingSample &s) {
            s.latitudeLongitude = {52, 6};
        },
        {"Position"});
    row("an altitude alone", [](RecordingSample &s) { s.altitude = 12.5; }, {"Position"});
    row("a velocity", [](RecordingSample &s) { s.velocity = {1, 2, 3}; }, {"Velocity"});
    row("a temperature", [](RecordingSample &s) { s.temperature = 21.5; }, {"Temperature"});
    row("a temperature the exporter leaves empty",
        [](RecordingSample &s) { s.temperature = -1000; }, {});
    row("gyro temperatures, which both gyro groups write",
        [](RecordingSample &s) {
            s.gyroTemperatures = {1, 2, 3};
        },
        {"Gyro Temperatures", "SCR Gyro Temperatures"});
    row("a pressure", [](RecordingSample &s) { s.pressure = 1013.0; }, {"Barometric Pressure"});
    row("a pressure of 0 is none", [](RecordingSample &s) { s.pressure = 0.0; }, {});
    row("an SCR acceleration",
        [](RecordingSample &s) {
            s.scrAcceleration = {1, 2, 3};
        },
        {"SCR Acceleration"});
    row("SCR gyroscope data",
        [](RecordingSample &s) {
            s.scrGyroscopeData = {1, 2, 3};
        },
        {"SCR Gyroscope Data"});
    row("an SCR magnetic field",
        [](RecordingSample &s) {
            s.scrMagneticField = {1, 2, 3};
        },
        {"SCR Magnetic Field"});
    row("an SCR temperature of 0", [](RecordingSample &s) { s.hasScrTemperature = true; },
        {"SCR Temperature"});
    row("a GPS solution", [](RecordingSample &s) { s.gpsSolution.iTOW = 1000; },
        {"GPS Receiver Message"});
    row("GPS satellites", [](RecordingSample &s) { s.gpsSatellites.iTOW = 1000; },
        {"GPS Receiver Message"});
    row("a GPS record at time of week 0 is none", [](RecordingSample &s) { s.gpsDop.gDOP = 120; },
        {});
    row("a GNSS solution", [](RecordingSample &s) { s.gnssPvt.iTOW = 1000; },
        {"GNSS Receiver Message"});
    row("GNSS satellites", [](RecordingSample &s) { s.gnssSatellites.iTOW = 1000; },
        {"GNSS Receiver Message"});
    row("trigger 1", [](RecordingSample &s) { s.triggerIn1.valid = true; }, {"Trigger In 1"});
    row("trigger 2", [](RecordingSample &s) { s.triggerIn2.valid = true; }, {"Trigger In 2"});
    row("a quaternion, from which every format is derived",
        [](RecordingSample &s) { s.orientationQuaternion = KvQuaternion(1, 0, 0, 0); },
        {"Euler Angles", "Quaternion", "Matrix"});
    row("Euler angles alone", [](RecordingSample &s) { s.hasOrientationEuler = true; },
        {"Euler Angles"});
    row("a matrix alone",
        [](RecordingSample &s) {
            const double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
            s.orientationMatrix = KvMatrix(identity);
        },
        {"Matrix"});
    row("several groups, in the order of the options page",
        [](RecordingSample &s) {
            s.triggerIn1.valid = true;
            s.hasPacketCounter = true;
            s.calibratedAcceleration = {1, 2, 3};
        },
        {"Packet Counter", "Acceleration", "Trigger In 1"});
}

void tst_HeldGroups::samples()
{
    QFETCH(Change, change);
    QFETCH(QStringList, held);
    RecordingSample sample;
    change(sample);
    QCOMPARE(HeldGroups::names(HeldGroups::of(sample)), held);
}

void tst_HeldGroups::everyGroupHasItsOwnBit()
{
    // The names of all bits are the names --groups takes, each once.
    QCOMPARE(HeldGroups::names(~HeldGroups::Mask(0)), GroupSelection::names());
}

void tst_HeldGroups::rowMakingGroups()
{
    QCOMPARE(HeldGroups::names(~HeldGroups::makingRows()),
             QStringList({"Packet Counter", "Sample Time Fine", "Date and time", "UTC Time",
                          "Status Word", "Clipping Flags", "RSSI"}));
}

void tst_HeldGroups::chosen_data()
{
    QTest::addColumn<QString>("orientation");
    QTest::addColumn<QStringList>("on");
    QTest::addColumn<QStringList>("chosen");

    QTest::newRow("the defaults") << QStringLiteral("Euler")
                                  << QStringList{"exportPacketCounter", "exportSampleTimeFine"}
                                  << QStringList{"Packet Counter", "Sample Time Fine",
                                                 "Euler Angles"};
    QTest::newRow("no orientation")
        << QStringLiteral("None") << QStringList{"exportRawGnss", "exportTriggerIn2"}
        << QStringList{"GNSS Receiver Message", "Trigger In 2"};
    QTest::newRow("an orientation in other case, as the exporter takes it")
        << QStringLiteral("qUaTeRnIoN") << QStringList() << QStringList{"Quaternion"};
    QTest::newRow("an orientation the exporter does not know")
        << QStringLiteral("Eulerian") << QStringList{"exportPosition"} << QStringList{"Position"};
}

void tst_HeldGroups::chosen()
{
    QFETCH(QString, orientation);
    QFETCH(QStringList, on);
    QFETCH(QStringList, chosen);
    QMap<QString, QVariant> defaults;
    for (int i = 0; i < GroupSelection::groupCount; ++i)
        defaults.insert(QLatin1String(GroupSelection::groups[i].key), false);
    defaults.insert(QStringLiteral("exportOrientation"), QStringLiteral("None"));
    SettingsSynchronizer store(defaults, {});
    for (const QString &key : on)
        store.setSetting(key, true);
    store.setSetting(QStringLiteral("exportOrientation"), orientation);
    QCOMPARE(HeldGroups::names(HeldGroups::chosen(store)), chosen);
}

QTEST_GUILESS_MAIN(tst_HeldGroups)
#include "tst_heldgroups.moc"
