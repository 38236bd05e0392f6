#include <blockwriter.h>
#include <systemreason.h>

#include <QBuffer>
#include <QFile>
#include <QtTest>

#include <cerrno>
#include <string>

namespace {

constexpr qint64 blockSize = 1 << 20;

// A buffer that keeps the size of every write it is given, and refuses
// them while told to.
class RecordingBuffer : public QBuffer
{
public:
    QVector<qint64> writes;
    bool refuse = false;

protected:
    qint64 writeData(const char *data, qint64 size) override
    {
        if (refuse) {
            setErrorString(QStringLiteral("the medium is gone"));
            return -1;
        }
        writes.append(size);
        return QBuffer::writeData(data, size);
    }
};

} // namespace

// Writing a recording in blocks: the same bytes in few writes, and the
// first failure said once, whether at a block or at the final flush.
class tst_BlockWriter : public QObject
{
    Q_OBJECT

private slots:
    void writesInBlocks_data();
    void writesInBlocks();
    void failureEndsTheWriting();
    void fullDiskShowsAtTheFlush();
    void fullDiskShowsAtAFullBlock();
};

void tst_BlockWriter::writesInBlocks_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("lineLength");
    QTest::addColumn<QVector<qint64>>("writes");

    QTest::newRow("nothing to write") << 0 << 10 << QVector<qint64>{};
    QTest::newRow("a few lines in one write") << 3 << 9 << QVector<qint64>{30};
    QTest::newRow("a line that fills the block exactly")
        << 1 << int(blockSize - 1) << QVector<qint64>{blockSize};
    QTest::newRow("lines over three blocks, each written once it is full")
        << 3000 << 1023 << QVector<qint64>{blockSize, blockSize, 3000 * 1024 - 2 * blockSize};
}

void tst_BlockWriter::writesInBlocks()
{
    QFETCH(int, lines);
    QFETCH(int, lineLength);
    QFETCH(QVector<qint64>, writes);
    RecordingBuffer device;
    QVERIFY(device.open(QIODevice::WriteOnly));
    BlockWriter blocks(&device);
    QByteArray expected;
    // Room for the whole text at once: under AddressSanitizer each append
    // that fits exactly would copy it all.
    expected.reserve(lines * (lineLength + 1));
    for (int i = 0; i < lines; ++i) {
        const std::string line(std::size_t(lineLength), char('a' + i % 26));
        QVERIFY(blocks.appendLine(line));
        expected += QByteArray::fromStdString(line) + '\n';
    }
    QVERIFY(blocks.finish());
    QCOMPARE(device.data(), expected);
    // An empty block is not handed to the device.
    QCOMPARE(device.writes, writes);
    QVERIFY(blocks.errorString().isEmpty());
}

void tst_BlockWriter::failureEndsTheWriting()
{
    RecordingBuffer device;
    QVERIFY(device.open(QIODevice::WriteOnly));
    BlockWriter blocks(&device);
    const std::string half(blockSize / 2, 'x');
    QVERIFY(blocks.append(half));
    device.refuse = true;
    QVERIFY(!blocks.append(half));
    QCOMPARE(blocks.errorString(),
             QStringLiteral("cannot write the recording: the medium is gone"));

    // The device would take bytes again, but the recording has a hole.
    device.refuse = false;
    QVERIFY(!blocks.append("more"));
    QVERIFY(!blocks.appendLine("more"));
    QVERIFY(!blocks.finish());
    QVERIFY(device.writes.isEmpty());
    QCOMPARE(blocks.errorString(),
             QStringLiteral("cannot write the recording: the medium is gone"));
}

void tst_BlockWriter::fullDiskShowsAtTheFlush()
{
    QFile full(QStringLiteral("/dev/full"));
    if (!full.exists())
        QSKIP("needs /dev/full");
    QVERIFY(full.open(QIODevice::WriteOnly));
    BlockWriter blocks(&full);
    QVERIFY(blocks.appendLine("a line that fits the file's own buffer"));
    QVERIFY(!blocks.finish());
    QCOMPARE(blocks.errorString(),
             QStringLiteral("cannot write the recording: %1").arg(systemReason(ENOSPC)));
}

void tst_BlockWriter::fullDiskShowsAtAFullBlock()
{
    QFile full(QStringLiteral("/dev/full"));
    if (!full.exists())
        QSKIP("needs /dev/full");
    QVERIFY(full.open(QIODevice::WriteOnly));
    BlockWriter blocks(&full);
    QVERIFY(!blocks.append(std::string(blockSize, 'x')));
    QCOMPARE(blocks.errorString(),
             QStringLiteral("cannot write the recording: %1").arg(systemReason(ENOSPC)));
}

QTEST_GUILESS_MAIN(tst_BlockWriter)
#include "tst_blockwriter.moc"
