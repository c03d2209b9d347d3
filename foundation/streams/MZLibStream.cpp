// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/streams/MZLibStream.h"

#include <algorithm>

#include <zlib.h>

#include "foundation/text/MException.h"

namespace
{
constexpr char InvalidContent[] = "Source compressed stream has invalid content.";
}   // namespace

MZLibStream::MZLibStream() = default;

MZLibStream::MZLibStream(MStream* targetStream, Direction wantedDirection, int quality)
{
    Open(targetStream, wantedDirection, quality);
}

MZLibStream::~MZLibStream()
{
    EndState();
}

void MZLibStream::Open(MStream* targetStream, Direction wantedDirection, int quality)
{
    EndState();
    target = targetStream;
    direction = wantedDirection;
    level = std::clamp((quality - 1) / 10, 0, 9);
    passed = 0;
    hasEnded = false;
    if (target == nullptr)
        return;

    auto fresh = std::make_unique<z_stream>();
    const bool compresses = direction == Direction::Compress;
    if ((compresses ? deflateInit(fresh.get(), level) : inflateInit(fresh.get())) != Z_OK)
    {
        target = nullptr;
        throw MException(compresses ? "Could not initialize deflating." : "Could not initialize inflating.",
                         MErrorCode::CannotOpen);
    }
    state = std::move(fresh);
}

void MZLibStream::EndState() noexcept
{
    if (state == nullptr)
        return;
    if (direction == Direction::Compress)
        deflateEnd(state.get());
    else
        inflateEnd(state.get());
    state.reset();
}

void MZLibStream::Close()
{
    if (direction == Direction::Compress && state != nullptr)
        throw MException("ZLIB stream has not been terminated.");
    EndState();
    target = nullptr;
}

void MZLibStream::CheckUsable(Direction wanted) const
{
    if (state == nullptr || direction != wanted)
        throw MException("Compressed stream is not initialized.", MErrorCode::NotInitialized);
}

void MZLibStream::Write(const void* bytes, std::int32_t size)
{
    CheckUsable(Direction::Compress);
    if (size <= 0)
        return;
    state->next_in = static_cast<Bytef*>(const_cast<void*>(bytes));   // zlib reads only
    state->avail_in = static_cast<uInt>(size);
    DeflateRounds(Z_NO_FLUSH);
    passed += size;
}

void MZLibStream::Finish()
{
    CheckUsable(Direction::Compress);
    state->next_in = nullptr;
    state->avail_in = 0;
    DeflateRounds(Z_FINISH);
    EndState();
}

void MZLibStream::DeflateRounds(int flushMode)
{
    do
    {
        state->next_out = outputBuffer.data();
        state->avail_out = static_cast<uInt>(outputBuffer.size());
        deflate(state.get(), flushMode);
        target->Write(outputBuffer.data(), static_cast<std::int32_t>(outputBuffer.size() - state->avail_out));
    } while (state->avail_out == 0);
}

void MZLibStream::RefillInput()
{
    const std::int32_t got = target->Read(inputBuffer.data(), static_cast<std::int32_t>(inputBuffer.size()));
    if (got <= 0)
        throw MException(InvalidContent);
    state->next_in = inputBuffer.data();
    state->avail_in = static_cast<uInt>(got);
}

std::int32_t MZLibStream::Read(void* buffer, std::int32_t size)
{
    CheckUsable(Direction::Inflate);
    if (size <= 0 || hasEnded)
        return 0;
    state->next_out = static_cast<Bytef*>(buffer);
    state->avail_out = static_cast<uInt>(size);
    while (state->avail_out > 0 && !hasEnded)
    {
        if (state->avail_in == 0)
            RefillInput();
        const int result = inflate(state.get(), Z_SYNC_FLUSH);
        hasEnded = result == Z_STREAM_END;
        // Z_BUF_ERROR only asks for more input or output.
        if (!hasEnded && result != Z_OK && result != Z_BUF_ERROR)
            throw MException(InvalidContent, MErrorCode::Content);
    }
    const auto produced = size - static_cast<std::int32_t>(state->avail_out);
    passed += produced;
    if (passed > readLimit)
        throw MException(InvalidContent, MErrorCode::Content);
    return produced;
}

void MZLibStream::Flush()
{
    if (target != nullptr)
        target->Flush();
}

bool MZLibStream::IsEnd()
{
    return target == nullptr || target->IsEnd();
}
