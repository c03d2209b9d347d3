// SPDX-License-Identifier: GPL-3.0-or-later
// The cost of a plug-in's state: a tree with two binary blocks of 4096 bytes and 200 attributes, written
// to and read from memory. Beside the whole, the two parts that bound it: zlib alone and the plain XML.
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <zlib.h>

#include "foundation/streams/MMemoryStream.h"
#include "state/tree/MAttribute.h"
#include "state/tree/XML.h"

namespace
{
void FillState(MAttribute& root)
{
    std::mt19937 random(1);
    root.SetName("settings");
    for (int index = 0; index < 200; ++index)
        root.SetAttribute("parameter" + MString::FromInt(index),
                          MString::FromDouble(static_cast<double>(random()) / 65536.0, 12));
    for (const char* name : { "Target", "Source" })
    {
        std::vector<float> spectrum(1024);
        for (float& level : spectrum)
            level = static_cast<float>(random()) / 4294967296.0f;
        root.GetSubItem(name).SetBinary(spectrum.data(), 4096, false);
    }
}

MMemoryStream Written(bool compressed)
{
    MAttribute root;
    FillState(root);
    MMemoryStream stream;
    if (compressed)
        WriteCompressedXML(root, stream, "utf-8");
    else
        WriteXML(root, stream, true, "utf-8");
    return stream;
}

void WriteCompressed(benchmark::State& state)
{
    MAttribute root;
    FillState(root);
    for (auto _ : state)
    {
        MMemoryStream stream;
        WriteCompressedXML(root, stream, "utf-8");
        benchmark::DoNotOptimize(stream.GetSize());
    }
}
BENCHMARK(WriteCompressed)->Unit(benchmark::kMicrosecond);

void WritePlain(benchmark::State& state)
{
    MAttribute root;
    FillState(root);
    for (auto _ : state)
    {
        MMemoryStream stream;
        WriteXML(root, stream, true, "utf-8");
        benchmark::DoNotOptimize(stream.GetSize());
    }
}
BENCHMARK(WritePlain)->Unit(benchmark::kMicrosecond);

void CompressAlone(benchmark::State& state)
{
    const MDataBlock document = Written(false).Block();
    std::vector<Bytef> target(compressBound(static_cast<uLong>(document.Size())));
    for (auto _ : state)
    {
        uLongf size = static_cast<uLongf>(target.size());
        compress2(target.data(), &size, document.Data(), static_cast<uLong>(document.Size()), 9);
        benchmark::DoNotOptimize(size);
    }
}
BENCHMARK(CompressAlone)->Unit(benchmark::kMicrosecond);

void Read(benchmark::State& state, bool compressed)
{
    const MDataBlock document = Written(compressed).Block();
    for (auto _ : state)
    {
        MMemoryStream stream(document);
        MAttribute root;
        if (compressed)
            ReadCompressedXML(root, stream);
        else
            ReadXML(root, stream);
        benchmark::DoNotOptimize(root.AttributeCount());
    }
}
BENCHMARK_CAPTURE(Read, Compressed, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Read, Plain, false)->Unit(benchmark::kMicrosecond);

void BinaryText(benchmark::State& state)
{
    std::vector<char> bytes(4096, 'x');
    MAttribute item;
    for (auto _ : state)
    {
        item.SetBinary(bytes.data(), 4096, false);
        benchmark::DoNotOptimize(item.GetBinary(bytes.data(), 4096, false));
    }
}
BENCHMARK(BinaryText)->Unit(benchmark::kMicrosecond);
}   // namespace
