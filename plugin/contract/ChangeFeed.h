// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

/// What may change in front of whoever shows it, besides single parameters and bands.
enum class Change : std::int32_t
{
    AnalysisState,   ///< a measurement began or ended, an analysis came or went
    AnalyzerSettings,   ///< the analyzer is to be configured anew; see BringAnalyzerUpToDate of the effect
    Bands,   ///< the bands were replaced as a whole
    Response,   ///< the filters were designed anew: the equalizer's curve
    ParameterGroup,   ///< a group of parameters was loaded
    Settings,   ///< everything was loaded, by whomever
    SettingsInside,   ///< everything was loaded from inside: the host has to read all values again
    Preset,   ///< the present preset, or the list of them
    ParameterList,   ///< adapters came or went
    Bypass,
    Latency,
    Count
};

/// The one way in which news of a plug-in travels to screens and to its host.
///
/// Whoever changes something marks it: that is two atomic increments, takes no lock, allocates nothing and
/// calls nobody, so the audio thread may do it. Whoever shows something keeps a ChangeListener, asks it now
/// and then on the GUI thread, and reads the plain values of what was marked (write first, then mark). A mark
/// tells that there is something new, not how often it changed and not to what.
///
/// A mark is a counter that each listener compares with what it saw last, so that any number of listeners may
/// come and go without the marking side knowing of them. Made before, and gone after, all who mark.
class ChangeFeed
{
public:
    static constexpr std::int32_t MaxBands = 16;
    static constexpr std::int32_t MaxParameters = 1024;

    ChangeFeed() = default;
    ChangeFeed(const ChangeFeed&) = delete;
    ChangeFeed& operator=(const ChangeFeed&) = delete;

    /// Thread: any, all of these. An index out of range marks nothing.
    void Mark(Change what) { Bump(static_cast<std::int32_t>(what)); }
    void MarkBand(std::int32_t band);
    /// @param index  in the flat list of parameters, as a host counts them
    void MarkParameter(std::int32_t index);
    /// The same for a change that the host doesn't know of: the next report to it will hold the parameter.
    void MarkParameterInside(std::int32_t index);

private:
    friend class ChangeListener;
    static constexpr std::int32_t FirstBand = static_cast<std::int32_t>(Change::Count);
    static constexpr std::int32_t FirstParameter = FirstBand + MaxBands;
    static constexpr std::int32_t FirstInside = FirstParameter + MaxParameters;
    static constexpr std::int32_t PlaceCount = FirstInside + MaxParameters;

    void Bump(std::int32_t place)
    {
        counters[static_cast<std::size_t>(place)].fetch_add(1, std::memory_order_release);
        // Behind the place's own counter: a listener that sees no new generation has missed nothing.
        generation.fetch_add(1, std::memory_order_release);
    }

    std::array<std::atomic<std::uint32_t>, PlaceCount> counters{};
    std::atomic<std::uint32_t> generation = 0;
};
