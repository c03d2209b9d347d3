// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <exception>
#include <memory>
#include <optional>

#include <FLAC/stream_decoder.h>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/audiofile/AudioFileErrors.h"
#include "foundation/audiofile/GrowingChannels.h"
#include "foundation/streams/MStream.h"

namespace
{
// The best case of the format: a frame of 65535 times the same 8 channels takes 34 bytes.
constexpr std::int64_t MostBytesPerFileByte = 65536;
// Usual material takes a third or more of its plain size; this is the room made on the header's word alone.
constexpr std::int64_t TrustedBytesPerFileByte = 16;

class FlacReader
{
public:
    FlacReader(MStream& source, const LoadProgress& reported)
        : stream(source), progress(reported), start(source.GetPosition()), size(RemainingBytes(source))
    {
    }

    void Read(AudioSampleBuffer& buffer)
    {
        const std::unique_ptr<FLAC__StreamDecoder, decltype(&FLAC__stream_decoder_delete)> decoder(
            FLAC__stream_decoder_new(), &FLAC__stream_decoder_delete);
        if (!decoder)
            ThrowInvalidContents("Error allocating flac decoder.");
        FLAC__stream_decoder_set_md5_checking(decoder.get(), 1);
        const auto status = FLAC__stream_decoder_init_stream(decoder.get(), OnRead, OnSeek, OnTell, OnLength,
                                                             OnEnd, OnWrite, OnMetadata, OnError, this);
        if (status != FLAC__STREAM_DECODER_INIT_STATUS_OK)
            ThrowInvalidContents("Error initializing flac decoder.");
        const bool processed = FLAC__stream_decoder_process_until_end_of_stream(decoder.get()) != 0;
        // False for a checksum that doesn't fit; files without one pass.
        const bool intact = FLAC__stream_decoder_finish(decoder.get()) != 0;
        if (failure)
            std::rethrow_exception(failure);
        // Frames that are missing don't count as a failure of the decoder.
        if (!processed || !intact || !IsSupported() || !decoded || decoded->FrameCount() != totalSamples)
            ThrowInvalidContents("Could not load flac file.");
        decoded->MoveTo(buffer);
        buffer.sampleRate = sampleRate;
        buffer.bitsPerSample = static_cast<std::int32_t>(bits);
    }

private:
    bool IsSupported() const
    {
        return bits >= 8 && bits <= 64 && totalSamples >= 1 && sampleRate >= 11000 && sampleRate <= 9999999 &&
               channels >= 1 && channels <= AudioSampleBuffer::MaxChannels;
    }

    // No exception may pass through the library: it is kept until the library has returned.
    template <typename Result, typename Body>
    static Result Guard(void* client, Result onFailure, Body&& body) noexcept
    {
        auto& self = *static_cast<FlacReader*>(client);
        try
        {
            return body(self);
        }
        catch (...)
        {
            self.failure = std::current_exception();
            return onFailure;
        }
    }

    static FLAC__StreamDecoderReadStatus OnRead(const FLAC__StreamDecoder* /*decoder*/, FLAC__byte* buffer,
                                                std::size_t* bytes, void* client)
    {
        return Guard(client, FLAC__STREAM_DECODER_READ_STATUS_ABORT,
                     [&](FlacReader& self)
                     {
                         const auto wanted =
                             static_cast<std::int32_t>(std::min<std::size_t>(*bytes, 1 << 30));
                         const std::int32_t got = self.stream.Read(buffer, wanted);
                         *bytes = static_cast<std::size_t>(std::max(got, 0));
                         return got > 0 ? FLAC__STREAM_DECODER_READ_STATUS_CONTINUE
                                        : FLAC__STREAM_DECODER_READ_STATUS_END_OF_STREAM;
                     });
    }

    static FLAC__StreamDecoderSeekStatus OnSeek(const FLAC__StreamDecoder* /*decoder*/, FLAC__uint64 offset,
                                                void* client)
    {
        return Guard(client, FLAC__STREAM_DECODER_SEEK_STATUS_ERROR,
                     [&](FlacReader& self)
                     {
                         self.stream.Seek(self.start + static_cast<std::int64_t>(offset), MStream::Begin);
                         return FLAC__STREAM_DECODER_SEEK_STATUS_OK;
                     });
    }

