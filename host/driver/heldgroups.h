#pragma once

#include <QStringList>

class SettingsSynchronizer;
struct RecordingSample;

/**
 * Which data groups of the options page a sample holds data for: one bit
 * per group, in the order of GroupSelection::groups, followed by one bit per
 * orientation format of GroupSelection::orientations.
 *
 * A group is held when its columns would not be empty: a sample with a
 * quaternion holds all three orientation formats, which are derived from
 * it; one with only Euler angles holds just those.
 */
class HeldGroups
{
public:
    using Mask = quint32;

    /** The groups @p sample holds data for; cheap enough to ask of every sample. */
    static Mask of(const RecordingSample &sample);
    /** The groups that the settings in @p store export. */
    static Mask chosen(const SettingsSynchronizer &store);
    /**
     * The groups that make a row of their own: counters, times, status words,
     * clipping flags and RSSI go with other data only.
     */
    static Mask makingRows();
    /** The names of the groups in @p mask, in the order of the options page. */
    static QStringList names(Mask mask);
};
