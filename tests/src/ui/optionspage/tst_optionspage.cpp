#include "asciiexporteroptionspage.h"
#include "settingscatalogue.h"

#include <filenamepatternreplacer.h>
#include <markingtranslator.h>
#include <settingssynchronizer.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextDocument>
#include <QTime>
#include <QtTest>

#include <memory>

namespace {

enum class Policy { Default, Wide, Grow, Fixed, Tall };

enum State { Plain = 0, Checked = 1, Disabled = 2, Exclusive = 4 };

constexpr int InBox = -1;
constexpr int Unlimited = QWIDGETSIZE_MAX;
constexpr int NoLimit = 32767;

// One named widget of the page as it stands after loading the default
// settings. A widget in a box layout has row InBox and its index as column.
struct WidgetRow
{
    const char *name;
    const char *className;
    const char *parent;
    const char *layout;
    int row;
    int column;
    int columnSpan;
    const char *text;
    int minimumWidth;
    int minimumHeight;
    int maximumWidth;
    Policy policy;
    int maxLength;
    int state;
};

constexpr WidgetRow widgetTable[] = {
    {"fileNameGroup", "QGroupBox", "AsciiExporterOptionsPage", "verticalLayout", InBox, 0, 1,
     "File Name", 467, 74, Unlimited, Policy::Wide, 0, Plain},
    {"outputFileNameLabel", "QLabel", "fileNameGroup", "gridLayout_2", 0, 0, 1,
     "Output Filename:", 0, 0, Unlimited, Policy::Grow, 0, Plain},
    {"outputFileFormat", "QLineEdit", "fileNameGroup", "gridLayout_2", 0, 1, 1,
     "<inputfile>-<seqnr>", 0, 0, Unlimited, Policy::Wide, NoLimit, Plain},
    {"extensionLabel", "QLabel", "fileNameGroup", "gridLayout_2", 0, 2, 1, ".", 0, 0, Unlimited,
     Policy::Default, 0, Plain},
    {"exampleLabel", "QLabel", "fileNameGroup", "gridLayout_2", 1, 1, 4, "myfile-003.txt", 0, 0,
     Unlimited, Policy::Grow, 0, Plain},
    {"label", "QLabel", "fileNameGroup", "gridLayout_2", 1, 0, 1, "Example:", 0, 0, Unlimited,
     Policy::Grow, 0, Plain},
    {"outputFileExtension", "QLineEdit", "fileNameGroup", "gridLayout_2", 0, 3, 1, "txt", 0, 0,
     Unlimited, Policy::Wide, 5, Plain},

    {"delimiterOptionsGroup", "QGroupBox", "AsciiExporterOptionsPage", "verticalLayout", InBox, 1,
     1, "Delimiter Options", 467, 0, Unlimited, Policy::Wide, 0, Plain},
    {"useOtherDelimiter", "QCheckBox", "delimiterOptionsGroup", "gridLayout_3", 0, 4, 1, "&Other",
     51, 0, Unlimited, Policy::Grow, 0, Exclusive},
    {"useTabDelimiter", "QCheckBox", "delimiterOptionsGroup", "gridLayout_3", 0, 0, 1, "&Tab", 40,
     0, Unlimited, Policy::Grow, 0, Checked | Exclusive},
    {"useSpaceDelimiter", "QCheckBox", "delimiterOptionsGroup", "gridLayout_3", 0, 3, 1, "&Space",
     52, 0, Unlimited, Policy::Grow, 0, Exclusive},
    {"useSemiColonDelimiter", "QCheckBox", "delimiterOptionsGroup", "gridLayout_3", 0, 1, 1,
     "Se&micolon", 70, 0, Unlimited, Policy::Grow, 0, Exclusive},
    {"useCommaDelimiter", "QCheckBox", "delimiterOptionsGroup", "gridLayout_3", 0, 2, 1, "&Comma",
     58, 0, Unlimited, Policy::Grow, 0, Exclusive},
    {"otherDelimiter", "QLineEdit", "delimiterOptionsGroup", "gridLayout_3", 0, 5, 1, "", 30, 0, 30,
     Policy::Fixed, 1, Disabled},

    {"emptyFieldOptionsGroup", "QGroupBox", "AsciiExporterOptionsPage", "verticalLayout", InBox, 2,
     1, "Empty Field Options", 467, 0, Unlimited, Policy::Wide, 0, Plain},
    {"otherPlaceholder", "QLineEdit", "emptyFieldOptionsGroup", "horizontalLayout_3", InBox, 0, 1,
     "", 225, 0, Unlimited, Policy::Wide, NoLimit, Disabled},
    {"insertNan", "QCheckBox", "emptyFieldOptionsGroup", "horizontalLayout_2", InBox, 0, 1, "NaN",
     43, 0, Unlimited, Policy::Tall, 0, Exclusive},
    {"insertNothing", "QCheckBox", "emptyFieldOptionsGroup", "horizontalLayout_2", InBox, 1, 1,
     "Empty", 53, 0, Unlimited, Policy::Tall, 0, Checked | Exclusive},
    {"insertZero", "QCheckBox", "emptyFieldOptionsGroup", "horizontalLayout_2", InBox, 2, 1, "0",
     29, 0, Unlimited, Policy::Fixed, 0, Exclusive},
    {"insertOtherPlaceholder", "QCheckBox", "emptyFieldOptionsGroup", "horizontalLayout_2", InBox,
     3, 1, "Other", 51, 0, Unlimited, Policy::Tall, 0, Exclusive},

    {"exportedDataGroup", "QGroupBox", "AsciiExporterOptionsPage", "verticalLayout", InBox, 3, 1,
     "Exported Data", 0, 0, Unlimited, Policy::Grow, 0, Plain},

    {"OrientationGroup", "QGroupBox", "exportedDataGroup", "gridLayout", 0, 0, 1, "Orientation", 0,
     0, Unlimited, Policy::Grow, 0, Plain},
    {"exportOrientation", "QComboBox", "OrientationGroup", "verticalLayout_11", InBox, 0, 1,
     "Euler Angles", 0, 0, Unlimited, Policy::Wide, 0, Plain},

    {"positionAndVelocityGroup", "QGroupBox", "exportedDataGroup", "gridLayout", 0, 3, 1,
     "Position and Velocity", 0, 0, Unlimited, Policy::Grow, 0, Plain},
    {"exportPosition", "QCheckBox", "positionAndVelocityGroup", "verticalLayout_8", InBox, 0, 1,
     "Position", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportVelocity", "QCheckBox", "positionAndVelocityGroup", "verticalLayout_8", InBox, 1, 1,
     "Velocity", 0, 0, Unlimited, Policy::Default, 0, Plain},

    {"timestampGroup", "QGroupBox", "exportedDataGroup", "gridLayout", 4, 0, 1, "Timestamp", 0, 0,
     Unlimited, Policy::Grow, 0, Plain},
    {"exportPacketCounter", "QCheckBox", "timestampGroup", "verticalLayout_9", InBox, 0, 1,
     "Packet Counter", 0, 0, Unlimited, Policy::Default, 0, Checked | Disabled},
    {"exportSampleTimeFine", "QCheckBox", "timestampGroup", "verticalLayout_9", InBox, 1, 1,
     "Sample Time Fine", 0, 0, Unlimited, Policy::Default, 0, Checked},
    {"exportDateTime", "QCheckBox", "timestampGroup", "verticalLayout_9", InBox, 2, 1,
     "Date and time", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportUtc", "QCheckBox", "timestampGroup", "verticalLayout_9", InBox, 3, 1, "UTC Time", 0, 0,
     Unlimited, Policy::Default, 0, Plain},

    {"GNSSGroup", "QGroupBox", "exportedDataGroup", "gridLayout", 0, 6, 1, "GNSS", 0, 0, Unlimited,
     Policy::Grow, 0, Plain},
    {"exportRawGnss", "QCheckBox", "GNSSGroup", "verticalLayout_12", InBox, 0, 1,
     "GNSS Receiver Message", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportRawGps", "QCheckBox", "GNSSGroup", "verticalLayout_12", InBox, 1, 1,
     "GPS Receiver Message", 0, 0, Unlimited, Policy::Default, 0, Plain},

    {"statusGroup", "QGroupBox", "exportedDataGroup", "gridLayout", 4, 3, 1, "Status", 0, 0,
     Unlimited, Policy::Grow, 0, Plain},
    {"exportStatusFlags", "QCheckBox", "statusGroup", "verticalLayout_7", InBox, 0, 1,
     "Status Word", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportClipFlags", "QCheckBox", "statusGroup", "verticalLayout_7", InBox, 1, 1,
     "Clipping Flags", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportRssi", "QCheckBox", "statusGroup", "verticalLayout_7", InBox, 2, 1, "RSSI", 0, 0,
     Unlimited, Policy::Default, 0, Plain},

    {"sensorComponentReadoutGroup", "QGroupBox", "exportedDataGroup", "gridLayout", 1, 6, 1,
     "Sensor Component Readout", 0, 0, Unlimited, Policy::Grow, 0, Plain},
    {"exportScrAcceleration", "QCheckBox", "sensorComponentReadoutGroup", "verticalLayout_13",
     InBox, 0, 1, "SCR Acceleration", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportScrGyroscopeData", "QCheckBox", "sensorComponentReadoutGroup", "verticalLayout_13",
     InBox, 1, 1, "SCR Gyroscope Data", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportScrMagneticField", "QCheckBox", "sensorComponentReadoutGroup", "verticalLayout_13",
     InBox, 2, 1, "SCR Magnetic Field", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportScrTemperature", "QCheckBox", "sensorComponentReadoutGroup", "verticalLayout_13", InBox,
     3, 1, "SCR Temperature", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportScrGyroTemperature", "QCheckBox", "sensorComponentReadoutGroup", "verticalLayout_13",
     InBox, 4, 1, "SCR Gyro Temperatures", 0, 0, Unlimited, Policy::Default, 0, Plain},

    {"inertialDataGroup", "QGroupBox", "exportedDataGroup", "gridLayout", 1, 0, 1, "Inertial Data",
     0, 0, Unlimited, Policy::Grow, 0, Plain},
    {"exportOrientationIncrement", "QCheckBox", "inertialDataGroup", "verticalLayout_6", InBox, 0,
     1, "Orientation Increment", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportVelocityIncrement", "QCheckBox", "inertialDataGroup", "verticalLayout_6", InBox, 1, 1,
     "Velocity Increment", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportCalibratedAngularVelocity", "QCheckBox", "inertialDataGroup", "verticalLayout_6", InBox,
     2, 1, "Rate Of Turn", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportCalibratedAcceleration", "QCheckBox", "inertialDataGroup", "verticalLayout_6", InBox, 3,
     1, "Acceleration", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportFreeAcceleration", "QCheckBox", "inertialDataGroup", "verticalLayout_6", InBox, 4, 1,
     "Free Acceleration", 0, 0, Unlimited, Policy::Default, 0, Plain},

    {"miscellaneousSensorsGroup", "QGroupBox", "exportedDataGroup", "gridLayout", 1, 3, 1,
     "Miscellaneous Sensors", 0, 0, Unlimited, Policy::Grow, 0, Plain},
    {"exportMagneticField", "QCheckBox", "miscellaneousSensorsGroup", "verticalLayout_10", InBox, 0,
     1, "Magnetic Field", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportTemperature", "QCheckBox", "miscellaneousSensorsGroup", "verticalLayout_10", InBox, 1,
     1, "Temperature", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportGyroTemperature", "QCheckBox", "miscellaneousSensorsGroup", "verticalLayout_10", InBox,
     2, 1, "Gyro Temperatures", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportPressure", "QCheckBox", "miscellaneousSensorsGroup", "verticalLayout_10", InBox, 3, 1,
     "Barometric Pressure", 0, 0, Unlimited, Policy::Default, 0, Plain},

    {"triggersGroup", "QGroupBox", "exportedDataGroup", "gridLayout", 4, 6, 1, "Triggers", 0, 0,
     Unlimited, Policy::Default, 0, Plain},
    {"exportTriggerIn1", "QCheckBox", "triggersGroup", "verticalLayout_3", InBox, 0, 1,
     "Trigger In 1", 0, 0, Unlimited, Policy::Default, 0, Plain},
    {"exportTriggerIn2", "QCheckBox", "triggersGroup", "verticalLayout_3", InBox, 1, 1,
     "Trigger In 2", 0, 0, Unlimited, Policy::Default, 0, Plain},
};

QSizePolicy policyFor(Policy policy, const char *className)
{
    switch (policy) {
    case Policy::Wide:
        return QSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::Fixed);
    case Policy::Grow:
        return QSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::MinimumExpanding);
    case Policy::Fixed:
        return QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    case Policy::Tall:
        return QSizePolicy(QSizePolicy::Fixed, QSizePolicy::MinimumExpanding);
    case Policy::Default:
        break;
    }
    const QByteArray name(className);
    if (name == "QLabel")
        return QLabel().sizePolicy();
    if (name == "QCheckBox")
        return QCheckBox().sizePolicy();
    return QGroupBox().sizePolicy();
}

