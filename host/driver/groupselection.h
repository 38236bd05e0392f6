#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

class SettingsSynchronizer;

/**
 * The data groups to export, named as the options page shows them: the
 * --groups shorthand for the "export" settings.
 *
 * A list switches on the groups it names and switches off every other group
 * of the options page; "all" switches on every group (orientation as set, or
 * Euler angles when it is off), "none" switches every group off. Names are
 * compared without case and blanks; an orientation is named by its format
 * ("Euler Angles", "Quaternion", "Matrix").
 */
class GroupSelection
{
    Q_DECLARE_TR_FUNCTIONS(GroupSelection)

public:
    /** The check box texts of the options page and the settings they switch. */
    struct Group
    {
        const char *label;
        const char *key;
    };
    static const Group groups[];
    static const int groupCount;

    /** The orientation formats as the options page names them, with their values. */
    struct Orientation
    {
        const char *label;
        const char *value;
    };
    static const Orientation orientations[];
    static const int orientationCount;

    /** The names a list may hold. */
    static QStringList names();

    /** Applies @p list to @p store; false, with @p problem set, for a list that names no known
     * group. */
    static bool apply(const QString &list, SettingsSynchronizer *store, QString *problem);
};
