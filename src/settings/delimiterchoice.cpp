#include "delimiterchoice.h"

#include "asciistringdelimiter.h"
#include "asciistringdelimiterbysetting.h"
#include "settingkeys.h"

#include <settingssynchronizer.h>

namespace {

/** A choice as constant data: a fixed text, or the key of the setting that holds the text. */
struct ChoiceRow
{
    const char *key;
    DelimiterChoice::Create create;
    const char *argument;
};

constexpr ChoiceRow fieldDelimiters[] = {
    {SettingKeys::useCommaDelimiter, createStringDelimiter, ","},
    {SettingKeys::useOtherDelimiter, createDelimiterBySetting, SettingKeys::otherDelimiter},
    {SettingKeys::useSemiColonDelimiter, createStringDelimiter, ";"},
    {SettingKeys::useSpaceDelimiter, createStringDelimiter, " "},
    {SettingKeys::useTabDelimiter, createStringDelimiter, "\t"},
};

constexpr ChoiceRow emptyFieldTexts[] = {
    {SettingKeys::insertNan, createStringDelimiter, "NaN"},
    {SettingKeys::insertNothing, createStringDelimiter, ""},
    {SettingKeys::insertOtherPlaceholder, createDelimiterBySetting, SettingKeys::otherPlaceholder},
    {SettingKeys::insertZero, createStringDelimiter, "0"},
};

// The rows keyed for chooseBySetting(), which walks them in key order
// whatever their order here.
template <std::size_t N>
DelimiterChoiceTable choiceTable(const ChoiceRow (&rows)[N], SettingsSynchronizer *settings)
{
    DelimiterChoiceTable choices;
    for (const ChoiceRow &row : rows)
        choices.insert(QString::fromLatin1(row.key),
                       {row.create, QString::fromLatin1(row.argument), settings});
    return choices;
}

} // namespace

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
    for (auto it = choices.cbegin(); it != choices.cend(); ++it) {
        if (settings->setting(it.key()).toBool()) {
            IAsciiDelimiter *chosen = it->create(it->argument, it->settings);
            return chosen ? DelimiterHandle(chosen) : DelimiterHandle();
        }
    }
    // With no choice set, both groups fall back to a tab.
    return DelimiterHandle(new AsciiStringDelimiter(QStringLiteral("\t")));
}

DelimiterHandle makeDelimiter(SettingsSynchronizer *settings)
{
    return chooseBySetting(settings, choiceTable(fieldDelimiters, settings));
}

DelimiterHandle makeEmptyFieldText(SettingsSynchronizer *settings)
{
    return chooseBySetting(settings, choiceTable(emptyFieldTexts, settings));
}