QString shownText(const QWidget *widget)
{
    if (auto *box = qobject_cast<const QGroupBox *>(widget))
        return box->title();
    if (auto *label = qobject_cast<const QLabel *>(widget))
        return label->text();
    if (auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->text();
    if (auto *edit = qobject_cast<const QLineEdit *>(widget))
        return edit->text();
    if (auto *combo = qobject_cast<const QComboBox *>(widget))
        return combo->currentText();
    return QString();
}

QString expectedTime(const QTime &time)
{
    return time.toString(QStringLiteral("hh'h'mm"));
}

// Counts the calls that reach the overrides; a queued or string-based
// invocation of the base's slots must land here.
class OverridingPage : public AsciiExporterOptionsPage
{
public:
    using AsciiExporterOptionsPage::AsciiExporterOptionsPage;

    void refreshUi() override { ++refreshCalls; }
    void apply() override { ++applyCalls; }

    int refreshCalls = 0;
    int applyCalls = 0;
};

} // namespace

Q_DECLARE_METATYPE(const WidgetRow *)

// The page as the host meets it: its widgets as loading the defaults leaves
// them, its names, slots and texts; and how it follows the user's edits. What
// it loads and stores: tests/src/ui/optionspagesettings.
class tst_OptionsPage : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void widgetTree_data();
    void widgetTree();
    void everyNamedWidgetIsInTheTable();
    void onlyThePatternHasHelp();
    void helpTextShowsExampleValues();
    void orientationItems();
    void names_data();
    void names();
    void slotsInOrder();
    void metaCast();
    void queuedRefreshReachesOverride();
    void stringConnectionReachesOverride();
    void translatedInThePageContext();

    void exampleFileName_data();
    void exampleFileName();
    void exampleUsesTodaysDateAndTime();
    void exampleFollowsTyping();
    void customDelimiterFollowsItsBox();
    void customPlaceholderFollowsItsBox();
    void enableSlotsChangeNoTextOrSetting();
    void itemChangedOnEveryEdit_data();
    void itemChangedOnEveryEdit();
    void itemChangedOnEveryCheckBox();
    void itemChangedWhileLoading();

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

