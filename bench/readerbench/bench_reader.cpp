// Reads a recording one way and prints one JSON line with the time, the
// samples, the bytes and the peak memory:
//   reader    JsonLinesReader, sample by sample, as an export reads it
//   simdjson  a simdjson on-demand walk over every value of every line, each
//             number converted (exactly) to its type: the reference
// scripts/bench runs both on the same generated recording.

#include "peakmemory.h"

#include <jsonlinesreader.h>
#include <linereader.h>
#include <localtimezone.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <simdjson.h>

#include <cstdio>

namespace {

struct Run
{
    double seconds = 0.0;
    qint64 samples = 0;
    double checksum = 0.0;
};

Run readWithReader(const QString &path)
{
    Run run;
    QElapsedTimer timer;
    timer.start();
    JsonLinesReader reader;
    if (!reader.open(path))
        qFatal("%s", qPrintable(reader.errorString()));
    while (reader.readNext()) {
        const RecordingSample &sample = reader.sample();
        run.checksum += sample.packetCounter
            + (sample.calibratedAcceleration.isEmpty() ? 0.0 : sample.calibratedAcceleration.at(0));
        ++run.samples;
    }
    if (reader.hasError())
        qFatal("%s", qPrintable(reader.errorString()));
    run.seconds = timer.nsecsElapsed() / 1e9;
    return run;
}

// Visits every value below @p value; numbers are converted to their type.
simdjson::error_code walk(simdjson::ondemand::value value, double &sum)
{
    simdjson::ondemand::json_type type;
    if (auto error = value.type().get(type))
        return error;
    switch (type) {
    case simdjson::ondemand::json_type::object: {
        simdjson::ondemand::object object;
        if (auto error = value.get_object().get(object))
            return error;
        for (auto field : object) {
            std::string_view key;
            if (auto error = field.unescaped_key().get(key))
                return error;
            sum += double(key.size());
            if (auto error = walk(field.value(), sum))
                return error;
        }
        return simdjson::SUCCESS;
    }
    case simdjson::ondemand::json_type::array: {
        simdjson::ondemand::array array;
        if (auto error = value.get_array().get(array))
            return error;
        for (auto entry : array) {
            simdjson::ondemand::value item;
            if (auto error = entry.get(item))
                return error;
            if (auto error = walk(item, sum))
                return error;
        }
        return simdjson::SUCCESS;
    }
    case simdjson::ondemand::json_type::number: {
        simdjson::ondemand::number number;
        if (auto error = value.get_number().get(number))
            return error;
        sum += number.as_double();
        return simdjson::SUCCESS;
    }
    case simdjson::ondemand::json_type::string: {
        std::string_view text;
        if (auto error = value.get_string().get(text))
            return error;
        sum += double(text.size());
        return simdjson::SUCCESS;
    }
    case simdjson::ondemand::json_type::boolean: {
        bool flag = false;
        if (auto error = value.get_bool().get(flag))
            return error;
        sum += flag;
        return simdjson::SUCCESS;
    }
    case simdjson::ondemand::json_type::null:
        return value.is_null().error();
    }
    return simdjson::INCORRECT_TYPE;
}

// Walks each line with a parser that is used again for every line, the
// lines split as the reader splits them, so that only the JSON work differs.
Run readWithSimdjson(const QString &path)
{
    Run run;
    QElapsedTimer timer;
    timer.start();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        qFatal("cannot read %s", qPrintable(path));
    static_assert(LineReader::padding >= simdjson::SIMDJSON_PADDING);
    simdjson::ondemand::parser parser;
    LineReader lines(&file);
    while (lines.next() == LineReader::Status::Line) {
        const std::string_view line = lines.line();
        simdjson::ondemand::document document;
        simdjson::ondemand::value root;
        if (parser.iterate(line.data(), line.size(), line.size() + LineReader::padding)
                .get(document)
            || document.get_value().get(root) || walk(root, run.checksum))
            qFatal("%s:%lld: simdjson refuses the line", qPrintable(path), lines.lineNumber());
        ++run.samples;
    }
    // The first line is the recording object.
    --run.samples;
    run.seconds = timer.nsecsElapsed() / 1e9;
    return run;
}

} // namespace

int main(int argc, char *argv[])
{
    // As the program does.
    pinLocalTimeZone();
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Times one way of reading a recording; see scripts/bench."));
    parser.addHelpOption();
    const QCommandLineOption methodOption(QStringLiteral("method"),
                                          QStringLiteral("reader or simdjson."),
                                          QStringLiteral("METHOD"), QStringLiteral("reader"));
    parser.addOption(methodOption);
    parser.addPositionalArgument(QStringLiteral("RECORDING"),
                                 QStringLiteral("The recording to read."));
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    const QString path = parser.positionalArguments().first();
    const QString method = parser.value(methodOption);

    Run run;
    if (method == QLatin1String("reader")) {
        run = readWithReader(path);
    } else if (method == QLatin1String("simdjson")) {
        run = readWithSimdjson(path);
    } else {
        std::fprintf(stderr, "unknown method\n");
        return 2;
    }
    std::printf("{\"method\": \"%s\", \"samples\": %lld, \"bytes\": %lld, \"seconds\": %.6f, "
                "\"peak_kib\": %ld, "
                "\"checksum\": %.17g}\n",
                qPrintable(method), run.samples, QFile(path).size(), run.seconds, peakResidentKib(),
                run.checksum);
    return 0;
}
