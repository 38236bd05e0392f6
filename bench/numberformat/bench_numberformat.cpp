#include "numberformatcase.h"

#include "numberformatappend.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextStream>

#include <cmath>
#include <limits>

namespace {

// The exporter appends a row's values to one line, then starts the next.
constexpr int valuesPerLine = 64;
constexpr int timedValues = 1000000;
// Other processes share the machine: the fastest of a few runs is the least disturbed.
constexpr int timedRuns = 3;

// Keeps the timed work from being optimised away.
volatile qint64 sink = 0;

template <typename Append>
double nsPerAppend(const QVector<quint64> &values, Append append)
{
    qint64 fastest = std::numeric_limits<qint64>::max();
    for (int run = 0; run < timedRuns; ++run) {
        QString line;
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < values.size(); ++i) {
            if (i % valuesPerLine == 0)
                line.resize(0);
            append(line, values.at(i));
        }
        fastest = qMin(fastest, timer.nsecsElapsed());
        sink = sink + line.size();
    }
    return double(fastest) / values.size();
}

template <typename Write>
double nsPerWrite(const QVector<quint64> &values, Write write)
{
    qint64 fastest = std::numeric_limits<qint64>::max();
    for (int run = 0; run < timedRuns; ++run) {
        char buffer[NumberFormat::MaxLength];
        qint64 total = 0;
        QElapsedTimer timer;
        timer.start();
        for (quint64 value : values)
            total += write(buffer, value) - buffer;
        fastest = qMin(fastest, timer.nsecsElapsed());
        sink = sink + total;
    }
    return double(fastest) / values.size();
}

double nsQt(const NumberFormatCase &c, const QVector<quint64> &values)
{
    return nsPerAppend(values, [&c](QString &line, quint64 v) { line += c.qtText(v); });
}

double nsOursAppend(const NumberFormatCase &c, const QVector<quint64> &values)
{
    switch (c.kind) {
    case NumberFormatCase::Double:
        if (c.notation == 'f') {
            return nsPerAppend(values, [&c](QString &line, quint64 v) {
                NumberFormat::appendFixed(line, NumberFormatCase::toDouble(v), c.precision);
            });
        }
        return nsPerAppend(values, [&c](QString &line, quint64 v) {
            NumberFormat::appendGeneral(line, NumberFormatCase::toDouble(v), c.precision);
        });
    case NumberFormatCase::Signed:
        return nsPerAppend(values, [&c](QString &line, quint64 v) {
            NumberFormat::appendInteger(line, c.toSigned(v), c.width, c.fill);
        });
    case NumberFormatCase::Unsigned:
        return nsPerAppend(values, [&c](QString &line, quint64 v) {
            NumberFormat::appendUnsigned(line, c.toUnsigned(v), c.width, c.fill);
        });
    }
    return 0;
}

double nsOursWrite(const NumberFormatCase &c, const QVector<quint64> &values)
{
    switch (c.kind) {
    case NumberFormatCase::Double:
        if (c.notation == 'f') {
            return nsPerWrite(values, [&c](char *out, quint64 v) {
                return NumberFormat::writeFixed(out, NumberFormatCase::toDouble(v), c.precision);
            });
        }
        return nsPerWrite(values, [&c](char *out, quint64 v) {
            return NumberFormat::writeGeneral(out, NumberFormatCase::toDouble(v), c.precision);
        });
    case NumberFormatCase::Signed:
        return nsPerWrite(values, [&c](char *out, quint64 v) {
            return NumberFormat::writeInteger(out, c.toSigned(v), c.width, c.fill);
        });
    case NumberFormatCase::Unsigned:
        return nsPerWrite(values, [&c](char *out, quint64 v) {
            return NumberFormat::writeUnsigned(out, c.toUnsigned(v), c.width, c.fill);
        });
    }
    return 0;
}

// Number of values whose text differs from Qt's; the first few go to err.
qint64 countMismatches(const NumberFormatCase &c, const QVector<quint64> &values, QTextStream &err)
{
    qint64 mismatches = 0;
    QString ours;
    for (quint64 value : values) {
        ours.resize(0);
        c.appendOurs(ours, value);
        const QString qt = c.qtText(value);
        if (ours != qt && ++mismatches <= 5)
            err << "  " << c.name << " on " << c.describe(value) << ": Qt \"" << qt << "\", ours \""
                << ours << "\"" << Qt::endl;
    }
    return mismatches;
}

