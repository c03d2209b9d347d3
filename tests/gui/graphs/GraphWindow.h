// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gui/controls/MWindows.h"
#include "gui/graphs/MFunctionGraphT.h"
#include "gui/platform/HeadlessWindowSystem.h"
#include "tests/gui/PlainStyle.h"

/// The plain style at any scale.
class ScaledStyle : public PlainStyle
{
public:
    explicit ScaledStyle(double wanted) : scale(wanted) {}
    double GetScale() const override { return scale; }

    double scale;
};

/// A function, as curves want it.
class PlainFunction : public MGraph
{
public:
    void ComputeValues(std::span<const double> x, std::span<double> y)
    {
        for (std::size_t i = 0; i < x.size(); ++i)
            y[i] = function(x[i]);
    }

    std::function<double(double)> function = [](double x)
    {
        return x;
    };
};

/// A graph editor that fills a window nobody sees.
class GraphWindow : public ::testing::Test
{
protected:
    void Open(std::int32_t width = 668, std::int32_t height = 360, double scale = 1)
    {
        window.reset();
        windows.reset();
        auto system = std::make_unique<HeadlessWindowSystem>(MSize{ 4000, 3000 });
        screen = system.get();
        windows = std::make_unique<MWindows>(std::move(system));
        windows->SetStyle(std::make_unique<ScaledStyle>(scale));
        window = std::make_unique<MWindow>();
        window->SetSize(width, height);
        editor = &window->Make<MGraphEditor>();
        editor->SetSize(width, height);
        window->Open(MWindowSystem::Kind::Normal);
    }
    ~GraphWindow() override { window.reset(); }

    /// A copy of what a user sees.
    std::vector<std::uint32_t> Look()
    {
        const MBitmap& seen = screen->Look(*window);
        return { seen.Row(0), seen.Row(0) + std::ptrdiff_t{ seen.Width() } * seen.Height() };
    }
    /// All of it, painted anew.
    std::vector<std::uint32_t> LookAgain()
    {
        window->Invalidate();
        return Look();
    }
    /// What was painted bit by bit is what is painted in one go.
    bool IsWhole()
    {
        const std::vector<std::uint32_t> before = Look();
        return before == LookAgain();
    }
    MPoint Middle() const
    {
        const MRectangle& area = editor->GraphRectangle();
        return { (area.left + area.right) / 2, (area.top + area.bottom) / 2 };
    }

    HeadlessWindowSystem* screen = nullptr;
    std::unique_ptr<MWindows> windows;
    std::unique_ptr<MWindow> window;
    MGraphEditor* editor = nullptr;
};
