// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/tonalign/Options.h"
#include "tools/tonalign/OutputFile.h"

/// How an output file holds its samples.
struct OutputFormat
{
    FileFormat file = FileFormat::Wav;
    SampleFormat samples = SampleFormat::Int16;
    std::int32_t sampleRate = 44100;
    std::int32_t channels = 2;
};

/// Writes blocks of floats to an audio file that appears only with Commit. Integers are rounded to the
/// nearest and limited; nothing is dithered. 1.0 is the greatest integer, as for who reads: what isn't
/// changed comes out as it went in.
class AudioOutput
{
public:
    /// Throws MException when the file can't be made, or doesn't take this format.
    AudioOutput(const std::string& path, const OutputFormat& format, bool replace);
    ~AudioOutput();
    AudioOutput(const AudioOutput&) = delete;
    AudioOutput& operator=(const AudioOutput&) = delete;

    void Write(const float* const* channels, std::int32_t frames);
    /// Ends the audio file, still under its temporary name. Throws MException when the disk is full.
    void Close();
    /// Gives it its name.
    void Commit() { file.Commit(); }

    /// Largest absolute sample so far, and how many samples an integer format had to limit.
    double Peak() const { return peak; }
    std::int64_t ClippedCount() const { return clippedCount; }

private:
    struct Handle;
    void CheckWritten(std::int64_t written, std::int64_t wanted) const;

    OutputFile file;
    OutputFormat format;
    std::unique_ptr<Handle> handle;
    std::vector<float> interleavedFloats;
    std::vector<int> interleavedIntegers;
    double peak = 0;
    std::int64_t clippedCount = 0;
};
