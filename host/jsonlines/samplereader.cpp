#include "samplereader.h"

#include "ondemandfieldreader.h"
#include "recordfields.h"

#include <iterator>
#include <limits>
#include <string_view>
#include <type_traits>

static_assert(SampleReader::padding >= simdjson::SIMDJSON_PADDING,
              "simdjson reads that far beyond a line");

namespace {

using S = RecordingSample;

template <typename In>
using ValueOf = typename In::Value;

// Finds @p key in a table of named entries, trying @p hint first: the
// writers of recordings keep their keys in one order, so the entry after the
// last one found is nearly always the next one asked for.
template <typename In, typename Entry, std::size_t count>
std::size_t find(const Entry (&table)[count], const typename In::Key &key, std::size_t hint)
{
    if (hint < count && In::equals(key, table[hint].name))
        return hint;
    for (std::size_t i = 0; i < count; ++i) {
        if (In::equals(key, table[i].name))
            return i;
    }
    return count;
}

// Reads the integer members named in @p table into @p record. A missing or
// null member stays 0; members of other names go to @p other.
template <typename In, typename Record, std::size_t count, typename Other>
bool readFields(ValueOf<In> &value, const KeyPath &path,
                const RecordFields::Field<Record> (&table)[count], Record &record, In &in,
                Other other)
{
    bool seen[count] = {};
    std::size_t next = 0;
    return in.object(value, path, [&](const typename In::Key &key, ValueOf<In> &member) {
        const std::size_t index = find<In>(table, key, next);
        if (index == count)
            return other(key, member);
        next = index + 1;
        const RecordFields::Field<Record> &field = table[index];
        const KeyPath fieldPath = path.member(field.name.data());
        if (seen[index])
            return in.duplicate(fieldPath);
        seen[index] = true;
        if (In::isNull(member))
            return true;
        qint64 number = 0;
        if (!in.integer(member, fieldPath, field.minimum, field.maximum, &number))
            return false;
        field.store(record, number);
        return true;
    });
}

template <typename In, typename Record, std::size_t count>
bool readFields(ValueOf<In> &value, const KeyPath &path,
                const RecordFields::Field<Record> (&table)[count], Record &record, In &in)
{
    return readFields(value, path, table, record, in,
                      [&in](const typename In::Key &key, ValueOf<In> &member) {
                          return in.unknown(key, member);
                      });
}

const RecordingSample &blankSample()
{
    static const RecordingSample blank;
    return blank;
}

template <auto member>
void resetMember(RecordingSample &sample)
{
    sample.*member = blankSample().*member;
}

template <auto member>
using MemberType = typename RecordMember::Of<decltype(member)>::MemberType;

// The readers of the sample keys. Each reads its key's value through the
// field reader In and can set its data back to "missing".

template <auto member>
struct IntegerKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        using Type = MemberType<member>;
        qint64 number = 0;
        if (!in.integer(value, path, std::numeric_limits<Type>::min(),
                        std::numeric_limits<Type>::max(), &number))
            return false;
        sample.*member = Type(number);
        return true;
    }
    static void reset(S &sample) { resetMember<member>(sample); }
};

struct SampleTimeFineKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        if (!IntegerKey<&S::sampleTimeFine>::read(value, path, sample, in))
            return false;
        sample.hasSampleTimeFine = true;
        return true;
    }
    static void reset(S &sample)
    {
        resetMember<&S::sampleTimeFine>(sample);
        sample.hasSampleTimeFine = false;
    }
};

struct SampleDateTimeKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        return in.dateTime(value, path, &sample.sampleDateTime);
    }
    static void reset(S &sample) { resetMember<&S::sampleDateTime>(sample); }
};

// Any integer whose low 32 bits make the word: signed and unsigned writings
// of the same word are both accepted.
struct StatusWordKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        qint64 number = 0;
        if (!in.integer(value, path, std::numeric_limits<qint32>::min(),
                        std::numeric_limits<quint32>::max(), &number))
            return false;
        sample.statusWord = qint32(quint32(number));
        return true;
    }
    static void reset(S &sample) { resetMember<&S::statusWord>(sample); }
};

template <auto member>
struct NumberKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        return in.number(value, path, &(sample.*member));
    }
    static void reset(S &sample) { resetMember<member>(sample); }
};

