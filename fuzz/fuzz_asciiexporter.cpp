#include "fuzzinput.h"

#include <asciiexporter.h>
#include <settingscatalogue.h>
#include <testsource.h>

#include <settingssynchronizer.h>

#include <QFile>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <vector>

// The header block, the column-header line and the sample rows under
// arbitrary settings (values of any type, odd orientation words, custom
// delimiters and placeholders in any text) and arbitrary sample values.

namespace {

// The keys the exporter reads besides the catalogue's: one without a default.
const char *const extraKeys[] = {"highPrecision"};

const char *const propertyKeys[] = {
    "StartTime",         "FilterProfile", "FilterProfileVersion",
    "FilterProfileType", "OptionFlags",   "FirmwareVersion",
};

template <typename Record>
void fill(FuzzedDataProvider &data, Record &record)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    if (!data.ConsumeBool())
        return;
    const std::vector<quint8> bytes = data.ConsumeBytes<quint8>(sizeof record);
    if (!bytes.empty())
        std::memcpy(&record, bytes.data(), bytes.size());
}

KvVector vector(FuzzedDataProvider &data)
{
    KvVector result;
    switch (data.ConsumeIntegralInRange(0, 4)) {
    case 0:
        break;
    case 1:
        result = {FuzzInput::number(data)};
        break;
    case 2:
        result = {FuzzInput::number(data), FuzzInput::number(data)};
        break;
    case 3:
        result = {FuzzInput::number(data), FuzzInput::number(data), FuzzInput::number(data)};
        break;
    default:
        result = {FuzzInput::number(data), FuzzInput::number(data), FuzzInput::number(data),
                  FuzzInput::number(data)};
        break;
    }
    return result;
}

KvQuaternion quaternion(FuzzedDataProvider &data)
{
    if (!data.ConsumeBool())
        return KvQuaternion();
    return KvQuaternion(FuzzInput::number(data), FuzzInput::number(data), FuzzInput::number(data),
                        FuzzInput::number(data));
}

KvTriggerIndication trigger(FuzzedDataProvider &data)
{
    KvTriggerIndication result;
    result.valid = data.ConsumeBool();
    result.line = data.ConsumeIntegral<quint8>();
    result.polarity = data.ConsumeIntegral<quint8>();
    result.timestamp = data.ConsumeIntegral<quint32>();
    result.frameNumber = data.ConsumeIntegral<quint16>();
    return result;
}

TestSample sample(FuzzedDataProvider &data)
{
    TestSample s;
    if (data.ConsumeBool())
        s.dateTime = QDateTime::fromMSecsSinceEpoch(data.ConsumeIntegral<qint64>(), Qt::UTC);
    fill(data, s.utc);
    s.packetCounter = data.ConsumeIntegral<quint16>();
    s.sampleTimeFine = data.ConsumeIntegral<quint32>();
    s.hasSampleTimeFine = data.ConsumeBool();
    s.temperature = FuzzInput::number(data);
    s.scrTemperature = data.ConsumeIntegral<quint16>();
    for (int count = data.ConsumeIntegralInRange(0, 4); count > 0; --count)
        s.gyroTemperatures.append(data.ConsumeIntegral<quint16>());
    s.calibratedAcceleration = vector(data);
    s.freeAcceleration = vector(data);
    s.scrAcceleration = vector(data);
    s.velocityIncrement = vector(data);
    s.calibratedAngularVelocity = vector(data);
    s.scrGyroscopeData = vector(data);
    s.orientationIncrement = quaternion(data);
    s.magneticField = vector(data);
    s.scrMagneticField = vector(data);
    s.orientationQuaternion = quaternion(data);
    s.orientationEuler = {FuzzInput::number(data), FuzzInput::number(data),
                          FuzzInput::number(data)};
    if (data.ConsumeBool()) {
        double elements[9];
        for (double &element : elements)
            element = FuzzInput::number(data);
        s.orientationMatrix = KvMatrix(elements);
    }
    s.latitudeLongitude = vector(data);
    s.altitude = FuzzInput::number(data);
    s.velocity = vector(data);
    s.statusWord = data.ConsumeIntegral<qint32>();
    s.pressure = FuzzInput::number(data);
    s.rssi = FuzzInput::number(data);
    s.clippingFlags = data.ConsumeIntegral<quint16>();
    fill(data, s.gpsDop);
    fill(data, s.gpsSolution);
    fill(data, s.gpsUtcTime);
    fill(data, s.gpsSatellites);
    fill(data, s.gnssPvt);
    fill(data, s.gnssSatellites);
    s.triggerIn1 = trigger(data);
    s.triggerIn2 = trigger(data);
    return s;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const quint8 *bytes, std::size_t size)
{
    FuzzedDataProvider data(bytes, size);

    SettingsSynchronizer settings(SettingsCatalogue::defaults(), {});
    QStringList keys = settings.keys();
    for (const char *key : extraKeys)
        keys.append(QString::fromLatin1(key));
    for (const QString &key : qAsConst(keys)) {
        if (data.ConsumeBool())
            settings.setSetting(key, FuzzInput::variant(data));
    }

    TestSource source;
    for (const char *key : propertyKeys) {
        if (data.ConsumeBool())
            source.properties.insert(QString::fromLatin1(key), FuzzInput::variant(data));
    }
    source.rate = FuzzInput::number(data);

    // Rows go nowhere: what is checked is that writing them is sound.
    QFile output(QStringLiteral("/dev/null"));
    AsciiExporter exporter(&source, &settings);
    if (!exporter.start(&output))
        std::abort();
    for (int count = data.ConsumeIntegralInRange(0, 32); count > 0 && data.remaining_bytes() > 0;
         --count) {
        source.sample = sample(data);
        exporter.writeSample();
    }
    exporter.finish();
    return 0;
}
