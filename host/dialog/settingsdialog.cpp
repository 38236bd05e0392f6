#include "settingsdialog.h"

#include <abstractoptionspage.h>

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
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
        item->setData(0, Qt::UserRole, stack->addWidget(page));
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

void SettingsDialog::showEvent(QShowEvent *event)
{
    refresh();
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
