// The reader's differential check of the test run, on many more numbers:
// texts of every form written into recording lines, read back, and compared
// bit for bit with std::from_chars. Prints one line per form and exits with
// 1 when any value differs.

#include <numberreading.h>
#include <numbertexts.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Reads numbers of every form through the recording reader."));
    parser.addHelpOption();
    const QCommandLineOption countOption(
        QStringLiteral("count"),
        QStringLiteral("Numbers in all, shared among the forms (default 100000000)."),
        QStringLiteral("N"), QStringLiteral("100000000"));
    const QCommandLineOption seedOption(QStringLiteral("seed"),
                                        QStringLiteral("Seed of the texts (default 1)."),
                                        QStringLiteral("S"), QStringLiteral("1"));
    parser.addOptions({countOption, seedOption});
    parser.process(application);
    const QVector<NumberTexts::Form> forms = NumberTexts::forms();
    const qint64 perForm = parser.value(countOption).toLongLong() / forms.size();
    const quint64 seed = parser.value(seedOption).toULongLong();

    int status = 0;
    qint64 total = 0;
    for (const NumberTexts::Form form : forms) {
        QElapsedTimer timer;
        timer.start();
        qint64 checked = 0;
        const QString mismatch = checkNumberReading(form, perForm, seed + quint64(form), &checked);
        total += checked;
        std::printf("%-38s %11lld numbers  %6.1f s  %s\n", qPrintable(NumberTexts::name(form)),
                    checked, timer.elapsed() / 1000.0,
                    mismatch.isEmpty() ? "all exact" : qPrintable(mismatch));
        if (!mismatch.isEmpty())
            status = 1;
    }
    std::printf("%lld numbers read, %s\n", total,
                status ? "SOME DIFFER" : "every one bit-identical with std::from_chars");
    return status;
}
