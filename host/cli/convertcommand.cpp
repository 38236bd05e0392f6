#include "commands.h"

#include "commandline.h"
#include "localfilepath.h"
#include "outputfile.h"
#include "recordingconverter.h"
#include "recordinginput.h"
#include "samefile.h"
#include "ulogfillpolicy.h"

#include <QCommandLineParser>

namespace Commands {

using namespace CommandLine;

int convert(const QStringList &arguments)
{
    const QString command = QStringLiteral("convert");
    QCommandLineParser parser;
    const QCommandLineOption output(
        {QStringLiteral("o"), QStringLiteral("output")},
        tr("The JSON Lines recording to write; - writes to standard output."), tr("FILE"));
    const QCommandLineOption fill = fillOption();
    const QCommandLineOption maxAge = maxAgeOption();
    parser.addPositionalArgument(QStringLiteral("LOG"),
                                 tr("The UBX receiver log or PX4 flight log (ULog) to convert."));
    int status = 0;
    if (!parse(parser, {output, fill, maxAge}, command,
               tr("Writes a UBX receiver log or a PX4 flight log as a recording in the JSON "
                  "Lines format, which exports to the same bytes as the log."),
               arguments, &status))
        return status;
    if (parser.positionalArguments().size() != 1)
        return usageError(command, tr("give one log"));
    if (!parser.isSet(output))
        return usageError(command, tr("--output is required"));

    UlogFillPolicy policy;
    QString problem;
    if (!readFillPolicy(parser, fill, maxAge, &policy, &problem))
        return usageError(command, problem);

    const QString log = localFilePath(parser.positionalArguments().first());
    const QString fileName = localFilePath(parser.value(output));
    if (fileName.isEmpty())
        return usageError(command, tr("--output takes a file name, or - for standard output"));
    // The log is read while its conversion is written: whichever name leads
    // to it, writing there would lose it.
    const bool toStandardOutput = fileName == OutputFile::standardOutputName();
    if (isSameFile(log, toStandardOutput ? QStringLiteral("/dev/stdout") : fileName)) {
        printError(tr("%1: the output file is the log %2 itself")
                       .arg(toStandardOutput ? tr("(standard output)") : fileName, log));
        return 1;
    }
    RecordingInput input;
    input.setUlogFillPolicy(policy);
    if (!input.open(log)) {
        printError(input.errorString());
        return 1;
    }
    if (input.format() == RecordingInput::Format::JsonLines) {
        printError(tr("%1: is neither a UBX receiver log nor a PX4 flight log").arg(log));
        return 1;
    }
    status =
        writeOutput(fileName, [&](QIODevice *device, const QString &shownName, QString *message) {
            QString error;
            if (RecordingConverter::convert(input, device, &error))
                return true;
            *message = error.startsWith(log) ? error : tr("%1: %2").arg(shownName, error);
            return false;
        });
    if (status != 0)
        return status;
    if (!input.readingNotice().isEmpty())
        printError(input.readingNotice());
    return 0;
}

} // namespace Commands
