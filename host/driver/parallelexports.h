#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QStringList>
#include <QVector>

#include <functional>

/**
 * Runs one export per recording in worker processes, at most a given number
 * at a time. Each worker is a copy of this process (fork), with the plug-in
 * and the settings already loaded, so it exports exactly as this process
 * would, and takes one recording after another: a batch of small recordings
 * costs a few processes, not one each.
 *
 * What an export says on standard error is held back and passed on in the
 * order of the recordings, so the messages read as those of one export
 * after another. An export can ask this process a question (its output
 * file, say), answered here once the answer is known; progress comes too.
 *
 * Nothing is lost without a word: a worker that dies (killed, out of
 * memory, crashed) fails its recording with a line that names it, and the
 * others go on. Where the system refuses more processes or descriptors,
 * fewer run at a time, down to exporting in this process. Workers end with
 * this process: interrupted or terminated, it takes them with it before any
 * can put a file in place.
 */
class ParallelExports
{
    Q_DECLARE_TR_FUNCTIONS(ParallelExports)

public:
    /** Reports how far the reading of the running export has come, in bytes. */
    using TaskProgress = std::function<void(qint64 position)>;
    /** Asks this process a question and gives its answer. */
    using Ask = std::function<QByteArray(const QByteArray &question)>;
    /**
     * Exports recording @p index, says what it has to say on standard error,
     * and gives the exit status.
     */
    using Task = std::function<int(int index, const TaskProgress &progress, const Ask &ask)>;
    /**
     * Answers the question of recording @p index into @p answer; false while
     * it cannot yet, to be asked again once another recording has finished.
     */
    using Answer = std::function<bool(int index, const QByteArray &question, QByteArray *answer)>;
    /** Recording @p index has finished with exit status @p status. */
    using Finished = std::function<void(int index, int status)>;
    /** How many bytes of all recordings were read, of how many. */
    using Progress = std::function<void(qint64 done, qint64 total)>;
    /** Passes on what the export of one recording said. */
    using Output = std::function<void(const QByteArray &text)>;

    ParallelExports(const Task &task, const Answer &answer, const Finished &finished,
                    const Output &output);

    void setProgress(const Progress &progress);

    /**
     * Exports the recordings named @p names (in messages), @p jobs at a
     * time; @p sizes holds each recording's size in bytes (0 when not known).
     * Returns the highest exit status of the exports.
     */
    int run(const QStringList &names, const QVector<qint64> &sizes, int jobs);

private:
    class Run;

    Task task;
    Answer answer;
    Finished finished;
    Output output;
    Progress progress;
};
