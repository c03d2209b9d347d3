// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/PixelLoops.h"

#include <algorithm>
#include <array>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "gui/painting/PixelLoops.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "foundation/vector/InstructionSets.h"

// Compiled once for each instruction set.
HWY_BEFORE_NAMESPACE();
namespace Pixels
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;

using D32 = hn::ScalableTag<std::uint32_t>;
using DS = hn::RebindToSigned<D32>;
using DF = hn::RebindToFloat<D32>;
using DB = hn::Rebind<std::uint8_t, D32>;
using V = hn::Vec<D32>;
using VS = hn::Vec<DS>;
using VF = hn::Vec<DF>;
constexpr std::size_t MostLanes = HWY_MAX_BYTES / sizeof(std::uint32_t);

HWY_INLINE V Number(std::uint32_t value)
{
    return hn::Set(D32(), value);
}

/// As Pixels::Share, in every lane.
HWY_INLINE V ShareOf(V a, V b)
{
    const V product = hn::Add(hn::Mul(a, b), Number(128));
    return hn::ShiftRight<8>(hn::Add(product, hn::ShiftRight<8>(product)));
}

/// Source pixels and their alpha, one pixel a lane.
struct Colors
{
    V pixel;
    V alpha;
};

// The kinds of source. At gives the colours of a whole vector, Rest those of the last few pixels of a row.

struct OneColor
{
    explicit HWY_INLINE OneColor(MColor color) : colors{ Number(color.value), Number(color.Alpha()) } {}
    HWY_INLINE Colors At(std::size_t) const { return colors; }
    HWY_INLINE Colors Rest(std::size_t, std::size_t) const { return colors; }
    HWY_INLINE void NextRow() {}

    Colors colors;
};

struct CoveredColor
{
    CoveredColor(MColor color, const std::uint8_t* coverage, std::ptrdiff_t coverageStride)
        : pixel(Number(color.value)), alpha(Number(color.Alpha())), row(coverage), stride(coverageStride)
    {
    }
    HWY_INLINE Colors From(const std::uint8_t* bytes) const
    {
        const V covered = ShareOf(alpha, hn::PromoteTo(D32(), hn::LoadU(DB(), bytes)));
        const V color = hn::And(pixel, Number(0x00FFFFFFu));
        return { hn::Or(color, hn::ShiftLeft<24>(covered)), covered };
    }
    HWY_INLINE Colors At(std::size_t index) const { return From(row + index); }
    HWY_INLINE Colors Rest(std::size_t index, std::size_t count) const
    {
        std::array<std::uint8_t, MostLanes> bytes{};
        std::memcpy(bytes.data(), row + index, count);
        return From(bytes.data());
    }
    HWY_INLINE void NextRow() { row += stride; }

    V pixel;
    V alpha;
    const std::uint8_t* row;
    std::ptrdiff_t stride;
};

struct Image
{
    Image(const std::uint32_t* source, std::ptrdiff_t sourceStride, std::uint8_t imageAlpha)
        : alpha(Number(imageAlpha)), row(source), stride(sourceStride)
    {
    }
    HWY_INLINE Colors From(const std::uint32_t* pixels) const
    {
        const V pixel = hn::LoadU(D32(), pixels);
        const V shared = ShareOf(hn::ShiftRight<24>(pixel), alpha);
        return { hn::Or(hn::And(pixel, Number(0x00FFFFFFu)), hn::ShiftLeft<24>(shared)), shared };
    }
    HWY_INLINE Colors At(std::size_t index) const { return From(row + index); }
    HWY_INLINE Colors Rest(std::size_t index, std::size_t count) const
    {
        std::array<std::uint32_t, MostLanes> pixels{};
        std::memcpy(pixels.data(), row + index, count * sizeof(std::uint32_t));
        return From(pixels.data());
    }
    HWY_INLINE void NextRow() { row += stride; }

    V alpha;
    const std::uint32_t* row;
    std::ptrdiff_t stride;
};

// The operations. Each answers the new pixels.

/// a of an alpha, 0 to 255.
HWY_INLINE V WeightOf(V alpha)
{
    return hn::ShiftRight<8>(hn::Mul(hn::Add(alpha, Number(1)), Number(255)));
}

