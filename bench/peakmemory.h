#pragma once

#include <sys/resource.h>

/** The peak resident memory of this process so far, in KiB. */
inline long peakResidentKib()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
