#include "jsonlinesreader.h"

#include "jsonnumber.h"
#include "tapefieldreader.h"

#include <algorithm>
#include <iterator>

static_assert(LineReader::padding >= SampleReader::padding, "lines are read where they stand");

namespace {

bool isBlank(std::string_view line)
{
    return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

QString fromUtf8(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), int(bytes.size()));
}

// The properties that the exported file's header block shows, one comment
// line each: a line break there would end the line and start one of the
// text's own.
constexpr std::string_view headerProperties[] = {
    "StartTime",         "FilterProfile", "FilterProfileVersion",
    "FilterProfileType", "OptionFlags",   "FirmwareVersion",
};

bool isHeaderProperty(std::string_view key)
{
    return std::find(std::begin(headerProperties), std::end(headerProperties), key)
        != std::end(headerProperties);
}

} // namespace

bool JsonLinesReader::open(QIODevice *source, const QString &name)
{
    reset(name);
    device = source;
    lines = std::make_unique<LineReader>(device);
    return readRecordingObject();
}

bool JsonLinesReader::readNext()
{
    if (!error.isEmpty() || !lines || !nextContentLine())
        return false;
    if (sampleReader.readFast(text.data(), text.size(), current))
        return true;
    // The careful reading decides, and says what is wrong with a bad line.
    if (!parseLine())
        return false;
    if (!sampleReader.read(tape.root(), current))
        return fail(sampleReader.errorString());
    return true;
}

bool JsonLinesReader::hasBadLine() const
{
    return badLine;
}

void JsonLinesReader::skipBadLine()
{
    error.clear();
    badLine = false;
}

qint64 JsonLinesReader::position() const
{
    return lines ? lines->position() : 0;
}

qint64 JsonLinesReader::size() const
{
    return device && !device->isSequential() ? device->size() : 0;
}

void JsonLinesReader::reset(const QString &name)
{
    RecordingFileReader::reset(name);
    device = nullptr;
    lines.reset();
    badLine = false;
}

// Skips empty lines; false at the end of the recording or when a line cannot
// be read.
bool JsonLinesReader::nextContentLine()
{
    for (;;) {
        switch (lines->next()) {
        case LineReader::Status::Line:
            break;
        case LineReader::Status::End:
            return false;
        case LineReader::Status::TooLong:
            return fail(tr("the line is longer than %1 bytes").arg(LineReader::maxLineLength));
        case LineReader::Status::Failed:
            fail(lines->errorString());
            badLine = false;
            return false;
        }
        text = lines->line();
        // A byte-order mark may open a file saved by a text editor.
        if (lines->lineNumber() == 1 && text.substr(0, 3) == "\xEF\xBB\xBF")
            text.remove_prefix(3);
        if (!isBlank(text))
            return true;
    }
}

// Parses the current line, which must hold a JSON object.
bool JsonLinesReader::parseLine()
{
    QString what;
    if (!tape.parse(text, &what))
        return fail(what);
    if (!tape.root().isObject())
        return fail(
            tr("expected a JSON object, got %1").arg(TapeFieldReader::typeName(tape.root())));
    return true;
}

bool JsonLinesReader::readRecordingObject()
{
    if (!nextContentLine()) {
        if (error.isEmpty()) {
            // Name the line where the object was looked for.
            error = tr("%1:%2: %3")
                        .arg(fileName)
                        .arg(lines->lineNumber() + 1)
                        .arg(tr("the file holds no recording object"));
        }
        return false;
    }
    if (!parseLine())
        return false;

    TapeFieldReader fields;
    const KeyPath propertiesPath = KeyPath::top("properties");
    const KeyPath ratePath = KeyPath::top("updateRate");
    bool propertiesSeen = false;
    bool rateSeen = false;
    for (const JsonTape::Member member : tape.root().members()) {
        if (member.key == propertiesPath.key) {
            if (propertiesSeen)
                return fail(TapeFieldReader::duplicateText(propertiesPath));
            propertiesSeen = true;
            if (!readProperties(member.value))
                return false;
        } else if (member.key == ratePath.key) {
            if (rateSeen)
                return fail(TapeFieldReader::duplicateText(ratePath));
            rateSeen = true;
            if (!member.value.isNull() && !fields.number(member.value, ratePath, &rate))
                return fail(fields.errorString());
        }
    }
    if (!propertiesSeen)
        return fail(tr("the first line must be the recording object, with \"properties\""));
    return true;
}

// The object of the recording's properties, each named once.
bool JsonLinesReader::readProperties(JsonTape::Value object)
{
    if (!object.isObject())
        return fail(tr("\"properties\": expected an object, got %1")
                        .arg(TapeFieldReader::typeName(object)));
    for (const JsonTape::Member property : object.members()) {
        const QString key = fromUtf8(property.key);
        if (recordingProperties.contains(key))
            return fail(tr("\"properties.%1\": the key appears more than once").arg(key));
        if (!readProperty(property, key))
            return false;
    }
    return true;
}

// One property: null, a boolean, a text, or a number, kept as an integer
// where it is one.
bool JsonLinesReader::readProperty(JsonTape::Member property, const QString &key)
{
    const JsonTape::Value value = property.value;
    switch (value.kind()) {
    case JsonTape::Kind::Null:
        recordingProperties.insert(key, QVariant());
        break;
    case JsonTape::Kind::False:
    case JsonTape::Kind::True:
        recordingProperties.insert(key, value.toBool());
        break;
    case JsonTape::Kind::String:
    case JsonTape::Kind::Key:
        if (isHeaderProperty(property.key)
            && value.text().find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos)
            return fail(
                tr("\"properties.%1\": the text holds a line break or a NUL character").arg(key));
        recordingProperties.insert(key, fromUtf8(value.text()));
        break;
    case JsonTape::Kind::Number: {
        const JsonNumber::Integer integer = JsonNumber::toInteger(value.text());
        if (integer.kind == JsonNumber::Integer::Kind::Signed)
            recordingProperties.insert(key, integer.value);
        else
            recordingProperties.insert(key, JsonNumber::toDouble(value.text()));
        break;
    }
    case JsonTape::Kind::List:
    case JsonTape::Kind::Object:
        return fail(tr("\"properties.%1\": expected a string, a number, a boolean or "
                       "null, got %2")
                        .arg(key, TapeFieldReader::typeName(value)));
    }
    return true;
}

bool JsonLinesReader::fail(const QString &what)
{
    error = tr("%1:%2: %3").arg(fileName).arg(lines->lineNumber()).arg(what);
    badLine = true;
    return false;
}
