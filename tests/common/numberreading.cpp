#include "numberreading.h"

#include <jsonlinesreader.h>

#include <QBuffer>

#include <cstring>
#include <string>
#include <vector>

namespace {

// The double fields of one sample line, as many numbers as the line holds.
constexpr int numbersPerLine = 25;
// Lines written and read at a time, so that memory stays bounded.
constexpr int linesPerBatch = 40000;

quint64 bits(double value)
{
    quint64 word;
    std::memcpy(&word, &value, sizeof word);
    return word;
}

std::string sampleLine(const std::string (&n)[numbersPerLine])
{
    std::string line = "{\"calibratedAcceleration\": [" + n[0] + ", " + n[1] + ", " + n[2] + "], ";
    line += "\"freeAcceleration\": [" + n[3] + ", " + n[4] + ", " + n[5] + "], ";
    line += "\"orientationQuaternion\": [" + n[6] + ", " + n[7] + ", " + n[8] + ", " + n[9] + "], ";
    line += "\"orientationMatrix\": [[" + n[10] + ", " + n[11] + ", " + n[12] + "], [" + n[13]
        + ", " + n[14] + ", " + n[15] + "], [" + n[16] + ", " + n[17] + ", " + n[18] + "]], ";
    line += "\"latitudeLongitude\": [" + n[19] + ", " + n[20] + "], ";
    line += "\"altitude\": " + n[21] + ", \"temperature\": " + n[22] + ", \"pressure\": " + n[23]
        + ", \"rssi\": " + n[24] + "}\n";
    return line;
}

// The values of a sample line, in the order sampleLine() writes them.
void valuesOf(const RecordingSample &s, double (&out)[numbersPerLine])
{
    for (int i = 0; i < 3; ++i) {
        out[i] = s.calibratedAcceleration.at(i);
        out[3 + i] = s.freeAcceleration.at(i);
    }
    for (int i = 0; i < 4; ++i)
        out[6 + i] = s.orientationQuaternion.at(i);
    for (int i = 0; i < 9; ++i)
        out[10 + i] = s.orientationMatrix.at(i);
    out[19] = s.latitudeLongitude.at(0);
    out[20] = s.latitudeLongitude.at(1);
    out[21] = s.altitude;
    out[22] = s.temperature;
    out[23] = s.pressure;
    out[24] = s.rssi;
}

} // namespace

QString checkNumberReading(NumberTexts::Form form, qint64 count, quint64 seed, qint64 *checked)
{
    NumberTexts::Generator generator(form, seed);
    std::vector<std::string> texts;
    qint64 done = 0;
    while (done < count) {
        texts.clear();
        QByteArray content = "{\"properties\": {}, \"updateRate\": 100}\n";
        std::string numbers[numbersPerLine];
        for (int line = 0; line < linesPerBatch && done + qint64(texts.size()) < count; ++line) {
            for (std::string &number : numbers) {
                number = generator.next();
                texts.push_back(number);
            }
            const std::string text = sampleLine(numbers);
            content.append(text.data(), int(text.size()));
        }
        QBuffer buffer(&content);
        buffer.open(QIODevice::ReadOnly);
        JsonLinesReader reader;
        if (!reader.open(&buffer, QStringLiteral("numbers.jsonl")))
            return reader.errorString();
        std::size_t next = 0;
        while (reader.readNext()) {
            double read[numbersPerLine];
            valuesOf(reader.sample(), read);
            for (const double value : read) {
                const std::string &text = texts.at(next++);
                const double wanted = NumberTexts::expected(text);
                if (bits(value) != bits(wanted))
                    return QStringLiteral("%1 was read as %2 (bits %3), not %4 (bits %5)")
                        .arg(QString::fromStdString(text), QString::number(value, 'g', 17))
                        .arg(bits(value), 16, 16, QLatin1Char('0'))
                        .arg(QString::number(wanted, 'g', 17))
                        .arg(bits(wanted), 16, 16, QLatin1Char('0'));
            }
        }
        if (reader.hasError())
            return reader.errorString();
        if (next != texts.size())
            return QStringLiteral("%1 of %2 numbers were read").arg(next).arg(texts.size());
        done += qint64(texts.size());
    }
    if (checked)
        *checked = done;
    return QString();
}
