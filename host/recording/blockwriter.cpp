#include "blockwriter.h"

#include <QFileDevice>
#include <QIODevice>

namespace {

constexpr std::size_t blockSize = 1 << 20;

} // namespace

BlockWriter::BlockWriter(QIODevice *out)
    : out(out)
{ }

bool BlockWriter::append(std::string_view bytes)
{
    if (!error.isEmpty())
        return false;
    block += bytes;
    return block.size() < blockSize || writeBlock();
}

bool BlockWriter::appendLine(std::string_view line)
{
    if (!error.isEmpty())
        return false;
    block += line;
    block += '\n';
    return block.size() < blockSize || writeBlock();
}

bool BlockWriter::finish()
{
    if (!error.isEmpty() || (!block.empty() && !writeBlock()))
        return false;
    auto *file = qobject_cast<QFileDevice *>(out);
    return !file || file->flush() || fail();
}

QString BlockWriter::errorString() const
{
    return error;
}

bool BlockWriter::writeBlock()
{
    if (out->write(block.data(), qint64(block.size())) != qint64(block.size()))
        return fail();
    block.clear();
    return true;
}

bool BlockWriter::fail()
{
    error = tr("cannot write the recording: %1").arg(out->errorString());
    return false;
}
