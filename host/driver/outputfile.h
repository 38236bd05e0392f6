#pragma once

#include <QCoreApplication>
#include <QString>

#include <memory>

class QFileDevice;

/**
 * The file that one export or one generated recording is written to.
 *
 * A regular file, or one that does not exist yet, is written under no name
 * and takes its name only in commit(): a failed run keeps an older file of
 * that name and leaves no partial one. A pipe or a device is written
 * directly and never replaced. "-" is standard output; a name of an open
 * descriptor of this process (/dev/stdout, /dev/fd/N, /proc/self/fd/N, or a
 * link that leads to one) is written through that descriptor, as the shell
 * opened it, whatever file lies behind it.
 *
 * Writes go straight to the system and a partial write is carried on, so
 * the first failure (a full disk, a file size limit, a closed pipe) is never
 * lost between buffers; errorString() then gives the system's reason.
 */
class OutputFile
{
    Q_DECLARE_TR_FUNCTIONS(OutputFile)

public:
    explicit OutputFile(const QString &fileName);
    ~OutputFile();

    /** The device to open and write; the output file takes its name in commit(). */
    QFileDevice *device() const;
    /**
     * Puts the file in place once everything is written. Returns false after
     * any failure to open or write; errorString() then tells why.
     */
    bool commit();
    /** The system's reason for the first failure, such as "No space left on device". */
    QString errorString() const;
    /** Whether writing failed because the reader of a pipe went away. */
    bool readerWentAway() const;

    /** The name that stands for standard output. */
    static QString standardOutputName();

private:
    class Device;
    template <class File>
    class Checked;

    QString fileName;
    std::unique_ptr<QFileDevice> file;
    QString error;
};
