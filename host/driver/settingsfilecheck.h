#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QStringList>

/**
 * What a settings file holds that the plug-in does not read. The settings
 * store reads the INI file through QSettings, which takes whatever it finds
 * without a word: a misspelt key, a key in a section of its own, a line
 * that is no setting at all. This reads the file's lines as QSettings does
 * and names each of those, so that the user learns why a setting does not
 * take. Whether a value fits its key is the store's to say.
 */
class SettingsFileCheck
{
    Q_DECLARE_TR_FUNCTIONS(SettingsFileCheck)

public:
    /**
     * The findings in @p contents, the INI text of @p fileName, for a
     * plug-in that knows the keys @p known: one text each, beginning with
     * "FILE:LINE: ", in the order of the lines. A file that is not text
     * gives one finding for the whole file.
     */
    static QStringList findings(const QString &fileName, const QByteArray &contents,
                                const QStringList &known);
};
