// The documented order of the library's floating sums, as a reference: term
// i goes to double partial sum i mod 16, then lane j gathers lane j + 8,
// j + 4, ... down to the stride `until` (1: one total; 2: the even and the
// odd terms apart). `term(i)` gives the i-th term as a double.
#pragma once

#include <vector>

namespace vektest {

template <class Term>
std::vector<double> layout_sum(int terms, int until, Term term) {
    double lanes[16] = {};
    for (int i = 0; i < terms; ++i) lanes[i % 16] += term(i);
    for (int w = 8; w >= until; w /= 2)
        for (int j = 0; j < w; ++j) lanes[j] += lanes[j + w];
    return std::vector<double>(lanes, lanes + until);
}

}  // namespace vektest