void tst_OptionsPage::init()
{
    store = std::make_unique<SettingsSynchronizer>(SettingsCatalogue::defaults(),
                                                   SettingsCatalogue::descriptions());
}

void tst_OptionsPage::cleanup()
{
    page.reset();
    store.reset();
}

AsciiExporterOptionsPage *tst_OptionsPage::makePage()
{
    page = std::make_unique<AsciiExporterOptionsPage>(store.get());
    return page.get();
}

void tst_OptionsPage::widgetTree_data()
{
    QTest::addColumn<const WidgetRow *>("expected");
    for (const WidgetRow &row : widgetTable)
        QTest::addRow("%s is a %s in %s", row.name, row.className, row.parent) << &row;
}

void tst_OptionsPage::widgetTree()
{
    QFETCH(const WidgetRow *, expected);
    makePage();

    auto *widget = page->findChild<QWidget *>(QString::fromLatin1(expected->name));
    QVERIFY(widget);
    QCOMPARE(widget->metaObject()->className(), expected->className);
    QCOMPARE(widget->parentWidget()->objectName(), QString::fromLatin1(expected->parent));

    QLayout *holder = nullptr;
    const QList<QLayout *> layouts = page->findChildren<QLayout *>();
    for (QLayout *layout : layouts) {
        if (layout->indexOf(widget) >= 0)
            holder = layout;
    }
    QVERIFY(holder);
    QCOMPARE(holder->objectName(), QString::fromLatin1(expected->layout));
    const int index = holder->indexOf(widget);
    if (expected->row == InBox) {
        QVERIFY(!qobject_cast<QGridLayout *>(holder));
        QCOMPARE(index, expected->column);
    } else {
        auto *grid = qobject_cast<QGridLayout *>(holder);
        QVERIFY(grid);
        int row, column, rowSpan, columnSpan;
        grid->getItemPosition(index, &row, &column, &rowSpan, &columnSpan);
        QCOMPARE(row, expected->row);
        QCOMPARE(column, expected->column);
        QCOMPARE(rowSpan, 1);
        QCOMPARE(columnSpan, expected->columnSpan);
    }

    QCOMPARE(shownText(widget), QString::fromUtf8(expected->text));
    QCOMPARE(widget->minimumSize(), QSize(expected->minimumWidth, expected->minimumHeight));
    QCOMPARE(widget->maximumSize(), QSize(expected->maximumWidth, Unlimited));

    const QSizePolicy wanted = policyFor(expected->policy, expected->className);
    const QSizePolicy policy = widget->sizePolicy();
    QCOMPARE(policy.horizontalPolicy(), wanted.horizontalPolicy());
    QCOMPARE(policy.verticalPolicy(), wanted.verticalPolicy());
    QCOMPARE(policy.horizontalStretch(), 0);
    QCOMPARE(policy.verticalStretch(), 0);
    QCOMPARE(policy.hasHeightForWidth(), wanted.hasHeightForWidth());
    QCOMPARE(policy.controlType(), wanted.controlType());

    if (auto *edit = qobject_cast<QLineEdit *>(widget))
        QCOMPARE(edit->maxLength(), expected->maxLength);
    if (auto *box = qobject_cast<QCheckBox *>(widget)) {
        QCOMPARE(box->isChecked(), bool(expected->state & Checked));
        QCOMPARE(box->autoExclusive(), bool(expected->state & Exclusive));
        QVERIFY(!box->isTristate());
    }
    if (auto *group = qobject_cast<QGroupBox *>(widget)) {
        QVERIFY(!group->isFlat());
        QVERIFY(!group->isCheckable());
    }
    QCOMPARE(widget->isEnabled(), !(expected->state & Disabled));
}

