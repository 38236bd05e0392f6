#include "walk.h"

#include "dilutions.h"
#include "orientationmath.h"
#include "random.h"

#include <kvmatrix.h>

#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace {

constexpr double pi = M_PI;
constexpr double gravity = 9.81;
constexpr qint64 msPerGpsWeek = 7 * 24 * 3600 * 1000LL;
constexpr qint64 gpsLeapMs = 18000;
constexpr quint32 sampleTimeFineStart = 1200000;
constexpr double startLatitude = 47.3769;
constexpr double startLongitude = 8.5417;
constexpr double startAltitude = 412.0;
constexpr double geoidSeparation = 47.5;
constexpr double walkingSpeed = 1.3;
// Each step lifts and lowers the sensor by a couple of centimetres.
constexpr double stepRate = 1.8;
constexpr double stepLift = 0.02;

template <typename Integer>
Integer clamped(double value)
{
    return Integer(std::clamp(std::round(value), double(std::numeric_limits<Integer>::min()),
                              double(std::numeric_limits<Integer>::max())));
}

double wrapDegrees(double angle)
{
    angle = std::fmod(angle, 360.0);
    if (angle > 180.0)
        angle -= 360.0;
    else if (angle <= -180.0)
        angle += 360.0;
    return angle;
}

constexpr int gpsChannelCount = 12;
constexpr quint8 gpsSvids[gpsChannelCount] = {2, 5, 7, 9, 12, 13, 15, 18, 20, 25, 29, 31};

struct SatelliteId
{
    quint8 gnssId;
    quint8 svId;
};

// GPS (0), Galileo (2), BeiDou (3) and GLONASS (6) satellites in view.
constexpr SatelliteId satellitesInView[] = {
    {0, 2},  {0, 5},  {0, 7},  {0, 9},  {0, 12}, {0, 13}, {0, 15}, {0, 18}, {0, 20}, {0, 25},
    {2, 1},  {2, 4},  {2, 9},  {2, 11}, {2, 19}, {2, 24}, {2, 26}, {2, 33}, {3, 6},  {3, 14},
    {3, 21}, {3, 28}, {3, 35}, {3, 42}, {6, 3},  {6, 8},  {6, 10}, {6, 17}, {6, 22}, {6, 23},
};
constexpr int satelliteCount = int(std::size(satellitesInView));

constexpr double toRad = pi / 180.0;

// What every record of one solution of the receiver shows: its time, and
// the place (latitude and longitude in radians) and velocity (east, north,
// up) it found.
struct ReceiverFix
{
    QDateTime utc;
    quint32 iTOW = 0;
    qint64 week = 0;
    qint32 nano = 0;
    quint8 numSV = 0;
    quint16 pDOP = 0;
    double lat = 0.0;
    double lon = 0.0;
    double height = 0.0;
    double vE = 0.0;
    double vN = 0.0;
    double vU = 0.0;
};

} // namespace

class Walk::Private
{
public:
    // The receiver reports @p receiverRate times a second.
    Private(const GeneratorOptions &options, double receiverRate)
        : rate(options.rate)
        , receiverRate(receiverRate)
        , random(options.seed)
    {
        deviceId = QStringLiteral("%1")
                       .arg(random.next() & 0xFFFFFFFFu, 8, 16, QLatin1Char('0'))
                       .toUpper();
        for (double &level : satelliteLevels)
            level = 22.0 + 24.0 * random.uniform();
        const qint64 gpsMs =
            QDateTime(QDate(1980, 1, 6), QTime(0, 0), Qt::UTC).msecsTo(Walk::startTime())
            + gpsLeapMs;
        gpsWeek = gpsMs / msPerGpsWeek;
        startTimeOfWeek = gpsMs % msPerGpsWeek;
    }

    const SampleState &step(qint64 index)
    {
        const double dt = 1.0 / rate;
        const double t = double(index) / rate;
        state.index = index;
        stepTime(t);
        stepOrientation(t, dt);
        stepPosition(t, dt);
        stepEnvironment(t);
        stepReceiver(t);
        stepTriggers(index, t);
        return state;
    }