struct AlphablendOp
{
    static HWY_INLINE V Apply(V pixels, const Colors& source)
    {
        const V weight = WeightOf(source.alpha);
        const V nothing = hn::VecFromMask(D32(), hn::Eq(weight, Number(0)));
        const V rest = hn::Sub(hn::Sub(Number(255), weight), nothing);   // 256 for 0
        return hn::IfThenElse(hn::Eq(source.alpha, Number(255)), source.pixel,
                              Weighted(pixels, source.pixel, weight, rest));
    }

private:
#if HWY_TARGET == HWY_SCALAR
    static HWY_INLINE V Weighted(V pixels, V colors, V mine, V rest)
    {
        const auto part = [&](std::uint32_t channels)
        {
            const V mask = Number(channels);
            const V sum = hn::Add(hn::Mul(hn::And(colors, mask), mine), hn::Mul(hn::And(pixels, mask), rest));
            return hn::And(hn::ShiftRight<8>(sum), mask);
        };
        return hn::Or(hn::Or(part(0x00FF00FFu), part(0x0000FF00u)), hn::And(pixels, Number(0xFF000000u)));
    }
#else
    /// Two channels at a time, in the halves of a 32-bit lane: blue with red, green with alpha.
    static HWY_INLINE V Weighted(V pixels, V colors, V mine, V rest)
    {
        const hn::Repartition<std::uint16_t, D32> d16;
        const auto mineTwice = hn::BitCast(d16, hn::Or(mine, hn::ShiftLeft<16>(mine)));
        const auto restTwice = hn::BitCast(d16, hn::Or(rest, hn::ShiftLeft<16>(rest)));
        // The pixel keeps its own alpha: nothing of the source, 256 of itself.
        const auto mineGreen = hn::BitCast(d16, mine);
        const auto restGreen = hn::BitCast(d16, hn::Or(rest, Number(256u << 16)));

        const auto low = hn::Set(d16, 0x00FF);
        const auto own = hn::BitCast(d16, pixels);
        const auto other = hn::BitCast(d16, colors);
        const auto redBlue =
            hn::Add(hn::Mul(hn::And(other, low), mineTwice), hn::Mul(hn::And(own, low), restTwice));
        const auto green =
            hn::Add(hn::Mul(hn::ShiftRight<8>(other), mineGreen), hn::Mul(hn::ShiftRight<8>(own), restGreen));
        return hn::BitCast(D32(), hn::Or(hn::ShiftRight<8>(redBlue), hn::AndNot(low, green)));
    }
#endif
};

struct CopyOp
{
    static HWY_INLINE V Apply(V, const Colors& source) { return source.pixel; }
};

struct OverlayOp
{
    static HWY_INLINE V Apply(V pixels, const Colors& source)
    {
        const V blended = hn::And(AlphablendOp::Apply(pixels, source), Number(0x00FFFFFFu));
        const V own = hn::ShiftRight<24>(pixels);
        const V sum = hn::Min(hn::Add(own, source.alpha), Number(255));
        return hn::IfThenElse(hn::Eq(own, Number(0)), source.pixel, hn::Or(blended, hn::ShiftLeft<24>(sum)));
    }
};

/// The channels of a vector of pixels, one by one.
struct Planes
{
    static HWY_INLINE Planes Of(V pixels)
    {
        const V low = Number(255);
        return { hn::BitCast(DS(), hn::And(pixels, low)),
                 hn::BitCast(DS(), hn::And(hn::ShiftRight<8>(pixels), low)),
                 hn::BitCast(DS(), hn::And(hn::ShiftRight<16>(pixels), low)) };
    }
    /// Back, with the alpha of `pixels`.
    HWY_INLINE V Join(V pixels) const
    {
        const D32 d;
        const V color = hn::Or(hn::BitCast(d, blue), hn::Or(hn::ShiftLeft<8>(hn::BitCast(d, green)),
                                                            hn::ShiftLeft<16>(hn::BitCast(d, red))));
        return hn::Or(color, hn::And(pixels, Number(0xFF000000u)));
    }
    HWY_INLINE VS Largest() const { return hn::Max(blue, hn::Max(green, red)); }
    HWY_INLINE VS Smallest() const { return hn::Min(blue, hn::Min(green, red)); }

    VS blue;
    VS green;
    VS red;
};

HWY_INLINE VS Whole(std::int32_t value)
{
    return hn::Set(DS(), value);
}

