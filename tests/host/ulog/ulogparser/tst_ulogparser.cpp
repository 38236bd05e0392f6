#include "ulogbytes.h"
#include "ulogparser.h"
#include "ulogwriter.h"

#include <QBuffer>
#include <QTemporaryFile>
#include <QtTest>

#include <random>

// The parser on logs the project's own writer makes: every kind of message,
// appended parts, and logs cut or damaged anywhere.
class TestUlogParser : public QObject
{
    Q_OBJECT

private slots:
    void everyMessage();
    void dataValues();
    void multiIdsAndUnsubscription();
    void paddingAtTheEndLeftOut();
    void appendedParts();
    void messageRunningIntoAppendedPart();
    void cutEverywhere();
    void damagedHeaderThenSync();
    void damagedHeaderWithoutSync();
    void damageInMainPartReadsOnInAppendedPart();
    void dataForNoSubscription();
    void wrongDataSize();
    void unknownIncompatibleFlags();
    void notAUlog_data();
    void notAUlog();
    void readBackByOffset();
    void randomDamage();
};

namespace {

using Message = UlogParser::Message;

const char *const sensorFormat = "sensor_combined:uint64_t timestamp;float[3] gyro_rad;"
                                 "float[3] accelerometer_m_s2;uint8_t accelerometer_clipping;"
                                 "uint8_t[3] _padding0;";
const char *const attitudeFormat = "vehicle_attitude:uint64_t timestamp;float[4] q;esc e;";
const char *const escFormat = "esc:int16_t rpm;uint8_t[2] _padding0;double d;";

std::string sensorPayload(quint64 timestamp, float base, quint8 clipping)
{
    UlogBytes bytes;
    bytes.put(timestamp);
    for (int i = 0; i < 6; ++i)
        bytes.put(base + float(i) * 0.25f);
    return bytes.put(clipping).pad(3).data();
}

std::string attitudePayload(quint64 timestamp, float w)
{
    UlogBytes bytes;
    bytes.put(timestamp).put(w).put(-0.5f).put(0.25f).put(1e-7f);
    return bytes.put(qint16(-1234)).pad(2).put(3.0000000000000004).data();
}

// A log with every kind of message; ends[] holds where each message ends.
struct TestLog
{
    QByteArray bytes;
    std::vector<qint64> ends;
};

TestLog everyKindOfMessage()
{
    TestLog log;
    QBuffer buffer(&log.bytes);
    buffer.open(QIODevice::WriteOnly);
    UlogWriter writer(&buffer);
    const auto step = [&](bool written) {
        if (!written)
            qFatal("the writer failed");
        log.ends.push_back(writer.offset());
    };
    step(writer.writeHeader(1234567));
    step(writer.writeFlagBits({1}));
    step(writer.writeInfoText("ver_sw", "0123abcd"));
    step(writer.writeInfoUInt32("ver_sw_release", 0x010E00FF));
    step(writer.writeFormat(escFormat));
    step(writer.writeFormat(sensorFormat));
    step(writer.writeFormat(attitudeFormat));
    step(writer.writeInfo("char[24] sys_uuid", "000600000000383335365104"));
    step(writer.writeMultiInfo("char[5] perf", "first", false));
    step(writer.writeMultiInfo("char[6] perf", " half", true));
    step(writer.writeMultiInfo("char[6] perf", "second", false));
    step(writer.writeParameter("MC_ROLL_P", 6.5f));
    step(writer.writeParameter("SYS_AUTOSTART", qint32(4001)));
    step(writer.writeDefaultParameter(3, "MC_ROLL_P", 7.0f));
    step(writer.writeSubscription(0, 7, "sensor_combined"));
    step(writer.writeSubscription(0, 2, "vehicle_attitude"));
    step(writer.writeData(7, sensorPayload(2000000, 1.5f, 5)));
    step(writer.writeMessage('Z', "a message type from the future"));
    step(writer.writeData(2, attitudePayload(2001000, 0.5f)));
    step(writer.writeLogging('6', 2002000, "Takeoff detected"));
    step(writer.writeTaggedLogging('4', 3, 2003000, "Preflight: GPS fix too low"));
    step(writer.writeSync());
    step(writer.writeDropout(62));
    step(writer.writeParameter("MC_ROLL_P", 6.75f));
    step(writer.writeData(7, sensorPayload(2004000, -3.0f, 0)));
    if (!writer.finish())
        qFatal("the writer failed");
    return log;
}

// What a parser read, in short, message by message.
struct Reading
{
    QStringList messages;
    std::vector<UlogDamage> damage;
    Message last = Message::End;
    QString error;
};

// The start most of these logs share: the header with @p startTime, the
// flag bits, and sensor_combined's format and subscription as message id 0.
void beginSensorLog(UlogWriter &writer, quint64 startTime)
{
    writer.writeHeader(startTime);
    writer.writeFlagBits();
    writer.writeFormat(sensorFormat);
    writer.writeSubscription(0, 0, "sensor_combined");
}

QString describe(const UlogParser &parser, Message kind)
{
    const auto text = [](std::string_view view) {
        return QString::fromUtf8(view.data(), int(view.size()));
    };
    switch (kind) {
    case Message::FlagBits:
        return QStringLiteral("B %1").arg(parser.compatFlags()[0]);
    case Message::Format:
        return QStringLiteral("F ") + text(parser.formatDefinition());
    case Message::Info:
    case Message::Parameter:
        return QStringLiteral("%1 %2 %3 = %4")
            .arg(kind == Message::Info        ? "I"
                     : parser.inDataSection() ? "P changed"
                                              : "P",
                 text(parser.keyValue().type), text(parser.keyValue().name),
                 parser.keyValue().value().toString());
    case Message::MultiInfo:
        return QStringLiteral("M %1%2 = %3")
            .arg(text(parser.keyValue().name), parser.keyValue().continued ? " continued" : "",
                 text(parser.joinedValue()));
    case Message::DefaultParameter:
        return QStringLiteral("Q %1 %2 = %3")
            .arg(parser.defaultTypes())
            .arg(text(parser.keyValue().name), parser.keyValue().value().toString());
    case Message::Subscription:
    case Message::Unsubscription:
        return QStringLiteral("%1 %2 %3 %4")
            .arg(kind == Message::Subscription ? "A" : "R")
            .arg(parser.currentSubscription().msgId)
            .arg(QString::fromStdString(parser.currentSubscription().topic))
            .arg(parser.currentSubscription().multiId);
    case Message::Data:
        return QStringLiteral("D %1/%2 %3 %4 bytes at %5")
            .arg(QString::fromStdString(parser.currentSubscription().topic))
            .arg(parser.currentSubscription().multiId)
            .arg(parser.timestamp())
            .arg(parser.payload().size())
            .arg(parser.payloadOffset());
    case Message::Logging:
        return QStringLiteral("%1 %2 %3 %4 %5")
            .arg(parser.loggedString().tagged ? "C" : "L")
            .arg(QChar(parser.loggedString().level))
            .arg(parser.loggedString().tag)
            .arg(parser.loggedString().timestamp)
            .arg(text(parser.loggedString().text));
    case Message::Sync:
        return QStringLiteral("S");
    case Message::Dropout:
        return QStringLiteral("O %1").arg(parser.dropoutDuration());
    case Message::End:
    case Message::Failed:
        break;
    }
    return {};
}

Reading read(QIODevice *device)
{
    Reading reading;
    UlogParser parser(device);
    for (;;) {
        const Message kind = parser.next();
        if (kind == Message::End || kind == Message::Failed) {
            reading.last = kind;
            reading.error = parser.errorString();
            break;
        }
        reading.messages << describe(parser, kind);
    }
    reading.damage = parser.damage();
    return reading;
}

Reading read(const QByteArray &bytes)
{
    QByteArray copy = bytes;
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    return read(&buffer);
}

QString damageText(const Reading &reading)
{
    QStringList texts;
    for (const UlogDamage &damage : reading.damage)
        texts << damage.text();
    return texts.join('\n');
}

} // namespace

