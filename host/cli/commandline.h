#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdio>
#include <functional>

class PluginHost;
struct UlogFillPolicy;
class QIODevice;
class QCommandLineOption;
class QCommandLineParser;
class SettingsSynchronizer;

/**
 * What the subcommands share: their messages, their options for the plug-in
 * and the settings file, and the parsing of their arguments with --help and
 * --version.
 */
namespace CommandLine {

/** @p text translated in the context of the command line. */
QString tr(const char *text);

void printLine(std::FILE *stream, const QString &text);
void printError(const QString &text);
/** Reports a usage error of @p command and gives its exit status, 2. */
int usageError(const QString &command, const QString &text);

/**
 * Adds @p options and parses @p arguments; on --help prints the help and
 * sets @p status to 0, on --version prints the versions and sets @p status
 * as printVersion() does, on a parse error reports it (with the option an
 * unknown one likely misspells) and sets @p status to 2.
 */
bool parse(QCommandLineParser &parser, const QList<QCommandLineOption> &options,
           const QString &command, const QString &description, const QStringList &arguments,
           int *status);
/** As parse(), for a command that takes options only. */
bool parseOptionsOnly(QCommandLineParser &parser, const QList<QCommandLineOption> &options,
                      const QString &command, const QString &description,
                      const QStringList &arguments, int *status);

QCommandLineOption pluginOption();
QCommandLineOption settingsOption();
/** The plug-in file the user named, or the one the program finds. */
QString pluginFile(const QCommandLineParser &parser, const QCommandLineOption &option);
QString settingsFile(const QCommandLineParser &parser, const QCommandLineOption &option);

/** --fill none|hold|nearest: how a flight log's slower topics fill the IMU's samples. */
QCommandLineOption fillOption();
/** --max-age MS: how far from a sample a message may lie for --fill hold and nearest. */
QCommandLineOption maxAgeOption();
/**
 * Reads @p fill and @p maxAge into @p policy; false, with what is wrong in
 * @p message, when they take no such value.
 */
bool readFillPolicy(const QCommandLineParser &parser, const QCommandLineOption &fill,
                    const QCommandLineOption &maxAge, UlogFillPolicy *policy, QString *message);

/** What loading a settings file found besides the settings. */
struct SettingsFileState
{
    /** The file does not exist: the defaults apply until "options" saves it. */
    bool missing = false;
    /** What the file holds that the plug-in does not take, each naming the file. */
    QStringList warnings;
};

/**
 * Loads the plug-in and the settings file @p settings (none when empty);
 * false after reporting why not. What else the file holds goes into
 * @p state.
 */
bool loadPlugin(PluginHost &host, const QString &settings, SettingsFileState *state);

/**
 * Says on standard error that the settings file @p fileName, which the user
 * named for @p command, does not exist yet.
 */
void noteMissingSettings(const QString &command, const QString &fileName);

/**
 * Warnings about the field delimiter and the empty-field text of @p store
 * as the settings file @p fileName left them: a group with several members
 * on or none, an empty custom delimiter.
 */
QStringList choiceWarnings(const SettingsSynchronizer *store, const QString &fileName);

/** What is wrong with a custom delimiter that is on and empty. */
QString emptyDelimiterText();

/**
 * Says @p warnings of @p command on standard error, or with @p strict
 * refuses them as a usage error: then false, with @p status set to 2.
 */
bool warnOrRefuse(const QString &command, const QStringList &warnings, bool strict, int *status);

/**
 * Writes @p fileName ("-": standard output) with @p write, which sets the
 * message when it fails. The file takes its name only when everything was
 * written. Gives the exit status, after saying what went wrong; nothing when
 * the reader of a pipe went away.
 */
int writeOutput(const QString &fileName,
                const std::function<bool(QIODevice *device, const QString &shownName,
                                         QString *message)> &write);

} // namespace CommandLine
