#include "settingsdialog.h"

#include "pagescrollarea.h"

#include <abstractoptionspage.h>

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

SettingsDialog::SettingsDialog(const QList<AbstractOptionsPage *> &pages, const SaveFunction &save,
                               QWidget *parent)
    : QDialog(parent)
    , pages(pages)
    , save(save)
    , categories(new QTreeWidget(this))
    , stack(new QStackedWidget(this))
    , buttons(new QDialogButtonBox(
          QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel, this))
{
    setWindowTitle(tr("Settings"));
    categories->setObjectName(QStringLiteral("categories"));
    categories->setHeaderHidden(true);
    categories->setMinimumWidth(160);
    categories->setMaximumWidth(240);
    stack->setObjectName(QStringLiteral("pages"));

    for (AbstractOptionsPage *page : pages) {
        QTreeWidgetItem *category = nullptr;
        for (int i = 0; i < categories->topLevelItemCount() && !category; ++i) {
            if (categories->topLevelItem(i)->data(0, Qt::UserRole).toString() == page->categoryId())
                category = categories->topLevelItem(i);
        }
        if (!category) {
            category = new QTreeWidgetItem(categories, {page->categoryTitle()});
            category->setData(0, Qt::UserRole, page->categoryId());
            category->setFlags(Qt::ItemIsEnabled);
            category->setExpanded(true);
        }
        auto *item = new QTreeWidgetItem(category, {page->pageTitle()});
        auto *area = new PageScrollArea(page);
        pageAreas.append(area);
        item->setData(0, Qt::UserRole, stack->addWidget(area));
        connect(page, &AbstractOptionsPage::itemChanged, this,
                [this] { buttons->button(QDialogButtonBox::Apply)->setEnabled(true); });
    }
    connect(categories, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem *item) {
        if (item && item->parent())
            stack->setCurrentIndex(item->data(0, Qt::UserRole).toInt());
    });
    if (QTreeWidgetItem *first = categories->topLevelItem(0))
        categories->setCurrentItem(first->child(0));

    connect(buttons, &QDialogButtonBox::accepted, this, &SettingsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SettingsDialog::reject);
    connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this, [this] {
        if (applyPages())
            buttons->button(QDialogButtonBox::Apply)->setEnabled(false);
    });

    auto *content = new QHBoxLayout;
    content->addWidget(categories);
    content->addWidget(stack, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(content);
    layout->addWidget(buttons);
    refresh();
}

SettingsDialog::~SettingsDialog() = default;

void SettingsDialog::refresh()
{
    for (AbstractOptionsPage *page : qAsConst(pages))
        page->refreshUi();
    // loading the settings into the widgets is no change of the user's
    buttons->button(QDialogButtonBox::Apply)->setEnabled(false);
}

QSize SettingsDialog::openingSize(const QRect &available) const
{
    QSize size = sizeHint().expandedTo(minimumSizeHint());
    // A page cut short scrolls; its scroll bar then takes width of its own.
    if (size.height() > available.height())
        size.rwidth() += style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    // The window's frame, once the window system has drawn one.
    const QSize frame = frameGeometry().size() - geometry().size();
    return size.boundedTo(available.size() - frame).expandedTo(minimumSize());
}

void SettingsDialog::showEvent(QShowEvent *event)
{
    refresh();
    if (!sized) {
        // The first showing: pages get what their layouts need, and the
        // dialog as much of that as the screen allows.
        sized = true;
        for (PageScrollArea *area : qAsConst(pageAreas))
            area->fitPage();
        layout()->activate();
        resize(openingSize(screen()->availableGeometry()));
    }
    QDialog::showEvent(event);
}

bool SettingsDialog::applyPages()
{
    for (AbstractOptionsPage *page : qAsConst(pages))
        page->apply();
    if (save && !save()) {
        QMessageBox::warning(this, windowTitle(), tr("The settings could not be saved."));
        return false;
    }
    return true;
}

void SettingsDialog::accept()
{
    if (applyPages())
        QDialog::accept();
}
