// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "audio/analyzer/AnalyzerSettings.h"
#include "audio/analyzer/Interpolator.h"
#include "audio/analyzer/MSpectralAnalyzer.h"
#include "foundation/threads/MSynchronizer.h"

/// What a display shows, latched by Initialise.
struct AnalyzerVisibility
{
    /// By processor and by client.
    std::array<std::array<bool, 2>, AnalyzerProcessorCount> processors{};
    bool comparison = false;
    bool sonogram = false;
};

/// The analyzer with everything that a user can set: the settings, their store, the prefilter, the smoothing
/// kernel, and the choice of channels for its clients.
///
/// It knows no screen: whether anybody looks, and so whether it is fed, is its owner's to know. A display
/// reads the latched flags and the arrays. AnalyseOwn and AnalyseClient run on the audio thread with the
/// effect's lock held and look at latched values only; everything else runs on the GUI thread and takes that
/// lock itself.
template <typename Sample, int Points>
class MSpectralAnalyzerAdvancedT;

template <>
class MSpectralAnalyzerAdvancedT<float, 1024> : public MSpectralAnalyzerT<float, 1024>
{
public:
    /// Which processors an added client wants: all four.
    static constexpr std::int32_t AllProcessors = -1;

    MSpectralAnalyzerAdvancedT();

    /// The effect's lock, which is recursive; null for none.
    void SetLock(MSynchronizer* effectLock) { lock = effectLock; }

    /// Reads or writes the settings. Reading doesn't re-initialise by itself.
    void Store(const MStoreParams& params);
    /// Brings the engine in line with the settings.
    /// @param newSampleRate  Hz, of the incoming samples, above 0
    /// @param force          also configures all clients and latches the settings that the audio thread reads
    /// Throws "Could not acquire mutex.".
    void Initialise(double newSampleRate, bool force);
    /// Stores the smoothness (0 to 0.2 of the axis) and makes the kernel for it.
    void SetSmoothness(double smoothness);
    /// The width in points, for Interpolator::SetWidth, that a smoothness means.
    static double SmoothingWidth(double smoothness);
    /// "Time resolution" alone, without touching anything else.
    void ApplyTimeResolution();
    /// Makes the prefilter's curve from its envelope and depth. Part of Initialise.
    void BuildPrefilter();
    void ApplyPrefilter(float* array) const override;
    bool IsPrefilterActive() const { return prefilterActive; }

    /// Adds a client of somebody else, who keeps it alive as long as this object.
    void AddClient(AnalyzerClient& client, std::int32_t processorIndex);
    /// Clears the statistics of all clients.
    void ResetAll();

    /// Feeds the analyzer's own clients from the channels by the latched mode. Thread: audio, never
    /// allocates.
    void AnalyseOwn(const float* const* channels, std::int32_t n, std::int32_t channelCount);
    /// Feeds an added client the same way, also while the analyzer itself is off.
    void AnalyseClient(AnalyzerClient& client, const float* const* channels, std::int32_t n,
                       std::int32_t channelCount);

    /// 0, and 1 for the second channel of "Left and right".
    AnalyzerClient& OwnClient(std::size_t index) { return ownClients[index]; }
    Interpolator& SmoothingKernel() { return interpolator; }
    bool IsLatchedEnabled() const { return latchedEnabled; }
    bool IsLatchedSonogramEnabled() const { return latchedSonogramEnabled; }
    const std::array<bool, AnalyzerProcessorCount>& LatchedProcessors() const { return latchedProcessors; }
    std::int32_t LatchedChannelMode() const { return latchedChannelMode; }
    const AnalyzerVisibility& Visibility() const { return visibility; }

    AnalyzerSettings settings;
    float reference = 0;   ///< common level of a normalised display, kept here for whoever draws

private:
    static constexpr std::int32_t MixChunk = 1024;

    struct AddedClient
    {
        AnalyzerClient* client;
        std::int32_t processorIndex;
    };

    void ConfigureClients();
    void UpdateVisibility();
    void Feed(AnalyzerClient& client, const float* const* channels, std::int32_t n,
              std::int32_t channelCount);
    void FeedMix(AnalyzerClient& client, const float* const* channels, std::int32_t n,
                 std::int32_t channelCount);

    MSynchronizer* lock = nullptr;
    std::array<AnalyzerClient, 2> ownClients;
    std::vector<AddedClient> addedClients;
    Interpolator interpolator;
    bool prefilterActive = false;
    std::array<float, PointCount> prefilterCurve{};
    // What the curve was made from.
    std::uint64_t prefilterStamp = 0;
    double builtPrefilterDepth = 0;
    std::array<float, MixChunk> mix;

    // Written on the GUI thread under the effect's lock, read by the audio thread.
    bool latchedEnabled = false;
    bool latchedSonogramEnabled = false;
    std::array<bool, AnalyzerProcessorCount> latchedProcessors{};
    std::int32_t latchedChannelMode = ChannelModeMix;
    AnalyzerVisibility visibility;
};

using MSpectralAnalyzerAdvanced = MSpectralAnalyzerAdvancedT<float, 1024>;
