#pragma once

#include "delimiterhandle.h"

#include <QByteArray>
#include <QString>
#include <QTextStream>

/**
 * A line of an export in the making: fields, each followed by the field
 * delimiter, with the empty-field text for missing values. Numbers are
 * written as Qt writes them (see NumberFormat), without a temporary string
 * per field.
 *
 * Delimiters are fixed texts: each is asked for its text once, when the
 * buffer is made, and that text is appended after every field.
 *
 * The buffer is kept from line to line so that its memory is reused; clear()
 * starts a new line.
 */
class RowBuffer
{
public:
    RowBuffer(const DelimiterHandle &delimiter, const DelimiterHandle &emptyFieldText);

    RowBuffer(const RowBuffer &) = delete;
    RowBuffer &operator=(const RowBuffer &) = delete;

    void clear();
    /** The line so far; trimming it is the caller's business. */
    QString &line() { return text; }
    /** What the field delimiter writes. */
    const QString &delimiterText() const { return delimiter; }

    void field(const QString &value);
    void field(QLatin1String value);
    /** Fixed notation, as QString::asprintf("%.<decimals>f"). */
    void fixed(double value, int decimals);
    /** General notation, as QString::asprintf("%.<digits>g"). */
    void general(double value, int digits);
    /** As QString::number(value), or QString("%1").arg(value, width, 10, fill). */
    void integer(qint64 value, int width = 0, char fill = ' ');
    void natural(quint64 value, int width = 0, char fill = ' ');
    /** @p count fields holding the empty-field text. */
    void empty(int count);

private:
    void endField();
    void number(char *first, char *last);

    QString text;
    QTextStream stream;
    const QString delimiter;
    const QString emptyFieldText;
    // The delimiter in Latin-1, when a number's buffer can take it.
    const QByteArray joinedDelimiter;
};
