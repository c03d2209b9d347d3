// SPDX-License-Identifier: GPL-3.0-or-later
// The stored settings of the effect, both directions, in a fixed order of keys.
#include <algorithm>

#include "effect/TonalignAudioEffectPlugin.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"

namespace
{
void StoreFlag(const MStoreParams& params, const MString& key, MRelaxed<bool>& value)
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
    // Copies, so that the lock is not held while a kilobyte of floats becomes text, or text floats.
    struct
    {
        AnalysisArray analysis;
        MRelaxed<bool> defined;
    } target, source;
    {
        const MSynchronizerGuard guard(lock);
        target = { TargetAnalysis, TargetAnalysisDefined };
        source = { SourceAnalysis, SourceAnalysisDefined };
    }
    StoreFlag(params, "TargetAnalysisDefined", target.defined);
    if (target.defined)
        StoreAnalysisArray(params, "TargetAnalysis", target.analysis);
    StoreFlag(params, "SourceAnalysisDefined", source.defined);
    if (source.defined)
        StoreAnalysisArray(params, "SourceAnalysis", source.analysis);
    if (params.saving)
        return;
    const MSynchronizerGuard guard(lock);
    TargetAnalysis = target.analysis;
    TargetAnalysisDefined = target.defined;
    SourceAnalysis = source.analysis;
    SourceAnalysisDefined = source.defined;
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
        equalizer.UpdateAllBandControls();
    }
    StoreChild(params, "Areas", areas);
    StoreChild(params, "SourceAnalysisEnvelope", SourceAnalysisEnvelope);
}

void TonalignAudioEffectPlugin::Store(const MStoreParams& params)
{
    if (params.saving)
        BringAnalyzerUpToDate();
    StoreChild(params, "Analyzer", analyzer);
    StoreAnalyses(params);
    {
        const MSynchronizerGuard guard(lock);
        settings.Store(params);
        StoreCurvesAndBands(params);
    }
    if (!params.saving)
        UpdateAnalysisState(true);
}
