#include "filenamepatternreplacer.h"

FileNamePatternReplacer::FileNamePatternReplacer(const QMap<QString, QVariant> &replacements)
{
    for (auto it = replacements.cbegin(); it != replacements.cend(); ++it) {
        if (!it.key().isEmpty())
            this->replacements.insert(it.key(), it.value().toString());
    }
}

QString FileNamePatternReplacer::parse(const QString &pattern) const
{
    QString result;
    result.reserve(pattern.size());
    int position = 0;
    while (position < pattern.size()) {
        // Of several patterns starting here, the longest wins.
        const QString *match = nullptr;
        const QString *value = nullptr;
        for (auto it = replacements.cbegin(); it != replacements.cend(); ++it) {
            if ((!match || it.key().size() > match->size())
                && QStringView(pattern).mid(position).startsWith(it.key())) {
                match = &it.key();
                value = &it.value();
            }
        }
        if (match) {
            result += *value;
            position += match->size();
        } else {
            result += pattern.at(position);
            ++position;
        }
    }
    return result;
}

QString FileNamePatternReplacer::exampleDate()
{
    return QStringLiteral("2026-03-14");
}

QString FileNamePatternReplacer::exampleDeviceId()
{
    return QStringLiteral("0123ABCD");
}

QString FileNamePatternReplacer::exampleInputFile()
{
    return QStringLiteral("myfile");
}

QString FileNamePatternReplacer::exampleSequenceNumber()
{
    return QStringLiteral("003");
}

QString FileNamePatternReplacer::exampleProductCode()
{
    return QStringLiteral("T100-2A8G4");
}

QString FileNamePatternReplacer::exampleFilterProfile()
{
    return QStringLiteral("general");
}

QString FileNamePatternReplacer::exampleTime()
{
    return QStringLiteral("09h05");
}
