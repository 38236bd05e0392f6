#include "ulogreader.h"

#include "ulogparser.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace {

// Payloads of the coming samples are read in blocks of this size: a log in
// order then costs one read per block, not one per sample.
constexpr qint64 windowBlock = 64 << 10;

const char *keyName(UlogKey key)
{
    static const char *const names[ulogKeyCount] = {
        "magneticField",    "orientationQuaternion", "pressure", "temperature",
        "freeAcceleration", "latitudeLongitude",     "altitude", "velocity"};
    return names[int(key)];
}

double topicRate(qint64 messages, quint64 first, quint64 last)
{
    if (messages < 2 || last <= first)
        return 0.0;
    return double(messages - 1) * 1e6 / double(last - first);
}

} // namespace

UlogReader::UlogReader() = default;

UlogReader::~UlogReader() = default;

void UlogReader::setFillPolicy(const UlogFillPolicy &fillPolicy)
{
    nextPolicy = fillPolicy;
}

const UlogSummary &UlogReader::summary() const
{
    return counts;
}

void UlogReader::reset(const QString &name)
{
    RecordingFileReader::reset(name);
    policy = nextPolicy;
    device = nullptr;
    tracks.clear();
    parser.reset();
    logSize = 0;
    imu = UlogImuFields();
    imuIds.clear();
    samples = UlogSampleIndex();
    sources = std::make_unique<UlogSources>();
    clock = UlogClock();
    nextSample = 0;
    window.clear();
    windowStart = 0;
    windowSize = 0;
    counts = UlogSummary();
    topicTimes.clear();
    topicOf.clear();
    repeats = 0;
    accelerationNotFinite = 0;
    angularVelocityNotFinite = 0;
    firmwareRelease = 0;
    hasFirmwareRelease = false;
    firmwareText.clear();
}

bool UlogReader::open(QIODevice *source, const QString &name)
{
    reset(name);
    device = source;
    if (source->isSequential())
        return fail(tr("%1: a ULog is read twice, which a pipe cannot be").arg(name));
    if (source->pos() != 0 && !source->seek(0))
        return failToRead(source->errorString());
    logSize = source->size();
    parser = std::make_unique<UlogParser>(source);
    if (!firstPass())
        return false;
    if (samples.empty())
        return failToRead(tr("the log holds no sensor_combined messages"));
    if (!orderSamples())
        return false;
    repeats += sources->finish();
    const double step = samples.medianStep();
    rate = step > 0.0 ? std::round(1e6 / step * 10.0) / 10.0 : 0.0;
    clock = UlogClock(sources->utcOffsets());
    prepareTracks(step);
    summariseKeys();
    findProperties();
    return true;
}

// Reads the log once: the information, subscriptions and logged strings for
// the summary, an index entry per IMU message and the slower topics' values.
bool UlogReader::firstPass()
{
    for (;;) {
        switch (parser->next()) {
        case UlogParser::Message::Info:
            takeInfo();
            break;
        case UlogParser::Message::Subscription:
            takeSubscription();
            break;
        case UlogParser::Message::Data:
            takeData();
            break;
        case UlogParser::Message::Logging: {
            const UlogParser::LoggedString &logged = parser->loggedString();
            const int level =
                logged.level >= '0' && logged.level <= '7' ? logged.level - '0' : logged.level;
            counts.logged.append({level, logged.timestamp,
                                  QString::fromUtf8(logged.text.data(), int(logged.text.size()))});
            break;
        }
        case UlogParser::Message::Dropout:
            ++counts.dropouts;
            counts.dropoutMs += parser->dropoutDuration();
            break;
        case UlogParser::Message::End:
            for (const UlogDamage &damage : parser->damage())
                counts.damage.append(damage.text());
            noteTopicTimes();
            return true;
        case UlogParser::Message::Failed:
            return failToRead(parser->errorString());
        default:
            break;
        }
    }
}

