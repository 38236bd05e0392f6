#pragma once

#include <QString>
#include <QStringList>

class SettingsSynchronizer;

/**
 * The setting keys a plug-in knows. A store also holds the keys it loaded
 * from a file, known or not; only the keys with a default or a
 * description, and "highPrecision", which the plug-in reads without
 * declaring it, are the plug-in's.
 */
class SettingNames
{
public:
    /** The keys the plug-in of @p store knows, sorted. */
    static QStringList known(const SettingsSynchronizer *store);
};
