#include "parallelexports.h"

#include <QString>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Records between this process and a worker: a kind, the length of what
// follows as four bytes (little-endian), and that many bytes.
enum Kind : char {
    TaskRecord = 'T', // to a worker: export this recording, by its index
    AnswerRecord = 'A', // to a worker: the answer to its question
    ProgressRecord = 'P', // from a worker: the bytes its export has read
    QuestionRecord = 'Q', // from a worker: a question
    DoneRecord = 'D', // from a worker: the exit status of its export
};
constexpr int headerSize = 5;

// A worker reports its progress every MiB: plenty for a bar redrawn ten
// times a second.
constexpr qint64 progressStep = 1 << 20;

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

bool writeAll(int descriptor, const char *data, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(descriptor, data, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        data += written;
        size -= std::size_t(written);
    }
    return true;
}

bool readAll(int descriptor, char *data, std::size_t size)
{
    while (size > 0) {
        const ssize_t got = ::read(descriptor, data, size);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        data += got;
        size -= std::size_t(got);
    }
    return true;
}

QByteArray number(qint64 value)
{
    QByteArray bytes(8, '\0');
    for (int i = 0; i < 8; ++i)
        bytes[i] = char(quint64(value) >> (8 * i));
    return bytes;
}

qint64 numberOf(const QByteArray &bytes)
{
    quint64 value = 0;
    for (int i = std::min(int(bytes.size()), 8) - 1; i >= 0; --i)
        value = value << 8 | uchar(bytes[i]);
    return qint64(value);
}

quint32 lengthOf(const char *header)
{
    quint32 length = 0;
    for (int i = 3; i >= 0; --i)
        length = length << 8 | uchar(header[1 + i]);
    return length;
}

bool writeRecord(int descriptor, Kind kind, const QByteArray &payload)
{
    QByteArray record(headerSize, '\0');
    record[0] = kind;
    for (int i = 0; i < 4; ++i)
        record[1 + i] = char(quint32(payload.size()) >> (8 * i));
    record += payload;
    return writeAll(descriptor, record.constData(), std::size_t(record.size()));
}

// Reads one whole record, waiting for it; false at the end of the pipe.
bool readRecord(int descriptor, char *kind, QByteArray *payload)
{
    char header[headerSize];
    if (!readAll(descriptor, header, headerSize))
        return false;
    *kind = header[0];
    payload->resize(int(lengthOf(header)));
    return readAll(descriptor, payload->data(), std::size_t(payload->size()));
}

// Takes one whole record off the front of @p bytes, when they hold one.
bool takeRecord(QByteArray *bytes, char *kind, QByteArray *payload)
{
    if (bytes->size() < headerSize)
        return false;
    const int length = int(lengthOf(bytes->constData()));
    if (bytes->size() < headerSize + length)
        return false;
    *kind = bytes->at(0);
    *payload = bytes->mid(headerSize, length);
    bytes->remove(0, headerSize + length);
    return true;
}

// Reads what the pipe holds now; false at its end.
bool readAvailable(int descriptor, QByteArray *bytes)
{
    char buffer[65536];
    for (;;) {
        const ssize_t count = ::read(descriptor, buffer, sizeof buffer);
        if (count < 0)
            return errno == EINTR || errno == EAGAIN;
        if (count == 0)
            return false;
        bytes->append(buffer, int(count));
    }
}

void closeDescriptor(int &descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

// The workers that end with this process when a signal ends it, for the
// signal handler: a fixed array, set before the handler is in place.
std::atomic<pid_t> *workerProcesses = nullptr;
std::size_t workerProcessCount = 0;

extern "C" void endWithWorkers(int signal)
{
    for (std::size_t i = 0; i < workerProcessCount; ++i) {
        const pid_t pid = workerProcesses[i].load();
        if (pid > 0)
            ::kill(pid, SIGKILL);
    }
    for (std::size_t i = 0; i < workerProcessCount; ++i) {
        const pid_t pid = workerProcesses[i].load();
        if (pid > 0) {
            while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) { }
        }
    }
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

} // namespace

class ParallelExports::Run
{
public:
    Run(const ParallelExports &exports, const QStringList &names, const QVector<qint64> &sizes,
        int jobs);
    ~Run();

    int exec();

private:
    struct Worker
    {
        pid_t pid = -1;
        int commands = -1; // to the worker
        int reports = -1; // from the worker
        int messages = -1; // its standard error
        QByteArray pending; // reports not yet whole
        QByteArray text; // what its export said so far
        int task = -1; // the recording it exports
        qint64 position = 0;
        QByteArray question; // asked and not yet answered
        bool asking = false;
    };

