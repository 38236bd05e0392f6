#pragma once

#include <QElapsedTimer>
#include <QString>

#include <cstdio>

/**
 * A one-line progress bar on a terminal: redrawn in place, at most ten times
 * a second, and cleared when done.
 */
class ProgressBar
{
public:
    explicit ProgressBar(std::FILE *stream);

    /** Shows @p label at @p done of @p total. */
    void update(const QString &label, qint64 done, qint64 total);
    /** Removes the bar from the line. */
    void clear();

private:
    void draw(const QString &label, qint64 done, qint64 total);

    std::FILE *stream;
    QElapsedTimer sinceDrawn;
    bool shown = false;
};
