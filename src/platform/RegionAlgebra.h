// SPDX-License-Identifier: MIT
/* The regions of libquillon_region and the set operations on them.
 *
 * Canonical form. A region is a set of pixels, a pixel (x, y) being the unit square whose top
 * left corner is the integer point (x, y). It is held as a list of rectangles [left, right) x
 * [top, bottom), each with left < right and top < bottom, in y-x banded order:
 *
 *  - Rectangles with the same top form a band; all rectangles of a band share top and bottom.
 *    Bands are listed from top to bottom and do not overlap: a band's top is at or below the
 *    previous band's bottom.
 *  - Inside a band the rectangles are listed from left to right and do not overlap: a
 *    rectangle's left is at or right of the previous one's right.
 *  - Two bands that touch (the upper one's bottom is the lower one's top) never hold the same
 *    list of left and right values: such bands are one band.
 *  - Rectangles of one band that touch are joined, with one exception that the platform makes
 *    too: a polygon filled with WINDING keeps a span ending and a span starting at the same x on
 *    the same row as two rectangles, and the set operations carry such pairs along where a band
 *    comes from one source alone.
 *  - The bounding box is the smallest rectangle holding every rectangle, and 0, 0, 0, 0 for the
 *    empty region, which holds no rectangle.
 *
 * GetRegionData returns the rectangles in exactly this order. The set operations are pixman's
 * band algebra, which keeps this form. Coordinates are 32-bit; OffsetRgn moves a region no
 * further than the platform's 27-bit range, so no coordinate ever wraps. Past 2^24 rectangles
 * no operation makes or changes a region. Debug builds check the form after every operation.
 */
#pragma once

#include <pixman.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

namespace quillon::region_detail {

using Box = pixman_box32_t;

constexpr std::int32_t wrap(std::int64_t v) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(v)));
}

// The most rectangles a region may hold. Every operation that makes or changes a region checks
// it before it allocates, and one that would pass it fails as an allocation failure would.
constexpr std::size_t kMaxRects = std::size_t(1) << 24;

// The platform keeps region coordinates within 27 bits, and OffsetRgn moves no region past them.
// The rectangles made by the other operations keep whatever 32-bit coordinates they were given.
constexpr std::int64_t kMinCoordinate = -(std::int64_t(1) << 27);
constexpr std::int64_t kMaxCoordinate = (std::int64_t(1) << 27) - 1;

class Region {
public:
    Region() noexcept { pixman_region32_init(&r_); }
    ~Region() { pixman_region32_fini(&r_); }
    Region(const Region&) = delete;
    Region& operator=(const Region&) = delete;

    pixman_region32_t* get() noexcept { return &r_; }
    const pixman_region32_t* get() const noexcept { return &r_; }

    const Box* boxes(int& n) const noexcept
    {
        return pixman_region32_rectangles(const_cast<pixman_region32_t*>(&r_), &n);
    }
    int count() const noexcept { return pixman_region32_n_rects(const_cast<pixman_region32_t*>(&r_)); }
    Box bound() const noexcept { return count() ? r_.extents : Box{0, 0, 0, 0}; }
    int kind() const noexcept
    {
        int n = count();
        return n == 0 ? NULLREGION : n == 1 ? SIMPLEREGION : COMPLEXREGION;
    }

    void clear() noexcept
    {
        pixman_region32_fini(&r_);
        pixman_region32_init(&r_);
    }
    // One rectangle, taken as it is.
    void setBox(const Box& b) noexcept
    {
        pixman_region32_fini(&r_);
        r_.extents = b;
        r_.data = nullptr;
    }
    // Takes the rectangles as they are, already in order, with the given bounding box.
    bool assign(const Box* boxes, std::size_t n, const Box& bound) noexcept
    {
        if (n > kMaxRects) return false;
        if (n <= 1) {
            if (n == 0)
                clear();
            else
                setBox(boxes[0]);
            return true;
        }
        auto* data = static_cast<pixman_region32_data_t*>(
            std::malloc(sizeof(pixman_region32_data_t) + n * sizeof(Box)));
        if (!data) return false;
        data->size = static_cast<long>(n);
        data->numRects = static_cast<long>(n);
        std::memcpy(data + 1, boxes, n * sizeof(Box));
        pixman_region32_fini(&r_);
        r_.extents = bound;
        r_.data = data;
        return true;
    }
    // Takes over a block of at least two rectangles in order, with the given bounding box.
    void adopt(pixman_region32_data_t* data, const Box& bound) noexcept
    {
        pixman_region32_fini(&r_);
        r_.extents = bound;
        r_.data = data;
    }
    bool copyFrom(const Region& other) noexcept
    {
        if (&other == this) return true;
        return pixman_region32_copy(&r_, const_cast<pixman_region32_t*>(&other.r_));
    }