void tst_OptionsPage::everyNamedWidgetIsInTheTable()
{
    makePage();
    QStringList found;
    const QList<QWidget *> widgets = page->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (!widget->objectName().isEmpty()
            && !widget->objectName().startsWith(QLatin1String("qt_")))
            found.append(widget->objectName());
    }
    QStringList table;
    for (const WidgetRow &row : widgetTable)
        table.append(QString::fromLatin1(row.name));
    QCOMPARE(found, table);
    QCOMPARE(page->objectName(), QStringLiteral("AsciiExporterOptionsPage"));
    QCOMPARE(page->windowTitle(), QStringLiteral("Ascii Exporter Options"));
    QCOMPARE(page->minimumSize(), QSize(0, 532));
}

void tst_OptionsPage::onlyThePatternHasHelp()
{
    makePage();
    const QList<QWidget *> widgets = page->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (widget->objectName() == QLatin1String("outputFileFormat"))
            continue;
        QVERIFY2(widget->toolTip().isEmpty(), qPrintable(widget->objectName()));
        QVERIFY2(widget->whatsThis().isEmpty(), qPrintable(widget->objectName()));
    }
}

void tst_OptionsPage::helpTextShowsExampleValues()
{
    makePage();
    auto *edit = find<QLineEdit>("outputFileFormat");
    QCOMPARE(edit->whatsThis(), edit->toolTip());

    QTextDocument document;
    document.setHtml(edit->toolTip());
    QStringList paragraphs;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        paragraphs.append(block.text());
    const QStringList expected = {
        "Replacement Patterns:",
        "",
        "<date>\t: Date of export (e.g. " + FileNamePatternReplacer::exampleDate() + ")",
        "<deviceid>\t: Device ID (e.g. " + FileNamePatternReplacer::exampleDeviceId() + ")",
        "<inputfile>\t: Original filename without extension (e.g. "
            + FileNamePatternReplacer::exampleInputFile() + ")",
        "<seqnr>\t: Sequential number (e.g. " + FileNamePatternReplacer::exampleSequenceNumber()
            + ")",
        "<productcode> : Product code (e.g. " + FileNamePatternReplacer::exampleProductCode() + ")",
        "<filterprofile>\t: Filter profile in use (e.g. "
            + FileNamePatternReplacer::exampleFilterProfile() + ")",
        "<time>\t: Time read from system clock (e.g. " + FileNamePatternReplacer::exampleTime()
            + ")",
    };
    QCOMPARE(paragraphs, expected);
}

