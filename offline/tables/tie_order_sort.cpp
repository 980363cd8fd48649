// SPDX-License-Identifier: MIT
#include "offline/tables/tie_order_sort.h"

#include <algorithm>
#include <cstddef>

namespace vlt {

namespace {

void exchange_bytes(void* left, void* right, std::int32_t width, void*) {
    char* a = static_cast<char*>(left);
    std::swap_ranges(a, a + width, static_cast<char*>(right));
}

/// A partition: its first and last element. It is empty when `hi` lies before `lo`.
struct Part {
    char* lo;
    char* hi;
};

class Sorter {
public:
    Sorter(std::int32_t width, KArrayCompare compare, KArrayExchange exchange, void* context)
        : width_(width), compare_(compare), exchange_(exchange ? exchange : exchange_bytes), context_(context) {}

    void sort(Part part) {
        while (true) {
            if (count(part) <= KARRAY_SORT_CUTOFF) {
                select(part);
            } else if (partition(&part)) {
                continue;
            }
            if (depth_ == 0) return;
            part = stack_[--depth_];
        }
    }

private:
    std::ptrdiff_t count(Part part) const { return (part.hi - part.lo) / width_ + 1; }
    bool several(Part part) const { return part.lo < part.hi; }
    int order(const char* a, const char* b) const { return compare_(a, b, context_); }

    void swap(char* a, char* b) const {
        if (a != b) exchange_(a, b, width_, context_);
    }

    /// Brings the largest element, the first of several, to the end of a part that shrinks from there.
    void select(Part part) const {
        for (; part.lo < part.hi; part.hi -= width_) {
            char* largest = part.lo;
            for (char* at = part.lo + width_; at <= part.hi; at += width_) {
                if (order(at, largest) > 0) largest = at;
            }
            swap(largest, part.hi);
        }
    }

    /// Splits the part about its middle element, defers the wider side and leaves the other in `part`; false when
    /// no side is left to go on with. Only the smaller side is ever gone on with, so the stack cannot run over.
    bool partition(Part* part) {
        char* const lo = part->lo;
        char* const hi = part->hi;
        swap(lo + count(*part) / 2 * width_, lo);
        char* left = lo;
        char* right = hi + width_;
        while (true) {
            do left += width_;
            while (left <= hi && order(left, lo) <= 0);
            do right -= width_;
            while (right > lo && order(right, lo) >= 0);
            if (right < left) break;
            swap(left, right);
        }
        swap(lo, right);
        Part near{lo, right - width_};
        Part far{left, hi};
        if (right - 1 - lo >= hi - left) std::swap(near, far);
        if (several(far)) stack_[depth_++] = far;
        *part = near;
        return several(near);
    }

    std::int32_t width_;
    KArrayCompare compare_;
    KArrayExchange exchange_;
    void* context_;
    Part stack_[KARRAY_SORT_STACK];
    int depth_ = 0;
};

}  // namespace

void KArray_Sort(void* base, std::int32_t count, std::int32_t width, KArrayCompare compare, KArrayExchange exchange,
                 void* context) {
    if (count < 2 || width < 1) return;
    char* const first = static_cast<char*>(base);
    Sorter(width, compare, exchange, context).sort({first, first + std::ptrdiff_t{width} * (count - 1)});
}

void* KArray_Search(const void* key, void* base, std::int32_t count, std::int32_t width, KArrayCompare compare,
                    void* context) {
    if (count < 1 || width < 1) return nullptr;
    char* lo = static_cast<char*>(base);
    char* hi = lo + std::ptrdiff_t{width} * (count - 1);
    while (lo <= hi) {
        const std::int32_t half = count / 2;
        if (half == 0) return count == 1 && compare(key, lo, context) == 0 ? lo : nullptr;
        const std::int32_t before = count % 2 ? half : half - 1;
        char* probe = lo + std::ptrdiff_t{width} * before;
        const int order = compare(key, probe, context);
        if (order == 0) return probe;
        if (order < 0) {
            hi = probe - width;
            count = before;
        } else {
            lo = probe + width;
            count = half;
        }
    }
    return nullptr;
}

std::int32_t KArray_SearchRange(const void* key, void* base, std::int32_t count, std::int32_t width, void** first,
                                void** last, KArrayCompare compare, void* context) {
    char* low = static_cast<char*>(KArray_Search(key, base, count, width, compare, context));
    char* high = low;
    if (low) {
        char* const begin = static_cast<char*>(base);
        char* const end = begin + std::ptrdiff_t{width} * (count - 1);
        while (low > begin && compare(key, low - width, context) == 0) low -= width;
        while (high < end && compare(key, high + width, context) == 0) high += width;
    }
    *first = low;
    *last = high;
    return low != nullptr;
}

}  // namespace vlt
