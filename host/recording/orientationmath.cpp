#include "orientationmath.h"

#include <algorithm>
#include <cmath>

namespace OrientationMath {

namespace {

constexpr double degreesPerRadian = 180.0 / M_PI;

struct Components
{
    double w, x, y, z;
};

// Files carry quaternions rounded to a few decimals; scaling back to unit
// length keeps the derived matrix a rotation. A zero or non-finite norm is
// left alone, so such input shows in the result instead of being hidden.
Components normalized(const KvQuaternion &q)
{
    const double norm = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    if (!(norm > 0.0) || !std::isfinite(norm))
        return {q[0], q[1], q[2], q[3]};
    return {q[0] / norm, q[1] / norm, q[2] / norm, q[3] / norm};
}

} // namespace

KvEulerAngles eulerFromQuaternion(const KvQuaternion &q)
{
    const Components c = normalized(q);
    KvEulerAngles angles;
    angles.roll = std::atan2(2.0 * (c.w * c.x + c.y * c.z), 1.0 - 2.0 * (c.x * c.x + c.y * c.y))
        * degreesPerRadian;
    // Rounding can push the sine just past 1 at +-90 degrees of pitch.
    angles.pitch =
        std::asin(std::clamp(2.0 * (c.w * c.y - c.z * c.x), -1.0, 1.0)) * degreesPerRadian;
    angles.yaw = std::atan2(2.0 * (c.w * c.z + c.x * c.y), 1.0 - 2.0 * (c.y * c.y + c.z * c.z))
        * degreesPerRadian;
    return angles;
}

KvMatrix matrixFromQuaternion(const KvQuaternion &q)
{
    const Components c = normalized(q);
    const double rowMajor[9] = {
        1.0 - 2.0 * (c.y * c.y + c.z * c.z), 2.0 * (c.x * c.y - c.w * c.z),
        2.0 * (c.x * c.z + c.w * c.y),       2.0 * (c.x * c.y + c.w * c.z),
        1.0 - 2.0 * (c.x * c.x + c.z * c.z), 2.0 * (c.y * c.z - c.w * c.x),
        2.0 * (c.x * c.z - c.w * c.y),       2.0 * (c.y * c.z + c.w * c.x),
        1.0 - 2.0 * (c.x * c.x + c.y * c.y),
    };
    return KvMatrix(rowMajor);
}

KvQuaternion quaternionFromEuler(const KvEulerAngles &angles)
{
    const double halfRoll = angles.roll / degreesPerRadian / 2.0;
    const double halfPitch = angles.pitch / degreesPerRadian / 2.0;
    const double halfYaw = angles.yaw / degreesPerRadian / 2.0;
    const double cr = std::cos(halfRoll), sr = std::sin(halfRoll);
    const double cp = std::cos(halfPitch), sp = std::sin(halfPitch);
    const double cy = std::cos(halfYaw), sy = std::sin(halfYaw);
    const double w = cr * cp * cy + sr * sp * sy;
    const double x = sr * cp * cy - cr * sp * sy;
    const double y = cr * sp * cy + sr * cp * sy;
    const double z = cr * cp * sy - sr * sp * cy;
    if (w < 0.0)
        return KvQuaternion(-w, -x, -y, -z);
    return KvQuaternion(w, x, y, z);
}

} // namespace OrientationMath
