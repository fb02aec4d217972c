// Snapshot.h -- a small record that one thread publishes and any thread reads without waiting
#pragma once

#include "stock/shared/LevelReading.h"

#include <atomic>
#include <cstring>
#include <type_traits>

// The writer fills the slot that is not the latest, so a writer that is interrupted half way keeps no reader waiting. A
// reader begins anew only when the writer has come round to its slot again meanwhile. Zero-filled is a zero-filled
// record.
template <typename T> class Snapshot {
  public:
    // One thread at a time.
    void Publish(const T &record)
    {
        static_assert(std::is_trivially_copyable_v<T>);
        u64 aqw[WORDS] = {};
        std::memcpy(aqw, &record, sizeof record);
        const u32 iNext = iLatest.load(std::memory_order_relaxed) ^ 1;
        Slot &slot = aSlot[iNext];
        const u32 dwVersion = slot.dwVersion.load(std::memory_order_relaxed);
        slot.dwVersion.store(dwVersion + 1, std::memory_order_relaxed);
        for (u32 i = 0; i < WORDS; i++) // release: nobody sees a new word beside the old version
            slot.aqw[i].store(aqw[i], std::memory_order_release);
        slot.dwVersion.store(dwVersion + 2, std::memory_order_release);
        iLatest.store(iNext, std::memory_order_release);
    }

    // [any-thread]
    T Read() const
    {
        u64 aqw[WORDS];
        while (!TryRead(aqw)) {
        }
        T record;
        std::memcpy(&record, aqw, sizeof record);
        return record;
    }

  private:
    static constexpr u32 WORDS = (sizeof(T) + 7) / 8;
    struct Slot {
        std::atomic<u32> dwVersion; // odd while it is being written
        std::atomic<u64> aqw[WORDS];
    };

    bool TryRead(u64 (&aqw)[WORDS]) const
    {
        const Slot &slot = aSlot[iLatest.load(std::memory_order_acquire)];
        const u32 dwVersion = slot.dwVersion.load(std::memory_order_acquire);
        for (u32 i = 0; i < WORDS; i++)
            aqw[i] = slot.aqw[i].load(std::memory_order_acquire);
        return dwVersion % 2 == 0 && slot.dwVersion.load(std::memory_order_relaxed) == dwVersion;
    }

    Slot aSlot[2];
    std::atomic<u32> iLatest;
};
