// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/streams/MStream.h"

/// Forwards everything to another stream, which lives longer. Base of streams that change only a part.
class MDispatchStream : public MStream
{
public:
    explicit MDispatchStream(MStream& targetStream) : target(&targetStream) {}

    MStream* GetSubStream() override { return target; }
    void Write(const void* bytes, std::int32_t size) override { target->Write(bytes, size); }
    std::int32_t Read(void* buffer, std::int32_t size) override { return target->Read(buffer, size); }
    void Seek(std::int64_t offset, int origin) override { target->Seek(offset, origin); }
    std::int64_t GetPosition() override { return target->GetPosition(); }
    void Flush() override { target->Flush(); }
    bool IsEnd() override { return target->IsEnd(); }
    void Truncate() override { target->Truncate(); }
    std::int64_t GetSize() override { return target->GetSize(); }
    bool IsOpen() override { return target->IsOpen(); }

private:
    MStream* target;
};
