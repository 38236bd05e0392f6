#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/**
 * What a run of a program gave: its exit status, or -1 when it did not end
 * on its own within the time given, and what it wrote.
 */
struct ProgramRun
{
    int status = -1;
    QByteArray out;
    QByteArray err;

    /** Runs @p program with @p arguments in @p folder, waiting at most @p milliseconds. */
    static ProgramRun start(const QString &program, const QStringList &arguments,
                            const QString &folder, int milliseconds = 120000);
    /** Runs @p program as start() does, with @p environment in place of this process's own. */
    static ProgramRun start(const QString &program, const QStringList &arguments,
                            const QString &folder, const QProcessEnvironment &environment,
                            int milliseconds = 120000);
    /**
     * Runs "/bin/sh -c SCRIPT PROGRAM ARGUMENTS..." in @p folder: the script
     * calls the program as "$0" and passes on its arguments with "$@".
     */
    static ProgramRun inShell(const QString &script, const QString &program,
                              const QStringList &arguments, const QString &folder,
                              int milliseconds = 120000);
};
