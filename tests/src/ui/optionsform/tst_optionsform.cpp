#include "asciiexporteroptionspage.h"

#include "ui_asciiexporteroptionspage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpacerItem>
#include <QTextBlock>
#include <QTextDocument>
#include <QTranslator>
#include <QtTest>

#include <memory>

namespace {

// Notes every text asked of it and translates none, so the test sees which
// texts go through translation, in which order and with which arguments.
class RecordingTranslator : public QTranslator
{
public:
    struct Request
    {
        QByteArray context;
        QString sourceText;
        bool hasDisambiguation;
        int n;
    };

    bool isEmpty() const override { return false; }

    QString translate(const char *context, const char *sourceText,
                      const char *disambiguation = nullptr, int n = -1) const override
    {
        requests.append({context, QString::fromUtf8(sourceText), disambiguation != nullptr, n});
        return QString();
    }

    mutable QVector<Request> requests;
};

QStringList namesOf(const QList<QObject *> &objects)
{
    QStringList names;
    for (const QObject *object : objects) {
        if (!object->objectName().isEmpty()
            && !object->objectName().startsWith(QLatin1String("qt_")))
            names.append(object->objectName());
    }
    return names;
}

} // namespace

class tst_OptionsForm : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pageNameSizeAndTitle();
    void existingObjectNameIsKept();
    void widgetsAreCreatedInTreeOrder();
    void layoutsAreCreatedInTreeOrder();
    void layouts_data();
    void layouts();
    void layoutMarginsSpacingAndStretch();
    void spacers_data();
    void spacers();
    void checkStatesAfterSetup();
    void designerTexts();
    void helpTextDocument();
    void retranslateOrderAndContext();
    void exclusivityPerGroupBox_data();
    void exclusivityPerGroupBox();
    void dataBoxesAreIndependent();
    void lineEditLengthLimits_data();
    void lineEditLengthLimits();
    void packetCounterCannotBeChanged();
    void orientationHasNoItems();
    void tabFollowsTheScreen_data();
    void tabFollowsTheScreen();

private:
    template <typename T>
    T *find(const char *name) const
    {
        return page->findChild<T *>(QString::fromLatin1(name));
    }

    std::unique_ptr<QWidget> page;
    std::unique_ptr<AsciiExporterOptionsPageUi> form;
};

void tst_OptionsForm::init()
{
    page = std::make_unique<QWidget>();
    form = std::make_unique<AsciiExporterOptionsPageUi>();
    form->setupUi(page.get());
}

void tst_OptionsForm::cleanup()
{
    form.reset();
    page.reset();
}

void tst_OptionsForm::pageNameSizeAndTitle()
{
    QCOMPARE(page->objectName(), QStringLiteral("AsciiExporterOptionsPage"));
    QCOMPARE(page->size(), QSize(587, 717));
    QCOMPARE(page->minimumSize(), QSize(0, 532));
    QCOMPARE(page->windowTitle(), QStringLiteral("Ascii Exporter Options"));
}

void tst_OptionsForm::existingObjectNameIsKept()
{
    QWidget named;
    named.setObjectName(QStringLiteral("hostPage"));
    AsciiExporterOptionsPageUi other;
    other.setupUi(&named);
    QCOMPARE(named.objectName(), QStringLiteral("hostPage"));
}

