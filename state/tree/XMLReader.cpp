// SPDX-License-Identifier: GPL-3.0-or-later
#include <string>

#include "foundation/streams/MStdFileStream.h"
#include "foundation/streams/MZLibStream.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MXMLParser.h"
#include "state/tree/XML.h"
#include "state/tree/XMLScanner.h"

namespace
{
// Far above any settings, far below what would hurt: a document comes from anywhere, and a few bytes of
// compressed data can stand for gigabytes.
constexpr std::int64_t LargestDocumentSize = std::int64_t{ 64 } << 20;

std::string ReadDocument(MStream& stream)
{
    constexpr std::int32_t RunSize = 16384;
    std::string document;
    for (;;)
    {
        const std::size_t size = document.size();
        document.resize(size + RunSize);
        const std::int32_t got = stream.Read(document.data() + size, RunSize);
        document.resize(size + static_cast<std::size_t>(got));
        if (got == 0)
            return document;
        if (static_cast<std::int64_t>(document.size()) > LargestDocumentSize)
            MLibraryInternals::ThrowInvalidContents("The document is too large.");
    }
}
}   // namespace

void ReadXML(MAttribute& item, MStream& stream)
{
    item.Clear();
    const std::string document = ReadDocument(stream);
    MLibraryInternals::MXMLParser parser(item);
    XMLScanner(document, parser).Scan();
    parser.Finish();
}

void ReadCompressedXML(MAttribute& item, MStream& stream)
{
    const std::int64_t start = stream.GetPosition();
    try
    {
        MZLibStream inflated(&stream, MZLibStream::Direction::Inflate);
        inflated.SetReadLimit(LargestDocumentSize);
        ReadXML(item, inflated);
        return;
    }
    catch (const MException&)
    {
        stream.Seek(start, MStream::Begin);
    }
    ReadXML(item, stream);
}

void LoadXML(MAttribute& item, const MString& path)
{
    MStdFileStream file(path, MStdFileStream::ReadAccess);
    ReadCompressedXML(item, file);
}
