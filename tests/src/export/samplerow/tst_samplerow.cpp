#include "asciiexporter.h"
#include "settingscatalogue.h"

#include <exportrun.h>
#include <settingssynchronizer.h>

#include <QTextCodec>
#include <QtTest>

#include <cmath>
#include <limits>

using Settings = QMap<QString, QVariant>;
using Samples = QVector<TestSample>;
Q_DECLARE_METATYPE(TestSample)

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

// Every group off, a tab between fields and "_" in empty fields, so that
// each case shows its placeholders; @p changes switch groups on.
Settings base(const Settings &changes)
{
    Settings settings;
    for (const QString &key : dataGroupKeys())
        settings.insert(key, false);
    settings.insert(QStringLiteral("exportOrientation"), QStringLiteral("None"));
    settings.insert(QStringLiteral("insertNothing"), false);
    settings.insert(QStringLiteral("insertOtherPlaceholder"), true);
    settings.insert(QStringLiteral("otherPlaceholder"), QStringLiteral("_"));
    for (auto it = changes.cbegin(); it != changes.cend(); ++it)
        settings.insert(it.key(), it.value());
    return settings;
}

void apply(SettingsSynchronizer &store, const Settings &settings)
{
    for (auto it = settings.cbegin(); it != settings.cend(); ++it)
        store.setSetting(it.key(), it.value());
}

// The column-header line and the rows of an export of @p samples.
QStringList exportLines(const Settings &settings, const Samples &samples)
{
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    apply(store, settings);
    TestSource source;
    AsciiExporter exporter(&source, &store);
    return linesAfterHeaderBlock(exportSamples(&exporter, &source, samples));
}

// The one row that @p sample gives, or "<no row>".
QString rowOf(const Settings &settings, const TestSample &sample)
{
    const QStringList lines = exportLines(settings, {sample});
    if (lines.size() == 1)
        return QStringLiteral("<no row>");
    if (lines.size() != 2)
        return QStringLiteral("<%1 lines>").arg(lines.size());
    return lines.at(1);
}

TestSample withAcceleration(TestSample s = TestSample())
{
    s.calibratedAcceleration = {1.0, 2.0, 3.0};
    return s;
}

} // namespace

class tst_SampleRow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void row_data();
    void row();
    void countersAloneMakeNoLine();
    void highPrecisionIsReadForEveryValue();
    void settingsAreReadForEverySample();
    void delimiterIsFixedAtCreation();
    void receiverRecords_data();
    void receiverRecords();
    void fieldCounts_data();
    void fieldCounts();
    void delimiterTexts_data();
    void delimiterTexts();
    void highPrecisionStoredAs_data();
    void highPrecisionStoredAs();
    void surrogatesInCustomTexts_data();
    void surrogatesInCustomTexts();
    void groupSwitchedOffDuringAnExport_data();
    void groupSwitchedOffDuringAnExport();
};

// The exporter's stream writes in the locale's encoding, which the host
// program sets to UTF-8 whatever the environment; so does this test.
void tst_SampleRow::initTestCase()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

