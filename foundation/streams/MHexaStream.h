// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/streams/MDispatchStream.h"

/// Bytes as hexadecimal digits in the target: two a byte, upper case when written, either case when read.
/// Reading throws MException "Invalid character to be converted to a number." at anything else and at a
/// single last digit. Seek counts the target's characters, GetPosition and GetSize count bytes.
class MHexaStream : public MDispatchStream
{
public:
    using MDispatchStream::MDispatchStream;

    void Write(const void* bytes, std::int32_t size) override;
    std::int32_t Read(void* buffer, std::int32_t size) override;
    std::int64_t GetPosition() override { return MDispatchStream::GetPosition() / 2; }
    std::int64_t GetSize() override { return MDispatchStream::GetSize() / 2; }
};
