#include "sampleselection.h"

#include <cmath>
#include <limits>

bool SampleSelection::parseBound(const QString &text, Bound *bound, QString *problem)
{
    const bool seconds = text.endsWith(QLatin1Char('s'));
    bool ok = false;
    if (seconds) {
        const double value = text.chopped(1).toDouble(&ok);
        if (ok && std::isfinite(value) && value >= 0.0) {
            *bound = {Bound::Kind::Seconds, value};
            return true;
        }
    } else {
        const qint64 value = text.toLongLong(&ok);
        if (ok && value >= 0) {
            *bound = {Bound::Kind::Index, double(value)};
            return true;
        }
    }
    *problem = tr("takes a sample index (0 is the first sample) or seconds from the start such as "
                  "12.5s, not \"%1\"")
                   .arg(text);
    return false;
}

bool SampleSelection::isEverything() const
{
    return from.kind == Bound::Kind::None && to.kind == Bound::Kind::None && every == 1;
}

bool SampleSelection::needsRate() const
{
    return from.kind == Bound::Kind::Seconds || to.kind == Bound::Kind::Seconds;
}

// Whether the sample of @p index comes before @p bound.
bool SampleSelection::before(qint64 index, double rate, const Bound &bound)
{
    switch (bound.kind) {
    case Bound::Kind::None:
        return false;
    case Bound::Kind::Index:
        return double(index) < bound.value;
    case Bound::Kind::Seconds:
        return double(index) / rate < bound.value;
    }
    return false;
}

// The index of the first sample at or after the lower bound.
qint64 SampleSelection::firstIndex(double rate) const
{
    switch (from.kind) {
    case Bound::Kind::None:
        return 0;
    case Bound::Kind::Index:
        return qint64(from.value);
    case Bound::Kind::Seconds: {
        // The smallest index whose time is not below the bound; the division
        // decides, as in before().
        const double start = std::ceil(from.value * rate);
        if (start >= 9.0e18)
            return std::numeric_limits<qint64>::max();
        qint64 index = qint64(start);
        while (index > 0 && !before(index - 1, rate, from))
            --index;
        while (before(index, rate, from))
            ++index;
        return index;
    }
    }
    return 0;
}

bool SampleSelection::selects(qint64 index, double rate) const
{
    if (before(index, rate, from) || isPastEnd(index, rate))
        return false;
    return (index - firstIndex(rate)) % every == 0;
}

bool SampleSelection::isPastEnd(qint64 index, double rate) const
{
    return to.kind != Bound::Kind::None && !before(index, rate, to);
}
