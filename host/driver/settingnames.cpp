#include "settingnames.h"

#include <settingssynchronizer.h>

#include <QSet>

#include <algorithm>

QStringList SettingNames::known(const SettingsSynchronizer *store)
{
    QSet<QString> keys{QStringLiteral("highPrecision")};
    const QStringList declared = store->defaults().keys() + store->descriptions().keys();
    for (const QString &key : declared)
        keys.insert(key);
    QStringList sorted(keys.cbegin(), keys.cend());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}
