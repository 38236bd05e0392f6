#include "abstractoptionspage.h"

AbstractOptionsPage::AbstractOptionsPage(QWidget *parent)
    : QFrame(parent)
{ }

AbstractOptionsPage::~AbstractOptionsPage() = default;