HWY_INLINE VS Limited(VS value)
{
    return hn::Min(hn::Max(value, Whole(0)), Whole(255));
}

/// a / b towards zero, for numbers below 2^24 whose quotients differ from whole ones by 1 / 255 at least, or
/// not at all: there the rounding of the floating-point quotient never reaches the next whole number.
HWY_INLINE VS Divided(VS a, VS b)
{
    const DF df;
    return hn::ConvertTo(DS(), hn::Div(hn::ConvertTo(df, a), hn::ConvertTo(df, b)));
}

HWY_INLINE VS Mixed(VS target, VS own, VS weight)
{
    const VS sum = hn::Add(hn::Mul(target, weight), hn::Mul(own, hn::Sub(Whole(255), weight)));
    return hn::IfThenElse(hn::Eq(weight, Whole(0)), own, hn::ShiftRight<8>(sum));
}

/// An operation that works alike on each channel, given as Channel(d, s, a).
template <typename Op>
struct EachChannel
{
    static HWY_INLINE V Apply(V pixels, const Colors& source)
    {
        const Planes d = Planes::Of(pixels);
        const Planes s = Planes::Of(source.pixel);
        const VS a = hn::BitCast(DS(), WeightOf(source.alpha));
        return Planes{ Op::Channel(d.blue, s.blue, a), Op::Channel(d.green, s.green, a),
                       Op::Channel(d.red, s.red, a) }
            .Join(pixels);
    }
};

/// What a source adds or takes away.
HWY_INLINE VS Amount(VS s, VS a)
{
    return hn::ShiftRight<8>(hn::Mul(hn::Add(s, Whole(1)), a));
}

struct ModulateOp : EachChannel<ModulateOp>
{
    static HWY_INLINE VS Channel(VS d, VS s, VS a)
    {
        return Mixed(hn::ShiftRight<8>(hn::Mul(hn::Add(d, Whole(1)), s)), d, a);
    }
};
struct InvertOp : EachChannel<InvertOp>
{
    static HWY_INLINE VS Channel(VS d, VS, VS a) { return Mixed(hn::Sub(Whole(255), d), d, a); }
};
struct AddOp : EachChannel<AddOp>
{
    static HWY_INLINE VS Channel(VS d, VS s, VS a) { return hn::Min(hn::Add(d, Amount(s, a)), Whole(255)); }
};
struct SubtractOp : EachChannel<SubtractOp>
{
    static HWY_INLINE VS Channel(VS d, VS s, VS a) { return hn::Max(hn::Sub(d, Amount(s, a)), Whole(0)); }
};
struct DifferenceOp : EachChannel<DifferenceOp>
{
    static HWY_INLINE VS Channel(VS d, VS s, VS a) { return Mixed(hn::Max(hn::Sub(d, s), Whole(0)), d, a); }
};

HWY_INLINE VS Contrasted(VS d, VS factor)
{
    const VS middle = Whole(127);
    return Limited(hn::Add(middle, Divided(hn::Mul(hn::Sub(d, middle), factor), Whole(255))));
}
struct IncContrastOp : EachChannel<IncContrastOp>
{
    static HWY_INLINE VS Channel(VS d, VS s, VS a)
    {
        return Mixed(Contrasted(d, hn::Sub(Whole(4335), hn::ShiftLeft<4>(s))), d, a);
    }
};
struct DecContrastOp : EachChannel<DecContrastOp>
{
    static HWY_INLINE VS Channel(VS d, VS s, VS a) { return Mixed(Contrasted(d, s), d, a); }
};
struct LightenByContrastOp : EachChannel<LightenByContrastOp>
{
    static HWY_INLINE VS Channel(VS d, VS s, VS a)
    {
        const VS t = Amount(s, a);
        const VS rest = hn::Sub(Whole(255), t);
        const VS light = Divided(hn::Mul(d, Whole(255)), hn::Max(rest, Whole(1)));
        return hn::IfThenElse(hn::Eq(rest, Whole(0)), Whole(255), hn::Min(light, Whole(255)));
    }
};
struct DarkenByContrastOp : EachChannel<DarkenByContrastOp>
{
    static HWY_INLINE VS Channel(VS d, VS s, VS a)
    {
        const VS t = Amount(hn::Sub(Whole(255), s), a);
        const VS rest = hn::Sub(Whole(255), t);
        const VS dark = Divided(hn::Mul(hn::Sub(d, t), Whole(255)), hn::Max(rest, Whole(1)));
        return hn::IfThenElse(hn::Eq(rest, Whole(0)), d, Limited(dark));
    }
};
struct AddAndOverflowOp : EachChannel<AddAndOverflowOp>
{
    static HWY_INLINE VS Channel(VS d, VS s, VS) { return hn::And(hn::Add(d, s), Whole(255)); }
};
/// An operation through a coverage, for those that do something even with an alpha of 0.
template <typename Op>
struct OnlyCovered
{
    static HWY_INLINE V Apply(V pixels, const Colors& source)
    {
        return hn::IfThenElse(hn::Eq(source.alpha, Number(0)), pixels, Op::Apply(pixels, source));
    }
};