    struct Result
    {
        QByteArray text;
        int status = 0;
        bool done = false;
    };

    int giveOutWork();
    bool hearWorkers();
    void endWorkers();
    bool start(Worker &worker);
    [[noreturn]] void serve(int commands, int reports);
    void handleReports(Worker &worker);
    void finish(int index, const QByteArray &text, int status);
    void ended(Worker &worker);
    void answerQuestions();
    void exportHere(int index);
    void passOn();
    void showProgress();

    const ParallelExports &exports;
    const QStringList &names;
    const QVector<qint64> &sizes;
    std::vector<Worker> workers;
    std::unique_ptr<std::atomic<pid_t>[]> processes;
    std::vector<Result> results;
    struct sigaction previous[std::size(endingSignals)] = {};
    bool handled[std::size(endingSignals)] = {};
    int next = 0; // the next recording to give out
    bool growing = true; // whether another worker may be started
    int passedOn = 0;
    qint64 finishedBytes = 0;
    qint64 totalBytes = 0;
    int status = 0;
};

ParallelExports::Run::Run(const ParallelExports &exports, const QStringList &names,
                          const QVector<qint64> &sizes, int jobs)
    : exports(exports)
    , names(names)
    , sizes(sizes)
    , workers(std::size_t(std::max(1, std::min(jobs, int(names.size())))))
    , processes(new std::atomic<pid_t>[workers.size()])
    , results(std::size_t(names.size()))
{
    for (std::size_t i = 0; i < workers.size(); ++i)
        processes[i] = -1;
    for (const qint64 size : sizes)
        totalBytes += size;
    workerProcesses = processes.get();
    workerProcessCount = workers.size();
    // A signal that ends this process ends the workers first; one that the
    // caller has this process ignore is left alone.
    for (std::size_t i = 0; i < std::size(endingSignals); ++i) {
        struct sigaction action = {};
        if (::sigaction(endingSignals[i], nullptr, &previous[i]) != 0
            || previous[i].sa_handler == SIG_IGN)
            continue;
        action.sa_handler = endWithWorkers;
        sigemptyset(&action.sa_mask);
        handled[i] = ::sigaction(endingSignals[i], &action, nullptr) == 0;
    }
}

ParallelExports::Run::~Run()
{
    for (std::size_t i = 0; i < std::size(endingSignals); ++i) {
        if (handled[i])
            ::sigaction(endingSignals[i], &previous[i], nullptr);
    }
    workerProcessCount = 0;
    workerProcesses = nullptr;
}

int ParallelExports::Run::exec()
{
    const int count = names.size();
    while (passedOn < count) {
        if (giveOutWork() == 0) {
            if (next < count) {
                passOn();
                exportHere(next++);
                growing = true;
            }
            passOn();
            continue;
        }
        if (!hearWorkers())
            break;
        answerQuestions();
        showProgress();
        passOn();
    }
    endWorkers();
    return passedOn == int(results.size()) ? status : std::max(status, 1);
}

// Starts workers while there is work for them, gives each idle one the next
// recording, or with none left lets it end; returns how many workers run.
int ParallelExports::Run::giveOutWork()
{
    const int count = names.size();
    int alive = 0;
    for (std::size_t i = 0; i < workers.size(); ++i) {
        Worker &worker = workers[i];
        if (worker.pid < 0 && growing && next < count) {
            // The system may refuse another process or its pipes: then
            // fewer run at a time, until one ends.
            growing = start(worker);
            if (worker.pid > 0)
                processes[i] = worker.pid;
        }
        if (worker.pid < 0)
            continue;
        ++alive;
        if (worker.task < 0 && worker.commands >= 0) {
            if (next < count) {
                worker.task = next++;
                worker.position = 0;
                writeRecord(worker.commands, TaskRecord, number(worker.task));
            } else {
                // Nothing left: the worker ends when its pipe does.
                closeDescriptor(worker.commands);
            }
        }
    }
    return alive;
}