    static FLAC__StreamDecoderTellStatus OnTell(const FLAC__StreamDecoder* /*decoder*/, FLAC__uint64* offset,
                                                void* client)
    {
        return Guard(client, FLAC__STREAM_DECODER_TELL_STATUS_ERROR,
                     [&](FlacReader& self)
                     {
                         *offset = static_cast<FLAC__uint64>(self.stream.GetPosition() - self.start);
                         return FLAC__STREAM_DECODER_TELL_STATUS_OK;
                     });
    }

    static FLAC__StreamDecoderLengthStatus OnLength(const FLAC__StreamDecoder* /*decoder*/,
                                                    FLAC__uint64* length, void* client)
    {
        return Guard(client, FLAC__STREAM_DECODER_LENGTH_STATUS_ERROR,
                     [&](FlacReader& self)
                     {
                         *length = static_cast<FLAC__uint64>(self.size);
                         return FLAC__STREAM_DECODER_LENGTH_STATUS_OK;
                     });
    }

    static FLAC__bool OnEnd(const FLAC__StreamDecoder* /*decoder*/, void* client)
    {
        return Guard(client, 1, [&](FlacReader& self) { return RemainingBytes(self.stream) == 0 ? 1 : 0; });
    }

    static void OnMetadata(const FLAC__StreamDecoder* /*decoder*/, const FLAC__StreamMetadata* metadata,
                           void* client)
    {
        auto& self = *static_cast<FlacReader*>(client);
        if (metadata->type != FLAC__METADATA_TYPE_STREAMINFO)
            return;
        const FLAC__StreamMetadata_StreamInfo& info = metadata->data.stream_info;
        self.totalSamples = static_cast<std::int64_t>(info.total_samples);
        self.sampleRate = info.sample_rate;
        self.channels = static_cast<std::int32_t>(info.channels);
        self.bits = info.bits_per_sample;
    }

    static FLAC__StreamDecoderWriteStatus OnWrite(const FLAC__StreamDecoder* /*decoder*/,
                                                  const FLAC__Frame* frame, const FLAC__int32* const* samples,
                                                  void* client)
    {
        return Guard(client, FLAC__STREAM_DECODER_WRITE_STATUS_ABORT,
                     [&](FlacReader& self) { return self.Write(frame->header, samples); });
    }

    static void OnError(const FLAC__StreamDecoder* /*decoder*/, FLAC__StreamDecoderErrorStatus /*status*/,
                        void* /*client*/)
    {
    }

    FLAC__StreamDecoderWriteStatus Write(const FLAC__FrameHeader& header, const FLAC__int32* const* samples)
    {
        const bool fits = IsSupported() && static_cast<std::int32_t>(header.channels) == channels &&
                          header.bits_per_sample == bits;
        if (!fits)
            return FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
        if (!decoded)
        {
            const std::int64_t frameBytes = std::int64_t{ 4 } * channels;
            const std::int64_t most = std::min(totalSamples, MostBytesPerFileByte * size / frameBytes);
            decoded.emplace(channels, std::min(most, TrustedBytesPerFileByte * size / frameBytes), most);
        }
        progress.Report(static_cast<double>(decoded->FrameCount()) / static_cast<double>(totalSamples));

        std::array<float*, AudioSampleBuffer::MaxChannels> out;
        const auto count = static_cast<std::int32_t>(header.blocksize);
        if (!decoded->Append(count, out.data()))
            return FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
        // As if the samples stood at the upper end of whole bytes, and the greatest one were 1, as in files
        // without compression, and in double as there.
        const std::uint32_t wholeBits = (bits + 7) / 8 * 8;
        const double factor = static_cast<double>(std::int64_t{ 1 } << (wholeBits - bits)) /
                              static_cast<double>((std::int64_t{ 1 } << (wholeBits - 1)) - 1);
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(channels); ++channel)
        {
            const FLAC__int32* source = samples[channel];
            float* channelOut = out[channel];
            for (std::int32_t i = 0; i < count; ++i)
                channelOut[i] = static_cast<float>(source[i] * factor);
        }
        return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
    }

    MStream& stream;
    const LoadProgress& progress;
    std::int64_t start;
    std::int64_t size;   // bytes of the file
    std::exception_ptr failure;

    std::int64_t totalSamples = 0;
    std::uint32_t sampleRate = 0;
    std::int32_t channels = 0;
    std::uint32_t bits = 0;
    std::optional<GrowingChannels> decoded;
};
}   // namespace

void LoadFlac(AudioSampleBuffer& buffer, MStream& stream, const LoadProgress& progress)
{
    buffer.Free();
    FlacReader(stream, progress).Read(buffer);
}
