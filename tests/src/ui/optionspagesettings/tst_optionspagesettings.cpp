#include "asciiexporteroptionspage.h"
#include "settingscatalogue.h"

#include <exportrun.h>
#include <filenamepatternreplacer.h>
#include <settingssynchronizer.h>

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QtTest>

#include <memory>

namespace {

// The keys apply() writes: the data groups, the orientation, the delimiter and
// empty-field choices and the four texts; sorted, as the store lists them.
QStringList appliedKeys()
{
    QStringList keys = dataGroupKeys()
        + QStringList{"exportOrientation",      "insertNan",           "insertNothing",
                      "insertOtherPlaceholder", "insertZero",          "otherDelimiter",
                      "otherPlaceholder",       "outputFileExtension", "outputFileFormat",
                      "useCommaDelimiter",      "useOtherDelimiter",   "useSemiColonDelimiter",
                      "useSpaceDelimiter",      "useTabDelimiter"};
    keys.sort();
    return keys;
}

QStringList storedKeys(const SettingsSynchronizer &store)
{
    QStringList stored;
    const QStringList keys = store.keys();
    for (const QString &key : keys) {
        if (store.hasStoredSetting(key))
            stored.append(key);
    }
    return stored;
}

} // namespace

// The settings through the page: what refreshUi() shows of the store, and
// what apply() writes back.
class tst_OptionsPageSettings : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void packetCounterIsRepairedOnLoad();
    void everyRefreshStoresThePacketCounter();
    void orientationSelection_data();
    void orientationSelection();
    void orientationWithoutAnyMatch();
    void applyWritesExactlyThePageKeys();
    void applyLeavesKeysWithoutWidget();
    void applyStoresUserChoices();
    void emptyPatternOrExtensionStoresDefault_data();
    void emptyPatternOrExtensionStoresDefault();
    void customTextsAreStoredAsTheyAre();
    void exampleFromStoredSettings();
    void customEditsEnabledFromStoredSettings();
    void loadingExclusiveGroups_data();
    void loadingExclusiveGroups();
    void groupWithAllFalseKeepsPreviousChoice();
    void refreshDiscardsUserEdits();

private:
    AsciiExporterOptionsPage *makePage();

    template <typename T>
    T *find(const char *name) const
    {
        T *widget = page->findChild<T *>(QString::fromLatin1(name));
        if (!widget)
            qFatal("no widget %s", name);
        return widget;
    }

    std::unique_ptr<SettingsSynchronizer> store;
    std::unique_ptr<AsciiExporterOptionsPage> page;
};

void tst_OptionsPageSettings::init()
{
    store = std::make_unique<SettingsSynchronizer>(SettingsCatalogue::defaults(),
                                                   SettingsCatalogue::descriptions());
}

void tst_OptionsPageSettings::cleanup()
{
    page.reset();
    store.reset();
}

AsciiExporterOptionsPage *tst_OptionsPageSettings::makePage()
{
    page = std::make_unique<AsciiExporterOptionsPage>(store.get());
    return page.get();
}

void tst_OptionsPageSettings::packetCounterIsRepairedOnLoad()
{
    store->setSetting(QStringLiteral("exportPacketCounter"), false);
    makePage();
    QVERIFY(find<QCheckBox>("exportPacketCounter")->isChecked());
    const QVariant stored = store->setting(QStringLiteral("exportPacketCounter"));
    QCOMPARE(stored.userType(), int(QMetaType::Bool));
    QCOMPARE(stored.toBool(), true);
}

void tst_OptionsPageSettings::everyRefreshStoresThePacketCounter()
{
    makePage();
    QVERIFY(store->hasStoredSetting(QStringLiteral("exportPacketCounter")));
    store->setSetting(QStringLiteral("exportPacketCounter"), false);
    page->refreshUi();
    QCOMPARE(store->setting(QStringLiteral("exportPacketCounter")), QVariant(true));
    QVERIFY(find<QCheckBox>("exportPacketCounter")->isChecked());
}