void tst_SampleRow::row_data()
{
    QTest::addColumn<Settings>("settings");
    QTest::addColumn<TestSample>("sample");
    QTest::addColumn<QString>("expected");

    const Settings acc{{"exportCalibratedAcceleration", true}};
    const auto with = [&](Settings changes) {
        changes.insert(QStringLiteral("exportCalibratedAcceleration"), true);
        return base(changes);
    };
    const QString accText = QStringLiteral("1.000000\t2.000000\t3.000000");

    TestSample s = withAcceleration();
    s.packetCounter = 42;
    QTest::newRow("packet counter 42 prints as 00042")
        << with({{"exportPacketCounter", true}}) << s << "00042\t" + accText;
    s.packetCounter = 65535;
    QTest::newRow("the largest packet counter")
        << with({{"exportPacketCounter", true}}) << s << "65535\t" + accText;

    s = withAcceleration();
    s.sampleTimeFine = 123456;
    s.hasSampleTimeFine = true;
    QTest::newRow("sample time 123456 prints whole: the width is a minimum")
        << with({{"exportSampleTimeFine", true}}) << s << "123456\t" + accText;
    s.sampleTimeFine = 7;
    QTest::newRow("sample time 7 prints as 00007")
        << with({{"exportSampleTimeFine", true}}) << s << "00007\t" + accText;
    s.hasSampleTimeFine = false;
    QTest::newRow("a missing sample time is one empty field")
        << with({{"exportSampleTimeFine", true}}) << s << "_\t" + accText;

    s = withAcceleration();
    s.dateTime = QDateTime(QDate(2026, 3, 4), QTime(23, 59, 58, 999), Qt::UTC);
    QTest::newRow("date pads month and day; the seconds are always zero")
        << with({{"exportDateTime", true}}) << s << "2026\t03\t04\t0.0000\t" + accText;
    QTest::newRow("zero seconds with high precision")
        << with({{"exportDateTime", true}, {"highPrecision", true}}) << s
        << "2026\t03\t04\t0\t1\t2\t3";
    s.dateTime = QDateTime();
    QTest::newRow("a missing date is four empty fields")
        << with({{"exportDateTime", true}}) << s << "_\t_\t_\t_\t" + accText;

    s = withAcceleration();
    s.utc = {123456789, 2026, 11, 21, 9, 5, 59, 0x07};
    QTest::newRow("UTC time in plain decimals")
        << with({{"exportUtc", true}}) << s << "123456789\t2026\t11\t21\t9\t5\t59\t7\t" + accText;
    s.utc = KvUtcTime();
    QTest::newRow("an all-zero UTC time is eight empty fields")
        << with({{"exportUtc", true}}) << s << "_\t_\t_\t_\t_\t_\t_\t_\t" + accText;
    s.utc.valid = 1;
    QTest::newRow("a UTC time with only its flags set is written")
        << with({{"exportUtc", true}}) << s << "0\t0\t0\t0\t0\t0\t0\t1\t" + accText;

    s = withAcceleration();
    s.statusWord = qint32(0x80000000u);
    QTest::newRow("status word 0x80000000 prints as -2147483648")
        << with({{"exportStatusFlags", true}}) << s << "-2147483648\t" + accText;
    s.clippingFlags = 65535;
    QTest::newRow("clipping flags unsigned")
        << with({{"exportClipFlags", true}}) << s << "65535\t" + accText;
    s.rssi = -57.25;
    QTest::newRow("RSSI with four decimals")
        << with({{"exportRssi", true}}) << s << "-57.2500\t" + accText;

    s = TestSample();
    s.calibratedAcceleration = {9.81, -0.0, notANumber};
    QTest::newRow("acceleration 9.81 prints as 9.810000; -0 without sign; NaN as nan")
        << base(acc) << s << "9.810000\t0.000000\tnan";
    QTest::newRow("acceleration with high precision: 18 significant digits")
        << base({{"exportCalibratedAcceleration", true}, {"highPrecision", true}}) << s
        << "9.8100000000000005\t0\tnan";
    s.calibratedAcceleration = {20.125, 0.0078125, -0.0078125};
    QTest::newRow("exact binary ties round away from zero")
        << base(acc) << s << "20.125000\t0.007813\t-0.007813";
    s.calibratedAcceleration = {-0.0000001, 0.0000004, -0.0};
    QTest::newRow("a negative value that rounds to zero keeps its sign")
        << base(acc) << s << "-0.000000\t0.000000\t0.000000";
    s.calibratedAcceleration = {1e300, -infinity, 1e-300};
    QTest::newRow("huge, infinite and tiny values")
        << base(acc)
        << s
        // the exact value of the double nearest to 1e300
        << "100000000000000005250476025520442024870446858110815915491585411551180245798890819578637"
           "13"
           "750804478640437044438328838781769425232353604305756447921847867069828483872009265758037"
           "37"
           "830233794788090059368953234970799945081119038967640880074652742780142494579258788820056"
           "84"
           "2838115669472196386865459400540160.000000\t-inf\t0.000000";

    s = TestSample();
    const Settings vectors{{"exportFreeAcceleration", true},
                           {"exportCalibratedAngularVelocity", true},
                           {"exportMagneticField", true},
                           {"exportVelocityIncrement", true}};
    s.magneticField = {0.4, -0.1, 0.85};
    QTest::newRow("only the vectors a sample holds are written")
        << base(vectors) << s << "_\t_\t_\t_\t_\t_\t0.400000\t-0.100000\t0.850000\t_\t_\t_";
    s = TestSample();
    QTest::newRow("empty vectors alone make no line") << base(vectors) << s << "<no row>";

    s = TestSample();
    s.orientationIncrement = KvQuaternion(1.0, 0.0001, -0.0002, 0.0003);
    QTest::newRow("orientation increment") << base({{"exportOrientationIncrement", true}}) << s
                                           << "1.000000\t0.000100\t-0.000200\t0.000300";

    s = withAcceleration();
    s.pressure = 1013.25;
    QTest::newRow("pressure with four decimals")
        << with({{"exportPressure", true}}) << s << accText + "\t1013.2500";
    s.pressure = 1013.03125;
    QTest::newRow("a pressure tie at four decimals rounds up")
        << with({{"exportPressure", true}}) << s << accText + "\t1013.0313";
    s.pressure = 0.0;
    QTest::newRow("a pressure of 0 is empty")
        << with({{"exportPressure", true}}) << s << accText + "\t_";
    s.pressure = -3.0;
    QTest::newRow("a negative pressure is empty")
        << with({{"exportPressure", true}}) << s << accText + "\t_";
    s.pressure = notANumber;
    QTest::newRow("a NaN pressure is empty")
        << with({{"exportPressure", true}}) << s << accText + "\t_";
    s.pressure = 1e-3;
    QTest::newRow("a tiny pressure is written")
        << base({{"exportPressure", true}}) << s << "0.0010";

    s = TestSample();
    s.orientationEuler = {0.0, 0.0, 0.0};
    QTest::newRow("Euler angles of exactly zero are three empty fields")
        << base({{"exportOrientation", "Euler"}}) << s << "<no row>";
    QTest::newRow("zero Euler angles beside data")
        << with({{"exportOrientation", "Euler"}}) << withAcceleration(s) << accText + "\t_\t_\t_";
    s.orientationEuler = {0.0, 0.0, 0.000001};
    QTest::newRow("Euler angles (0, 0, 0.000001) are written")
        << base({{"exportOrientation", "Euler"}}) << s << "0.000000\t0.000000\t0.000001";
    s.orientationEuler = {-0.0, 0.0, 0.0};
    QTest::newRow("a negative zero is zero")
        << base({{"exportOrientation", "euler"}}) << s << "<no row>";
    s.orientationEuler = {1.5, -2.25, 45.0};
    QTest::newRow("Euler angles in any case of the word")
        << base({{"exportOrientation", "EULER"}}) << s << "1.500000\t-2.250000\t45.000000";

    s = TestSample();
    s.orientationMatrix = KvMatrix({11, 12, 13, 21, 22, 23, 31, 32, 33});
    QTest::newRow("the matrix runs down its columns")
        << base({{"exportOrientation", "Matrix"}, {"highPrecision", true}}) << s
        << "11\t21\t31\t12\t22\t32\t13\t23\t33";
    s.orientationMatrix = KvMatrix();
    QTest::newRow("an empty matrix is nine empty fields")
        << with({{"exportOrientation", "Matrix"}}) << withAcceleration(s)
        << accText + "\t_\t_\t_\t_\t_\t_\t_\t_\t_";
    s.orientationQuaternion = KvQuaternion(0.5, -0.5, 0.5, 0.5);
    QTest::newRow("quaternion") << base({{"exportOrientation", "Quaternion"}}) << s
                                << "0.500000\t-0.500000\t0.500000\t0.500000";
    s.orientationQuaternion = KvQuaternion();
    QTest::newRow("an empty quaternion is four empty fields")
        << with({{"exportOrientation", "Quaternion"}}) << withAcceleration(s)
        << accText + "\t_\t_\t_\t_";
    s.orientationEuler = {1.0, 2.0, 3.0};
    QTest::newRow("no orientation for None")
        << with({{"exportOrientation", "None"}}) << withAcceleration(s) << accText;

    s = TestSample();
    s.latitudeLongitude = {52.2215, 6.8937};
    s.altitude = infinity;
    QTest::newRow("an infinite altitude is empty while latitude and longitude print")
        << base({{"exportPosition", true}}) << s << "52.221500000\t6.893700000\t_";
    s.altitude = 0.0;
    QTest::newRow("an altitude of 0 prints as 0.000000")
        << base({{"exportPosition", true}}) << s << "52.221500000\t6.893700000\t0.000000";
    s.latitudeLongitude = KvVector();
    QTest::newRow("an altitude alone makes a line")
        << base({{"exportPosition", true}}) << s << "_\t_\t0.000000";
    s.altitude = -infinity;
    QTest::newRow("a negative infinite altitude is written")
        << base({{"exportPosition", true}}) << s << "_\t_\t-inf";
    s.altitude = infinity;
    QTest::newRow("no position at all makes no line")
        << base({{"exportPosition", true}}) << s << "<no row>";

    s = TestSample();
    s.velocity = {1.5, -0.25, 0.0};
    QTest::newRow("velocity") << base({{"exportVelocity", true}}) << s
                              << "1.500000\t-0.250000\t0.000000";

    s = TestSample();
    s.temperature = -999.99;
    QTest::newRow("a temperature of -999.99 is empty")
        << base({{"exportTemperature", true}}) << s << "<no row>";
    s.temperature = -1000.0;
    QTest::newRow("a temperature below -999.99 is empty")
        << base({{"exportTemperature", true}}) << s << "<no row>";
    s.temperature = notANumber;
    QTest::newRow("a NaN temperature is empty")
        << base({{"exportTemperature", true}}) << s << "<no row>";
    s.temperature = -999.98;
    QTest::newRow("a temperature of -999.98 prints as -999.98")
        << base({{"exportTemperature", true}}) << s << "-999.98";
    s.temperature = 25.125;
    QTest::newRow("temperature keeps two decimals under high precision")
        << base({{"exportTemperature", true}, {"highPrecision", true}}) << s << "25.13";

    s = TestSample();
    s.gyroTemperatures = {0x1900, 0xFF00, 0x1980};
    QTest::newRow("gyroscope temperatures 0x1900, 0xFF00, 0x1980 print as 25, -1, 26")
        << base({{"exportGyroTemperature", true}}) << s << "25\t-1\t26";
    s.gyroTemperatures = {0x1900};
    QTest::newRow("one gyroscope temperature and two empty fields")
        << base({{"exportGyroTemperature", true}}) << s << "25\t_\t_";
    s.gyroTemperatures = {0x0080, 0x8000, 0x7FFF, 0x1234};
    QTest::newRow("only three gyroscope temperatures are used")
        << base({{"exportGyroTemperature", true}}) << s << "0.5\t-1.3e+02\t1.3e+02";
    s.gyroTemperatures = {};
    QTest::newRow("no gyroscope temperatures make no line")
        << base({{"exportGyroTemperature", true}}) << s << "<no row>";
    s.gyroTemperatures = {0x1900, 0xFF00};
    QTest::newRow("raw gyroscope temperatures unsigned")
        << base({{"exportScrGyroTemperature", true}}) << s << "6400\t65280\t_";

    s = TestSample();
    s.scrAcceleration = {32768.9, -12.7, 0.0};
    s.scrGyroscopeData = {-0.99, 2e18, notANumber};
    s.scrMagneticField = {1.0, 2.0, 3.0};
    QTest::newRow("raw readouts are truncated toward zero")
        << base({{"exportScrAcceleration", true},
                 {"exportScrGyroscopeData", true},
                 {"exportScrMagneticField", true}})
        << s << "32768\t-12\t0\t0\t2000000000000000000\t-9223372036854775808\t1\t2\t3";
    s = TestSample();
    s.scrTemperature = 0;
    QTest::newRow("a raw temperature always makes a line")
        << base({{"exportScrTemperature", true}}) << s << "0";

    s = TestSample();
    s.triggerIn2 = {2, 1, 123456, 42, true};
    QTest::newRow("trigger 1 absent and trigger 2 present")
        << base({{"exportTriggerIn1", true}, {"exportTriggerIn2", true}}) << s
        << "_\t_\t_\t1\t    123456\t   42";
    s.triggerIn1 = {1, 255, 4294967295u, 65535, true};
    s.triggerIn2 = KvTriggerIndication();
    QTest::newRow("trigger 1 with its largest values, trigger 2 absent")
        << base({{"exportTriggerIn1", true}, {"exportTriggerIn2", true}}) << s
        << "255\t4294967295\t65535\t_\t_\t_";
    s.triggerIn1 = {1, 0, 0, 0, true};
    QTest::newRow("a trigger of zeros is present")
        << base({{"exportTriggerIn1", true}}) << s << "0\t         0\t    0";

    s = withAcceleration();
    QTest::newRow("heading switched on changes nothing")
        << with({{"exportHeading", true}}) << s << accText;
    QTest::newRow("NaN placeholder") << with({{"insertNan", true}, {"exportPosition", true}}) << s
                                     << accText + "\tNaN\tNaN\tNaN";
    QTest::newRow("empty fields stay empty by default") << with(
        {{"insertOtherPlaceholder", false}, {"insertNothing", true}, {"exportPosition", true}})
                                                        << s << accText + "\t\t\t";
}

