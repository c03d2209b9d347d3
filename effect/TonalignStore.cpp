// SPDX-License-Identifier: GPL-3.0-or-later
// The stored settings of the effect, both directions, in a fixed order of keys.
#include <algorithm>

#include "effect/TonalignAudioEffectPlugin.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"

namespace
{
void StoreFlag(const MStoreParams& params, const MString& key, bool& value)
{
    if (params.saving)
        params.item->SetAttribute(key, value ? "1" : "0");
    else if (params.item->HasAttribute(key))
        value = params.item->GetCachedAttribute().ToInt() != 0;
}

void StoreAnalysisArray(const MStoreParams& params, const MString& key, AnalysisArray& analysis)
{
    if (params.saving)
        StoreAnalysis(params.item->GetSubItem(key), analysis);
    else if (params.item->HasSubItem(key))
        analysis = ReadAnalysis(params.item->GetCachedSubItem());
}

// Runs a nested store on a child: always there when saving, only if present when reading.
template <typename Stored>
void StoreChild(const MStoreParams& params, const MString& key, Stored& stored)
{
    MStoreParams child{ .saving = params.saving, .item = nullptr };
    if (params.saving)
        child.item = &params.item->GetSubItem(key);
    else if (params.item->HasSubItem(key))
        child.item = &params.item->GetCachedSubItem();
    if (child.item != nullptr)
        stored.Store(child);
}
}   // namespace

void TonalignAudioEffectPlugin::StoreAnalyses(const MStoreParams& params)
{
    StoreFlag(params, "TargetAnalysisDefined", TargetAnalysisDefined);
    if (TargetAnalysisDefined)
        StoreAnalysisArray(params, "TargetAnalysis", TargetAnalysis);
    StoreFlag(params, "SourceAnalysisDefined", SourceAnalysisDefined);
    if (SourceAnalysisDefined)
        StoreAnalysisArray(params, "SourceAnalysis", SourceAnalysis);
}

void TonalignAudioEffectPlugin::StoreCurvesAndBands(const MStoreParams& params)
{
    StoreChild(params, "AutoEqEnvelope", settings.autoEqEnvelope);
    if (params.saving)
    {
        equalizer.SavePoints(params.item->GetSubItem("graph"));
    }
    else if (params.item->HasSubItem("graph"))
    {
        equalizer.SetDefaults(false);
        equalizer.LoadPoints(params.item->GetCachedSubItem());
        equalizer.Update();
        equalizer.UpdateAllBandControls();
    }
    StoreChild(params, "Areas", areas);
    StoreChild(params, "SourceAnalysisEnvelope", SourceAnalysisEnvelope);
}

void TonalignAudioEffectPlugin::Store(const MStoreParams& params)
{
    StoreChild(params, "Analyzer", analyzer);
    StoreAnalyses(params);
    settings.Store(params);
    StoreCurvesAndBands(params);
    if (!params.saving)
        UpdateAnalysisState(true);
}
