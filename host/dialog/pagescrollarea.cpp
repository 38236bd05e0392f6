#include "pagescrollarea.h"

PageScrollArea::PageScrollArea(QWidget *page, QWidget *parent)
    : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setWidget(page);
}

// In height the page keeps its whole size hint: a group of fixed height whose
// own minimum is smaller than its contents would otherwise be cut first.
void PageScrollArea::fitPage()
{
    QWidget *page = widget();
    page->ensurePolished();
    const QSize needed(page->minimumSizeHint().width(), page->sizeHint().height());
    page->setMinimumSize(page->minimumSize().expandedTo(needed));
    // the dialog's layout keeps this area's hints until told
    updateGeometry();
}

// QScrollArea caps its hint at a few dozen lines of text; the dialog bounds
// its size by the screen instead.
QSize PageScrollArea::sizeHint() const
{
    const int frame = 2 * frameWidth();
    const QWidget *page = widget();
    return QSize(frame, frame) + page->sizeHint().expandedTo(page->minimumSize());
}