// Waits until a worker says something or ends, and takes in what it said;
// false when nothing more can be heard from the workers, which then end.
bool ParallelExports::Run::hearWorkers()
{
    std::vector<pollfd> watched;
    std::vector<Worker *> owners;
    for (Worker &worker : workers) {
        for (const int descriptor : {worker.messages, worker.reports}) {
            if (descriptor >= 0) {
                watched.push_back({descriptor, POLLIN, 0});
                owners.push_back(&worker);
            }
        }
    }
    if (::poll(watched.data(), nfds_t(watched.size()), -1) < 0 && errno != EINTR) {
        for (const Worker &worker : workers) {
            if (worker.pid > 0)
                ::kill(worker.pid, SIGKILL);
        }
        return false;
    }
    for (std::size_t i = 0; i < watched.size(); ++i) {
        if (watched[i].revents == 0)
            continue;
        Worker &worker = *owners[i];
        if (watched[i].fd == worker.messages) {
            if (!readAvailable(worker.messages, &worker.text))
                closeDescriptor(worker.messages);
        } else if (worker.reports >= 0) {
            const bool open = readAvailable(worker.reports, &worker.pending);
            handleReports(worker);
            if (!open)
                closeDescriptor(worker.reports);
        }
        if (worker.pid > 0 && worker.messages < 0 && worker.reports < 0) {
            ended(worker);
            processes[std::size_t(&worker - workers.data())] = -1;
            growing = true;
        }
    }
    return true;
}

// The workers left are idle: without a pipe to read from, they end.
void ParallelExports::Run::endWorkers()
{
    for (std::size_t i = 0; i < workers.size(); ++i) {
        Worker &worker = workers[i];
        if (worker.pid < 0)
            continue;
        closeDescriptor(worker.commands);
        closeDescriptor(worker.reports);
        closeDescriptor(worker.messages);
        while (::waitpid(worker.pid, nullptr, 0) < 0 && errno == EINTR) { }
        processes[i] = -1;
    }
}

// Starts a worker; false, with errno set, when the system cannot.
bool ParallelExports::Run::start(Worker &worker)
{
    int commands[2] = {-1, -1};
    int reports[2] = {-1, -1};
    int messages[2] = {-1, -1};
    const auto closeAll = [&] {
        const int saved = errno;
        for (int *pipe : {commands, reports, messages}) {
            closeDescriptor(pipe[0]);
            closeDescriptor(pipe[1]);
        }
        errno = saved;
    };
    if (::pipe2(commands, O_CLOEXEC) != 0 || ::pipe2(reports, O_CLOEXEC) != 0
        || ::pipe2(messages, O_CLOEXEC) != 0) {
        closeAll();
        return false;
    }
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t parent = ::getpid();
    const pid_t pid = ::fork();
    if (pid == 0) {
        // The worker ends with this process, however that ends.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
            ::_exit(1);
        for (std::size_t i = 0; i < std::size(endingSignals); ++i) {
            if (handled[i])
                ::sigaction(endingSignals[i], &previous[i], nullptr);
        }
        // The other workers' pipes are this process's business only; held
        // here, they would cost descriptors and keep pipes open.
        for (Worker &other : workers) {
            closeDescriptor(other.commands);
            closeDescriptor(other.reports);
            closeDescriptor(other.messages);
        }
        ::close(commands[1]);
        ::close(reports[0]);
        ::close(messages[0]);
        ::dup2(messages[1], STDERR_FILENO);
        ::close(messages[1]);
        serve(commands[0], reports[1]);
    }
    if (pid < 0) {
        closeAll();
        return false;
    }
    ::close(commands[0]);
    ::close(reports[1]);
    ::close(messages[1]);
    ::fcntl(reports[0], F_SETFL, O_NONBLOCK);
    ::fcntl(messages[0], F_SETFL, O_NONBLOCK);
    worker = Worker();
    worker.pid = pid;
    worker.commands = commands[1];
    worker.reports = reports[0];
    worker.messages = messages[0];
    return true;
}

// The worker's life: one export after another, until its pipe ends.
void ParallelExports::Run::serve(int commands, int reports)
{
    char kind = 0;
    QByteArray payload;
    while (readRecord(commands, &kind, &payload) && kind == TaskRecord) {
        const int index = int(numberOf(payload));
        qint64 sent = -1;
        const TaskProgress progress = [reports, &sent](qint64 position) {
            if (sent >= 0 && position - sent < progressStep)
                return;
            writeRecord(reports, ProgressRecord, number(position));
            sent = position;
        };
        const Ask ask = [commands, reports](const QByteArray &question) {
            char answerKind = 0;
            QByteArray answer;
            if (!writeRecord(reports, QuestionRecord, question)
                || !readRecord(commands, &answerKind, &answer) || answerKind != AnswerRecord)
                ::_exit(1);
            return answer;
        };
        const int exitStatus = exports.task(index, progress, ask);
        std::fflush(stdout);
        std::fflush(stderr);
        if (!writeRecord(reports, DoneRecord, number(exitStatus)))
            break;
    }
    // The copy of this process ends here: no destructors, no plug-in unloading.
    ::_exit(0);
}

