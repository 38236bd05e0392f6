#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

/**
 * One way the exporter turns a number into text: the Qt call that defines
 * the bytes, the NumberFormat function that must reproduce them, and the
 * values worth checking them on.
 *
 * Values travel as 64-bit patterns: the bits of a double, or an integer that
 * the case narrows to its own width and signedness.
 */
struct NumberFormatCase
{
    enum Call { Asprintf, Number, Arg };
    enum Kind { Double, Signed, Unsigned };

    static QVector<NumberFormatCase> all();

    static double toDouble(quint64 value);
    static quint64 fromDouble(double v);
    qint64 toSigned(quint64 value) const;
    quint64 toUnsigned(quint64 value) const;

    QString qtText(quint64 value) const;
    void appendOurs(QString &out, quint64 value) const;
    QString describe(quint64 value) const;

    // Edge values first, then a reproducible mix from seed up to count in all.
    QVector<quint64> values(int count, quint64 seed) const;
    // Only what a recording mostly holds: sensor readings, small integers.
    QVector<quint64> typicalValues(int count, quint64 seed) const;

    QString name;
    Call call = Asprintf;
    Kind kind = Double;
    QByteArray pattern; // the asprintf format
    char notation = 'f'; // 'f' or 'g' for doubles
    int precision = 0; // decimals for 'f', significant digits for 'g'
    int bits = 64; // width of an integer type
    int width = 0; // QString::arg field width
    char fill = ' '; // QString::arg fill character
};
