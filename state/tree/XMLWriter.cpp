// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <string_view>

#include "foundation/streams/MSafeFileStream.h"
#include "foundation/streams/MZLibStream.h"
#include "foundation/streams/StreamAdapters.h"
#include "foundation/text/MEncoding.h"
#include "foundation/text/MStringFormat.h"
#include "state/tree/MAttribute.h"
#include "state/tree/XML.h"
#include "state/tree/XMLEntities.h"
#include "state/tree/XMLNames.h"

namespace
{
constexpr int BestQuality = 100;

// Characters on their way through the codec, in runs.
class Output
{
public:
    Output(MStream& stream, const MEncoding::Codec& usedCodec) : sink(stream), codec(usedCodec)
    {
        codec.WriteBOM(sink);
    }

    void PutAscii(std::string_view ascii)
    {
        for (const char character : ascii)
            Put(static_cast<char16_t>(static_cast<unsigned char>(character)));
    }

    void Put(const MString& text)
    {
        for (int index = 0; index < text.Length(); ++index)
            Put(text[index]);
    }

    void PutEscaped(const MString& text)
    {
        for (int index = 0; index < text.Length(); ++index)
            PutEscaped(text[index]);
    }

    void PutEscaped(char16_t character)
    {
        if (character <= u'>')   // all that have an entity, and few others
            for (const XMLEntity& entity : XMLEntities)
                if (character == static_cast<char16_t>(entity.character))
                {
                    PutAscii(entity.text);
                    return;
                }
        Put(character);
    }

    void Put(char16_t character)
    {
        if (character == 0)
            return;   // it would end the document for whoever reads it
        if (used == static_cast<int>(characters.size()))
            Flush();
        characters[static_cast<std::size_t>(used++)] = character;
    }

    void Flush()
    {
        // Both halves of a pair have to reach the codec together.
        const bool endsInHalfPair =
            used > 1 && (characters[static_cast<std::size_t>(used - 1)] & 0xFC00) == 0xD800;
        const int written = endsInHalfPair ? used - 1 : used;
        codec.Write(sink, MString(std::u16string_view(characters.data(), static_cast<std::size_t>(written))));
        if (endsInHalfPair)
            characters[0] = characters[static_cast<std::size_t>(used - 1)];
        used -= written;
    }

private:
    MStreamSink sink;
    const MEncoding::Codec& codec;
    std::array<char16_t, 1024> characters;
    int used = 0;
};

bool HasContent(const MAttribute& item)
{
    return item.SubItemCount() > 0 || !item.Text().IsEmpty();
}

void CheckName(const MString& name)
{
    if (!IsXMLName(name))
        throw MException(Format("\"{0}\" cannot be the name of an XML element or attribute.", name));
}

void PutStartTag(const MAttribute& item, Output& output)
{
    if (item.Name().IsEmpty())
        throw MException("XML entity cannot have empty name.");
    CheckName(item.Name());
    output.Put(u'<');
    output.Put(item.Name());
    for (int index = 0; index < item.AttributeCount(); ++index)
    {
        const MAttributePair& pair = item.AttributeAt(index);
        CheckName(pair.key);
        output.Put(u' ');
        output.Put(pair.key);
        output.Put("=\"");
        output.PutEscaped(pair.value);
        output.Put(u'"');
    }
    output.PutAscii(HasContent(item) ? ">" : "/>");
}

void PutEndTag(const MAttribute& item, Output& output)
{
    output.Put("</");
    output.Put(item.Name());
    output.Put(u'>');
}

void PutCompact(const MAttribute& item, int depth, Output& output)
{
    PutStartTag(item, output);
    if (HasContent(item))
    {
        output.PutEscaped(item.Text());
        for (int index = 0; index < item.SubItemCount(); ++index)
            PutCompact(item.SubItemAt(index), depth + 1, output);
        PutEndTag(item, output);
    }
    if (depth <= 1)
        output.Put(u'\n');
}

void PutIndentation(int depth, Output& output)
{
    constexpr int LargestIndentation = 32;
    for (int index = 0; index < std::min(depth, LargestIndentation); ++index)
        output.Put(u'\t');
}

bool IsWhitespace(char16_t character)
{
    return character <= u' ';
}

// Lines of 60 characters and on to the next blank that stands alone: reading turns a line's end into one
// blank, so two in a row have to stay together.
void PutTextLines(const MString& text, int depth, Output& output)
{
    constexpr int LineLength = 60;
    PutIndentation(depth, output);
    int lineLength = 0;
    for (int index = 0; index < text.Length(); ++index)
    {
        const bool isLoneBlank = text[index] == u' ' && index > 0 && index + 1 < text.Length() &&
                                 !IsWhitespace(text[index - 1]) && !IsWhitespace(text[index + 1]);
        if (isLoneBlank && lineLength >= LineLength)
        {
            output.Put(u'\n');
            PutIndentation(depth, output);
            lineLength = 0;
            continue;
        }
        output.PutEscaped(text[index]);
        ++lineLength;
    }
    output.Put(u'\n');
}

void PutIndented(const MAttribute& item, int depth, Output& output)
{
    PutIndentation(depth, output);
    PutStartTag(item, output);
    output.Put(u'\n');
    if (!HasContent(item))
        return;
    if (!item.Text().IsEmpty())
        PutTextLines(item.Text(), depth + 1, output);
    for (int index = 0; index < item.SubItemCount(); ++index)
        PutIndented(item.SubItemAt(index), depth + 1, output);
    PutIndentation(depth, output);
    PutEndTag(item, output);
    output.Put(u'\n');
}
}   // namespace

void WriteXML(const MAttribute& item, MStream& stream, bool compact, const MString& encoding)
{
    Output output(stream, MEncoding::Find(encoding));
    output.Put("<?xml version=\"1.0\" encoding=\"");
    output.Put(encoding);
    output.Put("\"?>\n");
    if (compact)
        PutCompact(item, 0, output);
    else
        PutIndented(item, 0, output);
    output.Flush();
}

void SaveXML(const MAttribute& item, const MString& path, bool compact, const MString& encoding)
{
    MSafeFileStream file(path);
    WriteXML(item, file, compact, encoding);
    file.Commit();
}

void WriteCompressedXML(const MAttribute& item, MStream& stream, const MString& encoding)
{
    MZLibStream compressed(&stream, MZLibStream::Direction::Compress, BestQuality);
    WriteXML(item, compressed, true, encoding);
    compressed.Finish();
    compressed.Close();
}

void SaveCompressedXML(const MAttribute& item, const MString& path, const MString& encoding)
{
    MSafeFileStream file(path);
    WriteCompressedXML(item, file, encoding);
    file.Commit();
}
