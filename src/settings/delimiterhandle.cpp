#include "delimiterhandle.h"

#include "iasciidelimiter.h"

DelimiterHandle::DelimiterHandle(IAsciiDelimiter *delimiter)
{
    try {
        record = new Record{delimiter, 1};
    } catch (...) {
        // The object is the handle's from the start: without a record to
        // hold it, it goes with the exception.
        delete delimiter;
        throw;
    }
}

DelimiterHandle::DelimiterHandle(const DelimiterHandle &other)
    : record(other.record)
{
    if (record)
        ++record->count;
}

DelimiterHandle::DelimiterHandle(DelimiterHandle &&other) noexcept
    : record(other.record)
{
    other.record = nullptr;
}

// The count goes up before the release, so assigning a handle to itself
// keeps its record. NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
DelimiterHandle &DelimiterHandle::operator=(const DelimiterHandle &other)
{
    Record *shared = other.record;
    if (shared)
        ++shared->count;
    release();
    record = shared;
    return *this;
}

DelimiterHandle &DelimiterHandle::operator=(DelimiterHandle &&other) noexcept
{
    if (this != &other) {
        release();
        record = other.record;
        other.record = nullptr;
    }
    return *this;
}

DelimiterHandle::~DelimiterHandle()
{
    release();
}

void DelimiterHandle::release()
{
    if (!record)
        return;
    if (--record->count == 0) {
        delete record->delimiter;
        delete record;
    }
    record = nullptr;
}
