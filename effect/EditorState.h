// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What an editor of this effect shows and allows, as plain values: one row for each state of the effect.
struct EditorState
{
    /// The facts that decide.
    struct Facts
    {
        bool analysing = false;   ///< a measurement runs
        bool analysingSource = false;   ///< it is that of the source
        bool drawingSource = false;   ///< Draw mode is on
        bool targetDefined = false;
        bool sourceDefined = false;
    };

    bool bandsVisible = false;   ///< band points and band line
    bool sourceEnvelopeVisible = false;
    bool targetCurveVisible = false;
    bool sourceCurveVisible = false;
    bool analysisCurveVisible = false;
    bool outputCurveVisible = false;
    bool analyzerDisplayMode = false;
    bool analyseTargetEnabled = false;
    bool analyseSourceEnabled = false;
    bool analyseSourcePressed = false;
    bool equalizeEnabled = false;   ///< Equalize and Separate
    bool saveEnabled = false;
    bool loadEnabled = false;   ///< Load and File
    bool drawEnabled = false;

    static EditorState From(const Facts& facts);
    bool operator==(const EditorState&) const = default;
};