// A key whose missing value is also a valid one: read by Key, with the
// sample's flag @p held saying whether the line holds it.
template <typename Key, bool S::*held>
struct FlaggedKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        if (!Key::read(value, path, sample, in))
            return false;
        sample.*held = true;
        return true;
    }
    static void reset(S &sample)
    {
        Key::reset(sample);
        sample.*held = false;
    }
};

// The vector of the sample before is overwritten where it stands, so that a
// sample whose keys are those of the one before costs no allocation.
template <auto member, int size>
struct VectorKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        double numbers[size];
        if (!in.numbers(value, path, size, numbers))
            return false;
        KvVector &vector = sample.*member;
        if (vector.size() != size)
            vector = size == 2 ? KvVector{0.0, 0.0} : KvVector{0.0, 0.0, 0.0};
        for (int i = 0; i < size; ++i)
            vector[i] = numbers[i];
        return true;
    }
    static void reset(S &sample) { resetMember<member>(sample); }
};

template <auto member>
struct QuaternionKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        double q[4];
        if (!in.numbers(value, path, 4, q))
            return false;
        sample.*member = KvQuaternion(q[0], q[1], q[2], q[3]);
        return true;
    }
    static void reset(S &sample) { resetMember<member>(sample); }
};

struct OrientationEulerKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        double angles[3];
        if (!in.numbers(value, path, 3, angles))
            return false;
        sample.orientationEuler.roll = angles[0];
        sample.orientationEuler.pitch = angles[1];
        sample.orientationEuler.yaw = angles[2];
        sample.hasOrientationEuler = true;
        return true;
    }
    static void reset(S &sample)
    {
        resetMember<&S::orientationEuler>(sample);
        sample.hasOrientationEuler = false;
    }
};

struct OrientationMatrixKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        double rowMajor[9];
        const auto describe = [] { return SampleReader::tr("a list of 3 rows"); };
        if (!in.list(value, path, 3, describe, [&](ValueOf<In> &row, int index) {
                return in.numbers(row, path.entry(index), 3, rowMajor + 3 * index);
            }))
            return false;
        sample.orientationMatrix = KvMatrix(rowMajor);
        return true;
    }
    static void reset(S &sample) { resetMember<&S::orientationMatrix>(sample); }
};

// Each entry is a 16-bit word, written signed or unsigned.
struct GyroTemperaturesKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        QVector<quint16> &words = sample.gyroTemperatures;
        words.resize(0);
        const auto describe = [] { return SampleReader::tr("a list of integers"); };
        return in.list(value, path, describe, [&](ValueOf<In> &entry, int index) {
            qint64 number = 0;
            if (!in.integer(entry, path.entry(index), std::numeric_limits<qint16>::min(),
                            std::numeric_limits<quint16>::max(), &number))
                return false;
            words.append(quint16(number));
            return true;
        });
    }
    static void reset(S &sample) { resetMember<&S::gyroTemperatures>(sample); }
};

// A receiver record without a time of week holds no data.
template <typename Record>
void dropWithoutTimeOfWeek(Record &record)
{
    if (record.iTOW == 0)
        record = Record();
}

// Records are read where they stand in the sample: a record built apart and
// then copied whole would be read back before its many narrow stores have
// landed, which stalls the processor.
template <auto member, const auto &table, bool receiver>
struct RecordKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        auto &record = sample.*member;
        record = {};
        if (!readFields(value, path, table, record, in))
            return false;
        if constexpr (receiver)
            dropWithoutTimeOfWeek(record);
        return true;
    }
    static void reset(S &sample) { resetMember<member>(sample); }
};

// A satellite record: its integer fields and its list of entries, of which
// those beyond the record's capacity are checked and then dropped.
template <auto member, const auto &table, const std::string_view &listName, auto list,
          const auto &entryTable>