void tst_OptionsForm::widgetsAreCreatedInTreeOrder()
{
    // Children are listed in creation order, so a depth-first walk gives
    // the order in which setupUi made the widgets.
    QList<QObject *> widgets;
    const QList<QWidget *> found = page->findChildren<QWidget *>();
    for (QWidget *widget : found)
        widgets.append(widget);
    const QStringList expected = {
        "fileNameGroup",
        "outputFileNameLabel",
        "outputFileFormat",
        "extensionLabel",
        "exampleLabel",
        "label",
        "outputFileExtension",
        "delimiterOptionsGroup",
        "useOtherDelimiter",
        "useTabDelimiter",
        "useSpaceDelimiter",
        "useSemiColonDelimiter",
        "useCommaDelimiter",
        "otherDelimiter",
        "emptyFieldOptionsGroup",
        "otherPlaceholder",
        "insertNan",
        "insertNothing",
        "insertZero",
        "insertOtherPlaceholder",
        "exportedDataGroup",
        "OrientationGroup",
        "exportOrientation",
        "positionAndVelocityGroup",
        "exportPosition",
        "exportVelocity",
        "timestampGroup",
        "exportPacketCounter",
        "exportSampleTimeFine",
        "exportDateTime",
        "exportUtc",
        "GNSSGroup",
        "exportRawGnss",
        "exportRawGps",
        "statusGroup",
        "exportStatusFlags",
        "exportClipFlags",
        "exportRssi",
        "sensorComponentReadoutGroup",
        "exportScrAcceleration",
        "exportScrGyroscopeData",
        "exportScrMagneticField",
        "exportScrTemperature",
        "exportScrGyroTemperature",
        "inertialDataGroup",
        "exportOrientationIncrement",
        "exportVelocityIncrement",
        "exportCalibratedAngularVelocity",
        "exportCalibratedAcceleration",
        "exportFreeAcceleration",
        "miscellaneousSensorsGroup",
        "exportMagneticField",
        "exportTemperature",
        "exportGyroTemperature",
        "exportPressure",
        "triggersGroup",
        "exportTriggerIn1",
        "exportTriggerIn2",
    };
    QCOMPARE(namesOf(widgets), expected);
}

void tst_OptionsForm::layoutsAreCreatedInTreeOrder()
{
    QList<QObject *> layouts;
    const QList<QLayout *> found = page->findChildren<QLayout *>();
    for (QLayout *layout : found)
        layouts.append(layout);
    const QStringList expected = {
        "verticalLayout",    "verticalLayout_2",   "gridLayout_2",       "gridLayout_3",
        "gridLayout_4",      "horizontalLayout_3", "horizontalLayout_2", "gridLayout",
        "verticalLayout_11", "verticalLayout_8",   "verticalLayout_9",   "verticalLayout_12",
        "verticalLayout_7",  "verticalLayout_13",  "verticalLayout_6",   "verticalLayout_10",
        "verticalLayout_3",
    };
    QCOMPARE(namesOf(layouts), expected);
}

void tst_OptionsForm::layouts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("ownerWidget");
    QTest::addColumn<QString>("parentLayout");
    QTest::addColumn<QVector<int>>("cell");

    const auto onWidget = [](const char *name, const char *className, const char *widget) {
        QTest::addRow("%s is the %s of %s", name, className, widget)
            << QString::fromLatin1(name) << QString::fromLatin1(className)
            << QString::fromLatin1(widget) << QString() << QVector<int>();
    };
    const auto nested = [](const char *name, const char *className, const char *parent,
                           const QVector<int> &cell) {
        QTest::addRow("%s is a %s nested in %s", name, className, parent)
            << QString::fromLatin1(name) << QString::fromLatin1(className) << QString()
            << QString::fromLatin1(parent) << cell;
    };
    onWidget("verticalLayout", "QVBoxLayout", "AsciiExporterOptionsPage");
    onWidget("verticalLayout_2", "QVBoxLayout", "fileNameGroup");
    nested("gridLayout_2", "QGridLayout", "verticalLayout_2", {0});
    onWidget("gridLayout_3", "QGridLayout", "delimiterOptionsGroup");
    onWidget("gridLayout_4", "QGridLayout", "emptyFieldOptionsGroup");
    nested("horizontalLayout_3", "QHBoxLayout", "gridLayout_4", {2, 5, 1, 1});
    nested("horizontalLayout_2", "QHBoxLayout", "gridLayout_4", {2, 4, 1, 1});
    onWidget("gridLayout", "QGridLayout", "exportedDataGroup");
    onWidget("verticalLayout_11", "QVBoxLayout", "OrientationGroup");
    onWidget("verticalLayout_8", "QVBoxLayout", "positionAndVelocityGroup");
    onWidget("verticalLayout_9", "QVBoxLayout", "timestampGroup");
    onWidget("verticalLayout_12", "QVBoxLayout", "GNSSGroup");
    onWidget("verticalLayout_7", "QVBoxLayout", "statusGroup");
    onWidget("verticalLayout_13", "QVBoxLayout", "sensorComponentReadoutGroup");
    onWidget("verticalLayout_6", "QVBoxLayout", "inertialDataGroup");
    onWidget("verticalLayout_10", "QVBoxLayout", "miscellaneousSensorsGroup");
    onWidget("verticalLayout_3", "QVBoxLayout", "triggersGroup");
}

