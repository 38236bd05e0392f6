#pragma once

#include <abstractoptionspage.h>

#include <QString>

#include <memory>

class QWidget;
class SettingsSynchronizer;

namespace Ui {
class AsciiExporterOptionsPage;
}

// The form compiled from asciiexporteroptionspage.ui. The form's class keeps
// the page's name so that its texts share the page's translation context.
using AsciiExporterOptionsPageUi = Ui::AsciiExporterOptionsPage;

/**
 * The plug-in's page in the host's settings dialog: output file name pattern
 * and extension, field delimiter, empty-field text and the exported data
 * groups.
 *
 * Widgets and settings are matched by object name: every check box is the
 * boolean setting of its name, the combo box the setting of its name with the
 * current item's data as value. Only the four line edits are bound by key.
 */
class AsciiExporterOptionsPage : public AbstractOptionsPage
{
    Q_OBJECT

public:
    explicit AsciiExporterOptionsPage(SettingsSynchronizer *settings, QWidget *parent = nullptr);
    ~AsciiExporterOptionsPage() override;

    QString pageId() const override;
    QString pageTitle() const override;
    QString categoryId() const override;
    QString categoryTitle() const override;

public slots:
    void refreshUi() override;
    void apply() override;
    void updateExampleFileName();
    void updateCustomDelimiter(bool enabled);
    void updateCustomPlaceholder(bool enabled);

private:
    std::unique_ptr<AsciiExporterOptionsPageUi> ui;
    SettingsSynchronizer *settings;
};
