// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "foundation/text/MString.h"

/// The text of a field with its selection and what can be undone. Places are gaps between characters, 0 to
/// the length; a pair that stands for one character is never cut.
class EditModel
{
public:
    /// A character as it stands in a text: one or two of its units.
    static std::u16string Encoded(char32_t character);

    const std::u16string& Text() const { return text; }
    MString String() const { return MString(std::u16string_view(text)); }
    std::size_t Caret() const { return caret; }
    std::size_t Begin() const { return std::min(caret, anchor); }
    std::size_t End() const { return std::max(caret, anchor); }
    bool HasSelection() const { return caret != anchor; }
    std::u16string Selected() const { return text.substr(Begin(), End() - Begin()); }

    /// From outside: nothing to undo.
    void SetText(std::u16string_view newText);
    void SelectAll();
    void SelectWord(std::size_t place);
    /// @param selects  the other end of the selection stays
    void MoveTo(std::size_t place, bool selects);
    /// By characters or words, -1 or 1.
    void Move(int direction, bool byWord, bool selects);
    /// Takes the place of the selection. Letters typed one after the other are undone together.
    void Insert(std::u16string_view piece, bool typed = false);
    /// The selection, or the character or word at that side of the caret.
    void Delete(int direction, bool byWord);
    bool Undo();
    bool Redo();

    std::size_t limit = 1u << 20;   ///< characters; what is longer is cut

private:
    struct State
    {
        std::u16string text;
        std::size_t caret = 0;
        std::size_t anchor = 0;
    };

    std::size_t Next(std::size_t place, int direction, bool byWord) const;
    void Remember(bool joins);
    void Take(State& state);
    static bool IsWord(char16_t character);

    static constexpr std::size_t MostStates = 100;

    std::u16string text;
    std::size_t caret = 0;
    std::size_t anchor = 0;
    std::vector<State> undo;
    std::vector<State> redo;
    bool typing = false;   // the last change was a typed letter
};