void UlogReader::takeInfo()
{
    const UlogKeyValue &info = parser->keyValue();
    if (info.name == "ver_sw_release" && !info.isText()) {
        const QVariant value = info.value();
        hasFirmwareRelease = value.isValid();
        firmwareRelease = quint32(value.toULongLong());
    } else if (info.name == "ver_sw" && info.isText()) {
        firmwareText = info.text();
    } else if (info.name == "sys_uuid" && info.isText()) {
        recordingProperties.insert(QStringLiteral("DeviceId"), info.text());
    } else if (info.name == "ver_hw" && info.isText()) {
        recordingProperties.insert(QStringLiteral("ProductCode"), info.text());
    }
}

// Instance 0 of a topic is read; every subscription is counted.
void UlogReader::takeSubscription()
{
    const UlogParser::Subscription &subscription = parser->currentSubscription();
    const std::size_t id = subscription.msgId;
    if (topicOf.size() <= id) {
        topicOf.resize(id + 1, -1);
        imuIds.resize(id + 1, false);
    }
    topicOf[id] = counts.topics.size();
    counts.topics.append(
        {QString::fromStdString(subscription.topic), subscription.multiId, 0, 0.0});
    topicTimes.emplace_back(0, 0);
    const bool read = subscription.multiId == 0;
    imuIds[id] = read && subscription.topic == "sensor_combined";
    if (imuIds[id])
        imu.find(parser->formats());
    sources->subscribe(subscription.msgId, read ? subscription.topic : std::string(),
                       parser->formats());
}

void UlogReader::takeData()
{
    const quint16 id = parser->currentSubscription().msgId;
    const std::string_view payload = parser->payload();
    if (id < topicOf.size() && topicOf[id] >= 0) {
        UlogSummary::Topic &topic = counts.topics[topicOf[id]];
        std::pair<quint64, quint64> &times = topicTimes[std::size_t(topicOf[id])];
        const quint64 timestamp = parser->timestamp();
        times.first = topic.messages == 0 ? timestamp : std::min(times.first, timestamp);
        times.second = std::max(times.second, timestamp);
        ++topic.messages;
    }
    if (id < imuIds.size() && imuIds[id] && imu.timestamp.valid()) {
        if (samples.empty())
            samples.expectAtMost(logSize, payload.size());
        samples.add(imu.timestamp.unsignedValue(payload.data()), parser->payloadOffset(), payload);
        accelerationNotFinite += imu.hasAcceleration() && !imu.accelerationFinite(payload.data());
        angularVelocityNotFinite +=
            imu.hasAngularVelocity() && !imu.angularVelocityFinite(payload.data());
    }
    sources->take(id, payload);
}

void UlogReader::noteTopicTimes()
{
    for (int i = 0; i < counts.topics.size(); ++i) {
        UlogSummary::Topic &topic = counts.topics[i];
        topic.rate = topicRate(topic.messages, topicTimes[std::size_t(i)].first,
                               topicTimes[std::size_t(i)].second);
    }
}

// Sorts the samples and drops exact repeats, whose values then count no more.
bool UlogReader::orderSamples()
{
    const auto readBack = [this](qint64 offset, char *into, qint64 size) {
        return parser->readAt(offset, into, size);
    };
    const auto dropped = [this](std::string_view payload) {
        ++repeats;
        accelerationNotFinite -= imu.hasAcceleration() && !imu.accelerationFinite(payload.data());
        angularVelocityNotFinite -=
            imu.hasAngularVelocity() && !imu.angularVelocityFinite(payload.data());
    };
    if (!samples.order(readBack, dropped))
        return fail(tr("%1: the log changed while it was read").arg(fileName));
    return true;
}

void UlogReader::prepareTracks(double step)
{
    for (int key = 0; key < ulogKeyCount; ++key) {
        const UlogSources::Source *source = sources->chosen(UlogKey(key));
        if (!source || source->series.empty())
            continue;
        Track track{UlogKey(key), &source->series, std::make_unique<UlogFill>(policy, step)};
        track.fill->prepare(samples.times(), source->series.times());
        tracks.push_back(std::move(track));
    }
}