void tst_OptionsForm::layouts()
{
    QFETCH(QString, name);
    QFETCH(QString, className);
    QFETCH(QString, ownerWidget);
    QFETCH(QString, parentLayout);
    QFETCH(QVector<int>, cell);

    QLayout *layout = page->findChild<QLayout *>(name);
    QVERIFY(layout);
    QCOMPARE(QString::fromLatin1(layout->metaObject()->className()), className);

    if (!ownerWidget.isEmpty()) {
        QWidget *owner = page->objectName() == ownerWidget
            ? page.get()
            : page->findChild<QWidget *>(ownerWidget);
        QVERIFY(owner);
        QCOMPARE(owner->layout(), layout);
        QCOMPARE(layout->parent(), owner);
        return;
    }

    // Created without a parent and handed to the enclosing layout.
    auto *parent = qobject_cast<QLayout *>(layout->parent());
    QVERIFY(parent);
    QCOMPARE(parent->objectName(), parentLayout);
    const int index = parent->indexOf(layout);
    QVERIFY(index >= 0);
    if (auto *grid = qobject_cast<QGridLayout *>(parent)) {
        int row, column, rowSpan, columnSpan;
        grid->getItemPosition(index, &row, &column, &rowSpan, &columnSpan);
        QCOMPARE((QVector<int>{row, column, rowSpan, columnSpan}), cell);
    } else {
        QCOMPARE(QVector<int>{index}, cell);
    }
}

void tst_OptionsForm::layoutMarginsSpacingAndStretch()
{
    // Margins left at -1 fall back to what the style gives a fresh layout
    // on a group box inside a window.
    QWidget freshWindow;
    QGroupBox freshBox(&freshWindow);
    QGridLayout freshGrid(&freshBox);
    const QMargins styleMargins = freshGrid.contentsMargins();

    const QMargins delimiterMargins = find<QGridLayout>("gridLayout_3")->contentsMargins();
    QCOMPARE(delimiterMargins.left(), 19);
    QCOMPARE(delimiterMargins.top(), styleMargins.top());
    QCOMPARE(delimiterMargins.right(), styleMargins.right());
    QCOMPARE(delimiterMargins.bottom(), styleMargins.bottom());

    QCOMPARE(find<QGridLayout>("gridLayout_4")->contentsMargins(), QMargins(18, 9, 9, 9));
    QCOMPARE(find<QHBoxLayout>("horizontalLayout_3")->spacing(), 6);

    auto *fileNameGrid = find<QGridLayout>("gridLayout_2");
    QCOMPARE(fileNameGrid->columnCount(), 5);
    QCOMPARE(fileNameGrid->columnStretch(0), 0);
    QCOMPARE(fileNameGrid->columnStretch(1), 5);
    QCOMPARE(fileNameGrid->columnStretch(2), 0);
    QCOMPARE(fileNameGrid->columnStretch(3), 1);
    QCOMPARE(fileNameGrid->columnStretch(4), 0);
}

