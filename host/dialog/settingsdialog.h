#pragma once

#include <QDialog>
#include <QList>

#include <functional>

class AbstractOptionsPage;
class PageScrollArea;
class QDialogButtonBox;
class QRect;
class QStackedWidget;
class QTreeWidget;

/**
 * The host's settings dialog: categories and their pages on the left, the
 * chosen page on the right (scrolling where the screen is too small for it),
 * and OK, Apply and Cancel. A page's itemChanged()
 * enables Apply; Apply and OK store every page's edits and save the
 * settings; Cancel leaves the stored settings as they were.
 */
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    /** Saves the settings store; false when it could not. */
    using SaveFunction = std::function<bool()>;

    /** Takes ownership of @p pages. */
    SettingsDialog(const QList<AbstractOptionsPage *> &pages, const SaveFunction &save,
                   QWidget *parent = nullptr);
    ~SettingsDialog() override;

    /** Shows the stored settings on every page, discarding edits. */
    void refresh();

    /**
     * The size the dialog opens with on a screen whose free area is
     * @p available: what its pages ask for, as far as the area has room.
     * Pages that do not fit scroll.
     */
    QSize openingSize(const QRect &available) const;

public slots:
    void accept() override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    bool applyPages();

    QList<AbstractOptionsPage *> pages;
    QList<PageScrollArea *> pageAreas;
    SaveFunction save;
    QTreeWidget *categories;
    QStackedWidget *stack;
    QDialogButtonBox *buttons;
    bool sized = false;
};
