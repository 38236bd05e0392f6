#pragma once

#include "iasciidelimiter.h"

#include <QString>

/** A delimiter that writes a given text as it stands. */
class AsciiStringDelimiter : public virtual IAsciiDelimiter
{
public:
    explicit AsciiStringDelimiter(const QString &text);
    ~AsciiStringDelimiter() override;

    QTextStream &write(QTextStream &stream) const override;

private:
    const QString text;
};
