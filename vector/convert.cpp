#include "vector/convert.hpp"

namespace vek {

void report_convert_args(const Site& site, const void* src, const void* dst, int len, int width,
                         int rounding) {
    if (len <= 0) site.bad("len<=0");
    if (!src) site.bad("src==0");
    if (!dst) site.bad("dst==0");
    if (width < 0) site.bad("Invalid size of an integer");
    if (rounding < 0) site.bad("Invalid conversion flag");
}

}  // namespace vek
