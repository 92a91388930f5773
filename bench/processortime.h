// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <ctime>
#include <limits>

/// Runs \a job and returns the seconds that the processor worked for this process meanwhile, which
/// other programs do not disturb.
template <typename Job>
double processorSeconds(Job job)
{
    const std::clock_t start = std::clock();
    job();
    return double(std::clock() - start) / CLOCKS_PER_SEC;
}

/// The least of several runs; what they took more is what others on the machine have cost.
struct BestTime
{
    double seconds = std::numeric_limits<double>::infinity();

    template <typename Job>
    void measure(Job job)
    {
        seconds = std::min(seconds, processorSeconds(job));
    }
};