void tst_SampleRow::row()
{
    QFETCH(Settings, settings);
    QFETCH(TestSample, sample);
    QFETCH(QString, expected);

    QCOMPARE(rowOf(settings, sample), expected);
}

void tst_SampleRow::countersAloneMakeNoLine()
{
    const Settings settings = base({{"exportPacketCounter", true},
                                    {"exportSampleTimeFine", true},
                                    {"exportDateTime", true},
                                    {"exportUtc", true},
                                    {"exportStatusFlags", true},
                                    {"exportClipFlags", true},
                                    {"exportRssi", true},
                                    {"exportCalibratedAcceleration", true}});
    TestSample s = fullSample();
    s.calibratedAcceleration = KvVector();
    const QStringList lines = exportLines(settings, {s, s, s});
    QCOMPARE(lines.size(), 1);

    const QStringList packetCounterOnly =
        exportLines(base({{"exportPacketCounter", true}}), {fullSample()});
    QCOMPARE(packetCounterOnly, QStringList{QStringLiteral("PacketCounter")});
}

void tst_SampleRow::highPrecisionIsReadForEveryValue()
{
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    apply(store, base({{"exportCalibratedAcceleration", true}}));
    TestSource source;
    AsciiExporter exporter(&source, &store);
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("out.txt")));
    QVERIFY(exporter.start(&file));
    source.sample = withAcceleration();
    QVERIFY(exporter.writeSample());
    store.setSetting(QStringLiteral("highPrecision"), true);
    QVERIFY(exporter.writeSample());
    store.setSetting(QStringLiteral("highPrecision"), QStringLiteral("false"));
    QVERIFY(exporter.writeSample());
    QVERIFY(exporter.finish());
    file.close();
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList lines = linesAfterHeaderBlock(file.readAll());
    QCOMPARE(
        lines.mid(1),
        (QStringList{"1.000000\t2.000000\t3.000000", "1\t2\t3", "1.000000\t2.000000\t3.000000"}));
}

