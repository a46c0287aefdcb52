// SPDX-License-Identifier: MIT
// ExtCreateRegion on raw bytes, in a buffer of exactly the size given (so that any read past it
// is caught), then the region read back, combined with itself and a rectangle, and offset.
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    if (size < 1) return 0;
    const DWORD before = liveRegions();
    const std::uint8_t cut = bytes[0];
    ++bytes, --size;
    // The byte count passed: the whole input, or a little less than it.
    const DWORD count = static_cast<DWORD>(size >= (cut & 15u) ? size - (cut & 15u) : size);
    auto* copy = static_cast<std::uint8_t*>(std::malloc(size ? size : 1));
    if (size) std::memcpy(copy, bytes, size);
    HRGN h = ExtCreateRegion(nullptr, count, reinterpret_cast<const RGNDATA*>(copy));
    std::free(copy);
    if (!h) return 0;
    readBack(h);
    HRGN other = CreateRectRgn(-5, 3, 1000, 1 << 20);
    for (int mode = RGN_AND; mode <= RGN_COPY; ++mode) {
        HRGN dest = CreateRectRgn(0, 0, 1, 1);
        if (CombineRgn(dest, h, other, mode) == ERROR) std::abort();
        readBack(dest);
        CombineRgn(dest, dest, h, mode);
        readBack(dest);
        DeleteObject(dest);
    }
    OffsetRgn(h, cut & 16 ? 0x7fffff00 : -7, cut & 32 ? -0x7fffff00 : 11);
    readBack(h);
    CombineRgn(h, h, h, cut & 64 ? RGN_XOR : RGN_OR);
    readBack(h);
    DeleteObject(other);
    DeleteObject(h);
    if (liveRegions() != before) std::abort();
    return 0;
}
