#include "settingssynchronizer.h"

#include <QFileInfo>
#include <QSet>
#include <QSettings>

#include <algorithm>

SettingsSynchronizer::SettingsSynchronizer(const QMap<QString, QVariant> &defaults,
                                           const QMap<QString, QString> &descriptions,
                                           QObject *parent)
    : QObject(parent)
    , descriptionTexts(descriptions)
{
    for (auto it = defaults.cbegin(); it != defaults.cend(); ++it)
        defaultValues.insert(it.key(), it.value());
    current = defaultValues;
}

SettingsSynchronizer::~SettingsSynchronizer() = default;

std::size_t SettingsSynchronizer::answerSlot(const QString &key)
{
    return std::size_t((quint64(quintptr(key.constData())) * 0x9E3779B97F4A7C15ull) >> 54)
        % answerSlots;
}

QVariant SettingsSynchronizer::setting(const QString &key) const
{
    const Answer &answer = answers[answerSlot(key)];
    if (Q_LIKELY(answer.revision == revision && answer.key.constData() == key.constData()
                 && answer.key.size() == key.size()))
        return answer.value;
    return lookUp(key);
}

// A key whose own slot is taken finds its answer in one of the next few, or
// takes the first of them left over from before the last change.
QVariant SettingsSynchronizer::lookUp(const QString &key) const
{
    constexpr std::size_t probes = 4;
    const std::size_t first = answerSlot(key);
    Answer *free = nullptr;
    for (std::size_t i = 0; i < probes; ++i) {
        Answer &answer = answers[(first + i) % answerSlots];
        if (answer.revision != revision) {
            if (!free)
                free = &answer;
        } else if (answer.key.constData() == key.constData() && answer.key.size() == key.size()) {
            return answer.value;
        }
    }
    Answer &answer = free ? *free : answers[first];
    answer.key = key;
    answer.value = current.value(key);
    answer.revision = revision;
    return answer.value;
}

void SettingsSynchronizer::setSetting(const QString &key, const QVariant &value)
{
    const auto stored = values.constFind(key);
    if (stored != values.cend() && stored->userType() == value.userType() && *stored == value)
        return;
    values.insert(key, value);
    current.insert(key, value);
    ++revision;
    emit settingChanged(key);
}

void SettingsSynchronizer::resetSetting(const QString &key)
{
    if (!values.remove(key))
        return;
    const auto fallback = defaultValues.constFind(key);
    if (fallback != defaultValues.cend())
        current.insert(key, *fallback);
    else
        current.remove(key);
    ++revision;
    emit settingChanged(key);
}

QVariant SettingsSynchronizer::defaultSetting(const QString &key) const
{
    return defaultValues.value(key);
}

bool SettingsSynchronizer::hasStoredSetting(const QString &key) const
{
    return values.contains(key);
}

QString SettingsSynchronizer::description(const QString &key) const
{
    return descriptionTexts.value(key);
}

QMap<QString, QString> SettingsSynchronizer::descriptions() const
{
    return descriptionTexts;
}

QMap<QString, QVariant> SettingsSynchronizer::defaults() const
{
    QMap<QString, QVariant> sorted;
    for (auto it = defaultValues.cbegin(); it != defaultValues.cend(); ++it)
        sorted.insert(it.key(), it.value());
    return sorted;
}

QStringList SettingsSynchronizer::keys() const
{
    QSet<QString> all;
    for (auto it = defaultValues.cbegin(); it != defaultValues.cend(); ++it)
        all.insert(it.key());
    for (auto it = descriptionTexts.cbegin(); it != descriptionTexts.cend(); ++it)
        all.insert(it.key());
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        all.insert(it.key());
    QStringList sorted(all.cbegin(), all.cend());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

bool SettingsSynchronizer::valueFromText(const QString &key, const QString &text,
                                         QVariant *value) const
{
    const QVariant fallback = defaultValues.value(key);
    if (fallback.userType() == QMetaType::Bool) {
        if (text == QLatin1String("true") || text == QLatin1String("1"))
            *value = true;
        else if (text == QLatin1String("false") || text == QLatin1String("0"))
            *value = false;
        else
            return false;
        return true;
    }
    if (!fallback.isValid()) {
        if (text == QLatin1String("true"))
            *value = true;
        else if (text == QLatin1String("false"))
            *value = false;
        else
            *value = text;
        return true;
    }
    *value = text;
    return true;
}

bool SettingsSynchronizer::load(const QString &fileName, QStringList *problems)
{
    const QFileInfo info(fileName);
    if (!info.exists())
        return true;
    if (!info.isFile() || !info.isReadable())
        return false;

    QSettings file(fileName, QSettings::IniFormat);
    if (file.status() != QSettings::NoError)
        return false;
    const QStringList fileKeys = file.allKeys();
    for (const QString &key : fileKeys) {
        // A line "=value" has no key to store it under (and QSettings
        // would complain of being asked for it).
        if (key.isEmpty())
            continue;
        // QSettings gives back the text it wrote; a string list means the
        // value held a comma, which is text all the same.
        const QVariant raw = file.value(key);
        const QString text = raw.userType() == QMetaType::QStringList
            ? raw.toStringList().join(QLatin1Char(','))
            : raw.toString();
        QVariant value;
        if (valueFromText(key, text, &value))
            setSetting(key, value);
        else if (problems)
            problems->append(tr("%1: \"%2\" is not a boolean").arg(key, text));
    }
    return true;
}

bool SettingsSynchronizer::save(const QString &fileName) const
{
    QSettings file(fileName, QSettings::IniFormat);
    file.clear();
    QStringList storedKeys = values.keys();
    std::sort(storedKeys.begin(), storedKeys.end());
    for (const QString &key : qAsConst(storedKeys)) {
        const QVariant &value = values[key];
        // Booleans are written as words, so that the file reads well and
        // loads back typed by the default.
        if (value.userType() == QMetaType::Bool)
            file.setValue(key, value.toBool() ? QStringLiteral("true") : QStringLiteral("false"));
        else
            file.setValue(key, value.toString());
    }
    file.sync();
    return file.status() == QSettings::NoError;
}
