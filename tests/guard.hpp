// Buffers that catch writes and reads past their ends, for tests and fuzz
// targets. The last element ends against an inaccessible page (any access
// beyond it faults at once, masked vector accesses included, which
// AddressSanitizer does not see); a canary of known bytes lies before the
// first element and intact() checks it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace vektest {

template <class T>
class Guarded {
public:
    static constexpr std::size_t kCanary = 64;  // bytes before the first element
    static constexpr unsigned char kFill = 0xA5;

    explicit Guarded(std::size_t n) : n_(n) {
        const std::size_t page = page_size();
        const std::size_t body = kCanary + n * sizeof(T);
        const std::size_t pages = (body + page - 1) / page;
        size_ = (pages + 1) * page;
#if defined(_WIN32)
        void* m = VirtualAlloc(nullptr, size_, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
        if (!m) throw std::bad_alloc();
        DWORD old;
        VirtualProtect(static_cast<char*>(m) + pages * page, page, PAGE_NOACCESS, &old);
#else
        void* m = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (m == MAP_FAILED) throw std::bad_alloc();
        mprotect(static_cast<char*>(m) + pages * page, page, PROT_NONE);
#endif
        base_ = static_cast<unsigned char*>(m);
        // Elements end exactly at the guard page; T's alignment is kept
        // because the page end is aligned and sizeof(T) is a multiple of it.
        data_ = reinterpret_cast<T*>(base_ + pages * page - n * sizeof(T));
        std::memset(base_, kFill, pages * page);
    }
    ~Guarded() {
#if defined(_WIN32)
        VirtualFree(base_, 0, MEM_RELEASE);
#else
        munmap(base_, size_);
#endif
    }
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;

    T* data() { return data_; }
    const T* data() const { return data_; }
    std::size_t size() const { return n_; }
    T& operator[](std::size_t i) { return data_[i]; }
    const T& operator[](std::size_t i) const { return data_[i]; }
    T* begin() { return data_; }
    T* end() { return data_ + n_; }

    // Fills the elements with one byte value (kFill by default), so that
    // "unwritten" can be checked with untouched().
    void fill_bytes(unsigned char b = kFill) { std::memset(data_, b, n_ * sizeof(T)); }

    // True when the canary before the first element is unchanged.
    bool intact() const {
        const unsigned char* c = reinterpret_cast<const unsigned char*>(data_) - kCanary;
        for (std::size_t i = 0; i < kCanary; ++i)
            if (c[i] != kFill) return false;
        return true;
    }
    // True when every element still holds the fill byte and the canary is intact.
    bool untouched(unsigned char b = kFill) const {
        const unsigned char* p = reinterpret_cast<const unsigned char*>(data_);
        for (std::size_t i = 0; i < n_ * sizeof(T); ++i)
            if (p[i] != b) return false;
        return intact();
    }

private:
    static std::size_t page_size() {
#if defined(_WIN32)
        SYSTEM_INFO si;
        GetSystemInfo(&si);
        return si.dwPageSize;
#else
        return std::size_t(sysconf(_SC_PAGESIZE));
#endif
    }

    std::size_t n_;
    std::size_t size_ = 0;
    unsigned char* base_ = nullptr;
    T* data_ = nullptr;
};

}  // namespace vektest
