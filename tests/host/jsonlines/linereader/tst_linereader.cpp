#include "linereader.h"

#include <QBuffer>
#include <QtTest>

#include <string>

namespace {

// A device that hands out at most a few bytes a read, as a pipe may, and
// can fail after a while.
class TrickleDevice : public QIODevice
{
public:
    TrickleDevice(const QByteArray &data, qint64 step, qint64 failAt = -1)
        : data(data)
        , step(step)
        , failAt(failAt)
    {
        open(QIODevice::ReadOnly);
    }

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *out, qint64 size) override
    {
        if (failAt >= 0 && offset >= failAt) {
            setErrorString(QStringLiteral("the cable came loose"));
            return -1;
        }
        const qint64 count = qMin(qMin(size, step), qint64(data.size()) - offset);
        memcpy(out, data.constData() + offset, size_t(count));
        offset += count;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray data;
    qint64 step;
    qint64 failAt;
    qint64 offset = 0;
};

struct Lines
{
    QList<QByteArray> lines;
    QList<qint64> numbers;
    LineReader::Status last;
};

// Reads every line, and touches the padding after each.
Lines readAll(QIODevice *device)
{
    LineReader reader(device);
    Lines result;
    for (;;) {
        result.last = reader.next();
        if (result.last == LineReader::Status::End || result.last == LineReader::Status::Failed)
            return result;
        if (result.last == LineReader::Status::TooLong) {
            result.lines.append("<too long>");
        } else {
            const std::string_view line = reader.line();
            volatile char padding = 0;
            for (std::size_t i = 0; i < LineReader::padding; ++i)
                padding = char(padding | line.data()[line.size() + i]);
            result.lines.append(QByteArray(line.data(), int(line.size())));
        }
        result.numbers.append(reader.lineNumber());
    }
}

} // namespace

class tst_LineReader : public QObject
{
    Q_OBJECT

private slots:
    void splitsLines_data();
    void splitsLines();
    void lineAcrossBlocks();
    void tooLongLineIsPassedOver_data();
    void tooLongLineIsPassedOver();
    void readsPipesInPieces();
    void reportsAFailingDevice();
    void countsPosition();
};

void tst_LineReader::splitsLines_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QList<QByteArray>>("lines");
    QTest::newRow("nothing") << QByteArray() << QList<QByteArray>();
    QTest::newRow("one line feed is one empty line") << QByteArray("\n") << QList<QByteArray>{""};
    QTest::newRow("a last line without a line feed")
        << QByteArray("a\nb") << QList<QByteArray>{"a", "b"};
    QTest::newRow("empty lines in between")
        << QByteArray("a\n\n\nb\n") << QList<QByteArray>{"a", "", "", "b"};
    QTest::newRow("carriage returns stay")
        << QByteArray("a\r\nb\r\n") << QList<QByteArray>{"a\r", "b\r"};
    QTest::newRow("NUL bytes stay")
        << QByteArray("a\0b\n", 4) << QList<QByteArray>{QByteArray("a\0b", 3)};
}

void tst_LineReader::splitsLines()
{
    QFETCH(QByteArray, content);
    QFETCH(QList<QByteArray>, lines);
    QBuffer buffer(&content);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    const Lines read = readAll(&buffer);
    QCOMPARE(read.last, LineReader::Status::End);
    QCOMPARE(read.lines, lines);
    for (int i = 0; i < read.numbers.size(); ++i)
        QCOMPARE(read.numbers.at(i), qint64(i + 1));
}

void tst_LineReader::lineAcrossBlocks()
{
    const QByteArray first(1024 * 1024 - 10, 'a');
    const QByteArray second(3 * 1024 * 1024, 'b');
    QByteArray content = first + "\n" + second + "\nlast";
    QBuffer buffer(&content);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    const Lines read = readAll(&buffer);
    QCOMPARE(read.lines.size(), 3);
    QVERIFY(read.lines.at(0) == first);
    QVERIFY(read.lines.at(1) == second);
    QCOMPARE(read.lines.at(2), QByteArray("last"));
}

void tst_LineReader::tooLongLineIsPassedOver_data()
{
    QTest::addColumn<QByteArray>("tail");
    QTest::addColumn<QList<QByteArray>>("lines");
    QTest::newRow("followed by a line")
        << QByteArray("\nnext\n") << QList<QByteArray>{"first", "<too long>", "next"};
    QTest::newRow("at the end") << QByteArray() << QList<QByteArray>{"first", "<too long>"};
}

void tst_LineReader::tooLongLineIsPassedOver()
{
    QFETCH(QByteArray, tail);
    QFETCH(QList<QByteArray>, lines);
    QByteArray content = "first\n" + QByteArray(int(LineReader::maxLineLength) + 1, 'x') + tail;
    QBuffer buffer(&content);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    const Lines read = readAll(&buffer);
    QCOMPARE(read.last, LineReader::Status::End);
    QCOMPARE(read.lines, lines);
    QCOMPARE(read.numbers.last(), qint64(lines.size()));
}

void tst_LineReader::readsPipesInPieces()
{
    QByteArray content;
    for (int i = 0; i < 1000; ++i)
        content += "line " + QByteArray::number(i) + "\n";
    TrickleDevice device(content, 7);
    const Lines read = readAll(&device);
    QCOMPARE(read.last, LineReader::Status::End);
    QCOMPARE(read.lines.size(), 1000);
    QCOMPARE(read.lines.at(999), QByteArray("line 999"));
}

void tst_LineReader::reportsAFailingDevice()
{
    TrickleDevice device("one\ntwo\nthree\n", 4, 8);
    LineReader reader(&device);
    QCOMPARE(reader.next(), LineReader::Status::Line);
    QCOMPARE(reader.next(), LineReader::Status::Line);
    QCOMPARE(reader.next(), LineReader::Status::Failed);
    QCOMPARE(reader.errorString(), QStringLiteral("cannot be read: the cable came loose"));
}

void tst_LineReader::countsPosition()
{
    QByteArray content = "12345\n789\n";
    QBuffer buffer(&content);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    LineReader reader(&buffer);
    QCOMPARE(reader.position(), qint64(0));
    QCOMPARE(reader.next(), LineReader::Status::Line);
    QCOMPARE(reader.position(), qint64(6));
    QCOMPARE(reader.next(), LineReader::Status::Line);
    QCOMPARE(reader.position(), qint64(10));
    QCOMPARE(reader.next(), LineReader::Status::End);
}

QTEST_GUILESS_MAIN(tst_LineReader)

#include "tst_linereader.moc"
