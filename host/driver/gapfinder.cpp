#include "gapfinder.h"

#include <algorithm>

GapFinder::GapFinder(Rule rule, quint64 modulus)
    : rule(rule)
    , modulus(modulus)
{ }

void GapFinder::add(qint64 sample, quint32 value)
{
    value = quint32(value % modulus);
    if (count++ == 0) {
        last = value;
        return;
    }
    const Gap step{sample, last, value, quint32((modulus + value - last) % modulus)};
    last = value;
    total += step.step;
    if (rule == Rule::StepOfOne) {
        if (step.step != 1)
            note(step);
        return;
    }
    steps.push_back(step.step);
    if (steps.size() == 1 || step.step > largestStep.step)
        largestStep = step;
}

void GapFinder::finish()
{
    if (rule != Rule::TypicalStep || steps.empty())
        return;
    std::vector<quint32> sorted = steps;
    const auto middle = sorted.begin() + std::ptrdiff_t((sorted.size() - 1) / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    typical = *middle;
    gapCount = 0;
    widest = Gap();
    // 1.5 times the median, in whole numbers
    for (const quint32 step : steps) {
        if (quint64(step) * 2 > quint64(typical) * 3)
            ++gapCount;
    }
    if (gapCount > 0)
        widest = largestStep;
}

void GapFinder::note(const Gap &gap)
{
    ++gapCount;
    if (widest.sample < 0 || gap.step > widest.step)
        widest = gap;
}
