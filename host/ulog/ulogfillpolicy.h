#pragma once

#include <QString>

/** How samples take the values of topics slower than the IMU. */
struct UlogFillPolicy
{
    enum class Kind { None, Hold, Nearest };
    Kind kind = Kind::None;
    /** For Hold and Nearest: how far, in ms, a message may lie from a sample at most. */
    int maxAgeMs = 500;

    /** "none", "hold, at most 500 ms old", "nearest, at most 500 ms away": the property FillPolicy.
     */
    QString text() const;
    /** "none", "hold" or "nearest", as the option names the kind. */
    QString name() const;
};
