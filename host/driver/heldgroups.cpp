#include "heldgroups.h"

#include "groupselection.h"
#include "recordingsample.h"

#include <settingssynchronizer.h>

#include <iterator>

namespace {

using Sample = RecordingSample;

// Whether a sample holds the data of one group, as the exporter's writers
// decide between values and empty fields.
using Holds = bool (*)(const Sample &);

struct Group
{
    const char *key;
    Holds holds;
    bool makesRows;
};

bool hasGpsRecord(const Sample &s)
{
    return s.gpsSolution.iTOW != 0 || s.gpsDop.iTOW != 0 || s.gpsUtcTime.iTOW != 0
        || s.gpsSatellites.iTOW != 0;
}

bool hasGnssRecord(const Sample &s)
{
    return s.gnssPvt.iTOW != 0 || s.gnssSatellites.iTOW != 0;
}

// In the order of GroupSelection::groups.
constexpr Group groups[] = {
    {"exportPacketCounter", [](const Sample &s) { return s.hasPacketCounter; }, false},
    {"exportSampleTimeFine", [](const Sample &s) { return s.hasSampleTimeFine; }, false},
    {"exportDateTime", [](const Sample &s) { return !s.sampleDateTime.isNull(); }, false},
    {"exportUtc", [](const Sample &s) { return !s.utcTime.isZero(); }, false},
    {"exportStatusFlags", [](const Sample &s) { return s.hasStatusWord; }, false},
    {"exportClipFlags", [](const Sample &s) { return s.hasClippingFlags; }, false},
    {"exportRssi", [](const Sample &s) { return s.hasRssi; }, false},
    {"exportCalibratedAcceleration",
     [](const Sample &s) { return !s.calibratedAcceleration.isEmpty(); }, true},
    {"exportFreeAcceleration", [](const Sample &s) { return !s.freeAcceleration.isEmpty(); }, true},
    {"exportCalibratedAngularVelocity",
     [](const Sample &s) { return !s.calibratedAngularVelocity.isEmpty(); }, true},
    {"exportMagneticField", [](const Sample &s) { return !s.magneticField.isEmpty(); }, true},
    {"exportVelocityIncrement", [](const Sample &s) { return !s.velocityIncrement.isEmpty(); },
     true},
    {"exportOrientationIncrement",
     [](const Sample &s) { return !s.orientationIncrement.isEmpty(); }, true},
    {"exportPosition",
     [](const Sample &s) {
         return !s.latitudeLongitude.isEmpty() || s.altitude != KvConstants::infinity;
     },
     true},
    {"exportVelocity", [](const Sample &s) { return !s.velocity.isEmpty(); }, true},
    {"exportTemperature", [](const Sample &s) { return s.temperature > -999.99; }, true},
    {"exportGyroTemperature", [](const Sample &s) { return !s.gyroTemperatures.isEmpty(); }, true},
    {"exportPressure", [](const Sample &s) { return s.pressure > 0.0; }, true},
    {"exportScrAcceleration", [](const Sample &s) { return !s.scrAcceleration.isEmpty(); }, true},
    {"exportScrGyroscopeData", [](const Sample &s) { return !s.scrGyroscopeData.isEmpty(); }, true},
    {"exportScrMagneticField", [](const Sample &s) { return !s.scrMagneticField.isEmpty(); }, true},
    {"exportScrTemperature", [](const Sample &s) { return s.hasScrTemperature; }, true},
    {"exportScrGyroTemperature", [](const Sample &s) { return !s.gyroTemperatures.isEmpty(); },
     true},
    {"exportRawGps", hasGpsRecord, true},
    {"exportRawGnss", hasGnssRecord, true},
    {"exportTriggerIn1", [](const Sample &s) { return s.triggerIn1.isValid(); }, true},
    {"exportTriggerIn2", [](const Sample &s) { return s.triggerIn2.isValid(); }, true},
};
constexpr int groupCount = int(std::size(groups));

// In the order of GroupSelection::orientations.
constexpr Holds orientations[] = {
    [](const Sample &s) { return s.hasOrientationEuler || !s.orientationQuaternion.isEmpty(); },
    [](const Sample &s) { return !s.orientationQuaternion.isEmpty(); },
    [](const Sample &s) {
        return !s.orientationMatrix.isEmpty() || !s.orientationQuaternion.isEmpty();
    },
};
static_assert(groupCount + int(std::size(orientations)) <= 32, "one bit per group");

constexpr HeldGroups::Mask bit(int index)
{
    return HeldGroups::Mask(1) << index;
}

} // namespace

HeldGroups::Mask HeldGroups::of(const RecordingSample &sample)
{
    Mask mask = 0;
    for (int i = 0; i < groupCount; ++i) {
        if (groups[i].holds(sample))
            mask |= bit(i);
    }
    for (int i = 0; i < int(std::size(orientations)); ++i) {
        if (orientations[i](sample))
            mask |= bit(groupCount + i);
    }
    return mask;
}

HeldGroups::Mask HeldGroups::chosen(const SettingsSynchronizer &store)
{
    Mask mask = 0;
    for (int i = 0; i < groupCount; ++i) {
        if (store.setting(QLatin1String(groups[i].key)).toBool())
            mask |= bit(i);
    }
    const QString orientation = store.setting(QStringLiteral("exportOrientation")).toString();
    for (int i = 0; i < GroupSelection::orientationCount; ++i) {
        if (orientation.compare(QLatin1String(GroupSelection::orientations[i].value),
                                Qt::CaseInsensitive)
            == 0)
            mask |= bit(groupCount + i);
    }
    return mask;
}

HeldGroups::Mask HeldGroups::makingRows()
{
    Mask mask = 0;
    for (int i = 0; i < groupCount; ++i) {
        if (groups[i].makesRows)
            mask |= bit(i);
    }
    for (int i = 0; i < int(std::size(orientations)); ++i)
        mask |= bit(groupCount + i);
    return mask;
}

QStringList HeldGroups::names(Mask mask)
{
    QStringList list;
    for (int i = 0; i < groupCount; ++i) {
        if (mask & bit(i))
            list.append(QLatin1String(GroupSelection::groups[i].label));
    }
    for (int i = 0; i < GroupSelection::orientationCount; ++i) {
        if (mask & bit(groupCount + i))
            list.append(QLatin1String(GroupSelection::orientations[i].label));
    }
    return list;
}