void tst_OptionsForm::spacers_data()
{
    QTest::addColumn<QString>("layoutName");
    QTest::addColumn<QVector<int>>("cell");
    QTest::addColumn<QSize>("sizeHint");
    QTest::addColumn<int>("horizontalPolicy");
    QTest::addColumn<int>("verticalPolicy");

    const auto vertical = [](const char *layout, int index, const char *what) {
        QTest::addRow("%s ends with a vertical spacer", what)
            << QString::fromLatin1(layout) << QVector<int>{index} << QSize(20, 0)
            << int(QSizePolicy::Minimum) << int(QSizePolicy::Expanding);
    };
    QTest::addRow("the delimiter row ends in free space")
        << QStringLiteral("gridLayout_3") << QVector<int>{0, 6, 1, 1} << QSize(40, 20)
        << int(QSizePolicy::Expanding) << int(QSizePolicy::Minimum);
    vertical("verticalLayout_8", 2, "positionAndVelocityGroup");
    vertical("verticalLayout_9", 4, "timestampGroup");
    vertical("verticalLayout_12", 2, "GNSSGroup");
    vertical("verticalLayout_7", 3, "statusGroup");
    vertical("verticalLayout_13", 5, "sensorComponentReadoutGroup");
    vertical("verticalLayout_6", 5, "inertialDataGroup");
    vertical("verticalLayout_10", 4, "miscellaneousSensorsGroup");
    vertical("verticalLayout_3", 2, "triggersGroup");
    vertical("verticalLayout", 4, "the page");
}

void tst_OptionsForm::spacers()
{
    QFETCH(QString, layoutName);
    QFETCH(QVector<int>, cell);
    QFETCH(QSize, sizeHint);
    QFETCH(int, horizontalPolicy);
    QFETCH(int, verticalPolicy);

    QLayout *layout = page->findChild<QLayout *>(layoutName);
    QVERIFY(layout);
    QSpacerItem *spacer = nullptr;
    if (auto *grid = qobject_cast<QGridLayout *>(layout)) {
        QLayoutItem *item = grid->itemAtPosition(cell.at(0), cell.at(1));
        QVERIFY(item);
        spacer = item->spacerItem();
        int row, column, rowSpan, columnSpan;
        grid->getItemPosition(grid->indexOf(item), &row, &column, &rowSpan, &columnSpan);
        QCOMPARE((QVector<int>{row, column, rowSpan, columnSpan}), cell);
    } else {
        QCOMPARE(layout->count(), cell.at(0) + 1);
        spacer = layout->itemAt(cell.at(0))->spacerItem();
    }
    QVERIFY(spacer);
    QCOMPARE(spacer->sizeHint(), sizeHint);
    QCOMPARE(int(spacer->sizePolicy().horizontalPolicy()), horizontalPolicy);
    QCOMPARE(int(spacer->sizePolicy().verticalPolicy()), verticalPolicy);

    int spacerCount = 0;
    const QList<QLayout *> all = page->findChildren<QLayout *>();
    for (QLayout *each : all) {
        for (int i = 0; i < each->count(); ++i)
            spacerCount += each->itemAt(i)->spacerItem() ? 1 : 0;
    }
    // the orientation group has none
    QCOMPARE(spacerCount, 10);
    QCOMPARE(find<QVBoxLayout>("verticalLayout_11")->count(), 1);
}

void tst_OptionsForm::checkStatesAfterSetup()
{
    const QStringList checked = {"useTabDelimiter", "insertNothing", "exportPacketCounter"};
    const QStringList exclusive = {
        "useOtherDelimiter",     "useTabDelimiter",   "useSpaceDelimiter",
        "useSemiColonDelimiter", "useCommaDelimiter", "insertNan",
        "insertNothing",         "insertZero",        "insertOtherPlaceholder",
    };
    const QList<QCheckBox *> boxes = page->findChildren<QCheckBox *>();
    QCOMPARE(boxes.size(), 36);
    for (const QCheckBox *box : boxes) {
        const QString name = box->objectName();
        QVERIFY2(box->isChecked() == checked.contains(name), qPrintable(name));
        QVERIFY2(box->autoExclusive() == exclusive.contains(name), qPrintable(name));
        QVERIFY2(box->isEnabled() == (name != QLatin1String("exportPacketCounter")),
                 qPrintable(name));
    }
    QVERIFY(find<QLineEdit>("otherDelimiter")->isEnabled());
    QVERIFY(find<QLineEdit>("otherPlaceholder")->isEnabled());
}