void tst_SampleRow::settingsAreReadForEverySample()
{
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    apply(store, base({{"exportCalibratedAcceleration", true}}));
    TestSource source;
    AsciiExporter exporter(&source, &store);
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("out.txt")));
    QVERIFY(exporter.start(&file));
    TestSample s = withAcceleration();
    s.packetCounter = 9;
    source.sample = s;
    QVERIFY(exporter.writeSample());
    store.setSetting(QStringLiteral("exportPacketCounter"), true);
    QVERIFY(exporter.writeSample());
    QVERIFY(exporter.finish());
    file.close();
    QVERIFY(file.open(QIODevice::ReadOnly));
    // the header line stays as it was when the export started
    QCOMPARE(linesAfterHeaderBlock(file.readAll()),
             (QStringList{"Acc_X\tAcc_Y\tAcc_Z", "1.000000\t2.000000\t3.000000",
                          "00009\t1.000000\t2.000000\t3.000000"}));
}

void tst_SampleRow::delimiterIsFixedAtCreation()
{
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    apply(store,
          base({{"exportCalibratedAcceleration", true},
                {"exportPosition", true},
                {"useTabDelimiter", false},
                {"useOtherDelimiter", true},
                {"otherDelimiter", "|"}}));
    TestSource source;
    AsciiExporter exporter(&source, &store);
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("out.txt")));
    QVERIFY(exporter.start(&file));
    source.sample = withAcceleration();
    QVERIFY(exporter.writeSample());
    store.setSetting(QStringLiteral("otherDelimiter"), QStringLiteral(";"));
    store.setSetting(QStringLiteral("otherPlaceholder"), QStringLiteral("?"));
    store.setSetting(QStringLiteral("useOtherDelimiter"), false);
    store.setSetting(QStringLiteral("useCommaDelimiter"), true);
    QVERIFY(exporter.writeSample());
    QVERIFY(exporter.finish());
    file.close();
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList lines = linesAfterHeaderBlock(file.readAll());
    QCOMPARE(lines.mid(1),
             (QStringList{"1.000000|2.000000|3.000000|_|_|_", "1.000000|2.000000|3.000000|_|_|_"}));

    // a new exporter takes the new texts
    AsciiExporter next(&source, &store);
    QCOMPARE(linesAfterHeaderBlock(exportSamples(&next, &source, {withAcceleration()})).at(1),
             QStringLiteral("1.000000,2.000000,3.000000,?,?,?"));
}

