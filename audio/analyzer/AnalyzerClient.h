// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "audio/analyzer/BlockProcessors.h"
#include "audio/analyzer/DecimatorRunner.h"
#include "foundation/threads/MLock.h"

/// The statistics that a client may keep; the index of a block processor.
enum AnalyzerProcessor : std::int32_t
{
    ProcessorAverage = 0,
    ProcessorAverageInfinite = 1,
    ProcessorMaximum = 2,
    ProcessorMaximumInfinite = 3
};
inline constexpr std::size_t AnalyzerProcessorCount = 4;
inline constexpr std::int32_t AnalyzerLevelCount = 5;

/// The frame that fills up at one sample rate. Level 0 takes the signal, each further one, which exists with
/// super-resolution only, half the rate of the one before.
struct AnalyzerLevel
{
    std::vector<float> frame;
    std::int32_t position = 0;   // samples that `frame` holds
    DecimatorRunner halfBand;   // in front of the next level
    std::array<std::unique_ptr<BlockProcessor>, AnalyzerProcessorCount> processors;
};

/// What MSpectralAnalyzerT::ConfigureClient wants to know.
struct AnalyzerClientParameters
{
    double averageLength = 0.1;   ///< seconds
    double overlap = 0.75;   ///< share of a frame that the next one repeats
    bool superResolution = false;
    bool logarithmic = true;
    std::array<bool, AnalyzerProcessorCount> processors{};   ///< which statistics exist
};

/// One analysed signal: its frames and running statistics. The engine, which any number of clients share,
/// does the work.
///
/// It is its own lock, which guards all of it: the audio thread feeds it while another thread reads.
/// Recursive; where the effect's lock is held too, that one comes first.
class AnalyzerClient : public MLock
{
public:
    /// Hears of each finished frame of level 0, on the thread that feeds, with the client's lock held.
    class Listener
    {
    public:
        virtual void OnFrame(AnalyzerClient& client) = 0;

    protected:
        ~Listener() = default;
    };

    /// Has a listener called for as long as it lives; it may outlive the client. A listener keeps it as its
    /// last member: then a frame that ends meanwhile finds all of the listener still there.
    class Registration
    {
    public:
        Registration(AnalyzerClient& heard, Listener& called);
        ~Registration();
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;

    private:
        friend class AnalyzerClient;
        AnalyzerClient* client;
        Listener& listener;
    };

    AnalyzerClient() = default;
    ~AnalyzerClient() override;

    /// Calls all listeners. Under the lock.
    void TellListeners();

    double averageLength = 0;
    std::int32_t keep = 0;   // samples that stay in a frame for the next one
    bool superResolution = false;
    bool logarithmic = true;
    std::int32_t frameSize = 0;   // that the levels are made for; 0 before the first configuration
    std::array<AnalyzerLevel, AnalyzerLevelCount> levels;
    DecimatorRunner inputDecimator;
    std::vector<float> readSpectrum;   // scratch of whoever reads, frameSize / 2 each
    std::vector<float> readScratch;

private:
    std::vector<Registration*> registrations;
};