    void swap(Region& other) noexcept { std::swap(r_, other.r_); }

private:
    pixman_region32_t r_;
};

// Whether the rectangles are in the canonical form described at the top of this file.
bool isCanonical(const Region& region) noexcept;

// Debug builds check the form after every operation that makes or changes a region.
inline void checkForm(const Region& region, const char* operation) noexcept
{
#ifndef NDEBUG
    if (!isCanonical(region)) {
        std::fprintf(stderr, "quillon_region: %s left a region outside the canonical form\n",
                     operation);
        std::abort();
    }
#else
    (void)region, (void)operation;
#endif
}

struct Span {
    std::int32_t x1, x2;
    bool operator==(const Span& o) const noexcept { return x1 == o.x1 && x2 == o.x2; }
};

// Rectangles written straight into the block a region keeps them in, so that a large result is
// neither copied nor held twice. Grows by doubling, up to the rectangle limit.
class BoxBuffer {
public:
    BoxBuffer() = default;
    BoxBuffer(const BoxBuffer&) = delete;
    BoxBuffer& operator=(const BoxBuffer&) = delete;
    ~BoxBuffer() { std::free(data_); }

    std::size_t size() const noexcept { return n_; }
    Box* begin() noexcept { return data_ ? reinterpret_cast<Box*>(data_ + 1) : nullptr; }
    Box* end() noexcept { return begin() + n_; }

    // Room for k more; false past the limit or when memory runs out.
    bool reserveMore(std::size_t k) noexcept
    {
        if (n_ + k > kMaxRects) return false;
        if (n_ + k <= capacity_) return true;
        std::size_t want = std::max<std::size_t>(64, 2 * capacity_);
        want = std::min(std::max(want, n_ + k), kMaxRects);
        void* grown = std::realloc(data_, sizeof(pixman_region32_data_t) + want * sizeof(Box));
        if (!grown) return false;
        data_ = static_cast<pixman_region32_data_t*>(grown);
        capacity_ = want;
        return true;
    }
    void push(const Box& b) noexcept { begin()[n_++] = b; } // after reserveMore

    // Gives the rectangles to the region, with the given bounding box; the buffer is then empty.
    bool handOver(Region& region, const Box& bound) noexcept
    {
        if (n_ <= 1) {
            const bool ok = region.assign(begin(), n_, bound);
            n_ = 0;
            return ok;
        }
        data_->size = static_cast<long>(capacity_);
        data_->numRects = static_cast<long>(n_);
        region.adopt(data_, bound);
        data_ = nullptr;
        n_ = capacity_ = 0;
        return true;
    }

private:
    pixman_region32_data_t* data_ = nullptr;
    std::size_t n_ = 0, capacity_ = 0;
};

// A rectangle with its corners put in order; an empty one makes the region empty.
Box normalized(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) noexcept;
void setRect(Region& region, const Box& b) noexcept;

// dest = a (mode) b, mode one of RGN_AND, RGN_OR, RGN_XOR, RGN_DIFF and RGN_COPY. On any failure
// (a result over the rectangle limit among them) dest is left as it was.
bool combine(Region& dest, const Region& a, const Region& b, int mode);
// Moves the region, or returns false and leaves it as it was when an edge of its moved bounding
// box (right and bottom included) would fall outside [kMinCoordinate, kMaxCoordinate]. An empty
// region moves by anything.
bool offset(Region& region, std::int32_t dx, std::int32_t dy);

} // namespace quillon::region_detail
