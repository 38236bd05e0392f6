#pragma once

#include <QString>
#include <QVariant>

class RowWriter;

/**
 * The data groups of an export, in output order, with the setting that
 * switches each on, the column names it contributes and the writer that
 * fills those columns for a sample. The column-header line and the sample
 * rows both walk this one table, so every value stands under its name.
 */
namespace ColumnCatalogue {

/** A list of column names kept as static data. */
struct Names
{
    const char *const *names;
    int count;

    const char *const *begin() const { return names; }
    const char *const *end() const { return names + count; }
};

/** Indexed columns repeated after the fixed columns of a run, one format per column of a block. */
struct RepeatedBlock
{
    Names formats; ///< printf formats with one %d for the index
    int repeat; ///< how many blocks, indexed from 0
};

struct Fields;

/**
 * Writes one field per column of @p fields for the source's current sample,
 * the empty-field text where data is missing. Answers whether the values
 * count as sensor data, which makes the sample a line of its own.
 */
using WriteFields = bool (*)(RowWriter &writer, const Fields &fields);

/** A run of columns that one writer fills, from one record of the sample. */
struct Fields
{
    Names names;
    RepeatedBlock block;
    WriteFields write;

    int count() const { return names.count + block.formats.count * block.repeat; }
};

/** The runs of a group, in output order. */
struct FieldsList
{
    const Fields *first;
    int count;

    const Fields *begin() const { return first; }
    const Fields *end() const { return first + count; }
    int columnCount() const;
};

/** How a group's setting selects its columns. */
enum class Selection {
    OnOff, ///< a boolean: all columns or none
    OrientationFormat, ///< a format name: see orientationFormat()
};

struct DataGroup
{
    const char *settingKey;
    Selection selection;
    FieldsList fields; ///< of an on/off group; an orientation group's depend on its format
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
FieldsList orientationFields(OrientationFormat format);

/** The columns that @p group contributes while its setting reads @p setting. */
inline FieldsList selectedFields(const DataGroup &group, const QVariant &setting)
{
    if (group.selection == Selection::OrientationFormat)
        return orientationFields(orientationFormat(setting.toString()));
    if (!setting.toBool())
        return {nullptr, 0};
    return group.fields;
}

} // namespace ColumnCatalogue
