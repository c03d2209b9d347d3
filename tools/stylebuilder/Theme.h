// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "gui/painting/MColor.h"

/// One look's colours, out of the metrics that both looks share. Throws MException "The metrics lack
/// \"{0}\"." where one isn't there.
class Theme
{
public:
    /// @param look  "light" or "dark"
    Theme(const std::string& metricsPath, const std::string& look);

    bool IsDark() const { return dark; }
    MColor Color(const std::string& name) const;
    /// 1 to 10.
    MColor Band(int number) const;
    /// `part` is "body" or "core"; a curve without a core has its body's colour there, and the other way
    /// round.
    MColor Curve(const std::string& curve, const std::string& part) const;
    MColor BandInk() const;
    /// The line that says "on".
    MColor Lamp() const;
    double Size(const std::string& path) const;
    const nlohmann::json& At(const std::string& path) const;

private:
    nlohmann::json metrics;
    std::string name;
    bool dark;
};
