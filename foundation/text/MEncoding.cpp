// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MEncoding.h"

#include <array>
#include <vector>

#include "foundation/text/Codecs.h"
#include "foundation/text/MArray.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"

namespace
{
const ASCIICodec asciiCodec;
const UTF8Codec utf8Codec;
const UTF16Codec utf16Codec;

class CodecTable
{
public:
    CodecTable()
    {
        Add("ascii", asciiCodec);
        Add("us-ascii", asciiCodec);
        tableCodecs.reserve(CodePageCount);
        for (const CodePage& page : CodePages)
        {
            const TableCodec& codec = tableCodecs.emplace_back(page);
            for (const char* name : page.names)
                if (name != nullptr)
                    Add(name, codec);
        }
    }

    const MEncoding::Codec* Find(const MString& name) const
    {
        for (const Row& row : buckets[name.Hash() & (BucketCount - 1)])
            if (row.alias.EqualsNoCase(name))
                return row.codec;
        return nullptr;
    }

private:
    static constexpr std::uint32_t BucketCount = 32;

    struct Row
    {
        MString alias;
        const MEncoding::Codec* codec;
    };

    void Add(const MString& alias, const MEncoding::Codec& codec)
    {
        buckets[alias.Hash() & (BucketCount - 1)].Add({ alias, &codec });
    }

    std::vector<TableCodec> tableCodecs;   // reserved at once: the rows point at them
    std::array<MArray<Row>, BucketCount> buckets;
};
}   // namespace

const MEncoding::Codec& MEncoding::Find(const MString& name)
{
    if (name.IsEmpty())
        return asciiCodec;
    if (name.EqualsNoCase("utf8") || name.EqualsNoCase("utf-8"))
        return utf8Codec;
    if (name.EqualsNoCase("utf16") || name.EqualsNoCase("utf-16"))
        return utf16Codec;
    static const CodecTable table;
    if (const Codec* codec = table.Find(name))
        return *codec;
    throw MException(Format("No codec found for encoding {0}.", name));
}