/// By the largest channel, which keeps the hue.
template <bool up>
struct LightnessOp
{
    static HWY_INLINE V Apply(V pixels, const Colors& source)
    {
        const Planes d = Planes::Of(pixels);
        const VS a = hn::BitCast(DS(), WeightOf(source.alpha));
        const VS amount = Amount(Planes::Of(source.pixel).Largest(), a);
        const VS v = d.Largest();
        const VS wanted = Limited(up ? hn::Add(v, amount) : hn::Sub(v, amount));
        const auto black = hn::Eq(v, Whole(0));
        const VS divisor = hn::Max(v, Whole(1));
        const auto scaled = [&](VS channel)
        {
            return hn::IfThenElse(black, wanted, Divided(hn::Mul(channel, wanted), divisor));
        };
        return Planes{ scaled(d.blue), scaled(d.green), scaled(d.red) }.Join(pixels);
    }
};

/// In the model of hue, saturation and lightness a channel is lightness + chroma (k - 1/2), with k from 0 to
/// 1 following from the hue alone: so neither the hue nor its six sectors need to be computed.
struct ColorOp
{
    static HWY_INLINE V Apply(V pixels, const Colors& source)
    {
        const DF df;
        const Planes d = Planes::Of(pixels);
        const Planes s = Planes::Of(source.pixel);
        const VS a = hn::BitCast(DS(), WeightOf(source.alpha));
        const VS low = s.Smallest();
        const VS range = hn::Sub(s.Largest(), low);
        const VF sourceRoom = RoomOf(hn::Add(s.Largest(), low));
        const VF perRange = hn::Div(hn::Set(df, 1.0f), hn::ConvertTo(df, hn::Max(range, Whole(1))));
        // Full at black and white, where the saturation means nothing.
        const VF saturation = hn::Div(hn::ConvertTo(df, range), hn::Max(sourceRoom, hn::Set(df, 1.0f)));

        const VS sum = hn::Add(d.Largest(), d.Smallest());
        const VF lightness = hn::Mul(hn::ConvertTo(df, sum), hn::Set(df, 0.5f));
        const VF chroma = hn::Mul(saturation, RoomOf(sum));
        const auto channel = [&](VS own, VS hue)
        {
            const VF k = hn::Mul(hn::ConvertTo(df, hn::Sub(hue, low)), perRange);
            const VF colored = hn::Add(hn::Mul(chroma, hn::Sub(k, hn::Set(df, 0.5f))),
                                       hn::Add(lightness, hn::Set(df, 0.5f)));
            // Without a hue the source is grey: the lightness alone.
            const VS target = hn::IfThenElse(hn::Eq(range, Whole(0)), hn::ShiftRight<1>(sum),
                                             Limited(hn::ConvertTo(DS(), colored)));
            return Mixed(target, own, a);
        };
        return Planes{ channel(d.blue, s.blue), channel(d.green, s.green), channel(d.red, s.red) }.Join(
            pixels);
    }

private:
    /// The largest chroma at a lightness, of which `sum` is twice.
    static HWY_INLINE VF RoomOf(VS sum)
    {
        return hn::ConvertTo(DF(), hn::Sub(Whole(255), hn::Abs(hn::Sub(sum, Whole(255)))));
    }
};

