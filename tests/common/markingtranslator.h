#pragma once

#include <QByteArray>
#include <QTranslator>

/**
 * A translator that "translates" every text of one context by putting "~" in
 * front of it, so a test sees which texts go through translation and in which
 * context.
 */
class MarkingTranslator : public QTranslator
{
public:
    explicit MarkingTranslator(const char *context)
        : context(context)
    { }

    bool isEmpty() const override { return false; }

    QString translate(const char *textContext, const char *sourceText, const char * = nullptr,
                      int = -1) const override
    {
        if (context != textContext)
            return QString();
        return QLatin1Char('~') + QString::fromUtf8(sourceText);
    }

private:
    const QByteArray context;
};
