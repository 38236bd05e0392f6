#include "columncatalogue.h"
#include "delimiterchoice.h"
#include "exportrun.h"
#include "rowwriter.h"
#include "settingscatalogue.h"
#include "testsource.h"

#include <settingssynchronizer.h>

#include <QtTest>

#include <memory>

Q_DECLARE_METATYPE(TestSample)

// Every run of the catalogue writes exactly one field per column it names,
// whatever the sample holds; so every value of a line stands under its name.
class tst_ColumnCatalogue : public QObject
{
    Q_OBJECT

private slots:
    void columnCounts_data();
    void columnCounts();
    void everyRunWritesOneFieldPerColumn_data();
    void everyRunWritesOneFieldPerColumn();
    void rowsHaveTheHeaderColumns_data();
    void rowsHaveTheHeaderColumns();
};

namespace {

// A delimiter no value contains, so that a line's fields can be counted.
constexpr QChar bar = QLatin1Char('|');

std::unique_ptr<SettingsSynchronizer> barDelimitedStore()
{
    auto store = std::make_unique<SettingsSynchronizer>(SettingsCatalogue::defaults(),
                                                        SettingsCatalogue::descriptions());
    store->setSetting(QStringLiteral("useTabDelimiter"), false);
    store->setSetting(QStringLiteral("useOtherDelimiter"), true);
    store->setSetting(QStringLiteral("otherDelimiter"), QString(bar));
    store->setSetting(QStringLiteral("insertNothing"), false);
    store->setSetting(QStringLiteral("insertNan"), true);
    return store;
}

// Vectors and lists shorter than their groups, records with a few
// satellites, one trigger.
TestSample partialSample()
{
    TestSample s;
    s.calibratedAcceleration = {1.0};
    s.freeAcceleration = {1.0, 2.0};
    s.scrAcceleration = {7.0};
    s.velocityIncrement = {0.5};
    s.calibratedAngularVelocity = {0.25, 0.5};
    s.scrGyroscopeData = {1.0, 2.0};
    s.magneticField = {0.1};
    s.scrMagneticField = {3.0};
    s.latitudeLongitude = {52.0};
    s.velocity = {1.0};
    s.gyroTemperatures = {0x1900};
    s.orientationEuler = {0.0, 0.0, 0.000001};
    s.gpsSolution.iTOW = 1000;
    s.gpsSatellites.iTOW = 1000;
    s.gpsSatellites.numCh = 3;
    s.gnssSatellites.iTOW = 1000;
    s.gnssSatellites.numSvs = 5;
    s.triggerIn2.valid = true;
    return s;
}

// Records that say they hold more satellites than they have room for.
TestSample crowdedSample()
{
    TestSample s = fullSample();
    s.gpsSatellites.numCh = 255;
    s.gnssSatellites.numSvs = 255;
    return s;
}

QStringList orientationFormats()
{
    return {QStringLiteral("Euler"), QStringLiteral("Matrix"), QStringLiteral("Quaternion"),
            QStringLiteral("None")};
}

} // namespace

void tst_ColumnCatalogue::columnCounts_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("setting");
    QTest::addColumn<int>("columns");

    // Written out here on purpose, apart from the catalogue.
    const QList<QPair<const char *, int>> counts = {
        {"exportPacketCounter", 1},
        {"exportSampleTimeFine", 1},
        {"exportDateTime", 4},
        {"exportUtc", 8},
        {"exportStatusFlags", 1},
        {"exportClipFlags", 1},
        {"exportRssi", 1},
        {"exportCalibratedAcceleration", 3},
        {"exportFreeAcceleration", 3},
        {"exportCalibratedAngularVelocity", 3},
        {"exportMagneticField", 3},
        {"exportVelocityIncrement", 3},
        {"exportOrientationIncrement", 4},
        {"exportPressure", 1},
        {"exportPosition", 3},
        {"exportVelocity", 3},
        {"exportTemperature", 1},
        {"exportGyroTemperature", 3},
        {"exportScrAcceleration", 3},
        {"exportScrGyroscopeData", 3},
        {"exportScrMagneticField", 3},
        {"exportScrTemperature", 1},
        {"exportScrGyroTemperature", 3},
        {"exportRawGps", 66},
        {"exportRawGnss", 275},
        {"exportTriggerIn1", 3},
        {"exportTriggerIn2", 3},
    };
    for (const auto &count : counts) {
        QTest::addRow("%s on", count.first) << count.first << "true" << count.second;
        QTest::addRow("%s off", count.first) << count.first << "false" << 0;
    }
    QTest::newRow("orientation as Euler angles") << "exportOrientation"
                                                 << "Euler" << 3;
    QTest::newRow("orientation as a matrix") << "exportOrientation"
                                             << "Matrix" << 9;
    QTest::newRow("orientation as a quaternion") << "exportOrientation"
                                                 << "quaternion" << 4;
    QTest::newRow("no orientation") << "exportOrientation"
                                    << "None" << 0;
}

