// SPDX-License-Identifier: MIT
// Runs a fuzz target's inputs one by one in a build without sanitizers, printing for each its time,
// the rectangles of the regions it made, the time per rectangle and the region layer's steps: a slow
// input is one whose time is not explained by the rectangles it made.   replay INPUT...
#include "fuzz_support.h"

#include "../src/platform/RegionUnion.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        const std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        rectanglesRead() = 0;
        const unsigned long long steps = quillon_region_steps();
        const auto start = std::chrono::steady_clock::now();
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        const std::uint64_t rects = rectanglesRead();
        std::printf("%s: %.3f s, %llu rectangles, %.0f ns a rectangle, %llu steps\n", argv[i], seconds,
                    static_cast<unsigned long long>(rects), rects ? 1e9 * seconds / double(rects) : 0.0,
                    quillon_region_steps() - steps);
    }
    return 0;
}
