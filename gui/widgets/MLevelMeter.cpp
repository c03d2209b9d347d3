// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MLevelMeter.h"

#include <algorithm>
#include <cmath>

#include "gui/controls/XmlAttributes.h"

namespace
{
constexpr double BarUnits = 3.5;
constexpr double GapUnits = 1;
constexpr double LeastLengthUnits = 60;
constexpr double ClipUnits = 3;
constexpr double SilenceDb = -200;
}   // namespace

MLevelMeter::MLevelMeter(std::int32_t channelCount)
{
    controlType = MControlType::NoBackground;
    SetChannelCount(channelCount);
}

void MLevelMeter::SetChannelCount(std::int32_t count)
{
    channels.assign(static_cast<std::size_t>(std::clamp(count, 1, 64)), {});
    Relayout();
    Invalidate();
}

void MLevelMeter::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    if (std::int32_t count = 0; XmlAttributes(node).Read("channels", count))
        SetChannelCount(count);
}

bool MLevelMeter::HasClipped() const
{
    return std::any_of(channels.begin(), channels.end(), [](const Channel& each) { return each.clipped; });
}

MSize MLevelMeter::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const auto count = static_cast<double>(channels.size());
    return { Style()->Pixels(LeastLengthUnits), Style()->Pixels(count * BarUnits + (count - 1) * GapUnits) };
}

MRectangle MLevelMeter::BarOf(std::size_t channel) const
{
    const auto edge = [this](double units)
    {
        return Style()->Pixels(units);
    };
    const double first = static_cast<double>(channel) * (BarUnits + GapUnits);
    return { 0, edge(first), Width() - 1, std::max(edge(first), edge(first + BarUnits) - 1) };
}

std::int32_t MLevelMeter::PixelOf(double db) const
{
    const double share = std::clamp((db - LowestDb) / -LowestDb, 0.0, 1.0);
    return static_cast<std::int32_t>(std::lround(share * Width()));
}

void MLevelMeter::Follow(Channel& channel, double amplitude, double seconds, std::uint64_t now)
{
    const double db = amplitude > 0 && std::isfinite(amplitude) ? 20 * std::log10(amplitude) : SilenceDb;
    channel.db = std::max({ db, channel.db - FallDbPerSecond * seconds, SilenceDb });
    channel.clipped = channel.clipped || amplitude > 1;
    if (db >= channel.peakDb || now - channel.peakTime > HoldMilliseconds)
    {
        channel.peakDb = db;
        channel.peakTime = now;
    }
}

void MLevelMeter::SetLevels(const std::vector<float>& amplitudes, std::uint64_t milliseconds)
{
    const double seconds =
        lastTime != 0 && milliseconds > lastTime ? static_cast<double>(milliseconds - lastTime) / 1000 : 0;
    lastTime = milliseconds;
    for (std::size_t i = 0; i < channels.size(); ++i)
    {
        const Channel before = channels[i];
        Follow(channels[i], i < amplitudes.size() ? static_cast<double>(amplitudes[i]) : 0, seconds,
               milliseconds);
        InvalidateChange(i, before);
    }
}

void MLevelMeter::InvalidateChange(std::size_t channel, const Channel& before)
{
    if (Style() == nullptr)
        return;
    const Channel& now = channels[channel];
    MRectangle bar = BarOf(channel);
    const std::int32_t tick = Style()->Hairline();
    if (now.clipped != before.clipped)
        Invalidate(bar);
    std::int32_t first = PixelOf(before.db);
    std::int32_t last = PixelOf(now.db);
    if (first > last)
        std::swap(first, last);
    if (first != last)
        Invalidate({ first, bar.top, last, bar.bottom });
    const std::int32_t peakBefore = PixelOf(before.peakDb);
    const std::int32_t peakNow = PixelOf(now.peakDb);
    if (peakBefore != peakNow)
        for (const std::int32_t each : { peakBefore, peakNow })
            Invalidate({ each - tick, bar.top, each, bar.bottom });
}

void MLevelMeter::Paint(MDrawer& drawer)
{
    const MStyle& style = *Style();
    const std::int32_t knee = PixelOf(KneeDb);
    const std::int32_t tick = style.Hairline();
    for (std::size_t i = 0; i < channels.size(); ++i)
    {
        const Channel& channel = channels[i];
        const MRectangle bar = BarOf(i);
        drawer.FillRectangle(bar, style.GetColor(MStdColor::MeterTrack));
        const std::int32_t end = PixelOf(channel.db);
        const auto fill = [&](std::int32_t first, std::int32_t last, MStdColor color)
        {
            if (last >= first)
                drawer.FillRectangle({ first, bar.top, last, bar.bottom }, style.GetColor(color));
        };
        fill(0, std::min(knee, end) - 1, MStdColor::MeterLow);
        fill(knee, end - 1, MStdColor::MeterMid);
        if (const std::int32_t peak = PixelOf(channel.peakDb); peak > 0)
            fill(peak - tick, peak - 1, channel.peakDb > KneeDb ? MStdColor::MeterMid : MStdColor::MeterLow);
        if (channel.clipped)
            fill(bar.right + 1 - style.Pixels(ClipUnits), bar.right, MStdColor::MeterClip);
    }
}

bool MLevelMeter::OnEvent(const MControlEvent& event)
{
    if (event.code != MEventCode::LeftDown)
        return MControl::OnEvent(event);
    for (Channel& each : channels)
        each.clipped = false;
    Invalidate();
    return true;
}
