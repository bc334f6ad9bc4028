#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

#include "player/MulBuffer.h"

using PelmoraLib::MulBuffer;

// Every sequence of 8 operations from {write and commit, begin read, end
// read}, from the initial state: a held slot is never the write slot and
// never changes while held, a fresh read gets the newest committed value and
// a second begin keeps the held slot.
TEST(MulBuffer, ReaderNeverSharesWriterSlot) {
    const int kLength = 8;
    int sequences = 1;
    for (int i = 0; i < kLength; ++i) sequences *= 3;
    for (int code = 0; code < sequences; ++code) {
        MulBuffer<int> buffer;
        for (uint32_t slot = 0; slot < 3; ++slot) buffer.GetSlot(slot) = 0;
        int tag = 0, newest = 0, heldValue = 0;
        int* held = nullptr;
        for (int step = 0, rest = code; step < kLength; ++step, rest /= 3) {
            switch (rest % 3) {
                case 0:
                    buffer.WriteSlot() = ++tag;
                    buffer.Commit();
                    newest = tag;
                    break;
                case 1: {
                    int& slot = buffer.BeginRead();
                    if (!held) {
                        ASSERT_EQ(slot, newest) << "sequence " << code << " step " << step;
                        held = &slot;
                        heldValue = slot;
                    }
                    ASSERT_EQ(&slot, held) << "sequence " << code << " step " << step;
                    break;
                }
                default:
                    buffer.EndRead();
                    held = nullptr;
                    break;
            }
            if (!held) continue;
            ASSERT_NE(held, &buffer.WriteSlot()) << "sequence " << code << " step " << step;
            ASSERT_EQ(*held, heldValue) << "sequence " << code << " step " << step;
        }
    }
}

// A writer and a reader on two threads: every slot the reader gets is whole
// (all entries from one write) and never older than the previous one.
TEST(MulBuffer, ConcurrentReadsAreWholeAndInOrder) {
    const uint32_t kFrames = 20000;
    MulBuffer<std::vector<uint32_t>> buffer;
    for (uint32_t slot = 0; slot < 3; ++slot) buffer.GetSlot(slot).assign(256, 0);
    std::thread writer([&] {
        for (uint32_t frame = 1; frame <= kFrames; ++frame) {
            for (uint32_t& entry : buffer.WriteSlot()) entry = frame;
            buffer.Commit();
        }
    });
    uint32_t last = 0, torn = 0, backwards = 0;
    while (last < kFrames) {
        const std::vector<uint32_t>& slot = buffer.BeginRead();
        const uint32_t first = slot.front();
        for (uint32_t entry : slot) torn += entry != first;
        backwards += first < last;
        last = first;
        buffer.EndRead();
    }
    writer.join();
    EXPECT_EQ(torn, 0u);
    EXPECT_EQ(backwards, 0u);
}