void tst_SampleRow::receiverRecords_data()
{
    QTest::addColumn<Settings>("settings");
    QTest::addColumn<TestSample>("sample");
    QTest::addColumn<QString>("expected");

    const Settings gps = base({{"exportRawGps", true}});
    const Settings gnss = base({{"exportRawGnss", true}});
    const auto repeat = [](const QString &piece, int times) {
        QString text;
        for (int i = 0; i < times; ++i)
            text += piece;
        return text;
    };
    const auto trimmed = [](QString text) {
        text.chop(1);
        return text;
    };

    TestSample s;
    QTest::newRow("GPS records all absent")
        << gps << s << trimmed(repeat(QStringLiteral("_\t"), 66));
    QTest::newRow("GNSS records all absent")
        << gnss << s << trimmed(repeat(QStringLiteral("_\t"), 275));

    s = fullSample();
    QTest::newRow("GPS records with five channels")
        << gps << s
        << trimmed("345600000\t-12345\t2345\t3\t13\t3881556.20\t484631.23\t5090155.87\t2.50\t"
                   "-0.12\t0.05\t0.00\t0.35\t1.45\t9\t"
                   "345600000\t2.10\t1.45\t0.98\t1.20\t0.87\t0.60\t0.55\t"
                   "345600000\t25\t-5000\t2026\t11\t21\t9\t30\t0\t7\t"
                   "345600000\t2\t7\t5\t6\t12\t7\t25\t4\t29\t5\t"
                   + repeat(QStringLiteral("_\t"), 22));
    QTest::newRow("GNSS records with five satellites")
        << gnss << s
        << trimmed(
               "345600000\t25\t-5000\t2026\t11\t21\t9\t30\t0\t7\t3\t1\t14\t6.8937000\t52.2215000\t"
               "42500\t1234\t1500\t2500\t150\t-25\t3\t152\t90.00\t200\t12.35\t-45.00\t"
               "2.10\t1.45\t0.98\t1.20\t0.87\t0.60\t0.55\t"
               "345600000\t0\t2\t44\t31\t0\t5\t38\t29\t2\t11\t41\t95\t3\t23\t30\t12\t6\t7\t0\t0\t"
               + repeat(QStringLiteral("_\t"), 220));

    s = fullSample();
    s.gpsSatellites.numCh = 0;
    s.gnssSatellites.numSvs = 0;
    s.gpsSolution.iTOW = 0;
    s.gnssPvt.iTOW = 0;
    QTest::newRow("GPS time of week 0 and no channels")
        << gps << s
        << trimmed(repeat(QStringLiteral("_\t"), 15)
                   + "345600000\t2.10\t1.45\t0.98\t1.20\t0.87\t0.60\t0.55\t"
                     "345600000\t25\t-5000\t2026\t11\t21\t9\t30\t0\t7\t"
                     "345600000\t"
                   + repeat(QStringLiteral("_\t"), 32));
    QTest::newRow("GNSS time of week 0 and no satellites")
        << gnss << s
        << trimmed(repeat(QStringLiteral("_\t"), 34) + "345600000\t"
                   + repeat(QStringLiteral("_\t"), 240));

    s = TestSample();
    s.gpsSatellites.iTOW = 1;
    s.gpsSatellites.numCh = 40;
    for (int i = 0; i < KvGpsSatelliteInfo::maxChannels; ++i)
        s.gpsSatellites.channels[i] = {quint8(i + 1), quint8(i % 8)};
    QString channels;
    for (int i = 0; i < 16; ++i)
        channels += QStringLiteral("%1\t%2\t").arg(i + 1).arg(i % 8);
    QTest::newRow("more than 16 GPS channels: the first 16 are written")
        << gps << s << trimmed(repeat(QStringLiteral("_\t"), 33) + "1\t" + channels);

    s = TestSample();
    s.gnssSatellites.iTOW = 4294967295u;
    s.gnssSatellites.numSvs = 255;
    for (int i = 0; i < KvGnssSatelliteInfo::maxSatellites; ++i)
        s.gnssSatellites.satellites[i] = {quint8(i % 7), quint8(i), quint8(60 - i),
                                          quint32(i * 1000)};
    QString satellites;
    for (int i = 0; i < 60; ++i)
        satellites +=
            QStringLiteral("%1\t%2\t%3\t%4\t").arg(i % 7).arg(i).arg(60 - i).arg(i * 1000);
    QTest::newRow("more than 60 GNSS satellites: the first 60 are written, time of week unsigned")
        << gnss << s << trimmed(repeat(QStringLiteral("_\t"), 34) + "4294967295\t" + satellites);

    s = TestSample();
    s.gpsSolution = {
        4294967295u, -2147483647 - 1, -32768,     255, 255,         -2147483647 - 1, 2147483647, -1,
        4294967295u, -2147483647 - 1, 2147483647, -1,  4294967295u, 65535,           255};
    s.gpsDop = {604799999, 65535, 0, 1, 99, 100, 101, 65534};
    s.gpsUtcTime = {1, 4294967295u, -1000000000, 65535, 255, 255, 255, 255, 255, 255};
    QTest::newRow("GPS records with their extreme values")
        << gps << s
        << trimmed("-1\t-2147483648\t-32768\t255\t255\t-21474836.48\t21474836.47\t-0.01\t"
                   "42949672.95\t-21474836.48\t21474836.47\t-0.01\t42949672.95\t655.35\t255\t"
                   "604799999\t655.35\t0.00\t0.01\t0.99\t1.00\t1.01\t655.34\t"
                   "1\t4294967295\t-1000000000\t65535\t255\t255\t255\t255\t255\t255\t"
                   + repeat(QStringLiteral("_\t"), 33));

    s = TestSample();
    s.gnssPvt.iTOW = 1;
    s.gnssPvt.lon = -1800000000;
    s.gnssPvt.lat = 900000000;
    s.gnssPvt.height = -2147483647 - 1;
    s.gnssPvt.hAcc = 4294967295u;
    s.gnssPvt.headMot = -18000000;
    s.gnssPvt.headAcc = 4294967295u;
    s.gnssPvt.headVeh = 2147483647;
    s.gnssPvt.gDOP = 65535;
    s.gnssPvt.nano = -1;
    s.gnssPvt.tAcc = 4294967295u;
    QTest::newRow("GNSS record with negative and extreme values")
        << gnss << s
        << trimmed("1\t4294967295\t-1\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t-180.0000000\t90.0000000\t"
                   "-2147483648\t0\t4294967295\t0\t0\t0\t0\t0\t-180.00\t0\t42949.67\t21474.84\t"
                   "655.35\t0.00\t0.00\t0.00\t0.00\t0.00\t0.00\t"
                   + repeat(QStringLiteral("_\t"), 241));
}

