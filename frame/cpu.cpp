#include "cpu.hpp"

#include <atomic>

#if defined(__i386__) || defined(__x86_64__)
#include <cpuid.h>
#define VEK_X86 1
#endif

namespace vek {

namespace {

#if VEK_X86 && VEK_HAVE_ISA_BUILDS
unsigned long long xgetbv0() {
    unsigned eax, edx;
    __asm__ volatile("xgetbv" : "=a"(eax), "=d"(edx) : "c"(0));
    return (static_cast<unsigned long long>(edx) << 32) | eax;
}

int detect() {
    unsigned a, b, c, d;
    if (!__get_cpuid(1, &a, &b, &c, &d)) return kIsaSse2;
    const bool osxsave = c & (1u << 27);
    const bool fma = c & (1u << 12);
    const bool avx = c & (1u << 28);
    if (!osxsave || !avx || !fma) return kIsaSse2;
    const unsigned long long xcr0 = xgetbv0();
    if ((xcr0 & 0x6) != 0x6) return kIsaSse2;  // XMM and YMM state
    if (__get_cpuid_max(0, nullptr) < 7) return kIsaSse2;
    __cpuid_count(7, 0, a, b, c, d);
    const bool avx2 = b & (1u << 5);
    const bool bmi2 = b & (1u << 8);
    if (!avx2 || !bmi2) return kIsaSse2;
    const bool f = b & (1u << 16), dq = b & (1u << 17), bw = b & (1u << 30), vl = b & (1u << 31);
    const bool zmmState = (xcr0 & 0xe6) == 0xe6;  // opmask and ZMM state too
    if (f && dq && bw && vl && zmmState) return kIsaAvx512;
    return kIsaAvx2;
}
#else
int detect() { return kIsaSse2; }
#endif

std::atomic<int> g_best{-1};

}  // namespace

std::atomic<int> detail::g_active_isa{-1};

int best_isa() {
    int best = g_best.load(std::memory_order_relaxed);
    if (best < 0) {
        best = detect();
        g_best.store(best, std::memory_order_relaxed);
    }
    return best;
}

int detail::choose_isa() {
    const int best = best_isa();
    detail::g_active_isa.store(best, std::memory_order_relaxed);
    return best;
}

bool force_isa(int isa) {
    if (isa < 0 || isa >= kIsaCount || isa > best_isa()) return false;
    detail::g_active_isa.store(isa, std::memory_order_relaxed);
    return true;
}

const char* isa_name(int isa) {
    switch (isa) {
    case kIsaSse2: return "sse2";
    case kIsaAvx2: return "avx2";
    case kIsaAvx512: return "avx512";
    default: return "?";
    }
}

}  // namespace vek
