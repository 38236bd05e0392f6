#include "choicegroup.h"

#include <settingssynchronizer.h>

#include <iterator>

namespace {

// In the order of the keys, which is the order in which the plug-in looks.
constexpr ChoiceGroup::Member delimiters[] = {
    {"useCommaDelimiter", ",", {"comma"}},         {"useOtherDelimiter", nullptr, {}},
    {"useSemiColonDelimiter", ";", {"semicolon"}}, {"useSpaceDelimiter", " ", {"space"}},
    {"useTabDelimiter", "\t", {"tab", "\\t"}},
};

constexpr ChoiceGroup::Member emptyFieldTexts[] = {
    {"insertNan", "NaN", {}},
    {"insertNothing", "", {"nothing"}},
    {"insertOtherPlaceholder", nullptr, {}},
    {"insertZero", "0", {}},
};

bool names(const ChoiceGroup::Member &member, const QString &text)
{
    if (member.text && text == QLatin1String(member.text))
        return true;
    for (const char *word : member.words) {
        if (word && text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

// @p text as a message shows it: quoted, with C escapes for control
// characters and cut short when long, or named when it cannot be seen.
QString shown(const QString &text)
{
    if (text.isEmpty())
        return ChoiceGroup::tr("nothing");
    if (text == QLatin1String("\t"))
        return ChoiceGroup::tr("a tab");
    if (text == QLatin1String(" "))
        return ChoiceGroup::tr("a blank");
    // Not cut between the halves of a surrogate pair.
    int longest = 40;
    if (text.size() > longest && text.at(longest - 1).isHighSurrogate())
        --longest;
    QString quoted = QStringLiteral("\"");
    for (const QChar c : text.left(longest)) {
        if (c == QLatin1Char('\n'))
            quoted += QLatin1String("\\n");
        else if (c == QLatin1Char('\r'))
            quoted += QLatin1String("\\r");
        else if (c == QLatin1Char('\t'))
            quoted += QLatin1String("\\t");
        else if (c.unicode() < 0x20 || c.unicode() == 0x7f)
            quoted += QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'));
        else
            quoted += c;
    }
    quoted += QLatin1Char('"');
    if (text.size() > longest)
        quoted = ChoiceGroup::tr("%1... (%n characters)", nullptr, text.size()).arg(quoted);
    return quoted;
}

} // namespace

const ChoiceGroup &ChoiceGroup::delimiter()
{
    static const ChoiceGroup group{
        delimiters, int(std::size(delimiters)), "otherDelimiter",
        QT_TRANSLATE_NOOP("ChoiceGroup", "the plug-in uses %1 between fields")};
    return group;
}

const ChoiceGroup &ChoiceGroup::emptyField()
{
    static const ChoiceGroup group{
        emptyFieldTexts, int(std::size(emptyFieldTexts)), "otherPlaceholder",
        QT_TRANSLATE_NOOP("ChoiceGroup", "the plug-in writes %1 into empty fields")};
    return group;
}

QStringList ChoiceGroup::keys() const
{
    QStringList keys;
    for (int i = 0; i < memberCount; ++i)
        keys.append(QLatin1String(members[i].key));
    keys.append(QLatin1String(textKey));
    return keys;
}

void ChoiceGroup::choose(const QString &text, SettingsSynchronizer *store) const
{
    int chosen = -1;
    for (int i = 0; i < memberCount && chosen < 0; ++i) {
        if (names(members[i], text))
            chosen = i;
    }
    for (int i = 0; i < memberCount && chosen < 0; ++i) {
        if (!members[i].text) {
            chosen = i;
            store->setSetting(QLatin1String(textKey), text);
        }
    }
    for (int i = 0; i < memberCount; ++i)
        store->setSetting(QLatin1String(members[i].key), i == chosen);
}

QString ChoiceGroup::writtenText(const SettingsSynchronizer *store) const
{
    for (int i = 0; i < memberCount; ++i) {
        if (!store->setting(QLatin1String(members[i].key)).toBool())
            continue;
        return members[i].text ? QString::fromLatin1(members[i].text)
                               : store->setting(QLatin1String(textKey)).toString();
    }
    // what the plug-in writes when no member is on
    return QStringLiteral("\t");
}

QString ChoiceGroup::contradiction(const SettingsSynchronizer *store) const
{
    QStringList on;
    QStringList all;
    for (int i = 0; i < memberCount; ++i) {
        const QString key = QLatin1String(members[i].key);
        all.append(key);
        if (store->setting(key).toBool())
            on.append(key);
    }
    if (on.size() == 1)
        return QString();
    const QString result = tr(usage).arg(shown(writtenText(store)));
    if (on.isEmpty()) {
        return tr("none of %1 and %2 is on: %3")
            .arg(all.mid(0, all.size() - 1).join(QStringLiteral(", ")), all.last(), result);
    }
    const QString first = on.mid(0, on.size() - 1).join(QStringLiteral(", "));
    const QString which = on.size() == 2 ? tr("%1 and %2 are both on").arg(first, on.last())
                                         : tr("%1 and %2 are all on").arg(first, on.last());
    return tr("%1: %2 (%3 wins)").arg(which, result, on.first());
}