void TestUlogParser::everyMessage()
{
    const TestLog log = everyKindOfMessage();
    const Reading reading = read(log.bytes);
    QCOMPARE(reading.last, Message::End);
    QVERIFY2(reading.damage.empty(), qPrintable(damageText(reading)));
    const QStringList expected{
        "B 1",
        "I char[8] ver_sw = 0123abcd",
        "I uint32_t ver_sw_release = 17694975",
        QStringLiteral("F ") + escFormat,
        QStringLiteral("F ") + sensorFormat,
        QStringLiteral("F ") + attitudeFormat,
        "I char[24] sys_uuid = 000600000000383335365104",
        "M perf = first",
        "M perf continued = first half",
        "M perf = second",
        "P float MC_ROLL_P = 6.5",
        "P int32_t SYS_AUTOSTART = 4001",
        "Q 3 MC_ROLL_P = 7",
        "A 7 sensor_combined 0",
        "A 2 vehicle_attitude 0",
        QStringLiteral("D sensor_combined/0 2000000 36 bytes at %1").arg(log.ends[15] + 5),
        QStringLiteral("D vehicle_attitude/0 2001000 36 bytes at %1").arg(log.ends[17] + 5),
        "L 6 0 2002000 Takeoff detected",
        "C 4 3 2003000 Preflight: GPS fix too low",
        "S",
        "O 62",
        "P changed float MC_ROLL_P = 6.75",
        QStringLiteral("D sensor_combined/0 2004000 36 bytes at %1").arg(log.ends[23] + 5),
    };
    QCOMPARE(reading.messages, expected);

    QByteArray copy = log.bytes;
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    UlogParser parser(&buffer);
    while (parser.next() != Message::End) { }
    QCOMPARE(parser.version(), quint8(1));
    QCOMPARE(parser.startTimestamp(), quint64(1234567));
    QCOMPARE(parser.unknownMessages(), qint64(1));
    QCOMPARE(parser.position(), qint64(log.bytes.size()));
    QVERIFY(parser.appendedOffsets().empty());
}

