#include "fft.hpp"

namespace vek {

const FftOps& fft_ops() {
    static const FftOps* const kTables[kIsaCount] = {&sse2::fft_ops, &avx2::fft_ops,
                                                     &avx512::fft_ops};
    return pick(kTables);
}

}  // namespace vek
