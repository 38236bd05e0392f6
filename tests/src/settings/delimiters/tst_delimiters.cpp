#include "asciistringdelimiter.h"
#include "asciistringdelimiterbysetting.h"
#include "delimiterchoice.h"
#include "settingscatalogue.h"

#include <settingssynchronizer.h>

#include <QTextStream>
#include <QtTest>

namespace {

QString textOf(const DelimiterHandle &handle)
{
    QString text;
    QTextStream stream(&text);
    handle->write(stream);
    stream.flush();
    return text;
}

using Settings = QMap<QString, QVariant>;

// A delimiter that counts how many of its kind are alive.
class CountedDelimiter : public AsciiStringDelimiter
{
public:
    explicit CountedDelimiter(int *alive)
        : AsciiStringDelimiter(QStringLiteral("|"))
        , alive(alive)
    {
        ++*alive;
    }
    ~CountedDelimiter() override { --*alive; }

private:
    int *alive;
};

} // namespace

class tst_Delimiters : public QObject
{
    Q_OBJECT

private slots:
    void fieldDelimiter_data();
    void fieldDelimiter();
    void emptyFieldText_data();
    void emptyFieldText();
    void customTextIsReadOnce();
    void stringDelimiterWritesVerbatim();
    void choiceRecordDefaults();
    void nullCreationGivesEmptyHandle();
    void handleCountsCopies();
    void handleAssignmentAndMove();
};

void tst_Delimiters::fieldDelimiter_data()
{
    QTest::addColumn<Settings>("settings");
    QTest::addColumn<QString>("expected");

    QTest::newRow("defaults give a tab") << Settings() << "\t";
    QTest::newRow("comma wins over tab")
        << Settings{{"useCommaDelimiter", true}, {"useTabDelimiter", true}} << ",";
    QTest::newRow("custom delimiter of two characters") << Settings{{"useOtherDelimiter", true},
                                                                    {"useTabDelimiter", false},
                                                                    {"otherDelimiter", "; "}}
                                                        << "; ";
    QTest::newRow("all five keys false give a tab") << Settings{{"useCommaDelimiter", false},
                                                                {"useOtherDelimiter", false},
                                                                {"useSemiColonDelimiter", false},
                                                                {"useSpaceDelimiter", false},
                                                                {"useTabDelimiter", false}}
                                                    << "\t";
    QTest::newRow("custom wins over semicolon, blank and tab")
        << Settings{{"useOtherDelimiter", true},
                    {"otherDelimiter", "#"},
                    {"useSemiColonDelimiter", true},
                    {"useSpaceDelimiter", true}}
        << "#";
    QTest::newRow("semicolon wins over blank")
        << Settings{{"useSemiColonDelimiter", true}, {"useSpaceDelimiter", true}} << ";";
    QTest::newRow("blank alone") << Settings{{"useSpaceDelimiter", true},
                                             {"useTabDelimiter", false}}
                                 << " ";
    QTest::newRow("an empty custom delimiter writes nothing")
        << Settings{{"useOtherDelimiter", true}} << "";
    QTest::newRow("a text setting that reads as true counts")
        << Settings{{"useCommaDelimiter", "true"}} << ",";
}

void tst_Delimiters::fieldDelimiter()
{
    QFETCH(Settings, settings);
    QFETCH(QString, expected);

    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    for (auto it = settings.cbegin(); it != settings.cend(); ++it)
        store.setSetting(it.key(), it.value());
    const DelimiterHandle handle = makeDelimiter(&store);
    QVERIFY(!handle.isNull());
    QCOMPARE(textOf(handle), expected);
}

void tst_Delimiters::emptyFieldText_data()
{
    QTest::addColumn<Settings>("settings");
    QTest::addColumn<QString>("expected");

    QTest::newRow("defaults leave empty fields empty") << Settings() << "";
    QTest::newRow("all four keys false give a tab") << Settings{{"insertNothing", false},
                                                                {"insertNan", false},
                                                                {"insertZero", false},
                                                                {"insertOtherPlaceholder", false}}
                                                    << "\t";
    QTest::newRow("NaN wins over zero")
        << Settings{{"insertNothing", false}, {"insertNan", true}, {"insertZero", true}} << "NaN";
    QTest::newRow("NaN wins over nothing") << Settings{{"insertNan", true}} << "NaN";
    QTest::newRow("nothing wins over the custom text")
        << Settings{{"insertOtherPlaceholder", true}, {"otherPlaceholder", "n/a"}} << "";
    QTest::newRow("the custom text wins over zero") << Settings{{"insertNothing", false},
                                                                {"insertOtherPlaceholder", true},
                                                                {"otherPlaceholder", "n/a"},
                                                                {"insertZero", true}}
                                                    << "n/a";
    QTest::newRow("an empty custom text leaves fields empty")
        << Settings{{"insertNothing", false}, {"insertOtherPlaceholder", true}} << "";
    QTest::newRow("zero alone") << Settings{{"insertNothing", false}, {"insertZero", true}} << "0";
}

