#pragma once

#include "recordingfilereader.h"
#include "ulogclock.h"
#include "ulogfill.h"
#include "ulogfillpolicy.h"
#include "ulogimufields.h"
#include "ulogsampleindex.h"
#include "ulogsources.h"
#include "ulogsummary.h"

#include <QCoreApplication>
#include <QString>

#include <memory>
#include <vector>

class UlogParser;

/**
 * Reads a PX4 ULog as one merged table at the IMU's clock: one sample per
 * sensor_combined message of instance 0, in the order of its timestamps,
 * an exact repeat of a message dropped. Slower topics (magnetometer,
 * attitude, air data, local position, GPS) give their keys to the samples
 * as the fill policy says (see UlogFill); GPS messages with a fix give UTC.
 *
 * A first pass keeps per sample its timestamp and where its payload lies,
 * and of the slower topics their times and values; readNext() reads each
 * sample's payload back. The log must be one that can be read twice: a
 * file, or a copy of a pipe.
 *
 * Properties: StartTime (UTC of the first sample, "0" without GPS time),
 * FirmwareVersion, DeviceId and ProductCode where the log tells them, and
 * SourceFormat, SourceLog, FillPolicy, Units and Frames; the update rate
 * follows from the median step between samples.
 */
class UlogReader : public RecordingFileReader
{
    Q_DECLARE_TR_FUNCTIONS(UlogReader)

public:
    UlogReader();
    ~UlogReader() override;

    using RecordingFileReader::open;
    /** Takes effect at the next open(). */
    void setFillPolicy(const UlogFillPolicy &policy);
    /** Reads the log in @p device, which must be able to seek (a file or a copy of a pipe). */
    bool open(QIODevice *device, const QString &name) override;

    bool readNext() override;
    qint64 position() const override;
    qint64 size() const override;
    /**
     * Damage passed over, repeats dropped, values left out as not finite, and
     * per key the messages dropped and collided; empty when nothing.
     */
    QString readingNotice() const override;

    const UlogSummary &summary() const;

protected:
    void reset(const QString &name) override;

private:
    struct Track
    {
        UlogKey key;
        const UlogSeries *series;
        std::unique_ptr<UlogFill> fill;
    };

    bool firstPass();
    void takeInfo();
    void takeSubscription();
    void takeData();
    void noteTopicTimes();
    bool orderSamples();
    void prepareTracks(double step);
    void summariseKeys();
    void findProperties();
    const char *payloadOf(std::size_t sample);
    void apply(UlogKey key, const double *values);
    QString fillNotice() const;
    bool fail(const QString &what);

    UlogFillPolicy nextPolicy;
    UlogFillPolicy policy;
    QIODevice *device = nullptr;
    std::unique_ptr<UlogParser> parser;
    qint64 logSize = 0;
    UlogImuFields imu;
    std::vector<bool> imuIds;
    UlogSampleIndex samples;
    std::unique_ptr<UlogSources> sources;
    UlogClock clock;
    std::vector<Track> tracks;
    std::size_t nextSample = 0;
    // A window on the log the coming samples' payloads are read from.
    std::vector<char> window;
    qint64 windowStart = 0;
    qint64 windowSize = 0;

    UlogSummary counts;
    // Per subscription in counts.topics: its first and last timestamp.
    std::vector<std::pair<quint64, quint64>> topicTimes;
    std::vector<int> topicOf;
    qint64 repeats = 0;
    qint64 accelerationNotFinite = 0;
    qint64 angularVelocityNotFinite = 0;
    quint32 firmwareRelease = 0;
    bool hasFirmwareRelease = false;
    QString firmwareText;
};
