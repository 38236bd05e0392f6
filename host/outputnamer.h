#pragma once

#include <QDateTime>
#include <QString>
#include <QVariantMap>

/**
 * Names the output file of a recording: the setting "outputFileFormat"
 * expanded with the recording's name, its position on the command line, the
 * date and time and the recording's properties, then "." and the plug-in's
 * file extension, in the output folder or else beside the recording. A "/"
 * in a property's value becomes "_".
 */
class OutputNamer
{
public:
    /**
     * @p pattern and @p extension as the plug-in's settings give them;
     * @p outputDir empty to write beside each recording; @p now the moment
     * the program started, so that all files of one run agree.
     */
    OutputNamer(const QString &pattern, const QString &extension, const QString &outputDir,
                const QDateTime &now);

    /** The output file of @p recording, the @p sequenceNumber-th on the command line (from 1). */
    QString fileName(const QString &recording, int sequenceNumber, const QVariantMap &properties) const;

private:
    QString pattern;
    QString extension;
    QString outputDir;
    QDateTime now;
};