void TestUlogParser::dataValues()
{
    const TestLog log = everyKindOfMessage();
    QByteArray copy = log.bytes;
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    UlogParser parser(&buffer);
    std::vector<std::string> sensors;
    std::string attitude;
    for (Message kind; (kind = parser.next()) != Message::End;) {
        QVERIFY(kind != Message::Failed);
        if (kind != Message::Data)
            continue;
        if (parser.currentSubscription().topic == "sensor_combined")
            sensors.emplace_back(parser.payload());
        else
            attitude = std::string(parser.payload());
    }
    const UlogFormats &formats = parser.formats();
    QCOMPARE(sensors.size(), std::size_t(2));
    const UlogField accelerometer = formats.field("sensor_combined", "accelerometer_m_s2");
    QCOMPARE(accelerometer.count, 3);
    QCOMPARE(accelerometer.value(sensors[0].data(), 2), double(1.5f + 5 * 0.25f));
    QCOMPARE(formats.field("sensor_combined", "gyro_rad[1]").value(sensors[1].data()),
             double(-3.0f + 0.25f));
    QCOMPARE(formats.field("sensor_combined", "accelerometer_clipping").value(sensors[0].data()),
             5.0);
    QCOMPARE(formats.field("sensor_combined", "timestamp").unsignedValue(sensors[1].data()),
             quint64(2004000));
    QCOMPARE(formats.field("vehicle_attitude", "q[3]").value(attitude.data()), double(1e-7f));
    QCOMPARE(formats.field("vehicle_attitude", "e.rpm").value(attitude.data()), -1234.0);
    QCOMPARE(formats.field("vehicle_attitude", "e.d").value(attitude.data()), 3.0000000000000004);
    QVERIFY(!formats.has("vehicle_attitude", "e._padding0"));
    QVERIFY(!formats.has("sensor_combined", "magnetometer_ga"));
}

void TestUlogParser::multiIdsAndUnsubscription()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    UlogWriter writer(&buffer);
    beginSensorLog(writer, 0);
    writer.writeSubscription(1, 1, "sensor_combined");
    writer.writeData(1, sensorPayload(10, 0, 0));
    writer.writeData(0, sensorPayload(11, 0, 0));
    writer.writeUnsubscription(1);
    writer.writeData(0, sensorPayload(12, 0, 0));
    QVERIFY(writer.finish());
    const Reading reading = read(bytes);
    QVERIFY2(reading.damage.empty(), qPrintable(damageText(reading)));
    QCOMPARE(reading.messages.mid(2).replaceInStrings(QRegularExpression(" bytes at \\d+"), ""),
             (QStringList{"A 0 sensor_combined 0", "A 1 sensor_combined 1",
                          "D sensor_combined/1 10 36", "D sensor_combined/0 11 36",
                          "R 1 sensor_combined 1", "D sensor_combined/0 12 36"}));
}