template <typename Op, typename Source>
void Run(const Block& block, Source source)
{
    const D32 d;
    const std::size_t lanes = hn::Lanes(d);
    const auto width = static_cast<std::size_t>(block.width);
    std::uint32_t* row = block.first;
    for (std::int32_t y = 0; y < block.height; ++y, row += block.stride, source.NextRow())
    {
        std::size_t x = 0;
        for (; x + lanes <= width; x += lanes)
            hn::StoreU(Op::Apply(hn::LoadU(d, row + x), source.At(x)), d, row + x);
        if (x == width)
            continue;
        std::array<std::uint32_t, MostLanes> rest{};
        const std::size_t bytes = (width - x) * sizeof(std::uint32_t);
        std::memcpy(rest.data(), row + x, bytes);
        hn::StoreU(Op::Apply(hn::LoadU(d, rest.data()), source.Rest(x, width - x)), d, rest.data());
        std::memcpy(row + x, rest.data(), bytes);
    }
}

template <typename Source>
void RunOp(const Block& block, const Source& source, MColorOp op)
{
    switch (op)
    {
    case MColorOp::None:
        return;
    case MColorOp::Alphablend:
        return Run<AlphablendOp>(block, source);
    case MColorOp::Modulate:
        return Run<ModulateOp>(block, source);
    case MColorOp::Copy:
        return Run<CopyOp>(block, source);
    case MColorOp::Overlay:
        return Run<OverlayOp>(block, source);
    case MColorOp::Color:
        return Run<ColorOp>(block, source);
    case MColorOp::Invert:
        return Run<InvertOp>(block, source);
    case MColorOp::Add:
        return Run<AddOp>(block, source);
    case MColorOp::Subtract:
        return Run<SubtractOp>(block, source);
    case MColorOp::Lighten:
        return Run<LightnessOp<true>>(block, source);
    case MColorOp::Darken:
        return Run<LightnessOp<false>>(block, source);
    case MColorOp::Difference:
        return Run<DifferenceOp>(block, source);
    case MColorOp::IncContrast:
        return Run<IncContrastOp>(block, source);
    case MColorOp::DecContrast:
        return Run<DecContrastOp>(block, source);
    case MColorOp::LightenByContrast:
        return Run<LightenByContrastOp>(block, source);
    case MColorOp::DarkenByContrast:
        return Run<DarkenByContrastOp>(block, source);
    case MColorOp::AddAndOverflow:
        return Run<AddAndOverflowOp>(block, source);
    }
}

void FillRun(const Block& block, MColor color, MColorOp op)
{
    RunOp(block, OneColor(color), op);
}

void CoverRun(const Block& block, const std::uint8_t* coverage, std::ptrdiff_t coverageStride, MColor color,
              MColorOp op)
{
    const CoveredColor source(color, coverage, coverageStride);
    if (op == MColorOp::AddAndOverflow)
        Run<OnlyCovered<AddAndOverflowOp>>(block, source);
    else if (op == MColorOp::Overlay)
        Run<OnlyCovered<OverlayOp>>(block, source);
    else
        RunOp(block, source, op == MColorOp::Copy ? MColorOp::Alphablend : op);
}

void BlendRun(const Block& block, const std::uint32_t* source, std::ptrdiff_t sourceStride,
              std::uint8_t alpha, MColorOp op)
{
    RunOp(block, Image(source, sourceStride, alpha), op);
}
}   // namespace HWY_NAMESPACE
}   // namespace Pixels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Pixels
{
KERNEL_TABLE(FillRun);
KERNEL_TABLE(CoverRun);
KERNEL_TABLE(BlendRun);

void Fill(const Block& block, MColor color, MColorOp op)
{
    if (block.width < 1 || block.height < 1)
        return;
    if (op == MColorOp::Alphablend && color.Alpha() == 255)
        op = MColorOp::Copy;
    KERNEL(FillRun)(block, color, op);
}

void Cover(const Block& block, const std::uint8_t* coverage, std::ptrdiff_t coverageStride, MColor color,
           MColorOp op)
{
    if (block.width > 0 && block.height > 0)
        KERNEL(CoverRun)(block, coverage, coverageStride, color, op);
}

void Blend(const Block& block, const std::uint32_t* source, std::ptrdiff_t sourceStride, std::uint8_t alpha,
           MColorOp op)
{
    if (block.width > 0 && block.height > 0)
        KERNEL(BlendRun)(block, source, sourceStride, alpha, op);
}
}   // namespace Pixels
#endif
