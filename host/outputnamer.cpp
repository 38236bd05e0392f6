#include "outputnamer.h"

#include <filenamepatternreplacer.h>

#include <QDir>
#include <QFileInfo>

OutputNamer::OutputNamer(const QString &pattern, const QString &extension, const QString &outputDir,
                         const QDateTime &now)
    : pattern(pattern)
    , extension(extension)
    , outputDir(outputDir)
    , now(now)
{
}

QString OutputNamer::fileName(const QString &recording, int sequenceNumber,
                              const QVariantMap &properties) const
{
    const QFileInfo input(recording);
    const QMap<QString, QVariant> values{
        {QStringLiteral("<inputfile>"), input.completeBaseName()},
        {QStringLiteral("<seqnr>"), QStringLiteral("%1").arg(sequenceNumber, 3, 10, QLatin1Char('0'))},
        {QStringLiteral("<date>"), now.toString(QStringLiteral("yyyy-MM-dd"))},
        {QStringLiteral("<time>"), now.toString(QStringLiteral("HH'h'mm"))},
        {QStringLiteral("<deviceid>"), properties.value(QStringLiteral("DeviceId")).toString()},
        {QStringLiteral("<productcode>"), properties.value(QStringLiteral("ProductCode")).toString()},
        {QStringLiteral("<filterprofile>"), properties.value(QStringLiteral("FilterProfile")).toString()},
    };
    const QString baseName = FileNamePatternReplacer(values).parse(pattern);
    const QDir folder = outputDir.isEmpty() ? input.absoluteDir() : QDir(outputDir);
    return QDir::cleanPath(folder.absoluteFilePath(baseName + QLatin1Char('.') + extension));
}
