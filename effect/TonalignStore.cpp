// SPDX-License-Identifier: GPL-3.0-or-later
// The stored settings of the effect, both directions, in a fixed order of keys.
#include "effect/TonalignAudioEffectPlugin.h"
#include "state/tree/StoredNode.h"

namespace
{
void StoreAnalysisArray(StoredNode& node, const MString& key, AnalysisArray& analysis)
{
    node.ChildIfPresent(key,
                        [&analysis](StoredNode& child)
                        {
                            if (child.IsSaving())
                                StoreAnalysis(child.Item(), analysis);
                            else
                                analysis = ReadAnalysis(child.Item());
                        });
}

// Runs a nested store on a child: always there when saving, only if present when reading.
template <typename Stored>
void StoreChild(StoredNode& node, const MString& key, Stored& stored)
{
    node.ChildIfPresent(key, [&stored](StoredNode& child) { stored.Store(child.Params()); });
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
    StoredNode node(params);
    node.Always("TargetAnalysisDefined", target.defined);
    if (target.defined)
        StoreAnalysisArray(node, "TargetAnalysis", target.analysis);
    node.Always("SourceAnalysisDefined", source.defined);
    if (source.defined)
        StoreAnalysisArray(node, "SourceAnalysis", source.analysis);
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
    StoredNode node(params);
    StoreChild(node, "AutoEqEnvelope", settings.autoEqEnvelope);
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
    StoreChild(node, "Areas", areas);
    StoreChild(node, "SourceAnalysisEnvelope", SourceAnalysisEnvelope);
}

void TonalignAudioEffectPlugin::Store(const MStoreParams& params)
{
    if (params.saving)
        BringAnalyzerUpToDate();
    StoredNode node(params);
    StoreChild(node, "Analyzer", analyzer);
    StoreAnalyses(params);
    {
        const MSynchronizerGuard guard(lock);
        settings.Store(params);
        StoreCurvesAndBands(params);
    }
    if (!params.saving)
        UpdateAnalysisState(true);
}
