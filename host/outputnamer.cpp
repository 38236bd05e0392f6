#include "outputnamer.h"

#include "localfilepath.h"

#include <filenamepatternreplacer.h>

#include <QDir>
#include <QFileInfo>

namespace {

bool isNoName(const QString &name)
{
    return name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..");
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
    const QDir folder = !outputDir.isEmpty() ? QDir(outputDir)
        : standardInput                      ? QDir::current()
                                             : input.absoluteDir();
    return QDir::cleanPath(
        folder.absoluteFilePath(localFilePath(baseName + QLatin1Char('.') + extension)));
}
