#pragma once

#include "asciistringdelimiter.h"

#include <QVariant>

class SettingsSynchronizer;

/**
 * A delimiter whose text is a setting, read once when the object is made: a
 * later change of the setting does not reach an existing object.
 */
class AsciiStringDelimiterBySetting : public AsciiStringDelimiter
{
public:
    AsciiStringDelimiterBySetting(SettingsSynchronizer *settings, const QVariant &key);
    ~AsciiStringDelimiterBySetting() override;
};