void tst_OptionsForm::designerTexts()
{
    // The page replaces these from the settings when it loads them.
    QCOMPARE(find<QLineEdit>("outputFileFormat")->text(), QStringLiteral("<inputfile>-<seqnr>"));
    QCOMPARE(find<QLineEdit>("outputFileExtension")->text(), QString());
    QCOMPARE(find<QLineEdit>("otherDelimiter")->text(), QString());
    QCOMPARE(find<QLineEdit>("otherPlaceholder")->text(),
             QStringLiteral("Use this custom placeholder for empty fields"));
    QCOMPARE(find<QLabel>("exampleLabel")->text(), QStringLiteral("myfile-003.txt"));
}

void tst_OptionsForm::helpTextDocument()
{
    auto *edit = find<QLineEdit>("outputFileFormat");
    const QString help = edit->toolTip();
    QCOMPARE(edit->whatsThis(), help);

    QVERIFY(help.startsWith(QLatin1String("<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0//EN\" "
                                          "\"http://www.w3.org/TR/REC-html40/strict.dtd\">")));
    QVERIFY(help.contains(QLatin1String("<meta name=\"qrichtext\" content=\"1\" />")));
    QVERIFY(help.contains(QLatin1String("p, li { white-space: pre-wrap; }")));
    QVERIFY(
        help.contains(QLatin1String("<body style=\" font-family:'MS Shell Dlg 2'; "
                                    "font-size:8.25pt; font-weight:400; font-style:normal;\">")));
    QVERIFY(Qt::mightBeRichText(help));

    QTextDocument document;
    document.setHtml(help);
    const QStringList paragraphs = {
        "Replacement Patterns:",
        "",
        "<date>\t: Date of export (e.g. %1)",
        "<deviceid>\t: Device ID (e.g. %2)",
        "<inputfile>\t: Original filename without extension (e.g. %3)",
        "<seqnr>\t: Sequential number (e.g. %4)",
        "<productcode> : Product code (e.g. %5)",
        "<filterprofile>\t: Filter profile in use (e.g. %6)",
        "<time>\t: Time read from system clock (e.g. %7)",
    };
    QCOMPARE(document.blockCount(), paragraphs.size());
    int number = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next(), ++number) {
        QCOMPARE(block.text(), paragraphs.at(number));
        const QTextBlockFormat format = block.blockFormat();
        QCOMPARE(format.topMargin(), 0.0);
        QCOMPARE(format.bottomMargin(), 0.0);
        QCOMPARE(format.leftMargin(), 0.0);
        QCOMPARE(format.rightMargin(), 0.0);
        QCOMPARE(format.indent(), 0);
        QCOMPARE(format.textIndent(), 0.0);
        // every text is set in 8pt; the empty paragraph carries the size itself
        if (block.text().isEmpty())
            QCOMPARE(block.charFormat().fontPointSize(), 8.0);
        for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment)
            QCOMPARE(fragment.fragment().charFormat().fontPointSize(), 8.0);
    }
}

