#include "pluginhost.h"
#include "settingsdialog.h"

#include <abstractexporterfactory.h>
#include <abstractoptionspage.h>
#include <settingssynchronizer.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QPushButton>
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

private:
    std::unique_ptr<SettingsDialog> makeDialog();
    static QPushButton *button(SettingsDialog *dialog, QDialogButtonBox::StandardButton which);
    static QCheckBox *box(SettingsDialog *dialog, const char *name);
    QString storedInFile(const QString &key) const;

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

QTEST_MAIN(tst_SettingsDialog)
#include "tst_settingsdialog.moc"