void TestUlogParser::paddingAtTheEndLeftOut()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    UlogWriter writer(&buffer);
    beginSensorLog(writer, 0);
    const std::string whole = sensorPayload(10, 2.0f, 3);
    writer.writeData(0, whole.substr(0, whole.size() - 3));
    QVERIFY(writer.finish());
    QByteArray copy = bytes;
    QBuffer input(&copy);
    input.open(QIODevice::ReadOnly);
    UlogParser parser(&input);
    Message kind;
    while ((kind = parser.next()) != Message::Data && kind != Message::End) { }
    QCOMPARE(kind, Message::Data);
    QCOMPARE(parser.payload().size(), whole.size() - 3);
    QCOMPARE(parser.formats()
                 .field("sensor_combined", "accelerometer_clipping")
                 .value(parser.payload().data()),
             3.0);
    QCOMPARE(parser.next(), Message::End);
    QVERIFY(parser.damage().empty());
}

void TestUlogParser::appendedParts()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadWrite);
    UlogWriter writer(&buffer);
    beginSensorLog(writer, 5);
    writer.writeData(0, sensorPayload(10, 0, 0));
    const qint64 first = writer.offset();
    writer.beginAppendedPart();
    writer.writeMultiInfo("char[9] hardfault_plain", "fault one", false);
    const qint64 second = writer.offset();
    writer.beginAppendedPart();
    writer.writeData(0, sensorPayload(20, 0, 0));
    QVERIFY(writer.finish());

    QByteArray copy = bytes;
    QBuffer input(&copy);
    input.open(QIODevice::ReadOnly);
    UlogParser parser(&input);
    QStringList seen;
    for (Message kind; (kind = parser.next()) != Message::End;) {
        QVERIFY(kind != Message::Failed);
        if (kind == Message::Data)
            seen << QStringLiteral("%1 in part %2").arg(parser.timestamp()).arg(parser.part());
        if (kind == Message::MultiInfo)
            seen << QStringLiteral("fault in part %1").arg(parser.part());
    }
    QCOMPARE(parser.incompatFlags()[0], quint8(1));
    QCOMPARE(parser.appendedOffsets(), (std::vector<qint64>{first, second}));
    QCOMPARE(seen, (QStringList{"10 in part 0", "fault in part 1", "20 in part 2"}));
    QVERIFY(parser.damage().empty());
}

void TestUlogParser::messageRunningIntoAppendedPart()
{
    // A log whose main part was cut short before data was appended.
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadWrite);
    UlogWriter writer(&buffer);
    beginSensorLog(writer, 5);
    const qint64 cutMessage = writer.offset();
    UlogBytes header;
    header.put(quint16(34)).put('D').put(quint16(0));
    writer.writeBytes(header);
    writer.writeBytes(sensorPayload(10, 0, 0).substr(0, 9));
    const qint64 appended = writer.offset();
    writer.beginAppendedPart();
    writer.writeData(0, sensorPayload(20, 0, 0));
    QVERIFY(writer.finish());

    const Reading reading = read(bytes);
    QCOMPARE(reading.last, Message::End);
    QCOMPARE(reading.messages.last().section(' ', 0, 2), "D sensor_combined/0 20");
    QCOMPARE(reading.damage.size(), std::size_t(1));
    QCOMPARE(reading.damage[0].offset, cutMessage);
    QCOMPARE(reading.damage[0].resumedAt, appended);
    QVERIFY2(reading.damage[0].text().contains(QStringLiteral("byte %1").arg(cutMessage)),
             qPrintable(reading.damage[0].text()));
}