void tst_OptionsPageSettings::orientationSelection_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QVariant>("applied");

    QTest::newRow("Euler selects Euler Angles")
        << QVariant("Euler") << 2 << "Euler Angles" << QVariant("Euler");
    QTest::newRow("Quaternion selects Quaternion")
        << QVariant("Quaternion") << 1 << "Quaternion" << QVariant("Quaternion");
    QTest::newRow("Matrix selects Matrix")
        << QVariant("Matrix") << 3 << "Matrix" << QVariant("Matrix");
    QTest::newRow("None selects None") << QVariant("None") << 0 << "None" << QVariant("None");
    QTest::newRow("the shown text is not a value, the default's item is chosen")
        << QVariant("Euler Angles") << 2 << "Euler Angles" << QVariant("Euler");
    QTest::newRow("values are matched case-sensitively")
        << QVariant("matrix") << 2 << "Euler Angles" << QVariant("Euler");
    QTest::newRow("an unknown value falls back to the default's item")
        << QVariant("Sideways") << 2 << "Euler Angles" << QVariant("Euler");
    QTest::newRow("an invalid value falls back to the default's item")
        << QVariant() << 2 << "Euler Angles" << QVariant("Euler");
}

void tst_OptionsPageSettings::orientationSelection()
{
    QFETCH(QVariant, stored);
    QFETCH(int, index);
    QFETCH(QString, shown);
    QFETCH(QVariant, applied);

    store->setSetting(QStringLiteral("exportOrientation"), stored);
    makePage();
    auto *combo = find<QComboBox>("exportOrientation");
    QCOMPARE(combo->currentIndex(), index);
    QCOMPARE(combo->currentText(), shown);

    page->apply();
    const QVariant value = store->setting(QStringLiteral("exportOrientation"));
    QCOMPARE(value.userType(), applied.userType());
    QCOMPARE(value, applied);
}

void tst_OptionsPageSettings::orientationWithoutAnyMatch()
{
    QMap<QString, QVariant> defaults = SettingsCatalogue::defaults();
    defaults.insert(QStringLiteral("exportOrientation"), QStringLiteral("Sideways"));
    store = std::make_unique<SettingsSynchronizer>(defaults, SettingsCatalogue::descriptions());
    store->setSetting(QStringLiteral("exportOrientation"), QStringLiteral("Upside down"));
    makePage();
    auto *combo = find<QComboBox>("exportOrientation");
    QCOMPARE(combo->currentIndex(), -1);
    QCOMPARE(combo->currentText(), QString());

    page->apply();
    QVERIFY(store->hasStoredSetting(QStringLiteral("exportOrientation")));
    QVERIFY(!store->setting(QStringLiteral("exportOrientation")).isValid());
}

void tst_OptionsPageSettings::applyWritesExactlyThePageKeys()
{
    makePage();
    // loading has written the packet counter and nothing else
    QCOMPARE(storedKeys(*store), QStringList{"exportPacketCounter"});

    page->apply();
    QCOMPARE(storedKeys(*store), appliedKeys());

    // untouched widgets store the defaults, typed as the defaults are
    for (const QString &key : appliedKeys()) {
        const QVariant value = store->setting(key);
        const QVariant fallback = store->defaultSetting(key);
        QVERIFY2(value.userType() == fallback.userType(), qPrintable(key));
        QVERIFY2(value == fallback, qPrintable(key));
    }
}

void tst_OptionsPageSettings::applyLeavesKeysWithoutWidget()
{
    store->setSetting(QStringLiteral("exportHeading"), true);
    store->setSetting(QStringLiteral("highPrecision"), QStringLiteral("kept"));
    makePage();
    page->apply();
    QCOMPARE(store->setting(QStringLiteral("exportHeading")), QVariant(true));
    QCOMPARE(store->setting(QStringLiteral("highPrecision")), QVariant(QStringLiteral("kept")));

    QStringList written = storedKeys(*store);
    written.removeOne(QStringLiteral("exportHeading"));
    written.removeOne(QStringLiteral("highPrecision"));
    QCOMPARE(written, appliedKeys());
}

