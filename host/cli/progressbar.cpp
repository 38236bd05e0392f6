#include "progressbar.h"

#include <QtGlobal>

#include <cmath>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int widestBar = 30;
constexpr int narrowestBar = 5;
// Room a label keeps before the bar gives up its own.
constexpr int labelRoom = 12;
constexpr int narrowestLabel = 8;
constexpr qint64 redrawMilliseconds = 100;
// Before this much reading the rate says too little to show.
constexpr qint64 rateMilliseconds = 500;
constexpr int fallbackColumns = 80;

// 950 B/s, 12.3 kB/s, 4.5 MB/s, 1.2 GB/s
QString byteCount(double bytes)
{
    const char *units[] = {"B", "kB", "MB", "GB", "TB"};
    int unit = 0;
    while (bytes >= 999.95 && unit < 4) {
        bytes /= 1000;
        ++unit;
    }
    return unit == 0
        ? QStringLiteral("%1 B").arg(std::llround(bytes))
        : QStringLiteral("%1 %2").arg(bytes, 0, 'f', 1).arg(QLatin1String(units[unit]));
}

// 0:07, 12:34, 1:02:03
QString duration(double seconds)
{
    const qint64 whole = qint64(std::ceil(seconds));
    const qint64 hours = whole / 3600;
    const QString minutesSeconds =
        QStringLiteral("%1:%2")
            .arg(whole / 60 % 60, hours > 0 ? 2 : 1, 10, QLatin1Char('0'))
            .arg(whole % 60, 2, 10, QLatin1Char('0'));
    return hours > 0 ? QStringLiteral("%1:%2").arg(hours).arg(minutesSeconds) : minutesSeconds;
}

} // namespace

ProgressBar::ProgressBar(std::FILE *stream)
    : stream(stream)
{ }

void ProgressBar::update(const QString &label, qint64 done, qint64 total)
{
    const double bytesPerSecond = rate(label, done);
    if (drawnWidth > 0 && sinceDrawn.isValid() && sinceDrawn.elapsed() < redrawMilliseconds
        && done < total)
        return;
    const int width = columns();
    const QString text = line(label, done, total, bytesPerSecond, width);
    // Blanks over what is left of a longer line drawn before.
    const int padding = qBound(0, drawnWidth - int(text.size()), width - 1 - int(text.size()));
    const QByteArray bytes =
        (QLatin1Char('\r') + text + QString(padding, QLatin1Char(' '))).toLocal8Bit();
    std::fputs(bytes.constData(), stream);
    std::fflush(stream);
    drawnWidth = int(text.size()) + padding;
    sinceDrawn.start();
}

QString ProgressBar::line(const QString &label, qint64 done, qint64 total, double bytesPerSecond,
                          int columns)
{
    const int room = columns - 1;
    const bool known = total > 0;
    QStringList status;
    status.append(known ? QStringLiteral("%1%").arg(qBound<qint64>(0, done * 100 / total, 100), 3)
                        : byteCount(double(done)));
    if (bytesPerSecond > 0) {
        status.append(byteCount(bytesPerSecond) + QStringLiteral("/s"));
        if (known && done < total)
            status.append(tr("%1 left").arg(duration(double(total - done) / bytesPerSecond)));
    }
    // On a narrow terminal the time left goes first, then the rate.
    QString text = status.join(QStringLiteral("  "));
    while (text.size() > room && status.size() > 1) {
        status.removeLast();
        text = status.join(QStringLiteral("  "));
    }
    if (text.size() > room)
        return QString();

    const int barWidth =
        qMin(widestBar, room - int(text.size()) - 4 - qMin(int(label.size()), labelRoom));
    if (known && barWidth >= narrowestBar) {
        const int filled = int(qBound<qint64>(0, done * barWidth / total, barWidth));
        text = QStringLiteral("[%1%2] ").arg(QString(filled, QLatin1Char('#')),
                                             QString(barWidth - filled, QLatin1Char(' ')))
            + text;
    }
    const int labelWidth = room - int(text.size()) - 1;
    if (labelWidth >= narrowestLabel && !label.isEmpty()) {
        const QString shown = label.size() <= labelWidth
            ? label
            : QStringLiteral("...") + label.right(labelWidth - 3);
        text += QLatin1Char(' ') + shown;
    }
    return text;
}

int ProgressBar::columns() const
{
    struct winsize size;
    if (::ioctl(::fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    bool ok = false;
    const int fromEnvironment = qEnvironmentVariableIntValue("COLUMNS", &ok);
    return ok && fromEnvironment > 0 ? fromEnvironment : fallbackColumns;
}

// Bytes a second since the reading that @p label names began, 0 while that
// says too little. A new label, or a position that goes back, begins anew.
double ProgressBar::rate(const QString &label, qint64 done)
{
    if (!sinceStarted.isValid() || label != startedLabel || done < lastDone) {
        sinceStarted.start();
        startedLabel = label;
        startedAt = done;
    }
    lastDone = done;
    const qint64 elapsed = sinceStarted.elapsed();
    if (elapsed < rateMilliseconds || done <= startedAt)
        return 0;
    return double(done - startedAt) * 1000 / double(elapsed);
}

void ProgressBar::clear()
{
    if (drawnWidth == 0)
        return;
    std::fprintf(stream, "\r%*s\r", drawnWidth, "");
    std::fflush(stream);
    drawnWidth = 0;
}
