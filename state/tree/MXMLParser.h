// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "state/tree/MMLParser.h"

namespace MLibraryInternals
{
/// Builds a tree out of parse events. The root element becomes the item itself.
///
/// Documents come from anywhere, so nesting and numbers are limited far beyond anything that is stored:
/// a document can neither exhaust the stack nor take more than some hundred bytes an element.
class MXMLParser : public MTreeParser
{
public:
    explicit MXMLParser(MAttribute& rootItem) : root(rootItem) {}

    void OnElement(const MString& name, const MArray<MAttributePair>& attributes, bool closing) override;
    void OnText(const MString& text) override;
    /// At the end of the document. Throws when it was no whole document.
    void Finish() const;

private:
    static constexpr int LargestDepth = 256;
    static constexpr int LargestElementCount = 1 << 18;

    void Open(const MString& name);
    void Close(const MString& name);

    MAttribute& root;
    MAttribute* current = nullptr;   // the innermost open element
    int openCount = 0;
    int elementCount = 0;
};

[[noreturn]] void ThrowInvalidContents(const MString& detail);
}   // namespace MLibraryInternals