void tst_Delimiters::emptyFieldText()
{
    QFETCH(Settings, settings);
    QFETCH(QString, expected);

    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    for (auto it = settings.cbegin(); it != settings.cend(); ++it)
        store.setSetting(it.key(), it.value());
    const DelimiterHandle handle = makeEmptyFieldText(&store);
    QVERIFY(!handle.isNull());
    QCOMPARE(textOf(handle), expected);
}

void tst_Delimiters::customTextIsReadOnce()
{
    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    store.setSetting(QStringLiteral("useOtherDelimiter"), true);
    store.setSetting(QStringLiteral("otherDelimiter"), QStringLiteral("|"));
    const DelimiterHandle before = makeDelimiter(&store);
    store.setSetting(QStringLiteral("otherDelimiter"), QStringLiteral("~"));
    const DelimiterHandle after = makeDelimiter(&store);
    QCOMPARE(textOf(before), QStringLiteral("|"));
    QCOMPARE(textOf(after), QStringLiteral("~"));

    const AsciiStringDelimiterBySetting direct(&store, QStringLiteral("otherDelimiter"));
    store.setSetting(QStringLiteral("otherDelimiter"), QStringLiteral("!"));
    QString text;
    QTextStream stream(&text);
    direct.write(stream);
    stream.flush();
    QCOMPARE(text, QStringLiteral("~"));
}

void tst_Delimiters::stringDelimiterWritesVerbatim()
{
    const AsciiStringDelimiter delimiter(QStringLiteral("a\"b\\c\n\u00e9"));
    QString text;
    QTextStream stream(&text);
    QCOMPARE(&delimiter.write(stream), &stream);
    stream.flush();
    QCOMPARE(text, QStringLiteral("a\"b\\c\n\u00e9"));
}

void tst_Delimiters::choiceRecordDefaults()
{
    const DelimiterChoice choice;
    QVERIFY(!choice.create);
    QCOMPARE(choice.argument, QVariant(0));
    QVERIFY(!choice.settings);
}

void tst_Delimiters::nullCreationGivesEmptyHandle()
{
    SettingsSynchronizer store({{QStringLiteral("on"), true}}, {});
    DelimiterChoiceTable choices;
    choices.insert(
        QStringLiteral("on"),
        {[](const QVariant &, SettingsSynchronizer *) -> IAsciiDelimiter * { return nullptr; },
         QVariant(), &store});
    QVERIFY(chooseBySetting(&store, choices).isNull());
}

void tst_Delimiters::handleCountsCopies()
{
    int alive = 0;
    {
        DelimiterHandle first(new CountedDelimiter(&alive));
        QCOMPARE(alive, 1);
        QCOMPARE(first.useCount(), 1u);
        {
            const DelimiterHandle second = first;
            QCOMPARE(first.useCount(), 2u);
            QCOMPARE(second.get(), first.get());
        }
        QCOMPARE(first.useCount(), 1u);
        QCOMPARE(alive, 1);
        first.release();
        QVERIFY(first.isNull());
        QCOMPARE(first.useCount(), 0u);
        QCOMPARE(alive, 0);
    }
    QCOMPARE(alive, 0);
}

void tst_Delimiters::handleAssignmentAndMove()
{
    int alive = 0;
    DelimiterHandle a(new CountedDelimiter(&alive));
    DelimiterHandle b(new CountedDelimiter(&alive));
    QCOMPARE(alive, 2);
    b = a; // b's old object goes
    QCOMPARE(alive, 1);
    QCOMPARE(a.useCount(), 2u);
    const DelimiterHandle &same = b;
    b = same; // self-assignment keeps it
    QCOMPARE(a.useCount(), 2u);
    QCOMPARE(b.get(), a.get());
    DelimiterHandle c(std::move(a));
    QVERIFY(a.isNull());
    QCOMPARE(c.useCount(), 2u);
    b = DelimiterHandle();
    QCOMPARE(c.useCount(), 1u);
    DelimiterHandle &alias = c;
    c = std::move(alias);
    QCOMPARE(alive, 1);
    c.release();
    QCOMPARE(alive, 0);

    const DelimiterHandle empty;
    QVERIFY(empty.isNull());
    QVERIFY(!empty.get());
}

QTEST_GUILESS_MAIN(tst_Delimiters)
#include "tst_delimiters.moc"
