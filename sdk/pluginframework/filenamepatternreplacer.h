#pragma once

#include "pluginframework_global.h"

#include <QMap>
#include <QString>
#include <QVariant>

/**
 * Expands a file-name pattern: every occurrence of a pattern text (such as
 * "<inputfile>") is replaced by its value. Replacement is a single pass from
 * left to right, so a value that itself contains a pattern text is kept as it
 * is. Text that matches no pattern is copied unchanged.
 *
 * The example texts are what the host shows users to explain the patterns.
 */
class PLUGINFRAMEWORK_EXPORT FileNamePatternReplacer
{
public:
    explicit FileNamePatternReplacer(const QMap<QString, QVariant> &replacements);

    /** @p pattern with every pattern text replaced by its value. */
    QString parse(const QString &pattern) const;

    static QString exampleDate();
    static QString exampleDeviceId();
    static QString exampleInputFile();
    static QString exampleSequenceNumber();
    static QString exampleProductCode();
    static QString exampleFilterProfile();
    static QString exampleTime();

private:
    QMap<QString, QString> replacements;
};
