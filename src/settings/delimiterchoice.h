#pragma once

#include "delimiterhandle.h"

#include <QMap>
#include <QString>
#include <QVariant>

class IAsciiDelimiter;
class SettingsSynchronizer;

/**
 * One way to make a delimiter, chosen when the boolean setting it is filed
 * under is true: a creation function with its argument (a fixed text, or the
 * key of the setting that holds the text) and the store to read from.
 */
struct DelimiterChoice
{
    using Create = IAsciiDelimiter *(*)(const QVariant &argument, SettingsSynchronizer *settings);

    Create create = nullptr;
    QVariant argument = 0;
    SettingsSynchronizer *settings = nullptr;
};

/** Choices by boolean setting key; the key order is the priority order. */
using DelimiterChoiceTable = QMap<QString, DelimiterChoice>;

/** An AsciiStringDelimiter writing @p argument. */
IAsciiDelimiter *createStringDelimiter(const QVariant &argument, SettingsSynchronizer *settings);

/** An AsciiStringDelimiterBySetting writing the setting named by @p argument. */
IAsciiDelimiter *createDelimiterBySetting(const QVariant &argument, SettingsSynchronizer *settings);

/**
 * Makes the delimiter of the first key of @p choices, in key order, whose
 * setting is true; a tab when none is.
 */
DelimiterHandle chooseBySetting(SettingsSynchronizer *settings,
                                const DelimiterChoiceTable &choices);

/** The field delimiter the settings ask for. */
DelimiterHandle makeDelimiter(SettingsSynchronizer *settings);

/** The text the settings ask for in empty fields. */
DelimiterHandle makeEmptyFieldText(SettingsSynchronizer *settings);
