#include "recordingreport.h"

#include "gapfinder.h"
#include "heldgroups.h"
#include "recordinginput.h"
#include "recordingsample.h"
#include "ubxmessages.h"
#include "ubxtimeline.h"
#include "ulogsummary.h"

#include <QVariant>

namespace {

QString row(const QString &label, const QString &value)
{
    return QStringLiteral("%1 %2").arg(label + QLatin1Char(':'), -17).arg(value);
}

QString countRow(const QString &label, qint64 count)
{
    return row(label, QString::number(count));
}

// A property's text on its one row: a text with a line break or a NUL is
// shown in quotes, with those, quotes and backslashes written as C escapes.
QString shownText(const QString &text)
{
    if (!text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r'))
        && !text.contains(QChar(0)))
        return text;
    QString shown = QStringLiteral("\"");
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '\n':
            shown += QLatin1String("\\n");
            break;
        case '\r':
            shown += QLatin1String("\\r");
            break;
        case 0:
            shown += QLatin1String("\\0");
            break;
        case '"':
        case '\\':
            shown += QLatin1Char('\\') + c;
            break;
        default:
            shown += c;
        }
    }
    return shown + QLatin1Char('"');
}

} // namespace

bool RecordingReport::describe(RecordingInput &input, const QString &name, QStringList *lines,
                               QString *error)
{
    Samples samples;
    while (input.readNext())
        readSample(input.sample(), &samples);
    if (input.hasError()) {
        *error = input.errorString();
        return false;
    }
    samples.times.finish();
    samples.receiverTimes.finish();

    lines->append(row(tr("Recording"), name));
    switch (input.format()) {
    case RecordingInput::Format::Ubx:
        lines->append(row(tr("Format"), tr("UBX receiver log")));
        break;
    case RecordingInput::Format::Ulog:
        lines->append(row(tr("Format"), tr("PX4 flight log (ULog)")));
        break;
    case RecordingInput::Format::JsonLines:
        lines->append(row(tr("Format"), tr("JSON Lines")));
        break;
    }
    describeSamples(input, samples, lines);
    switch (input.format()) {
    case RecordingInput::Format::Ubx:
        describeUbx(input.ubxLog().statistics(), lines);
        break;
    case RecordingInput::Format::Ulog:
        describeUlog(input.ulogLog().summary(), lines);
        break;
    case RecordingInput::Format::JsonLines:
        break;
    }
    const double rate = input.updateRate();
    lines->append(row(tr("Update rate"), rate != 0.0 ? tr("%1 Hz").arg(rate) : tr("not known")));
    const QVariantMap properties = input.properties();
    for (auto property = properties.cbegin(); property != properties.cend(); ++property)
        lines->append(row(property.key(), shownText(property.value().toString())));
    return true;
}

// The number of samples, how long they last, how many come a second, the
// data groups they hold and the gaps in their counter and time.
void RecordingReport::describeSamples(const RecordingInput &input, const Samples &samples,
                                      QStringList *lines)
{
    lines->append(countRow(tr("Samples"), samples.count));
    // The span of the samples from their own times where they have them,
    // else from a receiver log's epochs, else from the update rate.
    double seconds = 0.0;
    qint64 spanned = 0;
    QString source;
    const UbxLogStatistics *log =
        input.format() == RecordingInput::Format::Ubx ? &input.ubxLog().statistics() : nullptr;
    if (samples.times.values() > 1) {
        seconds = double(samples.times.span()) / ticksPerSecond;
        spanned = samples.times.values() - 1;
        source = tr("from the sample times");
    } else if (log && log->epochs > 1) {
        seconds = double(log->lastTime - log->firstTime) / 1000.0;
        spanned = log->epochs - 1;
        source = tr("from the receiver's times");
    } else if (input.updateRate() > 0.0 && samples.count > 0) {
        seconds = double(samples.count) / input.updateRate();
        spanned = samples.count;
        source = tr("from the update rate");
    }
    if (source.isEmpty()) {
        lines->append(row(tr("Duration"), tr("not known")));
        lines->append(row(tr("Rate"), tr("not known")));
    } else {
        lines->append(row(tr("Duration"), tr("%1 s (%2)").arg(seconds, 0, 'f', 4).arg(source)));
        lines->append(row(tr("Rate"),
                          seconds > 0.0
                              ? tr("%1 samples/s").arg(double(spanned) / seconds, 0, 'f', 2)
                              : tr("not known")));
    }
    const QStringList groups = HeldGroups::names(samples.groups);
    lines->append(
        row(tr("Data groups"), groups.isEmpty() ? tr("none") : groups.join(QStringLiteral(", "))));

    const GapFinder &counters = samples.counters;
    if (counters.values() == 0) {
        lines->append(row(tr("Counter gaps"), tr("no packet counter")));
    } else if (counters.gaps() == 0) {
        lines->append(row(tr("Counter gaps"), tr("none")));
    } else {
        const GapFinder::Gap gap = counters.largest();
        lines->append(row(tr("Counter gaps"),
                          tr("%1; the largest %2 -> %3 before sample %4")
                              .arg(counters.gaps())
                              .arg(gap.from, 5, 10, QLatin1Char('0'))
                              .arg(gap.to, 5, 10, QLatin1Char('0'))
                              .arg(gap.sample)));
    }

    if (samples.times.values() > 1)
        lines->append(row(tr("Time gaps"), timeGaps(samples.times, ticksPerSecond)));
    else if (samples.receiverTimes.values() > 1)
        lines->append(
            row(tr("Time gaps"),
                tr("in the receiver's time: %1").arg(timeGaps(samples.receiverTimes, 1000.0))));
    else
        lines->append(row(tr("Time gaps"), tr("no sample times")));
}

