// SPDX-License-Identifier: MIT
// A growing array of plain elements whose growth can fail: the standard containers end the process when memory
// runs out and exceptions are off, and running out of memory is an ordinary result here.
#pragma once

#include <cstring>
#include <type_traits>
#include <utility>

#include "base/heap.h"

namespace vlt {

template <typename T>
class Array {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    Array() = default;
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;
    ~Array() { heap_free(data_); }

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    T* data() { return data_; }
    const T* data() const { return data_; }
    T& operator[](std::size_t i) { return data_[i]; }
    const T& operator[](std::size_t i) const { return data_[i]; }
    T& back() { return data_[size_ - 1]; }
    const T& back() const { return data_[size_ - 1]; }
    T* begin() { return data_; }
    T* end() { return data_ + size_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + size_; }

    /// Makes room for `count` elements in all; false when memory runs out, and nothing has changed.
    [[nodiscard]] bool reserve(std::size_t count) {
        if (count <= capacity_) return true;
        std::size_t wanted = capacity_ + capacity_ / 2 + 8;
        if (wanted < count) wanted = count;
        if (wanted > static_cast<std::size_t>(-1) / 2 / sizeof(T)) return false;
        void* grown = heap_resize(data_, wanted * sizeof(T));
        if (!grown) return false;
        data_ = static_cast<T*>(grown);
        capacity_ = wanted;
        return true;
    }

    /// Sets the size; new elements are all zero bytes. False when memory runs out, and nothing has changed.
    [[nodiscard]] bool resize(std::size_t count) {
        if (!reserve(count)) return false;
        if (count > size_) std::memset(static_cast<void*>(data_ + size_), 0, (count - size_) * sizeof(T));
        size_ = count;
        return true;
    }

    [[nodiscard]] bool push_back(const T& element) {
        if (!reserve(size_ + 1)) return false;
        data_[size_++] = element;
        return true;
    }

    void swap(Array& other) {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

    /// Drops elements from the end; never allocates.
    void shrink(std::size_t count) { size_ = count < size_ ? count : size_; }

    /// Drops all elements and gives the memory back.
    void clear() {
        heap_free(data_);
        data_ = nullptr;
        size_ = capacity_ = 0;
    }

private:
    T* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace vlt
