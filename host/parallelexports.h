#pragma once

#include <QByteArray>
#include <QVector>

#include <functional>

/**
 * Runs one export per recording in child processes, at most a given number
 * at a time. Each child is a copy of this process (fork), with the plug-in
 * and the settings already loaded, so it exports exactly as this process
 * would. What a child says on standard error is held back and passed on in
 * the order of the recordings: the messages read as those of one export
 * after another. Progress comes over a pipe of its own.
 */
class ParallelExports
{
public:
    /** Reports how far the reading of the running export has come, in bytes. */
    using TaskProgress = std::function<void(qint64 position)>;
    /** Exports recording @p index, says what it has to say on standard error, and gives the exit
     * status. */
    using Task = std::function<int(int index, const TaskProgress &progress)>;
    /** How many bytes of all recordings were read, of how many. */
    using Progress = std::function<void(qint64 done, qint64 total)>;
    /** Passes on what the export of one recording said. */
    using Output = std::function<void(const QByteArray &text)>;

    /**
     * Runs @p task for every recording, @p jobs at a time; @p sizes holds each
     * recording's size in bytes (0 when not known). Returns the highest exit
     * status of the tasks.
     */
    static int run(const QVector<qint64> &sizes, int jobs, const Task &task,
                   const Progress &progress, const Output &output);
};
