#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QString>
#include <QVariantMap>

/**
 * Names the output file of a recording: the setting "outputFileFormat"
 * expanded with the recording's name, its position on the command line, the
 * date and time and the recording's properties, then "." and the plug-in's
 * file extension, in the output folder or else beside the recording (the
 * current folder for standard input, "-", which is named "stdin", and for
 * a device, pipe or socket named as the recording, such as /dev/stdin).
 *
 * The folders of a name are the pattern's own: a property's text never adds,
 * removes or climbs a folder level. A "/" or a NUL in a property's text
 * becomes "_", and a name whose folder or file name a property turns into
 * nothing, "." or ".." is refused, as is a name into which a property would
 * put a line break.
 */
class OutputNamer
{
    Q_DECLARE_TR_FUNCTIONS(OutputNamer)

public:
    /**
     * @p pattern and @p extension as the plug-in's settings give them;
     * @p outputDir empty to write beside each recording; @p now the moment
     * the program started, so that all files of one run agree.
     */
    OutputNamer(const QString &pattern, const QString &extension, const QString &outputDir,
                const QDateTime &now);

    /**
     * The output file of @p recording, the @p sequenceNumber-th on the
     * command line (from 1); empty, with @p problem set, when the pattern
     * gives no name that can be used.
     */
    QString fileName(const QString &recording, int sequenceNumber, const QVariantMap &properties,
                     QString *problem) const;

    /**
     * Makes the folders that @p fileName, given by fileName(), needs below
     * the output folder of @p recording; folders elsewhere are not the
     * pattern's to make. Returns false, with @p problem set, when one cannot
     * be made.
     */
    bool makeFolders(const QString &recording, const QString &fileName, QString *problem) const;

private:
    QDir folderOf(const QString &recording) const;

    QString pattern;
    QString extension;
    QString outputDir;
    QDateTime now;
};
