// Exports N samples of seeded values (or every sample of a recording) into
// one file, one way at a time, and prints one JSON line with the time, the
// bytes written and the peak memory:
//   exporter  the real AsciiExporter over an in-memory export source
//   limit     the same fields with std::to_chars into a 1 MiB buffer
//   qt        the straightforward Qt way: a QString per field, a QTextStream per row
//   table     the sample pool as CSV, for pandas (scripts/bench)
// scripts/bench runs every way for every configuration and prints the table.

#include "asciiexporter.h"
#include "benchdata.h"
#include "peakmemory.h"
#include "settingscatalogue.h"

#include <exportrun.h>
#include <jsonlinesreader.h>
#include <recordingsource.h>
#include <settingssynchronizer.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <charconv>
#include <cstdio>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int poolSize = 1024;

struct Run
{
    double seconds = 0.0;
    qint64 bytes = 0;
};

QMap<QString, QVariant> effectiveSettings(const BenchConfig &config)
{
    QMap<QString, QVariant> settings = SettingsCatalogue::defaults();
    for (auto it = config.settings.cbegin(); it != config.settings.cend(); ++it)
        settings.insert(it.key(), it.value());
    return settings;
}

void configure(SettingsSynchronizer &store, const BenchConfig &config)
{
    for (auto it = config.settings.cbegin(); it != config.settings.cend(); ++it)
        store.setSetting(it.key(), it.value());
}

// The header block and column line, as the exporter writes them.
QByteArray headerText(const BenchConfig &config, const QVariantMap &properties, double rate)
{
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    configure(store, config);
    TestSource source;
    source.properties = properties;
    source.rate = rate;
    AsciiExporter exporter(&source, &store);
    return exportSamples(&exporter, &source, {});
}

// What the writers other than the exporter write: the header, and the fields
// of every row, worked out before the clock starts.
struct Rows
{
    QByteArray header;
    std::vector<QVector<Field>> fields;
};

Rows poolRows(const BenchConfig &config, const QVector<TestSample> &pool)
{
    const QMap<QString, QVariant> settings = effectiveSettings(config);
    Rows rows{headerText(config, recordingProperties(), 100.0), {}};
    for (const TestSample &sample : pool)
        rows.fields.push_back(flatten(sample, settings));
    return rows;
}

// The sample a recording's source presents, as a test sample.
TestSample presented(const RecordingSource &source)
{
    TestSample s;
    s.dateTime = source.sampleDateTime();
    s.utc = source.utcTime();
    s.packetCounter = source.packetCounter();
    s.sampleTimeFine = source.sampleTimeFine();
    s.hasSampleTimeFine = source.hasSampleTimeFine();
    s.temperature = source.temperature();
    s.scrTemperature = source.scrTemperature();
    s.gyroTemperatures = source.gyroTemperatures();
    s.calibratedAcceleration = source.calibratedAcceleration();
    s.freeAcceleration = source.freeAcceleration();
    s.scrAcceleration = source.scrAcceleration();
    s.velocityIncrement = source.velocityIncrement();
    s.calibratedAngularVelocity = source.calibratedAngularVelocity();
    s.scrGyroscopeData = source.scrGyroscopeData();
    s.orientationIncrement = source.orientationIncrement();
    s.magneticField = source.magneticField();
    s.scrMagneticField = source.scrMagneticField();
    const quint32 orientation = source.orientationSelector();
    s.orientationQuaternion = source.orientationQuaternion(orientation);
    s.orientationEuler = source.orientationEuler(orientation);
    s.orientationMatrix = source.orientationMatrix(orientation);
    s.latitudeLongitude = source.latitudeLongitude();
    s.altitude = source.altitude();
    s.velocity = source.velocity(source.velocitySelector());
    s.statusWord = source.statusWord();
    s.pressure = source.pressure();
    s.rssi = source.rssi();
    s.clippingFlags = source.clippingFlags();
    s.gpsDop = source.gpsDopRecord();
    s.gpsSolution = source.gpsSolutionRecord();
    s.gpsUtcTime = source.gpsUtcTimeRecord();
    s.gpsSatellites = source.gpsSatelliteRecord();
    s.gnssPvt = source.gnssPvtRecord();
    s.gnssSatellites = source.gnssSatelliteRecord();
    s.triggerIn1 = source.triggerIndication(KvTriggerIndication::triggerIn1Id);
    s.triggerIn2 = source.triggerIndication(KvTriggerIndication::triggerIn2Id);
    return s;
}