struct SatelliteKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        auto &record = sample.*member;
        record = {};
        auto &entries = record.*list;
        constexpr int capacity = int(std::extent_v<std::remove_reference_t<decltype(entries)>>);
        std::remove_reference_t<decltype(entries[0])> dropped;
        bool listSeen = false;
        const auto readList = [&](const typename In::Key &key, ValueOf<In> &listValue) {
            if (!In::equals(key, listName))
                return in.unknown(key, listValue);
            const KeyPath listPath = path.member(listName.data());
            if (listSeen)
                return in.duplicate(listPath);
            listSeen = true;
            if (In::isNull(listValue))
                return true;
            const auto describe = [] { return TapeFieldReader::tr("a list"); };
            return in.list(listValue, listPath, describe, [&](ValueOf<In> &item, int index) {
                auto &entry = index < capacity ? entries[index] : dropped;
                entry = {};
                return readFields(item, listPath.entry(index), entryTable, entry, in);
            });
        };
        if (!readFields(value, path, table, record, in, readList))
            return false;
        dropWithoutTimeOfWeek(record);
        return true;
    }
    static void reset(S &sample) { resetMember<member>(sample); }
};

template <auto member>
struct TriggerKey
{
    template <typename In>
    static bool read(ValueOf<In> &value, const KeyPath &path, S &sample, In &in)
    {
        KvTriggerIndication &trigger = sample.*member;
        trigger = {};
        if (!readFields(value, path, RecordFields::trigger, trigger, in))
            return false;
        trigger.valid = true;
        return true;
    }
    static void reset(S &sample) { resetMember<member>(sample); }
};

template <typename In>
using ReadFunction = bool (*)(ValueOf<In> &value, const KeyPath &path, S &sample, In &in);

struct SampleKey
{
    std::string_view name;
    ReadFunction<TapeFieldReader> readTape;
    ReadFunction<OnDemandFieldReader> readOnDemand;
    /** Sets the key's data to "missing". */
    void (*reset)(S &sample);

    template <typename In>
    ReadFunction<In> reader() const
    {
        if constexpr (std::is_same_v<In, TapeFieldReader>)
            return readTape;
        else
            return readOnDemand;
    }
};

template <typename Reader>
constexpr SampleKey key(std::string_view name)
{
    return {name, &Reader::template read<TapeFieldReader>,
            &Reader::template read<OnDemandFieldReader>, &Reader::reset};
}

using RecordFields::gnssSatelliteList;
using RecordFields::gpsChannelList;

constexpr SampleKey sampleKeys[] = {
    key<FlaggedKey<IntegerKey<&S::packetCounter>, &S::hasPacketCounter>>("packetCounter"),
    key<SampleTimeFineKey>("sampleTimeFine"),
    key<SampleDateTimeKey>("sampleDateTime"),
    key<RecordKey<&S::utcTime, RecordFields::utcTime, false>>("utcTime"),
    key<FlaggedKey<StatusWordKey, &S::hasStatusWord>>("statusWord"),
    key<FlaggedKey<IntegerKey<&S::clippingFlags>, &S::hasClippingFlags>>("clippingFlags"),
    key<FlaggedKey<NumberKey<&S::rssi>, &S::hasRssi>>("rssi"),
    key<VectorKey<&S::calibratedAcceleration, 3>>("calibratedAcceleration"),
    key<VectorKey<&S::freeAcceleration, 3>>("freeAcceleration"),
    key<VectorKey<&S::calibratedAngularVelocity, 3>>("calibratedAngularVelocity"),
    key<VectorKey<&S::magneticField, 3>>("magneticField"),
    key<VectorKey<&S::velocityIncrement, 3>>("velocityIncrement"),
    key<VectorKey<&S::scrAcceleration, 3>>("scrAcceleration"),
    key<VectorKey<&S::scrGyroscopeData, 3>>("scrGyroscopeData"),
    key<VectorKey<&S::scrMagneticField, 3>>("scrMagneticField"),
    key<VectorKey<&S::velocity, 3>>("velocity"),
    key<QuaternionKey<&S::orientationIncrement>>("orientationIncrement"),
    key<QuaternionKey<&S::orientationQuaternion>>("orientationQuaternion"),
    key<OrientationEulerKey>("orientationEuler"),
    key<OrientationMatrixKey>("orientationMatrix"),
    key<VectorKey<&S::latitudeLongitude, 2>>("latitudeLongitude"),
    key<NumberKey<&S::altitude>>("altitude"),
    key<NumberKey<&S::temperature>>("temperature"),
    key<NumberKey<&S::pressure>>("pressure"),
    key<FlaggedKey<IntegerKey<&S::scrTemperature>, &S::hasScrTemperature>>("scrTemperature"),
    key<GyroTemperaturesKey>("gyroTemperatures"),
    key<RecordKey<&S::gpsSolution, RecordFields::gpsSolution, true>>("gpsSolution"),
    key<RecordKey<&S::gpsDop, RecordFields::gpsDop, true>>("gpsDop"),
    key<RecordKey<&S::gpsUtcTime, RecordFields::gpsUtcTime, true>>("gpsUtcTime"),
    key<SatelliteKey<&S::gpsSatellites, RecordFields::gpsSatellites, gpsChannelList,
                     &KvGpsSatelliteInfo::channels, RecordFields::gpsChannel>>("gpsSatellites"),
    key<RecordKey<&S::gnssPvt, RecordFields::gnssPvt, true>>("gnssPvt"),
    key<SatelliteKey<&S::gnssSatellites, RecordFields::gnssSatellites, gnssSatelliteList,
                     &KvGnssSatelliteInfo::satellites, RecordFields::gnssSatellite>>(
        "gnssSatellites"),
    key<TriggerKey<&S::triggerIn1>>("triggerIn1"),
    key<TriggerKey<&S::triggerIn2>>("triggerIn2"),
};

