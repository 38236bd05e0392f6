#include "parallelexports.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Child
{
    pid_t pid = -1;
    int messages = -1; // the child's standard error
    int progress = -1; // positions, one a line
    QByteArray text;
    QByteArray partialLine;
    qint64 position = 0;
    int status = 0;
    bool finished = false;
};

void writeAll(int descriptor, const char *data, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(descriptor, data, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        data += written;
        size -= std::size_t(written);
    }
}

// Starts the child of recording @p index; false when the system cannot.
bool start(Child &child, int index, const ParallelExports::Task &task)
{
    int messages[2];
    int progress[2];
    if (::pipe2(messages, O_CLOEXEC) != 0)
        return false;
    if (::pipe2(progress, O_CLOEXEC) != 0) {
        ::close(messages[0]);
        ::close(messages[1]);
        return false;
    }
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::close(messages[0]);
        ::close(progress[0]);
        ::dup2(messages[1], STDERR_FILENO);
        const int progressOut = progress[1];
        // A line per MiB is plenty for a bar redrawn ten times a second.
        qint64 sent = -1;
        const int status = task(index, [progressOut, &sent](qint64 position) {
            if (sent >= 0 && position - sent < (1 << 20))
                return;
            char line[32];
            const int length =
                std::snprintf(line, sizeof line, "%lld\n", static_cast<long long>(position));
            writeAll(progressOut, line, std::size_t(length));
            sent = position;
        });
        std::fflush(stdout);
        std::fflush(stderr);
        // The copy of this process ends here: no destructors, no plug-in unloading.
        ::_exit(status);
    }
    ::close(messages[1]);
    ::close(progress[1]);
    if (pid < 0) {
        ::close(messages[0]);
        ::close(progress[0]);
        return false;
    }
    child.pid = pid;
    child.messages = messages[0];
    child.progress = progress[0];
    return true;
}

// Reads what is there; false at the end of the pipe.
bool readInto(int descriptor, QByteArray *bytes)
{
    char buffer[65536];
    const ssize_t count = ::read(descriptor, buffer, sizeof buffer);
    if (count < 0)
        return errno == EINTR || errno == EAGAIN;
    if (count == 0)
        return false;
    bytes->append(buffer, int(count));
    return true;
}

} // namespace

int ParallelExports::run(const QVector<qint64> &sizes, int jobs, const Task &task,
                         const Progress &progress, const Output &output)
{
    const int count = sizes.size();
    std::vector<Child> children(static_cast<std::size_t>(count));
    qint64 total = 0;
    for (const qint64 size : sizes)
        total += size;
    qint64 finishedBytes = 0;
    int started = 0;
    int running = 0;
    int passedOn = 0;
    int status = 0;

    while (passedOn < count) {
        while (running < jobs && started < count) {
            Child &child = children[std::size_t(started)];
            if (start(child, started, task)) {
                ++running;
            } else {
                child.text = QByteArray("asciiexport: cannot start an export process: ")
                    + std::strerror(errno) + '\n';
                child.status = 1;
                child.finished = true;
            }
            ++started;
        }

        std::vector<pollfd> watched;
        std::vector<Child *> owners;
        for (Child &child : children) {
            for (const int descriptor : {child.messages, child.progress}) {
                if (descriptor >= 0) {
                    watched.push_back({descriptor, POLLIN, 0});
                    owners.push_back(&child);
                }
            }
        }
        if (!watched.empty() && ::poll(watched.data(), nfds_t(watched.size()), -1) < 0
            && errno != EINTR)
            break;
        for (std::size_t i = 0; i < watched.size(); ++i) {
            if (watched[i].revents == 0)
                continue;
            Child &child = *owners[i];
            int &descriptor = watched[i].fd == child.messages ? child.messages : child.progress;
            QByteArray &bytes = descriptor == child.messages ? child.text : child.partialLine;
            const bool open = readInto(descriptor, &bytes);
            if (descriptor == child.progress) {
                const int end = bytes.lastIndexOf('\n');
                if (end >= 0) {
                    const int start = bytes.lastIndexOf('\n', end - 1) + 1;
                    child.position = bytes.mid(start, end - start).toLongLong();
                    bytes.remove(0, end + 1);
                }
            }
            if (!open) {
                ::close(descriptor);
                descriptor = -1;
            }
            if (child.messages < 0 && child.progress < 0 && !child.finished) {
                int wait = 0;
                while (::waitpid(child.pid, &wait, 0) < 0 && errno == EINTR) { }
                child.status = WIFEXITED(wait) ? WEXITSTATUS(wait) : 1;
                child.finished = true;
                finishedBytes += sizes.at(int(&child - children.data()));
                --running;
            }
        }

        qint64 done = finishedBytes;
        for (const Child &child : children) {
            if (child.pid > 0 && !child.finished)
                done += child.position;
        }
        if (progress)
            progress(done, total);

        while (passedOn < count && children[std::size_t(passedOn)].finished) {
            Child &child = children[std::size_t(passedOn)];
            if (!child.text.isEmpty())
                output(child.text);
            status = std::max(status, child.status);
            child.text.clear();
            ++passedOn;
        }
    }
    return status;
}