void ParallelExports::Run::handleReports(Worker &worker)
{
    char kind = 0;
    QByteArray payload;
    while (takeRecord(&worker.pending, &kind, &payload)) {
        switch (kind) {
        case ProgressRecord:
            worker.position = numberOf(payload);
            break;
        case QuestionRecord:
            worker.question = payload;
            worker.asking = true;
            break;
        case DoneRecord:
            // What the export said before it was done is in its pipe by now.
            if (worker.messages >= 0 && !readAvailable(worker.messages, &worker.text))
                closeDescriptor(worker.messages);
            if (worker.task >= 0)
                finish(worker.task, worker.text, int(numberOf(payload)));
            worker.text.clear();
            worker.task = -1;
            break;
        default:
            break;
        }
    }
}

void ParallelExports::Run::finish(int index, const QByteArray &text, int exitStatus)
{
    Result &result = results[std::size_t(index)];
    result.text = text;
    result.status = exitStatus;
    result.done = true;
    finishedBytes += sizes.value(index);
    exports.finished(index, exitStatus);
}

// A worker's process has ended: after its last export, or in the middle
// of one, which then failed.
void ParallelExports::Run::ended(Worker &worker)
{
    int wait = 0;
    while (::waitpid(worker.pid, &wait, 0) < 0 && errno == EINTR) { }
    closeDescriptor(worker.commands);
    if (worker.task >= 0) {
        const QString name = names.at(worker.task);
        QString why;
        if (WIFSIGNALED(wait)) {
            why = tr("%1: the export process was killed by signal %2 (%3) before it finished")
                      .arg(name)
                      .arg(WTERMSIG(wait))
                      .arg(QString::fromLocal8Bit(::strsignal(WTERMSIG(wait))));
        } else {
            why = tr("%1: the export process ended with status %2 before it finished")
                      .arg(name)
                      .arg(WIFEXITED(wait) ? WEXITSTATUS(wait) : wait);
        }
        finish(worker.task, worker.text + why.toLocal8Bit() + '\n', 1);
    }
    worker = Worker();
}

// Questions wait for the answers of earlier recordings, which may have
// come since.
void ParallelExports::Run::answerQuestions()
{
    for (Worker &worker : workers) {
        QByteArray answer;
        if (worker.asking && worker.task >= 0
            && exports.answer(worker.task, worker.question, &answer)) {
            worker.asking = false;
            writeRecord(worker.commands, AnswerRecord, answer);
        }
    }
}

// Exports recording @p index in this process, where no worker can be had.
// No export runs elsewhere then, so its questions are answered at once.
void ParallelExports::Run::exportHere(int index)
{
    Worker &slot = workers.front();
    const int exitStatus = exports.task(
        index,
        [this, &slot](qint64 position) {
            slot.position = position;
            showProgress();
        },
        [this, index](const QByteArray &question) {
            QByteArray answer;
            exports.answer(index, question, &answer);
            return answer;
        });
    slot.position = 0;
    finish(index, QByteArray(), exitStatus);
}

void ParallelExports::Run::passOn()
{
    while (passedOn < int(results.size()) && results[std::size_t(passedOn)].done) {
        Result &result = results[std::size_t(passedOn)];
        if (!result.text.isEmpty())
            exports.output(result.text);
        status = std::max(status, result.status);
        result.text.clear();
        ++passedOn;
    }
}

void ParallelExports::Run::showProgress()
{
    if (!exports.progress)
        return;
    qint64 done = finishedBytes;
    for (const Worker &worker : workers)
        done += worker.position;
    exports.progress(done, totalBytes);
}

ParallelExports::ParallelExports(const Task &task, const Answer &answer, const Finished &finished,
                                 const Output &output)
    : task(task)
    , answer(answer)
    , finished(finished)
    , output(output)
{ }

void ParallelExports::setProgress(const Progress &progress)
{
    this->progress = progress;
}

int ParallelExports::run(const QStringList &names, const QVector<qint64> &sizes, int jobs)
{
    Run run(*this, names, sizes, jobs);
    return run.exec();
}
