#include "outputnamer.h"

#include "localfilepath.h"

#include <filenamepatternreplacer.h>

#include <QDir>
#include <QFileInfo>

OutputNamer::OutputNamer(const QString &pattern, const QString &extension, const QString &outputDir,
                         const QDateTime &now)
    : pattern(pattern)
    , extension(extension)
    , outputDir(localFilePath(outputDir))
    , now(now)
{
}

QString OutputNamer::fileName(const QString &recording, int sequenceNumber,
                              const QVariantMap &properties) const
{
    const QFileInfo input(localFilePath(recording));
    // A recording names no folder of its own: its properties cannot move the
    // file out of the output folder.
    const auto property = [&properties](const char *key) {
        return properties.value(QLatin1String(key)).toString().replace(QLatin1Char('/'), QLatin1Char('_'));
    };
    const QMap<QString, QVariant> values{
        {QStringLiteral("<inputfile>"), input.completeBaseName()},
        {QStringLiteral("<seqnr>"), QStringLiteral("%1").arg(sequenceNumber, 3, 10, QLatin1Char('0'))},
        {QStringLiteral("<date>"), now.toString(QStringLiteral("yyyy-MM-dd"))},
        {QStringLiteral("<time>"), now.toString(QStringLiteral("HH'h'mm"))},
        {QStringLiteral("<deviceid>"), property("DeviceId")},
        {QStringLiteral("<productcode>"), property("ProductCode")},
        {QStringLiteral("<filterprofile>"), property("FilterProfile")},
    };
    const QString baseName = FileNamePatternReplacer(values).parse(pattern);
    const QDir folder = outputDir.isEmpty() ? input.absoluteDir() : QDir(outputDir);
    return QDir::cleanPath(folder.absoluteFilePath(localFilePath(baseName + QLatin1Char('.') + extension)));
}
