#pragma once

#include <kveulerangles.h>
#include <kvmatrix.h>
#include <kvquaternion.h>

/**
 * Conversions between the orientation forms of a sample. Euler angles follow
 * the aerospace Z-Y-X convention (yaw about z, then pitch about y, then roll
 * about x), in degrees; matrices rotate body coordinates into the reference
 * frame.
 */
namespace OrientationMath {

/** Roll, pitch and yaw of the unit quaternion in the direction of @p q. */
KvEulerAngles eulerFromQuaternion(const KvQuaternion &q);

/** The rotation matrix of the unit quaternion in the direction of @p q. */
KvMatrix matrixFromQuaternion(const KvQuaternion &q);

/** The unit quaternion with the given roll, pitch and yaw, scalar part not negative. */
KvQuaternion quaternionFromEuler(const KvEulerAngles &angles);

} // namespace OrientationMath
