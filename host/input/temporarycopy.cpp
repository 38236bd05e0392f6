#include "temporarycopy.h"

#include "systemreason.h"

#include <QDir>
#include <QLocale>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <vector>

#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

constexpr qint64 blockSize = 1 << 20;
constexpr qint64 largestReserve = qint64(1) << 30;

} // namespace

bool TemporaryCopy::copy(QIODevice *source, const QString &sourceName)
{
    name = sourceName;
    error.clear();
    if (!open())
        return false;
    struct statvfs room;
    if (::fstatvfs(file.handle(), &room) != 0)
        return fail(tr("%1: cannot make a temporary copy: %2").arg(name, systemReason(errno)));
    const qint64 reserve =
        std::min(largestReserve, qint64(room.f_blocks) * qint64(room.f_frsize) / 20);

    std::vector<char> block(blockSize);
    qint64 copied = 0;
    for (;;) {
        const qint64 got = source->read(block.data(), blockSize);
        if (got < 0)
            return fail(tr("%1: cannot be read: %2").arg(name, source->errorString()));
        if (got == 0) {
            // A socket may have nothing yet; a file or pipe that gives nothing has ended.
            if (source->isSequential() && source->waitForReadyRead(-1))
                continue;
            break;
        }
        if (::fstatvfs(file.handle(), &room) == 0
            && qint64(room.f_bavail) * qint64(room.f_frsize) - got < reserve) {
            const QLocale locale;
            return fail(tr("%1: cannot make a temporary copy: after %2, the temporary folder %3 "
                           "would have less than %4 free (TMPDIR names another folder)")
                            .arg(name, locale.formattedDataSize(copied),
                                 QDir::toNativeSeparators(QDir::tempPath()),
                                 locale.formattedDataSize(reserve)));
        }
        if (file.write(block.data(), got) != got)
            return fail(tr("%1: cannot make a temporary copy: %2").arg(name, file.errorString()));
        copied += got;
    }
    if (!file.flush() || !file.seek(0))
        return fail(tr("%1: cannot make a temporary copy: %2").arg(name, file.errorString()));
    return true;
}

QIODevice *TemporaryCopy::device()
{
    return &file;
}

QString TemporaryCopy::errorString() const
{
    return error;
}

// Opens a file without a name in the temporary folder; where the file
// system cannot make one, a named file that is removed at once.
bool TemporaryCopy::open()
{
    const QByteArray folder = QFile::encodeName(QDir::tempPath());
    int descriptor = ::open(folder.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL)) {
        QByteArray pattern = folder + "/asciiexport-XXXXXX";
        descriptor = ::mkostemp(pattern.data(), O_CLOEXEC);
        if (descriptor >= 0)
            ::unlink(pattern.constData());
    }
    if (descriptor < 0) {
        return fail(
            tr("%1: cannot make a temporary copy in %2: %3")
                .arg(name, QDir::toNativeSeparators(QDir::tempPath()), systemReason(errno)));
    }
    if (!file.open(descriptor, QIODevice::ReadWrite | QIODevice::Unbuffered,
                   QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return fail(tr("%1: cannot make a temporary copy: %2").arg(name, file.errorString()));
    }
    return true;
}

bool TemporaryCopy::fail(const QString &what)
{
    error = what;
    return false;
}