void tst_OptionsPageSettings::applyStoresUserChoices()
{
    makePage();
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));

    find<QCheckBox>("useCommaDelimiter")->click();
    find<QCheckBox>("insertZero")->click();
    find<QCheckBox>("exportPosition")->click();
    find<QCheckBox>("exportSampleTimeFine")->click();
    find<QComboBox>("exportOrientation")->setCurrentIndex(1);
    auto *pattern = find<QLineEdit>("outputFileFormat");
    pattern->selectAll();
    QTest::keyClicks(pattern, "<seqnr>_x");
    auto *extension = find<QLineEdit>("outputFileExtension");
    extension->selectAll();
    QTest::keyClicks(extension, "csv");
    page->apply();

    QCOMPARE(store->setting("useCommaDelimiter"), QVariant(true));
    QCOMPARE(store->setting("useTabDelimiter"), QVariant(false));
    QCOMPARE(store->setting("insertZero"), QVariant(true));
    QCOMPARE(store->setting("insertNothing"), QVariant(false));
    QCOMPARE(store->setting("exportPosition"), QVariant(true));
    QCOMPARE(store->setting("exportSampleTimeFine"), QVariant(false));
    QCOMPARE(store->setting("exportPacketCounter"), QVariant(true));
    QCOMPARE(store->setting("exportOrientation"), QVariant(QStringLiteral("Quaternion")));
    QCOMPARE(store->setting("outputFileFormat"), QVariant(QStringLiteral("<seqnr>_x")));
    QCOMPARE(store->setting("outputFileExtension"), QVariant(QStringLiteral("csv")));
}

void tst_OptionsPageSettings::emptyPatternOrExtensionStoresDefault_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("storedPattern");
    QTest::addColumn<QString>("storedExtension");
    QTest::addColumn<QString>("example");

    QTest::newRow("an empty pattern stores the default pattern") << ""
                                                                 << "csv"
                                                                 << "<inputfile>-<seqnr>"
                                                                 << "csv"
                                                                 << ".csv";
    QTest::newRow("an empty extension stores the default extension")
        << "<seqnr>"
        << ""
        << "<seqnr>"
        << "txt" << FileNamePatternReplacer::exampleSequenceNumber() + ".";
    QTest::newRow("both empty store both defaults") << ""
                                                    << ""
                                                    << "<inputfile>-<seqnr>"
                                                    << "txt"
                                                    << ".";
}

void tst_OptionsPageSettings::emptyPatternOrExtensionStoresDefault()
{
    QFETCH(QString, pattern);
    QFETCH(QString, extension);
    QFETCH(QString, storedPattern);
    QFETCH(QString, storedExtension);
    QFETCH(QString, example);

    makePage();
    find<QLineEdit>("outputFileFormat")->setText(pattern);
    find<QLineEdit>("outputFileExtension")->setText(extension);
    page->apply();

    QCOMPARE(store->setting(QStringLiteral("outputFileFormat")).toString(), storedPattern);
    QCOMPARE(store->setting(QStringLiteral("outputFileExtension")).toString(), storedExtension);
    // the edits keep what the user left in them
    QCOMPARE(find<QLineEdit>("outputFileFormat")->text(), pattern);
    QCOMPARE(find<QLineEdit>("outputFileExtension")->text(), extension);
    QCOMPARE(find<QLabel>("exampleLabel")->text(), example);
}