// Every sample of @p path, as the program would export it.
Rows recordingRows(const BenchConfig &config, const QString &path)
{
    JsonLinesReader reader;
    if (!reader.open(path))
        qFatal("%s", qPrintable(reader.errorString()));
    const QMap<QString, QVariant> settings = effectiveSettings(config);
    Rows rows{headerText(config, reader.properties(), reader.updateRate()), {}};
    const RecordingSource source(&reader);
    while (reader.readNext())
        rows.fields.push_back(flatten(presented(source), settings));
    if (reader.hasError())
        qFatal("%s", qPrintable(reader.errorString()));
    return rows;
}

Run runExporter(const BenchConfig &config, const QVector<TestSample> &pool, qint64 rows,
                const QString &out)
{
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    configure(store, config);
    TestSource source;
    source.properties = recordingProperties();
    source.rate = 100.0;
    QFile file(out);
    QElapsedTimer timer;
    timer.start();
    AsciiExporter exporter(&source, &store);
    if (!exporter.start(&file))
        qFatal("cannot write %s", qPrintable(out));
    for (qint64 i = 0; i < rows; ++i) {
        source.show(&pool.at(int(i % pool.size())));
        exporter.writeSample();
    }
    exporter.finish();
    file.close();
    return {timer.nsecsElapsed() / 1e9, QFile(out).size()};
}

char *writeInteger(char *p, char *end, qint64 value, bool isSigned, int width, char fill)
{
    char digits[24];
    char *last = isSigned ? std::to_chars(digits, digits + sizeof digits, value).ptr
                          : std::to_chars(digits, digits + sizeof digits, quint64(value)).ptr;
    const int length = int(last - digits);
    const char *first = digits;
    if (fill == '0' && digits[0] == '-' && length < width) {
        *p++ = '-';
        ++first;
        --width;
    }
    for (int i = int(last - first); i < width; ++i)
        *p++ = fill;
    (void)end;
    return std::copy(first, static_cast<const char *>(last), p);
}

Run runLimit(const Rows &table, qint64 rows, const QString &out)
{
    const std::vector<QVector<Field>> &rowsOfFields = table.fields;
    const QByteArray &header = table.header;

    constexpr std::size_t bufferSize = 1 << 20;
    std::vector<char> buffer(bufferSize);
    QElapsedTimer timer;
    timer.start();
    const int fd = ::open(out.toLocal8Bit().constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0)
        qFatal("cannot write %s", qPrintable(out));
    qint64 written = 0;
    const auto flush = [&](char *&p) {
        written += ::write(fd, buffer.data(), std::size_t(p - buffer.data()));
        p = buffer.data();
    };
    char *p = std::copy(header.cbegin(), header.cend(), buffer.data());
    char *const end = buffer.data() + bufferSize;
    for (qint64 i = 0; i < rows; ++i) {
        if (end - p < 64 * 1024)
            flush(p);
        const QVector<Field> &fields = rowsOfFields[std::size_t(i % qint64(rowsOfFields.size()))];
        for (const Field &field : fields) {
            switch (field.kind) {
            case Field::Fixed:
                p = std::to_chars(p, end, field.real, std::chars_format::fixed, field.precision)
                        .ptr;
                break;
            case Field::General:
                p = std::to_chars(p, end, field.real, std::chars_format::general, field.precision)
                        .ptr;
                break;
            case Field::Signed:
            case Field::Unsigned:
                p = writeInteger(p, end, field.integer, field.kind == Field::Signed, field.width,
                                 field.fill);
                break;
            case Field::Empty:
                break;
            }
            *p++ = '\t';
        }
        p[-1] = '\n';
    }
    flush(p);
    ::close(fd);
    return {timer.nsecsElapsed() / 1e9, written};
}

Run runQt(const Rows &table, qint64 rows, const QString &out)
{
    const std::vector<QVector<Field>> &rowsOfFields = table.fields;
    const QByteArray &header = table.header;

    QElapsedTimer timer;
    timer.start();
    QFile file(out);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(out));
    file.write(header);
    QTextStream stream(&file);
    for (qint64 i = 0; i < rows; ++i) {
        QString line;
        QTextStream row(&line);
        for (const Field &field : rowsOfFields[std::size_t(i % qint64(rowsOfFields.size()))]) {
            switch (field.kind) {
            case Field::Fixed:
                row << QString::asprintf("%.*f", field.precision, field.real);
                break;
            case Field::General:
                row << QString::asprintf("%.*g", field.precision, field.real);
                break;
            case Field::Signed:
                row << QStringLiteral("%1").arg(field.integer, field.width, 10,
                                                QLatin1Char(field.fill));
                break;
            case Field::Unsigned:
                row << QStringLiteral("%1").arg(quint64(field.integer), field.width, 10,
                                                QLatin1Char(field.fill));
                break;
            case Field::Empty:
                break;
            }
            row << '\t';
        }
        row.flush();
        line.chop(1);
        stream << line << '\n';
    }
    stream.flush();
    file.close();
    return {timer.nsecsElapsed() / 1e9, QFile(out).size()};
}

