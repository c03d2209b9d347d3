// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MStringFormat.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <string>
#include <string_view>

#include "foundation/text/FormatGrammar.h"
#include "foundation/text/MException.h"
#include "foundation/text/NumberText.h"

namespace
{
struct Slot
{
    int position = -1;   // in the text; -1: the format doesn't name the argument
    int order = 0;   // among arguments of one position, as they stand in the format
    ArgumentSpecification specification;
};

// Gathers literal characters, so that the text doesn't grow by single ones.
class LiteralBuffer
{
public:
    explicit LiteralBuffer(MString& target) : text(target) {}

    void Put(char16_t character)
    {
        if (used == static_cast<int>(characters.size()))
            Flush();
        characters[static_cast<std::size_t>(used++)] = character;
    }

    void Flush()
    {
        text.Append(MString(std::u16string_view(characters.data(), static_cast<std::size_t>(used))));
        used = 0;
    }

    int Position() const { return text.Length() + used; }

private:
    MString& text;
    std::array<char16_t, 255> characters;
    int used = 0;
};
}   // namespace

struct MStringFormat::Compiled
{
    std::atomic<std::int32_t> referenceCount = 1;
    std::array<Slot, ArgumentSpecification::SlotCount> slots;
    MString text;
    int slotCount = 0;
    int nextArgument = 0;

    explicit Compiled(const MString& format);
    void PlaceArgument(const ArgumentSpecification& specification, int position, int order);
    /// The slot that the next argument fills; null when it has no place.
    Slot* NextSlot();
    void Fill(const Slot& filled, const MString& argument);
    void AddNumber(const Slot& slot, std::uint64_t magnitude, bool isNegative);
};

MStringFormat::Compiled::Compiled(const MString& format)
{
    LiteralBuffer literal(text);
    int order = 0;
    int position = 0;
    while (position < format.Length())
    {
        const char16_t character = format[position];
        const char16_t following = format[position + 1];
        if (character == u'{' && following == u'{')
        {
            literal.Put(u'{');
            position += 2;
        }
        else if (character == u'{')
        {
            const ArgumentSpecification specification = ReadArgumentSpecification(format, position);
            if (!specification.isTerminated)
                throw MException("Formatting string ends in an argument specification.");
            PlaceArgument(specification, literal.Position(), order++);
        }
        else if (character == u'}')
        {
            if (position + 1 < format.Length())
                literal.Put(following);
            position += 2;
        }
        else
        {
            literal.Put(character);
            ++position;
        }
    }
    literal.Flush();
}

void MStringFormat::Compiled::PlaceArgument(const ArgumentSpecification& specification, int position,
                                            int order)
{
    slots[static_cast<std::size_t>(specification.index)] = { position, order, specification };
    slotCount = std::max(slotCount, specification.index + 1);
}

Slot* MStringFormat::Compiled::NextSlot()
{
    if (nextArgument >= slotCount)
        return nullptr;
    Slot& slot = slots[static_cast<std::size_t>(nextArgument++)];
    return slot.position >= 0 ? &slot : nullptr;
}

void MStringFormat::Compiled::Fill(const Slot& filled, const MString& argument)
{
    text.Insert(filled.position, argument);
    for (int index = nextArgument; index < slotCount; ++index)
    {
        Slot& slot = slots[static_cast<std::size_t>(index)];
        const bool isBehind = slot.position > filled.position ||
                              (slot.position == filled.position && slot.order > filled.order);
        if (isBehind)
            slot.position += argument.Length();
    }
}

void MStringFormat::Compiled::AddNumber(const Slot& slot, std::uint64_t magnitude, bool isNegative)
{
    const ArgumentSpecification& specification = slot.specification;
    const NumberText digits = NumberText::FromMagnitude(magnitude, specification.isHexadecimal ? 16 : 10);
    const int padding = std::max(0, specification.width - static_cast<int>(digits.Text().size()));
    std::string written;
    if (isNegative)
        written.push_back('-');
    else if (specification.hasPlus && magnitude != 0)
        written.push_back('+');
    written.append(static_cast<std::size_t>(padding), specification.filler);
    written.append(digits.Text());
    Fill(slot, MString::Copy(written));
}

MStringFormat::MStringFormat(const MString& format) : compiled(new Compiled(format)) {}

MStringFormat::~MStringFormat()
{
    if (compiled->referenceCount.fetch_sub(1) == 1)
        delete compiled;
}

MStringFormat::MStringFormat(const MStringFormat& other) noexcept : compiled(other.compiled)
{
    compiled->referenceCount.fetch_add(1);
}

MStringFormat& MStringFormat::operator=(const MStringFormat& other) noexcept
{
    MStringFormat copy(other);
    std::swap(compiled, copy.compiled);
    return *this;
}

MStringFormat& MStringFormat::Add(const MString& text)
{
    if (const Slot* slot = compiled->NextSlot())
        compiled->Fill(*slot, text);
    return *this;
}

MStringFormat& MStringFormat::Add(const char* text)
{
    if (const Slot* slot = compiled->NextSlot())
        compiled->Fill(*slot, text != nullptr ? MString::Copy(text) : MString());
    return *this;
}

MStringFormat& MStringFormat::Add(std::int64_t value)
{
    const auto bits = static_cast<std::uint64_t>(value);
    if (const Slot* slot = compiled->NextSlot())
        compiled->AddNumber(*slot, value < 0 ? 0 - bits : bits, value < 0);
    return *this;
}

MStringFormat& MStringFormat::Add(std::uint64_t value)
{
    if (const Slot* slot = compiled->NextSlot())
        compiled->AddNumber(*slot, value, false);
    return *this;
}

MStringFormat& MStringFormat::Add(double value)
{
    constexpr double SmallestWithPlus = 1e-20;
    const Slot* slot = compiled->NextSlot();
    if (slot == nullptr)
        return *this;
    const MString digits = MString::FromDouble(value, slot->specification.precision);
    const bool wantsPlus = slot->specification.hasPlus && value > SmallestWithPlus;
    compiled->Fill(*slot, wantsPlus ? "+" + digits : digits);
    return *this;
}

MString MStringFormat::Text() const
{
    return compiled->text;
}
