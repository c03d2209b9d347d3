// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "foundation/streams/MStream.h"

/// A digest of everything that is written. Initialize, Write as often as needed, Finish, GetHash.
class MHashStream : public MStream
{
public:
    virtual void Initialize() = 0;
    /// Pads and makes the digest.
    virtual void Finish() = 0;
    /// The digest, GetHashSize() bytes.
    virtual const std::uint8_t* GetHash() const = 0;
    virtual std::int32_t GetHashSize() const = 0;
    /// Takes one full block.
    virtual void ProcessBlock(const std::uint8_t* block) = 0;

    /// Throws MException "Cryptographic hash stream has not been initialized." before Initialize.
    void Write(const void* bytes, std::int32_t size) override;
    void Flush() override {}

protected:
    void SetBlockSize(std::int32_t size);
    std::int32_t Fill() const { return fill; }

private:
    std::int32_t blockSize = 0;
    std::int32_t fill = 0;
    std::vector<std::uint8_t> block;
};
