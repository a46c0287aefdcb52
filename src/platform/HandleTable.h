// SPDX-License-Identifier: MIT
// The handle table of libquillon_region: opaque handles for the objects it holds.
//
// A handle is the token (generation << kIndexBits) | (slot + 1). Generations start at 1, so no
// handle is a small number; a slot's next object gets the next generation, so a deleted handle
// names nothing. A slot whose generation would wrap around is retired instead of reused: its
// handles could otherwise come back to name a later object, and a handle is never issued twice.
// One reader-writer lock guards the table; an object lives in its slot until it is erased.
//
// The generation width is a parameter so that the retirement can be checked with a narrow
// counter; the library uses the widest that fits beside the index in a pointer.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <utility>
#include <vector>

namespace quillon::region_detail {

template <class Object, unsigned GenerationBits = (sizeof(std::uintptr_t) >= 8 ? 32 : 16)>
class HandleTable {
public:
    static constexpr unsigned kIndexBits = sizeof(std::uintptr_t) >= 8 ? 32 : 16;
    static_assert(GenerationBits >= 2 && GenerationBits + kIndexBits <= 8 * sizeof(std::uintptr_t),
                  "a handle holds a slot index and a generation");
    static constexpr std::uintptr_t kIndexMask = (std::uintptr_t(1) << kIndexBits) - 1;
    static constexpr std::uint32_t kLastGeneration =
        static_cast<std::uint32_t>((std::uint64_t(1) << GenerationBits) - 1);
    static constexpr std::size_t kMaxSlots =
        std::min<std::size_t>(kIndexMask - 1, std::size_t(1) << 24);

    // The handle of a new slot holding the object, or null when the table is full or memory
    // runs out (the object is then dropped).
    void* insert(std::unique_ptr<Object> object) noexcept
    {
        std::unique_lock lock(mutex_);
        std::size_t index;
        if (!free_.empty()) {
            index = free_.back();
            free_.pop_back();
        } else {
            if (slots_.size() >= kMaxSlots) return nullptr;
            try {
                slots_.emplace_back();
                free_.reserve(slots_.size());
            } catch (...) {
                return nullptr;
            }
            index = slots_.size() - 1;
        }
        Slot& s = slots_[index];
        s.object = std::move(object);
        ++live_;
        const std::uintptr_t token =
            (std::uintptr_t(s.generation) << kIndexBits) | std::uintptr_t(index + 1);
        return reinterpret_cast<void*>(token);
    }

    // Deletes the object a handle names; false if it names none.
    bool erase(const void* handle) noexcept
    {
        std::unique_ptr<Object> doomed;
        {
            std::unique_lock lock(mutex_);
            Slot* s = find(handle);
            if (!s) return false;
            doomed = std::move(s->object);
            --live_;
            if (s->generation == kLastGeneration) {
                ++retired_; // never reused: its next generation would be an old one again
            } else {
                ++s->generation;
                free_.push_back(static_cast<std::size_t>(s - slots_.data())); // reserved
            }
        }
        return true;
    }

    // Runs f(object) under a shared lock; false if the handle names nothing.
    template <class F>
    bool read(const void* h, F&& f)
    {
        std::shared_lock lock(mutex_);
        Slot* s = find(h);
        if (!s) return false;
        f(static_cast<const Object&>(*s->object));
        return true;
    }
    // Runs f(object) under the exclusive lock and returns what it returns.
    template <class F>
    bool write(const void* h, F&& f)
    {
        std::unique_lock lock(mutex_);
        Slot* s = find(h);
        if (!s) return false;
        return f(*s->object);
    }
    // The destination changes, the sources are read; any of them may be the same object.
    template <class F>
    bool writeWith(const void* dest, const void* a, const void* b, bool needB, F&& f)
    {
        std::unique_lock lock(mutex_);
        Slot* sd = find(dest);
        Slot* sa = find(a);
        Slot* sb = needB ? find(b) : nullptr;
        if (!sd || !sa || (needB && !sb)) return false;
        return f(*sd->object, *sa->object, sb ? *sb->object : *sa->object);
    }
    template <class F>
    bool readTwo(const void* a, const void* b, F&& f)
    {
        std::shared_lock lock(mutex_);
        Slot* sa = find(a);
        Slot* sb = find(b);
        if (!sa || !sb) return false;
        f(static_cast<const Object&>(*sa->object), static_cast<const Object&>(*sb->object));
        return true;
    }

    std::size_t live()
    {
        std::shared_lock lock(mutex_);
        return live_;
    }
    // Slots taken out of use because their generations ran out.
    std::size_t retired()
    {
        std::shared_lock lock(mutex_);
        return retired_;
    }

private:
    struct Slot {
        std::uint32_t generation = 1;
        std::unique_ptr<Object> object;
    };

    Slot* find(const void* handle) noexcept
    {
        const std::uintptr_t token = reinterpret_cast<std::uintptr_t>(handle);
        const std::uintptr_t index = token & kIndexMask;
        const std::uintptr_t generation = token >> kIndexBits;
        if (index == 0 || index > slots_.size()) return nullptr;
        Slot& s = slots_[index - 1];
        if (!s.object || generation != s.generation) return nullptr;
        return &s;
    }

    std::shared_mutex mutex_;
    std::vector<Slot> slots_;
    std::vector<std::size_t> free_;
    std::size_t live_ = 0;
    std::size_t retired_ = 0;
};

} // namespace quillon::region_detail
