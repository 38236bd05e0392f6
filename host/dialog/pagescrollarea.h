#pragma once

#include <QScrollArea>

/**
 * Holds one options page in the settings dialog. The page is never squeezed
 * below what its layout asks for: where the dialog has less room, the page
 * scrolls. The area asks for the page's whole size, so that a dialog sized
 * to its hint shows the page without scrolling where the screen has room.
 */
class PageScrollArea : public QScrollArea
{
    Q_OBJECT

public:
    /** Takes @p page as its widget. */
    explicit PageScrollArea(QWidget *page, QWidget *parent = nullptr);

    /**
     * Raises the page's minimum size to what its layout asks for with the
     * current fonts and style: the layout's minimum width and its preferred
     * height. A minimum the page set itself may be smaller.
     */
    void fitPage();

    QSize sizeHint() const override;
};