void RecordingReport::readSample(const RecordingSample &sample, Samples *samples)
{
    samples->groups |= HeldGroups::of(sample);
    if (sample.hasPacketCounter)
        samples->counters.add(samples->count, sample.packetCounter);
    if (sample.hasSampleTimeFine) {
        samples->times.add(samples->count, sample.sampleTimeFine);
    } else {
        // The records of one epoch share its time; 0 is no record.
        for (const quint32 timeOfWeek :
             {sample.gnssPvt.iTOW, sample.gpsSolution.iTOW, sample.gpsUtcTime.iTOW,
              sample.gpsDop.iTOW, sample.gnssSatellites.iTOW, sample.gpsSatellites.iTOW}) {
            if (timeOfWeek != 0) {
                samples->receiverTimes.add(samples->count, timeOfWeek);
                break;
            }
        }
    }
    ++samples->count;
}

// The gaps of @p times, which count @p perSecond a second.
QString RecordingReport::timeGaps(const GapFinder &times, double perSecond)
{
    const auto seconds = [perSecond](quint32 step) { return double(step) / perSecond; };
    if (times.gaps() == 0)
        return tr("none (median step %1 s)").arg(seconds(times.typicalStep()), 0, 'f', 4);
    const GapFinder::Gap gap = times.largest();
    return tr("%1 (steps over 1.5 times the median step %2 s); the largest %3 s before sample %4")
        .arg(times.gaps())
        .arg(seconds(times.typicalStep()), 0, 'f', 4)
        .arg(seconds(gap.step), 0, 'f', 4)
        .arg(gap.sample);
}

void RecordingReport::describeUbx(const UbxLogStatistics &log, QStringList *lines)
{
    lines->append(countRow(tr("Bytes"), log.bytes));
    lines->append(row(tr("Frames"), tr("%1 (%2 bytes)").arg(log.frames).arg(log.frameBytes)));
    lines->append(countRow(tr("Bad checksums"), log.badChecksums));
    lines->append(countRow(tr("Cut short at end"), log.cutFrames));
    lines->append(countRow(tr("Bytes skipped"), log.skippedBytes()));
    QStringList used;
    QStringList unused;
    for (auto message = log.messages.cbegin(); message != log.messages.cend(); ++message) {
        const quint16 key = message.key();
        const bool read = UbxMessages::messageRead(key) != nullptr;
        const QString text =
            QStringLiteral("  %1 %2").arg(UbxMessages::messageName(key), -12).arg(message.value());
        (read ? used : unused).append(text);
    }
    lines->append(tr("Messages used:"));
    *lines += used;
    lines->append(tr("Messages not used:"));
    *lines += unused;
    lines->append(countRow(tr("Wrong length"), log.wrongLengths));
    lines->append(countRow(tr("Repeated"), log.repeated));
    lines->append(countRow(tr("At iTOW 0"), log.atTimeOfWeekZero));
    if (log.epochs > 0) {
        const auto time = [&log](qint64 time) {
            const qint64 timeOfWeek = UbxTimeline::timeOfWeekOf(time);
            return log.weekKnown
                ? tr("week %1 iTOW %2 ms").arg(UbxTimeline::weekOf(time)).arg(timeOfWeek)
                : tr("iTOW %1 ms").arg(timeOfWeek);
        };
        lines->append(
            row(tr("Epochs"),
                tr("%1 (%2 to %3)").arg(log.epochs).arg(time(log.firstTime), time(log.lastTime))));
    } else {
        lines->append(countRow(tr("Epochs"), 0));
    }
    lines->append(row(tr("Satellites"),
                      tr("%1 GPS in NAV-SVINFO, %2 GNSS in NAV-SAT")
                          .arg(log.gpsSatellites.size())
                          .arg(log.gnssSatellites.size())));
}

void RecordingReport::describeUlog(const UlogSummary &log, QStringList *lines)
{
    lines->append(tr("Topics (instance, messages, rate):"));
    for (const UlogSummary::Topic &topic : log.topics) {
        lines->append(tr("  %1 %2 %3 %4 Hz")
                          .arg(topic.name, -32)
                          .arg(topic.multiId)
                          .arg(topic.messages, 8)
                          .arg(topic.rate, 8, 'f', 1));
    }
    lines->append(
        row(tr("Dropouts"), tr("%1 (%2 ms in all)").arg(log.dropouts).arg(log.dropoutMs)));
    lines->append(row(tr("Logged messages"), QString::number(log.logged.size())));
    for (const UlogSummary::LoggedMessage &message : log.logged) {
        lines->append(tr("  %1 s level %2: %3")
                          .arg(double(message.timestamp) * 1e-6, 0, 'f', 6)
                          .arg(message.level)
                          .arg(shownText(message.text)));
    }
    lines->append(tr("Keys (messages: placed, dropped, collided; from):"));
    for (const UlogSummary::Key &key : log.keys) {
        lines->append(tr("  %1 %2: %3, %4, %5; %6")
                          .arg(key.key, -26)
                          .arg(key.messages)
                          .arg(key.used)
                          .arg(key.dropped)
                          .arg(key.collided)
                          .arg(key.source));
    }
    for (const QString &damage : log.damage)
        lines->append(row(tr("Passed over"), damage));
}
