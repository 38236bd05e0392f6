#include "exportjob.h"

#include "outputfile.h"
#include "readahead.h"
#include "recordinginput.h"
#include "recordingsource.h"
#include "samefile.h"

#include <abstractexporter.h>
#include <abstractexporterfactory.h>
#include <settingssynchronizer.h>

#include <QFileDevice>

#include <memory>
#include <optional>

#include <unistd.h>

ExportJob::ExportJob(AbstractExporterFactory *factory)
    : factory(factory)
{ }

void ExportJob::setSkipBadLines(bool skip, const WarningHandler &handler)
{
    skipBadLines = skip;
    warning = handler;
}

void ExportJob::setReadAhead(bool on)
{
    readAhead = on;
}

void ExportJob::setSelection(const SampleSelection &samples)
{
    selection = samples;
}

void ExportJob::setFillPolicy(const UlogFillPolicy &policy)
{
    fill = policy;
}

void ExportJob::setRefuseNoData(bool refuse)
{
    refuseNoData = refuse;
}

bool ExportJob::run(const QString &recording, const OutputName &outputName,
                    const Progress &progress)
{
    failed = Failure::None;
    error.clear();
    output.clear();
    written = 0;
    skipped = 0;
    notice.clear();
    wanted = HeldGroups::chosen(*factory->settings()) & HeldGroups::makingRows();
    samplesRead = 0;
    endReached = false;
    dataExported = false;
    recordingHolds = 0;
    noData.clear();

    RecordingInput reader;
    reader.setUlogFillPolicy(fill);
    QFile standardInput;
    if (!open(recording, &reader, &standardInput)
        || !nameOutput(recording, reader.properties(), outputName))
        return false;
    OutputFile file(output);
    // With a core to spare, the recording is parsed on a second thread while
    // this one formats.
    std::optional<ReadAhead> ahead;
    if (readAhead)
        ahead.emplace(&reader);
    AbstractRecordingReader &samples =
        ahead ? static_cast<AbstractRecordingReader &>(*ahead) : reader;
    const QString recordingName = recording == QLatin1String("-") ? standardInputName() : recording;
    if (!exportSamples(samples, file, recordingName, progress))
        return false;
    // What the reader passed over is known once it reads no more.
    if (ahead)
        ahead->finish();
    notice = samples.readingNotice();
    if (!readToTheEnd(samples))
        return false;
    if (!dataExported) {
        noData = noDataText(recordingName);
        if (refuseNoData)
            return fail(Failure::NoData, noData);
    }
    return commit(file);
}

bool ExportJob::open(const QString &recording, RecordingInput *reader, QFile *standardInput)
{
    const bool opened = recording == QLatin1String("-")
        ? standardInput->open(STDIN_FILENO, QIODevice::ReadOnly, QFileDevice::DontCloseHandle)
            && reader->open(standardInput, standardInputName())
        : reader->open(recording);
    if (opened)
        return true;
    // A bad line met in opening is the first, which holds the recording object.
    return fail(reader->hasBadLine() ? Failure::BadRecordingObject : Failure::Unreadable,
                reader->errorString());
}

bool ExportJob::nameOutput(const QString &recording, const QVariantMap &properties,
                           const OutputName &outputName)
{
    QString problem;
    output = outputName(properties, &problem);
    if (output.isEmpty())
        return fail(Failure::NoOutputName, problem);
    // By whichever name: a link, a hard link or a descriptor's name.
    if (recording != QLatin1String("-") && output != OutputFile::standardOutputName()
        && isSameFile(output, recording))
        return fail(Failure::WouldReplaceRecording,
                    tr("%1: the output file would replace the recording itself").arg(output));
    return true;
}

// Starts a new exporter on the output file and writes the selected samples;
// false when the export cannot start. Whether the reading ended at the end
// of the recording is for the caller to ask.
bool ExportJob::exportSamples(AbstractRecordingReader &samples, OutputFile &file,
                              const QString &recordingName, const Progress &progress)
{
    QString reported;
    RecordingSource source(&samples);
    source.setMessageHandler([&reported](int, const QString &text) {
        if (reported.isEmpty())
            reported = text;
    });
    std::unique_ptr<AbstractExporter> exporter(factory->createExporter(&source));
    if (!exporter->start(file.device())) {
        // The plug-in names the file; the reason is the system's.
        const QString what = reported.isEmpty() ? output : reported;
        return fail(Failure::Unwritable, tr("%1: %2").arg(what, file.errorString()));
    }
    // The update rate is known once the recording object is read.
    const double rate = samples.updateRate();
    if (selection.needsRate() && !(rate > 0.0)) {
        exporter->finish();
        return fail(Failure::NoUpdateRate,
                    tr("%1: gives no update rate, so its samples cannot be selected by time")
                        .arg(recordingName));
    }
    writeSelected(samples, *exporter, rate, progress);
    exporter->finish();
    return true;
}