// Every k / 2^(decimals + 1) with odd k below 2^(21 + decimals), of both
// signs: each decimal tie of magnitude below 2^20.
qint64 checkAllTies(const NumberFormatCase &c, QTextStream &err, qint64 *checked)
{
    constexpr quint64 chunk = 1 << 22;
    const quint64 end = quint64(1) << (20 + c.precision);
    qint64 mismatches = 0;
    QVector<quint64> values;
    for (quint64 first = 0; first < end; first += chunk) {
        values.resize(0);
        for (quint64 i = first; i < qMin(end, first + chunk); ++i) {
            const double tie = std::ldexp(double(2 * i + 1), -(c.precision + 1));
            values.append(NumberFormatCase::fromDouble(tie));
            values.append(NumberFormatCase::fromDouble(-tie));
        }
        mismatches += countMismatches(c, values, err);
        *checked += values.size();
    }
    return mismatches;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Checks NumberFormat against Qt's own formatting value by value and times both."));
    parser.addHelpOption();
    const QCommandLineOption countOption(
        QStringLiteral("count"), QStringLiteral("Values checked per format (default 10000000)."),
        QStringLiteral("n"), QStringLiteral("10000000"));
    const QCommandLineOption seedOption(QStringLiteral("seed"),
                                        QStringLiteral("Seed of the random values."),
                                        QStringLiteral("seed"), QStringLiteral("20150"));
    const QCommandLineOption filterOption(
        QStringLiteral("filter"), QStringLiteral("Only formats whose name contains this text."),
        QStringLiteral("text"));
    const QCommandLineOption allTiesOption(
        QStringLiteral("all-ties"),
        QStringLiteral("Also check every tie below 2^20 of each asprintf "
                       "fixed format (about 2 * 10^9 values)."));
    parser.addOptions({countOption, seedOption, filterOption, allTiesOption});
    parser.process(app);

    bool ok = false;
    const int count = parser.value(countOption).toInt(&ok);
    if (!ok || count <= 0)
        parser.showHelp(1);
    const quint64 seed = parser.value(seedOption).toULongLong();
    const QString filter = parser.value(filterOption);

    QTextStream out(stdout);
    QTextStream err(stderr);
    out << "ns per value, appended to a line (QString) or written to a char buffer (char*);\n"
        << "'mixed' is the checked set, 'typical' only sensor readings or small integers.\n";
    out << qSetFieldWidth(30) << Qt::left << "format" << qSetFieldWidth(10) << Qt::right << "values"
        << "differ"
        << "Qt mixed"
        << "ours"
        << "char*"
        << "Qt typ."
        << "ours"
        << "char*"
        << "speed-up" << qSetFieldWidth(0) << Qt::endl;

    qint64 allMismatches = 0;
    for (const NumberFormatCase &c : NumberFormatCase::all()) {
        if (!filter.isEmpty() && !c.name.contains(filter))
            continue;
        const QVector<quint64> values = c.values(count, seed);
        const qint64 mismatches = countMismatches(c, values, err);
        allMismatches += mismatches;

        const QVector<quint64> mixed = values.mid(0, timedValues);
        const QVector<quint64> typical = c.typicalValues(timedValues, seed);
        const double qtMixed = nsQt(c, mixed);
        const double oursMixed = nsOursAppend(c, mixed);
        const double writeMixed = nsOursWrite(c, mixed);
        const double qtTypical = nsQt(c, typical);
        const double oursTypical = nsOursAppend(c, typical);
        const double writeTypical = nsOursWrite(c, typical);

        out << qSetFieldWidth(30) << Qt::left << c.name << qSetFieldWidth(10) << Qt::right
            << values.size() << mismatches << qSetRealNumberPrecision(1) << Qt::fixed << qtMixed
            << oursMixed << writeMixed << qtTypical << oursTypical << writeTypical
            << qtTypical / oursTypical << qSetFieldWidth(0) << Qt::endl;
    }

    if (parser.isSet(allTiesOption)) {
        for (const NumberFormatCase &c : NumberFormatCase::all()) {
            if (c.call != NumberFormatCase::Asprintf || c.notation != 'f'
                || c.pattern.contains('l'))
                continue;
            if (!filter.isEmpty() && !c.name.contains(filter))
                continue;
            qint64 checked = 0;
            const qint64 mismatches = checkAllTies(c, err, &checked);
            allMismatches += mismatches;
            out << "every tie below 2^20 of " << c.name << ": " << checked << " values, "
                << mismatches << " differ" << Qt::endl;
        }
    }

    out << (allMismatches == 0 ? "all values match Qt" : "MISMATCHES FOUND") << Qt::endl;
    return allMismatches == 0 ? 0 : 1;
}
