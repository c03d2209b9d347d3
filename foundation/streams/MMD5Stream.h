// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

#include "foundation/streams/MHashStream.h"

/// The MD5 message digest, RFC 1321. It tells whether data are the same; it protects nothing.
class MMD5Stream : public MHashStream
{
public:
    void Initialize() override;
    void Finish() override;
    const std::uint8_t* GetHash() const override { return digest.data(); }
    std::int32_t GetHashSize() const override { return static_cast<std::int32_t>(digest.size()); }
    void ProcessBlock(const std::uint8_t* message) override;

private:
    std::array<std::uint32_t, 4> words = {};
    std::uint64_t byteCount = 0;
    std::array<std::uint8_t, 16> digest = {};
};
