// SPDX-License-Identifier: GPL-3.0-or-later
// Images and masks in files: there and back, and what damaged ones do.
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MStdFileStream.h"
#include "gui/painting/ImageFiles.h"
#include "gui/painting/MAlphaMask.h"
#include "gui/painting/RestOfStream.h"
#include "tests/ErrorOf.h"

namespace
{
// Runs and single pixels mixed.
MBitmap Picture(std::int32_t width, std::int32_t height, std::uint32_t seed)
{
    std::mt19937 random(seed);
    MBitmap bitmap(width, height);
    auto pixel = static_cast<std::uint32_t>(random());
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            bitmap.Row(y)[x] = random() % 3 == 0 ? pixel = static_cast<std::uint32_t>(random()) : pixel;
    return bitmap;
}

bool Same(const MBitmap& a, const MBitmap& b)
{
    if (a.Width() != b.Width() || a.Height() != b.Height())
        return false;
    for (std::int32_t y = 0; y < a.Height(); ++y)
        if (!std::equal(a.Row(y), a.Row(y) + a.Width(), b.Row(y)))
            return false;
    return true;
}

using Bytes = std::vector<std::uint8_t>;
Bytes BytesOf(MMemoryStream& stream)
{
    Bytes bytes(static_cast<std::size_t>(stream.GetSize()));
    stream.Seek(0, MStream::Begin);
    stream.Read(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    return bytes;
}
MMemoryStream Over(const Bytes& bytes)
{
    return MMemoryStream::Borrow(bytes.data(), static_cast<std::int32_t>(bytes.size()));
}

struct Format
{
    const char* name;
    void (*save)(const MBitmap&, MStream&);
    void (*load)(MBitmap&, MStream&);
};
const Format formats[] = { { "TGA", &ImageFiles::SaveTGA,
                             [](MBitmap& b, MStream& s)
                             {
                                 ImageFiles::LoadTGA(b, s, true);
                             } },
                           { "PNG", &ImageFiles::SavePNG, &ImageFiles::LoadPNG } };

// A TGA file: header fields by their place, then the data.
Bytes TGA(std::uint8_t type, std::uint8_t bits, std::uint8_t width, std::uint8_t height,
          std::uint8_t descriptor, const Bytes& data, std::uint8_t idLength = 0, std::uint16_t mapCount = 0,
          std::uint8_t mapBits = 0)
{
    Bytes file(18);
    file[0] = idLength;
    file[1] = mapCount > 0 ? 1 : 0;
    file[2] = type;
    file[5] = static_cast<std::uint8_t>(mapCount);
    file[6] = static_cast<std::uint8_t>(mapCount >> 8);
    file[7] = mapBits;
    file[12] = width;
    file[14] = height;
    file[16] = bits;
    file[17] = descriptor;
    file.insert(file.end(), data.begin(), data.end());
    return file;
}

std::vector<std::uint32_t> Loaded(const Bytes& file, bool alpha = true)
{
    MBitmap bitmap;
    MMemoryStream stream = Over(file);
    ImageFiles::LoadTGA(bitmap, stream, alpha);
    return { bitmap.Row(0), bitmap.Row(0) + bitmap.Width() * bitmap.Height() };
}
}   // namespace

TEST(ImageFiles, GiveBackEveryPixelAndSurviveAnyDamage)
{
    for (const Format& format : formats)
    {
        SCOPED_TRACE(format.name);
        std::mt19937 random(1);
        for (const auto& [width, height] : { std::pair{ 1, 1 }, { 300, 2 }, { 7, 129 }, { 40, 33 } })
        {
            const MBitmap picture = Picture(width, height, static_cast<std::uint32_t>(width));
            MMemoryStream stream;
            format.save(picture, stream);
            const Bytes file = BytesOf(stream);
            MBitmap back(3, 3);
            back.SetClip({ 1, 1, 1, 1 });
            MMemoryStream source = Over(file);
            format.load(back, source);
            EXPECT_TRUE(Same(back, picture));
            EXPECT_EQ(back.Clip(), back.Bounds());
            for (int round = 0; round < 60; ++round)
            {
                Bytes damaged = file;
                if (round % 2 == 0)
                    damaged.resize(random() % file.size());
                else
                    damaged[random() % std::min<std::size_t>(file.size(), 60)] =
                        static_cast<std::uint8_t>(random());
                MMemoryStream broken = Over(damaged);
                const MBitmap kept = Picture(5, 5, 2);
                MBitmap target;
                target.CopyFrom(kept);
                const bool refused = ErrorOf([&] { format.load(target, broken); }) != "";
                EXPECT_TRUE(!refused || Same(target, kept)) << "lost by a file that can't be read";
            }
        }
    }
    MMemoryStream stream;
    EXPECT_EQ(ErrorOf([&] { ImageFiles::SavePNG(MBitmap(), stream); }),
              "Empty image cannot be saved to PNG.");
    MBitmap bitmap;
    EXPECT_EQ(ErrorOf([&] { ImageFiles::LoadPNG(bitmap, stream); }), "Error loading a PNG file.");
}

TEST(ImageFiles, ReadAllKindsOfTGA)
{
    using Pixels = std::vector<std::uint32_t>;
    EXPECT_EQ(Loaded(TGA(2, 32, 1, 2, 0x20, { 1, 2, 3, 4, 5, 6, 7, 8 })), (Pixels{ 0x04030201, 0x08070605 }));
    EXPECT_EQ(Loaded(TGA(2, 32, 1, 2, 0, { 1, 2, 3, 4, 5, 6, 7, 8 })), (Pixels{ 0x08070605, 0x04030201 }))
        << "from the bottom";
    EXPECT_EQ(Loaded(TGA(2, 32, 1, 1, 0x20, { 1, 2, 3, 4 }), false), (Pixels{ 0xFF030201 }));
    EXPECT_EQ(Loaded(TGA(2, 24, 2, 1, 0, { 9, 9, 9, 1, 2, 3, 4, 5, 6 }, 3)),
              (Pixels{ 0xFF030201, 0xFF060504 }))
        << "behind its identification";
    EXPECT_EQ(Loaded(TGA(2, 16, 2, 1, 0, { 0xE1, 0x83, 0x1F, 0x7C })), (Pixels{ 0x8000F808, 0x00F800F8 }));
    EXPECT_EQ(Loaded(TGA(3, 8, 2, 1, 0, { 0, 200 })), (Pixels{ 0xFF000000, 0xFFC8C8C8 }));
    EXPECT_EQ(Loaded(TGA(1, 8, 2, 1, 0, { 1, 2, 3, 4, 5, 6, 1, 0 }, 0, 2, 24)),
              (Pixels{ 0xFF060504, 0xFF030201 }));
    EXPECT_EQ(Loaded(TGA(10, 24, 5, 1, 0, { 0x82, 1, 2, 3, 0x01, 4, 5, 6, 7, 8, 9 })),
              (Pixels{ 0xFF030201, 0xFF030201, 0xFF030201, 0xFF060504, 0xFF090807 }));
    EXPECT_EQ(Loaded(TGA(10, 24, 2, 1, 0, { 0xFF, 1, 2, 3 })), (Pixels{ 0xFF030201, 0xFF030201 }))
        << "a run beyond the end";
    EXPECT_TRUE(Loaded(TGA(2, 32, 0, 3, 0, {})).empty());
    const auto failure = [](const Bytes& file)
    {
        return ErrorOf([&] { Loaded(file); });
    };
    EXPECT_EQ(failure(Bytes(17)), "Invalid file contents. No TGA header present.");
    EXPECT_EQ(failure(TGA(1, 8, 1, 1, 0, Bytes(2000), 0, 257, 24)),
              "Invalid file contents. Invalid TGA header.");
    EXPECT_EQ(failure(TGA(1, 8, 1, 1, 0, Bytes(2000), 0, 4, 16)),
              "Invalid file contents. Invalid TGA header.");
    EXPECT_EQ(failure(TGA(2, 15, 1, 1, 0, Bytes(20))), "Invalid file contents. Invalid TGA header.");
    EXPECT_EQ(failure(TGA(10, 32, 255, 255, 0, { 0xFF, 1, 2, 3, 4 })),
              "Invalid file contents. Invalid TGA header.")
        << "larger than the file can hold";
}

TEST(ImageFiles, AreKnownByTheirMarksAndReadBySystemLibrariesWhereThereAreSome)
{
    const MString folder =
        MString::FromUTF8(std::string(std::getenv("TONALIGN_SOURCE_DIR")) + "/tests/data/pictures/");
    const auto bytesOf = [&](const char* name)
    {
        MStdFileStream file(folder + MString::Literal(name), MStdFileStream::ReadAccess);
        return RestOfStream(file);
    };
    const auto load = [](const Bytes& bytes)
    {
        MBitmap bitmap;
        MMemoryStream stream = Over(bytes);
        ImageFiles::Load(bitmap, stream);
        return bitmap;
    };
    const Bytes jpeg = bytesOf("gradient.jpg");
    const MBitmap gradient = load(jpeg);
    ASSERT_EQ(gradient.Bounds(), (MRectangle{ 0, 0, 47, 15 }));
    for (std::int32_t y = 0; y < 16; ++y)
        for (std::int32_t x = 0; x < 48; ++x)
        {
            const MColor pixel = gradient.Pixel(x, y);
            EXPECT_NEAR(pixel.Red(), x * 5, 8);
            EXPECT_NEAR(pixel.Green(), y * 10, 8);
            EXPECT_NEAR(pixel.Blue(), 200, 8);
            EXPECT_EQ(pixel.Alpha(), 255);
        }
    const Bytes tiff = bytesOf("alpha.tif");
    const MBitmap alpha = load(tiff);
    ASSERT_EQ(alpha.Bounds(), (MRectangle{ 0, 0, 4, 2 }));
    for (std::int32_t y = 0; y < 3; ++y)
        for (std::int32_t x = 0; x < 5; ++x)
        {
            const MColor pixel = alpha.Pixel(x, y);
            EXPECT_NEAR(pixel.Red(), x * 50, 1);
            EXPECT_NEAR(pixel.Green(), y * 100, 1);
            EXPECT_EQ(pixel.Alpha(), (x + y) % 2 != 0 ? 255 : 128);
        }
    std::mt19937 random(8);
    for (const Bytes& file : { jpeg, tiff })
        for (int round = 0; round < 200; ++round)
        {
            Bytes damaged = file;
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
            damaged.resize(damaged.size() - (round % 2 == 0 ? 0 : random() % damaged.size()));
            ErrorOf([&] { load(damaged); });
        }
    EXPECT_EQ(ErrorOf([&] { load({ 0xFF, 0xD8, 0xFF, 0 }); }), "Error loading a JPEG file.");
    EXPECT_EQ(ErrorOf([&] { load({ 'I', 'I', 42, 0, 9 }); }), "Error loading a TIFF file.");
    EXPECT_EQ(ErrorOf([&] { load({ 0x89, 'P', 'N', 'G' }); }), "Error loading a PNG file.");
    EXPECT_EQ(ErrorOf([&] { load({ 'x' }); }), "Invalid file contents. No TGA header present.");
}

TEST(AlphaMaskFiles, GiveBackEveryAlphaAndTellWhatIsWrong)
{
    std::mt19937 random(4);
    for (const auto& [width, height] : { std::pair{ 0, 0 }, { 1, 1 }, { 16, 16 }, { 17, 50 }, { 100, 31 } })
    {
        MAlphaMask mask;
        mask.Create(width, height);
        for (std::int32_t i = 0; i < width * height / 9; ++i)
            mask.Set(static_cast<std::int32_t>(random() % static_cast<unsigned>(width)),
                     static_cast<std::int32_t>(random() % static_cast<unsigned>(height)),
                     static_cast<std::uint8_t>(random()));
        MMemoryStream stream;
        mask.Save(stream);
        const Bytes file = BytesOf(stream);
        MMemoryStream source = Over(file);
        MAlphaMask back;
        back.Load(source);
        ASSERT_EQ(back.Width(), width);
        ASSERT_EQ(back.Height(), height);
        EXPECT_EQ(back.ExplicitSectors(), mask.ExplicitSectors());
        for (std::int32_t y = 0; y < height; ++y)
            for (std::int32_t x = 0; x < width; ++x)
                ASSERT_EQ(back.Get(x, y), mask.Get(x, y));
        for (std::size_t length = 0; length < file.size(); length += 1 + length / 20)
        {
            const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            MMemoryStream broken = Over(cut);
            EXPECT_NE(ErrorOf([&] { back.Load(broken); }), "") << length;
            ASSERT_EQ(back.Width(), width) << "lost by a file that can't be read";
        }
    }
    Bytes file{ 16, 0, 0, 0, 16, 0, 0, 0, 1,   0, 1, 0, 16,  0,   0,   0,
                16, 0, 0, 0, 0,  0, 0, 0, 200, 0, 0, 0, 'M', 'A', 'S', 'K' };
    const auto load = [&]
    {
        MAlphaMask mask;
        MMemoryStream stream = Over(file);
        const std::string failure = ErrorOf([&] { mask.Load(stream); });
        return failure.empty() ? std::to_string(mask.Get(15, 15)) : failure;
    };
    EXPECT_EQ(load(), "200");
    file[20] = 2;
    EXPECT_EQ(load(), "Invalid file contents. Invalid sector state.");
    file[20] = 0;
    file[31] = 'k';
    EXPECT_EQ(load(), "Invalid file contents. No alpha mask terminator found.");
    file[31] = 'K';
    file[8] = 200;
    EXPECT_EQ(load(), "Invalid file contents. No alpha mask terminator found.");
}