constexpr std::size_t sampleKeyCount = std::size(sampleKeys);
static_assert(sampleKeyCount < 64, "one bit per key");
constexpr quint64 allKeys = (quint64(1) << sampleKeyCount) - 1;
static_assert(sampleKeyCount < 256, "key indexes fit in SampleReader::KeyOrder");

// Reads the members of a sample object through In, then sets the data of
// every key the line does not hold to "missing". @p expected holds, for each
// member position, the key found there in the line before: recordings keep
// their keys in one order, so that is nearly always the key found now.
template <typename In>
bool readSample(ValueOf<In> &object, S &sample, In &in, quint64 &heldKeys,
                SampleReader::KeyOrder &expected)
{
    quint64 seen = 0;
    quint64 present = 0;
    std::size_t position = 0;
    const bool read =
        in.object(object, KeyPath::top(""), [&](const typename In::Key &name, ValueOf<In> &value) {
            const bool remembered = position < expected.size();
            const std::size_t index =
                find<In>(sampleKeys, name, remembered ? expected[position] : sampleKeyCount);
            if (remembered)
                expected[position] = quint8(index);
            ++position;
            if (index == sampleKeyCount)
                return in.unknown(name, value);
            const SampleKey &key = sampleKeys[index];
            const KeyPath path = KeyPath::top(key.name.data());
            const quint64 bit = quint64(1) << index;
            if (seen & bit)
                return in.duplicate(path);
            seen |= bit;
            if (In::isNull(value))
                return true;
            // Held from now on, even when the read stops halfway.
            heldKeys |= bit;
            if (!key.reader<In>()(value, path, sample, in))
                return false;
            present |= bit;
            return true;
        });
    if (!read)
        return false;
    for (quint64 stale = heldKeys & ~present; stale; stale &= stale - 1)
        sampleKeys[__builtin_ctzll(stale)].reset(sample);
    heldKeys = present;
    return true;
}

} // namespace

struct SampleReader::OnDemand
{
    simdjson::ondemand::parser parser;
    OnDemandFieldReader fields;
};

SampleReader::SampleReader()
    : onDemand(std::make_unique<OnDemand>())
    , heldKeys(allKeys)
{ }

SampleReader::~SampleReader() = default;

QStringList SampleReader::keys()
{
    QStringList names;
    for (const SampleKey &key : sampleKeys)
        names.append(QString::fromLatin1(key.name.data(), int(key.name.size())));
    return names;
}

bool SampleReader::readFast(const char *text, std::size_t length, RecordingSample &sample)
{
    if (length > longestFastLine)
        return false;
    simdjson::ondemand::document document;
    simdjson::ondemand::value root;
    if (onDemand->parser.iterate(text, length, length + padding).get(document)
        || document.get_value().get(root))
        return false;
    onDemand->fields.begin();
    if (!readSample(root, sample, onDemand->fields, heldKeys, keyOrder))
        return false;
    // Nothing may follow the object.
    const char *rest = nullptr;
    return document.current_location().get(rest) == simdjson::OUT_OF_BOUNDS;
}

bool SampleReader::read(const JsonTape::Value &object, RecordingSample &sample)
{
    JsonTape::Value value = object;
    return readSample(value, sample, tapeFields, heldKeys, keyOrder);
}
