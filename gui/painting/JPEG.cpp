// SPDX-License-Identifier: GPL-3.0-or-later
#include <csetjmp>
#include <cstdio>
#include <utility>
#include <vector>

#include <jpeglib.h>

#include "foundation/streams/MStream.h"
#include "foundation/text/MException.h"
#include "gui/painting/ImageFiles.h"
#include "gui/painting/RestOfStream.h"
#include "gui/painting/SharedLibrary.h"

// libjpeg leaves by a long jump where something fails: see PNG.cpp.
namespace
{
struct Library
{
    Library() : shared{ "libjpeg.so.62" }
    {
        standardErrors = shared.Find<decltype(jpeg_std_error)>("jpeg_std_error");
        create = shared.Find<decltype(jpeg_CreateDecompress)>("jpeg_CreateDecompress");
        memorySource = shared.Find<decltype(jpeg_mem_src)>("jpeg_mem_src");
        readHeader = shared.Find<decltype(jpeg_read_header)>("jpeg_read_header");
        start = shared.Find<decltype(jpeg_start_decompress)>("jpeg_start_decompress");
        readLines = shared.Find<decltype(jpeg_read_scanlines)>("jpeg_read_scanlines");
        destroy = shared.Find<decltype(jpeg_destroy_decompress)>("jpeg_destroy_decompress");
    }
    bool IsComplete() const
    {
        return standardErrors && create && memorySource && readHeader && start && readLines && destroy;
    }

    SharedLibrary shared;
    decltype(jpeg_std_error)* standardErrors;
    decltype(jpeg_CreateDecompress)* create;
    decltype(jpeg_mem_src)* memorySource;
    decltype(jpeg_read_header)* readHeader;
    decltype(jpeg_start_decompress)* start;
    decltype(jpeg_read_scanlines)* readLines;
    decltype(jpeg_destroy_decompress)* destroy;
};

struct Errors
{
    jpeg_error_mgr base;   // first: libjpeg knows only this
    std::jmp_buf back;
};

void OnError(j_common_ptr info)
{
    std::longjmp(reinterpret_cast<Errors*>(info->err)->back, 1);   // NOLINT
}

void OnMessage(j_common_ptr) {}

bool ReadSize(const Library& library, jpeg_decompress_struct* info, Errors* errors, const std::uint8_t* bytes,
              unsigned long size)
{
    if (setjmp(errors->back) != 0)   // NOLINT
        return false;
    library.create(info, JPEG_LIB_VERSION, sizeof *info);
    library.memorySource(info, bytes, size);
    return library.readHeader(info, TRUE) == JPEG_HEADER_OK;
}

bool ReadPixels(const Library& library, jpeg_decompress_struct* info, Errors* errors, std::uint32_t* pixels,
                std::ptrdiff_t stride)
{
    if (setjmp(errors->back) != 0)   // NOLINT
        return false;
    info->out_color_space = JCS_EXT_BGRA;
    library.start(info);
    while (info->output_scanline < info->output_height)
    {
        auto* row =
            reinterpret_cast<JSAMPROW>(pixels + static_cast<std::ptrdiff_t>(info->output_scanline) * stride);
        library.readLines(info, &row, 1);
    }
    return true;
}
}   // namespace

void ImageFiles::LoadJPEG(MBitmap& bitmap, MStream& stream)
{
    static const Library library;
    if (!library.IsComplete())
        throw MException("Could not initialize libjpeg.", MErrorCode::NotInitialized);
    const std::vector<std::uint8_t> bytes = RestOfStream(stream);
    jpeg_decompress_struct info{};
    Errors errors{};
    info.err = library.standardErrors(&errors.base);
    errors.base.error_exit = &OnError;
    errors.base.output_message = &OnMessage;
    const struct Cleaner
    {
        ~Cleaner() { library.destroy(&decompressor); }
        jpeg_decompress_struct& decompressor;
    } cleaner{ info };
    MBitmap read;
    bool complete = ReadSize(library, &info, &errors, bytes.data(), static_cast<unsigned long>(bytes.size()));
    if (complete)
    {
        if (std::int64_t{ info.image_width } * info.image_height > MostPixels)
            throw MException("Error loading a JPEG file.", MErrorCode::Content);
        read.Create(static_cast<std::int32_t>(info.image_width),
                    static_cast<std::int32_t>(info.image_height));
        complete = !read.IsEmpty() && ReadPixels(library, &info, &errors, read.Row(0), read.Width());
    }
    if (!complete)
        throw MException("Error loading a JPEG file.", MErrorCode::Content);
    bitmap = std::move(read);
}
