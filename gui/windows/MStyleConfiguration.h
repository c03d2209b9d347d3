// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

#include "control/values/MValueList.h"
#include "gui/styles/StyleSettings.h"
#include "gui/widgets/MCheckBox.h"
#include "gui/widgets/MSwitcher.h"
#include "gui/windows/MColorSelectButton.h"

/// The settings of the style as controls: which style, its scale, main colours and icons, what is inverted,
/// and whether anything moves. Thread: GUI.
class MStyleConfiguration : public MControl
{
public:
    static constexpr std::array<std::int32_t, 6> ScalesPercent{ 100, 125, 150, 200, 250, 300 };

    MStyleConfiguration();

    /// Shows a configuration; see LoadStyleConfiguration.
    void Load(const MAttribute& configuration);
    /// Into a configuration; what it has besides stays.
    void Store(MAttribute& configuration) const;
    /// Lets no scale be chosen at which a window wouldn't fit, but the one that is chosen already.
    /// @param windowAt100  its size at 100 %
    void LimitScales(MSize windowAt100, MSize screen);
    std::int32_t ScalePercent() const { return scalePercent; }

    /// Pixels at the style's scale.
    MSize PreferredSize() const;

protected:
    void Realize() override;
    MSize ContentMinimum() const override { return Style() != nullptr ? PreferredSize() : MSize{}; }

private:
    static constexpr std::size_t ColorCount = StyleSettings::MainColorCount + 1;   // and the icons'

    void AddLabel(const MString& text, std::int32_t row);
    void ShowScale();
    /// What a style has where its user says nothing.
    StyleSettings DefaultsOf(const MString& styleName) const;
    void ShowDefaults();
    void PlaceRow(MControl& control, std::int32_t row, std::int32_t index, std::int32_t count) const;
    void OnStyle(const MOnValueChangeParams& params);
    void OnScale(const MOnControlClickParams& params, std::uintptr_t index);

    MString folder;   // of the style files
    MStringList names;
    MValueStringList style;
    MSwitcher* styles = nullptr;
    std::array<MButton*, ScalesPercent.size()> scales{};
    std::array<MColorSelectButton*, ColorCount> colors{};   // in the order of the rows
    MCheckBox* icons = nullptr;
    MCheckBox* bitmaps = nullptr;
    MCheckBox* motion = nullptr;
    std::int32_t scalePercent = 100;
};
