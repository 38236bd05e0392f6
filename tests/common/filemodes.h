#pragma once

#include <QString>
#include <QStringList>

namespace FileModes {

/** What the modes of files and folders must refuse the program. */
enum class Refused {
    /** Writing only: the program still reads every file and enters every folder. */
    Writing,
    /**
     * Reading and entering folders too: the program reaches a file only
     * through folders it may enter, so a test in a folder that only its
     * owner may enter starts it there and names the files relative to it.
     */
    ReadingAndWriting,
};

/**
 * Makes @p command and @p arguments run the program so that the modes of
 * files and folders refuse it what @p refused says. Root passes over them,
 * so as root the program runs through setpriv without those powers
 * (cap_dac_override, and for reading cap_dac_read_search); it stays root
 * and can be started from any folder. Returns false, with @p why set, when
 * that cannot be done here.
 */
bool obeyed(Refused refused, QString *command, QStringList *arguments, QString *why);

} // namespace FileModes
