// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MCallback.h"
#include "gui/controls/MControl.h"

/// Chooses what is seen of an axis: by a bar that shows and moves the part, and by the buttons "zoomin",
/// "zoomout" and "zoomdefault" behind the bar's end. Whatever happens, the size lies between the smallest one
/// and the whole range, and the part inside of the range. Thread: GUI.
class MZoomer : public MControl
{
public:
    /// Of the bar: its page and position are whole shares of it.
    static constexpr std::int32_t BarMaximum = 1073741823;
    static constexpr std::int32_t LevelCount = 10;
    enum class Button : std::uint8_t
    {
        ZoomOut,
        ZoomIn,
        ZoomDefault,
        None
    };

    explicit MZoomer(Axis direction = Axis::X);

    double Minimum() const { return minimum; }
    double Maximum() const { return maximum; }
    double MinimumSize() const { return minimumSize; }
    double Position() const { return position; }
    double PartSize() const { return size; }
    double ZoomFactor() const { return zoomFactor; }
    bool IsWhole() const { return size >= maximum - minimum; }
    /// From outside: no event. What is no number changes nothing.
    void SetRange(double newMinimum, double newMaximum, double newMinimumSize);
    void SetPart(double newPosition, double newSize);
    /// Each step of zooming leaves this share, 0 to 1.
    void SetZoomFactor(double factor);

    // As a user does it: each tells OnZoom when something changed.
    void MoveTo(double newPosition);
    void ChangePart(double newPosition, double newSize);
    /// A tenth of what is seen.
    void Step(std::int32_t direction);
    void ZoomAround(double value, std::int32_t steps);
    /// factor^level of the range, about the middle of what is seen.
    void ZoomToLevel(std::int32_t level);
    void ZoomToDefault();
    MCallback<MOnNotifyParams>& OnZoom() { return zoom; }

    std::int32_t BarPage() const;
    std::int32_t BarPosition() const;
    void SetBarPosition(std::int32_t newPosition);

    /// How much of the control is bar, as far as the buttons behind it leave room. 0: as much as there is.
    void SetBarLength(std::int32_t pixels);
    /// What its buttons zoom, too.
    void SetPartner(MZoomer* other) { partner = other; }
    MRectangle BarRectangle() const;
    MRectangle ThumbRectangle() const;
    MRectangle ButtonRectangle(Button button) const;

    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    void OnCaptureEnd() override;
    void OnMouseLeave() override;

    bool showsButtons = true;

private:
    void Limit();
    bool Assign(double newPosition, double newSize);
    void Press(Button button);
    Button ButtonAt(std::int32_t x, std::int32_t y) const;
    bool OnPress(const MControlEvent& event);
    bool OnMove(const MControlEvent& event);
    std::int32_t Along(const MControlEvent& event) const { return axis == Axis::X ? event.x : event.y; }
    void PaintBar(MDrawer& drawer) const;
    void PaintButton(MDrawer& drawer, Button button) const;

    MCallback<MOnNotifyParams> zoom;
    Axis axis;
    MZoomer* partner = nullptr;
    double minimum = 0;
    double maximum = 1;
    double minimumSize = 0.01;
    double position = 0;
    double size = 1;
    double zoomFactor = 0.75;
    std::int32_t barLength = 0;
    std::int32_t grabbedAt = 0;   // from the thumb's begin
    bool dragging = false;
    Button held = Button::None;
    Button under = Button::None;   // the pointer
};
