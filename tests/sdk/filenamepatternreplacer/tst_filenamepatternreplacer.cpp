#include <filenamepatternreplacer.h>

#include <QtTest>

class tst_FileNamePatternReplacer : public QObject
{
    Q_OBJECT

private slots:
    void parse_data();
    void parse();
    void examplesArePlausible();
};

void tst_FileNamePatternReplacer::parse_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");

    QTest::newRow("the default pattern") << "<inputfile>-<seqnr>"
                                         << "walk-007";
    QTest::newRow("every occurrence is replaced") << "<seqnr><seqnr>"
                                                  << "007007";
    QTest::newRow("unknown patterns stay") << "<inputfile>_<unknown>"
                                           << "walk_<unknown>";
    QTest::newRow("an empty pattern gives an empty name") << ""
                                                          << "";
    QTest::newRow("text without patterns stays") << "plain.name"
                                                 << "plain.name";
    QTest::newRow("a value holding a pattern is not expanded again") << "<deviceid>"
                                                                     << "<seqnr>";
    QTest::newRow("a pattern made of neighbours is not formed") << "<input<seqnr>file>"
                                                                << "<input007file>";
    QTest::newRow("patterns are case-sensitive") << "<INPUTFILE>"
                                                 << "<INPUTFILE>";
}

void tst_FileNamePatternReplacer::parse()
{
    QFETCH(QString, pattern);
    QFETCH(QString, expected);

    const FileNamePatternReplacer replacer({
        {QStringLiteral("<inputfile>"), QStringLiteral("walk")},
        {QStringLiteral("<seqnr>"), QStringLiteral("007")},
        {QStringLiteral("<deviceid>"), QStringLiteral("<seqnr>")},
    });
    QCOMPARE(replacer.parse(pattern), expected);
}

void tst_FileNamePatternReplacer::examplesArePlausible()
{
    QVERIFY(QDate::fromString(FileNamePatternReplacer::exampleDate(), QStringLiteral("yyyy-MM-dd"))
                .isValid());
    QCOMPARE(FileNamePatternReplacer::exampleSequenceNumber(), QStringLiteral("003"));
    QVERIFY(QRegularExpression(QStringLiteral("^\\d\\dh\\d\\d$"))
                .match(FileNamePatternReplacer::exampleTime())
                .hasMatch());
    for (const QString &text :
         {FileNamePatternReplacer::exampleDeviceId(), FileNamePatternReplacer::exampleInputFile(),
          FileNamePatternReplacer::exampleProductCode(),
          FileNamePatternReplacer::exampleFilterProfile()}) {
        QVERIFY(!text.isEmpty());
        QVERIFY(!text.contains(QLatin1Char('/')));
    }
}

QTEST_GUILESS_MAIN(tst_FileNamePatternReplacer)
#include "tst_filenamepatternreplacer.moc"
