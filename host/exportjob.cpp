#include "exportjob.h"

#include "progressbar.h"
#include "recordinginput.h"
#include "recordingsource.h"

#include <abstractexporter.h>
#include <abstractexporterfactory.h>

#include <QFileInfo>
#include <QSaveFile>

#include <memory>

ExportJob::ExportJob(AbstractExporterFactory *factory)
    : factory(factory)
{
}

bool ExportJob::fail(const QString &message)
{
    error = message;
    return false;
}

bool ExportJob::run(const QString &recording, const OutputName &outputName, ProgressBar *progress)
{
    error.clear();
    output.clear();
    notice.clear();

    RecordingInput reader;
    if (!reader.open(recording))
        return fail(reader.errorString());

    QString problem;
    output = outputName(reader.properties(), &problem);
    if (output.isEmpty())
        return fail(problem);
    const QFileInfo target(output);
    if (target.exists() && target.canonicalFilePath() == QFileInfo(recording).canonicalFilePath())
        return fail(tr("%1: the output file would replace the recording itself").arg(output));

    // Devices and pipes are written directly; only a regular file can be
    // replaced as a whole.
    std::unique_ptr<QFileDevice> file;
    if (target.exists() && !target.isFile() && !target.isDir())
        file = std::make_unique<QFile>(output);
    else
        file = std::make_unique<QSaveFile>(output);

    QString reported;
    RecordingSource source(&reader);
    source.setMessageHandler([&reported](int, const QString &text) {
        if (reported.isEmpty())
            reported = text;
    });

    std::unique_ptr<AbstractExporter> exporter(factory->createExporter(&source));
    if (!exporter->start(file.get()))
        return fail(reported.isEmpty() ? tr("%1: cannot be written").arg(output) : reported);

    const QString label = QFileInfo(recording).fileName();
    while (reader.readNext()) {
        exporter->writeSample();
        if (progress)
            progress->update(label, reader.position(), reader.size());
    }
    exporter->finish();
    exporter.reset();
    notice = reader.readingNotice();

    auto *saveFile = qobject_cast<QSaveFile *>(file.get());
    if (reader.hasError()) {
        if (saveFile)
            saveFile->cancelWriting();
        return fail(reader.errorString());
    }
    if (saveFile) {
        if (!saveFile->commit()) {
            // Say why in the user's terms when the folder went away during the export.
            const QFileInfo folder(target.absolutePath());
            if (!folder.isDir())
                return fail(tr("%1: cannot be written: the folder %2 no longer exists").arg(output, folder.filePath()));
            return fail(tr("%1: cannot be written: %2").arg(output, saveFile->errorString()));
        }
        return true;
    }
    if (!file->flush() || file->error() != QFileDevice::NoError)
        return fail(tr("%1: cannot be written: %2").arg(output, file->errorString()));
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

QString ExportJob::readingNotice() const
{
    return notice;
}
