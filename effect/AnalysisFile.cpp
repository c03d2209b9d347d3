// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/AnalysisFile.h"

#include <bit>

#include "foundation/module/MModule.h"
#include "foundation/streams/MMemoryStream.h"
#include "state/tree/MAttribute.h"
#include "state/tree/XML.h"

static_assert(std::endian::native == std::endian::little,
              "analyses are stored as little-endian memory images");

namespace
{
constexpr std::int32_t imageSize = 4096;
static_assert(sizeof(AnalysisArray) == imageSize);
constexpr const char* rootName = "TonalignSourceAnalysis";
}   // namespace

void StoreAnalysis(MAttribute& node, const AnalysisArray& analysis)
{
    node.SetBinary(analysis.data(), imageSize, false);
}

AnalysisArray ReadAnalysis(const MAttribute& node)
{
    AnalysisArray analysis{};
    if (node.Text().Length() == 2 * imageSize)
        node.GetBinary(analysis.data(), imageSize, false);
    return analysis;
}

MString AnalysisFolder()
{
    const MString productName = MModule::Main() != nullptr ? MModule::Main()->productName : MString();
    return MModule::GetDataPath(productName + "/Comparisons");
}

std::vector<std::uint8_t> AnalysisFileBytes(const AnalysisArray& analysis)
{
    MAttribute root(rootName);
    StoreAnalysis(root, analysis);
    MMemoryStream stream;
    WriteCompressedXML(root, stream, "utf-8");
    stream.Seek(0, MStream::Begin);
    const std::uint8_t* begin = stream.GetCurrentPointer();
    return { begin, begin + stream.GetSize() };
}

void SaveAnalysisFile(const MString& path, const AnalysisArray& analysis)
{
    MAttribute root(rootName);
    StoreAnalysis(root, analysis);
    SaveCompressedXML(root, path, "utf-8");
}

AnalysisArray LoadAnalysisFile(const MString& path)
{
    MAttribute root;
    LoadXML(root, path);
    return ReadAnalysis(root);
}
