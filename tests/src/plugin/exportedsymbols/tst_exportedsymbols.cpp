#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QtTest>

// What the shared objects offer to whoever loads them: the plug-in its two Qt
// entry points and nothing else, so that no function of a host can take the
// place of one of the plug-in's own; the SDK libraries their classes.
class tst_ExportedSymbols : public QObject
{
    Q_OBJECT

private slots:
    void exportedSymbols_data();
    void exportedSymbols();
};

namespace {

// The symbols that @p library defines for others, demangled, without the
// linker's own markers.
QStringList definedSymbols(const QString &library)
{
    QProcess nm;
    nm.start(QStringLiteral("nm"),
             {"--dynamic", "--defined-only", "--demangle", "--format=just-symbols", library});
    if (!nm.waitForFinished(60000) || nm.exitCode() != 0)
        return {QStringLiteral("<nm failed>")};
    QStringList symbols;
    const QStringList markers{"_edata", "_end", "__bss_start", "_init", "_fini"};
    for (const QString &line :
         QString::fromUtf8(nm.readAllStandardOutput()).split(QLatin1Char('\n'))) {
        const QString symbol = line.trimmed();
        if (!symbol.isEmpty() && !markers.contains(symbol))
            symbols.append(symbol);
    }
    return symbols;
}

} // namespace

void tst_ExportedSymbols::exportedSymbols_data()
{
    QTest::addColumn<QString>("library");
    QTest::addColumn<QString>("allowed"); // a pattern every symbol matches
    QTest::addColumn<QStringList>("required");

    QTest::newRow("the plug-in") << ASCIIEXPORTER_PLUGIN << "^qt_plugin_(instance|query_metadata)$"
                                 << QStringList{"qt_plugin_instance", "qt_plugin_query_metadata"};
    QTest::newRow("the plug-in framework")
        << PLUGINFRAMEWORK_LIBRARY
        << "^((non-virtual thunk to |vtable for |typeinfo for |typeinfo name for )?"
           "(AbstractExporter|AbstractOptionsPage|ExportSource|FileNamePatternReplacer|"
           "SettingsSynchronizer)\\b)"
        << QStringList();
    QTest::newRow("the types") << KVTYPES_LIBRARY << "^KvConstants::(zero|infinity)$"
                               << QStringList{"KvConstants::zero", "KvConstants::infinity"};
}

void tst_ExportedSymbols::exportedSymbols()
{
    QFETCH(QString, library);
    QFETCH(QString, allowed);
    QFETCH(QStringList, required);
    if (QStandardPaths::findExecutable(QStringLiteral("nm")).isEmpty())
        QSKIP("nm is not there to list the symbols");

    const QStringList symbols = definedSymbols(library);
    QVERIFY(!symbols.isEmpty());
    const QRegularExpression pattern(allowed);
    QStringList others;
    for (const QString &symbol : symbols) {
        if (!pattern.match(symbol).hasMatch())
            others.append(symbol);
    }
    QVERIFY2(others.isEmpty(), qPrintable(others.join(QLatin1Char('\n'))));
    for (const QString &symbol : qAsConst(required))
        QVERIFY2(symbols.contains(symbol), qPrintable(symbol));
}

QTEST_GUILESS_MAIN(tst_ExportedSymbols)
#include "tst_exportedsymbols.moc"
