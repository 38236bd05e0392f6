#include "programrun.h"

#include <QProcess>

namespace {

ProgramRun finished(QProcess &process, int milliseconds)
{
    ProgramRun run;
    if (!process.waitForFinished(milliseconds)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    if (process.exitStatus() == QProcess::NormalExit)
        run.status = process.exitCode();
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

} // namespace

ProgramRun ProgramRun::start(const QString &program, const QStringList &arguments,
                             const QString &folder, int milliseconds)
{
    return start(program, arguments, folder, QProcessEnvironment::systemEnvironment(),
                 milliseconds);
}

ProgramRun ProgramRun::start(const QString &program, const QStringList &arguments,
                             const QString &folder, const QProcessEnvironment &environment,
                             int milliseconds)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    return finished(process, milliseconds);
}

ProgramRun ProgramRun::inShell(const QString &script, const QString &program,
                               const QStringList &arguments, const QString &folder,
                               int milliseconds)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(QStringLiteral("/bin/sh"), QStringList{"-c", script, program} + arguments);
    return finished(process, milliseconds);
}
