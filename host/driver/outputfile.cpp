#include "outputfile.h"

#include "systemreason.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <type_traits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Why a regular file of this name cannot be written, as errno, or 0. Asked
// before the first byte, so that the answer is the system's own reason and
// not the generic one a failed rename would give at the end.
int reasonNotWritable(const QString &fileName)
{
    const QFileInfo info(fileName);
    struct stat status;
    if (::stat(QFile::encodeName(fileName).constData(), &status) == 0) {
        if (S_ISDIR(status.st_mode))
            return EISDIR;
        if (::access(QFile::encodeName(fileName).constData(), W_OK) != 0)
            return errno;
    } else if (errno != ENOENT) {
        return errno;
    }
    // The file is written beside its name first: the folder must take a new file.
    const QByteArray folder = QFile::encodeName(info.absolutePath());
    if (::access(folder.constData(), W_OK | X_OK) != 0)
        return errno;
    const long nameMax = ::pathconf(folder.constData(), _PC_NAME_MAX);
    if (nameMax > 0 && QFile::encodeName(info.fileName()).size() > nameMax)
        return ENAMETOOLONG;
    return 0;
}

// @p text as a number written the way the system writes it (no sign, no
// leading zero), or -1.
int plainNumber(const QByteArray &text)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    return ok && number >= 0 && QByteArray::number(number) == text ? number : -1;
}

// Whether @p folder, a canonical path, is this process's folder of open
// descriptors: /proc/PID/fd, or /proc/PID/task/TID/fd of one of its threads,
// which share the descriptors (/proc/thread-self/fd leads there).
bool isOwnDescriptorFolder(const QByteArray &folder)
{
    const QByteArray process = "/proc/" + QByteArray::number(::getpid());
    if (folder == process + "/fd")
        return true;
    const QByteArray tasks = process + "/task/";
    return folder.startsWith(tasks) && folder.endsWith("/fd")
        && plainNumber(folder.mid(tasks.size(), folder.size() - tasks.size() - 3)) > 0;
}

// The open descriptor that @p fileName names in this process's folder of
// descriptors (/dev/stdout, /dev/fd/N, /proc/self/fd/N, or a link that leads
// to one), or -1. The links are followed one at a time: the last one leads to
// the file behind the descriptor, whose offset and append mode would be lost
// if the file were opened by its name.
int descriptorNamed(const QString &fileName)
{
    QByteArray name = QFile::encodeName(fileName);
    // No more links than the system follows in one name.
    for (int links = 0; links <= 40; ++links) {
        const int slash = name.lastIndexOf('/');
        const QByteArray folder = slash < 0 ? QByteArray(".") : name.left(qMax(slash, 1));
        const QByteArray last = name.mid(slash + 1);
        char canonical[PATH_MAX];
        if (!::realpath(folder.constData(), canonical))
            return -1;
        // The root is "/"; every other canonical folder ends without one.
        const QByteArray base = qstrcmp(canonical, "/") == 0 ? QByteArray() : QByteArray(canonical);
        const int descriptor = plainNumber(last);
        if (descriptor >= 0 && isOwnDescriptorFolder(base) && ::fcntl(descriptor, F_GETFD) != -1)
            return descriptor;
        const QByteArray link = base + '/' + last;
        char target[PATH_MAX];
        const ssize_t length = ::readlink(link.constData(), target, sizeof target);
        if (length <= 0 || length == ssize_t(sizeof target))
            return -1;
        name = target[0] == '/' ? QByteArray(target, int(length))
                                : base + '/' + QByteArray(target, int(length));
    }
    return -1;
}

} // namespace

// What the checked devices share: the first failure, as errno.
class OutputFile::Device
{
public:
    virtual ~Device() = default;
    int failure = 0;
};

// A file device that writes without a buffer of its own and finishes partial
// writes: a buffered device drops the error of its last flush, and a text
// stream drops the rest of a partial write.
template <class File>
class OutputFile::Checked : public File, public OutputFile::Device
{
public:
    using File::File;

    // The open file descriptor to write instead of the named file.
    int descriptor = -1;

    bool open(QIODevice::OpenMode mode) override
    {
        mode |= QIODevice::Unbuffered;
        if constexpr (std::is_same_v<File, QFile>) {
            if (descriptor >= 0)
                return remember(QFile::open(descriptor, mode, QFileDevice::DontCloseHandle));
        } else {
            if (const int reason = reasonNotWritable(this->fileName())) {
                failure = reason;
                this->setErrorString(systemReason(reason));
                return false;
            }
        }
        errno = 0;
        return remember(File::open(mode));
    }

protected:
    qint64 writeData(const char *data, qint64 length) override
    {
        qint64 done = 0;
        while (done < length) {
            errno = 0;
            const qint64 written = File::writeData(data + done, length - done);
            if (written <= 0) {
                remember(false);
                return -1;
            }
            done += written;
        }
        return done;
    }

private:
    bool remember(bool ok)
    {
        if (!ok && failure == 0)
            failure = errno != 0 ? errno : EIO;
        return ok;
    }
};

OutputFile::OutputFile(const QString &fileName)
    : fileName(fileName)
{
    // Standard output and the names of open descriptors are written where
    // their descriptor stands, as a shell's ">>" left it, never replaced.
    const int descriptor =
        fileName == standardOutputName() ? STDOUT_FILENO : descriptorNamed(fileName);
    if (descriptor >= 0) {
        auto *output = new Checked<QFile>;
        if (fileName != standardOutputName())
            output->setFileName(fileName);
        output->descriptor = descriptor;
        file.reset(output);
        return;
    }
    // Pipes and devices are written where they are; only a regular file can
    // be replaced as a whole.
    const QFileInfo target(fileName);
    if (target.exists() && !target.isFile() && !target.isDir())
        file.reset(new Checked<QFile>(fileName));
    else
        file.reset(new Checked<QSaveFile>(fileName));
}

OutputFile::~OutputFile() = default;

QFileDevice *OutputFile::device() const
{
    return file.get();
}

bool OutputFile::commit()
{
    const Device *checked = dynamic_cast<const Device *>(file.get());
    if (checked->failure != 0) {
        error = systemReason(checked->failure);
        return false;
    }
    auto *saveFile = qobject_cast<QSaveFile *>(file.get());
    if (!saveFile) {
        file->close();
        if (checked->failure != 0) {
            error = systemReason(checked->failure);
            return false;
        }
        return true;
    }
    if (saveFile->commit())
        return true;
    // The folder can go away while the file is written; say so in the user's terms.
    const QFileInfo folder(QFileInfo(fileName).absolutePath());
    if (!folder.isDir())
        error = tr("the folder %1 no longer exists").arg(folder.filePath());
    else
        error = saveFile->errorString();
    return false;
}

QString OutputFile::errorString() const
{
    if (!error.isEmpty())
        return error;
    const Device *checked = dynamic_cast<const Device *>(file.get());
    return checked->failure != 0 ? systemReason(checked->failure) : file->errorString();
}

bool OutputFile::readerWentAway() const
{
    return dynamic_cast<const Device *>(file.get())->failure == EPIPE;
}

QString OutputFile::standardOutputName()
{
    return QStringLiteral("-");
}
