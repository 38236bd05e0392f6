#include "asciiexporteroptionspage.h"
#include "settingscatalogue.h"

#include <allocationcounter.h>
#include <settingssynchronizer.h>

#include <QCheckBox>
#include <QtTest>

#include <new>

// An options page whose construction runs out of memory gives back all it
// had made: the form, its widgets and the layouts not yet placed in another.
class tst_OptionsPageAllocation : public QObject
{
    Q_OBJECT

private slots:
    void failingAllocationLeavesNothing();
};

void tst_OptionsPageAllocation::failingAllocationLeavesNothing()
{
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    // one page made and gone first, so that Qt's caches of first use are filled
    {
        AsciiExporterOptionsPage warm(&store);
    }

    QString leak;
    const int failed =
        AllocationCounter::failEachInTurn([&] { AsciiExporterOptionsPage page(&store); }, &leak);
    QVERIFY2(leak.isEmpty(), qPrintable(leak));
    // the form and every widget and layout of it
    QVERIFY2(failed > 80, qPrintable(QString::number(failed)));

    // and a page still comes whole once memory is there again
    AsciiExporterOptionsPage page(&store);
    QCOMPARE(page.findChildren<QCheckBox *>().size(), 36);
}

QTEST_MAIN(tst_OptionsPageAllocation)
#include "tst_optionspageallocation.moc"
