#pragma once

#include <QtGlobal>

class IAsciiDelimiter;

/**
 * Shares one delimiter object among copies. The count is a plain integer:
 * handles to one object stay on one thread. The last handle released deletes
 * the object.
 */
class DelimiterHandle
{
public:
    /** An empty handle. */
    DelimiterHandle() = default;
    /**
     * Takes ownership of @p delimiter (which may be null) with a count of 1;
     * deletes it when the handle's record cannot be allocated.
     */
    explicit DelimiterHandle(IAsciiDelimiter *delimiter);
    DelimiterHandle(const DelimiterHandle &other);
    DelimiterHandle(DelimiterHandle &&other) noexcept;
    DelimiterHandle &operator=(const DelimiterHandle &other);
    DelimiterHandle &operator=(DelimiterHandle &&other) noexcept;
    ~DelimiterHandle();

    bool isNull() const { return !record; }
    IAsciiDelimiter *get() const { return record ? record->delimiter : nullptr; }
    IAsciiDelimiter *operator->() const { return get(); }
    IAsciiDelimiter &operator*() const { return *get(); }

    /** How many handles share the object; 0 for an empty handle. */
    quint32 useCount() const { return record ? record->count : 0; }

    /** Lets go of the object, deleting it when this was the last handle. */
    void release();

private:
    struct Record
    {
        IAsciiDelimiter *delimiter;
        quint32 count;
    };

    Record *record = nullptr;
};
