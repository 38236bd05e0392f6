#include "delimiterchoice.h"

#include "asciistringdelimiter.h"
#include "asciistringdelimiterbysetting.h"

#include <settingssynchronizer.h>

IAsciiDelimiter *createStringDelimiter(const QVariant &argument, SettingsSynchronizer *)
{
    return new AsciiStringDelimiter(argument.toString());
}

IAsciiDelimiter *createDelimiterBySetting(const QVariant &argument, SettingsSynchronizer *settings)
{
    return new AsciiStringDelimiterBySetting(settings, argument);
}

DelimiterHandle chooseBySetting(SettingsSynchronizer *settings, const DelimiterChoiceTable &choices)
{
    IAsciiDelimiter *chosen = nullptr;
    bool found = false;
    for (auto it = choices.cbegin(); it != choices.cend(); ++it) {
        if (settings->setting(it.key()).toBool()) {
            chosen = it->create(it->argument, it->settings);
            found = true;
            break;
        }
    }
    // With no choice set, both groups fall back to a tab.
    if (!found)
        chosen = new AsciiStringDelimiter(QVariant(QStringLiteral("\t")).toString());
    return chosen ? DelimiterHandle(chosen) : DelimiterHandle();
}

DelimiterHandle makeDelimiter(SettingsSynchronizer *settings)
{
    DelimiterChoiceTable choices;
    choices.insert(QStringLiteral("useCommaDelimiter"),
                   {createStringDelimiter, QStringLiteral(","), settings});
    choices.insert(QStringLiteral("useOtherDelimiter"),
                   {createDelimiterBySetting, QStringLiteral("otherDelimiter"), settings});
    choices.insert(QStringLiteral("useSemiColonDelimiter"),
                   {createStringDelimiter, QStringLiteral(";"), settings});
    choices.insert(QStringLiteral("useSpaceDelimiter"),
                   {createStringDelimiter, QStringLiteral(" "), settings});
    choices.insert(QStringLiteral("useTabDelimiter"),
                   {createStringDelimiter, QStringLiteral("\t"), settings});
    return chooseBySetting(settings, choices);
}

DelimiterHandle makeEmptyFieldText(SettingsSynchronizer *settings)
{
    DelimiterChoiceTable choices;
    choices.insert(QStringLiteral("insertNan"),
                   {createStringDelimiter, QStringLiteral("NaN"), settings});
    choices.insert(QStringLiteral("insertNothing"),
                   {createStringDelimiter, QStringLiteral(""), settings});
    choices.insert(QStringLiteral("insertOtherPlaceholder"),
                   {createDelimiterBySetting, QStringLiteral("otherPlaceholder"), settings});
    choices.insert(QStringLiteral("insertZero"),
                   {createStringDelimiter, QStringLiteral("0"), settings});
    return chooseBySetting(settings, choices);
}
