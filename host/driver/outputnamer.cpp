#include "outputnamer.h"

#include "localfilepath.h"
#include "systemreason.h"

#include <filenamepatternreplacer.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <utility>

#include <sys/stat.h>

namespace {

bool isNoName(const QString &name)
{
    return name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..");
}

// A recording read from a device, a pipe or a socket, or named through the
// system's folders of them (/dev/stdin, a process substitution's /dev/fd/63,
// /proc/self/fd/0), has no folder of its own to write beside. /dev/shm and
// the like are folders for files as any other.
bool isSystemStream(const QString &recording)
{
    const QString folder = QFileInfo(localFilePath(recording)).absolutePath();
    if (folder == QLatin1String("/dev") || folder == QLatin1String("/dev/fd")
        || folder.startsWith(QLatin1String("/proc/")))
        return true;
    struct stat status;
    return ::stat(QFile::encodeName(localFilePath(recording)).constData(), &status) == 0
        && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

} // namespace

OutputNamer::OutputNamer(const QString &pattern, const QString &extension, const QString &outputDir,
                         const QDateTime &now)
    : pattern(pattern)
    , extension(extension)
    , outputDir(localFilePath(outputDir))
    , now(now)
{ }

QString OutputNamer::fileName(const QString &recording, int sequenceNumber,
                              const QVariantMap &properties, QString *problem) const
{
    const bool standardInput = recording == QLatin1String("-");
    const QFileInfo input(localFilePath(recording));
    // A line break in a file name would break every list of files it stands in.
    for (const auto &[placeholder, key] :
         {std::pair{"<deviceid>", "DeviceId"}, std::pair{"<productcode>", "ProductCode"},
          std::pair{"<filterprofile>", "FilterProfile"}}) {
        const QString text = properties.value(QLatin1String(key)).toString();
        if (pattern.contains(QLatin1String(placeholder))
            && (text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r')))) {
            *problem = tr("%1: the property %2 holds a line break, which the output file name "
                          "pattern \"%3\" would put into the file name")
                           .arg(recording, QLatin1String(key), pattern);
            return QString();
        }
    }
    const auto property = [&properties](const char *key) {
        return properties.value(QLatin1String(key))
            .toString()
            .replace(QLatin1Char('/'), QLatin1Char('_'))
            .replace(QChar(QChar::Null), QLatin1Char('_'));
    };
    const FileNamePatternReplacer replacer(QMap<QString, QVariant>{
        {QStringLiteral("<inputfile>"),
         standardInput ? QStringLiteral("stdin") : input.completeBaseName()},
        {QStringLiteral("<seqnr>"),
         QStringLiteral("%1").arg(sequenceNumber, 3, 10, QLatin1Char('0'))},
        {QStringLiteral("<date>"), now.toString(QStringLiteral("yyyy-MM-dd"))},
        {QStringLiteral("<time>"), now.toString(QStringLiteral("HH'h'mm"))},
        {QStringLiteral("<deviceid>"), property("DeviceId")},
        {QStringLiteral("<productcode>"), property("ProductCode")},
        {QStringLiteral("<filterprofile>"), property("FilterProfile")},
    });

    // Each folder of the pattern is expanded on its own: no pattern text holds
    // a "/", so the pattern alone decides the folder levels.
    const QStringList pieces = pattern.split(QLatin1Char('/'));
    QStringList expanded;
    for (int i = 0; i < pieces.size(); ++i) {
        const QString piece = replacer.parse(pieces.at(i));
        const bool last = i == pieces.size() - 1;
        if (last ? isNoName(piece) : isNoName(piece) && piece != pieces.at(i)) {
            *problem = last
                ? tr("%1: the output file name pattern \"%2\" gives the file name \"%3\" for this "
                     "recording, which names no file")
                      .arg(recording, pattern, piece + QLatin1Char('.') + extension)
                : tr("%1: the output file name pattern \"%2\" gives the folder name \"%3\" for "
                     "this "
                     "recording; a recording's properties may not remove or climb a folder level")
                      .arg(recording, pattern, piece);
            return QString();
        }
        expanded.append(piece);
    }
    const QString baseName = expanded.join(QLatin1Char('/'));
    return QDir::cleanPath(folderOf(recording).absoluteFilePath(
        localFilePath(baseName + QLatin1Char('.') + extension)));
}

bool OutputNamer::makeFolders(const QString &recording, const QString &fileName,
                              QString *problem) const
{
    const QDir folder = folderOf(recording);
    const QString below = folder.relativeFilePath(QFileInfo(fileName).absolutePath());
    if (below.isEmpty() || below == QLatin1String(".") || below == QLatin1String("..")
        || below.startsWith(QLatin1String("../")) || QDir::isAbsolutePath(below))
        return true;
    if (folder.mkpath(below))
        return true;
    *problem = tr("%1: the folder %2 cannot be made: %3")
                   .arg(recording, folder.filePath(below), systemReason(errno));
    return false;
}

QDir OutputNamer::folderOf(const QString &recording) const
{
    if (!outputDir.isEmpty())
        return QDir(outputDir);
    if (recording == QLatin1String("-") || isSystemStream(recording))
        return QDir::current();
    return QFileInfo(localFilePath(recording)).absoluteDir();
}