void tst_SampleRow::receiverRecords()
{
    QFETCH(Settings, settings);
    QFETCH(TestSample, sample);
    QFETCH(QString, expected);

    QCOMPARE(rowOf(settings, sample), expected);
}

void tst_SampleRow::fieldCounts_data()
{
    QTest::addColumn<Settings>("settings");
    QTest::addColumn<QString>("delimiter");
    QTest::addColumn<int>("columns");

    struct Delimiter
    {
        const char *name;
        Settings settings;
        const char *text;
    };
    const Delimiter delimiters[] = {
        {"tab", {}, "\t"},
        {"comma", {{"useCommaDelimiter", true}}, ","},
        {"semicolon", {{"useSemiColonDelimiter", true}, {"useTabDelimiter", false}}, ";"},
        {"blank", {{"useSpaceDelimiter", true}, {"useTabDelimiter", false}}, " "},
        {"custom '::'", {{"useOtherDelimiter", true}, {"otherDelimiter", "::"}}, "::"},
        {"custom '; '", {{"useOtherDelimiter", true}, {"otherDelimiter", "; "}}, "; "},
    };
    struct Group
    {
        const char *key;
        QVariant value;
        int columns;
    };
    const Group groups[] = {
        {"exportPacketCounter", true, 1},
        {"exportSampleTimeFine", true, 1},
        {"exportDateTime", true, 4},
        {"exportUtc", true, 8},
        {"exportStatusFlags", true, 1},
        {"exportClipFlags", true, 1},
        {"exportRssi", true, 1},
        {"exportCalibratedAcceleration", true, 3},
        {"exportFreeAcceleration", true, 3},
        {"exportCalibratedAngularVelocity", true, 3},
        {"exportMagneticField", true, 3},
        {"exportVelocityIncrement", true, 3},
        {"exportOrientationIncrement", true, 4},
        {"exportPressure", true, 1},
        {"exportOrientation", "Quaternion", 4},
        {"exportOrientation", "Euler", 3},
        {"exportOrientation", "Matrix", 9},
        {"exportPosition", true, 3},
        {"exportVelocity", true, 3},
        {"exportTemperature", true, 1},
        {"exportGyroTemperature", true, 3},
        {"exportScrAcceleration", true, 3},
        {"exportScrGyroscopeData", true, 3},
        {"exportScrMagneticField", true, 3},
        {"exportScrTemperature", true, 1},
        {"exportScrGyroTemperature", true, 3},
        {"exportRawGps", true, 66},
        {"exportRawGnss", true, 275},
        {"exportTriggerIn1", true, 3},
        {"exportTriggerIn2", true, 3},
    };
    for (const Delimiter &delimiter : delimiters) {
        Settings all = base(delimiter.settings);
        int allColumns = 0;
        for (const Group &group : groups) {
            // The raw temperature, which always makes a line, goes along so
            // that groups which never make a line of their own are counted too.
            Settings settings = base(delimiter.settings);
            settings.insert(QStringLiteral("exportScrTemperature"), true);
            settings.insert(QString::fromLatin1(group.key), group.value);
            const bool alone = qstrcmp(group.key, "exportScrTemperature") == 0;
            QTest::addRow("%s alone, %s", group.key, delimiter.name)
                << settings << QString::fromLatin1(delimiter.text)
                << group.columns + (alone ? 0 : 1);
            if (group.value.userType() == QMetaType::Bool) {
                all.insert(QString::fromLatin1(group.key), true);
                allColumns += group.columns;
            }
        }
        all.insert(QStringLiteral("exportOrientation"), QStringLiteral("Matrix"));
        QTest::addRow("every group, %s", delimiter.name)
            << all << QString::fromLatin1(delimiter.text) << allColumns + 9;
    }
}

void tst_SampleRow::fieldCounts()
{
    QFETCH(Settings, settings);
    QFETCH(QString, delimiter);
    QFETCH(int, columns);

    // One sample with every kind of data, one with none of it: both lines
    // must have as many fields as the header. Trigger fields are padded
    // with blanks; full-width values keep them countable with a blank
    // delimiter.
    TestSample full = fullSample();
    full.triggerIn1 = {1, 1, 4000000000u, 60000, true};
    full.triggerIn2 = full.triggerIn1;
    const QStringList lines = exportLines(settings, {full, TestSample()});
    QVERIFY(lines.size() >= 2);
    const int headerFields = lines.first().split(delimiter).size();
    for (const QString &line : lines.mid(1))
        QCOMPARE(line.split(delimiter).size(), headerFields);
    if (delimiter == QLatin1String("\t"))
        QCOMPARE(headerFields, columns);
}

