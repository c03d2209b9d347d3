// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "gui/controls/MControl.h"
#include "gui/richtext/MSTML.h"
#include "gui/widgets/StyleResources.h"

/// Marked-up text of many lines, as high as its width needs.
class MStaticMultiLine : public MControl
{
public:
    MStaticMultiLine();
    ~MStaticMultiLine() override;

    /// As mark-up. What can't be parsed is shown as it stands.
    void SetText(const MString& markup);
    /// As it stands.
    void SetPlainText(const MString& text);
    const MString& Text() const { return source; }
    /// Of the text at a width.
    std::int32_t HeightAt(std::int32_t width);
    /// Of the text without breaking lines.
    std::int32_t PreferredWidth();

    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;

    std::int32_t preferredWidth = 0;   ///< pixels; 0: as wide as its place

protected:
    void Realize() override;
    MSize ContentMinimum() const override;
    std::int32_t ComputePlasticSize(Axis axis, std::int32_t crossClientSize) const override;

private:
    void Parse();

    MString source;
    std::unique_ptr<StyleResources> resources;
    std::unique_ptr<MSTML> document;
};
