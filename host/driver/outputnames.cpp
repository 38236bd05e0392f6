#include "outputnames.h"

#include <QFileInfo>

OutputNames::OutputNames(const QStringList &recordings)
    : recordings(recordings)
    , claims(recordings.size())
{
    for (const QString &recording : recordings) {
        const QFileInfo info(recording);
        if (info.exists())
            recordingFiles.insert(info.canonicalFilePath());
    }
}

OutputNames::Answer OutputNames::claim(int index, const QString &fileName, QString *problem)
{
    Claim &claim = claims[index];
    claim.fileName = fileName;
    claim.asked = true;
    for (int earlier = 0; earlier < index; ++earlier) {
        const Claim &other = claims.at(earlier);
        const bool settled =
            other.finished || other.refused || (other.asked && other.fileName != fileName);
        if (!settled)
            return Answer::Wait;
    }
    if (written.contains(fileName)) {
        *problem = tr("%1: the output file %2 was written for %3 already")
                       .arg(recordings.at(index), fileName, recordings.at(written.value(fileName)));
        claim.refused = true;
        return Answer::Refused;
    }
    // A later recording of the batch must still be there when its turn comes.
    const QFileInfo target(fileName);
    if (target.exists() && recordingFiles.contains(target.canonicalFilePath())
        && target.canonicalFilePath() != QFileInfo(recordings.at(index)).canonicalFilePath()) {
        *problem = tr("%1: the output file %2 would replace a recording of this run")
                       .arg(recordings.at(index), fileName);
        claim.refused = true;
        return Answer::Refused;
    }
    return Answer::Given;
}

void OutputNames::finished(int index, bool writtenOut)
{
    Claim &claim = claims[index];
    claim.finished = true;
    if (writtenOut && claim.asked && !claim.refused && !written.contains(claim.fileName))
        written.insert(claim.fileName, index);
}