void tst_SampleRow::delimiterTexts_data()
{
    QTest::addColumn<QString>("delimiter");

    QTest::newRow("two characters") << "::";
    QTest::newRow("Latin-1 beyond ASCII") << QString::fromUtf8("\u00a7");
    QTest::newRow("beyond Latin-1") << QString::fromUtf8("\u2192");
    QTest::newRow("Latin-1, then beyond") << QString::fromUtf8(";\u2192");
    QTest::newRow("sixteen characters") << "<-- sixteen -->|";
    QTest::newRow("seventeen characters") << "<-- seventeen -->";
    QTest::newRow("first and last alike") << "-+-";
}

// Whatever the delimiter, a line is the tab-delimited line with each tab
// replaced by it, and one character trimmed at the end as the header's rule
// says: numbers, integers and empty fields alike.
void tst_SampleRow::delimiterTexts()
{
    QFETCH(QString, delimiter);

    const Settings groups{{"exportPacketCounter", true},
                          {"exportStatusFlags", true},
                          {"exportCalibratedAcceleration", true},
                          {"exportFreeAcceleration", true},
                          {"exportOrientation", "Quaternion"},
                          {"exportPressure", true},
                          {"exportTemperature", true}};
    Settings custom = groups;
    custom.insert(QStringLiteral("useTabDelimiter"), false);
    custom.insert(QStringLiteral("useOtherDelimiter"), true);
    custom.insert(QStringLiteral("otherDelimiter"), delimiter);
    const Samples samples{fullSample(), withAcceleration()};

    const QStringList tabbed = exportLines(base(groups), samples);
    const QStringList lines = exportLines(base(custom), samples);
    QCOMPARE(lines.size(), 3);
    QCOMPARE(tabbed.size(), lines.size());
    for (int i = 0; i < lines.size(); ++i) {
        QString expected = tabbed.at(i).split(QLatin1Char('\t')).join(delimiter) + delimiter;
        if (expected.endsWith(delimiter.at(0)))
            expected.chop(1);
        QCOMPARE(lines.at(i), expected);
    }
}

void tst_SampleRow::highPrecisionStoredAs_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("expected");

    // the value as the variant's boolean conversion reads it
    const QString high = QStringLiteral("9.8100000000000005\t-0.5\t100");
    const QString fixed = QStringLiteral("9.810000\t-0.500000\t100.000000");
    QTest::newRow("the text yes is true") << QVariant(QStringLiteral("yes")) << high;
    QTest::newRow("the text true after a blank is true")
        << QVariant(QStringLiteral(" true")) << high;
    QTest::newRow("the text false after a blank is true too")
        << QVariant(QStringLiteral(" false")) << high;
    QTest::newRow("the text FALSE is false") << QVariant(QStringLiteral("FALSE")) << fixed;
    QTest::newRow("the text 0 is false") << QVariant(QStringLiteral("0")) << fixed;
    QTest::newRow("an empty text is false") << QVariant(QString()) << fixed;
    QTest::newRow("the integer 2 is true") << QVariant(2) << high;
    QTest::newRow("the integer 0 is false") << QVariant(0) << fixed;
    QTest::newRow("an invalid variant is false") << QVariant() << fixed;
}

// However the host's store holds "highPrecision", the row writer reads it with
// the variant's boolean conversion.
void tst_SampleRow::highPrecisionStoredAs()
{
    QFETCH(QVariant, stored);
    QFETCH(QString, expected);

    TestSample s;
    s.calibratedAcceleration = {9.81, -0.5, 100.0};
    QCOMPARE(rowOf(base({{"exportCalibratedAcceleration", true}, {"highPrecision", stored}}), s),
             expected);
}

void tst_SampleRow::surrogatesInCustomTexts_data()
{
    QTest::addColumn<QString>("delimiter");
    QTest::addColumn<QString>("placeholder");
    QTest::addColumn<QByteArray>("expected"); // the column-header line and the row

    const QString grin = QString::fromUcs4(U"\U0001F600");
    const QString high(QChar(0xD83D));
    const QString low(QChar(0xDE00));
    // UTF-8 of U+1F600; a surrogate without its partner cannot be written in
    // UTF-8, and the stream writes a question mark in its place.
    QTest::newRow("a delimiter of one character beyond the 16-bit range")
        << grin << QStringLiteral("-")
        << QByteArray("Acc_X\xF0\x9F\x98\x80"
                      "Acc_Y\xF0\x9F\x98\x80"
                      "Acc_Z\xF0\x9F\x98\x80"
                      "Pressure\xF0\x9F\x98\x80\n"
                      "1.000000\xF0\x9F\x98\x80"
                      "2.000000\xF0\x9F\x98\x80"
                      "3.000000\xF0\x9F\x98\x80"
                      "-\xF0\x9F\x98\x80\n");
    QTest::newRow("a placeholder of one character beyond the 16-bit range")
        << QStringLiteral(";") << grin
        << QByteArray("Acc_X;Acc_Y;Acc_Z;Pressure\n"
                      "1.000000;2.000000;3.000000;\xF0\x9F\x98\x80\n");
    QTest::newRow("a delimiter of a lone high surrogate")
        << high << QStringLiteral("-")
        << QByteArray("Acc_X?Acc_Y?Acc_Z?Pressure\n1.000000?2.000000?3.000000?-\n");
    QTest::newRow("a delimiter of a lone low surrogate")
        << low << QStringLiteral("-")
        << QByteArray("Acc_X?Acc_Y?Acc_Z?Pressure\n1.000000?2.000000?3.000000?-\n");
    QTest::newRow("a placeholder of a lone high surrogate")
        << QStringLiteral(";") << high
        << QByteArray("Acc_X;Acc_Y;Acc_Z;Pressure\n1.000000;2.000000;3.000000;?\n");
    QTest::newRow("a placeholder of a lone low surrogate")
        << QStringLiteral(";") << low
        << QByteArray("Acc_X;Acc_Y;Acc_Z;Pressure\n1.000000;2.000000;3.000000;?\n");
    QTest::newRow("a placeholder of the two surrogates in the wrong order")
        << QStringLiteral(";") << low + high
        << QByteArray("Acc_X;Acc_Y;Acc_Z;Pressure\n1.000000;2.000000;3.000000;??\n");
}

