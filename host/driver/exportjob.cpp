#include "exportjob.h"

#include "outputfile.h"
#include "readahead.h"
#include "recordinginput.h"
#include "recordingsource.h"
#include "samefile.h"

#include <abstractexporter.h>
#include <abstractexporterfactory.h>

#include <QFileDevice>

#include <memory>

#include <unistd.h>

ExportJob::ExportJob(AbstractExporterFactory *factory)
    : factory(factory)
{ }

void ExportJob::setSkipBadLines(bool skip, const WarningHandler &handler)
{
    skipBadLines = skip;
    warning = handler;
}

bool ExportJob::fail(const QString &message)
{
    error = message;
    return false;
}

void ExportJob::setReadAhead(bool on)
{
    readAhead = on;
}

void ExportJob::setSelection(const SampleSelection &samples)
{
    selection = samples;
}

bool ExportJob::run(const QString &recording, const OutputName &outputName,
                    const Progress &progress)
{
    error.clear();
    output.clear();
    written = 0;
    skipped = 0;
    notice.clear();

    RecordingInput reader;
    QFile standardInput;
    const bool fromStandardInput = recording == QLatin1String("-");
    const bool opened = fromStandardInput
        ? standardInput.open(STDIN_FILENO, QIODevice::ReadOnly, QFileDevice::DontCloseHandle)
            && reader.open(&standardInput, standardInputName())
        : reader.open(recording);
    if (!opened) {
        if (skipBadLines && reader.hasBadLine())
            return fail(tr("%1 (a recording cannot be salvaged without its first line, the "
                           "recording object)")
                            .arg(reader.errorString()));
        return fail(reader.errorString());
    }

    QString problem;
    output = outputName(reader.properties(), &problem);
    if (output.isEmpty())
        return fail(problem);
    // By whichever name: a link, a hard link or a descriptor's name.
    if (!fromStandardInput && output != OutputFile::standardOutputName()
        && isSameFile(output, recording))
        return fail(tr("%1: the output file would replace the recording itself").arg(output));

    OutputFile file(output);
    QString reported;
    // With a core to spare, the recording is parsed on a second thread while
    // this one formats.
    ReadAhead ahead(&reader);
    AbstractRecordingReader &samples = readAhead ? static_cast<AbstractRecordingReader &>(ahead)
                                                 : static_cast<AbstractRecordingReader &>(reader);
    RecordingSource source(&samples);
    source.setMessageHandler([&reported](int, const QString &text) {
        if (reported.isEmpty())
            reported = text;
    });

    std::unique_ptr<AbstractExporter> exporter(factory->createExporter(&source));
    if (!exporter->start(file.device())) {
        // The plug-in names the file; the reason is the system's.
        const QString what = reported.isEmpty() ? output : reported;
        return fail(tr("%1: %2").arg(what, file.errorString()));
    }

    // The update rate is known once the recording object is read.
    const double rate = samples.updateRate();
    if (selection.needsRate() && !(rate > 0.0)) {
        exporter->finish();
        return fail(tr("%1: gives no update rate, so --from and --to cannot be in seconds")
                        .arg(fromStandardInput ? standardInputName() : recording));
    }
    const bool everything = selection.isEverything();
    const qint64 size = progress ? samples.size() : 0;
    qint64 index = 0; // of the sample read last
    for (;; ++index) {
        if (!everything && selection.isPastEnd(index, rate))
            break;
        if (samples.readNext()) {
            if (everything || selection.selects(index, rate)) {
                exporter->writeSample();
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
            break;
        }
        if (progress)
            progress(samples.position(), size);
    }
    exporter->finish();
    exporter.reset();
    // What the reader passed over is known once it reads no more.
    ahead.finish();
    notice = samples.readingNotice();

    if (samples.hasError()) {
        if (samples.hasBadLine())
            return fail(
                tr("%1 (--skip-bad-lines exports the other samples)").arg(samples.errorString()));
        return fail(samples.errorString());
    }
    if (!file.commit()) {
        if (file.readerWentAway())
            return fail(QString());
        return fail(tr("%1: cannot be written: %2").arg(output, file.errorString()));
    }
    return true;
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