// The pool as a table for pandas: one column per field, empty fields empty.
Run writeTable(const BenchConfig &config, const QVector<TestSample> &pool, const QString &out)
{
    const QMap<QString, QVariant> settings = effectiveSettings(config);
    QFile file(out);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(out));
    QTextStream stream(&file);
    bool first = true;
    for (const TestSample &sample : pool) {
        const QVector<Field> fields = flatten(sample, settings);
        if (first) {
            QStringList names;
            for (int i = 0; i < fields.size(); ++i)
                names << QStringLiteral("c%1").arg(i);
            stream << names.join(QLatin1Char(',')) << '\n';
            first = false;
        }
        QStringList values;
        for (const Field &field : fields) {
            switch (field.kind) {
            case Field::Fixed:
            case Field::General:
                values << QString::number(field.real, 'g', 17);
                break;
            case Field::Signed:
                values << QString::number(field.integer);
                break;
            case Field::Unsigned:
                values << QString::number(quint64(field.integer));
                break;
            case Field::Empty:
                values << QString();
                break;
            }
        }
        stream << values.join(QLatin1Char(',')) << '\n';
    }
    return {0.0, 0};
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Times one way of writing an export; see scripts/bench."));
    parser.addHelpOption();
    const QCommandLineOption configOption(QStringLiteral("config"),
                                          QStringLiteral("default, inertial or full."),
                                          QStringLiteral("NAME"), QStringLiteral("default"));
    const QCommandLineOption methodOption(QStringLiteral("method"),
                                          QStringLiteral("exporter, limit, qt or table."),
                                          QStringLiteral("METHOD"), QStringLiteral("exporter"));
    const QCommandLineOption rowsOption(QStringLiteral("rows"),
                                        QStringLiteral("Rows to write (default 1000000)."),
                                        QStringLiteral("N"), QStringLiteral("1000000"));
    const QCommandLineOption outOption(QStringLiteral("out"), QStringLiteral("The file to write."),
                                       QStringLiteral("FILE"),
                                       QStringLiteral("/dev/shm/asciiexporter-bench.txt"));
    const QCommandLineOption recordingOption(
        QStringLiteral("recording"),
        QStringLiteral("Write the samples of this recording (limit and qt "
                       "only), once each, instead of the seeded pool."),
        QStringLiteral("FILE"));
    parser.addOptions({configOption, methodOption, rowsOption, outOption, recordingOption});
    parser.process(application);

    BenchConfig config;
    for (const BenchConfig &candidate : benchConfigs()) {
        if (candidate.name == parser.value(configOption))
            config = candidate;
    }
    if (config.name.isEmpty()) {
        std::fprintf(stderr, "unknown configuration\n");
        return 2;
    }
    qint64 rows = parser.value(rowsOption).toLongLong();
    const QString method = parser.value(methodOption);
    const QString out = parser.value(outOption);
    const bool fromRecording = parser.isSet(recordingOption);
    const QVector<TestSample> pool =
        fromRecording ? QVector<TestSample>() : makeSamplePool(config, poolSize, 20261121);

    Run run;
    if (method == QLatin1String("limit") || method == QLatin1String("qt")) {
        const Rows table = fromRecording ? recordingRows(config, parser.value(recordingOption))
                                         : poolRows(config, pool);
        if (fromRecording)
            rows = qint64(table.fields.size());
        run =
            method == QLatin1String("limit") ? runLimit(table, rows, out) : runQt(table, rows, out);
    } else if (fromRecording) {
        std::fprintf(stderr, "--recording is for the limit and qt methods\n");
        return 2;
    } else if (method == QLatin1String("exporter")) {
        run = runExporter(config, pool, rows, out);
    } else if (method == QLatin1String("table")) {
        run = writeTable(config, pool, out);
    } else {
        std::fprintf(stderr, "unknown method\n");
        return 2;
    }
    std::printf("{\"config\": \"%s\", \"method\": \"%s\", \"rows\": %lld, \"seconds\": %.6f, "
                "\"bytes\": %lld, "
                "\"peak_kib\": %ld}\n",
                qPrintable(config.name), qPrintable(method), rows, run.seconds, run.bytes,
                peakResidentKib());
    return 0;
}