void tst_OptionsPage::orientationItems()
{
    makePage();
    auto *combo = find<QComboBox>("exportOrientation");
    const QStringList texts = {"None", "Quaternion", "Euler Angles", "Matrix"};
    const QStringList values = {"None", "Quaternion", "Euler", "Matrix"};
    QCOMPARE(combo->count(), texts.size());
    for (int i = 0; i < combo->count(); ++i) {
        QCOMPARE(combo->itemText(i), texts.at(i));
        QCOMPARE(combo->itemData(i).userType(), int(QMetaType::QString));
        QCOMPARE(combo->itemData(i).toString(), values.at(i));
        QVERIFY(combo->itemIcon(i).isNull());
    }
}

void tst_OptionsPage::names_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("result");

    QTest::newRow("the page id is the exporter's name") << "pageId"
                                                        << "ASCII Exporter";
    QTest::newRow("the page title is the exporter's name") << "pageTitle"
                                                           << "ASCII Exporter";
    QTest::newRow("the category id is Exporters") << "categoryId"
                                                  << "Exporters";
    QTest::newRow("the category title is Exporters") << "categoryTitle"
                                                     << "Exporters";
}

void tst_OptionsPage::names()
{
    QFETCH(QString, operation);
    QFETCH(QString, result);

    makePage();
    // reached through the host's view of the page
    const AbstractOptionsPage *base = page.get();
    QString answer;
    if (operation == QLatin1String("pageId"))
        answer = base->pageId();
    else if (operation == QLatin1String("pageTitle"))
        answer = base->pageTitle();
    else if (operation == QLatin1String("categoryId"))
        answer = base->categoryId();
    else
        answer = base->categoryTitle();
    QCOMPARE(answer, result);
}

void tst_OptionsPage::slotsInOrder()
{
    const QMetaObject &meta = AsciiExporterOptionsPage::staticMetaObject;
    QCOMPARE(meta.className(), "AsciiExporterOptionsPage");
    QCOMPARE(meta.superClass(), &AbstractOptionsPage::staticMetaObject);
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.enumeratorCount(), meta.enumeratorOffset());

    const QByteArrayList expected = {
        "refreshUi()",
        "apply()",
        "updateExampleFileName()",
        "updateCustomDelimiter(bool)",
        "updateCustomPlaceholder(bool)",
    };
    QCOMPARE(meta.methodCount() - meta.methodOffset(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        QCOMPARE(method.methodSignature(), expected.at(i));
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Public);
    }
}