    QString deviceId;

private:
    void stepTime(double t)
    {
        const QDateTime sampleTime = Walk::startTime().addMSecs(std::llround(t * 1000.0));
        state.sampleTimeFine = quint32(sampleTimeFineStart + quint64(std::llround(t * 10000.0)));
        state.dateTime = sampleTime.date().toString(Qt::ISODate) + QLatin1Char('T')
            + sampleTime.time().toString(QStringLiteral("HH:mm:ss.zzz"));
        const QDate date = sampleTime.date();
        const QTime time = sampleTime.time();
        state.utcTime.nano = quint32(time.msec()) * 1000000u;
        state.utcTime.year = quint16(date.year());
        state.utcTime.month = quint8(date.month());
        state.utcTime.day = quint8(date.day());
        state.utcTime.hour = quint8(time.hour());
        state.utcTime.minute = quint8(time.minute());
        state.utcTime.second = quint8(time.second());
        state.utcTime.valid = 0x07;
    }

    void stepOrientation(double t, double dt)
    {
        const double rollRate = 0.21, pitchRate = 0.13, turnRate = 8.0;
        KvEulerAngles angles;
        angles.roll = 4.0 * std::sin(2 * pi * rollRate * t);
        angles.pitch = 2.5 * std::sin(2 * pi * pitchRate * t + 0.7);
        angles.yaw = wrapDegrees(30.0 + turnRate * t);
        state.quaternion = OrientationMath::quaternionFromEuler(angles);
        const KvEulerAngles derived = OrientationMath::eulerFromQuaternion(state.quaternion);
        state.euler[0] = derived.roll;
        state.euler[1] = derived.pitch;
        state.euler[2] = derived.yaw;
        const KvMatrix r = OrientationMath::matrixFromQuaternion(state.quaternion);
        for (int i = 0; i < 9; ++i)
            state.matrix[i] = r.at(i);

        // Body rates of the Z-Y-X angles, in rad/s.
        const double roll = angles.roll * toRad, pitch = angles.pitch * toRad;
        const double rollDot = 4.0 * 2 * pi * rollRate * std::cos(2 * pi * rollRate * t) * toRad;
        const double pitchDot =
            2.5 * 2 * pi * pitchRate * std::cos(2 * pi * pitchRate * t + 0.7) * toRad;
        const double yawDot = turnRate * toRad;
        const double rates[3] = {
            rollDot - yawDot * std::sin(pitch),
            pitchDot * std::cos(roll) + yawDot * std::sin(roll) * std::cos(pitch),
            -pitchDot * std::sin(roll) + yawDot * std::cos(roll) * std::cos(pitch),
        };
        for (int i = 0; i < 3; ++i)
            state.angularVelocity[i] = rates[i] + random.noise(0.002);
        const double angle =
            std::sqrt(rates[0] * rates[0] + rates[1] * rates[1] + rates[2] * rates[2]) * dt;
        const double scale = angle > 0.0 ? std::sin(angle / 2) / (angle / dt) : 0.0;
        state.orientationIncrement =
            KvQuaternion(std::cos(angle / 2), rates[0] * scale, rates[1] * scale, rates[2] * scale);

        // Reference frame: x east, y north, z up. Steps bounce the sensor.
        const double yaw = angles.yaw * toRad;
        const double sway = 0.25 * std::sin(2 * pi * 0.9 * t);
        const double stepOmega = 2 * pi * stepRate;
        const double free[3] = {sway * std::cos(yaw), sway * std::sin(yaw),
                                -stepLift * stepOmega * stepOmega * std::sin(stepOmega * t)};
        const double specific[3] = {free[0], free[1], free[2] + gravity};
        const double earthField[3] = {0.0, 0.4, -0.9};
        for (int i = 0; i < 3; ++i) {
            // The transpose of the body-to-reference matrix brings reference
            // vectors into the body frame.
            double body = 0.0, field = 0.0;
            for (int k = 0; k < 3; ++k) {
                body += r.value(k, i) * specific[k];
                field += r.value(k, i) * earthField[k];
            }
            state.acceleration[i] = body + random.noise(0.01);
            state.freeAcceleration[i] = free[i] + random.noise(0.01);
            state.magneticField[i] = field + random.noise(0.003);
            state.velocityIncrement[i] = state.acceleration[i] * dt;
            state.scrAcceleration[i] =
                clamped<quint16>(32768 + 1000.0 * state.acceleration[i] + random.noise(2));
            state.scrGyroscope[i] =
                clamped<quint16>(32768 + 5000.0 * state.angularVelocity[i] + random.noise(2));
            state.scrMagneticField[i] =
                clamped<quint16>(32768 + 6000.0 * state.magneticField[i] + random.noise(2));
        }
        heading = angles.yaw;
    }

