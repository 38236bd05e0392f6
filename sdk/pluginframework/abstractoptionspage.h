#pragma once

#include "pluginframework_global.h"

#include <QFrame>
#include <QString>

/**
 * A page of the host's settings dialog. The host places it under the category
 * categoryId(), calls refreshUi() to show the stored settings and apply() to
 * store the user's edits; the page emits itemChanged() whenever the user may
 * have changed something.
 */
class PLUGINFRAMEWORK_EXPORT AbstractOptionsPage : public QFrame
{
    Q_OBJECT

public:
    explicit AbstractOptionsPage(QWidget *parent = nullptr);
    ~AbstractOptionsPage() override;

    /** Untranslated identifier of the page. */
    virtual QString pageId() const = 0;
    /** Title shown for the page. */
    virtual QString pageTitle() const = 0;
    /** Untranslated identifier of the category the page belongs to. */
    virtual QString categoryId() const = 0;
    /** Title shown for the category. */
    virtual QString categoryTitle() const = 0;
    /** Loads the stored settings into the page's widgets. */
    virtual void refreshUi() = 0;
    /** Stores the page's widgets into the settings. */
    virtual void apply() = 0;

signals:
    /** Something on the page may have changed; a hint, not a count. */
    void itemChanged();
};
