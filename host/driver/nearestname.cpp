#include "nearestname.h"

#include <algorithm>
#include <climits>
#include <vector>

namespace {

// The number of single-character edits between @p a and @p b, ignoring case.
int editDistance(const QString &a, const QString &b)
{
    std::vector<int> row(std::size_t(b.size()) + 1);
    for (int j = 0; j <= b.size(); ++j)
        row[std::size_t(j)] = j;
    for (int i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int above = row[std::size_t(j)];
            const bool same = a.at(i - 1).toCaseFolded() == b.at(j - 1).toCaseFolded();
            row[std::size_t(j)] =
                std::min({above + 1, row[std::size_t(j - 1)] + 1, diagonal + (same ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[std::size_t(b.size())];
}

} // namespace

QString nearestName(const QString &name, const QStringList &known, bool closeOnly)
{
    QString best;
    int bestDistance = INT_MAX;
    for (const QString &candidate : known) {
        const int distance = editDistance(name, candidate);
        if (distance < bestDistance) {
            best = candidate;
            bestDistance = distance;
        }
    }
    if (closeOnly && bestDistance > std::max(1, (int(name.size()) + 2) / 3))
        return QString();
    return best;
}
