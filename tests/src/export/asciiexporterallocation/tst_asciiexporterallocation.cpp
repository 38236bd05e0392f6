#include "asciiexporter.h"
#include "settingscatalogue.h"

#include <allocationcounter.h>
#include <exportrun.h>
#include <settingssynchronizer.h>

#include <QtTest>

#include <new>

using Settings = QMap<QString, QVariant>;

// An exporter whose construction runs out of memory gives back all it had
// made: the delimiter objects, their handles and the row writer.
class tst_AsciiExporterAllocation : public QObject
{
    Q_OBJECT

private slots:
    void failingAllocationLeavesNothing_data();
    void failingAllocationLeavesNothing();
};

void tst_AsciiExporterAllocation::failingAllocationLeavesNothing_data()
{
    QTest::addColumn<Settings>("settings");

    QTest::newRow("tab and nothing, as by default") << Settings();
    QTest::newRow("custom delimiter and placeholder") << Settings{
        {"useTabDelimiter", false}, {"useOtherDelimiter", true},      {"otherDelimiter", "|"},
        {"insertNothing", false},   {"insertOtherPlaceholder", true}, {"otherPlaceholder", "n/a"}};
    QTest::newRow("no choice set: tabs for both")
        << Settings{{"useTabDelimiter", false}, {"insertNothing", false}};
}

void tst_AsciiExporterAllocation::failingAllocationLeavesNothing()
{
    QFETCH(Settings, settings);

    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    for (auto it = settings.cbegin(); it != settings.cend(); ++it)
        store.setSetting(it.key(), it.value());
    TestSource source;
    // one exporter made and gone first, so that Qt's caches of first use are filled
    {
        AsciiExporter warm(&source, &store);
    }

    QString leak;
    const int failed =
        AllocationCounter::failEachInTurn([&] { AsciiExporter exporter(&source, &store); }, &leak);
    QVERIFY2(leak.isEmpty(), qPrintable(leak));
    // the two delimiter objects and their handles at least
    QVERIFY2(failed >= 4, qPrintable(QString::number(failed)));

    // and the exporter still works once memory is there again
    AsciiExporter exporter(&source, &store);
    QVERIFY(!exportSamples(&exporter, &source, {fullSample()}).isEmpty());
}

QTEST_GUILESS_MAIN(tst_AsciiExporterAllocation)
#include "tst_asciiexporterallocation.moc"