void tst_OptionsPage::metaCast()
{
    makePage();
    QCOMPARE(page->qt_metacast("AsciiExporterOptionsPage"), static_cast<void *>(page.get()));
    QCOMPARE(page->qt_metacast("AbstractOptionsPage"),
             static_cast<void *>(static_cast<AbstractOptionsPage *>(page.get())));
    QCOMPARE(page->qt_metacast("QFrame"), static_cast<void *>(static_cast<QFrame *>(page.get())));
    QCOMPARE(page->qt_metacast(nullptr), nullptr);
    QCOMPARE(page->qt_metacast("AsciiExporter"), nullptr);
    QObject *object = page.get();
    QCOMPARE(qobject_cast<AsciiExporterOptionsPage *>(object), page.get());
}

void tst_OptionsPage::queuedRefreshReachesOverride()
{
    OverridingPage overriding(store.get());
    // the constructor loads through its own refreshUi, not the override
    QCOMPARE(overriding.refreshCalls, 0);
    QVERIFY(QMetaObject::invokeMethod(&overriding, "refreshUi", Qt::QueuedConnection));
    QVERIFY(QMetaObject::invokeMethod(&overriding, "apply", Qt::QueuedConnection));
    QCOMPARE(overriding.refreshCalls, 0);
    QTRY_COMPARE(overriding.refreshCalls, 1);
    QTRY_COMPARE(overriding.applyCalls, 1);
}

void tst_OptionsPage::stringConnectionReachesOverride()
{
    OverridingPage overriding(store.get());
    QObject::connect(&overriding, SIGNAL(itemChanged()), &overriding, SLOT(refreshUi()));
    QObject::connect(&overriding, SIGNAL(itemChanged()), &overriding, SLOT(apply()));
    emit overriding.itemChanged();
    QCOMPARE(overriding.refreshCalls, 1);
    QCOMPARE(overriding.applyCalls, 1);
}

void tst_OptionsPage::translatedInThePageContext()
{
    MarkingTranslator translator("AsciiExporterOptionsPage");
    QVERIFY(QCoreApplication::installTranslator(&translator));
    makePage();
    QCoreApplication::removeTranslator(&translator);

    const QString mark = QStringLiteral("~");
    for (const WidgetRow &row : widgetTable) {
        const QByteArray className(row.className);
        // line edits and the example show settings, not translated texts
        if (className == "QLineEdit" || className == "QComboBox"
            || qstrcmp(row.name, "exampleLabel") == 0)
            continue;
        QCOMPARE(shownText(find<QWidget>(row.name)), mark + QString::fromUtf8(row.text));
    }
    QCOMPARE(page->windowTitle(), QStringLiteral("~Ascii Exporter Options"));
    QVERIFY(find<QLineEdit>("outputFileFormat")->toolTip().startsWith(QLatin1String("~<!DOCTYPE")));
    QVERIFY(
        find<QLineEdit>("outputFileFormat")->whatsThis().startsWith(QLatin1String("~<!DOCTYPE")));

    auto *combo = find<QComboBox>("exportOrientation");
    QCOMPARE(combo->itemText(0), QStringLiteral("~None"));
    QCOMPARE(combo->itemText(1), QStringLiteral("~Quaternion"));
    QCOMPARE(combo->itemText(2), QStringLiteral("~Euler Angles"));
    QCOMPARE(combo->itemText(3), QStringLiteral("~Matrix"));
    QCOMPARE(combo->itemData(2).toString(), QStringLiteral("Euler"));

    // the titles are asked for while the translator is installed
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const QString pageTitle = page->pageTitle();
    const QString categoryTitle = page->categoryTitle();
    const QString pageId = page->pageId();
    const QString categoryId = page->categoryId();
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(pageTitle, QStringLiteral("~ASCII Exporter"));
    QCOMPARE(categoryTitle, QStringLiteral("~Exporters"));
    QCOMPARE(pageId, QStringLiteral("ASCII Exporter"));
    QCOMPARE(categoryId, QStringLiteral("Exporters"));
}

