// SPDX-License-Identifier: MIT
// A region's rectangles, read once through GetRegionData and trusted only as far as they go: the
// header must say it is a header and describe its rectangles inside the buffer the platform filled
// (a platform answer that does not is a failed read, never followed out of the buffer). The buffer
// is the caller's for the object's life, taken with malloc: the DLLs carry no C++ runtime.
//   quillon::RegionRectangles rects(region);
//   if (!rects.ok()) ...;  for (std::size_t i = 0; i < rects.size(); ++i) use(rects[i]);
#ifndef QUILLON_DETAIL_REGION_RECTANGLES_H
#define QUILLON_DETAIL_REGION_RECTANGLES_H

#include <quillon/Region>

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace quillon {

class RegionRectangles {
public:
    // Reads the region; a null or unreadable one (or no memory for its data) gives !ok() and none.
    explicit RegionRectangles(HRGN region) noexcept
    {
        if (!region) return;
        const DWORD size = GetRegionData(region, 0, nullptr);
        if (size < sizeof(RGNDATAHEADER)) return;
        data_ = static_cast<char*>(std::malloc(size));
        if (!data_ || GetRegionData(region, size, reinterpret_cast<RGNDATA*>(data_)) == 0) return;
        std::memcpy(&header_, data_, sizeof header_);
        const unsigned long long end = 1ull * header_.dwSize + 1ull * header_.nCount * sizeof(RECT);
        if (header_.dwSize < sizeof(RGNDATAHEADER) || end > size) return;
        count_ = header_.nCount;
        ok_ = true;
    }
    ~RegionRectangles() { std::free(data_); }
    RegionRectangles(const RegionRectangles&) = delete;
    RegionRectangles& operator=(const RegionRectangles&) = delete;

    bool ok() const noexcept { return ok_; }
    std::size_t size() const noexcept { return count_; }
    // Rectangle i < size(), copied out: the platform's header need not leave them aligned.
    RECT operator[](std::size_t i) const noexcept
    {
        RECT r;
        std::memcpy(&r, data_ + header_.dwSize + i * sizeof(RECT), sizeof r);
        return r;
    }
    // The bounding box the platform reports (all zero for an empty region).
    const RECT& bounds() const noexcept { return header_.rcBound; }

private:
    char* data_ = nullptr;
    RGNDATAHEADER header_{};
    std::size_t count_ = 0;
    bool ok_ = false;
};

} // namespace quillon

#endif