    void stepPosition(double t, double dt)
    {
        const double yaw = heading * toRad;
        // The rate of change of the altitude below.
        const double up = 0.3 * 2 * pi * 0.05 * std::cos(2 * pi * 0.05 * t)
            + stepLift * 2 * pi * stepRate * std::cos(2 * pi * stepRate * t);
        state.velocity[0] = walkingSpeed * std::cos(yaw) + random.noise(0.02);
        state.velocity[1] = walkingSpeed * std::sin(yaw) + random.noise(0.02);
        state.velocity[2] = up + random.noise(0.01);
        if (state.index > 0) {
            east += walkingSpeed * std::cos(yaw) * dt;
            north += walkingSpeed * std::sin(yaw) * dt;
        }
        latitude = startLatitude + north / 111132.954;
        longitude = startLongitude + east / (111319.49 * std::cos(startLatitude * toRad));
        state.latitudeLongitude[0] = latitude;
        state.latitudeLongitude[1] = longitude;
        state.altitude = startAltitude + 0.3 * std::sin(2 * pi * 0.05 * t)
            + stepLift * std::sin(2 * pi * stepRate * t);
    }

    void stepEnvironment(double t)
    {
        state.temperature = 24.5 + 1.5 * std::sin(2 * pi * t / 1200.0) + random.noise(0.02);
        // Some 965 hPa, 0.12 hPa less a metre up; the noise is drawn in Pa,
        // so that the walk's random numbers stay as they were.
        state.pressure =
            (96500.0 - 12.0 * (state.altitude - startAltitude) + random.noise(3.0)) * 0.01;
        state.rssi = std::round(-58.0 + random.noise(2.0));
        state.scrTemperature =
            clamped<quint16>(11500 + 40.0 * std::sin(2 * pi * t / 600.0) + random.noise(2));
        for (int i = 0; i < 3; ++i)
            state.gyroTemperatures[i] = clamped<quint16>((state.temperature + 0.4 * i) * 256.0);
        const bool clipping = random.uniform() < 0.002;
        state.clippingFlags = clipping ? quint16(1u << random.below(9)) : 0;
        state.statusWord = clipping ? 0x00400007 : 0x00000007;
    }

    // The receiver's records change only when a new solution arrives.
    void stepReceiver(double t)
    {
        const qint64 epoch = qint64(std::floor(t * receiverRate + 1e-9));
        if (epoch == receiverEpoch)
            return;
        receiverEpoch = epoch;
        const ReceiverFix fix = fixOf(epoch);
        stepSolution(fix);
        stepDilutions(fix);
        stepUtcTime(fix);
        stepGpsSatellites(fix);
        stepPvt(fix);
        stepGnssSatellites(fix);
    }

    // The time and place of the solution at @p epoch, as every record shows it.
    ReceiverFix fixOf(qint64 epoch)
    {
        ReceiverFix fix;
        const qint64 epochMs = epoch * qint64(1000.0 / receiverRate);
        fix.utc = Walk::startTime().addMSecs(epochMs);
        fix.iTOW = quint32((startTimeOfWeek + epochMs) % msPerGpsWeek);
        fix.week = gpsWeek + (startTimeOfWeek + epochMs) / msPerGpsWeek;
        fix.nano = qint32(fix.utc.time().msec() * 1000000 + std::lround(random.noise(30.0)));
        fix.numSV = quint8(8 + random.below(4));
        fix.pDOP = quint16(120 + random.below(60));
        fix.lat = (latitude + random.noise(1.5) / 111132.954) * toRad;
        fix.lon = (longitude + random.noise(1.5) / 78000.0) * toRad;
        fix.height = state.altitude + geoidSeparation + random.noise(2.0);
        fix.vE = state.velocity[0];
        fix.vN = state.velocity[1];
        fix.vU = state.velocity[2];
        return fix;
    }

