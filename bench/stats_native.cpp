#include "native.hpp"

namespace native {

float max_ext_float(const float* x, int n, int* index) {
    float m = x[0];
    int at = 0;
    for (int i = 1; i < n; ++i) {
        if (x[i] > m) {
            m = x[i];
            at = i;
        }
    }
    *index = at;
    return m;
}

float mean_float(const float* x, int n) {
    double s = 0;
    for (int i = 0; i < n; ++i) s += x[i];
    return float(s / n);
}

}  // namespace native
