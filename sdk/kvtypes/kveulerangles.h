#pragma once

/** An attitude as roll, pitch and yaw, in the units the source supplies (degrees). */
struct KvEulerAngles
{
    double roll = 0.0;
    double pitch = 0.0;
    double yaw = 0.0;
};
