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

    bool bandsVisible;   ///< band points and band line
    bool sourceEnvelopeVisible;
    bool targetCurveVisible;
    bool sourceCurveVisible;
    bool analysisCurveVisible;
    bool outputCurveVisible;
    bool analyzerDisplayMode;
    bool analyseTargetEnabled;
    bool analyseSourceEnabled;
    bool analyseSourcePressed;
    bool equalizeEnabled;   ///< Equalize and Separate
    bool saveEnabled;
    bool loadEnabled;   ///< Load and File
    bool drawEnabled;

    static EditorState From(const Facts& facts);
    bool operator==(const EditorState&) const = default;
};
