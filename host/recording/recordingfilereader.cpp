#include "recordingfilereader.h"

#include <QFileInfo>

bool RecordingFileReader::open(const QString &name)
{
    file.close();
    reset(name);
    if (QFileInfo(name).isDir()) {
        error = tr("%1: is a directory, not a recording").arg(name);
        return false;
    }
    file.setFileName(name);
    // The readers read in large blocks of their own.
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return failToRead(file.errorString());
    return open(&file, name);
}

bool RecordingFileReader::hasError() const
{
    return !error.isEmpty();
}

QString RecordingFileReader::errorString() const
{
    return error;
}

QVariant RecordingFileReader::property(const QString &key) const
{
    return recordingProperties.value(key);
}

QVariantMap RecordingFileReader::properties() const
{
    return recordingProperties;
}

double RecordingFileReader::updateRate() const
{
    return rate;
}

const RecordingSample &RecordingFileReader::sample() const
{
    return current;
}

void RecordingFileReader::reset(const QString &name)
{
    fileName = name;
    error.clear();
    recordingProperties.clear();
    rate = 0.0;
    current = RecordingSample();
}

bool RecordingFileReader::failToRead(const QString &reason)
{
    error = tr("%1: cannot be read: %2").arg(fileName, reason);
    return false;
}
