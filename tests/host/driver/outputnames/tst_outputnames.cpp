#include <outputnames.h>

#include <QTemporaryDir>
#include <QtTest>

// Which recording of a batch gets which output file: that of one export
// after another, whichever order the exports side by side ask and finish in.
class tst_OutputNames : public QObject
{
    Q_OBJECT

private slots:
    void answers_data();
    void answers();
    void recordingsOfTheBatchAreNotReplaced();
};

namespace {

// One step of a batch: recording @p index asks for @p file, or finishes.
struct Step
{
    enum Kind { Claim, Written, Failed } kind;
    int index;
    QString file;
    OutputNames::Answer answer = OutputNames::Answer::Given;
};

Step claim(int index, const QString &file, OutputNames::Answer answer)
{
    return {Step::Claim, index, file, answer};
}

Step written(int index)
{
    return {Step::Written, index, QString()};
}

Step failed(int index)
{
    return {Step::Failed, index, QString()};
}

constexpr auto given = OutputNames::Answer::Given;
constexpr auto refused = OutputNames::Answer::Refused;
constexpr auto waits = OutputNames::Answer::Wait;

} // namespace

Q_DECLARE_METATYPE(QVector<Step>)

void tst_OutputNames::answers_data()
{
    QTest::addColumn<QVector<Step>>("steps");

    QTest::newRow("one after another, different files") << QVector<Step>{
        claim(0, "/o/a.txt", given), written(0), claim(1, "/o/b.txt", given), written(1)};
    QTest::newRow("one after another, the same file") << QVector<Step>{
        claim(0, "/o/x.txt", given), written(0), claim(1, "/o/x.txt", refused), failed(1)};
    QTest::newRow("a recording that failed leaves its file to the next") << QVector<Step>{
        claim(0, "/o/x.txt", given), failed(0), claim(1, "/o/x.txt", given), written(1)};
    QTest::newRow("a later recording asking first waits for the earlier to ask") << QVector<Step>{
        claim(1, "/o/b.txt", waits), claim(0, "/o/a.txt", given), claim(1, "/o/b.txt", given)};
    QTest::newRow("the same file waits for the earlier recording to finish")
        << QVector<Step>{claim(0, "/o/x.txt", given), claim(1, "/o/x.txt", waits), written(0),
                         claim(1, "/o/x.txt", refused)};
    QTest::newRow("and takes it when the earlier one fails")
        << QVector<Step>{claim(0, "/o/x.txt", given), claim(1, "/o/x.txt", waits), failed(0),
                         claim(1, "/o/x.txt", given)};
    QTest::newRow("an earlier recording that failed before asking settles nothing else")
        << QVector<Step>{claim(2, "/o/c.txt", waits), failed(0), claim(2, "/o/c.txt", waits),
                         claim(1, "/o/b.txt", given), claim(2, "/o/c.txt", given)};
    QTest::newRow("an earlier recording refused its file does not hold it")
        << QVector<Step>{claim(0, "/o/x.txt", given), written(0), claim(1, "/o/x.txt", refused),
                         claim(2, "/o/x.txt", refused)};
}

void tst_OutputNames::answers()
{
    QFETCH(QVector<Step>, steps);

    OutputNames names({"/r/0.jsonl", "/r/1.jsonl", "/r/2.jsonl"});
    for (const Step &step : qAsConst(steps)) {
        if (step.kind != Step::Claim) {
            names.finished(step.index, step.kind == Step::Written);
            continue;
        }
        QString problem;
        QCOMPARE(names.claim(step.index, step.file, &problem), step.answer);
        QCOMPARE(problem.isEmpty(), step.answer != refused);
    }
}

void tst_OutputNames::recordingsOfTheBatchAreNotReplaced()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString first = dir.filePath(QStringLiteral("first.jsonl"));
    const QString second = dir.filePath(QStringLiteral("second.jsonl"));
    for (const QString &name : {first, second}) {
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    OutputNames names({first, second});
    QString problem;
    QCOMPARE(names.claim(0, second, &problem), refused);
    QCOMPARE(problem,
             first + ": the output file " + second + " would replace a recording of this run");
}

QTEST_GUILESS_MAIN(tst_OutputNames)
#include "tst_outputnames.moc"
