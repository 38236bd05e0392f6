#pragma once

#include "exportjob.h"
#include "outputnamer.h"
#include "outputnames.h"
#include "progressbar.h"
#include "sampleselection.h"
#include "ulogfillpolicy.h"

#include <QCoreApplication>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class AbstractExporterFactory;
class QCommandLineOption;
class QCommandLineParser;
class SettingsSynchronizer;

namespace Commands {

/**
 * The command "asciiexport export": its options, the settings they change
 * for this run, and the batch of exports, one after another or side by side
 * in worker processes, with what each export has to say on standard error.
 */
class ExportCommand
{
    // The texts of every command share one context.
    Q_DECLARE_TR_FUNCTIONS(Commands)

public:
    /** What the command line asks for, read and checked. */
    struct Options
    {
        QString pluginFile;
        QString settingsFile;
        /** Whether --settings named the file. */
        bool settingsNamed = false;
        QStringList recordings;
        /** --output: empty when not given, "-" for standard output. */
        QString output;
        /** --output-dir: empty when not given. */
        QString outputDir;
        /** --groups, when given. */
        std::optional<QString> groups;
        /** --set KEY=VALUE, in the order given. */
        QList<QPair<QString, QString>> changes;
        /** --delimiter and --empty, when given. */
        std::optional<QString> delimiter;
        std::optional<QString> emptyFieldText;
        bool strict = false;
        bool skipBadLines = false;
        SampleSelection selection;
        /** --fill and --max-age, for flight logs. */
        UlogFillPolicy fill;
        int jobs = 1;
        bool progress = false;
        bool quiet = false;
    };

    /**
     * Reads and checks @p arguments into @p options; false, with @p status
     * set, when the command ends here (help, version, a usage error).
     */
    static bool readOptions(const QStringList &arguments, Options *options, int *status);

    /**
     * Changes the settings in @p store for this run as @p options say, and
     * warns about what the settings file holds besides settings
     * (@p fileWarnings), about values that the options page could not have
     * made and about delimiter or empty-field settings that contradict each
     * other (or refuses all those when strict); false, with @p status set,
     * on a usage error, such as an empty delimiter.
     */
    static bool changeSettings(const Options &options, SettingsSynchronizer *store,
                               const QStringList &fileWarnings, int *status);

    /** Exports with @p factory and its settings as they stand now. */
    ExportCommand(const Options &options, AbstractExporterFactory *factory);

    ExportCommand(const ExportCommand &) = delete;
    ExportCommand &operator=(const ExportCommand &) = delete;

    /** Exports every recording; gives the exit status. */
    int run();

private:
    /**
     * Asks the batch for the file that a recording wants; false, with the
     * problem set, when another recording of the batch has it.
     */
    using Claim = std::function<bool(const QString &fileName, QString *problem)>;

    static QList<QCommandLineOption> commandLineOptions(const QCommandLineOption &plugin,
                                                        const QCommandLineOption &settings);
    static bool readOutputs(const QCommandLineParser &parser, Options *options, int *status);
    static bool readSelection(const QCommandLineParser &parser, Options *options, int *status);
    static bool readJobs(const QCommandLineParser &parser, Options *options, int *status);
    static bool readChanges(const QCommandLineParser &parser, Options *options, int *status);
    static bool applyChanges(const Options &options, SettingsSynchronizer *store,
                             QStringList *warnings, int *status);

    bool makeOutputFolder() const;
    int exportOneAfterAnother();
    int exportSideBySide();
    int exportOne(int index, const ExportJob::Progress &followReading, const Claim &claim);
    QString wantedName(int index, const QVariantMap &properties, QString *problem) const;
    QString shownName(int index) const;
    QString failureText(int index) const;

    const Options options;
    const bool sideBySide;
    const bool showProgress;
    ProgressBar bar;
    const OutputNamer namer;
    OutputNames names;
    ExportJob job;
};

} // namespace Commands
