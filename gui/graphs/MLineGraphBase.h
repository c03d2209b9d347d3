// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MCallback.h"
#include "foundation/threads/MRelaxed.h"
#include "gui/graphs/MGraphWithRanges.h"

/// A graph that is tied to one value.
/// @tparam R  a graph whose ranges hold the value
template <typename R = MGraphWithRangesBase<0, 1, 0, 1>>
class MLineGraphBase : public MGraphWithRanges<R>
{
public:
    using MGraphWithRanges<R>::MGraphWithRanges;

    MCallback<MOnNotifyParams>& Changed() { return changed; }

    MRelaxed<double>* value = nullptr;   ///< not owned; null: nothing to show

protected:
    void TellChange()
    {
        MOnNotifyParams params;
        params.source = this;
        changed.Call(params);
    }

private:
    MCallback<MOnNotifyParams> changed;
};