void tst_OptionsPageSettings::customTextsAreStoredAsTheyAre()
{
    store->setSetting(QStringLiteral("otherDelimiter"), QStringLiteral("|"));
    store->setSetting(QStringLiteral("otherPlaceholder"), QStringLiteral("n/a"));
    makePage();
    // both edits are disabled, yet their texts are stored
    QVERIFY(!find<QLineEdit>("otherDelimiter")->isEnabled());
    QVERIFY(!find<QLineEdit>("otherPlaceholder")->isEnabled());
    QCOMPARE(find<QLineEdit>("otherDelimiter")->text(), QStringLiteral("|"));
    QCOMPARE(find<QLineEdit>("otherPlaceholder")->text(), QStringLiteral("n/a"));

    find<QLineEdit>("otherPlaceholder")->setText(QStringLiteral(" - "));
    page->apply();
    QCOMPARE(store->setting(QStringLiteral("otherDelimiter")), QVariant(QStringLiteral("|")));
    QCOMPARE(store->setting(QStringLiteral("otherPlaceholder")), QVariant(QStringLiteral(" - ")));

    find<QLineEdit>("otherDelimiter")->clear();
    find<QLineEdit>("otherPlaceholder")->clear();
    page->apply();
    QCOMPARE(store->setting(QStringLiteral("otherDelimiter")), QVariant(QString()));
    QCOMPARE(store->setting(QStringLiteral("otherPlaceholder")), QVariant(QString()));
}

void tst_OptionsPageSettings::exampleFromStoredSettings()
{
    store->setSetting(QStringLiteral("outputFileFormat"), QStringLiteral("<seqnr>"));
    store->setSetting(QStringLiteral("outputFileExtension"), QStringLiteral("dat"));
    makePage();
    QCOMPARE(find<QLineEdit>("outputFileFormat")->text(), QStringLiteral("<seqnr>"));
    QCOMPARE(find<QLineEdit>("outputFileExtension")->text(), QStringLiteral("dat"));
    QCOMPARE(find<QLabel>("exampleLabel")->text(),
             FileNamePatternReplacer::exampleSequenceNumber() + ".dat");
}

void tst_OptionsPageSettings::customEditsEnabledFromStoredSettings()
{
    store->setSetting(QStringLiteral("useTabDelimiter"), false);
    store->setSetting(QStringLiteral("useOtherDelimiter"), true);
    store->setSetting(QStringLiteral("otherDelimiter"), QStringLiteral(";"));
    store->setSetting(QStringLiteral("insertNothing"), false);
    store->setSetting(QStringLiteral("insertOtherPlaceholder"), true);
    store->setSetting(QStringLiteral("otherPlaceholder"), QStringLiteral("missing"));
    makePage();
    QVERIFY(find<QCheckBox>("useOtherDelimiter")->isChecked());
    QVERIFY(!find<QCheckBox>("useTabDelimiter")->isChecked());
    QVERIFY(find<QLineEdit>("otherDelimiter")->isEnabled());
    QCOMPARE(find<QLineEdit>("otherDelimiter")->text(), QStringLiteral(";"));
    QVERIFY(find<QCheckBox>("insertOtherPlaceholder")->isChecked());
    QVERIFY(!find<QCheckBox>("insertNothing")->isChecked());
    QVERIFY(find<QLineEdit>("otherPlaceholder")->isEnabled());
    QCOMPARE(find<QLineEdit>("otherPlaceholder")->text(), QStringLiteral("missing"));
}

