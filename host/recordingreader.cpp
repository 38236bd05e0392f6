#include "recordingreader.h"

#include "recordfields.h"

#include <QFileInfo>

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <string_view>

namespace {

using rapidjson::Value;

constexpr unsigned parseFlags = rapidjson::kParseValidateEncodingFlag | rapidjson::kParseNanAndInfFlag;

// Where a value sits in its line. The chain lives on the stack and is spelled
// out only when a message needs it, so a good line costs no string work.
struct Path
{
    const Path *parent;
    const char *key;
    int index;

    Path member(const char *name) const { return {this, name, -1}; }
    Path entry(int position) const { return {this, nullptr, position}; }

    QString text() const
    {
        const QString own = key ? QString::fromUtf8(key) : QStringLiteral("[%1]").arg(index);
        if (!parent)
            return own;
        return key ? QString(parent->text() + QLatin1Char('.') + own) : QString(parent->text() + own);
    }
};

std::string_view keyOf(const Value &name)
{
    return std::string_view(name.GetString(), name.GetStringLength());
}

bool fail(QString *error, const QString &what)
{
    *error = what;
    return false;
}

QString typeName(const Value &value)
{
    switch (value.GetType()) {
    case rapidjson::kNullType:
        return RecordingReader::tr("null");
    case rapidjson::kFalseType:
    case rapidjson::kTrueType:
        return RecordingReader::tr("a boolean");
    case rapidjson::kObjectType:
        return RecordingReader::tr("an object");
    case rapidjson::kArrayType:
        return RecordingReader::tr("a list");
    case rapidjson::kStringType:
        return RecordingReader::tr("a string");
    case rapidjson::kNumberType:
        break;
    }
    return RecordingReader::tr("a number");
}

// A number as it would be written back: integers exactly, other numbers in
// their shortest form, with ".0" where that form would look like an integer.
QString numberText(const Value &value)
{
    if (value.IsInt64())
        return QString::number(value.GetInt64());
    if (value.IsUint64())
        return QString::number(value.GetUint64());
    const double number = value.GetDouble();
    if (std::isnan(number))
        return QStringLiteral("NaN");
    if (std::isinf(number))
        return number > 0 ? QStringLiteral("Infinity") : QStringLiteral("-Infinity");
    char buffer[32];
    const auto result = std::to_chars(std::begin(buffer), std::end(buffer), number);
    QString text = QString::fromLatin1(buffer, int(result.ptr - buffer));
    if (!text.contains(QLatin1Char('.')) && !text.contains(QLatin1Char('e')))
        text += QLatin1String(".0");
    return text;
}

QString quoted(const Value &string)
{
    constexpr int shown = 60;
    QString text = QString::fromUtf8(string.GetString(), int(string.GetStringLength()));
    if (text.size() > shown)
        text = text.left(shown) + QStringLiteral("...");
    return QLatin1Char('"') + text + QLatin1Char('"');
}

bool wrongType(const Value &value, const Path &path, const QString &expected, QString *error)
{
    return fail(error, RecordingReader::tr("\"%1\": expected %2, got %3")
                               .arg(path.text(), expected, typeName(value)));
}

bool readInteger(const Value &value, const Path &path, qint64 minimum, qint64 maximum, qint64 *out,
                 QString *error)
{
    if (!value.IsNumber())
        return wrongType(value, path, RecordingReader::tr("an integer"), error);
    if (value.IsInt64()) {
        const qint64 number = value.GetInt64();
        if (number >= minimum && number <= maximum) {
            *out = number;
            return true;
        }
    } else if (!value.IsUint64()) {
        // The parser turns integer literals beyond 64 bits into doubles;
        // those are out of range, any other double is not an integer.
        const double number = value.GetDouble();
        if (!(std::isfinite(number) && std::trunc(number) == number && std::fabs(number) >= 0x1p63))
            return fail(error, RecordingReader::tr("\"%1\": %2 is not an integer")
                                       .arg(path.text(), numberText(value)));
    }
    return fail(error, RecordingReader::tr("\"%1\": %2 is out of range (%3..%4)")
                               .arg(path.text(), numberText(value), QString::number(minimum),
                                    QString::number(maximum)));
}

bool readNumber(const Value &value, const Path &path, double *out, QString *error)
{
    if (!value.IsNumber())
        return wrongType(value, path, RecordingReader::tr("a number"), error);
    *out = value.GetDouble();
    return true;
}

bool readNumbers(const Value &value, const Path &path, int count, double *out, QString *error)
{
    if (!value.IsArray())
        return wrongType(value, path, RecordingReader::tr("a list of %1 numbers").arg(count), error);
    if (value.Size() != rapidjson::SizeType(count))
        return fail(error, RecordingReader::tr("\"%1\": expected a list of %2 numbers, got %3 entries")
                                   .arg(path.text()).arg(count).arg(value.Size()));
    for (int i = 0; i < count; ++i) {
        if (!readNumber(value[rapidjson::SizeType(i)], path.entry(i), out + i, error))
            return false;
    }
    return true;
}

template <typename Record, std::size_t count>
const RecordFields::Field<Record> *findField(const RecordFields::Field<Record> (&fields)[count],
                                             std::string_view name)
{
    for (const RecordFields::Field<Record> &field : fields) {
        if (name == field.name)
            return &field;
    }
    return nullptr;
}

QString duplicateText(const Path &path)
{
    return RecordingReader::tr("\"%1\": the key appears more than once").arg(path.text());
}

bool duplicate(const Path &path, QString *error)
{
    return fail(error, duplicateText(path));
}

// Members that are not in the field table and carry nothing the reader uses.
struct IgnoreOthers
{
    bool operator()(std::string_view, const Value &, QString *) const { return true; }
};

// Reads the integer members named in @p fields into @p record. A missing or
// null member stays 0; members of other names go to @p readOther.
template <typename Record, std::size_t count, typename ReadOther = IgnoreOthers>
bool readFields(const Value &value, const Path &path, const RecordFields::Field<Record> (&fields)[count],
                Record &record, QString *error, ReadOther readOther = IgnoreOthers())
{
    if (!value.IsObject())
        return wrongType(value, path, RecordingReader::tr("an object"), error);
    bool seen[count] = {};
    for (auto member = value.MemberBegin(); member != value.MemberEnd(); ++member) {
        const RecordFields::Field<Record> *field = findField(fields, keyOf(member->name));
        if (!field) {
            if (!readOther(keyOf(member->name), member->value, error))
                return false;
            continue;
        }
        const Path fieldPath = path.member(field->name);
        bool &fieldSeen = seen[field - fields];
        if (fieldSeen)
            return duplicate(fieldPath, error);
        fieldSeen = true;
        if (member->value.IsNull())
            continue;
        qint64 number = 0;
        if (!readInteger(member->value, fieldPath, field->minimum, field->maximum, &number, error))
            return false;
        field->store(record, number);
    }
    return true;
}

// Reads the list of satellites or channels of a satellite record; entries
// beyond the record's capacity are checked and then dropped.
template <typename Entry, std::size_t count, std::size_t capacity>
bool readEntries(const Value &value, const Path &path, const RecordFields::Field<Entry> (&fields)[count],
                 Entry (&entries)[capacity], QString *error)
{
    if (!value.IsArray())
        return wrongType(value, path, RecordingReader::tr("a list"), error);
    for (rapidjson::SizeType i = 0; i < value.Size(); ++i) {
        Entry entry;
        if (!readFields(value[i], path.entry(int(i)), fields, entry, error))
            return false;
        if (i < capacity)
            entries[i] = entry;
    }
    return true;
}

template <auto member>
using MemberType = typename RecordFields::MemberOf<decltype(member)>::MemberType;

template <auto member>
bool readIntegerKey(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    using Type = MemberType<member>;
    qint64 number = 0;
    if (!readInteger(value, path, std::numeric_limits<Type>::min(), std::numeric_limits<Type>::max(), &number,
                     error))
        return false;
    sample.*member = Type(number);
    return true;
}

bool readSampleTimeFine(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    if (!readIntegerKey<&RecordingSample::sampleTimeFine>(value, path, sample, error))
        return false;
    sample.hasSampleTimeFine = true;
    return true;
}

bool readSampleDateTime(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    if (!value.IsString())
        return wrongType(value, path, RecordingReader::tr("a string"), error);
    const QString text = QString::fromUtf8(value.GetString(), int(value.GetStringLength()));
    sample.sampleDateTime = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (!sample.sampleDateTime.isValid())
        return fail(error, RecordingReader::tr("\"%1\": %2 is not an ISO 8601 date and time")
                                   .arg(path.text(), quoted(value)));
    return true;
}

// Any integer whose low 32 bits make the word: signed and unsigned writings of
// the same word are both accepted.
bool readStatusWord(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    qint64 number = 0;
    if (!readInteger(value, path, std::numeric_limits<qint32>::min(), std::numeric_limits<quint32>::max(),
                     &number, error))
        return false;
    sample.statusWord = qint32(quint32(number));
    return true;
}

template <auto member>
bool readNumberKey(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    return readNumber(value, path, &(sample.*member), error);
}

template <auto member, int size>
bool readVectorKey(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    double numbers[size];
    if (!readNumbers(value, path, size, numbers, error))
        return false;
    KvVector vector = size == 2 ? KvVector{0.0, 0.0} : KvVector{0.0, 0.0, 0.0};
    for (int i = 0; i < size; ++i)
        vector[i] = numbers[i];
    sample.*member = vector;
    return true;
}

template <auto member>
bool readQuaternionKey(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    double q[4];
    if (!readNumbers(value, path, 4, q, error))
        return false;
    sample.*member = KvQuaternion(q[0], q[1], q[2], q[3]);
    return true;
}

bool readOrientationEuler(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    double angles[3];
    if (!readNumbers(value, path, 3, angles, error))
        return false;
    sample.orientationEuler.roll = angles[0];
    sample.orientationEuler.pitch = angles[1];
    sample.orientationEuler.yaw = angles[2];
    sample.hasOrientationEuler = true;
    return true;
}

bool readOrientationMatrix(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    if (!value.IsArray())
        return wrongType(value, path, RecordingReader::tr("a list of 3 rows"), error);
    if (value.Size() != 3)
        return fail(error, RecordingReader::tr("\"%1\": expected a list of 3 rows, got %2 entries")
                                   .arg(path.text()).arg(value.Size()));
    double rowMajor[9];
    for (int row = 0; row < 3; ++row) {
        if (!readNumbers(value[rapidjson::SizeType(row)], path.entry(row), 3, rowMajor + 3 * row, error))
            return false;
    }
    sample.orientationMatrix = KvMatrix(rowMajor);
    return true;
}

// Each entry is a 16-bit word, written signed or unsigned.
bool readGyroTemperatures(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    if (!value.IsArray())
        return wrongType(value, path, RecordingReader::tr("a list of integers"), error);
    QVector<quint16> words;
    words.reserve(int(value.Size()));
    for (rapidjson::SizeType i = 0; i < value.Size(); ++i) {
        qint64 number = 0;
        if (!readInteger(value[i], path.entry(int(i)), std::numeric_limits<qint16>::min(),
                         std::numeric_limits<quint16>::max(), &number, error))
            return false;
        words.append(quint16(number));
    }
    sample.gyroTemperatures = words;
    return true;
}

template <auto member, const auto &fields>
bool readRecordKey(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    MemberType<member> record;
    if (!readFields(value, path, fields, record, error))
        return false;
    sample.*member = record;
    return true;
}

// A receiver record without a time of week holds no data.
template <typename Record>
void dropWithoutTimeOfWeek(Record &record)
{
    if (record.iTOW == 0)
        record = Record();
}

template <auto member, const auto &fields>
bool readReceiverKey(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    if (!readRecordKey<member, fields>(value, path, sample, error))
        return false;
    dropWithoutTimeOfWeek(sample.*member);
    return true;
}

template <typename Record, std::size_t count, typename Entry, std::size_t entryCount, std::size_t capacity>
bool readListRecord(const Value &value, const Path &path, const RecordFields::Field<Record> (&fields)[count],
                    const char *listName, const RecordFields::Field<Entry> (&entryFields)[entryCount],
                    Record &record, Entry (Record::*list)[capacity], QString *error)
{
    bool listSeen = false;
    const auto readList = [&](std::string_view name, const Value &listValue, QString *listError) {
        if (name != listName)
            return true;
        const Path listPath = path.member(listName);
        if (listSeen)
            return duplicate(listPath, listError);
        listSeen = true;
        return listValue.IsNull() || readEntries(listValue, listPath, entryFields, record.*list, listError);
    };
    if (!readFields(value, path, fields, record, error, readList))
        return false;
    dropWithoutTimeOfWeek(record);
    return true;
}

bool readGpsSatellites(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    KvGpsSatelliteInfo record;
    if (!readListRecord(value, path, RecordFields::gpsSatellites, RecordFields::gpsChannelList,
                        RecordFields::gpsChannel, record, &KvGpsSatelliteInfo::channels, error))
        return false;
    sample.gpsSatellites = record;
    return true;
}

bool readGnssSatellites(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    KvGnssSatelliteInfo record;
    if (!readListRecord(value, path, RecordFields::gnssSatellites, RecordFields::gnssSatelliteList,
                        RecordFields::gnssSatellite, record, &KvGnssSatelliteInfo::satellites, error))
        return false;
    sample.gnssSatellites = record;
    return true;
}

template <auto member>
bool readTrigger(const Value &value, const Path &path, RecordingSample &sample, QString *error)
{
    KvTriggerIndication trigger;
    if (!readFields(value, path, RecordFields::trigger, trigger, error))
        return false;
    trigger.valid = true;
    sample.*member = trigger;
    return true;
}

struct SampleKey
{
    const char *name;
    bool (*read)(const Value &value, const Path &path, RecordingSample &sample, QString *error);
};

constexpr SampleKey sampleKeyTable[] = {
    {"packetCounter", &readIntegerKey<&RecordingSample::packetCounter>},
    {"sampleTimeFine", &readSampleTimeFine},
    {"sampleDateTime", &readSampleDateTime},
    {"utcTime", &readRecordKey<&RecordingSample::utcTime, RecordFields::utcTime>},
    {"statusWord", &readStatusWord},
    {"clippingFlags", &readIntegerKey<&RecordingSample::clippingFlags>},
    {"rssi", &readNumberKey<&RecordingSample::rssi>},
    {"calibratedAcceleration", &readVectorKey<&RecordingSample::calibratedAcceleration, 3>},
    {"freeAcceleration", &readVectorKey<&RecordingSample::freeAcceleration, 3>},
    {"calibratedAngularVelocity", &readVectorKey<&RecordingSample::calibratedAngularVelocity, 3>},
    {"magneticField", &readVectorKey<&RecordingSample::magneticField, 3>},
    {"velocityIncrement", &readVectorKey<&RecordingSample::velocityIncrement, 3>},
    {"scrAcceleration", &readVectorKey<&RecordingSample::scrAcceleration, 3>},
    {"scrGyroscopeData", &readVectorKey<&RecordingSample::scrGyroscopeData, 3>},
    {"scrMagneticField", &readVectorKey<&RecordingSample::scrMagneticField, 3>},
    {"velocity", &readVectorKey<&RecordingSample::velocity, 3>},
    {"orientationIncrement", &readQuaternionKey<&RecordingSample::orientationIncrement>},
    {"orientationQuaternion", &readQuaternionKey<&RecordingSample::orientationQuaternion>},
    {"orientationEuler", &readOrientationEuler},
    {"orientationMatrix", &readOrientationMatrix},
    {"latitudeLongitude", &readVectorKey<&RecordingSample::latitudeLongitude, 2>},
    {"altitude", &readNumberKey<&RecordingSample::altitude>},
    {"temperature", &readNumberKey<&RecordingSample::temperature>},
    {"pressure", &readNumberKey<&RecordingSample::pressure>},
    {"scrTemperature", &readIntegerKey<&RecordingSample::scrTemperature>},
    {"gyroTemperatures", &readGyroTemperatures},
    {"gpsSolution", &readReceiverKey<&RecordingSample::gpsSolution, RecordFields::gpsSolution>},
    {"gpsDop", &readReceiverKey<&RecordingSample::gpsDop, RecordFields::gpsDop>},
    {"gpsUtcTime", &readReceiverKey<&RecordingSample::gpsUtcTime, RecordFields::gpsUtcTime>},
    {"gpsSatellites", &readGpsSatellites},
    {"gnssPvt", &readReceiverKey<&RecordingSample::gnssPvt, RecordFields::gnssPvt>},
    {"gnssSatellites", &readGnssSatellites},
    {"triggerIn1", &readTrigger<&RecordingSample::triggerIn1>},
    {"triggerIn2", &readTrigger<&RecordingSample::triggerIn2>},
};

constexpr std::size_t sampleKeyCount = std::size(sampleKeyTable);

bool readSample(const Value &object, RecordingSample &sample, QString *error)
{
    bool seen[sampleKeyCount] = {};
    for (auto member = object.MemberBegin(); member != object.MemberEnd(); ++member) {
        const std::string_view name = keyOf(member->name);
        std::size_t index = 0;
        while (index < sampleKeyCount && name != sampleKeyTable[index].name)
            ++index;
        if (index == sampleKeyCount)
            continue;
        const Path path{nullptr, sampleKeyTable[index].name, -1};
        if (seen[index])
            return duplicate(path, error);
        seen[index] = true;
        if (!member->value.IsNull() && !sampleKeyTable[index].read(member->value, path, sample, error))
            return false;
    }
    return true;
}

bool readPropertyValue(const Value &value, const QString &key, QVariant *out, QString *error)
{
    switch (value.GetType()) {
    case rapidjson::kNullType:
        *out = QVariant();
        return true;
    case rapidjson::kFalseType:
    case rapidjson::kTrueType:
        *out = value.GetBool();
        return true;
    case rapidjson::kStringType:
        *out = QString::fromUtf8(value.GetString(), int(value.GetStringLength()));
        return true;
    case rapidjson::kNumberType:
        if (value.IsInt64())
            *out = qint64(value.GetInt64());
        else
            *out = value.GetDouble();
        return true;
    case rapidjson::kObjectType:
    case rapidjson::kArrayType:
        break;
    }
    return fail(error, RecordingReader::tr("\"properties.%1\": expected a string, a number, a boolean or null, got %2")
                               .arg(key, typeName(value)));
}

bool readProperties(const Value &value, QVariantMap *properties, QString *error)
{
    if (!value.IsObject())
        return fail(error, RecordingReader::tr("\"properties\": expected an object, got %1").arg(typeName(value)));
    for (auto member = value.MemberBegin(); member != value.MemberEnd(); ++member) {
        const QString key = QString::fromUtf8(member->name.GetString(), int(member->name.GetStringLength()));
        if (properties->contains(key))
            return fail(error, RecordingReader::tr("\"properties.%1\": the key appears more than once").arg(key));
        QVariant property;
        if (!readPropertyValue(member->value, key, &property, error))
            return false;
        properties->insert(key, property);
    }
    return true;
}

// Passes the parser's events on to the document and stops the parse when
// lists and objects nest too deep, which bounds both the parser's recursion
// and the document's size.
class NestingLimiter
{
public:
    explicit NestingLimiter(rapidjson::Document &document) : document(document) {}

