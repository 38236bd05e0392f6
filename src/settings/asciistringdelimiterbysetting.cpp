#include "asciistringdelimiterbysetting.h"

#include <settingssynchronizer.h>

AsciiStringDelimiterBySetting::AsciiStringDelimiterBySetting(SettingsSynchronizer *settings,
                                                             const QVariant &key)
    : AsciiStringDelimiter(settings->setting(key.toString()).toString())
{ }

AsciiStringDelimiterBySetting::~AsciiStringDelimiterBySetting() = default;
