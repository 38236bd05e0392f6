#pragma once

#include "recordinggenerator.h"
#include "samplestate.h"

#include <QDateTime>
#include <QString>

#include <memory>

// A sensor carried on a slow walk: gentle roll and pitch sway, a steady turn,
// and a receiver that reports at a rate of its own, the one it is given.
class Walk
{
public:
    // The receiver reports @p receiverRate times a second.
    Walk(const GeneratorOptions &options, double receiverRate);
    ~Walk();

    /** When every walk starts, in UTC. */
    static QDateTime startTime();
    /** The sensor's serial number, eight hex digits drawn from the seed. */
    QString deviceId() const;
    /** Moves on to sample @p index and gives its state. */
    const SampleState &step(qint64 index);

private:
    class Private;
    std::unique_ptr<Private> d;
};