void tst_ColumnCatalogue::columnCounts()
{
    QFETCH(QString, key);
    QFETCH(QString, setting);
    QFETCH(int, columns);

    const ColumnCatalogue::DataGroup *found = nullptr;
    for (const ColumnCatalogue::DataGroup &group : ColumnCatalogue::groups()) {
        if (key == QLatin1String(group.settingKey))
            found = &group;
    }
    QVERIFY(found);
    const QVariant value = setting == QLatin1String("true") ? QVariant(true)
        : setting == QLatin1String("false")                 ? QVariant(false)
                                                            : QVariant(setting);
    QCOMPARE(ColumnCatalogue::selectedFields(*found, value).columnCount(), columns);
}

void tst_ColumnCatalogue::everyRunWritesOneFieldPerColumn_data()
{
    QTest::addColumn<TestSample>("sample");

    QTest::newRow("a sample with every kind of data") << fullSample();
    QTest::newRow("a sample without any data") << TestSample();
    QTest::newRow("a sample with a packet counter and an acceleration") << sparseSample();
    QTest::newRow("short vectors, few satellites, one trigger") << partialSample();
    QTest::newRow("more satellites than the records hold") << crowdedSample();
}

void tst_ColumnCatalogue::everyRunWritesOneFieldPerColumn()
{
    QFETCH(TestSample, sample);

    const auto store = barDelimitedStore();
    TestSource source;
    source.sample = sample;
    for (const bool highPrecision : {false, true}) {
        store->setSetting(QStringLiteral("highPrecision"), highPrecision);
        RowWriter writer(&source, store.get(), makeDelimiter(store.get()),
                         makeEmptyFieldText(store.get()));
        for (const ColumnCatalogue::DataGroup &group : ColumnCatalogue::groups()) {
            QList<ColumnCatalogue::FieldsList> selections{
                ColumnCatalogue::selectedFields(group, true)};
            if (group.selection == ColumnCatalogue::Selection::OrientationFormat) {
                selections.clear();
                for (const QString &format : orientationFormats())
                    selections.append(ColumnCatalogue::selectedFields(group, format));
            }
            for (const ColumnCatalogue::FieldsList &selection : qAsConst(selections)) {
                for (const ColumnCatalogue::Fields &fields : selection) {
                    writer.row().clear();
                    fields.write(writer, fields);
                    const int written = int(writer.row().line().count(bar));
                    QVERIFY2(written == fields.count(),
                             qPrintable(QStringLiteral("%1 from %2: %3 fields for %4 columns: %5")
                                            .arg(QLatin1String(group.settingKey),
                                                 QLatin1String(*fields.names.begin()))
                                            .arg(written)
                                            .arg(fields.count())
                                            .arg(writer.row().line())));
                }
            }
        }
    }
}

void tst_ColumnCatalogue::rowsHaveTheHeaderColumns_data()
{
    QTest::addColumn<TestSample>("sample");
    QTest::addColumn<QString>("orientation");

    const QVector<QPair<const char *, TestSample>> samples = {
        {"full", fullSample()},       {"empty", TestSample()},      {"sparse", sparseSample()},
        {"partial", partialSample()}, {"crowded", crowdedSample()},
    };
    for (const auto &sample : samples) {
        for (const QString &format : orientationFormats()) {
            QTest::addRow("%s sample, orientation %s", sample.first, qPrintable(format))
                << sample.second << format;
        }
    }
}

void tst_ColumnCatalogue::rowsHaveTheHeaderColumns()
{
    QFETCH(TestSample, sample);
    QFETCH(QString, orientation);

    const auto store = barDelimitedStore();
    for (const QString &key : dataGroupKeys())
        store->setSetting(key, true);
    store->setSetting(QStringLiteral("exportOrientation"), orientation);
    TestSource source;
    source.sample = sample;
    RowWriter writer(&source, store.get(), makeDelimiter(store.get()),
                     makeEmptyFieldText(store.get()));

    QString header;
    QTextStream headerStream(&header);
    writer.writeColumnHeader(headerStream);
    headerStream.flush();
    QString row;
    QTextStream rowStream(&row);
    QVERIFY(writer.writeSampleRow(rowStream));
    rowStream.flush();

    QCOMPARE(row.split(bar).size(), header.split(bar).size());
}

QTEST_GUILESS_MAIN(tst_ColumnCatalogue)
#include "tst_columncatalogue.moc"
