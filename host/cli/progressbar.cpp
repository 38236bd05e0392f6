#include "progressbar.h"

namespace {

constexpr int barWidth = 30;
constexpr int labelWidth = 40;
constexpr qint64 redrawMilliseconds = 100;

} // namespace

ProgressBar::ProgressBar(std::FILE *stream)
    : stream(stream)
{ }

void ProgressBar::update(const QString &label, qint64 done, qint64 total)
{
    if (shown && sinceDrawn.isValid() && sinceDrawn.elapsed() < redrawMilliseconds && done < total)
        return;
    draw(label, done, total);
    sinceDrawn.start();
}

void ProgressBar::draw(const QString &label, qint64 done, qint64 total)
{
    const int percent = total > 0 ? int(qBound<qint64>(0, done * 100 / total, 100)) : 0;
    const int filled = percent * barWidth / 100;
    QString name = label;
    if (name.size() > labelWidth)
        name = QStringLiteral("...") + name.right(labelWidth - 3);
    const QString line =
        QStringLiteral("\r[%1%2] %3% %4")
            .arg(QString(filled, QLatin1Char('#')), QString(barWidth - filled, QLatin1Char(' ')))
            .arg(percent, 3)
            .arg(name, -labelWidth);
    std::fputs(line.toLocal8Bit().constData(), stream);
    std::fflush(stream);
    shown = true;
}

void ProgressBar::clear()
{
    if (!shown)
        return;
    std::fprintf(stream, "\r%*s\r", barWidth + labelWidth + 8, "");
    std::fflush(stream);
    shown = false;
}
