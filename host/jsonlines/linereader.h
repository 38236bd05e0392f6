#pragma once

#include <QCoreApplication>
#include <QString>

#include <string>
#include <string_view>
#include <vector>

class QIODevice;

/**
 * Splits what a device delivers into lines, reading it in large blocks. It
 * reads until the device has no more to give, so pipes and terminals work as
 * well as files. A line longer than the limit is refused before it is held
 * whole; reading then goes on after its end.
 *
 * Lines are handed out where they stand in the block whenever they can be,
 * so most lines are never copied. At least `padding` readable bytes follow
 * every line, for parsers that read ahead in wide steps.
 */
class LineReader
{
    Q_DECLARE_TR_FUNCTIONS(LineReader)

public:
    /**
     * Longer lines are refused. A sample takes a few kilobytes; the limit
     * bounds what one line may cost to parse, some twenty times its size.
     */
    static constexpr std::size_t maxLineLength = 4 * 1024 * 1024;
    /** Readable bytes after the end of every line. */
    static constexpr std::size_t padding = 64;

    enum class Status {
        Line, ///< a line was read: line() holds it
        End, ///< the device has no more
        TooLong, ///< the line is longer than maxLineLength; the next call goes on after it
        Failed ///< the device failed; errorString() says why
    };

    /** Reads from @p device, which must be open and must outlive the reader. */
    explicit LineReader(QIODevice *device);

    /** Reads the next line; the last line of the device need not end in a line feed. */
    Status next();

    /** The line read last, without its line feed; valid until the next call of next(). */
    std::string_view line() const { return current; }
    /** The number of the line read last, counted from 1. */
    qint64 lineNumber() const { return lines; }
    /** The bytes taken up as lines so far. */
    qint64 position() const { return taken - qint64(end - begin); }
    QString errorString() const { return error; }

private:
    bool fill();
    bool skipLine();
    Status assemble();

    QIODevice *device;
    std::vector<char> block;
    std::size_t begin = 0;
    std::size_t end = 0;
    // A line that spans blocks, gathered with padding after it.
    std::string spanning;
    std::string_view current;
    qint64 taken = 0;
    qint64 lines = 0;
    bool skipping = false;
    bool failed = false;
    QString error;
};
