#include "asciiexporteroptionspage.h"

#include "ui_asciiexporteroptionspage.h"

#include "settingkeys.h"

#include <filenamepatternreplacer.h>
#include <settingssynchronizer.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QIcon>
#include <QLayout>
#include <QLineEdit>
#include <QMap>
#include <QTime>
#include <QVariant>

#include <initializer_list>

namespace {

// Puts the framework's example values into the %1 to %7 of the help text,
// one placeholder after the other.
QString withExampleValues(const QString &help)
{
    return help.arg(FileNamePatternReplacer::exampleDate())
        .arg(FileNamePatternReplacer::exampleDeviceId())
        .arg(FileNamePatternReplacer::exampleInputFile())
        .arg(FileNamePatternReplacer::exampleSequenceNumber())
        .arg(FileNamePatternReplacer::exampleProductCode())
        .arg(FileNamePatternReplacer::exampleFilterProfile())
        .arg(FileNamePatternReplacer::exampleTime());
}

} // namespace

AsciiExporterOptionsPage::AsciiExporterOptionsPage(SettingsSynchronizer *settings, QWidget *parent)
    : AbstractOptionsPage(parent)
    , ui(std::make_unique<AsciiExporterOptionsPageUi>())
    , settings(settings)
{
    try {
        ui->setupUi(this);
    } catch (...) {
        // The widgets go with the page, their parent; a nested layout
        // belongs to nothing until it is added to its outer layout. (The
        // form is value-initialised: a layout not made yet is null.)
        const std::initializer_list<QLayout *> nestedLayouts{
            ui->gridLayout_2, ui->horizontalLayout_2, ui->horizontalLayout_3};
        for (QLayout *nested : nestedLayouts) {
            if (nested && !nested->parent())
                delete nested;
        }
        throw;
    }

    ui->outputFileFormat->setToolTip(withExampleValues(ui->outputFileFormat->toolTip()));
    ui->outputFileFormat->setWhatsThis(withExampleValues(ui->outputFileFormat->whatsThis()));

    // The item data is the stored value; "Euler" is shown as "Euler Angles".
    ui->exportOrientation->addItem(QIcon(), tr("None"), QStringLiteral("None"));
    ui->exportOrientation->addItem(QIcon(), tr("Quaternion"), QStringLiteral("Quaternion"));
    ui->exportOrientation->addItem(QIcon(), tr("Euler Angles"), QStringLiteral("Euler"));
    ui->exportOrientation->addItem(QIcon(), tr("Matrix"), QStringLiteral("Matrix"));

    // Any widget the user can change tells the host; widgets are found by
    // type so that a box added to the form is covered without code.
    connect(ui->outputFileFormat, SIGNAL(textChanged(QString)), this, SIGNAL(itemChanged()));
    const QList<QCheckBox *> checkBoxes = findChildren<QCheckBox *>();
    for (QCheckBox *box : checkBoxes)
        connect(box, SIGNAL(toggled(bool)), this, SIGNAL(itemChanged()));
    const QList<QComboBox *> comboBoxes = findChildren<QComboBox *>();
    for (QComboBox *combo : comboBoxes)
        connect(combo, SIGNAL(currentIndexChanged(int)), this, SIGNAL(itemChanged()));
    const QList<QLineEdit *> lineEdits = findChildren<QLineEdit *>();
    for (QLineEdit *edit : lineEdits)
        connect(edit, SIGNAL(textEdited(QString)), this, SIGNAL(itemChanged()));

    connect(ui->outputFileFormat, SIGNAL(textChanged(QString)), this,
            SLOT(updateExampleFileName()));
    connect(ui->outputFileExtension, SIGNAL(textChanged(QString)), this,
            SLOT(updateExampleFileName()));
    connect(ui->useOtherDelimiter, SIGNAL(toggled(bool)), this, SLOT(updateCustomDelimiter(bool)));
    connect(ui->insertOtherPlaceholder, SIGNAL(toggled(bool)), this,
            SLOT(updateCustomPlaceholder(bool)));

    AsciiExporterOptionsPage::refreshUi();
}

AsciiExporterOptionsPage::~AsciiExporterOptionsPage() = default;

QString AsciiExporterOptionsPage::pageId() const
{
    return QStringLiteral("ASCII Exporter");
}

QString AsciiExporterOptionsPage::pageTitle() const
{
    return tr("ASCII Exporter");
}

QString AsciiExporterOptionsPage::categoryId() const
{
    return QStringLiteral("Exporters");
}

QString AsciiExporterOptionsPage::categoryTitle() const
{
    return tr("Exporters");
}

