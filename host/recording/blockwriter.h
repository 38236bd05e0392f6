#pragma once

#include <QCoreApplication>
#include <QString>

#include <string>
#include <string_view>

class QIODevice;

/**
 * Writes a recording to a device in blocks of 1 MiB, so that a long one
 * costs few writes, and says why the first write that failed did:
 * "cannot write the recording: REASON". Nothing is written after a failure.
 */
class BlockWriter
{
    Q_DECLARE_TR_FUNCTIONS(BlockWriter)

public:
    /** Writes to @p out, which must be open for writing and outlive the writer. */
    explicit BlockWriter(QIODevice *out);

    /** Adds @p bytes, and writes the block once it is full. False after a failure. */
    bool append(std::string_view bytes);
    /** Adds @p line and a line break. */
    bool appendLine(std::string_view line);
    /**
     * Writes the rest and flushes a file, which holds the last bytes in a
     * buffer of its own: a full disk shows only then. False after a failure.
     */
    bool finish();

    /** Why writing failed. */
    QString errorString() const;

private:
    bool writeBlock();
    bool fail();

    QIODevice *out;
    std::string block;
    QString error;
};
