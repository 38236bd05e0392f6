#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

class SettingsSynchronizer;

/**
 * A group of boolean settings that act as one choice: the field delimiter
 * (useCommaDelimiter, useOtherDelimiter with otherDelimiter,
 * useSemiColonDelimiter, useSpaceDelimiter, useTabDelimiter) or the text of
 * empty fields (insertNan, insertNothing, insertOtherPlaceholder with
 * otherPlaceholder, insertZero).
 *
 * The options page keeps exactly one member of a group on. The plug-in
 * takes the first member that is on in the order of the keys, and writes a
 * tab when none is; so a store that breaks the rule exports all the same,
 * in a way the user cannot see. This puts a choice into a store as the
 * options page does, and says what the plug-in makes of a group as stored.
 */
class ChoiceGroup
{
    Q_DECLARE_TR_FUNCTIONS(ChoiceGroup)

public:
    /** One boolean setting of a group. */
    struct Member
    {
        const char *key;
        /** What the plug-in writes when it takes this member; null: the group's text setting. */
        const char *text;
        /** Words that name it on the command line besides the text, in any case; null ends. */
        const char *words[3];
    };

    static const ChoiceGroup &delimiter();
    static const ChoiceGroup &emptyField();

    /** The group's keys: its booleans in the plug-in's order, then its text setting. */
    QStringList keys() const;

    /**
     * Switches on the member that @p text names (its text or one of its
     * words), or else the member of the group's own text, which takes
     * @p text; switches the other members off.
     */
    void choose(const QString &text, SettingsSynchronizer *store) const;

    /** The text the plug-in writes with the settings of @p store. */
    QString writtenText(const SettingsSynchronizer *store) const;

    /**
     * What the plug-in makes of a group in @p store of which several
     * members or none are on, or an empty text when exactly one is.
     */
    QString contradiction(const SettingsSynchronizer *store) const;

    const Member *const members;
    const int memberCount;
    /** The setting that holds the user's own text. */
    const char *const textKey;
    /** The sentence of what the plug-in does with a text, for contradiction(). */
    const char *const usage;
};
