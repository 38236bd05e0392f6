#include "pluginhost.h"
#include "settingsdialog.h"

#include <abstractexporterfactory.h>
#include <abstractoptionspage.h>
#include <settingssynchronizer.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QtTest>

#include <memory>

// The host's settings dialog around the plug-in's real options page.
class tst_SettingsDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void categoriesAndPage();
    void applyIsEnabledByAChange();
    void applyStoresAndSaves();
    void okStoresSavesAndCloses();
    void cancelLeavesTheStoreAsItWas();
    void reopeningShowsTheStoredValues();
    void openedOnTheScreenNoCheckBoxesOverlap();
    void openingSizeNoCheckBoxesOverlap_data();
    void openingSizeNoCheckBoxesOverlap();
    void aPageTooTallForTheScreenScrolls();

private:
    std::unique_ptr<SettingsDialog> makeDialog();
    static QPushButton *button(SettingsDialog *dialog, QDialogButtonBox::StandardButton which);
    static QCheckBox *box(SettingsDialog *dialog, const char *name);
    QString storedInFile(const QString &key) const;
    static QStringList overlappingCheckBoxes(const QWidget *page);
    static QStringList squeezedWidgets(const QWidget *page);

    PluginHost host{QStringLiteral(ASCIIEXPORTER_PLUGIN)};
    SettingsSynchronizer *store = nullptr;
    QTemporaryDir *dir = nullptr;
    QString iniFile;
};

void tst_SettingsDialog::initTestCase()
{
    QVERIFY2(host.load(), qPrintable(host.errorString()));
    store = host.factory()->settings();
}

void tst_SettingsDialog::init()
{
    dir = new QTemporaryDir;
    iniFile = dir->filePath(QStringLiteral("settings.ini"));
    for (const QString &key : store->keys())
        store->resetSetting(key);
}

void tst_SettingsDialog::cleanup()
{
    delete dir;
}

std::unique_ptr<SettingsDialog> tst_SettingsDialog::makeDialog()
{
    SettingsSynchronizer *settings = store;
    const QString fileName = iniFile;
    return std::make_unique<SettingsDialog>(
        host.factory()->optionsPages(), [settings, fileName] { return settings->save(fileName); });
}

QPushButton *tst_SettingsDialog::button(SettingsDialog *dialog,
                                        QDialogButtonBox::StandardButton which)
{
    return dialog->findChild<QDialogButtonBox *>()->button(which);
}

QCheckBox *tst_SettingsDialog::box(SettingsDialog *dialog, const char *name)
{
    return dialog->findChild<QCheckBox *>(QString::fromLatin1(name));
}

QString tst_SettingsDialog::storedInFile(const QString &key) const
{
    return QSettings(iniFile, QSettings::IniFormat).value(key).toString();
}

void tst_SettingsDialog::categoriesAndPage()
{
    const auto dialog = makeDialog();
    dialog->show();
    const QTreeWidget *categories = dialog->findChild<QTreeWidget *>(QStringLiteral("categories"));
    QVERIFY(categories);
    QCOMPARE(categories->topLevelItemCount(), 1);
    QCOMPARE(categories->topLevelItem(0)->text(0), QStringLiteral("Exporters"));
    QCOMPARE(categories->topLevelItem(0)->childCount(), 1);
    QCOMPARE(categories->topLevelItem(0)->child(0)->text(0), QStringLiteral("ASCII Exporter"));
    QCOMPARE(categories->currentItem(), categories->topLevelItem(0)->child(0));
    auto *page = dialog->findChild<AbstractOptionsPage *>();
    QVERIFY(page);
    QVERIFY(page->isVisible());
}

void tst_SettingsDialog::applyIsEnabledByAChange()
{
    const auto dialog = makeDialog();
    dialog->show();
    QVERIFY(!button(dialog.get(), QDialogButtonBox::Apply)->isEnabled());
    box(dialog.get(), "exportRssi")->click();
    QVERIFY(button(dialog.get(), QDialogButtonBox::Apply)->isEnabled());
}