// What each key of the recording gets, and from where.
void UlogReader::summariseKeys()
{
    const qint64 sampleCount = qint64(samples.size());
    const auto imuKey = [&](const char *key, const QString &source, qint64 notFinite) {
        counts.keys.append({QLatin1String(key), source, sampleCount - notFinite,
                            sampleCount - notFinite, 0, 0, notFinite});
    };
    imuKey("packetCounter", tr("sensor_combined, the sample's index"), 0);
    imuKey("sampleTimeFine", QStringLiteral("sensor_combined.timestamp"), 0);
    if (imu.hasAcceleration())
        imuKey("calibratedAcceleration", QStringLiteral("sensor_combined.accelerometer_m_s2"),
               accelerationNotFinite);
    if (imu.hasAngularVelocity())
        imuKey("calibratedAngularVelocity", QStringLiteral("sensor_combined.gyro_rad"),
               angularVelocityNotFinite);
    if (imu.hasClipping()) {
        QStringList fields;
        if (imu.accelerometerClipping.valid())
            fields.append(QStringLiteral("sensor_combined.accelerometer_clipping"));
        if (imu.gyroClipping.valid())
            fields.append(QStringLiteral("sensor_combined.gyro_clipping"));
        imuKey("clippingFlags", fields.join(QStringLiteral(", ")), 0);
    }
    for (int key = 0; key < ulogKeyCount; ++key) {
        const UlogSources::Source *source = sources->chosen(UlogKey(key));
        if (!source)
            continue;
        UlogSummary::Key entry{QLatin1String(keyName(UlogKey(key))),
                               source->text,
                               qint64(source->series.size()),
                               0,
                               0,
                               0,
                               source->notFinite};
        for (const Track &track : tracks) {
            if (track.key == UlogKey(key)) {
                entry.used = track.fill->counts().used;
                entry.dropped = track.fill->counts().dropped;
                entry.collided = track.fill->counts().collided;
            }
        }
        counts.keys.append(entry);
    }
    if (sources->utcSeen() > 0) {
        const qint64 used = clock.knowsUtc() ? sampleCount : 0;
        const qint64 offsets = qint64(sources->utcOffsets().size());
        for (const char *key : {"utcTime", "sampleDateTime"})
            counts.keys.append({QLatin1String(key),
                                QStringLiteral("vehicle_gps_position.time_utc_usec"), offsets, used,
                                0, 0, 0});
    }
}

void UlogReader::findProperties()
{
    QVariantMap &properties = recordingProperties;
    properties.insert(QStringLiteral("StartTime"), clock.dateTimeText(samples.times().front()));
    if (hasFirmwareRelease) {
        QString version = QStringLiteral("%1.%2.%3")
                              .arg(firmwareRelease >> 24)
                              .arg(firmwareRelease >> 16 & 0xFF)
                              .arg(firmwareRelease >> 8 & 0xFF);
        if (!firmwareText.isEmpty())
            version += QStringLiteral(" (%1)").arg(firmwareText);
        properties.insert(QStringLiteral("FirmwareVersion"), version);
    } else if (!firmwareText.isEmpty()) {
        properties.insert(QStringLiteral("FirmwareVersion"), firmwareText);
    }
    properties.insert(QStringLiteral("SourceFormat"), QStringLiteral("PX4 ULog"));
    properties.insert(QStringLiteral("SourceLog"), QFileInfo(fileName).fileName());
    properties.insert(QStringLiteral("FillPolicy"), policy.text());
    properties.insert(QStringLiteral("Units"),
                      QStringLiteral("acceleration m/s^2, free acceleration m/s^2, rate of turn "
                                     "rad/s, magnetic field G, pressure hPa, temperature degC, "
                                     "latitude and longitude deg, altitude m, velocity m/s"));
    properties.insert(QStringLiteral("Frames"),
                      QStringLiteral("acceleration, rate of turn, magnetic field: body FRD; "
                                     "orientation: body FRD to NED; free acceleration, "
                                     "velocity: NED"));
}

bool UlogReader::readNext()
{
    if (!error.isEmpty() || nextSample >= samples.size())
        return false;
    const char *payload = payloadOf(nextSample);
    if (!payload)
        return false;
    const quint64 timestamp = samples.times()[nextSample];
    current = RecordingSample();
    current.packetCounter = quint16(nextSample);
    current.hasPacketCounter = true;
    current.sampleTimeFine = quint32(timestamp / 100);
    current.hasSampleTimeFine = true;
    imu.fill(payload, current);
    clock.fill(timestamp, current);
    for (Track &track : tracks) {
        const qint64 message = track.fill->messageFor(nextSample);
        if (message >= 0)
            apply(track.key, track.series->values(std::size_t(message)));
    }
    ++nextSample;
    return true;
}

