#include "readahead.h"

#include <system_error>

ReadAhead::ReadAhead(AbstractRecordingReader *reader)
    : reader(reader)
    , recordingProperties(reader->properties())
    , rate(reader->updateRate())
    , recordingSize(reader->size())
    , shownPosition(reader->position())
{ }

ReadAhead::~ReadAhead()
{
    stop();
}

// The thread: fills the batches in turn, each once the caller has given it
// back, until the reader stops; at a bad line it waits for the caller's word.
void ReadAhead::read()
{
    for (qint64 next = 0;; ++next) {
        Batch &batch = batches[std::size_t(next % batchCount)];
        {
            std::unique_lock<std::mutex> guard(lock);
            changed.wait(guard, [&] { return stopping || next - released < batchCount; });
            if (stopping)
                return;
        }
        // The caller does not look at this batch until it is counted filled.
        const bool more = fill(batch);
        {
            std::unique_lock<std::mutex> guard(lock);
            filled = next + 1;
            changed.notify_all();
            if (more)
                continue;
            if (!batch.badLine)
                return;
            changed.wait(guard, [&] { return stopping || skip; });
            if (stopping)
                return;
            skip = false;
        }
        reader->skipBadLine();
    }
}

// Answers whether the reader has more to give.
bool ReadAhead::fill(Batch &batch)
{
    if (batch.samples.empty()) {
        batch.samples.resize(batchSize);
        batch.positions.resize(batchSize);
    }
    batch.count = 0;
    while (batch.count < batchSize) {
        if (!reader->readNext()) {
            batch.last = true;
            batch.failed = reader->hasError();
            batch.error = reader->errorString();
            batch.badLine = reader->hasBadLine();
            batch.endPosition = reader->position();
            return false;
        }
        batch.samples[std::size_t(batch.count)] = reader->sample();
        batch.positions[std::size_t(batch.count)] = reader->position();
        ++batch.count;
    }
    batch.last = false;
    return true;
}

bool ReadAhead::readsAhead() const
{
    return threaded;
}

bool ReadAhead::readNext()
{
    if (failed || ended || stopping)
        return false;
    if (!started)
        start();
    for (;;) {
        if (current) {
            if (++index < current->count) {
                shown = &current->samples[std::size_t(index)];
                shownPosition = current->positions[std::size_t(index)];
                return true;
            }
            if (current->last) {
                failed = current->failed;
                error = current->error;
                badLine = current->badLine;
                ended = !failed;
                shownPosition = current->endPosition;
                return false;
            }
            release();
        }
        // Without a thread one batch will do.
        Batch &next = batches[threaded ? std::size_t(released % batchCount) : 0];
        if (threaded) {
            std::unique_lock<std::mutex> guard(lock);
            changed.wait(guard, [&] { return stopping || filled > released; });
            if (stopping)
                return false;
        } else {
            fill(next);
        }
        current = &next;
        index = -1;
    }
}

void ReadAhead::start()
{
    started = true;
    try {
        thread = std::thread(&ReadAhead::read, this);
        threaded = true;
    } catch (const std::system_error &) {
        // Too little memory for a thread's stack, or too many threads: the
        // batches are read in the caller's thread.
    }
}

// Gives the current batch back to the thread, keeping the sample shown.
void ReadAhead::release()
{
    if (shown != &none && shown != &held) {
        held = *shown;
        shown = &held;
    }
    current = nullptr;
    std::lock_guard<std::mutex> guard(lock);
    ++released;
    changed.notify_all();
}

bool ReadAhead::hasError() const
{
    return failed;
}

QString ReadAhead::errorString() const
{
    return error;
}

bool ReadAhead::hasBadLine() const
{
    return badLine;
}

void ReadAhead::skipBadLine()
{
    if (!badLine)
        return;
    failed = false;
    badLine = false;
    error.clear();
    if (threaded) {
        std::lock_guard<std::mutex> guard(lock);
        skip = true;
    } else {
        reader->skipBadLine();
    }
    release();
}

QVariant ReadAhead::property(const QString &key) const
{
    return recordingProperties.value(key);
}

QVariantMap ReadAhead::properties() const
{
    return recordingProperties;
}

double ReadAhead::updateRate() const
{
    return rate;
}

const RecordingSample &ReadAhead::sample() const
{
    return *shown;
}

qint64 ReadAhead::position() const
{
    return shownPosition;
}

qint64 ReadAhead::size() const
{
    return recordingSize;
}

void ReadAhead::finish()
{
    stop();
    notice = reader->readingNotice();
}

QString ReadAhead::readingNotice() const
{
    return notice;
}

void ReadAhead::stop()
{
    {
        std::lock_guard<std::mutex> guard(lock);
        stopping = true;
    }
    changed.notify_all();
    if (thread.joinable())
        thread.join();
}
