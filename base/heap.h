// SPDX-License-Identifier: MIT
// The library's heap: every allocation of the library passes through these functions, so a test can make the
// n-th one fail by binding its own function in front of them at link time (hence the C linkage).
#pragma once

#include <cstddef>

namespace vlt {

extern "C" {

/// Returns `size` uninitialised bytes, or null when memory runs out. A size of 0 counts as 1.
void* heap_alloc(std::size_t size);

/// Returns `size` zero bytes, or null when memory runs out. Large blocks cost no memory until they are touched.
void* heap_alloc_zeroed(std::size_t size);

/// Changes the size of a block, keeping its contents; null when memory runs out, and the old block stays valid.
void* heap_resize(void* block, std::size_t size);

/// Gives a block back; null is ignored.
void heap_free(void* block);

}  // extern "C"

/// Owns one heap block of trivially destructible elements and gives it back at the end of its scope.
template <typename T>
class HeapBlock {
public:
    HeapBlock() = default;
    explicit HeapBlock(T* block) : block_(block) {}
    HeapBlock(const HeapBlock&) = delete;
    HeapBlock& operator=(const HeapBlock&) = delete;
    HeapBlock(HeapBlock&& other) noexcept : block_(other.release()) {}
    HeapBlock& operator=(HeapBlock&& other) noexcept {
        reset(other.release());
        return *this;
    }
    ~HeapBlock() { heap_free(block_); }

    /// Room for `count` elements, uninitialised; tests false when memory runs out.
    static HeapBlock of(std::size_t count) {
        return HeapBlock(count > static_cast<std::size_t>(-1) / 2 / sizeof(T)
                             ? nullptr
                             : static_cast<T*>(heap_alloc(count * sizeof(T))));
    }

    T* get() const { return block_; }
    T& operator[](std::size_t i) const { return block_[i]; }
    explicit operator bool() const { return block_ != nullptr; }
    void reset(T* block = nullptr) {
        heap_free(block_);
        block_ = block;
    }
    T* release() {
        T* block = block_;
        block_ = nullptr;
        return block;
    }

private:
    T* block_ = nullptr;
};

}  // namespace vlt