void tst_SettingsDialog::applyStoresAndSaves()
{
    const auto dialog = makeDialog();
    dialog->show();
    box(dialog.get(), "exportRssi")->click();
    QCOMPARE(store->setting(QStringLiteral("exportRssi")).toBool(), false);
    QTest::mouseClick(button(dialog.get(), QDialogButtonBox::Apply), Qt::LeftButton);
    QCOMPARE(store->setting(QStringLiteral("exportRssi")), QVariant(true));
    QCOMPARE(storedInFile(QStringLiteral("exportRssi")), QStringLiteral("true"));
    QVERIFY(!button(dialog.get(), QDialogButtonBox::Apply)->isEnabled());
    QVERIFY(dialog->isVisible());
}

void tst_SettingsDialog::okStoresSavesAndCloses()
{
    const auto dialog = makeDialog();
    dialog->show();
    box(dialog.get(), "useCommaDelimiter")->click();
    QTest::mouseClick(button(dialog.get(), QDialogButtonBox::Ok), Qt::LeftButton);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
    QCOMPARE(store->setting(QStringLiteral("useCommaDelimiter")), QVariant(true));
    QCOMPARE(store->setting(QStringLiteral("useTabDelimiter")), QVariant(false));
    QCOMPARE(storedInFile(QStringLiteral("useCommaDelimiter")), QStringLiteral("true"));
}

void tst_SettingsDialog::cancelLeavesTheStoreAsItWas()
{
    const auto dialog = makeDialog();
    dialog->show();
    box(dialog.get(), "exportPressure")->click();
    QTest::mouseClick(button(dialog.get(), QDialogButtonBox::Cancel), Qt::LeftButton);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(store->setting(QStringLiteral("exportPressure")), QVariant(false));
    QVERIFY(!store->hasStoredSetting(QStringLiteral("exportPressure")));
    QVERIFY(!QFile::exists(iniFile));

    // shown again, the page shows the stored value, not the dropped edit
    dialog->show();
    QVERIFY(!box(dialog.get(), "exportPressure")->isChecked());
    QVERIFY(!button(dialog.get(), QDialogButtonBox::Apply)->isEnabled());
}

void tst_SettingsDialog::reopeningShowsTheStoredValues()
{
    {
        const auto dialog = makeDialog();
        dialog->show();
        box(dialog.get(), "exportTemperature")->click();
        QTest::mouseClick(button(dialog.get(), QDialogButtonBox::Apply), Qt::LeftButton);
        QTest::mouseClick(button(dialog.get(), QDialogButtonBox::Cancel), Qt::LeftButton);
    }
    // a later run of the program: a fresh store loaded from the file
    for (const QString &key : store->keys())
        store->resetSetting(key);
    QVERIFY(store->load(iniFile));
    const auto dialog = makeDialog();
    dialog->show();
    QVERIFY(box(dialog.get(), "exportTemperature")->isChecked());
    QVERIFY(!box(dialog.get(), "exportPressure")->isChecked());
}

