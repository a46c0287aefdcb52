// Small helpers shared by the tests: exact bit patterns of stored values.
#pragma once

#include <quillon/GuardScalars>

#include <bit>
#include <cstdint>

inline std::uint64_t bits(double v) { return std::bit_cast<std::uint64_t>(v); }
inline std::uint32_t bits(float v) { return std::bit_cast<std::uint32_t>(v); }
inline std::uint64_t bits(const guarddouble& v) { return bits(v.value()); }
inline std::uint32_t bits(const guardfloat& v) { return bits(v.value()); }
inline std::uint32_t bits(const guardint& v) { return static_cast<std::uint32_t>(v.value()); }

constexpr double kL = 0x1p1022;  // guarddouble limit
constexpr float kLf = 0x1p126f;  // guardfloat limit
constexpr int kLi = 2147483647;  // guardint limit