void tst_OptionsPage::exampleFileName_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("example");

    const QString input = FileNamePatternReplacer::exampleInputFile();
    const QString sequence = FileNamePatternReplacer::exampleSequenceNumber();
    QTest::newRow("the default pattern names the input file and the sequence number")
        << "<inputfile>-<seqnr>"
        << "txt" << input + "-" + sequence + ".txt";
    QTest::newRow("device id, product code and filter profile take the example values")
        << "<deviceid>_<productcode>_<filterprofile>"
        << "csv"
        << FileNamePatternReplacer::exampleDeviceId() + "_"
            + FileNamePatternReplacer::exampleProductCode() + "_"
            + FileNamePatternReplacer::exampleFilterProfile() + ".csv";
    QTest::newRow("an unknown pattern is shown as it is") << "<foo>-<seqnr>"
                                                          << "txt"
                                                          << "<foo>-" + sequence + ".txt";
    QTest::newRow("characters that no file name may hold are shown as they are") << "a/b:c*?"
                                                                                 << "txt"
                                                                                 << "a/b:c*?.txt";
    QTest::newRow("a %2 in the base name is filled with the extension too") << "run%2"
                                                                            << "txt"
                                                                            << "runtxt.txt";
    QTest::newRow("an empty extension still gets the dot") << "<inputfile>"
                                                           << "" << input + ".";
    QTest::newRow("an empty pattern shows the dot and the extension") << ""
                                                                      << "txt"
                                                                      << ".txt";
}

void tst_OptionsPage::exampleFileName()
{
    QFETCH(QString, pattern);
    QFETCH(QString, extension);
    QFETCH(QString, example);

    makePage();
    find<QLineEdit>("outputFileFormat")->setText(pattern);
    find<QLineEdit>("outputFileExtension")->setText(extension);
    QCOMPARE(find<QLabel>("exampleLabel")->text(), example);
}

void tst_OptionsPage::exampleUsesTodaysDateAndTime()
{
    makePage();
    const QTime before = QTime::currentTime();
    const QDate day = QDate::currentDate();
    find<QLineEdit>("outputFileFormat")->setText(QStringLiteral("<date>_<time>"));
    const QTime after = QTime::currentTime();

    const QString shown = find<QLabel>("exampleLabel")->text();
    const QString date = day.toString(QStringLiteral("yyyy-MM-dd"));
    // a minute may turn while the label is built
    QVERIFY2(shown == date + "_" + expectedTime(before) + ".txt"
                 || shown == date + "_" + expectedTime(after) + ".txt",
             qPrintable(shown));
}

void tst_OptionsPage::exampleFollowsTyping()
{
    makePage();
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    const QString base = FileNamePatternReplacer::exampleInputFile() + "-"
        + FileNamePatternReplacer::exampleSequenceNumber();
    auto *extension = find<QLineEdit>("outputFileExtension");
    auto *example = find<QLabel>("exampleLabel");

    extension->selectAll();
    QTest::keyClick(extension, Qt::Key_Backspace);
    QCOMPARE(example->text(), base + ".");
    QTest::keyClick(extension, 'c');
    QCOMPARE(example->text(), base + ".c");
    QTest::keyClicks(extension, "svdata");
    QCOMPARE(extension->text(), QStringLiteral("csvda"));
    QCOMPARE(example->text(), base + ".csvda");

    auto *pattern = find<QLineEdit>("outputFileFormat");
    pattern->end(false);
    QTest::keyClicks(pattern, "_v2");
    QCOMPARE(example->text(), base + "_v2.csvda");
}

void tst_OptionsPage::customDelimiterFollowsItsBox()
{
    makePage();
    auto *edit = find<QLineEdit>("otherDelimiter");
    QVERIFY(!edit->isEnabled());
    find<QCheckBox>("useOtherDelimiter")->click();
    QVERIFY(edit->isEnabled());
    edit->setText(QStringLiteral("|"));

    // checking tab unchecks other, which disables the edit but keeps its text
    find<QCheckBox>("useTabDelimiter")->click();
    QVERIFY(!find<QCheckBox>("useOtherDelimiter")->isChecked());
    QVERIFY(!edit->isEnabled());
    QCOMPARE(edit->text(), QStringLiteral("|"));
    page->apply();
    QCOMPARE(store->setting(QStringLiteral("otherDelimiter")), QVariant(QStringLiteral("|")));
    QCOMPARE(store->setting(QStringLiteral("useOtherDelimiter")), QVariant(false));
    QCOMPARE(store->setting(QStringLiteral("useTabDelimiter")), QVariant(true));
}

void tst_OptionsPage::customPlaceholderFollowsItsBox()
{
    makePage();
    auto *edit = find<QLineEdit>("otherPlaceholder");
    QVERIFY(!edit->isEnabled());
    find<QCheckBox>("insertOtherPlaceholder")->click();
    QVERIFY(edit->isEnabled());
    edit->setText(QStringLiteral("-"));
    find<QCheckBox>("insertNan")->click();
    QVERIFY(!edit->isEnabled());
    QCOMPARE(edit->text(), QStringLiteral("-"));
    // neither group's choice touches the other group's edit
    find<QCheckBox>("useOtherDelimiter")->click();
    QVERIFY(!edit->isEnabled());
    QVERIFY(find<QLineEdit>("otherDelimiter")->isEnabled());
}