// The pairs of visible check boxes of @p page that overlap. A box takes at
// least the room it needs to be read (its minimum size hint): a layout that
// squeezes a box below it leaves the box's text running into its neighbour.
QStringList tst_SettingsDialog::overlappingCheckBoxes(const QWidget *page)
{
    QList<const QCheckBox *> boxes;
    for (const QCheckBox *box : page->findChildren<QCheckBox *>()) {
        if (box->isVisible())
            boxes.append(box);
    }
    const auto shown = [](const QRect &r) {
        return QStringLiteral("%1,%2 %3x%4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
    };
    const auto area = [page](const QCheckBox *box) {
        return QRect(box->mapTo(page, QPoint(0, 0)),
                     box->size().expandedTo(box->minimumSizeHint()));
    };
    QStringList overlaps;
    for (int i = 0; i < boxes.size(); ++i) {
        for (int j = i + 1; j < boxes.size(); ++j) {
            if (area(boxes.at(i)).intersects(area(boxes.at(j)))) {
                overlaps.append(QStringLiteral("%1 at %2 and %3 at %4")
                                    .arg(boxes.at(i)->objectName(), shown(boxes.at(i)->geometry()),
                                         boxes.at(j)->objectName(),
                                         shown(boxes.at(j)->geometry())));
            }
        }
    }
    return overlaps;
}

// The visible widgets of @p page that the layout gives less height than they
// need to be read.
QStringList tst_SettingsDialog::squeezedWidgets(const QWidget *page)
{
    QStringList squeezed;
    for (const QWidget *widget : page->findChildren<QWidget *>()) {
        if (widget->isVisible() && widget->height() < widget->minimumSizeHint().height()) {
            squeezed.append(QStringLiteral("%1: %2 high, needs %3")
                                .arg(widget->objectName())
                                .arg(widget->height())
                                .arg(widget->minimumSizeHint().height()));
        }
    }
    return squeezed;
}

void tst_SettingsDialog::openedOnTheScreenNoCheckBoxesOverlap()
{
    const auto dialog = makeDialog();
    dialog->show();
    QCoreApplication::processEvents();
    const QRect available = dialog->screen()->availableGeometry();
    QVERIFY(dialog->height() <= available.height());
    QVERIFY(dialog->width() <= available.width());
    const auto *page = dialog->findChild<AbstractOptionsPage *>();
    QVERIFY(page->findChildren<QCheckBox *>().size() >= 36);
    const QStringList overlaps = overlappingCheckBoxes(page);
    QVERIFY2(overlaps.isEmpty(), qPrintable(overlaps.join(QLatin1Char('\n'))));
    const QStringList squeezed = squeezedWidgets(page);
    QVERIFY2(squeezed.isEmpty(), qPrintable(squeezed.join(QLatin1Char('\n'))));
}

void tst_SettingsDialog::openingSizeNoCheckBoxesOverlap_data()
{
    QTest::addColumn<QRect>("available");
    QTest::addColumn<bool>("wholePage"); // shown without scrolling

    QTest::newRow("a 1366x768 screen") << QRect(0, 0, 1366, 768) << false;
    QTest::newRow("a 1000x850 screen") << QRect(0, 0, 1000, 850) << false;
    QTest::newRow("a 1920x1080 screen") << QRect(0, 0, 1920, 1080) << true;
    QTest::newRow("a 1366x768 screen under a panel") << QRect(0, 32, 1366, 736) << false;
}

// The offscreen platform has one screen of its own size; the dialog's size
// for other screens is the one it would open with there.
void tst_SettingsDialog::openingSizeNoCheckBoxesOverlap()
{
    QFETCH(QRect, available);
    QFETCH(bool, wholePage);

    const auto dialog = makeDialog();
    dialog->show();
    const QSize opening = dialog->openingSize(available);
    QVERIFY(opening.height() <= available.height());
    QVERIFY(opening.width() <= available.width());
    dialog->resize(opening);
    QCoreApplication::processEvents();
    QCOMPARE(dialog->size(), opening);
    const auto *page = dialog->findChild<AbstractOptionsPage *>();
    const QStringList overlaps = overlappingCheckBoxes(page);
    QVERIFY2(overlaps.isEmpty(), qPrintable(overlaps.join(QLatin1Char('\n'))));
    const QStringList squeezed = squeezedWidgets(page);
    QVERIFY2(squeezed.isEmpty(), qPrintable(squeezed.join(QLatin1Char('\n'))));
    if (wholePage) {
        QCOMPARE(page->size(), page->sizeHint().expandedTo(page->minimumSize()));
        QCOMPARE(page->visibleRegion().boundingRect(), page->rect());
    }
}

void tst_SettingsDialog::aPageTooTallForTheScreenScrolls()
{
    const auto dialog = makeDialog();
    dialog->show();
    const auto *page = dialog->findChild<AbstractOptionsPage *>();
    const QRect available(0, 0, 1366, page->sizeHint().height() / 2);
    dialog->resize(dialog->openingSize(available));
    QCoreApplication::processEvents();
    auto *area = dialog->findChild<QScrollArea *>();
    QVERIFY(area);
    QCOMPARE(area->widget(), page);
    QVERIFY(area->verticalScrollBar()->isVisible());
    QVERIFY(!area->horizontalScrollBar()->isVisible());
    QVERIFY(page->height() >= page->sizeHint().height());
    QVERIFY(overlappingCheckBoxes(page).isEmpty());
    QVERIFY(squeezedWidgets(page).isEmpty());
}

QTEST_MAIN(tst_SettingsDialog)
#include "tst_settingsdialog.moc"
