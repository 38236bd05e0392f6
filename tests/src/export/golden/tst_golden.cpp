#include "asciiexporter.h"
#include "settingscatalogue.h"

#include <exportrun.h>
#include <settingssynchronizer.h>

#include <QtTest>

using Settings = QMap<QString, QVariant>;

// Whole exports compared byte for byte with files checked in under
// tests/data. Run with ASCIIEXPORTER_UPDATE_GOLDEN=1 to rewrite them after a
// deliberate change of the format; then check the changed lines by hand.
//
// Checked by hand, field by field, against the format rules:
// - export-defaults.txt: all five header lines; the column line; the row of
//   the full sample (00042, 123456, then 1.500000 -2.250000 45.000000); no
//   row for the sparse sample (its Euler angles are all zero, so nothing
//   but counters would be written) nor for the counters-only sample.
// - export-all-euler.txt: the column line (416 names); in the full sample's
//   row the date (2026 11 21 0.0000), UTC, status -2147483645, RSSI
//   -57.5000, the vectors, 1013.2500, Euler, the position (9 and 6
//   decimals), 25.13, 25 -1 26, the truncated readouts 32768 -12 0, 2048,
//   6400 65280 6528, and the GPS and GNSS blocks up to the first empty
//   channel; the triggers (three empty, then 1, "    123456", "   42").
//   The sparse and the counters-only samples do make rows here, since the
//   raw temperature and the receiver groups always count as data; their
//   empty fields were counted against the column line.
// - export-all-matrix.txt: the column order of the matrix; in the full
//   sample's row the nine matrix values column by column (0 0 1 -1 0 0 0 -1
//   0), high precision (9.8100000000000005, 52.221499999999999, 6.8937);
//   "NaN" in every empty field of the sparse sample, commas throughout.
class tst_Golden : public QObject
{
    Q_OBJECT

private slots:
    void exportFile_data();
    void exportFile();
};

namespace {

Settings everyGroup()
{
    Settings settings;
    for (const QString &key : SettingsCatalogue::defaults().keys()) {
        if (key.startsWith(QLatin1String("export")) && key != QLatin1String("exportOrientation"))
            settings.insert(key, true);
    }
    return settings;
}

} // namespace

void tst_Golden::exportFile_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<Settings>("settings");

    QTest::newRow("default settings") << "export-defaults.txt" << Settings();

    Settings euler = everyGroup();
    euler.insert(QStringLiteral("exportOrientation"), QStringLiteral("Euler"));
    QTest::newRow("every group with Euler angles") << "export-all-euler.txt" << euler;

    Settings matrix = everyGroup();
    matrix.insert(QStringLiteral("exportOrientation"), QStringLiteral("Matrix"));
    matrix.insert(QStringLiteral("useCommaDelimiter"), true);
    matrix.insert(QStringLiteral("useTabDelimiter"), false);
    matrix.insert(QStringLiteral("insertNan"), true);
    matrix.insert(QStringLiteral("insertNothing"), false);
    matrix.insert(QStringLiteral("highPrecision"), true);
    QTest::newRow("every group with a matrix, commas, NaN and high precision")
        << "export-all-matrix.txt" << matrix;
}

void tst_Golden::exportFile()
{
    QFETCH(QString, fileName);
    QFETCH(Settings, settings);

    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    for (auto it = settings.cbegin(); it != settings.cend(); ++it)
        store.setSetting(it.key(), it.value());
    TestSource source;
    source.properties = recordingProperties();
    source.rate = 100.0;
    AsciiExporter exporter(&source, &store);
    const QByteArray actual = exportSamples(&exporter, &source, recordingSamples());
    QVERIFY(!actual.isEmpty());

    QFile expectedFile(QStringLiteral(TEST_DATA_DIR "/") + fileName);
    if (qEnvironmentVariableIsSet("ASCIIEXPORTER_UPDATE_GOLDEN")) {
        QVERIFY(expectedFile.open(QIODevice::WriteOnly));
        expectedFile.write(actual);
        QSKIP("expected file rewritten");
    }
    QVERIFY2(expectedFile.open(QIODevice::ReadOnly), qPrintable(expectedFile.fileName()));
    QCOMPARE(actual, expectedFile.readAll());
}

QTEST_GUILESS_MAIN(tst_Golden)
#include "tst_golden.moc"
