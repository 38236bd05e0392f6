#pragma once

#include <QCoreApplication>
#include <QString>
#include <QVariantMap>

#include <functional>

class AbstractExporterFactory;
class ProgressBar;

/**
 * Exports one recording into one file through the plug-in, as the desktop
 * application does: a new exporter from the factory, start() with the output
 * file not yet open, writeSample() per sample, finish(), delete.
 *
 * A regular output file is written under a temporary name and put in place
 * only when the export succeeded, so a failed export leaves neither a
 * truncated file nor a damaged older one behind.
 */
class ExportJob
{
    Q_DECLARE_TR_FUNCTIONS(ExportJob)

public:
    /**
     * Gives the output file of a recording from its properties, or an empty
     * name with @p problem set when the recording must not be exported.
     */
    using OutputName = std::function<QString(const QVariantMap &properties, QString *problem)>;

    explicit ExportJob(AbstractExporterFactory *factory);

    /**
     * Exports @p recording into the file that @p outputName gives. Returns
     * false on failure; errorString() then holds the one line that says why.
     * @p progress, when given, follows the reading.
     */
    bool run(const QString &recording, const OutputName &outputName, ProgressBar *progress);

    QString errorString() const;
    /** The output file of the last run, once it was named. */
    QString outputFile() const;
    /** What the reader of the last run passed over, for the user; often empty. */
    QString readingNotice() const;

private:
    bool fail(const QString &message);

    AbstractExporterFactory *factory;
    QString error;
    QString output;
    QString notice;
};
