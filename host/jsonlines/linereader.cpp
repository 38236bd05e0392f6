#include "linereader.h"

#include <QIODevice>

#include <cstring>

namespace {

constexpr std::size_t blockSize = 1024 * 1024;
// A line found whole in one block is never too long.
static_assert(blockSize <= LineReader::maxLineLength);

} // namespace

LineReader::LineReader(QIODevice *device)
    : device(device)
    , block(blockSize + padding)
{ }

LineReader::Status LineReader::next()
{
    current = {};
    if (skipping && !skipLine())
        return failed ? Status::Failed : Status::End;
    if (begin == end && !fill())
        return failed ? Status::Failed : Status::End;
    ++lines;
    const char *const first = block.data() + begin;
    const auto *lineFeed = static_cast<const char *>(std::memchr(first, '\n', end - begin));
    if (!lineFeed)
        return assemble();
    const std::size_t length = std::size_t(lineFeed - first);
    current = std::string_view(first, length);
    begin += length + 1;
    return Status::Line;
}

// Gathers a line that goes on in the next blocks.
LineReader::Status LineReader::assemble()
{
    spanning.clear();
    for (;;) {
        const char *const first = block.data() + begin;
        const auto *lineFeed = static_cast<const char *>(std::memchr(first, '\n', end - begin));
        const std::size_t length = lineFeed ? std::size_t(lineFeed - first) : end - begin;
        if (spanning.size() + length > maxLineLength) {
            // What is left of the line is passed over by the next call.
            begin += length;
            skipping = true;
            return Status::TooLong;
        }
        spanning.append(first, length);
        begin += length;
        if (lineFeed) {
            ++begin;
            break;
        }
        if (!fill()) {
            if (failed)
                return Status::Failed;
            break;
        }
    }
    const std::size_t length = spanning.size();
    spanning.append(padding, '\0');
    current = std::string_view(spanning.data(), length);
    return Status::Line;
}

// Reads the next block; false at the end of the device and when it fails.
bool LineReader::fill()
{
    begin = 0;
    end = 0;
    const qint64 count = device->read(block.data(), qint64(blockSize));
    if (count < 0) {
        failed = true;
        error = tr("cannot be read: %1").arg(device->errorString());
        return false;
    }
    end = std::size_t(count);
    taken += count;
    // What follows the data is read ahead by parsers but never used.
    std::memset(block.data() + end, 0, padding);
    return count > 0;
}

// Passes over the rest of a line that was too long; false when no line
// follows it.
bool LineReader::skipLine()
{
    for (;;) {
        const char *const first = block.data() + begin;
        if (const void *lineFeed = std::memchr(first, '\n', end - begin)) {
            begin += std::size_t(static_cast<const char *>(lineFeed) - first) + 1;
            skipping = false;
            return true;
        }
        if (!fill())
            return false;
    }
}
