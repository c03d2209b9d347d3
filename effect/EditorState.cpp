// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/EditorState.h"

EditorState EditorState::From(const Facts& facts)
{
    const bool idle = !facts.analysing && !facts.drawingSource;
    EditorState state;
    state.bandsVisible = idle;
    state.sourceEnvelopeVisible = facts.drawingSource;
    state.targetCurveVisible = !facts.analysing && facts.targetDefined;
    state.sourceCurveVisible = idle && facts.sourceDefined;
    state.analysisCurveVisible = facts.analysing;
    state.outputCurveVisible = idle;
    state.analyzerDisplayMode = !facts.analysing;
    state.analyseTargetEnabled = (!facts.analysing || !facts.analysingSource) && !facts.drawingSource;
    state.analyseSourceEnabled = facts.drawingSource || facts.analysingSource || !facts.analysing;
    state.analyseSourcePressed = facts.analysing && facts.analysingSource;
    state.equalizeEnabled = idle && facts.targetDefined && facts.sourceDefined;
    state.saveEnabled = idle && facts.sourceDefined;
    state.loadEnabled = idle;
    state.drawEnabled = !facts.analysing;
    return state;
}
