#pragma once

#include "pluginframework_global.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <array>

/**
 * A plug-in's settings store: keys with a default value and a description,
 * and the values the user has stored. Values are booleans and strings.
 *
 * setting() answers the stored value, else the default, else an invalid
 * variant (which reads as false and as an empty string). The store can be
 * kept in an INI file; values read from a file are typed by their key's
 * default.
 *
 * Exporters read settings for every field of every sample. setting() keeps
 * the answers to the keys asked last, found again by the key's text buffer;
 * so reading is cheap for callers that ask with the same key strings again,
 * as plug-ins do. The store belongs to one thread.
 */
class PLUGINFRAMEWORK_EXPORT SettingsSynchronizer : public QObject
{
    Q_OBJECT

public:
    SettingsSynchronizer(const QMap<QString, QVariant> &defaults,
                         const QMap<QString, QString> &descriptions, QObject *parent = nullptr);
    ~SettingsSynchronizer() override;

    /** The stored value of @p key, else its default, else an invalid variant. */
    QVariant setting(const QString &key) const;
    /** Stores @p value under @p key; an invalid @p value is stored as such. */
    void setSetting(const QString &key, const QVariant &value);
    /** Forgets the stored value of @p key, so that its default applies again. */
    void resetSetting(const QString &key);
    /** The default of @p key, or an invalid variant. */
    QVariant defaultSetting(const QString &key) const;
    /** Whether a value is stored for @p key. */
    bool hasStoredSetting(const QString &key) const;

    QString description(const QString &key) const;
    QMap<QString, QString> descriptions() const;
    QMap<QString, QVariant> defaults() const;

    /** Every key with a default, a description or a stored value, sorted. */
    QStringList keys() const;

    /**
     * Converts @p text to the type of @p key's default: "true", "false", "1"
     * and "0" for a boolean default (anything else fails), the text itself for
     * a string default; for a key without default, "true" and "false" become
     * booleans and any other text a string. Returns false when @p text does
     * not fit.
     */
    bool valueFromText(const QString &key, const QString &text, QVariant *value) const;

    /**
     * Replaces the stored values with those of the INI file @p fileName. A
     * missing file stores nothing. Values that do not fit their key's type
     * are skipped and named in @p problems. Returns false when the file
     * exists but cannot be read.
     */
    bool load(const QString &fileName, QStringList *problems = nullptr);
    /** Writes the stored values to the INI file @p fileName. */
    bool save(const QString &fileName) const;

signals:
    /** The stored value of @p key changed. */
    void settingChanged(const QString &key);

private:
    QHash<QString, QVariant> values;
    QHash<QString, QVariant> defaultValues;
    // What setting() answers: the stored values over the defaults. Exporters
    // read it for every field of every sample, so it is one hashed lookup.
    QHash<QString, QVariant> current;
    QMap<QString, QString> descriptionTexts;

    static std::size_t answerSlot(const QString &key);
    Q_NEVER_INLINE QVariant lookUp(const QString &key) const;

    struct Answer
    {
        QString key; // shares the caller's text: its buffer cannot be reused while kept here
        QVariant value;
        quint64 revision = 0;
    };
    static constexpr std::size_t answerSlots = 1024;
    mutable std::array<Answer, answerSlots> answers;
    quint64 revision = 1; // counts changes; older answers are stale
};