void tst_OptionsForm::retranslateOrderAndContext()
{
    RecordingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QWidget other;
    AsciiExporterOptionsPageUi otherForm;
    otherForm.setupUi(&other);
    QCoreApplication::removeTranslator(&translator);

    const QString help = find<QLineEdit>("outputFileFormat")->toolTip();
    QStringList texts;
    for (const RecordingTranslator::Request &request : qAsConst(translator.requests)) {
        if (request.context != "AsciiExporterOptionsPage")
            continue;
        QVERIFY(!request.hasDisambiguation);
        QCOMPARE(request.n, -1);
        texts.append(request.sourceText == help ? QStringLiteral("(help)") : request.sourceText);
    }
    const QStringList expected = {
        "Ascii Exporter Options",
        "File Name",
        "Output Filename:",
        "(help)",
        "(help)",
        "<inputfile>-<seqnr>",
        ".",
        "myfile-003.txt",
        "Example:",
        "Delimiter Options",
        "&Other",
        "&Tab",
        "&Space",
        "Se&micolon",
        "&Comma",
        "Empty Field Options",
        "Use this custom placeholder for empty fields",
        "NaN",
        "Empty",
        "0",
        "Other",
        "Exported Data",
        "Orientation",
        "Position and Velocity",
        "Position",
        "Velocity",
        "Timestamp",
        "Packet Counter",
        "Sample Time Fine",
        "Date and time",
        "UTC Time",
        "GNSS",
        "GNSS Receiver Message",
        "GPS Receiver Message",
        "Status",
        "Status Word",
        "Clipping Flags",
        "RSSI",
        "Sensor Component Readout",
        "SCR Acceleration",
        "SCR Gyroscope Data",
        "SCR Magnetic Field",
        "SCR Temperature",
        "SCR Gyro Temperatures",
        "Inertial Data",
        "Orientation Increment",
        "Velocity Increment",
        "Rate Of Turn",
        "Acceleration",
        "Free Acceleration",
        "Miscellaneous Sensors",
        "Magnetic Field",
        "Temperature",
        "Gyro Temperatures",
        "Barometric Pressure",
        "Triggers",
        "Trigger In 1",
        "Trigger In 2",
    };
    QCOMPARE(texts, expected);
}

void tst_OptionsForm::exclusivityPerGroupBox_data()
{
    QTest::addColumn<QString>("click");
    QTest::addColumn<QStringList>("checkedDelimiters");
    QTest::addColumn<QStringList>("checkedEmptyFields");

    const QStringList tab = {"useTabDelimiter"};
    const QStringList nothing = {"insertNothing"};
    QTest::newRow("semicolon replaces tab, empty field untouched")
        << "useSemiColonDelimiter" << QStringList{"useSemiColonDelimiter"} << nothing;
    QTest::newRow("comma replaces tab, empty field untouched")
        << "useCommaDelimiter" << QStringList{"useCommaDelimiter"} << nothing;
    QTest::newRow("space replaces tab, empty field untouched")
        << "useSpaceDelimiter" << QStringList{"useSpaceDelimiter"} << nothing;
    QTest::newRow("other replaces tab, empty field untouched")
        << "useOtherDelimiter" << QStringList{"useOtherDelimiter"} << nothing;
    QTest::newRow("clicking the checked tab keeps it checked")
        << "useTabDelimiter" << tab << nothing;
    QTest::newRow("NaN replaces empty, delimiter untouched")
        << "insertNan" << tab << QStringList{"insertNan"};
    QTest::newRow("zero replaces empty, delimiter untouched")
        << "insertZero" << tab << QStringList{"insertZero"};
    QTest::newRow("other replaces empty, delimiter untouched")
        << "insertOtherPlaceholder" << tab << QStringList{"insertOtherPlaceholder"};
    QTest::newRow("clicking the checked empty keeps it checked")
        << "insertNothing" << tab << nothing;
}

void tst_OptionsForm::exclusivityPerGroupBox()
{
    QFETCH(QString, click);
    QFETCH(QStringList, checkedDelimiters);
    QFETCH(QStringList, checkedEmptyFields);

    const auto checkedIn = [this](const char *group) {
        QStringList names;
        const QList<QCheckBox *> boxes = find<QGroupBox>(group)->findChildren<QCheckBox *>();
        for (const QCheckBox *box : boxes) {
            if (box->isChecked())
                names.append(box->objectName());
        }
        return names;
    };
    auto *box = page->findChild<QCheckBox *>(click);
    QVERIFY(box);
    box->click();
    QCOMPARE(checkedIn("delimiterOptionsGroup"), checkedDelimiters);
    QCOMPARE(checkedIn("emptyFieldOptionsGroup"), checkedEmptyFields);
}

void tst_OptionsForm::dataBoxesAreIndependent()
{
    find<QCheckBox>("exportPosition")->click();
    find<QCheckBox>("exportVelocity")->click();
    find<QCheckBox>("exportTriggerIn1")->click();
    QVERIFY(find<QCheckBox>("exportPosition")->isChecked());
    QVERIFY(find<QCheckBox>("exportVelocity")->isChecked());
    QVERIFY(find<QCheckBox>("exportTriggerIn1")->isChecked());
    QVERIFY(find<QCheckBox>("exportPacketCounter")->isChecked());
    QVERIFY(find<QCheckBox>("useTabDelimiter")->isChecked());
    QVERIFY(find<QCheckBox>("insertNothing")->isChecked());
}

