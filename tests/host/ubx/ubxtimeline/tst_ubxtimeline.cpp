#include <ubxtimeline.h>

#include <QtTest>

#include <optional>

// The GPS time of UBX messages: the week carried from message to message
// across the wraps of the time of week, and the week of a UTC date.
class tst_UbxTimeline : public QObject
{
    Q_OBJECT

private slots:
    void weekOfDate_data();
    void weekOfDate();
    void place_data();
    void place();
};

namespace {

constexpr qint64 week = UbxTimeline::msPerWeek;

// A message of a stream: its time of week, and the week it shows, if any.
struct Message
{
    quint32 iTOW;
    std::optional<qint32> week;
};

} // namespace

Q_DECLARE_METATYPE(QVector<Message>)

void tst_UbxTimeline::weekOfDate_data()
{
    QTest::addColumn<QDateTime>("utc");
    QTest::addColumn<quint32>("iTOW");
    QTest::addColumn<qint32>("week");

    QTest::newRow("the start of GPS time")
        << QDateTime(QDate(1980, 1, 6), QTime(0, 0), Qt::UTC) << 0u << 0;
    QTest::newRow("a Saturday morning in its own week")
        << QDateTime(QDate(2026, 11, 21), QTime(9, 29, 42), Qt::UTC) << 552600000u << 2445;
    QTest::newRow("UTC still in the week before, GPS time already in the next")
        << QDateTime(QDate(2026, 11, 21), QTime(23, 59, 50), Qt::UTC) << 8000u << 2446;
    QTest::newRow("three days from the start of the week, four from the next")
        << QDateTime(QDate(2026, 11, 18), QTime(0, 0), Qt::UTC) << 0u << 2445;
    QTest::newRow("four days from the start of the week, three from the next")
        << QDateTime(QDate(2026, 11, 19), QTime(0, 0, 1), Qt::UTC) << 0u << 2446;
    QTest::newRow("before GPS time began")
        << QDateTime(QDate(1980, 1, 5), QTime(12, 0), Qt::UTC) << 561600000u << -1;
    QTest::newRow("the last second a date can name")
        << QDateTime(QDate(65535, 12, 31), QTime(23, 59, 59), Qt::UTC) << 0u << 3316192;
}

void tst_UbxTimeline::weekOfDate()
{
    QFETCH(QDateTime, utc);
    QFETCH(quint32, iTOW);
    QFETCH(qint32, week);

    const QDate date = utc.date();
    const QTime time = utc.time();
    QCOMPARE(UbxTimeline::weekOfDate(date.year(), date.month(), date.day(), time.hour(),
                                     time.minute(), time.second(), iTOW),
             week);
}

void tst_UbxTimeline::place_data()
{
    QTest::addColumn<QVector<Message>>("messages");
    QTest::addColumn<QVector<qint64>>("times");
    // What the first message to show a week moves the times before it by.
    QTest::addColumn<qint64>("shift");

    QTest::newRow("within one week, without a week shown")
        << QVector<Message>{{1000, {}}, {2000, {}}, {1500, {}}} << QVector<qint64>{1000, 2000, 1500}
        << qint64(0);
    QTest::newRow("on into the next week")
        << QVector<Message>{{604799000, 2445}, {0, {}}, {1000, {}}}
        << QVector<qint64>{2445 * week + 604799000, 2446 * week, 2446 * week + 1000} << 2445 * week;
    QTest::newRow("back into the week before")
        << QVector<Message>{{1000, 2446}, {604799000, {}}, {2000, {}}}
        << QVector<qint64>{2446 * week + 1000, 2445 * week + 604799000, 2446 * week + 2000}
        << 2446 * week;
    QTest::newRow("exactly half a week back stays in the week")
        << QVector<Message>{{302400000, 10}, {0, {}}}
        << QVector<qint64>{10 * week + 302400000, 10 * week} << 10 * week;
    QTest::newRow("the first week shown moves the times before it")
        << QVector<Message>{{604799000, {}}, {0, {}}, {1000, 2446}, {2000, {}}}
        << QVector<qint64>{604799000, week, 2446 * week + 1000, 2446 * week + 2000} << 2445 * week;
    QTest::newRow("a later week shown wins over the week carried")
        << QVector<Message>{{5000, 2400}, {1000, 2410}, {2000, {}}}
        << QVector<qint64>{2400 * week + 5000, 2410 * week + 1000, 2410 * week + 2000}
        << 2400 * week;
}

void tst_UbxTimeline::place()
{
    QFETCH(QVector<Message>, messages);
    QFETCH(QVector<qint64>, times);
    QFETCH(qint64, shift);

    UbxTimeline timeline;
    QVector<qint64> placed;
    qint64 shifted = 0;
    for (const Message &message : qAsConst(messages)) {
        qint64 moved = 0;
        placed.append(timeline.place(message.iTOW, message.week, &moved));
        // Only one message moves the times before it.
        QVERIFY(moved == 0 || shifted == 0);
        shifted += moved;
    }
    QCOMPARE(placed, times);
    QCOMPARE(shifted, shift);
    QCOMPARE(timeline.knowsWeek(), shift != 0);
}

QTEST_GUILESS_MAIN(tst_UbxTimeline)
#include "tst_ubxtimeline.moc"
