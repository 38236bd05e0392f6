#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QString>

#include <cstdio>

/**
 * A one-line progress bar on a terminal: redrawn in place, at most ten times
 * a second, as wide as the terminal is at each redraw (COLUMNS, or 80, when
 * the stream is no terminal), with the reading's rate and the time left, and
 * cleared when done.
 */
class ProgressBar
{
    Q_DECLARE_TR_FUNCTIONS(ProgressBar)

public:
    explicit ProgressBar(std::FILE *stream);

    /** Shows @p label at @p done of @p total bytes; a @p total of 0 is not known. */
    void update(const QString &label, qint64 done, qint64 total);
    /** Removes the bar from the line. */
    void clear();

    /**
     * The text of the bar for @p label at @p done of @p total bytes, read at
     * @p bytesPerSecond (0 while not yet known), in fewer than @p columns
     * characters, so that the terminal never wraps it.
     */
    static QString line(const QString &label, qint64 done, qint64 total, double bytesPerSecond,
                        int columns);

private:
    int columns() const;
    double rate(const QString &label, qint64 done);

    std::FILE *stream;
    QElapsedTimer sinceDrawn;
    // Where the rate is measured from: the reading that @c label names.
    QElapsedTimer sinceStarted;
    QString startedLabel;
    qint64 startedAt = 0;
    qint64 lastDone = 0;
    int drawnWidth = 0;
};
