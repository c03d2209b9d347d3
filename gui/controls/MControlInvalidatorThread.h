// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "foundation/threads/MLock.h"
#include "gui/controls/PacedThread.h"

class MControlInvalidator;
class MWindows;

/// Passes on what the invalidators of the module have gathered, at most 20 times a second.
class MControlInvalidatorThread : public PacedThread
{
public:
    explicit MControlInvalidatorThread(MWindows& windows);
    ~MControlInvalidatorThread() override;

    void Add(MControlInvalidator& invalidator);
    void Remove(MControlInvalidator& invalidator);

protected:
    void Round() override;

private:
    MWindows& owner;
    MLock lock;
    std::vector<MControlInvalidator*> invalidators;
};