    bool tooDeep() const { return exceeded; }

    bool Null() { return document.Null(); }
    bool Bool(bool b) { return document.Bool(b); }
    bool Int(int i) { return document.Int(i); }
    bool Uint(unsigned u) { return document.Uint(u); }
    bool Int64(int64_t i) { return document.Int64(i); }
    bool Uint64(uint64_t u) { return document.Uint64(u); }
    bool Double(double d) { return document.Double(d); }
    bool RawNumber(const char *text, rapidjson::SizeType length, bool copy) { return document.RawNumber(text, length, copy); }
    bool String(const char *text, rapidjson::SizeType length, bool copy) { return document.String(text, length, copy); }
    bool Key(const char *text, rapidjson::SizeType length, bool copy) { return document.Key(text, length, copy); }
    bool StartObject() { return enter() && document.StartObject(); }
    bool EndObject(rapidjson::SizeType count) { --depth; return document.EndObject(count); }
    bool StartArray() { return enter() && document.StartArray(); }
    bool EndArray(rapidjson::SizeType count) { --depth; return document.EndArray(count); }

private:
    bool enter()
    {
        exceeded = ++depth > RecordingReader::maxNesting;
        return !exceeded;
    }

    rapidjson::Document &document;
    int depth = 0;
    bool exceeded = false;
};

// The parser's UTF-8 check takes all continuation bytes of a character
// without looking for the end of the text: a line that stops after the first
// byte of a four-byte character would have it read three bytes on.
constexpr std::size_t continuationBytes = 3;

// Parses @p line from @p start into @p document, which must then hold an
// object.
bool parseObject(std::string &line, std::size_t start, rapidjson::Document &document, QString *error)
{
    const char *text = line.c_str() + start;
    if (const void *nul = std::memchr(text, '\0', line.size() - start))
        return fail(error, RecordingReader::tr("NUL byte at column %1")
                                   .arg(static_cast<const char *>(nul) - text + 1));
    // NUL bytes after the line's end, where the parser stops, so that those
    // three reads stay inside the line.
    line.append(continuationBytes, '\0');
    text = line.c_str() + start;
    rapidjson::Reader reader;
    bool tooDeep = false;
    auto generate = [&](rapidjson::Document &target) {
        rapidjson::StringStream stream(text);
        NestingLimiter limiter(target);
        const bool parsed = reader.Parse<parseFlags>(stream, limiter);
        tooDeep = limiter.tooDeep();
        return parsed;
    };
    document.Populate(generate);
    if (tooDeep)
        return fail(error, RecordingReader::tr("lists and objects nested deeper than %1 levels")
                                   .arg(RecordingReader::maxNesting));
    if (reader.HasParseError())
        return fail(error, RecordingReader::tr("malformed JSON at column %1: %2")
                                   .arg(reader.GetErrorOffset() + 1)
                                   .arg(QString::fromLatin1(rapidjson::GetParseError_En(reader.GetParseErrorCode()))));
    if (!document.IsObject())
        return fail(error, RecordingReader::tr("expected a JSON object, got %1").arg(typeName(document)));
    return true;
}

bool isBlank(const std::string &line, std::size_t start)
{
    return line.find_first_not_of(" \t\r", start) == std::string::npos;
}

} // namespace

