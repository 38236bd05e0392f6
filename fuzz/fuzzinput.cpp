#include "fuzzinput.h"

#include <QByteArray>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace FuzzInput {

QString text(FuzzedDataProvider &data, std::size_t maxBytes)
{
    const int encoding = data.ConsumeIntegralInRange(0, 2);
    const std::string bytes = data.ConsumeRandomLengthString(maxBytes);
    switch (encoding) {
    case 0:
        return QString::fromUtf8(bytes.data(), int(bytes.size()));
    case 1: {
        std::vector<char16_t> units(bytes.size() / 2);
        if (!units.empty())
            std::memcpy(units.data(), bytes.data(), units.size() * 2);
        return QString::fromUtf16(units.data(), int(units.size()));
    }
    default:
        return QString::fromLatin1(bytes.data(), int(bytes.size()));
    }
}

double number(FuzzedDataProvider &data)
{
    const quint64 bits = data.ConsumeIntegral<quint64>();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

QVariant variant(FuzzedDataProvider &data)
{
    static const char *const orientationWords[] = {
        "Euler", "euler", "MATRIX", "Quaternion", "quaternion ", " None", "none", "Eul", "",
    };
    switch (data.ConsumeIntegralInRange(0, 8)) {
    case 0:
        return QVariant();
    case 1:
        return data.ConsumeBool();
    case 2:
        return text(data, 64);
    case 3:
        return data.ConsumeIntegral<qint64>();
    case 4:
        return number(data);
    case 5: {
        QStringList list;
        for (int count = data.ConsumeIntegralInRange(0, 3); count > 0; --count)
            list.append(text(data, 16));
        return list;
    }
    case 6: {
        const std::string bytes = data.ConsumeRandomLengthString(32);
        return QByteArray(bytes.data(), int(bytes.size()));
    }
    case 7:
        return QString::fromLatin1(data.PickValueInArray(orientationWords));
    default:
        return data.ConsumeIntegral<quint32>();
    }
}

QString file(const char *name, const quint8 *bytes, std::size_t size)
{
    static const QTemporaryDir dir;
    const QString path = dir.filePath(QLatin1String(name));
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly)
        || out.write(reinterpret_cast<const char *>(bytes), qint64(size)) != qint64(size))
        std::abort();
    return path;
}

} // namespace FuzzInput
