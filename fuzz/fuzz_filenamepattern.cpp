#include "fuzzinput.h"

#include <filenamepatternreplacer.h>
#include <outputnamer.h>

#include <QDateTime>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <iterator>

// File-name patterns: the framework's replacer over arbitrary patterns and
// pattern texts, and the host's output names from arbitrary patterns,
// extensions, folders, recording names and properties, hostile ones among
// them: a property's text never adds, removes or climbs a folder level.

namespace {

const char *const propertyKeys[] = {"DeviceId", "ProductCode", "FilterProfile"};

// Texts that try to move the file: taken whole, or as the fuzzer's bytes.
QVariant propertyValue(FuzzedDataProvider &data)
{
    static const QString hostile[] = {
        QString(),
        QStringLiteral("."),
        QStringLiteral(".."),
        QStringLiteral("/"),
        QStringLiteral("../.."),
        QStringLiteral("a/../b"),
        QString(QChar(QChar::Null)),
        QStringLiteral("a") + QChar(QChar::Null),
    };
    if (data.ConsumeBool())
        return hostile[data.ConsumeIntegralInRange<std::size_t>(0, std::size(hostile) - 1)];
    return FuzzInput::variant(data);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const quint8 *bytes, std::size_t size)
{
    FuzzedDataProvider data(bytes, size);

    QMap<QString, QVariant> replacements;
    for (int count = data.ConsumeIntegralInRange(0, 8); count > 0; --count) {
        // Half of the pattern texts in angle brackets, as the host's are.
        const QString text = FuzzInput::text(data, 16);
        const QString key =
            data.ConsumeBool() ? QString(QLatin1Char('<') + text + QLatin1Char('>')) : text;
        replacements.insert(key, FuzzInput::variant(data));
    }
    const QString pattern = FuzzInput::text(data, 256);
    const QString expanded = FileNamePatternReplacer(replacements).parse(pattern);
    // A pattern without any pattern text in it comes back as it is.
    bool matched = false;
    for (auto it = replacements.cbegin(); it != replacements.cend(); ++it)
        matched = matched || (!it.key().isEmpty() && pattern.contains(it.key()));
    if (!matched && expanded != pattern)
        std::abort();

    QVariantMap properties;
    QVariantMap plainProperties;
    for (const char *key : propertyKeys) {
        if (data.ConsumeBool()) {
            properties.insert(QString::fromLatin1(key), propertyValue(data));
            plainProperties.insert(QString::fromLatin1(key), QStringLiteral("p"));
        }
    }
    const QString extension = FuzzInput::text(data, 16);
    // The folder and the recording come from the command line, which holds no NUL.
    const QString folder = FuzzInput::text(data, 32).remove(QChar(QChar::Null));
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(data.ConsumeIntegral<qint64>(), Qt::UTC);
    const int sequenceNumber = data.ConsumeIntegral<int>();
    const QString recording = FuzzInput::text(data, 64).remove(QChar(QChar::Null));
    const OutputNamer namer(pattern, extension, folder, now);
    QString problem;
    const QString name = namer.fileName(recording, sequenceNumber, properties, &problem);
    if (name.isEmpty()) {
        if (problem.isEmpty())
            std::abort();
        return 0;
    }
    // The name is an absolute path on disk (not one of Qt's resources, which
    // start with ':'), whatever the folder, the recording and the pattern.
    if (!name.startsWith(QLatin1Char('/')))
        std::abort();
    // The properties' texts chose no folder level: the name has as many as
    // with plain texts in their place.
    const QString plain = namer.fileName(recording, sequenceNumber, plainProperties, &problem);
    if (plain.isEmpty() || plain.count(QLatin1Char('/')) != name.count(QLatin1Char('/')))
        std::abort();
    return 0;
}
