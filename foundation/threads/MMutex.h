// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include <pthread.h>

#include "foundation/threads/MSynchronizer.h"

/// A mutex that honours time-outs, inherits priority and survives the death of its owner: the next one gets
/// it with success. The thread that holds it may take it again. A mutex without a handle grants everything at
/// once.
class MMutex : public MSynchronizer
{
public:
    enum class Form
    {
        WithHandle,
        WithoutHandle
    };

    explicit MMutex(Form form = Form::WithHandle);
    ~MMutex() override;
    int Acquire(std::uint32_t timeoutMs) override;
    void Release() override;

private:
    std::unique_ptr<pthread_mutex_t> handle;
};
