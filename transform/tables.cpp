#include "tables.hpp"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <new>

#include "fft.hpp"

namespace vek {

// ----------------------------------------------------------------- memory

void* table_alloc(std::uint64_t bytes) {
    if (bytes > kMaxTableBytes) return nullptr;
    void* raw = std::malloc(std::size_t(bytes) + 64 + sizeof(void*));
    if (!raw) return nullptr;
    const std::uintptr_t base = reinterpret_cast<std::uintptr_t>(raw) + sizeof(void*);
    const std::uintptr_t aligned = (base + 63) & ~std::uintptr_t(63);
    std::memcpy(reinterpret_cast<void*>(aligned - sizeof(void*)), &raw, sizeof raw);
    return reinterpret_cast<void*>(aligned);
}

void table_free(void* p) {
    if (!p) return;
    void* raw;
    std::memcpy(&raw, static_cast<char*>(p) - sizeof(void*), sizeof raw);
    std::free(raw);
}

template <class T>
static void drop(T*& p) {
    table_free(p);
    p = nullptr;
}

// ----------------------------------------------------------------- values

namespace {

const long double kTwoPi = 6.283185307179586476925286766559005768L;
// The value of 2*pi that the exported tables use.
const long double kTableTwoPi = 6.283185307179586;

}  // namespace

void unit_root(std::uint64_t k, std::uint64_t n, long double* re, long double* im) {
    k %= n;
    // Fold into the first octant where n allows it exactly.
    bool conj = false, mirror = false, swap = false;
    if (2 * k > n) {
        k = n - k;
        conj = true;
    }  // -angle
    if (n % 2 == 0 && 4 * k > n) {
        k = n / 2 - k;
        mirror = true;
    }  // pi - angle
    if (n % 4 == 0 && 8 * k > n) {
        k = n / 4 - k;
        swap = true;
    }  // pi/2 - angle
    long double c, s;
    if (k == 0) {
        c = 1.0L;
        s = 0.0L;
    } else if (n % 8 == 0 && 8 * k == n) {
        c = s = 0.7071067811865475244008443621048490393L;
    } else {
        const long double a = kTwoPi * static_cast<long double>(k) / static_cast<long double>(n);
        c = std::cos(a);
        s = std::sin(a);
    }
    if (swap) {
        const long double t = c;
        c = s;
        s = t;
    }
    if (mirror) c = -c;
    if (conj) s = -s;
    *re = c;
    *im = -s;
}

// ----------------------------------------------------------------- builders

void calc_bitrev(std::int32_t* tbl, int order) {
    const std::uint64_t n = std::uint64_t(1) << order;
    tbl[0] = 0;
    if (n == 1) return;
    tbl[n - 1] = std::int32_t(n - 1);
    // Reversed counter: j follows i with its bits mirrored.
    std::uint64_t j = 0;
    for (std::uint64_t i = 1; i + 1 < n; ++i) {
        std::uint64_t k = n / 2;
        while (k <= j) {
            j -= k;
            k /= 2;
        }
        j += k;
        if (i <= j) {
            tbl[j] = std::int32_t(i);
            tbl[i] = std::int32_t(j);
        }
    }
}

namespace {

// The angle of an exported table entry: k times (2*pi/n), extended.
void table_root(std::uint64_t k, std::uint64_t n, long double* re, long double* im) {
    const long double a = static_cast<long double>(k) * (kTableTwoPi / static_cast<long double>(n));
    *re = std::cos(a);
    *im = -std::sin(a);
}

void fill_table(CplxKind kind, void* tbl, std::uint64_t n) {
    for (std::uint64_t k = 0; k < n; ++k) {
        long double re, im;
        table_root(k, n, &re, &im);
        switch (kind) {
            case kKindC:
                static_cast<CplxFloat*>(tbl)[k] = CplxFloat{float(re), float(im)};
                break;
            case kKindZ:
                static_cast<CplxDouble*>(tbl)[k] = CplxDouble{double(re), double(im)};
                break;
            default:
                // Fixed point with 14 fraction bits, truncated toward zero.
                static_cast<CplxShort*>(tbl)[k] =
                    CplxShort{short(16384.0L * re), short(16384.0L * im)};
                break;
        }
    }
}

std::size_t element_size(CplxKind kind) {
    return kind == kKindC   ? sizeof(CplxFloat)
           : kind == kKindZ ? sizeof(CplxDouble)
                            : sizeof(CplxShort);
}

}  // namespace

void calc_fft_twiddles(CplxKind kind, void* tbl, int order) {
    fill_table(kind, tbl, std::uint64_t(1) << order);
}

void calc_dft_twiddles(CplxKind kind, void* tbl, int length) {
    fill_table(kind, tbl, std::uint64_t(length));
}

// ----------------------------------------------------------------- caches

std::int32_t* bitrev_table(ThreadContext* ctx, int order) {
    if (order < 0 || order >= kOrders) return nullptr;
    std::int32_t*& slot = ctx->bitRevTbl[order];
    if (!slot) {
        auto* t = static_cast<std::int32_t*>(table_alloc(std::uint64_t(4) << order));
        if (!t) return nullptr;
        calc_bitrev(t, order);
        slot = t;
    }
    return slot;
}

// Quarter-length list: pairs (4i, 4j) with j = rev(i) > i over order-2
// bits, a 0, the fixed points 4i from the top down, a 0.
std::int32_t* swap_list(ThreadContext* ctx, int order) {
    if (order < 0 || order >= kOrders) return nullptr;
    std::int32_t*& slot = ctx->swapList[order];
    if (slot) return slot;
    const std::uint64_t words = order < 2 ? 1 : std::uint64_t(1) << (order - 1);
    auto* t = static_cast<std::int32_t*>(table_alloc(words * 4));
    if (!t) return nullptr;
    t[0] = 0;
    if (order >= 2) {
        const int bits = order - 2;
        const std::uint64_t m = std::uint64_t(1) << bits;
        auto rev = [bits](std::uint64_t i) {
            std::uint64_t r = 0;
            for (int b = 0; b < bits; ++b) r = (r << 1) | ((i >> b) & 1);
            return r;
        };
        std::uint64_t w = 0;
        for (std::uint64_t i = 1; i < m; ++i) {
            const std::uint64_t j = rev(i);
            if (j > i) {
                t[w++] = std::int32_t(4 * i);
                t[w++] = std::int32_t(4 * j);
            }
        }
        t[w++] = 0;
        for (std::uint64_t i = m; i-- > 1;)
            if (rev(i) == i) t[w++] = std::int32_t(4 * i);
        t[w++] = 0;
    }
    slot = t;
    return slot;
}

void* fft_twiddles(ThreadContext* ctx, CplxKind kind, int order) {
    if (order < 0 || order >= kOrders) return nullptr;
    void*& slot = ctx->fftTwdTbl[kind][order];
    if (!slot) {
        const std::uint64_t bytes =
            (std::uint64_t(1) << order) * (kind == kKindV ? 4 : element_size(kind));
        void* t = table_alloc(bytes);
        if (!t) return nullptr;
        calc_fft_twiddles(kind, t, order);
        slot = t;
    }
    return slot;
}

// ----------------------------------------------------------------- plans

namespace {

// The passes for 2^order points; `first` when the points are contiguous
// (one lane), so that the first pass can run its vector loop over them.
// Fewest passes: radix 8 wherever the bits allow, at most one radix 4 in
// the middle. Returns the number of twiddles the passes need.
// Fewest passes for `bits` bits after the first: radix 8 wherever the bits
// allow, at most one radix 4 in the middle where possible, and a last pass
// of 2 or 3 bits. Sets the counts of middle passes and the last pass's bits;
// false when the bits cannot be split so (1 bit, or none).
bool split_bits(int bits, int* eights, int* fours, int* last) {
    int best = -1;
    for (int l : {3, 2}) {
        const int r = bits - l;
        if (r < 0 || r == 1) continue;
        int a = r / 3, b = 0;
        if (r % 3 == 2) b = 1;
        if (r % 3 == 1) a -= 1, b = 2;
        if (best < 0 || a + b < *eights + *fours || (a + b == *eights + *fours && b < *fours))
            best = l, *eights = a, *fours = b;
    }
    *last = best;
    return best > 0;
}

// The passes for 2^order points; `first` when the points are contiguous
// (one lane), so that the first pass can run its vector loop over them (a
// radix-8 first pass leaves 8 lanes, enough for every vector width after
// it). Returns the number of twiddles the passes need.
template <class C>
std::size_t plan_passes(FftSchedule<C>& s, int order, bool first) {
    s.order = order;
    s.passes = 0;
    std::size_t n = std::size_t(1) << order, tw = 0;
    auto add = [&](int kind, int bits) {
        const std::size_t m = n >> bits;
        s.pass[s.passes++] = FftPass{kind, m, tw};
        if (kind == kPassFirst4 || kind == kPassTw4) tw += 3 * m;
        if (kind == kPassFirst8 || kind == kPassTw8) tw += 7 * m;
        n = m;
    };
    if (order == 0) return 0;
    if (order == 1) {
        add(kPassLast2, 1);
        return 0;
    }
    int eights = 0, fours = 0, last = 0;
    if (first && order >= 5) {
        int e8 = 0, f8 = 0, l8 = 0, e4 = 0, f4 = 0, l4 = 0;
        const bool ok8 = split_bits(order - 3, &e8, &f8, &l8);
        const bool ok4 = split_bits(order - 2, &e4, &f4, &l4);
        if (ok8 && (!ok4 || e8 + f8 <= e4 + f4)) {
            add(kPassFirst8, 3);
            eights = e8, fours = f8, last = l8;
        } else {
            add(kPassFirst4, 2);
            eights = e4, fours = f4, last = l4;
        }
    } else if (first && order == 4) {
        add(kPassFirst4, 2);
        last = 2;
    } else {
        split_bits(order, &eights, &fours, &last);
    }
    for (int i = 0; i < eights; ++i) add(kPassTw8, 3);
    for (int i = 0; i < fours; ++i) add(kPassTw4, 2);
    add(last == 3 ? kPassLast8 : kPassLast4, last);
    return tw;
}

// The in-place passes between natural and bit-reversed order, from the
// largest blocks down: radix 8 where the bits allow, a last radix-4 pass on
// blocks of 4 (so that every other pass has a span of 4 or more).
template <class C>
std::size_t plan_rev_passes(FftSchedule<C>& s, int order) {
    s.order = order;
    s.passes = 0;
    if (order < 4) return 0;
    const int rest = order - 2;
    int a = rest / 3, b = 0;
    if (rest % 3 == 2) b = 1;
    if (rest % 3 == 1) a -= 1, b = 2;
    std::size_t n = std::size_t(1) << order, tw = 0;
    for (int i = 0; i < a + b; ++i) {
        const std::size_t radix = i < a ? 8 : 4;
        n /= radix;
        s.pass[s.passes++] = FftPass{i < a ? kPassRev8 : kPassRev4, n, tw};
        tw += (radix - 1) * n;
    }
    s.pass[s.passes++] = FftPass{kPassRevEnd4, 1, tw};
    return tw;
}

// Fills the twiddles of the planned passes.
template <class C>
void fill_passes(const FftSchedule<C>& s, C* tw) {
    std::size_t n = std::size_t(1) << s.order;
    for (int i = 0; i < s.passes; ++i) {
        const FftPass& p = s.pass[i];
        const std::size_t radix = n / p.m;
        C* t = tw + p.tw;
        if (p.kind == kPassFirst4 || p.kind == kPassFirst8) {
            for (std::size_t k = 0; k < p.m; ++k)
                for (std::size_t r = 1; r < radix; ++r) t[(r - 1) * p.m + k] = root_as<C>(r * k, n);
        } else if (p.kind == kPassTw4 || p.kind == kPassTw8) {
            for (std::size_t k = 0; k < p.m; ++k)
                for (std::size_t r = 1; r < radix; ++r)
                    t[(radix - 1) * k + r - 1] = root_as<C>(r * k, n);
        } else if (p.kind == kPassRev4 || p.kind == kPassRev8) {
            for (std::size_t r = 1; r < radix; ++r)
                for (std::size_t k = 0; k < p.m; ++k) t[(r - 1) * p.m + k] = root_as<C>(r * k, n);
        }
        n = p.m;
    }
}

template <class C>
FftPlan<C>* build_plan(int order) {
    const std::size_t head = std::size_t(round64(sizeof(FftPlan<C>)));
    const std::uint64_t n = std::uint64_t(1) << order;
    FftPlan<C> plan{};
    plan.order = order;
    const bool direct = order < four_step_order<C>();
    std::size_t wholeTw = 0, rowsTw = 0, colsTw = 0, lane = 0, block = 0;
    if (direct) {
        wholeTw = plan_passes(plan.whole, order, true);
    } else {
        plan.rowsLog = order / 2;
        plan.colsLog = order - plan.rowsLog;
        plan.lanes = lanes_of<C>();
        const std::size_t r = std::size_t(1) << plan.rowsLog, c = std::size_t(1) << plan.colsLog;
        rowsTw = plan_passes(plan.rows, plan.rowsLog, false);
        colsTw = plan_passes(plan.cols, plan.colsLog, false);
        lane = r * plan.lanes;
        block = (c / plan.lanes) * r;
    }
    const std::uint64_t bytes = head + round64(wholeTw * sizeof(C)) + round64(rowsTw * sizeof(C)) +
                                round64(colsTw * sizeof(C)) + round64(lane * sizeof(C)) +
                                round64(block * sizeof(C));
    auto* mem = static_cast<char*>(table_alloc(bytes));
    if (!mem) return nullptr;
    char* at = mem + head;
    auto take = [&at](std::size_t count) {
        C* p = reinterpret_cast<C*>(at);
        at += std::size_t(round64(count * sizeof(C)));
        return p;
    };
    if (direct) {
        C* tw = take(wholeTw);
        fill_passes(plan.whole, tw);
        plan.whole.tw = tw;
    } else {
        C* twr = take(rowsTw);
        C* twc = take(colsTw);
        C* ln = take(lane);
        C* bl = take(block);
        fill_passes(plan.rows, twr);
        fill_passes(plan.cols, twc);
        plan.rows.tw = twr;
        plan.cols.tw = twc;
        const std::size_t r = std::size_t(1) << plan.rowsLog, c = std::size_t(1) << plan.colsLog;
        for (std::size_t k1 = 0; k1 < r; ++k1)
            for (std::size_t b = 0; b < std::size_t(plan.lanes); ++b)
                ln[k1 * plan.lanes + b] = root_as<C>(std::uint64_t(k1) * b, n);
        for (std::size_t cb = 0; cb < c / plan.lanes; ++cb)
            for (std::size_t k1 = 0; k1 < r; ++k1)
                bl[cb * r + k1] = root_as<C>(std::uint64_t(k1) * cb * plan.lanes, n);
        plan.lane = ln;
        plan.block = bl;
    }
    std::memcpy(mem, &plan, sizeof plan);
    return reinterpret_cast<FftPlan<C>*>(mem);
}

template <class C>
FftSchedule<C>* build_rev(int order) {
    const std::size_t head = round64(sizeof(FftSchedule<C>));
    FftSchedule<C> sc{};
    const std::size_t tw = plan_rev_passes(sc, order);
    auto* mem = static_cast<char*>(table_alloc(head + std::uint64_t(tw) * sizeof(C)));
    if (!mem) return nullptr;
    C* t = reinterpret_cast<C*>(mem + head);
    fill_passes(sc, t);
    sc.tw = t;
    std::memcpy(mem, &sc, sizeof sc);
    return reinterpret_cast<FftSchedule<C>*>(mem);
}

int plan_row(CplxKind kind) { return kind == kKindC ? kTblPlanC : kTblPlanZ; }

}  // namespace

const void* fft_plan(ThreadContext* ctx, CplxKind kind, int order) {
    if (order < 0 || order >= kOrders || kind == kKindV) return nullptr;
    void*& slot = ctx->orderTbl[plan_row(kind)][order];
    if (!slot) {
        if (kind == kKindC)
            slot = build_plan<CplxFloat>(order);
        else
            slot = build_plan<CplxDouble>(order);
    }
    return slot;
}

const void* fft_rev_schedule(ThreadContext* ctx, CplxKind kind, int order) {
    if (order < 4 || order >= kOrders || kind == kKindV) return nullptr;
    void*& slot = ctx->orderTbl[kind == kKindC ? kTblRevC : kTblRevZ][order];
    if (!slot) {
        if (kind == kKindC)
            slot = build_rev<CplxFloat>(order);
        else
            slot = build_rev<CplxDouble>(order);
    }
    return slot;
}

void* scratch(ThreadContext* ctx, CplxKind kind, int slot, std::uint64_t bytes) {
    ScratchSet& set = ctx->scratch[kind];
    // Lengths are kept in 8-byte units.
    const std::uint64_t units = (bytes + 7) / 8;
    if (set.buffer[slot] && std::uint64_t(set.length[slot]) >= units) return set.buffer[slot];
    if (units * 8 > kMaxTableBytes) return nullptr;
    drop(set.buffer[slot]);
    set.length[slot] = 0;
    void* p = table_alloc(units * 8);
    if (!p) return nullptr;
    set.buffer[slot] = p;
    set.length[slot] = std::int32_t(units);
    return p;
}

void scratch_release(ThreadContext* ctx, CplxKind kind, int slot) {
    drop(ctx->scratch[kind].buffer[slot]);
    ctx->scratch[kind].length[slot] = 0;
}

namespace {

bool try_acquire(ThreadContext* ctx, CplxKind kind, int order) {
    // The work area first: it fails fast when the order is too large.
    const std::uint64_t bytes = kind == kKindC ? fft_work<CplxFloat>(order) * sizeof(CplxFloat)
                                               : fft_work<CplxDouble>(order) * sizeof(CplxDouble);
    if (!scratch(ctx, kind, kScratchFft, bytes)) return false;
    return swap_list(ctx, order) && fft_plan(ctx, kind, order);
}

}  // namespace

bool fft_acquire(ThreadContext* ctx, CplxKind kind, int order) {
    if (try_acquire(ctx, kind, order)) return true;
    release_kernel_tables(ctx, kind);
    scratch_release(ctx, kind, kScratchFft);
    return try_acquire(ctx, kind, order);
}

void fft_release(ThreadContext* ctx, CplxKind kind, int order) {
    if (order >= 0 && order < kOrders) {
        drop(ctx->orderTbl[plan_row(kind)][order]);
        drop(ctx->orderTbl[kind == kKindC ? kTblRevC : kTblRevZ][order]);
        drop(ctx->swapList[order]);
    }
    scratch_release(ctx, kind, kScratchFft);
}

// ----------------------------------------------------------------- release

void release_kernel_tables(ThreadContext* ctx, CplxKind kind) {
    for (int row = 0; row < kOrderTables; ++row)
        if (kOrderTableKind[row] == kind)
            for (void*& p : ctx->orderTbl[row]) drop(p);
    for (std::int32_t*& p : ctx->swapList) drop(p);
}

void release_twiddles(ThreadContext* ctx, CplxKind kind) {
    for (int i = 0; i < ctx->dftCount[kind] && i < kDftCapacity; ++i) {
        drop(ctx->dftTbl[kind][i]);
        ctx->dftLength[kind][i] = 0;
    }
    ctx->dftCount[kind] = 0;
    for (void*& p : ctx->fftTwdTbl[kind]) drop(p);
    release_kernel_tables(ctx, kind);
    ScratchSet& set = ctx->scratch[kind];
    for (int s = 0; s < 4; ++s) {
        drop(set.buffer[s]);
        set.length[s] = 0;
    }
    if (kind == kKindV) ctx->vWorkCount = 0;
}

void release_bitrev(ThreadContext* ctx) {
    for (std::int32_t*& p : ctx->bitRevTbl) drop(p);
    for (std::int32_t*& p : ctx->swapList) drop(p);
}

void release_all(ThreadContext* ctx) {
    release_twiddles(ctx, kKindC);
    release_twiddles(ctx, kKindZ);
    release_twiddles(ctx, kKindV);
    release_bitrev(ctx);
}

namespace {

// Thread exit releases the caches in this order: c, z, v tables, then the
// bit-reversal tables (rank 4 is the cosine tables').
struct RegisterRelease {
    RegisterRelease() {
        register_cache_release(0, [](ThreadContext* c) { release_twiddles(c, kKindC); });
        register_cache_release(1, [](ThreadContext* c) { release_twiddles(c, kKindZ); });
        register_cache_release(2, [](ThreadContext* c) { release_twiddles(c, kKindV); });
        register_cache_release(3, release_bitrev);
    }
} g_register;

}  // namespace

bool order_ok(const Site& site, int order) {
    if (order < 0) {
        site.bad("order<0");
        return false;
    }
    if (order > 31) {
        site.bad("order>31");
        return false;
    }
    return true;
}

}  // namespace vek
