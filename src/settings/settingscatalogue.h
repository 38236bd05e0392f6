#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

/**
 * The export settings the plug-in declares: every key with its default and
 * its description. The factory builds its settings store from these maps.
 */
namespace SettingsCatalogue {

/** Every setting key with its default: booleans and strings only. */
QMap<QString, QVariant> defaults();

/** Every setting key with its description, translated in the factory's context. */
QMap<QString, QString> descriptions();

} // namespace SettingsCatalogue