    // NAV-SOL: the position and velocity on the WGS 84 ellipsoid, in Earth-centred axes.
    void stepSolution(const ReceiverFix &fix)
    {
        const double lat = fix.lat, lon = fix.lon, height = fix.height;
        const double vE = fix.vE, vN = fix.vN, vU = fix.vU;
        const double a = 6378137.0, e2 = 6.69437999014e-3;
        const double n = a / std::sqrt(1.0 - e2 * std::sin(lat) * std::sin(lat));
        KvGpsSolution &sol = state.gpsSolution;
        sol.iTOW = fix.iTOW;
        sol.fTOW = fix.nano % 1000000;
        sol.week = qint16(fix.week);
        sol.gpsFix = 3;
        sol.flags = 0x0D;
        sol.ecefX = qint32(std::lround((n + height) * std::cos(lat) * std::cos(lon) * 100.0));
        sol.ecefY = qint32(std::lround((n + height) * std::cos(lat) * std::sin(lon) * 100.0));
        sol.ecefZ = qint32(std::lround((n * (1.0 - e2) + height) * std::sin(lat) * 100.0));
        sol.pAcc = quint32(250 + random.below(100));
        sol.ecefVX = qint32(std::lround((-std::sin(lon) * vE - std::sin(lat) * std::cos(lon) * vN
                                         + std::cos(lat) * std::cos(lon) * vU)
                                        * 100.0));
        sol.ecefVY = qint32(std::lround((std::cos(lon) * vE - std::sin(lat) * std::sin(lon) * vN
                                         + std::cos(lat) * std::sin(lon) * vU)
                                        * 100.0));
        sol.ecefVZ = qint32(std::lround((std::cos(lat) * vN + std::sin(lat) * vU) * 100.0));
        sol.sAcc = quint32(30 + random.below(30));
        sol.pDOP = fix.pDOP;
        sol.numSV = fix.numSV;
    }

    // NAV-DOP: the other dilutions in fixed proportion to the position's.
    void stepDilutions(const ReceiverFix &fix)
    {
        KvGpsDop &dop = state.gpsDop;
        dop.iTOW = fix.iTOW;
        dop.pDOP = fix.pDOP;
        dop.hDOP = quint16(fix.pDOP * 6 / 10);
        dop.vDOP = quint16(fix.pDOP * 8 / 10);
        dop.tDOP = quint16(fix.pDOP * 7 / 10);
        dop.gDOP = quint16(fix.pDOP + dop.tDOP / 2);
        dop.nDOP = quint16(dop.hDOP * 7 / 10);
        dop.eDOP = quint16(dop.hDOP * 7 / 10);
    }

    // NAV-TIMEUTC.
    void stepUtcTime(const ReceiverFix &fix)
    {
        const QDate date = fix.utc.date();
        const QTime time = fix.utc.time();
        KvGpsUtcTime &gpsUtc = state.gpsUtcTime;
        gpsUtc.iTOW = fix.iTOW;
        gpsUtc.tAcc = quint32(15 + random.below(30));
        gpsUtc.nano = fix.nano;
        gpsUtc.year = quint16(date.year());
        gpsUtc.month = quint8(date.month());
        gpsUtc.day = quint8(date.day());
        gpsUtc.hour = quint8(time.hour());
        gpsUtc.min = quint8(time.minute());
        gpsUtc.sec = quint8(time.second());
        gpsUtc.valid = 0x07;
    }

    // NAV-SVINFO: the GPS channels.
    void stepGpsSatellites(const ReceiverFix &fix)
    {
        KvGpsSatelliteInfo &svInfo = state.gpsSatellites;
        svInfo.iTOW = fix.iTOW;
        svInfo.numCh = gpsChannelCount;
        for (int i = 0; i < gpsChannelCount; ++i) {
            svInfo.channels[i].svid = gpsSvids[i];
            svInfo.channels[i].quality = quint8(4 + random.below(4));
        }
    }

