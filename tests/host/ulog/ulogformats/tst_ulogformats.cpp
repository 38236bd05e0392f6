#include "ulogbytes.h"
#include "ulogformats.h"
#include "ulogkeyvalue.h"

#include <QtTest>

#include <cmath>
#include <limits>

// Layouts of topics as format definitions give them, and the typed values
// of information and parameter messages.
class TestUlogFormats : public QObject
{
    Q_OBJECT

private slots:
    void fields_data();
    void fields();
    void sizes();
    void valuesOfEveryType();
    void badDefinitions_data();
    void badDefinitions();
    void formatsNestingInALoop();
    void laterDefinitionReplaces();
    void keyValues_data();
    void keyValues();
};

namespace {

// A topic with nested formats, arrays and padding inside and at the end.
UlogFormats escFormats()
{
    UlogFormats formats;
    QString error;
    for (const char *definition :
         {"esc_status:uint64_t timestamp;esc_report[2] esc;vec3 wind;uint8_t count;"
          "uint8_t[7] _padding0;",
          "esc_report:int32_t esc_rpm;uint8_t esc_state;uint8_t[3] _padding0;",
          "vec3:float x;float y;float z;"}) {
        if (!formats.add(definition, &error))
            qFatal("%s", qPrintable(error));
    }
    return formats;
}

} // namespace

void TestUlogFormats::fields_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("array");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("nested");

    const int nested = int(UlogType::Nested);
    QTest::newRow("first field") << "timestamp" << true << 0 << 1 << false << int(UlogType::UInt64)
                                 << "";
    QTest::newRow("nested array") << "esc" << true << 8 << 2 << true << nested << "esc_report";
    QTest::newRow("element of a nested array")
        << "esc[1]" << true << 16 << 1 << false << nested << "esc_report";
    QTest::newRow("field in an element")
        << "esc[1].esc_rpm" << true << 16 << 1 << false << int(UlogType::Int32) << "";
    QTest::newRow("after padding inside")
        << "esc[0].esc_state" << true << 12 << 1 << false << int(UlogType::UInt8) << "";
    QTest::newRow("nested scalar") << "wind" << true << 24 << 1 << false << nested << "vec3";
    QTest::newRow("field of a nested scalar")
        << "wind.z" << true << 32 << 1 << false << int(UlogType::Float) << "";
    QTest::newRow("after the nested")
        << "count" << true << 36 << 1 << false << int(UlogType::UInt8) << "";
    QTest::newRow("padding") << "_padding0" << false << 0 << 0 << false << 0 << "";
    QTest::newRow("element past the end")
        << "esc[2].esc_rpm" << false << 0 << 0 << false << 0 << "";
    QTest::newRow("whole array into a field")
        << "esc.esc_rpm" << false << 0 << 0 << false << 0 << "";
    QTest::newRow("index of a scalar") << "count[0]" << false << 0 << 0 << false << 0 << "";
    QTest::newRow("missing") << "airspeed" << false << 0 << 0 << false << 0 << "";
    QTest::newRow("bad index") << "esc[x].esc_rpm" << false << 0 << 0 << false << 0 << "";
    QTest::newRow("into a primitive") << "count.x" << false << 0 << 0 << false << 0 << "";
}

void TestUlogFormats::fields()
{
    QFETCH(QString, path);
    QFETCH(bool, valid);
    const UlogFormats formats = escFormats();
    const UlogField field = formats.field("esc_status", path.toStdString());
    QCOMPARE(field.valid(), valid);
    QCOMPARE(formats.has("esc_status", path.toStdString()), valid);
    if (!valid)
        return;
    QTEST(field.offset, "offset");
    QTEST(field.count, "count");
    QTEST(field.array, "array");
    QTEST(int(field.type), "type");
    QTEST(QString::fromStdString(field.nestedFormat), "nested");
}

void TestUlogFormats::sizes()
{
    const UlogFormats formats = escFormats();
    const UlogFormats::Layout *layout = formats.layout("esc_status");
    QVERIFY(layout);
    QCOMPARE(layout->size, 44);
    QCOMPARE(layout->minimumSize, 37);
    QCOMPARE(formats.layout("esc_report")->size, 8);
    QCOMPARE(formats.layout("esc_report")->minimumSize, 5);
    QVERIFY(!formats.layout("vehicle_status"));
    QCOMPARE(formats.names(), (std::vector<std::string>{"esc_report", "esc_status", "vec3"}));
    QVERIFY(!formats.has("vehicle_status", "timestamp"));
}

