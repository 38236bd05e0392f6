#include "ulogfillpolicy.h"

// The property describes the recording, as its other properties do, in the
// program's own words rather than the user's language: a converted
// recording reads the same everywhere.
QString UlogFillPolicy::text() const
{
    switch (kind) {
    case Kind::None:
        break;
    case Kind::Hold:
        return QStringLiteral("hold, at most %1 ms old").arg(maxAgeMs);
    case Kind::Nearest:
        return QStringLiteral("nearest, at most %1 ms away").arg(maxAgeMs);
    }
    return QStringLiteral("none");
}

QString UlogFillPolicy::name() const
{
    switch (kind) {
    case Kind::None:
        break;
    case Kind::Hold:
        return QStringLiteral("hold");
    case Kind::Nearest:
        return QStringLiteral("nearest");
    }
    return QStringLiteral("none");
}
