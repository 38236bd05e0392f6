#include "ulogfill.h"

#include <algorithm>

namespace {

quint64 distance(quint64 a, quint64 b)
{
    return a > b ? a - b : b - a;
}

} // namespace

UlogFill::UlogFill(const UlogFillPolicy &policy, double step)
    : policy(policy)
    , step(step)
    , maxAge(quint64(std::max(policy.maxAgeMs, 0)) * 1000)
{ }

void UlogFill::prepare(const std::vector<quint64> &sampleTimes,
                       const std::vector<quint64> &messageTimes)
{
    samples = &sampleTimes;
    messages = &messageTimes;
    placements.clear();
    placed = Counts();
    if (policy.kind == UlogFillPolicy::Kind::None) {
        placeEach();
    } else {
        // Messages are taken in ascending order: a new one taken is one more used.
        qint64 last = -1;
        for (std::size_t sample = 0; sample < samples->size(); ++sample) {
            const qint64 message = messageFor(sample);
            if (message > last) {
                ++placed.used;
                last = message;
            }
        }
        placed.dropped = qint64(messages->size()) - placed.used;
    }
    rewind();
}

// Under None: each message onto its nearest sample, the nearer of two on one
// sample staying. Messages come in time order, so their samples ascend and
// a collision is always with the placement made last.
void UlogFill::placeEach()
{
    if (samples->empty()) {
        placed.dropped = qint64(messages->size());
        return;
    }
    for (std::size_t message = 0; message < messages->size(); ++message) {
        const quint64 time = (*messages)[message];
        const std::size_t sample = nearestSample(time);
        const quint64 apart = distance(time, (*samples)[sample]);
        if (double(apart) > step) {
            ++placed.dropped;
            continue;
        }
        if (!placements.empty() && placements.back().sample == sample) {
            ++placed.collided;
            if (apart < placements.back().distance)
                placements.back() = {quint32(sample), quint32(message), apart};
            continue;
        }
        placements.push_back({quint32(sample), quint32(message), apart});
    }
    placed.used = qint64(placements.size());
    placements.shrink_to_fit();
}

// The sample nearest @p time; the earlier on a tie, the first of several
// samples of the same time.
std::size_t UlogFill::nearestSample(quint64 time) const
{
    const auto begin = samples->begin();
    const auto later = std::lower_bound(begin, samples->end(), time);
    if (later == samples->end())
        return std::size_t(std::lower_bound(begin, later, samples->back()) - begin);
    if (later == begin || *later == time)
        return std::size_t(later - begin);
    const auto earlier = std::lower_bound(begin, later, *(later - 1));
    if (time - *earlier <= *later - time)
        return std::size_t(earlier - begin);
    return std::size_t(later - begin);
}

qint64 UlogFill::messageFor(std::size_t sample)
{
    if (policy.kind != UlogFillPolicy::Kind::None)
        return heldOrNearest((*samples)[sample]);
    while (nextPlacement < placements.size() && placements[nextPlacement].sample < sample)
        ++nextPlacement;
    if (nextPlacement < placements.size() && placements[nextPlacement].sample == sample)
        return placements[nextPlacement].message;
    return -1;
}

// Under Hold and Nearest: the message before the sample or at its time, or
// for Nearest the one after it when that is nearer.
qint64 UlogFill::heldOrNearest(quint64 time)
{
    while (after < messages->size() && (*messages)[after] <= time)
        ++after;
    const bool hasBefore = after > 0;
    const std::size_t before = hasBefore ? firstOfItsTime(after - 1) : 0;
    const quint64 sinceBefore = hasBefore ? time - (*messages)[before] : 0;
    if (policy.kind == UlogFillPolicy::Kind::Nearest && after < messages->size()) {
        const quint64 untilAfter = (*messages)[after] - time;
        if ((!hasBefore || untilAfter < sinceBefore) && untilAfter <= maxAge)
            return qint64(after);
    }
    if (hasBefore && sinceBefore <= maxAge)
        return qint64(before);
    return -1;
}

std::size_t UlogFill::firstOfItsTime(std::size_t message) const
{
    while (message > 0 && (*messages)[message - 1] == (*messages)[message])
        --message;
    return message;
}

void UlogFill::rewind()
{
    nextPlacement = 0;
    after = 0;
}
