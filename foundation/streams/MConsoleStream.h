// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/streams/MStdFileStream.h"

/// The standard output and input of the process, character by character. It has no position.
class MConsoleStream : public MStdFileStream
{
public:
    void Close() override {}
    void Write(const void* bytes, std::int32_t size) override;
    std::int32_t Read(void* buffer, std::int32_t size) override;
    void Flush() override;
    bool IsEnd() override;
    bool IsOpen() override { return true; }
};