// Reads on until the selection ends or the reading stops, writing the
// samples selected and skipping bad lines where asked to.
void ExportJob::writeSelected(AbstractRecordingReader &samples, AbstractExporter &exporter,
                              double rate, const Progress &progress)
{
    const bool everything = selection.isEverything();
    const qint64 size = progress ? samples.size() : 0;
    qint64 index = 0; // of the sample read last
    for (;; ++index) {
        if (!everything && selection.isPastEnd(index, rate))
            break;
        if (samples.readNext()) {
            ++samplesRead;
            const bool selected = everything || selection.selects(index, rate);
            // Mostly the first sample holds data of a chosen group; only
            // until one does are the groups of the samples looked at.
            if (!dataExported) {
                const HeldGroups::Mask held = HeldGroups::of(samples.sample());
                recordingHolds |= held;
                dataExported = selected && (held & wanted) != 0;
            }
            if (selected) {
                exporter.writeSample();
                ++written;
            }
        } else if (skipBadLines && samples.hasBadLine()) {
            const QString message = samples.errorString();
            samples.skipBadLine();
            ++skipped;
            --index; // a bad line is not a sample
            warning(tr("%1 (skipped)").arg(message));
            continue;
        } else {
            endReached = !samples.hasError();
            break;
        }
        if (progress)
            progress(samples.position(), size);
    }
}

// Why the samples exported hold no data of the chosen groups, for the user.
QString ExportJob::noDataText(const QString &recordingName) const
{
    if (written == 0) {
        if (!endReached)
            return tr("%1: no sample was selected").arg(recordingName);
        if (samplesRead == 0)
            return tr("%1: the recording holds no sample").arg(recordingName);
        return tr("%1: no sample was selected; the recording's samples go from 0 to %2")
            .arg(recordingName)
            .arg(samplesRead - 1);
    }
    // Reading stops where the selection ends: then only the samples up to
    // there are known.
    const QString held = HeldGroups::names(recordingHolds).join(QStringLiteral(", "));
    QString holds;
    if (endReached)
        holds = recordingHolds == 0 ? tr("the recording holds no data of any group")
                                    : tr("the recording holds: %1").arg(held);
    else
        holds = recordingHolds == 0
            ? tr("the samples read, 0 to %1, hold no data of any group").arg(samplesRead - 1)
            : tr("the samples read, 0 to %1, hold: %2").arg(samplesRead - 1).arg(held);
    if (wanted == 0)
        return tr("%1: none of the chosen groups makes a row of its own (counters, times, status "
                  "words, clipping flags and RSSI go with other data); %2")
            .arg(recordingName, holds);
    return tr("%1: no sample holds data of the chosen groups; %2").arg(recordingName, holds);
}

// Whether the reading stopped at the end of the recording, not at an error.
bool ExportJob::readToTheEnd(const AbstractRecordingReader &samples)
{
    if (!samples.hasError())
        return true;
    return fail(samples.hasBadLine() ? Failure::BadLine : Failure::Unreadable,
                samples.errorString());
}

bool ExportJob::commit(OutputFile &file)
{
    if (file.commit())
        return true;
    if (file.readerWentAway())
        return fail(Failure::ReaderWentAway, QString());
    return fail(Failure::Unwritable,
                tr("%1: cannot be written: %2").arg(output, file.errorString()));
}

bool ExportJob::fail(Failure kind, const QString &message)
{
    failed = kind;
    error = message;
    return false;
}

ExportJob::Failure ExportJob::failure() const
{
    return failed;
}

QString ExportJob::errorString() const
{
    return error;
}

QString ExportJob::outputFile() const
{
    return output;
}

qint64 ExportJob::samplesWritten() const
{
    return written;
}

qint64 ExportJob::linesSkipped() const
{
    return skipped;
}

QString ExportJob::standardInputName()
{
    return tr("(standard input)");
}

QString ExportJob::readingNotice() const
{
    return notice;
}

QString ExportJob::noDataWarning() const
{
    return noData;
}
