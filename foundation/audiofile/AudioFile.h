// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>

#include "foundation/audiofile/AudioSampleBuffer.h"
#include "foundation/text/MString.h"

class MStream;

/// Told how far a long operation is; may stop it. Called from the thread that runs the operation, some times
/// a second at the least.
struct LoadProgress
{
    /// Gets 0 to 1; answering false cancels. None: nobody asks.
    std::function<bool(double fraction)> callback;

    /// Throws MException "Cancelled." if the callback says so.
    void Report(double fraction) const;
};

/// Decodes a whole audio file into memory. The reader goes by the extension ("mp3", "flac", "wav", "aif...",
/// "qaf"); a file of any other is tried with each.
///
/// Throws MException: "Unknown audio format {0}.", "Empty audio file." and what the readers throw, all behind
/// "Invalid file contents. " with the code of contents; and what opening the file throws. Thread: any but
/// audio.
void LoadAudioFile(AudioSampleBuffer& buffer, const MString& path, const LoadProgress& progress = {});

// The readers. Each takes the stream from where it stands and replaces what the buffer held; after a failure
// the buffer is to be dropped. Memory follows what the stream holds, not what its header claims. Throw
// MException.

/// RIFF WAVE: integers of 8, 16, 24 and 32 bits, floats of 32.
void LoadWave(AudioSampleBuffer& buffer, MStream& stream, const LoadProgress& progress = {});
/// AIFF, and AIFF-C without compression: integers of 8, 16, 24 and 32 bits, floats of 32.
void LoadAiff(AudioSampleBuffer& buffer, MStream& stream, const LoadProgress& progress = {});
/// The system's own format.
void LoadQaf(AudioSampleBuffer& buffer, MStream& stream, const LoadProgress& progress = {});
/// MPEG audio (ISO/IEC 11172-3, 13818-3), plain, in a RIFF file or in a program stream.
void LoadMpeg(AudioSampleBuffer& buffer, MStream& stream, const LoadProgress& progress = {});
void LoadFlac(AudioSampleBuffer& buffer, MStream& stream, const LoadProgress& progress = {});

/// Allocates the buffer and takes interleaved little-endian samples apart: 8 bits unsigned, 16, 24 and 32
/// bits signed, 32 bits as floats with isFloat. Other sizes throw "Invalid source bitrate.".
void ConvertSamples(AudioSampleBuffer& buffer, const void* bytes, std::int32_t byteCount, std::int32_t bits,
                    std::int32_t channels, bool isFloat);

/// Replaces the content by the same audio at another rate, by cubic (Catmull-Rom) interpolation without a
/// low-pass: meant for measuring spectra, not for listening. Nothing happens at the buffer's own rate.
/// @param targetRate  Hz, above 0
/// Source: E. Catmull and R. Rom, A class of local interpolating splines, 1974.
void Resample(AudioSampleBuffer& buffer, double targetRate, const LoadProgress& progress = {});
