#pragma once

#include <QString>

/**
 * Where a value sits in its line, as a message names it:
 * "gnssSatellites.satellites[2].cno". The chain lives on the stack and is
 * spelled out only when a message needs it, so a good line costs no string
 * work.
 */
struct KeyPath
{
    const KeyPath *parent;
    const char *key;
    int index;

    /** The path of a top-level key. */
    static KeyPath top(const char *name) { return {nullptr, name, -1}; }

    KeyPath member(const char *name) const { return {this, name, -1}; }
    KeyPath entry(int position) const { return {this, nullptr, position}; }

    QString text() const
    {
        QString own = key ? QString::fromUtf8(key) : QStringLiteral("[%1]").arg(index);
        if (!parent)
            return own;
        return key ? QString(parent->text() + QLatin1Char('.') + own)
                   : QString(parent->text() + own);
    }
};
