#pragma once

#include "recordfields.h"

#include <kvquaternion.h>

#include <QString>

#include <string>
#include <string_view>
#include <vector>

/**
 * One JSON object on one line, written compactly, as the recording format
 * wants it. Keys are literals of our own, which need no escapes.
 */
class JsonLineWriter
{
public:
    void clear();
    const std::string &data() const { return text; }

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginList() { open('['); }
    void endList() { close(']'); }

    void key(const char *name);
    void integer(qint64 value);
    /**
     * @p value rounded to @p decimals, in the shortest text that reads back
     * as exactly the rounded double.
     */
    void number(double value, int decimals);
    /** The shortest text that reads back as exactly @p value, which must be finite. */
    void exactNumber(double value);
    void numbers(const double *values, int count, int decimals);
    void quaternion(const KvQuaternion &q, int decimals);
    void string(const QString &value);
    void boolean(bool value);

    template <typename Record, std::size_t count>
    void fields(const RecordFields::Field<Record> (&table)[count], const Record &record)
    {
        for (const RecordFields::Field<Record> &field : table) {
            key(field.name.data());
            integer(field.load(record));
        }
    }

    template <typename Record, std::size_t count>
    void record(const RecordFields::Field<Record> (&table)[count], const Record &value)
    {
        beginObject();
        fields(table, value);
        endObject();
    }

    template <typename Record, std::size_t count, typename Entry, std::size_t entryCount,
              std::size_t capacity>
    void listRecord(const RecordFields::Field<Record> (&table)[count], const Record &value,
                    std::string_view listName,
                    const RecordFields::Field<Entry> (&entryTable)[entryCount],
                    const Entry (&entries)[capacity], int used)
    {
        beginObject();
        fields(table, value);
        key(listName.data());
        beginList();
        for (int i = 0; i < used; ++i)
            record(entryTable, entries[i]);
        endList();
        endObject();
    }

private:
    void open(char bracket);
    void close(char bracket);
    void separate();
    void beforeValue();

    std::string text;
    std::vector<bool> firstInLevel;
    bool afterKey = false;
};
