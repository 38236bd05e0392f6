#pragma once

#include "recordingsample.h"

#include <QString>
#include <QStringList>

#include <functional>

class QIODevice;

/** What generateRecording() writes. */
struct GeneratorOptions
{
    /** Number of sample lines after the recording object. */
    qint64 samples = 1000;
    /** Samples per second: the recording's update rate and the spacing of the sample times. */
    double rate = 100.0;
    /** Seed of the noise; the same options give the same bytes. */
    quint64 seed = 1;
    /** The sample keys to write (see recordingKeys()); empty for every key. */
    QStringList keys;
};

/**
 * Whether @p options lie in range: no negative number of samples, a rate
 * above 0 and at most 10000 Hz. If not, sets @p error to say which.
 */
bool checkGeneratorOptions(const GeneratorOptions &options, QString *error);

/** The sample keys of the recording format that the generator writes, in the order of a line. */
QStringList recordingKeys();

/**
 * Writes a synthetic recording in the JSON Lines format to @p out, which must
 * be open for writing: a sensor carried on a slow walk, turning gently, with
 * noisy inertial data, receiver records and now and then a trigger. The
 * values of a key do not depend on which other keys are written.
 *
 * Returns false and sets @p error when an option is out of range, a key is
 * unknown or writing fails.
 */
bool generateRecording(const GeneratorOptions &options, QIODevice *out, QString *error);

/**
 * The receiver records of the same walk, one epoch at a time: options.samples
 * epochs at options.rate epochs a second (keys are not looked at). @p write
 * gets each epoch's records and its index as packet counter, and stops the
 * walk by returning false.
 *
 * Returns false and sets @p error when an option is out of range; false
 * without an error when @p write stopped it.
 */
bool generateReceiverEpochs(const GeneratorOptions &options,
                            const std::function<bool(const RecordingSample &)> &write,
                            QString *error);