void AsciiExporterOptionsPage::refreshUi()
{
    ui->outputFileFormat->setText(
        settings->setting(QLatin1String(SettingKeys::outputFileFormat)).toString());
    ui->outputFileExtension->setText(
        settings->setting(QLatin1String(SettingKeys::outputFileExtension)).toString());
    updateExampleFileName();

    const QString packetCounter = QLatin1String(SettingKeys::exportPacketCounter);
    const QList<QCheckBox *> checkBoxes = findChildren<QCheckBox *>();
    for (QCheckBox *box : checkBoxes) {
        box->setChecked(settings->setting(box->objectName()).toBool());
        // The packet counter is always exported; a stored false is repaired.
        if (box->objectName() == packetCounter) {
            box->setChecked(true);
            settings->setSetting(packetCounter, true);
        }
    }

    const QList<QComboBox *> comboBoxes = findChildren<QComboBox *>();
    for (QComboBox *combo : comboBoxes) {
        int index = combo->findData(settings->setting(combo->objectName()));
        if (index < 0)
            index = combo->findData(settings->defaultSetting(combo->objectName()));
        combo->setCurrentIndex(index);
    }

    ui->otherDelimiter->setEnabled(ui->useOtherDelimiter->isChecked());
    ui->otherDelimiter->setText(
        settings->setting(QLatin1String(SettingKeys::otherDelimiter)).toString());
    ui->otherPlaceholder->setEnabled(ui->insertOtherPlaceholder->isChecked());
    ui->otherPlaceholder->setText(
        settings->setting(QLatin1String(SettingKeys::otherPlaceholder)).toString());
}

void AsciiExporterOptionsPage::apply()
{
    const QString formatKey = QLatin1String(SettingKeys::outputFileFormat);
    QString pattern = ui->outputFileFormat->text();
    if (pattern.isEmpty())
        pattern = settings->defaultSetting(formatKey).toString();
    settings->setSetting(formatKey, pattern);

    const QString extensionKey = QLatin1String(SettingKeys::outputFileExtension);
    QString extension = ui->outputFileExtension->text();
    if (extension.isEmpty())
        extension = settings->defaultSetting(extensionKey).toString();
    settings->setSetting(extensionKey, extension);

    settings->setSetting(QLatin1String(SettingKeys::otherDelimiter), ui->otherDelimiter->text());
    settings->setSetting(QLatin1String(SettingKeys::otherPlaceholder),
                         ui->otherPlaceholder->text());

    const QList<QCheckBox *> checkBoxes = findChildren<QCheckBox *>();
    for (QCheckBox *box : checkBoxes)
        settings->setSetting(box->objectName(), box->isChecked());

    const QList<QComboBox *> comboBoxes = findChildren<QComboBox *>();
    for (QComboBox *combo : comboBoxes)
        settings->setSetting(combo->objectName(), combo->currentData());
}

void AsciiExporterOptionsPage::updateExampleFileName()
{
    const QString pattern = ui->outputFileFormat->text();
    const QString extension = ui->outputFileExtension->text();

    const QString date = QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd"));
    // Minute first, then hour, each from its own look at the clock.
    const int minute = QTime::currentTime().minute();
    const int hour = QTime::currentTime().hour();
    const QString time = QStringLiteral("%1h%2")
                             .arg(hour, 2, 10, QLatin1Char('0'))
                             .arg(minute, 2, 10, QLatin1Char('0'));

    // The example shows today's date and time, the other patterns take the
    // framework's example values.
    QMap<QString, QVariant> replacements;
    replacements.insert(QStringLiteral("<date>"), date);
    replacements.insert(QStringLiteral("<deviceid>"), FileNamePatternReplacer::exampleDeviceId());
    replacements.insert(QStringLiteral("<inputfile>"), FileNamePatternReplacer::exampleInputFile());
    replacements.insert(QStringLiteral("<seqnr>"),
                        FileNamePatternReplacer::exampleSequenceNumber());
    replacements.insert(QStringLiteral("<productcode>"),
                        FileNamePatternReplacer::exampleProductCode());
    replacements.insert(QStringLiteral("<filterprofile>"),
                        FileNamePatternReplacer::exampleFilterProfile());
    replacements.insert(QStringLiteral("<time>"), time);

    const QString baseName = FileNamePatternReplacer(replacements).parse(pattern);
    // Two single substitutions on purpose: a "%2" inside the base name is
    // filled with the extension as well.
    ui->exampleLabel->setText(QStringLiteral("%1.%2").arg(baseName).arg(extension));
}

void AsciiExporterOptionsPage::updateCustomDelimiter(bool enabled)
{
    ui->otherDelimiter->setEnabled(enabled);
}

void AsciiExporterOptionsPage::updateCustomPlaceholder(bool enabled)
{
    ui->otherPlaceholder->setEnabled(enabled);
}
