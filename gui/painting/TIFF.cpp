// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include <tiffio.h>

#include "foundation/streams/MStream.h"
#include "foundation/text/MException.h"
#include "gui/painting/ImageFiles.h"
#include "gui/painting/RestOfStream.h"
#include "gui/painting/SharedLibrary.h"

namespace
{
struct Library
{
    Library() : shared{ "libtiff.so.6", "libtiff.so.5" }
    {
        open = shared.Find<decltype(TIFFClientOpen)>("TIFFClientOpen");
        close = shared.Find<decltype(TIFFClose)>("TIFFClose");
        getField = shared.Find<decltype(TIFFGetField)>("TIFFGetField");
        readImage = shared.Find<decltype(TIFFReadRGBAImageOriented)>("TIFFReadRGBAImageOriented");
        setErrors = shared.Find<decltype(TIFFSetErrorHandler)>("TIFFSetErrorHandler");
        setWarnings = shared.Find<decltype(TIFFSetWarningHandler)>("TIFFSetWarningHandler");
    }
    bool IsComplete() const { return open && close && getField && readImage && setErrors && setWarnings; }

    SharedLibrary shared;
    decltype(TIFFClientOpen)* open;
    decltype(TIFFClose)* close;
    decltype(TIFFGetField)* getField;
    decltype(TIFFReadRGBAImageOriented)* readImage;
    decltype(TIFFSetErrorHandler)* setErrors;
    decltype(TIFFSetWarningHandler)* setWarnings;
};

/// The handlers of messages belong to the process: they are silent only while we read.
class Silence
{
public:
    explicit Silence(const Library& used)
        : library(used), errors(library.setErrors(nullptr)), warnings(library.setWarnings(nullptr))
    {
    }
    ~Silence()
    {
        library.setErrors(errors);
        library.setWarnings(warnings);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    const Library& library;
    TIFFErrorHandler errors;
    TIFFErrorHandler warnings;
};

struct File
{
    std::vector<std::uint8_t> bytes;
    std::uint64_t position = 0;
};

tmsize_t ReadBytes(thandle_t handle, void* target, tmsize_t count)
{
    File& file = *static_cast<File*>(handle);
    const std::uint64_t left = file.position < file.bytes.size() ? file.bytes.size() - file.position : 0;
    const std::uint64_t taken = std::min(left, static_cast<std::uint64_t>(std::max<tmsize_t>(0, count)));
    if (taken > 0)
        std::memcpy(target, file.bytes.data() + file.position, taken);
    file.position += taken;
    return static_cast<tmsize_t>(taken);
}

tmsize_t WriteNothing(thandle_t, void*, tmsize_t)
{
    return 0;
}

toff_t SeekTo(thandle_t handle, toff_t offset, int origin)
{
    File& file = *static_cast<File*>(handle);
    file.position = offset + (origin == SEEK_CUR   ? file.position
                              : origin == SEEK_END ? file.bytes.size()
                                                   : 0);
    return file.position;
}

int CloseNothing(thandle_t)
{
    return 0;
}

toff_t SizeOf(thandle_t handle)
{
    return static_cast<File*>(handle)->bytes.size();
}

int MapNothing(thandle_t, void**, toff_t*)
{
    return 0;
}

void UnmapNothing(thandle_t, void*, toff_t) {}

[[noreturn]] void Fail()
{
    throw MException("Error loading a TIFF file.", MErrorCode::Content);
}
}   // namespace

void ImageFiles::LoadTIFF(MBitmap& bitmap, MStream& stream)
{
    static const Library library;
    if (!library.IsComplete())
        throw MException("Could not initialize libtiff.", MErrorCode::NotInitialized);
    File file{ RestOfStream(stream) };
    const Silence silence(library);
    const std::unique_ptr<TIFF, decltype(TIFFClose)*> tiff(library.open("", "rm", &file, &ReadBytes,
                                                                        &WriteNothing, &SeekTo, &CloseNothing,
                                                                        &SizeOf, &MapNothing, &UnmapNothing),
                                                           library.close);
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    if (!tiff || library.getField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width) == 0 ||
        library.getField(tiff.get(), TIFFTAG_IMAGELENGTH, &height) == 0 || width == 0 || height == 0 ||
        width > static_cast<std::uint64_t>(MostPixels) / height)
        Fail();
    MBitmap read(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height));
    constexpr int stopOnError = 1;
    if (library.readImage(tiff.get(), width, height, read.Row(0), ORIENTATION_TOPLEFT, stopOnError) == 0)
        Fail();
    // It gives red, green, blue, alpha, with the colours multiplied.
    for (std::int32_t y = 0; y < read.Height(); ++y)
        for (std::int32_t x = 0; x < read.Width(); ++x)
        {
            std::uint32_t& pixel = read.Row(y)[x];
            const std::uint32_t alpha = TIFFGetA(pixel);
            const auto plain = [alpha](std::uint32_t value)
            {
                return static_cast<std::uint8_t>(
                    alpha == 0 ? 0 : std::min(255u, (value * 255 + alpha / 2) / alpha));
            };
            pixel = MColor(plain(TIFFGetR(pixel)), plain(TIFFGetG(pixel)), plain(TIFFGetB(pixel)),
                           static_cast<std::uint8_t>(alpha))
                        .value;
        }
    bitmap = std::move(read);
}
