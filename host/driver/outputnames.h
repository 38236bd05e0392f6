#pragma once

#include <QCoreApplication>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

/**
 * Gives out the output files of a batch of recordings as one export after
 * another would: a file that an earlier recording of the command line wrote
 * is refused to a later one, and so is a file that would replace another
 * recording of the batch. Only a file that was written counts: a recording
 * that fails leaves its name free.
 *
 * When exports run side by side, a recording that wants the file of an
 * earlier one still running waits until that one has finished, and one
 * that asks before all earlier recordings have asked waits too: the answer
 * is then the one an export after another would have had.
 */
class OutputNames
{
    Q_DECLARE_TR_FUNCTIONS(OutputNames)

public:
    /** @p recordings as the command line names them; "-" is standard input. */
    explicit OutputNames(const QStringList &recordings);

    enum class Answer { Given, Refused, Wait };

    /**
     * Whether recording @p index may write @p fileName. Refused sets
     * @p problem; Wait means to ask again once another recording has
     * finished.
     */
    Answer claim(int index, const QString &fileName, QString *problem);

    /** Recording @p index has finished; @p written when its file was written. */
    void finished(int index, bool written);

private:
    struct Claim
    {
        QString fileName;
        bool asked = false;
        bool refused = false;
        bool finished = false;
    };

    QStringList recordings;
    // The recordings that exist, by their canonical paths.
    QSet<QString> recordingFiles;
    QVector<Claim> claims;
    // Each file written, and the recording it was written for.
    QHash<QString, int> written;
};