// The payload of @p sample, read back through the window; null after
// failing when the log no longer holds it.
const char *UlogReader::payloadOf(std::size_t sample)
{
    const qint64 offset = samples.offset(sample);
    const qint64 length = samples.payloadSize(sample);
    if (offset < windowStart || offset + length > windowStart + windowSize) {
        const qint64 wanted = std::max(length, std::min(windowBlock, logSize - offset));
        window.resize(std::size_t(wanted));
        windowStart = offset;
        windowSize = 0;
        if (!parser->readAt(offset, window.data(), wanted)) {
            fail(tr("%1: the log changed while it was read").arg(fileName));
            return nullptr;
        }
        windowSize = wanted;
    }
    return window.data() + (offset - windowStart);
}

void UlogReader::apply(UlogKey key, const double *values)
{
    switch (key) {
    case UlogKey::MagneticField:
        current.magneticField = {values[0], values[1], values[2]};
        break;
    case UlogKey::Orientation:
        current.orientationQuaternion = KvQuaternion(values[0], values[1], values[2], values[3]);
        break;
    case UlogKey::Pressure:
        current.pressure = values[0];
        break;
    case UlogKey::Temperature:
        current.temperature = values[0];
        break;
    case UlogKey::FreeAcceleration:
        current.freeAcceleration = {values[0], values[1], values[2]};
        break;
    case UlogKey::LatitudeLongitude:
        current.latitudeLongitude = {values[0], values[1]};
        break;
    case UlogKey::Altitude:
        current.altitude = values[0];
        break;
    case UlogKey::Velocity:
        current.velocity = {values[0], values[1], values[2]};
        break;
    }
}

qint64 UlogReader::position() const
{
    if (samples.empty())
        return logSize;
    return qint64(double(logSize) * double(nextSample) / double(samples.size()));
}

qint64 UlogReader::size() const
{
    return logSize;
}

QString UlogReader::readingNotice() const
{
    QStringList parts;
    if (!counts.damage.isEmpty()) {
        QString damage = counts.damage.join(QStringLiteral("; "));
        if (parser && parser->damageCount() > counts.damage.size())
            damage += tr("; and %1 more").arg(parser->damageCount() - counts.damage.size());
        parts.append(tr("passed over: %1").arg(damage));
    }
    if (parser && parser->unknownMessages() > 0)
        parts.append(tr("messages of unknown types: %1").arg(parser->unknownMessages()));
    if (repeats > 0)
        parts.append(tr("repeated messages dropped: %1").arg(repeats));
    QStringList notFinite;
    for (const UlogSummary::Key &key : counts.keys) {
        if (key.notFinite > 0)
            notFinite.append(QStringLiteral("%1 %2").arg(key.key).arg(key.notFinite));
    }
    if (!notFinite.isEmpty())
        parts.append(tr("messages left out for values not finite: %1")
                         .arg(notFinite.join(QStringLiteral(", "))));
    const QString placing = fillNotice();
    if (!placing.isEmpty())
        parts.append(placing);
    if (parts.isEmpty())
        return QString();
    return QStringLiteral("%1: %2").arg(fileName, parts.join(QStringLiteral("; ")));
}

// "messages not placed (fill none): magneticField 3 dropped and 1 collided, pressure 2 dropped"
QString UlogReader::fillNotice() const
{
    QStringList keys;
    for (const UlogSummary::Key &key : counts.keys) {
        if (key.dropped == 0 && key.collided == 0)
            continue;
        if (key.collided == 0)
            keys.append(tr("%1 %2 dropped").arg(key.key).arg(key.dropped));
        else if (key.dropped == 0)
            keys.append(tr("%1 %2 collided").arg(key.key).arg(key.collided));
        else
            keys.append(tr("%1 %2 dropped and %3 collided")
                            .arg(key.key)
                            .arg(key.dropped)
                            .arg(key.collided));
    }
    if (keys.isEmpty())
        return QString();
    return tr("messages not placed (fill %1): %2")
        .arg(policy.name(), keys.join(QStringLiteral(", ")));
}

bool UlogReader::fail(const QString &what)
{
    error = what;
    return false;
}
