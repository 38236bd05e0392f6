#pragma once

#include <QCoreApplication>
#include <QString>
#include <QVariantMap>

#include <functional>

#include "heldgroups.h"
#include "sampleselection.h"
#include "ulogfillpolicy.h"

class AbstractExporter;
class AbstractExporterFactory;
class AbstractRecordingReader;
class OutputFile;
class QFile;
class RecordingInput;

/**
 * Exports one recording into one file through the plug-in, as the desktop
 * application does: a new exporter from the factory, start() with the output
 * file not yet open, writeSample() per sample, finish(), delete.
 *
 * The output is written through OutputFile: a failed export leaves neither
 * a truncated file nor a damaged older one behind.
 */
class ExportJob
{
    Q_DECLARE_TR_FUNCTIONS(ExportJob)

public:
    /**
     * Gives the output file of a recording from its properties, or an empty
     * name with @p problem set when the recording must not be exported.
     */
    using OutputName = std::function<QString(const QVariantMap &properties, QString *problem)>;
    using WarningHandler = std::function<void(const QString &text)>;
    /** Follows the reading: how far it has come, of how many bytes (0 when not known). */
    using Progress = std::function<void(qint64 position, qint64 size)>;

    /** What made a run fail, for the caller to say more in its own terms. */
    enum class Failure {
        None,
        /** The recording cannot be opened or read. */
        Unreadable,
        /** The first line, the recording object, is bad: no sample can be had without it. */
        BadRecordingObject,
        /** A bad sample line ended the export: bad lines are not skipped. */
        BadLine,
        /** The output file has no name: the OutputName function refused one. */
        NoOutputName,
        /** The output file would be the recording itself. */
        WouldReplaceRecording,
        /** The selection is in seconds, and the recording gives no update rate. */
        NoUpdateRate,
        /** The output file cannot be written. */
        Unwritable,
        /** The reader of the pipe written to went away. */
        ReaderWentAway,
        /** No exported sample holds data of the chosen groups, and such exports are refused. */
        NoData,
    };

    explicit ExportJob(AbstractExporterFactory *factory);

    /**
     * Exports the samples of bad lines too: each bad sample line goes to the
     * warning handler as "FILE:LINE: what is wrong (skipped)" and the export
     * goes on.
     */
    void setSkipBadLines(bool skip, const WarningHandler &warning);

    /**
     * Whether the recording is read on a thread of its own while the export
     * is written (on by default). Worth it only with a core to spare: exports
     * that already run side by side, one per core, go faster without.
     */
    void setReadAhead(bool readAhead);

    /** Exports only these samples of each recording. */
    void setSelection(const SampleSelection &samples);
    /** How the samples of a flight log take the messages of its slower topics. */
    void setFillPolicy(const UlogFillPolicy &policy);

    /**
     * Fails an export whose samples hold no data of the chosen groups, which
     * makes a file without rows, instead of writing it with a warning: no
     * file is left, as with any failed export.
     */
    void setRefuseNoData(bool refuse);

    /**
     * Exports @p recording ("-" for standard input) into the file that
     * @p outputName gives. Returns false on failure; failure() then tells
     * what failed and errorString() what to tell the user, which is empty
     * when the reader of a pipe went away. @p progress, when given, follows
     * the reading.
     */
    bool run(const QString &recording, const OutputName &outputName, const Progress &progress);

    Failure failure() const;
    QString errorString() const;
    /** The output file of the last run, once it was named. */
    QString outputFile() const;
    /** Samples written and bad lines skipped by the last run. */
    qint64 samplesWritten() const;
    qint64 linesSkipped() const;
    /** What the reader of the last run passed over, for the user; often empty. */
    QString readingNotice() const;
    /**
     * The warning that the last run exported no data of the chosen groups,
     * naming the groups the recording holds; empty when it exported data.
     */
    QString noDataWarning() const;

    /** The name of standard input in messages. */
    static QString standardInputName();

private:
    bool open(const QString &recording, RecordingInput *reader, QFile *standardInput);
    bool nameOutput(const QString &recording, const QVariantMap &properties,
                    const OutputName &outputName);
    bool exportSamples(AbstractRecordingReader &samples, OutputFile &file,
                       const QString &recordingName, const Progress &progress);
    void writeSelected(AbstractRecordingReader &samples, AbstractExporter &exporter, double rate,
                       const Progress &progress);
    QString noDataText(const QString &recordingName) const;
    bool readToTheEnd(const AbstractRecordingReader &samples);
    bool commit(OutputFile &file);
    bool fail(Failure kind, const QString &message);

    AbstractExporterFactory *factory;
    bool skipBadLines = false;
    bool readAhead = true;
    bool refuseNoData = false;
    WarningHandler warning;
    SampleSelection selection;
    UlogFillPolicy fill;
    Failure failed = Failure::None;
    QString error;
    QString output;
    qint64 written = 0;
    qint64 skipped = 0;
    QString notice;
    // Of the groups chosen, those that make rows; of the last run, the
    // samples read, whether they were read to the end, whether one exported sample held data of
    // those groups, and until then, the groups of the samples read.
    HeldGroups::Mask wanted = 0;
    qint64 samplesRead = 0;
    bool endReached = false;
    bool dataExported = false;
    HeldGroups::Mask recordingHolds = 0;
    QString noData;
};
