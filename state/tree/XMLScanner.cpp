// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/tree/XMLScanner.h"

#include "state/tree/MXMLParser.h"
#include "state/tree/XMLEntities.h"
#include "state/tree/XMLNames.h"

using MLibraryInternals::ThrowInvalidContents;

namespace
{
constexpr int LargestAttributeCount = 4096;   // of one element: they are kept sorted by insertion

std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && IsXMLBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsXMLBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// Appends the character of the entity that `text` starts with; answers its length, 0 for none.
std::size_t DecodeEntity(std::string_view text, std::string& decoded)
{
    for (const XMLEntity& entity : XMLEntities)
        if (text.substr(0, entity.text.size()) == entity.text)
        {
            decoded.push_back(entity.character);
            return entity.text.size();
        }
    return 0;
}

std::string DecodeEntities(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    while (!text.empty())
    {
        const std::size_t length = text.front() == '&' ? DecodeEntity(text, decoded) : 0;
        if (length == 0)
            decoded.push_back(text.front());
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return decoded;
}

// A line's end with the blanks around it was put there to keep lines short: it stands for one blank. In
// running text each run of blanks does.
std::string JoinLines(std::string_view text, MarkUp kind)
{
    std::string joined;
    joined.reserve(text.size());
    while (!text.empty())
    {
        std::size_t runLength = 0;
        while (runLength < text.size() && IsXMLBlank(text[runLength]))
            ++runLength;
        const std::string_view run = text.substr(0, runLength);
        if (run.find('\n') != std::string_view::npos || (kind == MarkUp::RunningText && !run.empty()))
            joined.push_back(' ');
        else
            joined.append(run);
        text.remove_prefix(runLength);
        if (text.empty())
            break;
        joined.push_back(text.front());
        text.remove_prefix(1);
    }
    return joined;
}

bool IsUTF16(std::string_view document)
{
    const std::string_view mark = document.substr(0, 2);
    return mark == "\xFF\xFE" || mark == "\xFE\xFF";
}
}   // namespace

XMLScanner::XMLScanner(std::string_view document, MTreeParser& receiver, MarkUp kindOfText)
    : bytes(document), codec(&MEncoding::Find("utf-8")), isConverted(IsUTF16(document)), parser(receiver),
      kind(kindOfText)
{
    if (isConverted)
    {
        converted = MEncoding::Find("utf-16").Decode(document).ToUTF8();
        bytes = converted;
    }
    if (kind == MarkUp::Document)
        bytes = bytes.substr(0, bytes.find('\0'));   // some hosts pad what they keep with zeros
}

void XMLScanner::Scan()
{
    while (!IsAtEnd())
    {
        if (Current() != '<')
            ScanText();
        else if (StartsWith("<?"))
            ScanDeclaration();
        else if (StartsWith("<!"))
            ScanSpecial();
        else if (StartsWith("</"))
            ScanEndTag();
        else
            ScanStartTag();
    }
}

void XMLScanner::SkipBlanks()
{
    while (!IsAtEnd() && IsXMLBlank(Current()))
        ++position;
}

void XMLScanner::RequireMore() const
{
    if (IsAtEnd())
        ThrowInvalidContents("No ending delimiter found.");
}

std::string_view XMLScanner::TakeUpTo(std::string_view delimiter)
{
    const std::size_t found = bytes.find(delimiter, position);
    if (found == std::string_view::npos)
        ThrowInvalidContents("No ending delimiter found.");
    const std::string_view taken = bytes.substr(position, found - position);
    position = found + delimiter.size();
    return taken;
}

void XMLScanner::ScanText()
{
    const std::size_t end = std::min(bytes.find('<', position), bytes.size());
    const std::string_view whole = bytes.substr(position, end - position);
    const std::string_view text = kind == MarkUp::RunningText ? whole : Trimmed(whole);
    position = end;
    if (!text.empty())
        parser.OnText(codec->Decode(DecodeEntities(JoinLines(text, kind))));
}

void XMLScanner::ScanDeclaration()
{
    constexpr std::string_view Key = "encoding";
    std::string_view declaration = TakeUpTo("?>");
    const std::size_t found = declaration.find(Key);
    if (found == std::string_view::npos || isConverted || kind == MarkUp::RunningText)
        return;
    declaration = Trimmed(declaration.substr(found + Key.size()));
    if (declaration.empty() || declaration.front() != '=')
        return;
    declaration = Trimmed(declaration.substr(1));
    if (declaration.empty() || (declaration.front() != '"' && declaration.front() != '\''))
        return;
    const std::string_view name = declaration.substr(1, declaration.find(declaration.front(), 1) - 1);
    const MEncoding::Codec& declared = MEncoding::Find(MString::Copy(name));
    if (declared.ExtendsASCII())   // otherwise the declaration could not have been read
        codec = &declared;
}

void XMLScanner::ScanSpecial()
{
    if (StartsWith("<!--"))
    {
        position += 4;
        TakeUpTo("-->");
    }
    else if (StartsWith("<![CDATA["))
    {
        position += 9;
        const std::string_view text = TakeUpTo("]]>");
        parser.OnText(codec->Decode(kind == MarkUp::RunningText ? JoinLines(text, kind) : std::string(text)));
    }
    else
    {
        ThrowInvalidContents("Invalid special element sequence.");
    }
}

std::string_view XMLScanner::ScanName()
{
    const std::size_t start = position;
    while (!IsAtEnd() && !IsXMLBlank(Current()) && !IsXMLSpecial(Current()))
        ++position;
    return bytes.substr(start, position - start);
}

void XMLScanner::ScanEndTag()
{
    position += 2;
    const std::string_view name = ScanName();
    SkipBlanks();
    RequireMore();
    if (Current() != '>' || name.empty())
        ThrowInvalidContents("Invalid closing element syntax.");
    ++position;
    parser.OnElement(codec->Decode(name), {}, true);
}

void XMLScanner::ScanStartTag()
{
    ++position;
    const MString name = codec->Decode(ScanName());
    if (!IsXMLName(name))
        ThrowInvalidContents("No element name found.");
    MArray<MAttributePair> attributes;
    for (;;)
    {
        SkipBlanks();
        RequireMore();
        const char character = Current();
        if (character == '>' || character == '/')
            break;
        if (IsXMLSpecial(character))
            ThrowInvalidContents("Special character found where attribute expected.");
        if (attributes.Count() == LargestAttributeCount)
            ThrowInvalidContents("Too many attributes.");
        attributes.Add(ScanAttribute());
    }
    const bool isEmptyElement = Current() == '/';
    if (isEmptyElement && !StartsWith("/>"))
        ThrowInvalidContents("Invalid element finishing sequence.");
    position += isEmptyElement ? 2 : 1;
    parser.OnElement(name, attributes, false);
    if (isEmptyElement)
        parser.OnElement(name, {}, true);
}

MAttributePair XMLScanner::ScanAttribute()
{
    const MString key = codec->Decode(ScanName());
    SkipBlanks();
    RequireMore();
    if (Current() != '=' || !IsXMLName(key))
        ThrowInvalidContents("Invalid character found where attribute expected.");
    ++position;
    SkipBlanks();
    RequireMore();
    return { key, codec->Decode(DecodeEntities(ScanValue())) };
}

std::string_view XMLScanner::ScanValue()
{
    if (Current() == '"')
    {
        ++position;
        return TakeUpTo("\"");
    }
    const std::size_t start = position;
    while (kind == MarkUp::RunningText && !IsAtEnd() && !IsXMLBlank(Current()) && Current() != '>' &&
           !StartsWith("/>"))
    {
        if (Current() == '<' || Current() == '"')
            ThrowInvalidContents("Special character found where attribute expected.");
        ++position;
    }
    if (position == start)
        ThrowInvalidContents("Invalid character found where attribute expected.");
    return bytes.substr(start, position - start);
}