QStringList RecordingReader::sampleKeys()
{
    QStringList keys;
    for (const SampleKey &key : sampleKeyTable)
        keys.append(QString::fromLatin1(key.name));
    return keys;
}

bool RecordingReader::open(const QString &name)
{
    file.close();
    fileName = name;
    lineNumber = 0;
    error.clear();
    recordingProperties.clear();
    rate = 0.0;
    current = RecordingSample();

    if (QFileInfo(name).isDir()) {
        error = tr("%1: is a directory, not a recording").arg(name);
        return false;
    }
    file.setFileName(name);
    if (!file.open(QIODevice::ReadOnly)) {
        error = tr("%1: cannot be read: %2").arg(name, file.errorString());
        return false;
    }
    return readRecordingObject();
}

bool RecordingReader::readNext()
{
    if (!error.isEmpty() || !file.isOpen() || !nextContentLine())
        return false;
    rapidjson::Document document;
    QString what;
    current = RecordingSample();
    if (!parseObject(line, lineStart, document, &what)
        || !readSample(document, current, &what))
        return fail(what);
    return true;
}

bool RecordingReader::hasError() const
{
    return !error.isEmpty();
}

QString RecordingReader::errorString() const
{
    return error;
}

QVariant RecordingReader::property(const QString &key) const
{
    return recordingProperties.value(key);
}

