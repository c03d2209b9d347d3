// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/MEnvelopeComputer.h"

#include <algorithm>
#include <cmath>

#include "control/envelope/MEnvelopeCompiler.h"
#include "control/envelope/MEnvelopeItems.h"

namespace
{
std::unique_ptr<MEnvelopeComputer::Item> EndlessConstant(double value)
{
    auto item = std::make_unique<ItemConstant>(value);
    item->end = MEnvelopeComputer::Endless;
    return item;
}
}   // namespace

MEnvelopeComputer::MEnvelopeComputer()
{
    items.push_back(EndlessConstant(0.0));
}

MEnvelopeComputer::MEnvelopeComputer(const MEnvelope& envelope)
{
    Compile(envelope);
}

void MEnvelopeComputer::Compile(const MEnvelope& envelope)
{
    std::vector<std::unique_ptr<Item>> compiled;
    double compiledZeroFrom = Endless;
    if (envelope.Points().Count() < 2)
    {
        const double constant =
            envelope.Points().IsEmpty() ? 0.5 * (envelope.MinY() + envelope.MaxY()) : envelope.Points()[0].y;
        compiled.push_back(EndlessConstant(constant));
        if (constant == 0.0)
            compiledZeroFrom = envelope.MinX();
    }
    else
    {
        MEnvelopeCompiler compiler(envelope);
        compiled = compiler.Compile();
        compiledZeroFrom = compiler.ZeroFrom();
    }
    items.swap(compiled);
    zeroFrom = compiledZeroFrom;
    minX = envelope.MinX();
    maxX = envelope.MaxX();
    position = minX;
    index = 0;
}

void MEnvelopeComputer::Rewind(double x)
{
    if (x < position)
        while (index > 0 && items[static_cast<std::size_t>(index) - 1]->end > x)
            --index;
    position = x;
}

double MEnvelopeComputer::Value(double x)
{
    const auto last = static_cast<std::int32_t>(items.size()) - 1;
    while (index < last && x >= items[static_cast<std::size_t>(index)]->end)
        ++index;
    position = x;
    return items[static_cast<std::size_t>(index)]->Value(x);
}

void MEnvelopeComputer::Fill(float* values, double startX, double step, int count)
{
    const auto last = static_cast<std::int32_t>(items.size()) - 1;
    double x = startX;
    int done = 0;
    while (done < count)
    {
        while (index < last && x >= items[static_cast<std::size_t>(index)]->end)
            ++index;
        const Item& item = *items[static_cast<std::size_t>(index)];
        const double fitting = std::ceil((item.end - x) / step);
        const bool reachesEnd = fitting >= 1.0 && fitting <= count - done;
        const int run = reachesEnd ? static_cast<int>(fitting) : count - done;
        item.Fill(values + done, x, step, run);
        done += run;
        x += step * run;
        // Rounding must not leave x before the end that it has passed.
        if (reachesEnd && index < last)
        {
            x = std::max(x, item.end);
            ++index;
        }
    }
    position = x;
}
