// The instruction-set choice for kernels that have per-ISA builds.
//
// A kernel family is compiled once per ISA (files ending in _sse2.cpp,
// _avx2.cpp, _avx512.cpp get the matching compiler flags), each copy in its
// own namespace vek::sse2, vek::avx2 or vek::avx512, and each publishes a
// table of function pointers. Exports pick the table of the active ISA.
#pragma once

#include <atomic>

namespace vek {

enum Isa : int { kIsaSse2 = 0, kIsaAvx2 = 1, kIsaAvx512 = 2, kIsaCount = 3 };

namespace detail {
// The active ISA once chosen, -1 before; read inline by every export.
extern std::atomic<int> g_active_isa;
int choose_isa();
}  // namespace detail

// The ISA kernels run with: the best the CPU and the OS support, chosen on
// first use.
inline int active_isa() {
    const int isa = detail::g_active_isa.load(std::memory_order_relaxed);
    return isa >= 0 ? isa : detail::choose_isa();
}

// The best ISA this CPU and OS support.
int best_isa();

// Test hook (not exported): makes `isa` the active ISA. False, with no
// change, when the CPU cannot run it.
bool force_isa(int isa);

const char* isa_name(int isa);

// The table of the active ISA from one table per ISA.
template <class Table>
inline const Table& pick(const Table* const (&tables)[kIsaCount]) {
    return *tables[active_isa()];
}

}  // namespace vek