void tst_OptionsForm::lineEditLengthLimits_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("maxLength");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("kept");

    QTest::newRow("the custom delimiter takes one character") << "otherDelimiter" << 1 << "|;,"
                                                              << "|";
    QTest::newRow("the extension takes five characters") << "outputFileExtension" << 5 << "csvdata"
                                                         << "csvda";
}

void tst_OptionsForm::lineEditLengthLimits()
{
    QFETCH(QString, name);
    QFETCH(int, maxLength);
    QFETCH(QString, typed);
    QFETCH(QString, kept);

    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    auto *edit = page->findChild<QLineEdit *>(name);
    QVERIFY(edit);
    QCOMPARE(edit->maxLength(), maxLength);
    QTest::keyClicks(edit, typed);
    QCOMPARE(edit->text(), kept);
}

void tst_OptionsForm::packetCounterCannotBeChanged()
{
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    auto *box = find<QCheckBox>("exportPacketCounter");
    QVERIFY(box->isChecked());
    QVERIFY(!box->isEnabled());
    box->click();
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Space);
    QVERIFY(box->isChecked());
}

void tst_OptionsForm::orientationHasNoItems()
{
    auto *combo = find<QComboBox>("exportOrientation");
    QCOMPARE(combo->count(), 0);
    QCOMPARE(combo->currentIndex(), -1);
}

void tst_OptionsForm::tabFollowsTheScreen_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");

    // What the user sees: the file name, the delimiters and the empty-field
    // texts left to right, then the data boxes row by row, each from top to
    // bottom.
    const QStringList screen = {
        "outputFileFormat",
        "outputFileExtension",
        "useTabDelimiter",
        "useSemiColonDelimiter",
        "useCommaDelimiter",
        "useSpaceDelimiter",
        "useOtherDelimiter",
        "otherDelimiter",
        "insertNan",
        "insertNothing",
        "insertZero",
        "insertOtherPlaceholder",
        "otherPlaceholder",
        "exportOrientation",
        "exportPosition",
        "exportVelocity",
        "exportRawGnss",
        "exportRawGps",
        "exportOrientationIncrement",
        "exportVelocityIncrement",
        "exportCalibratedAngularVelocity",
        "exportCalibratedAcceleration",
        "exportFreeAcceleration",
        "exportMagneticField",
        "exportTemperature",
        "exportGyroTemperature",
        "exportPressure",
        "exportScrAcceleration",
        "exportScrGyroscopeData",
        "exportScrMagneticField",
        "exportScrTemperature",
        "exportScrGyroTemperature",
        "exportPacketCounter",
        "exportSampleTimeFine",
        "exportDateTime",
        "exportUtc",
        "exportStatusFlags",
        "exportClipFlags",
        "exportRssi",
        "exportTriggerIn1",
        "exportTriggerIn2",
    };
    for (int i = 0; i + 1 < screen.size(); ++i) {
        QTest::addRow("Tab from %s goes to %s", qPrintable(screen.at(i)),
                      qPrintable(screen.at(i + 1)))
            << screen.at(i) << screen.at(i + 1);
    }
}

void tst_OptionsForm::tabFollowsTheScreen()
{
    QFETCH(QString, from);
    QFETCH(QString, to);

    // The next widget that takes focus by Tab, as QWidget::focusNextChild()
    // looks for it, leaving aside whether it is enabled just now.
    QWidget *start = page->findChild<QWidget *>(from);
    QVERIFY(start);
    QWidget *next = start->nextInFocusChain();
    while (next != start && !(next->focusPolicy() & Qt::TabFocus))
        next = next->nextInFocusChain();
    QCOMPARE(next->objectName(), to);
}

QTEST_MAIN(tst_OptionsForm)

#include "tst_optionsform.moc"
