// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/fields/EditModel.h"

#include <algorithm>
#include <utility>

namespace
{
bool IsSecondOfPair(char16_t character)
{
    return character >= 0xDC00 && character <= 0xDFFF;
}
}   // namespace

std::u16string EditModel::Encoded(char32_t character)
{
    if (character < 0x10000)
        return std::u16string(1, static_cast<char16_t>(character));
    const char32_t rest = character - 0x10000;
    return { static_cast<char16_t>(0xD800 + (rest >> 10)), static_cast<char16_t>(0xDC00 + (rest & 0x3FF)) };
}

bool EditModel::IsWord(char16_t character)
{
    const bool digit = character >= '0' && character <= '9';
    const bool letter = (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
    return digit || letter || character == '_' || character >= 0x80;
}

void EditModel::SetText(std::u16string_view newText)
{
    text = newText.substr(0, limit);
    caret = anchor = text.size();
    undo.clear();
    redo.clear();
    typing = false;
}

void EditModel::SelectAll()
{
    anchor = 0;
    caret = text.size();
    typing = false;
}

void EditModel::SelectWord(std::size_t place)
{
    place = std::min(place, text.size());
    std::size_t first = place;
    std::size_t last = place;
    while (first > 0 && IsWord(text[first - 1]))
        --first;
    while (last < text.size() && IsWord(text[last]))
        ++last;
    anchor = first;
    caret = last;
    typing = false;
}

std::size_t EditModel::Next(std::size_t place, int direction, bool byWord) const
{
    const auto atEnd = [&]
    {
        return direction < 0 ? place == 0 : place == text.size();
    };
    const auto ahead = [&]
    {
        return direction < 0 ? text[place - 1] : text[place];
    };
    const auto step = [&]
    {
        place = direction < 0 ? place - 1 : place + 1;
    };
    if (byWord)
    {
        while (!atEnd() && !IsWord(ahead()))
            step();
        while (!atEnd() && IsWord(ahead()))
            step();
        return place;
    }
    if (atEnd())
        return place;
    step();
    if (place < text.size() && place > 0 && IsSecondOfPair(text[place]))
        step();
    return place;
}

void EditModel::MoveTo(std::size_t place, bool selects)
{
    caret = std::min(place, text.size());
    if (caret > 0 && caret < text.size() && IsSecondOfPair(text[caret]))
        --caret;
    if (!selects)
        anchor = caret;
    typing = false;
}

void EditModel::Move(int direction, bool byWord, bool selects)
{
    // Without holding Shift, a selection collapses to its side.
    if (!selects && HasSelection() && !byWord)
        MoveTo(direction < 0 ? Begin() : End(), false);
    else
        MoveTo(Next(caret, direction, byWord), selects);
}

void EditModel::Remember(bool joins)
{
    redo.clear();
    if (joins && typing)
        return;
    undo.push_back({ text, caret, anchor });
    if (undo.size() > MostStates)
        undo.erase(undo.begin());
}

void EditModel::Insert(std::u16string_view piece, bool typed)
{
    if (piece.empty() && !HasSelection())
        return;
    Remember(typed && !HasSelection());
    const std::size_t first = Begin();
    text.erase(first, End() - first);
    const std::u16string_view fits = piece.substr(0, limit - std::min(limit, text.size()));
    text.insert(first, fits);
    caret = anchor = first + fits.size();
    typing = typed;
}

void EditModel::Delete(int direction, bool byWord)
{
    if (!HasSelection())
    {
        const std::size_t other = Next(caret, direction, byWord);
        if (other == caret)
            return;
        anchor = other;
        Remember(false);
        undo.back().anchor = undo.back().caret;
    }
    else
        Remember(false);
    const std::size_t first = Begin();
    text.erase(first, End() - first);
    caret = anchor = first;
    typing = false;
}

void EditModel::Take(State& state)
{
    std::swap(text, state.text);
    std::swap(caret, state.caret);
    std::swap(anchor, state.anchor);
    typing = false;
}

bool EditModel::Undo()
{
    if (undo.empty())
        return false;
    Take(undo.back());
    redo.push_back(std::move(undo.back()));
    undo.pop_back();
    return true;
}

bool EditModel::Redo()
{
    if (redo.empty())
        return false;
    Take(redo.back());
    undo.push_back(std::move(redo.back()));
    redo.pop_back();
    return true;
}
