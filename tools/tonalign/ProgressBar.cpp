// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/ProgressBar.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

#include "tools/tonalign/Interrupt.h"

namespace
{
struct StageTexts
{
    const char* name;
    const char* title;
};

const StageTexts& TextsOf(Stage stage)
{
    static constexpr StageTexts texts[] = { { "loading", "Loading the file..." },
                                            { "resampling", "Resampling..." },
                                            { "analysing", "Analysing..." },
                                            { "fitting", "Fitting..." },
                                            { "rendering", "Rendering..." } };
    return texts[static_cast<int>(stage)];
}
}   // namespace

const char* StageName(Stage stage)
{
    return TextsOf(stage).name;
}

ProgressBar::ProgressBar(bool quiet) : visible(!quiet && isatty(STDERR_FILENO) == 1) {}

ProgressBar::~ProgressBar()
{
    Finish();
}

bool ProgressBar::Report(Stage newStage, double fraction)
{
    if (newStage != stage)
    {
        Finish();
        stage = newStage;
        started = Clock::now();
        lastDrawn = started;
    }
    if (visible)
        Draw(std::clamp(fraction, 0.0, 1.0));
    return !Interrupted();
}

void ProgressBar::Draw(double fraction)
{
    using std::chrono::duration;
    const Clock::time_point now = Clock::now();
    constexpr double interval = 0.1;
    constexpr double patience = 0.25;
    const double elapsed = duration<double>(now - started).count();
    if (elapsed < patience || duration<double>(now - lastDrawn).count() < interval)
        return;
    lastDrawn = now;
    drawn = true;
    constexpr int width = 30;
    const int filled = static_cast<int>(fraction * width);
    std::fprintf(stderr, "\r%-20s [%.*s%.*s] %3.0f %%", TextsOf(*stage).title, filled,
                 "##############################", width - filled, "                              ",
                 fraction * 100);
    if (fraction > 0.01)
        std::fprintf(stderr, "  %.0f s left ", elapsed / fraction * (1 - fraction));
    std::fprintf(stderr, "\033[K");
    std::fflush(stderr);
}

void ProgressBar::Wipe()
{
    if (drawn)
    {
        std::fprintf(stderr, "\r\033[K");
        std::fflush(stderr);
    }
    drawn = false;
}

void ProgressBar::Finish()
{
    if (!stage)
        return;
    Wipe();
    const double spent = std::chrono::duration<double>(Clock::now() - started).count();
    const auto known = std::find_if(seconds.begin(), seconds.end(),
                                    [this](const auto& entry) { return entry.first == *stage; });
    if (known != seconds.end())
        known->second += spent;
    else
        seconds.emplace_back(*stage, spent);
    stage.reset();
}