// The custom texts go into the file as the stream encodes them. Only the
// first UTF-16 unit of the delimiter is trimmed from a line's end, so a
// delimiter beyond the 16-bit range stays there whole.
void tst_SampleRow::surrogatesInCustomTexts()
{
    QFETCH(QString, delimiter);
    QFETCH(QString, placeholder);
    QFETCH(QByteArray, expected);

    const Settings settings = base({{"exportCalibratedAcceleration", true},
                                    {"exportPressure", true},
                                    {"useTabDelimiter", false},
                                    {"useOtherDelimiter", true},
                                    {"otherDelimiter", delimiter},
                                    {"otherPlaceholder", placeholder}});
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    apply(store, settings);
    TestSource source;
    AsciiExporter exporter(&source, &store);
    const QByteArray file = exportSamples(&exporter, &source, {withAcceleration()});
    // the five lines of the header block come first
    int at = 0;
    for (int line = 0; line < 5 && at >= 0; ++line)
        at = file.indexOf('\n', at) + 1;
    QVERIFY(at > 0);
    QCOMPARE(file.mid(at), expected);
}

void tst_SampleRow::groupSwitchedOffDuringAnExport_data()
{
    QTest::addColumn<Settings>("atStart");
    QTest::addColumn<Settings>("changes");
    QTest::addColumn<QStringList>("expected");

    const Settings both{{"exportCalibratedAcceleration", true}, {"exportPressure", true}};
    QTest::newRow("a data group switched off")
        << both << Settings{{"exportPressure", false}}
        << QStringList{"Acc_X\tAcc_Y\tAcc_Z\tPressure", "1.000000\t2.000000\t3.000000\t_",
                       "1.000000\t2.000000\t3.000000"};
    QTest::newRow("the only sensor group switched off: no more rows")
        << Settings{{"exportPacketCounter", true}, {"exportCalibratedAcceleration", true}}
        << Settings{{"exportCalibratedAcceleration", false}}
        << QStringList{"PacketCounter\tAcc_X\tAcc_Y\tAcc_Z", "00007\t1.000000\t2.000000\t3.000000"};
    QTest::newRow("orientation switched off")
        << Settings{{"exportCalibratedAcceleration", true}, {"exportOrientation", "Quaternion"}}
        << Settings{{"exportOrientation", "None"}}
        << QStringList{"Acc_X\tAcc_Y\tAcc_Z\tQuat_q0\tQuat_q1\tQuat_q2\tQuat_q3",
                       "1.000000\t2.000000\t3.000000\t1.000000\t0.000000\t0.000000\t0.000000",
                       "1.000000\t2.000000\t3.000000"};
    QTest::newRow("orientation changed from quaternion to Euler angles")
        << Settings{{"exportCalibratedAcceleration", true}, {"exportOrientation", "Quaternion"}}
        << Settings{{"exportOrientation", "Euler"}}
        << QStringList{"Acc_X\tAcc_Y\tAcc_Z\tQuat_q0\tQuat_q1\tQuat_q2\tQuat_q3",
                       "1.000000\t2.000000\t3.000000\t1.000000\t0.000000\t0.000000\t0.000000",
                       "1.000000\t2.000000\t3.000000\t10.000000\t-20.000000\t30.000000"};
    QTest::newRow("orientation removed from the store")
        << Settings{{"exportCalibratedAcceleration", true}, {"exportOrientation", "Quaternion"}}
        << Settings{{"exportOrientation", QVariant()}}
        << QStringList{"Acc_X\tAcc_Y\tAcc_Z\tQuat_q0\tQuat_q1\tQuat_q2\tQuat_q3",
                       "1.000000\t2.000000\t3.000000\t1.000000\t0.000000\t0.000000\t0.000000",
                       "1.000000\t2.000000\t3.000000"};
}

// The column-header line is written once, with the settings of the start;
// the groups of each row are read from the settings as they are when the
// row is written. A group switched off midway leaves the later rows without
// its fields, under the header that still names them.
void tst_SampleRow::groupSwitchedOffDuringAnExport()
{
    QFETCH(Settings, atStart);
    QFETCH(Settings, changes);
    QFETCH(QStringList, expected);

    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    apply(store, base(atStart));
    TestSource source;
    AsciiExporter exporter(&source, &store);
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("out.txt")));
    QVERIFY(exporter.start(&file));
    TestSample s = withAcceleration();
    s.packetCounter = 7;
    s.orientationQuaternion = {1.0, 0.0, 0.0, 0.0};
    s.orientationEuler = {10.0, -20.0, 30.0};
    source.sample = s;
    QVERIFY(exporter.writeSample());
    apply(store, changes);
    QVERIFY(exporter.writeSample());
    QVERIFY(exporter.finish());
    file.close();
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(linesAfterHeaderBlock(file.readAll()), expected);
}

QTEST_GUILESS_MAIN(tst_SampleRow)
#include "tst_samplerow.moc"