    // NAV-PVT: the fix in geodetic terms, with the UTC time and the dilutions of the epoch.
    void stepPvt(const ReceiverFix &fix)
    {
        const double vE = fix.vE, vN = fix.vN, vU = fix.vU;
        const double speed = std::sqrt(vE * vE + vN * vN);
        double motionHeading = std::atan2(vE, vN) / toRad;
        if (motionHeading < 0.0)
            motionHeading += 360.0;
        double sensorHeading = 90.0 - heading;
        if (sensorHeading < 0.0)
            sensorHeading += 360.0;
        const KvGpsUtcTime &gpsUtc = state.gpsUtcTime;
        KvGnssPvt &pvt = state.gnssPvt;
        pvt.iTOW = fix.iTOW;
        pvt.year = gpsUtc.year;
        pvt.month = gpsUtc.month;
        pvt.day = gpsUtc.day;
        pvt.hour = gpsUtc.hour;
        pvt.min = gpsUtc.min;
        pvt.sec = gpsUtc.sec;
        pvt.valid = 0x37;
        pvt.tAcc = gpsUtc.tAcc;
        pvt.nano = fix.nano;
        pvt.fixType = 3;
        pvt.flags = 0x01;
        pvt.numSV = quint8(fix.numSV + 12);
        pvt.lon = qint32(std::lround(fix.lon / toRad * 1e7));
        pvt.lat = qint32(std::lround(fix.lat / toRad * 1e7));
        pvt.height = qint32(std::lround(fix.height * 1000.0));
        pvt.hMSL = qint32(std::lround((fix.height - geoidSeparation) * 1000.0));
        pvt.hAcc = quint32(1500 + random.below(1500));
        pvt.vAcc = quint32(2500 + random.below(2000));
        pvt.velN = qint32(std::lround(vN * 1000.0));
        pvt.velE = qint32(std::lround(vE * 1000.0));
        pvt.velD = qint32(std::lround(-vU * 1000.0));
        pvt.gSpeed = qint32(std::lround(speed * 1000.0));
        pvt.headMot = qint32(std::lround(motionHeading * 1e5)) % 36000000;
        pvt.sAcc = quint32(200 + random.below(300));
        pvt.headAcc = quint32(500000 + random.below(1500000));
        pvt.headVeh = qint32(std::lround(sensorHeading * 1e5)) % 36000000;
        copyDilutions(state.gpsDop, pvt);
    }

    // NAV-SAT: every satellite in view, its signal drifting slowly.
    void stepGnssSatellites(const ReceiverFix &fix)
    {
        KvGnssSatelliteInfo &sat = state.gnssSatellites;
        sat.iTOW = fix.iTOW;
        sat.numSvs = quint8(satelliteCount);
        for (int i = 0; i < satelliteCount; ++i) {
            satelliteLevels[i] = std::clamp(satelliteLevels[i] + random.noise(0.3), 12.0, 50.0);
            const quint8 cno = quint8(std::lround(satelliteLevels[i] + random.noise(1.0)));
            const quint32 quality = cno > 30 ? 7 : 4;
            const quint32 used = cno > 25 ? 0x08 : 0x00;
            sat.satellites[i].gnssId = satellitesInView[i].gnssId;
            sat.satellites[i].svId = satellitesInView[i].svId;
            sat.satellites[i].cno = cno;
            // Quality, used in the solution, healthy, orbit from ephemeris.
            sat.satellites[i].flags = quality | used | 0x10 | 0x100;
        }
    }

    // Input 1 fires at random now and then, input 2 every two seconds.
    void stepTriggers(qint64 index, double t)
    {
        state.triggerIn1 = KvTriggerIndication();
        state.triggerIn2 = KvTriggerIndication();
        if (random.uniform() < 0.01) {
            state.triggerIn1.line = 1;
            state.triggerIn1.polarity = 1;
            state.triggerIn1.timestamp = state.sampleTimeFine - quint32(random.below(50));
            state.triggerIn1.frameNumber = frames1++;
            state.triggerIn1.valid = true;
        }
        const qint64 period = qint64(std::floor(t / 2.0));
        if (index > 0 && period != lastTriggerPeriod) {
            state.triggerIn2.line = 2;
            state.triggerIn2.polarity = quint8(1 + frames2 % 2);
            state.triggerIn2.timestamp = state.sampleTimeFine - quint32(random.below(50));
            state.triggerIn2.frameNumber = frames2++;
            state.triggerIn2.valid = true;
        }
        lastTriggerPeriod = period;
    }

    double rate;
    double receiverRate;
    Random random;
    qint64 gpsWeek = 0;
    qint64 startTimeOfWeek = 0;
    SampleState state;
    double heading = 0.0;
    double east = 0.0;
    double north = 0.0;
    double latitude = startLatitude;
    double longitude = startLongitude;
    qint64 receiverEpoch = -1;
    double satelliteLevels[satelliteCount] = {};
    qint64 lastTriggerPeriod = 0;
    quint16 frames1 = 0;
    quint16 frames2 = 0;
};

Walk::Walk(const GeneratorOptions &options, double receiverRate)
    : d(std::make_unique<Private>(options, receiverRate))
{ }

Walk::~Walk() = default;

QDateTime Walk::startTime()
{
    return QDateTime(QDate(2026, 11, 21), QTime(9, 30), Qt::UTC);
}

QString Walk::deviceId() const
{
    return d->deviceId;
}

const SampleState &Walk::step(qint64 index)
{
    return d->step(index);
}
