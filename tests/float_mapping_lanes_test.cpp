// SPDX-License-Identifier: MIT
// The lane form of Transform<float>'s mapping, called directly, against the formula spelled out
// in plain scalar code. This file is compiled for SSE2 without AVX (see tests/CMakeLists.txt), the
// target where callers' code inlines the lanes, so the form is checked in every build, the
// -march=native one included, and not only through the module.
#include "float_mapping_battery.h"

#if defined(QUILLON_MAP_LANES)
TEST(FloatMappingLanes, RowsZeroAndOneSideBySideHaveTheFormulasBits)
{
    float_battery::everyVectorType(0x1a'9e5, 6000, "lanes", [](const float (&e)[16], const Transform<float>&, const auto& v) {
        float rows[4][4];
        for (int k = 0; k < 16; ++k) rows[k / 4][k % 4] = e[k];
        return quillon::detail::mapInLanes(rows, v);
    });
}

#elif (defined(__clang__) || (defined(__GNUC__) && __GNUC__ >= 12)) && (defined(__x86_64__) || defined(__i386__))
#  error "the float mapping's lanes should be compiled in this file"
#endif