void TestUlogParser::cutEverywhere()
{
    const TestLog log = everyKindOfMessage();
    const Reading whole = read(log.bytes);
    for (int cut = 0; cut < log.bytes.size(); ++cut) {
        const Reading reading = read(log.bytes.left(cut));
        if (cut < 16) {
            QCOMPARE(reading.last, Message::Failed);
            QVERIFY(!reading.error.isEmpty());
            continue;
        }
        QCOMPARE(reading.last, Message::End);
        // The messages that end before the cut, all of them and no more.
        const auto complete = std::upper_bound(log.ends.begin(), log.ends.end(), qint64(cut));
        const int messages = int(complete - log.ends.begin()) - 1;
        // The message of a type the parser does not know is not among them.
        const int unknownBefore = cut >= log.ends[17] ? 1 : 0;
        QCOMPARE(reading.messages, whole.messages.mid(0, messages - unknownBefore));
        const bool atBoundary = std::binary_search(log.ends.begin(), log.ends.end(), qint64(cut));
        if (atBoundary) {
            QVERIFY2(reading.damage.empty(), qPrintable(damageText(reading)));
            continue;
        }
        const qint64 cutMessage = *(complete - 1);
        QCOMPARE(reading.damage.size(), std::size_t(1));
        QCOMPARE(reading.damage[0].offset, cutMessage);
        QCOMPARE(reading.damage[0].resumedAt, qint64(-1));
        QVERIFY2(reading.damage[0].text().startsWith(QStringLiteral("byte %1: ").arg(cutMessage))
                     && reading.damage[0].text().contains("cut"),
                 qPrintable(reading.damage[0].text()));
    }
}

void TestUlogParser::damagedHeaderThenSync()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    UlogWriter writer(&buffer);
    beginSensorLog(writer, 0);
    writer.writeData(0, sensorPayload(10, 0, 0));
    const qint64 damaged = writer.offset();
    writer.writeBytes(std::string("\x05\x00\x00garbage", 10));
    writer.writeData(0, sensorPayload(11, 0, 0));
    writer.writeSync();
    const qint64 afterSync = writer.offset();
    writer.writeData(0, sensorPayload(12, 0, 0));
    QVERIFY(writer.finish());

    const Reading reading = read(bytes);
    QCOMPARE(reading.last, Message::End);
    QStringList data = reading.messages.filter(QRegularExpression("^D "));
    data.replaceInStrings(QRegularExpression(" 36 bytes at \\d+"), "");
    // The message between the damage and the sync message is lost with it.
    QCOMPARE(data, (QStringList{"D sensor_combined/0 10", "D sensor_combined/0 12"}));
    QCOMPARE(reading.damage.size(), std::size_t(1));
    QCOMPARE(reading.damage[0].offset, damaged);
    QCOMPARE(reading.damage[0].resumedAt, afterSync);
    QVERIFY2(reading.damage[0].text().contains("damaged message header"),
             qPrintable(reading.damage[0].text()));
}

void TestUlogParser::damagedHeaderWithoutSync()
{
    TestLog log = everyKindOfMessage();
    // The header of the last data message, its type made 0.
    const qint64 lastData = log.ends[23];
    log.bytes[int(lastData) + 2] = 0;
    const Reading reading = read(log.bytes);
    QCOMPARE(reading.last, Message::End);
    QCOMPARE(reading.damage.size(), std::size_t(1));
    QCOMPARE(reading.damage[0].offset, lastData);
    QCOMPARE(reading.damage[0].resumedAt, qint64(-1));
    QVERIFY2(
        reading.damage[0].text().contains(
            QStringLiteral("the %1 bytes after it are not read").arg(log.bytes.size() - lastData)),
        qPrintable(reading.damage[0].text()));
    QCOMPARE(reading.messages.last(), "P changed float MC_ROLL_P = 6.75");
}

void TestUlogParser::damageInMainPartReadsOnInAppendedPart()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadWrite);
    UlogWriter writer(&buffer);
    beginSensorLog(writer, 0);
    const qint64 damaged = writer.offset();
    writer.writeBytes(std::string(40, '\xff'));
    const qint64 appended = writer.offset();
    writer.beginAppendedPart();
    writer.writeData(0, sensorPayload(20, 0, 0));
    QVERIFY(writer.finish());
    const Reading reading = read(bytes);
    QCOMPARE(reading.damage.size(), std::size_t(1));
    QCOMPARE(reading.damage[0].offset, damaged);
    QCOMPARE(reading.damage[0].resumedAt, appended);
    QCOMPARE(reading.messages.last().section(' ', 0, 2), "D sensor_combined/0 20");
}