void TestUlogFormats::valuesOfEveryType()
{
    UlogFormats formats;
    QString error;
    QVERIFY(formats.add("all:uint64_t timestamp;int8_t a;uint8_t b;int16_t c;uint16_t d;"
                        "int32_t e;uint32_t f;int64_t g;float h;double i;bool j;char k;"
                        "float[3] v;",
                        &error));
    const float nan = std::numeric_limits<float>::quiet_NaN();
    UlogBytes payload;
    payload.put(quint64(0xFFFFFFFFFFFFFFF0ull))
        .put(qint8(-128))
        .put(quint8(255))
        .put(qint16(-32768))
        .put(quint16(65535))
        .put(qint32(-2147483647 - 1))
        .put(quint32(4294967295u))
        .put(qint64(-9007199254740993ll))
        .put(1.1f)
        .put(-2.000000000000001)
        .put(quint8(1))
        .put('x')
        .put(0.5f)
        .put(nan)
        .put(-0.0f);
    const char *bytes = payload.data().data();
    const auto value = [&](const char *path, int index = 0) {
        const UlogField field = formats.field("all", path);
        if (!field.valid())
            qFatal("no field %s", path);
        return field.value(bytes, index);
    };
    QCOMPARE(formats.field("all", "timestamp").unsignedValue(bytes), 0xFFFFFFFFFFFFFFF0ull);
    QCOMPARE(value("a"), -128.0);
    QCOMPARE(value("b"), 255.0);
    QCOMPARE(value("c"), -32768.0);
    QCOMPARE(value("d"), 65535.0);
    QCOMPARE(value("e"), -2147483648.0);
    QCOMPARE(value("f"), 4294967295.0);
    QCOMPARE(formats.field("all", "g").signedValue(bytes), -9007199254740993ll);
    QCOMPARE(value("h"), double(1.1f));
    QCOMPARE(value("i"), -2.000000000000001);
    QCOMPARE(value("j"), 1.0);
    QCOMPARE(value("k"), double('x'));
    QCOMPARE(value("v", 0), 0.5);
    QVERIFY(std::isnan(value("v", 1)));
    QVERIFY(std::signbit(value("v", 2)));
    QCOMPARE(value("v[2]"), 0.0);
    QCOMPARE(formats.field("all", "v[1]").offset, formats.field("all", "v").offset + 4);
}

void TestUlogFormats::badDefinitions_data()
{
    QTest::addColumn<QString>("definition");
    QTest::newRow("no colon") << "sensor uint64_t timestamp;";
    QTest::newRow("no name") << ":uint64_t timestamp;";
    QTest::newRow("no field name") << "sensor:uint64_t;";
    QTest::newRow("zero length") << "sensor:float[0] v;";
    QTest::newRow("bad length") << "sensor:float[a] v;";
    QTest::newRow("unclosed") << "sensor:float[3 v;";
}

void TestUlogFormats::badDefinitions()
{
    QFETCH(QString, definition);
    UlogFormats formats;
    QString error;
    QVERIFY(!formats.add(definition.toStdString(), &error));
    QVERIFY2(error.contains(definition), qPrintable(error));
    QVERIFY(!formats.contains("sensor"));
}

void TestUlogFormats::formatsNestingInALoop()
{
    UlogFormats formats;
    QString error;
    QVERIFY(formats.add("a:uint64_t timestamp;b inner;", &error));
    QVERIFY(formats.add("b:a outer;", &error));
    QVERIFY(!formats.layout("a"));
    QVERIFY(!formats.has("a", "timestamp"));
}

void TestUlogFormats::laterDefinitionReplaces()
{
    UlogFormats formats;
    QString error;
    QVERIFY(formats.add("t:uint64_t timestamp;float x;", &error));
    QCOMPARE(formats.field("t", "x").offset, 8);
    QVERIFY(formats.add("t:uint64_t timestamp;float w;float x;", &error));
    QCOMPARE(formats.field("t", "x").offset, 12);
}

void TestUlogFormats::keyValues_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QVariant>("expected");

    const auto bytes = [](const UlogBytes &b) {
        return QByteArray(b.data().data(), int(b.data().size()));
    };
    QTest::newRow("text") << "char[8] ver_hw" << QByteArray("PX4_SITL") << QVariant("PX4_SITL");
    QTest::newRow("text with NULs")
        << "char[8] sys_name" << QByteArray("PX4\0\0\0\0\0", 8) << QVariant("PX4");
    QTest::newRow("uint32") << "uint32_t ver_sw_release" << bytes(UlogBytes().put(0x010C03FFu))
                            << QVariant(qulonglong(0x010C03FF));
    QTest::newRow("int32") << "int32_t time_ref_utc" << bytes(UlogBytes().put(qint32(-3600)))
                           << QVariant(qlonglong(-3600));
    QTest::newRow("float") << "float MC_ROLL_P" << bytes(UlogBytes().put(6.5f)) << QVariant(6.5);
    QTest::newRow("uint64") << "uint64_t big" << bytes(UlogBytes().put(~quint64(0)))
                            << QVariant(~qulonglong(0));
    QTest::newRow("bool") << "bool flag" << QByteArray(1, '\1') << QVariant(true);
    QTest::newRow("array") << "int16_t[2] pair" << bytes(UlogBytes().put(qint16(-1)).put(qint16(2)))
                           << QVariant(QVariantList{qlonglong(-1), qlonglong(2)});
    QTest::newRow("too few bytes") << "uint32_t short" << QByteArray(2, '\0') << QVariant();
    QTest::newRow("no meaning") << "thing t" << QByteArray("ab") << QVariant(QByteArray("ab"));
}

void TestUlogFormats::keyValues()
{
    QFETCH(QString, key);
    QFETCH(QByteArray, value);
    const std::string keyBytes = key.toStdString();
    UlogKeyValue entry;
    QVERIFY(entry.set(keyBytes, std::string_view(value.constData(), std::size_t(value.size()))));
    QCOMPARE(QString::fromStdString(std::string(entry.name)), key.section(' ', 1));
    QTEST(entry.value(), "expected");
}

QTEST_APPLESS_MAIN(TestUlogFormats)
#include "tst_ulogformats.moc"
