#pragma once

#include <QString>

/**
 * The data groups of an export, in output order, with the setting that
 * switches each on and the column names it contributes. The column-header
 * line and the sample rows both walk this one table, so every value stands
 * under its name.
 */
namespace ColumnCatalogue {

enum class Group {
    PacketCounter,
    SampleTimeFine,
    DateTime,
    Utc,
    StatusWord,
    ClippingFlags,
    Rssi,
    CalibratedAcceleration,
    FreeAcceleration,
    CalibratedAngularVelocity,
    MagneticField,
    VelocityIncrement,
    OrientationIncrement,
    Pressure,
    Orientation,
    Position,
    Velocity,
    Temperature,
    GyroTemperature,
    ScrAcceleration,
    ScrGyroscopeData,
    ScrMagneticField,
    ScrTemperature,
    ScrGyroTemperature,
    RawGps,
    RawGnss,
    TriggerIn1,
    TriggerIn2,
};

/** A list of column names kept as static data. */
struct Names
{
    const char *const *names;
    int count;

    const char *const *begin() const { return names; }
    const char *const *end() const { return names + count; }
};

/** Indexed columns repeated after a group's fixed columns, one format per column of a block. */
struct RepeatedBlock
{
    Names formats;  ///< printf formats with one %d for the index
    int repeat;     ///< how many blocks, indexed from 0
};

struct DataGroup
{
    Group group;
    const char *settingKey;
    Names columns;
    RepeatedBlock block;

    /** Columns the group adds when on (for orientation: see orientationColumns()). */
    int columnCount() const { return columns.count + block.formats.count * block.repeat; }
};

/** The orientation formats a value of "exportOrientation" can select. */
enum class OrientationFormat { None, Euler, Matrix, Quaternion };

struct Groups
{
    const DataGroup *first;
    int count;

    const DataGroup *begin() const { return first; }
    const DataGroup *end() const { return first + count; }
};

/** The 28 groups in output order. */
Groups groups();

/**
 * The format that @p value selects: "Euler", "Matrix" and "Quaternion" in any
 * case; anything else selects none.
 */
OrientationFormat orientationFormat(const QString &value);

/** The columns of an orientation format; none for OrientationFormat::None. */
Names orientationColumns(OrientationFormat format);

} // namespace ColumnCatalogue