void tst_OptionsPageSettings::loadingExclusiveGroups_data()
{
    QTest::addColumn<QVariantMap>("stored");
    QTest::addColumn<QString>("delimiter");
    QTest::addColumn<QString>("emptyField");

    QTest::newRow("the defaults check tab and empty") << QVariantMap() << "useTabDelimiter"
                                                      << "insertNothing";
    QTest::newRow("a stored comma replaces tab")
        << QVariantMap{{"useTabDelimiter", false}, {"useCommaDelimiter", true}}
        << "useCommaDelimiter"
        << "insertNothing";
    QTest::newRow("of several true the last in child order wins")
        << QVariantMap{{"useCommaDelimiter", true},
                       {"useSemiColonDelimiter", true},
                       {"useSpaceDelimiter", true}}
        << "useCommaDelimiter"
        << "insertNothing";
    QTest::newRow("tab comes after other in child order")
        << QVariantMap{{"useOtherDelimiter", true}} << "useTabDelimiter"
        << "insertNothing";
    QTest::newRow("all delimiters false keep the form's tab")
        << QVariantMap{{"useTabDelimiter", false}} << "useTabDelimiter"
        << "insertNothing";
    QTest::newRow("zero comes after NaN and empty in child order")
        << QVariantMap{{"insertNan", true}, {"insertZero", true}} << "useTabDelimiter"
        << "insertZero";
    QTest::newRow("all empty-field choices false keep the form's empty")
        << QVariantMap{{"insertNothing", false}} << "useTabDelimiter"
        << "insertNothing";
    QTest::newRow("a stored NaN replaces empty")
        << QVariantMap{{"insertNothing", false}, {"insertNan", true}} << "useTabDelimiter"
        << "insertNan";
}

void tst_OptionsPageSettings::loadingExclusiveGroups()
{
    QFETCH(QVariantMap, stored);
    QFETCH(QString, delimiter);
    QFETCH(QString, emptyField);

    for (auto it = stored.cbegin(); it != stored.cend(); ++it)
        store->setSetting(it.key(), it.value());
    makePage();

    const auto checkedIn = [this](const char *group) {
        QStringList names;
        const QList<QCheckBox *> boxes = find<QGroupBox>(group)->findChildren<QCheckBox *>();
        for (const QCheckBox *box : boxes) {
            if (box->isChecked())
                names.append(box->objectName());
        }
        return names;
    };
    QCOMPARE(checkedIn("delimiterOptionsGroup"), QStringList{delimiter});
    QCOMPARE(checkedIn("emptyFieldOptionsGroup"), QStringList{emptyField});
}

void tst_OptionsPageSettings::groupWithAllFalseKeepsPreviousChoice()
{
    makePage();
    find<QCheckBox>("useCommaDelimiter")->click();
    const QStringList delimiters = {"useCommaDelimiter", "useOtherDelimiter",
                                    "useSemiColonDelimiter", "useSpaceDelimiter",
                                    "useTabDelimiter"};
    for (const QString &key : delimiters)
        store->setSetting(key, false);
    page->refreshUi();
    QVERIFY(find<QCheckBox>("useCommaDelimiter")->isChecked());
    QVERIFY(!find<QCheckBox>("useTabDelimiter")->isChecked());
}

void tst_OptionsPageSettings::refreshDiscardsUserEdits()
{
    makePage();
    find<QCheckBox>("exportRssi")->click();
    find<QCheckBox>("useSpaceDelimiter")->click();
    find<QComboBox>("exportOrientation")->setCurrentIndex(3);
    find<QLineEdit>("outputFileFormat")->setText(QStringLiteral("edited"));
    find<QLineEdit>("outputFileExtension")->setText(QStringLiteral("bak"));
    page->refreshUi();

    QVERIFY(!find<QCheckBox>("exportRssi")->isChecked());
    QVERIFY(find<QCheckBox>("useTabDelimiter")->isChecked());
    QVERIFY(!find<QCheckBox>("useSpaceDelimiter")->isChecked());
    QCOMPARE(find<QComboBox>("exportOrientation")->currentIndex(), 2);
    QCOMPARE(find<QLineEdit>("outputFileFormat")->text(), QStringLiteral("<inputfile>-<seqnr>"));
    QCOMPARE(find<QLineEdit>("outputFileExtension")->text(), QStringLiteral("txt"));
    QCOMPARE(find<QLabel>("exampleLabel")->text(),
             FileNamePatternReplacer::exampleInputFile() + "-"
                 + FileNamePatternReplacer::exampleSequenceNumber() + ".txt");
}

QTEST_MAIN(tst_OptionsPageSettings)

#include "tst_optionspagesettings.moc"
