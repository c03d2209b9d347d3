// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/MEqualizerBase.h"

#include <algorithm>
#include <cmath>

#include "audio/filters/FilterMagnitudes.h"
#include "state/tree/MAttribute.h"

ResponseCurve::ResponseCurve(const FilterList& list, double wetRatio)
    : sections(list.filters.begin(), list.filters.begin() + list.count), wet(wetRatio)
{
}

double ResponseCurve::DecibelsAt(double logFrequency) const
{
    const double product = MAudioFilters::MagnitudeOfList(
        sections.data(), static_cast<std::int32_t>(sections.size()), std::pow(10.0, logFrequency));
    return 20 * std::log10((1 - wet) + wet * product);
}

void MEqualizerBase::SetDefaults(bool force)
{
    if (complete && !force)
        return;
    complete = true;
    for (std::int32_t index = 0; index < BandCount; ++index)
        SetBandDefaults(Band(index), index);
}

void MEqualizerBase::SetBandDefaults(BandPoint& band, std::int32_t index)
{
    band.ResetFields();
    band.x = BandMinimumX + (BandMaximumX - BandMinimumX) * (index + 1) / (BandCount + 1);
    band.enabled = index == 5;
    band.type = index == 0               ? MAudioFilters::LowShelf
                : index == BandCount - 1 ? MAudioFilters::HighShelf
                                         : MAudioFilters::Peak;
}

void MEqualizerBase::BandChanged(std::int32_t) {}

void MEqualizerBase::SavePoints(MAttribute& node) const
{
    for (const BandPoint& band : bands)
        band.Save(node.AddSubItem("point"));
}

void MEqualizerBase::LoadPoints(MAttribute& node)
{
    std::int32_t filled = 0;
    for (int index = 0; index < node.SubItemCount() && filled < BandCount; ++index)
    {
        MAttribute& item = node.SubItemAt(index);
        if (item.Name().EqualsNoCase("point"))
            Band(filled++).Load(item);
    }
    for (BandPoint& band : bands)
        band.Clamp();
}

void MEqualizerBase::Copy(MAttribute& tree) const
{
    tree.Clear();
    tree.SetName("MEqualizerSettings");
    SavePoints(tree);
}

void MEqualizerBase::Paste(MAttribute& tree)
{
    LoadPoints(tree);
    Update();
    UpdateAllBandControls();
}

ResponseCurve MEqualizerBase::CurrentResponse(bool withDrySignal) const
{
    const MSynchronizerGuard guard(lock);
    return { filters, withDrySignal ? wet : 1.0f };
}