QVariantMap RecordingReader::properties() const
{
    return recordingProperties;
}

double RecordingReader::updateRate() const
{
    return rate;
}

const RecordingSample &RecordingReader::sample() const
{
    return current;
}

// Reads the next physical line into `line`, without its line end. Reading goes
// in chunks, so a line longer than the limit is refused before it is held.
RecordingReader::LineStatus RecordingReader::readLine()
{
    char chunk[64 * 1024];
    line.clear();
    lineStart = 0;
    if (file.atEnd())
        return LineStatus::End;
    ++lineNumber;
    for (;;) {
        const qint64 count = file.readLine(chunk, qint64(sizeof chunk));
        if (count < 0) {
            fail(tr("cannot be read: %1").arg(file.errorString()));
            return LineStatus::Failed;
        }
        line.append(chunk, std::size_t(count));
        const bool ended = !line.empty() && line.back() == '\n';
        if (ended)
            line.pop_back();
        if (qint64(line.size()) > maxLineLength) {
            fail(tr("the line is longer than %1 bytes").arg(maxLineLength));
            return LineStatus::Failed;
        }
        if (ended || file.atEnd())
            return LineStatus::Read;
    }
}

// Skips empty lines; false at the end of the file or when a line cannot be read.
bool RecordingReader::nextContentLine()
{
    for (;;) {
        if (readLine() != LineStatus::Read)
            return false;
        // A byte-order mark may open a file saved by a text editor.
        if (lineNumber == 1 && line.compare(0, 3, "\xEF\xBB\xBF") == 0)
            lineStart = 3;
        if (!isBlank(line, lineStart))
            return true;
    }
}

