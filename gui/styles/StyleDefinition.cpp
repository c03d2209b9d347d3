// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/StyleDefinition.h"

#include <algorithm>
#include <cmath>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MStdFileStream.h"
#include "foundation/text/MStringFormat.h"
#include "gui/painting/ImageFiles.h"
#include "gui/styles/ResourceBytes.h"

namespace
{
[[noreturn]] void Refuse(const MString& detail)
{
    throw MException("Invalid file contents. " + detail, MErrorCode::Content);
}

constexpr int LeastPercent = 25;
constexpr int LargestPercent = 1000;
}   // namespace

std::unique_ptr<StyleDefinition> StyleDefinition::Read(MStream& stream)
{
    std::unique_ptr<StyleDefinition> definition(new StyleDefinition);
    definition->table.Read(stream);
    definition->tree = definition->table.FindSubItem("style");
    if (definition->tree == nullptr)
        Refuse("The file is no style.");
    definition->ListImages();
    return definition;
}

std::unique_ptr<StyleDefinition> StyleDefinition::Load(const MString& path)
{
    MStdFileStream file(path, MStdFileStream::ReadAccess);
    return Read(file);
}

void StyleDefinition::ListImages()
{
    for (int index = 0; index < table.ResourceCount(); ++index)
    {
        MResource& resource = table.ResourceAt(index);
        const int at = resource.id.Find(u'@');
        int percent = 100;
        if (at >= 0)
            percent = static_cast<int>(std::clamp<std::int64_t>(
                resource.id.SubString(at + 1, resource.id.Length()).ToInt(), LeastPercent, LargestPercent));
        const MString id = at < 0 ? resource.id : resource.id.SubString(0, at);
        images[id.ToUTF8()].push_back({ percent, &resource });
    }
    for (auto& [id, drawn] : images)
        std::stable_sort(drawn.begin(), drawn.end(),
                         [](const Drawn& a, const Drawn& b) { return a.percent < b.percent; });
}

void StyleDefinition::CompleteFrom(std::unique_ptr<StyleDefinition> other)
{
    const MAttribute& from = other->Tree();
    for (int index = 0; index < from.AttributeCount(); ++index)
        if (const MAttributePair& pair = from.AttributeAt(index); tree->FindAttribute(pair.key) == nullptr)
            tree->SetAttribute(pair.key, pair.value);
    for (int index = 0; index < from.SubItemCount(); ++index)
        if (const MAttribute& section = from.SubItemAt(index); tree->FindSubItem(section.Name()) == nullptr)
            tree->AddSubItem(section.Name()).CopyFrom(section);
    common = std::move(other);
}

MResource* StyleDefinition::FindResource(const MString& id)
{
    MResource* resource = table.Find(id);
    return resource == nullptr && common ? common->FindResource(id) : resource;
}

void StyleDefinition::TakePixels(double width, double height)
{
    const double count = width * height;
    if (count > static_cast<double>(pixelsLeft))
        Refuse("The images are too large.");
    pixelsLeft -= static_cast<std::int64_t>(count);
}

MBitmap StyleDefinition::ReadImage(MResource& resource)
{
    // At once: the image reader asks for a few bytes at a time, which is dear from a compressed stream.
    const std::vector<std::uint8_t> bytes = ResourceBytes(resource);
    // The size stands in bytes 12 to 15 of a TGA file. Too large a one takes no memory that way.
    if (bytes.size() >= 16)
        TakePixels(bytes[12] | bytes[13] << 8, bytes[14] | bytes[15] << 8);
    MMemoryStream stream = MMemoryStream::Borrow(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    MBitmap image;
    ImageFiles::LoadTGA(image, stream, true);
    return image;
}

MBitmap StyleDefinition::Image(const MString& id, double scale, bool isSheet)
{
    const auto found = images.find(id.ToUTF8());
    if (found == images.end() && common)
        return common->Image(id, scale, isSheet);
    if (found == images.end())
        throw MException(Format("Cannot find requested resource ({0}).", id));
    const std::vector<Drawn>& drawn = found->second;
    const auto percent = static_cast<int>(std::lround(scale * 100));
    auto best = std::find_if(drawn.begin(), drawn.end(),
                             [percent](const Drawn& each) { return each.percent >= percent; });
    if (best == drawn.end())
        --best;
    MBitmap image = ReadImage(*best->resource);
    const double ratio = static_cast<double>(percent) / best->percent;
    if (best->percent == percent || image.IsEmpty())
        return image;
    const double height = std::max(1.0, std::round(image.Height() * ratio));
    const std::int32_t squares = image.Width() / image.Height();
    const double width = isSheet ? squares * height : std::max(1.0, std::round(image.Width() * ratio));
    TakePixels(width, height);
    image.Resize(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height));
    return image;
}
