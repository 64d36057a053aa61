// Aligned allocation and the version record.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform.hpp"
#include "vek.h"

namespace {

constexpr std::uintptr_t kAlign = 32;
// Room for the alignment step and the raw address stored below the block.
constexpr std::uint32_t kSlack = kAlign + sizeof(void*);

void* aligned_alloc_n(int count, std::uint32_t elemSize) {
    std::size_t bytes;
    if (count >= 0) {
        // Exact size; a size the address space cannot hold gives null.
        const std::uint64_t want = std::uint64_t(count) * elemSize + kSlack;
        if (want > SIZE_MAX) return nullptr;
        bytes = std::size_t(want);
    } else {
        // A negative count wraps in 32 bits, as callers of the 32-bit
        // library have always seen; such a block is usable for nothing.
        bytes = std::uint32_t(std::uint32_t(count) * elemSize + kSlack);
    }
    void* raw = std::malloc(bytes);
    if (!raw) return nullptr;
    const std::uintptr_t base = reinterpret_cast<std::uintptr_t>(raw);
    const std::uintptr_t aligned = (base + kSlack - 1) & ~(kAlign - 1);
    std::memcpy(reinterpret_cast<void*>(aligned - sizeof(void*)), &raw, sizeof raw);
    return reinterpret_cast<void*>(aligned);
}

}  // namespace

extern "C" {

VEK_API void* vekMalloc(int length) { return aligned_alloc_n(length, 1); }

// The typed allocators of one element size are one function under several
// exported names. The targets are not exported themselves.
void* vek_alloc_2(int length) { return aligned_alloc_n(length, 2); }
void* vek_alloc_4(int length) { return aligned_alloc_n(length, 4); }
void* vek_alloc_8(int length) { return aligned_alloc_n(length, 8); }
void* vek_alloc_16(int length) { return aligned_alloc_n(length, 16); }

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wattribute-alias"
VEK_API short* vekwMalloc(int) __attribute__((alias("vek_alloc_2")));
VEK_API float* veksMalloc(int) __attribute__((alias("vek_alloc_4")));
VEK_API int* vekiMalloc(int) __attribute__((alias("vek_alloc_4")));
VEK_API CplxShort* vekvMalloc(int) __attribute__((alias("vek_alloc_4")));
VEK_API double* vekdMalloc(int) __attribute__((alias("vek_alloc_8")));
VEK_API CplxFloat* vekcMalloc(int) __attribute__((alias("vek_alloc_8")));
VEK_API CplxInt* vekjMalloc(int) __attribute__((alias("vek_alloc_8")));
VEK_API CplxDouble* vekzMalloc(int) __attribute__((alias("vek_alloc_16")));
#pragma GCC diagnostic pop

VEK_API void vekFree(void* block) {
    if (!block) return;
    void* raw;
    std::memcpy(&raw, static_cast<char*>(block) - sizeof(void*), sizeof raw);
    std::free(raw);
}

VEK_API const LibVersion* vekGetLibVersion(void) {
    static const LibVersion version = {
        4,  1, 45, vek::platform::kModuleName, "Version 4.1 Beta Release", "[4.01.45, 09/30/98]",
        "Oct  2 1998", "DLL"};
    return &version;
}

}  // extern "C"