bool RecordingReader::readRecordingObject()
{
    if (!nextContentLine()) {
        if (error.isEmpty()) {
            // Name the line where the object was looked for.
            ++lineNumber;
            fail(tr("the file holds no recording object"));
        }
        return false;
    }
    rapidjson::Document document;
    QString what;
    if (!parseObject(line, lineStart, document, &what))
        return fail(what);

    const Path propertiesPath{nullptr, "properties", -1};
    const Path ratePath{nullptr, "updateRate", -1};
    bool propertiesSeen = false;
    bool rateSeen = false;
    for (auto member = document.MemberBegin(); member != document.MemberEnd(); ++member) {
        const std::string_view name = keyOf(member->name);
        if (name == propertiesPath.key) {
            if (propertiesSeen)
                return fail(duplicateText(propertiesPath));
            propertiesSeen = true;
            if (!readProperties(member->value, &recordingProperties, &what))
                return fail(what);
        } else if (name == ratePath.key) {
            if (rateSeen)
                return fail(duplicateText(ratePath));
            rateSeen = true;
            if (!member->value.IsNull() && !readNumber(member->value, ratePath, &rate, &what))
                return fail(what);
        }
    }
    if (!propertiesSeen)
        return fail(tr("the first line must be the recording object, with \"properties\""));
    return true;
}

bool RecordingReader::fail(const QString &what)
{
    error = tr("%1:%2: %3").arg(fileName).arg(lineNumber).arg(what);
    return false;
}
