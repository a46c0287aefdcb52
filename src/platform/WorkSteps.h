// SPDX-License-Identifier: MIT
// The steps the region layer takes, counted per thread for quillon_region_steps (RegionUnion.h),
// so that tests can hold the work of a call against its input and result without timing it. A
// loop counts its steps as it goes and adds them to the thread's count once, as it ends.
#pragma once

#include <cstdint>

namespace quillon::region_detail {

extern thread_local std::uint64_t stepsTaken;

class StepCount {
public:
    StepCount() = default;
    StepCount(const StepCount&) = delete;
    StepCount& operator=(const StepCount&) = delete;
    ~StepCount() { stepsTaken += steps_; }

    void add(std::uint64_t k) noexcept { steps_ += k; }

private:
    std::uint64_t steps_ = 0;
};

} // namespace quillon::region_detail
