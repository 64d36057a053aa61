// The direct DFT of any length, with the symmetric pairing of x[n] and
// x[N-n]: for each pair only the sum and the difference are needed, so each
// output pair X[k], X[N-k] costs one pass over half the input.
#pragma once

#include "vek.h"

namespace vek {

// Transforms x (length n, overwritten with pair sums and differences) into
// out, with twiddles tbl[k] = exp(-2*pi*i*k/n), every output multiplied by
// scale. Accumulates in double.
void dft_direct(CplxFloat* x, CplxFloat* out, const CplxFloat* tbl, int n, bool inverse, double scale);
void dft_direct(CplxDouble* x, CplxDouble* out, const CplxDouble* tbl, int n, bool inverse, double scale);

}  // namespace vek
