// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/fft/MAudioOverlapAdd.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace
{
class Frames : public MAudioOverlapAdd
{
public:
    std::vector<std::vector<float>> seen;
    std::function<void(float*, std::int32_t)> work = [](float*, std::int32_t) {
    };

protected:
    void ProcessFrame(float* frame, std::int32_t length) override
    {
        seen.emplace_back(frame, frame + length);
        work(frame, length);
    }
};

std::vector<float> Feed(Frames& frames, std::vector<float> samples)
{
    frames.Process(samples.data(), samples.data(), static_cast<std::int32_t>(samples.size()));
    return samples;
}

TEST(MAudioOverlapAdd, WithoutOverlapsItIsAPlainFrameWiseProcessor)
{
    Frames frames;
    frames.work = [](float* frame, std::int32_t length)
    {
        std::reverse(frame, frame + length);
    };
    EXPECT_EQ(Feed(frames, { 1, 2, 3 }), (std::vector<float>{ 3, 2, 1 }));
    EXPECT_EQ(Feed(frames, {}), (std::vector<float>{}));
}

TEST(MAudioOverlapAdd, FramesOfTheEqualizerAdvanceByHalfAndAddUp)
{
    Frames frames;
    frames.SetOverlaps(4, 0);
    frames.SetPadding(false, true);
    frames.work = [](float* frame, std::int32_t length)
    {
        for (std::int32_t i = 0; i < length; ++i)
            frame[i] += static_cast<float>(100 * (i + 1));
    };
    EXPECT_EQ(Feed(frames, { 1, 2, 3, 4 }), (std::vector<float>{ 100, 200, 300, 400 }));
    // The second half of the last frame, 501, 602, ..., and the first half of this one.
    EXPECT_EQ(Feed(frames, { 5, 6, 7, 8 }), (std::vector<float>{ 602, 804, 1006, 1208 }));
    ASSERT_EQ(frames.seen.size(), 2u);
    EXPECT_EQ(frames.seen[0], (std::vector<float>{ 0, 0, 0, 0, 1, 2, 3, 4 }));
    EXPECT_EQ(frames.seen[1], (std::vector<float>{ 1, 2, 3, 4, 5, 6, 7, 8 }));
    frames.ClearBuffers();
    EXPECT_EQ(Feed(frames, { 9, 9, 9, 9 }), (std::vector<float>{ 100, 200, 300, 400 }));
    EXPECT_EQ(frames.seen[2], (std::vector<float>{ 0, 0, 0, 0, 9, 9, 9, 9 }));
    frames.ReleaseBuffers();
    EXPECT_EQ(Feed(frames, { 9, 9, 9, 9 }), (std::vector<float>{ 100, 200, 300, 400 }));
}

TEST(MAudioOverlapAdd, PaddingAndAddingOfBothSides)
{
    Frames padded;   // zeros on both sides, both added
    padded.SetOverlaps(2, 1);
    padded.work = [](float* frame, std::int32_t length)
    {
        std::iota(frame, frame + length, 10.0f);
    };
    EXPECT_EQ(Feed(padded, { 1, 2, 3, 4 }), (std::vector<float>{ 10, 11, 12, 13 }));
    EXPECT_EQ(padded.seen[0], (std::vector<float>{ 0, 0, 1, 2, 3, 4, 0 }));
    EXPECT_EQ(Feed(padded, { 5, 6, 7, 8 }), (std::vector<float>{ 24, 26, 28, 13 }));

    Frames carried;   // the past on both sides, nothing added
    carried.SetOverlaps(2, 1);
    carried.SetPadding(false, false);
    carried.SetAdding(false, false);
    Feed(carried, { 1, 2, 3, 4 });
    const std::vector<float> second = Feed(carried, { 5, 6, 7, 8 });
    EXPECT_EQ(carried.seen[0], (std::vector<float>{ 0, 0, 0, 1, 2, 3, 4 }));
    EXPECT_EQ(carried.seen[1], (std::vector<float>{ 2, 3, 4, 5, 6, 7, 8 }));
    EXPECT_EQ(second, (std::vector<float>{ 2, 3, 4, 5 }));   // the tail, then the frame

    EXPECT_EQ(Feed(carried, { 1, 2 }), (std::vector<float>{ 0, 0 })) << "fewer samples than overlaps";
    EXPECT_EQ(carried.seen.size(), 2u);
}
}   // namespace