void TestUlogParser::dataForNoSubscription()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    UlogWriter writer(&buffer);
    beginSensorLog(writer, 0);
    const qint64 stray = writer.offset();
    writer.writeData(9, sensorPayload(10, 0, 0));
    writer.writeData(9, sensorPayload(11, 0, 0));
    writer.writeData(0, sensorPayload(12, 0, 0));
    QVERIFY(writer.finish());
    const Reading reading = read(bytes);
    QCOMPARE(reading.messages.filter(QRegularExpression("^D ")).size(), 1);
    // One word for the message id, however many messages it has.
    QCOMPARE(reading.damage.size(), std::size_t(1));
    QCOMPARE(reading.damage[0].offset, stray);
    QVERIFY(reading.damage[0].text().contains("message id 9"));
}

void TestUlogParser::wrongDataSize()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    UlogWriter writer(&buffer);
    beginSensorLog(writer, 0);
    const qint64 tooShort = writer.offset();
    writer.writeData(0, sensorPayload(10, 0, 0).substr(0, 28));
    const qint64 tooLong = writer.offset();
    writer.writeData(0, sensorPayload(11, 0, 0) + "x");
    writer.writeData(0, sensorPayload(12, 0, 0));
    QVERIFY(writer.finish());
    const Reading reading = read(bytes);
    QCOMPARE(reading.messages.filter(QRegularExpression("^D ")).size(), 1);
    QCOMPARE(reading.damage.size(), std::size_t(2));
    QCOMPARE(reading.damage[0].offset, tooShort);
    QCOMPARE(reading.damage[1].offset, tooLong);
    QVERIFY2(reading.damage[0].text().contains("28 bytes, where its format has 36 and 33"),
             qPrintable(reading.damage[0].text()));
}

void TestUlogParser::unknownIncompatibleFlags()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    UlogWriter writer(&buffer);
    writer.writeHeader(0);
    writer.writeFlagBits({}, {0, 4});
    QVERIFY(writer.finish());
    const Reading reading = read(bytes);
    QCOMPARE(reading.last, Message::Failed);
    QVERIFY2(reading.error.contains("incompatible flags"), qPrintable(reading.error));
}

void TestUlogParser::notAUlog_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("json") << QByteArray("{\"packetCounter\":1}\n");
    QTest::newRow("other version of the magic") << QByteArray("ULog\x01\x13\x35\x01", 8);
}

void TestUlogParser::notAUlog()
{
    QFETCH(QByteArray, bytes);
    const Reading reading = read(bytes);
    QCOMPARE(reading.last, Message::Failed);
    QVERIFY2(reading.error.contains("no ULog"), qPrintable(reading.error));
}

void TestUlogParser::readBackByOffset()
{
    const TestLog log = everyKindOfMessage();
    QTemporaryFile file;
    QVERIFY(file.open());
    QCOMPARE(file.write(log.bytes), qint64(log.bytes.size()));
    QVERIFY(file.seek(0));
    QByteArray copy = log.bytes;
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    for (QIODevice *device : {static_cast<QIODevice *>(&file), static_cast<QIODevice *>(&buffer)}) {
        UlogParser parser(device);
        int data = 0;
        for (Message kind; (kind = parser.next()) != Message::End;) {
            if (kind != Message::Data)
                continue;
            ++data;
            const std::string payload(parser.payload());
            std::string again(payload.size(), '\0');
            // Reading back on the way must not disturb the reading of messages.
            QVERIFY(parser.readAt(parser.payloadOffset(), again.data(), qint64(again.size())));
            QCOMPARE(again, payload);
        }
        QCOMPARE(data, 3);
        QVERIFY(parser.damage().empty());
    }
}

void TestUlogParser::randomDamage()
{
    const TestLog log = everyKindOfMessage();
    std::mt19937 random(2024);
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes = log.bytes;
        const int flips = 1 + int(random() % 4);
        for (int i = 0; i < flips; ++i)
            bytes[int(random() % quint32(bytes.size()))] = char(random());
        if (round % 3 == 0)
            bytes.truncate(int(random() % quint32(bytes.size())));
        const Reading reading = read(bytes);
        QVERIFY(reading.last == Message::End || reading.last == Message::Failed);
        for (const UlogDamage &damage : reading.damage) {
            QVERIFY(damage.offset >= 16 && damage.offset < bytes.size());
            QVERIFY(damage.resumedAt == -1 || damage.resumedAt > damage.offset);
        }
    }
}

QTEST_APPLESS_MAIN(TestUlogParser)
#include "tst_ulogparser.moc"
