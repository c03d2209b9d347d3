// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/tree/MXMLParser.h"

namespace MLibraryInternals
{
void ThrowInvalidContents(const MString& detail)
{
    throw MException("Invalid file contents. " + detail, MErrorCode::Content);
}

void MXMLParser::OnElement(const MString& name, const MArray<MAttributePair>& attributes, bool closing)
{
    if (closing)
    {
        Close(name);
        return;
    }
    Open(name);
    for (const MAttributePair& pair : attributes)
        current->SetAttribute(pair.key, pair.value);
}

void MXMLParser::Open(const MString& name)
{
    if (openCount == LargestDepth)
        ThrowInvalidContents("Elements are nested too deeply.");
    if (elementCount == LargestElementCount)
        ThrowInvalidContents("Too many elements.");
    if (openCount == 0 && elementCount > 0)
        ThrowInvalidContents("More than one root element.");
    ++openCount;
    ++elementCount;
    if (openCount == 1)
    {
        current = &root;
        root.SetName(name);
        return;
    }
    current = &current->AddSubItem(name);
}

void MXMLParser::Close(const MString& name)
{
    if (openCount == 0 || !current->Name().EqualsNoCase(name))
        ThrowInvalidContents("Invalid closing element name.");
    --openCount;
    current = openCount > 0 ? current->Parent() : nullptr;
}

void MXMLParser::OnText(const MString& text)
{
    if (text.IsEmpty())
        return;
    if (openCount == 0)
        throw MException("Text outside of any element.", MErrorCode::Content);
    current->AppendText(text);
}

void MXMLParser::Finish() const
{
    if (elementCount == 0)
        throw MException("The XML does not contain any elements.", MErrorCode::Content);
    if (openCount > 0)
        ThrowInvalidContents("No ending delimiter found.");
}
}   // namespace MLibraryInternals
