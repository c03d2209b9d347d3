// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "gui/controls/MControl.h"

/// Bars of levels, one above the other, -48 to 0 dB from left to right. What has peaked stays marked for a
/// while; what has clipped stays red until clicked. Only what moves is painted anew.
class MLevelMeter : public MControl
{
public:
    explicit MLevelMeter(std::int32_t channelCount = 2);

    void SetChannelCount(std::int32_t count);
    /// The largest amplitude of each channel since the last call, linear; 1 is full scale.
    /// @param milliseconds  of a clock: bars fall and marks go by it
    void SetLevels(const std::vector<float>& amplitudes, std::uint64_t milliseconds);
    bool HasClipped() const;

    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;

    static constexpr double LowestDb = -48;
    static constexpr double KneeDb = -12;   ///< from where the second colour begins
    static constexpr double FallDbPerSecond = 24;
    static constexpr std::uint64_t HoldMilliseconds = 1500;

protected:
    MSize ContentMinimum() const override;

private:
    struct Channel
    {
        double db = -200;
        double peakDb = -200;
        std::uint64_t peakTime = 0;
        bool clipped = false;
    };

    std::int32_t PixelOf(double db) const;
    MRectangle BarOf(std::size_t channel) const;
    void Follow(Channel& channel, double amplitude, double seconds, std::uint64_t now);
    void InvalidateChange(std::size_t channel, const Channel& before);

    std::vector<Channel> channels;
    std::uint64_t lastTime = 0;
};
