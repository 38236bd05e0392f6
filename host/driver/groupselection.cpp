#include "groupselection.h"

#include <settingssynchronizer.h>

#include <iterator>

namespace {

const QString orientationKey = QStringLiteral("exportOrientation");

QString folded(const QString &name)
{
    return name.toCaseFolded().remove(QLatin1Char(' '));
}

} // namespace

const GroupSelection::Group GroupSelection::groups[] = {
    {"Packet Counter", "exportPacketCounter"},
    {"Sample Time Fine", "exportSampleTimeFine"},
    {"Date and time", "exportDateTime"},
    {"UTC Time", "exportUtc"},
    {"Status Word", "exportStatusFlags"},
    {"Clipping Flags", "exportClipFlags"},
    {"RSSI", "exportRssi"},
    {"Acceleration", "exportCalibratedAcceleration"},
    {"Free Acceleration", "exportFreeAcceleration"},
    {"Rate Of Turn", "exportCalibratedAngularVelocity"},
    {"Magnetic Field", "exportMagneticField"},
    {"Velocity Increment", "exportVelocityIncrement"},
    {"Orientation Increment", "exportOrientationIncrement"},
    {"Position", "exportPosition"},
    {"Velocity", "exportVelocity"},
    {"Temperature", "exportTemperature"},
    {"Gyro Temperatures", "exportGyroTemperature"},
    {"Barometric Pressure", "exportPressure"},
    {"SCR Acceleration", "exportScrAcceleration"},
    {"SCR Gyroscope Data", "exportScrGyroscopeData"},
    {"SCR Magnetic Field", "exportScrMagneticField"},
    {"SCR Temperature", "exportScrTemperature"},
    {"SCR Gyro Temperatures", "exportScrGyroTemperature"},
    {"GPS Receiver Message", "exportRawGps"},
    {"GNSS Receiver Message", "exportRawGnss"},
    {"Trigger In 1", "exportTriggerIn1"},
    {"Trigger In 2", "exportTriggerIn2"},
};
const int GroupSelection::groupCount = int(std::size(groups));

const GroupSelection::Orientation GroupSelection::orientations[] = {
    {"Euler Angles", "Euler"},
    {"Quaternion", "Quaternion"},
    {"Matrix", "Matrix"},
};
const int GroupSelection::orientationCount = int(std::size(orientations));

QStringList GroupSelection::names()
{
    QStringList list;
    for (const Group &group : groups)
        list.append(QLatin1String(group.label));
    for (const Orientation &orientation : orientations)
        list.append(QLatin1String(orientation.label));
    return list;
}

bool GroupSelection::apply(const QString &list, SettingsSynchronizer *store, QString *problem)
{
    const QString everything = folded(list);
    if (everything == QLatin1String("all") || everything == QLatin1String("none")) {
        const bool on = everything == QLatin1String("all");
        for (const Group &group : groups)
            store->setSetting(QLatin1String(group.key), on);
        const QString orientation = store->setting(orientationKey).toString();
        if (!on)
            store->setSetting(orientationKey, QStringLiteral("None"));
        else if (orientation.compare(QLatin1String("None"), Qt::CaseInsensitive) == 0)
            store->setSetting(orientationKey, QStringLiteral("Euler"));
        return true;
    }

    QStringList keys;
    QString orientation = QStringLiteral("None");
    const QStringList names = list.split(QLatin1Char(','));
    for (const QString &name : names) {
        const QString wanted = folded(name);
        bool known = false;
        for (const Group &group : groups) {
            if (wanted == folded(QLatin1String(group.label))) {
                keys.append(QLatin1String(group.key));
                known = true;
            }
        }
        for (const Orientation &format : orientations) {
            // "Euler" alone names Euler angles too, as the setting does
            if (wanted == folded(QLatin1String(format.label))
                || wanted == folded(QLatin1String(format.value))) {
                if (orientation != QLatin1String("None")
                    && orientation != QLatin1String(format.value)) {
                    *problem = tr("--groups names two orientations; the file holds one");
                    return false;
                }
                orientation = QLatin1String(format.value);
                known = true;
            }
        }
        if (!known) {
            *problem = tr("--groups: unknown group \"%1\"; the groups are: %2")
                           .arg(name.trimmed(), GroupSelection::names().join(QStringLiteral(", ")));
            return false;
        }
    }
    for (const Group &group : groups)
        store->setSetting(QLatin1String(group.key), keys.contains(QLatin1String(group.key)));
    store->setSetting(orientationKey, orientation);
    return true;
}
