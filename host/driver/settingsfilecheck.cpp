#include "settingsfilecheck.h"

#include "nearestname.h"

#include <QTextCodec>

namespace {

// Control characters other than line ends and tabs, and bytes that are no
// UTF-8, are no settings file a person or QSettings wrote.
bool isText(const QByteArray &contents)
{
    for (const char byte : contents) {
        const uchar code = uchar(byte);
        if ((code < 0x20 && code != '\t' && code != '\n' && code != '\r') || code == 0x7f)
            return false;
    }
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(contents.constData(), contents.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

bool isHex(const QString &text, int from, int count)
{
    if (from + count > text.size())
        return false;
    for (int i = from; i < from + count; ++i) {
        const ushort c = text.at(i).unicode();
        if (!(c >= '0' && c <= '9') && !((c | 0x20) >= 'a' && (c | 0x20) <= 'f'))
            return false;
    }
    return true;
}

// A key or section name as QSettings reads it: %XX and %UXXXX are
// characters, a backslash is a slash.
QString unescaped(const QString &text)
{
    QString result;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\\')) {
            result += QLatin1Char('/');
        } else if (c == QLatin1Char('%') && i + 1 < text.size()
                   && text.at(i + 1) == QLatin1Char('U') && isHex(text, i + 2, 4)) {
            result += QChar(text.midRef(i + 2, 4).toUShort(nullptr, 16));
            i += 5;
        } else if (c == QLatin1Char('%') && isHex(text, i + 1, 2)) {
            result += QChar(text.midRef(i + 1, 2).toUShort(nullptr, 16));
            i += 2;
        } else {
            result += c;
        }
    }
    return result;
}

// A line that goes on on the next, as QSettings joins them: it ends in an
// odd number of backslashes.
bool continues(const QString &line)
{
    int backslashes = 0;
    for (int i = line.size() - 1; i >= 0 && line.at(i) == QLatin1Char('\\'); --i)
        ++backslashes;
    return backslashes % 2 == 1;
}

} // namespace

QStringList SettingsFileCheck::findings(const QString &fileName, const QByteArray &contents,
                                        const QStringList &known)
{
    if (!isText(contents))
        return {tr("%1: not a settings file: it holds bytes that are not text").arg(fileName)};

    QStringList found;
    const QStringList lines = QString::fromUtf8(contents).split(QLatin1Char('\n'));
    // Keys before the first section and in [General] are the plug-in's.
    bool ownSection = true;
    bool continued = false;
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines.at(i).trimmed();
        const QString where = QStringLiteral("%1:%2: ").arg(fileName).arg(i + 1);
        const bool wasContinued = continued;
        continued = continues(line);
        if (wasContinued || line.isEmpty() || line.startsWith(QLatin1Char(';'))
            || line.startsWith(QLatin1Char('#')))
            continue;
        if (line.startsWith(QLatin1Char('['))) {
            continued = false;
            const QString section = line.mid(1, line.indexOf(QLatin1Char(']')) - 1);
            ownSection = section.compare(QLatin1String("General"), Qt::CaseInsensitive) == 0;
            if (!ownSection) {
                found.append(where
                             + tr("section [%1] is not read: the plug-in's settings belong in "
                                  "[General]")
                                   .arg(section));
            }
            continue;
        }
        const int equals = line.indexOf(QLatin1Char('='));
        if (equals < 0) {
            found.append(where + tr("neither KEY=VALUE nor a [section]: ignored"));
            continue;
        }
        if (!ownSection)
            continue;
        const QString key = unescaped(line.left(equals).trimmed());
        if (key.isEmpty()) {
            found.append(where + tr("no key before the =: ignored"));
        } else if (!known.contains(key)) {
            found.append(where
                         + tr("unknown setting \"%1\"; did you mean \"%2\"?")
                               .arg(key, nearestName(key, known)));
        }
    }
    return found;
}