void tst_OptionsPage::enableSlotsChangeNoTextOrSetting()
{
    makePage();
    find<QLineEdit>("otherDelimiter")->setText(QStringLiteral("#"));
    QSignalSpy changes(store.get(), &SettingsSynchronizer::settingChanged);
    QVERIFY(changes.isValid());

    page->updateCustomDelimiter(true);
    page->updateCustomPlaceholder(true);
    QVERIFY(find<QLineEdit>("otherDelimiter")->isEnabled());
    QVERIFY(find<QLineEdit>("otherPlaceholder")->isEnabled());
    page->updateCustomDelimiter(false);
    page->updateCustomPlaceholder(false);
    QVERIFY(!find<QLineEdit>("otherDelimiter")->isEnabled());
    QVERIFY(!find<QLineEdit>("otherPlaceholder")->isEnabled());

    QCOMPARE(find<QLineEdit>("otherDelimiter")->text(), QStringLiteral("#"));
    QCOMPARE(find<QLineEdit>("otherPlaceholder")->text(), QString());
    QCOMPARE(changes.count(), 0);
}

void tst_OptionsPage::itemChangedOnEveryEdit_data()
{
    QTest::addColumn<QString>("enableFirst");
    QTest::addColumn<QString>("edit");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("perKeystroke");

    QTest::newRow("typing in the pattern emits twice per keystroke") << ""
                                                                     << "outputFileFormat"
                                                                     << "_abc" << 2;
    QTest::newRow("typing in the extension emits once per keystroke") << ""
                                                                      << "outputFileExtension"
                                                                      << "x" << 1;
    QTest::newRow("typing a custom delimiter emits once") << "useOtherDelimiter"
                                                          << "otherDelimiter"
                                                          << "|" << 1;
    QTest::newRow("typing a custom placeholder emits once per keystroke")
        << "insertOtherPlaceholder"
        << "otherPlaceholder"
        << "NA" << 1;
}

void tst_OptionsPage::itemChangedOnEveryEdit()
{
    QFETCH(QString, enableFirst);
    QFETCH(QString, edit);
    QFETCH(QString, typed);
    QFETCH(int, perKeystroke);

    makePage();
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    if (!enableFirst.isEmpty())
        page->findChild<QCheckBox *>(enableFirst)->click();
    auto *lineEdit = page->findChild<QLineEdit *>(edit);
    QVERIFY(lineEdit);
    QVERIFY(lineEdit->isEnabled());

    QSignalSpy spy(page.get(), &AbstractOptionsPage::itemChanged);
    QVERIFY(spy.isValid());
    const QString before = lineEdit->text();
    QTest::keyClicks(lineEdit, typed);
    QCOMPARE(lineEdit->text(), before + typed);
    QCOMPARE(spy.count(), perKeystroke * typed.size());
}

void tst_OptionsPage::itemChangedOnEveryCheckBox()
{
    makePage();
    QSignalSpy spy(page.get(), &AbstractOptionsPage::itemChanged);
    QVERIFY(spy.isValid());

    const QList<QCheckBox *> boxes = page->findChildren<QCheckBox *>();
    for (QCheckBox *box : boxes) {
        // the packet counter is not the user's to change, and the checked
        // box of an exclusive group cannot be unchecked by a click
        if (!box->isEnabled() || (box->autoExclusive() && box->isChecked()))
            continue;
        const bool wasChecked = box->isChecked();
        spy.clear();
        box->click();
        QVERIFY2(box->isChecked() != wasChecked, qPrintable(box->objectName()));
        QVERIFY2(spy.count() >= 1, qPrintable(box->objectName()));
    }

    auto *combo = find<QComboBox>("exportOrientation");
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    spy.clear();
    QTest::keyClick(combo, Qt::Key_Down);
    QCOMPARE(combo->currentIndex(), 3);
    QCOMPARE(spy.count(), 1);
}

void tst_OptionsPage::itemChangedWhileLoading()
{
    makePage();
    QSignalSpy spy(page.get(), &AbstractOptionsPage::itemChanged);
    QVERIFY(spy.isValid());

    page->refreshUi();
    QCOMPARE(spy.count(), 0);

    // a new pattern is one text change
    store->setSetting(QStringLiteral("outputFileFormat"), QStringLiteral("<seqnr>"));
    page->refreshUi();
    QCOMPARE(spy.count(), 1);

    // comma checked and tab unchecked: two toggles
    spy.clear();
    store->setSetting(QStringLiteral("useTabDelimiter"), false);
    store->setSetting(QStringLiteral("useCommaDelimiter"), true);
    page->refreshUi();
    QCOMPARE(spy.count(), 2);
}

QTEST_MAIN(tst_OptionsPage)

#include "tst_optionspage.moc"
