#include "fuzzinput.h"

#include <filenamepatternreplacer.h>
#include <outputnamer.h>

#include <QDateTime>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

// File-name patterns: the framework's replacer over arbitrary patterns and
// pattern texts, and the host's output names from arbitrary patterns,
// extensions, folders, recording names and properties.

namespace {

const char *const propertyKeys[] = {"DeviceId", "ProductCode", "FilterProfile"};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const quint8 *bytes, std::size_t size)
{
    FuzzedDataProvider data(bytes, size);

    QMap<QString, QVariant> replacements;
    for (int count = data.ConsumeIntegralInRange(0, 8); count > 0; --count) {
        // Half of the pattern texts in angle brackets, as the host's are.
        const QString text = FuzzInput::text(data, 16);
        const QString key = data.ConsumeBool() ? QString(QLatin1Char('<') + text + QLatin1Char('>')) : text;
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
    for (const char *key : propertyKeys) {
        if (data.ConsumeBool())
            properties.insert(QString::fromLatin1(key), FuzzInput::variant(data));
    }
    const QString extension = FuzzInput::text(data, 16);
    // The folder and the recording come from the command line, which holds no NUL.
    const QString folder = FuzzInput::text(data, 32).remove(QChar(QChar::Null));
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(data.ConsumeIntegral<qint64>(), Qt::UTC);
    const int sequenceNumber = data.ConsumeIntegral<int>();
    const QString recording = FuzzInput::text(data, 64).remove(QChar(QChar::Null));
    const QString name = OutputNamer(pattern, extension, folder, now).fileName(recording, sequenceNumber, properties);
    // The name is an absolute path on disk (not one of Qt's resources, which
    // start with ':'), whatever the folder, the recording and the pattern.
    if (!name.startsWith(QLatin1Char('/')))
        std::abort();
    return 0;
}
