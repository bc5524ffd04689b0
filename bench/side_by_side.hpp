#pragma once

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

// Compares two implementations of the same work. They run in turns and the processor time is
// measured, so that other load of the machine affects both equally.
namespace side_by_side {

constexpr int rounds = 7;

template<class Work>
double seconds(const Work& work) {
    const std::clock_t begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

inline double median(std::vector<double> times) {
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    return times[rounds / 2];
}

inline void printHeadings(const std::string& other) {
    std::printf("%-44s %12s %12s %8s %8s\n", "medians of 7 rounds, ms", "toolkit", other.c_str(),
                "ratio", "limit");
}

// Prints the medians and their ratio. Returns false if the ratio is above the limit.
template<class Ours, class Theirs>
bool compare(const std::string& what, double limit, const Ours& ours, const Theirs& theirs) {
    std::vector<double> a, b;
    for (int round = 0; round < rounds; ++round) {
        a.push_back(seconds(ours));
        b.push_back(seconds(theirs));
    }
    const double ratio = median(a) / median(b);
    std::printf("%-44s %12.1f %12.1f %8.2f %8.2f%s\n", what.c_str(), 1e3 * median(a),
                1e3 * median(b), ratio, limit, ratio > limit ? "  missed" : "");
    std::fflush(stdout);
    return ratio <= limit;
}

} // namespace side_by_side
