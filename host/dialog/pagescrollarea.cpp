#include "pagescrollarea.h"

PageScrollArea::PageScrollArea(QWidget *page, QWidget *parent)
    : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setWidget(page);
}

void PageScrollArea::fitPage()
{
    QWidget *page = widget();
    page->ensurePolished();
    page->setMinimumSize(page->minimumSize().expandedTo(page->minimumSizeHint()));
}

// QScrollArea caps its hint at a few dozen lines of text; the dialog bounds
// its size by the screen instead.
QSize PageScrollArea::sizeHint() const
{
    const int frame = 2 * frameWidth();
    const QWidget *page = widget();
    return QSize(frame, frame) + page->sizeHint().expandedTo(page->minimumSize());
}
