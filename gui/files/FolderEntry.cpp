// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/files/FolderEntry.h"

#include <ctime>

#include "foundation/streams/MFile.h"
#include "foundation/text/LetterFolding.h"
#include "foundation/text/MStringFormat.h"

namespace
{
bool IsDigit(char16_t character)
{
    return character >= u'0' && character <= u'9';
}

struct DigitRun
{
    int first = 0;   // without leading zeros
    int end = 0;
};

DigitRun DigitsAt(const MString& text, int place)
{
    DigitRun run{ place, place };
    while (run.end < text.Length() && IsDigit(text[run.end]))
        ++run.end;
    while (run.first < run.end && text[run.first] == u'0')
        ++run.first;
    return run;
}

int CompareNumbers(const MString& a, const DigitRun& inA, const MString& b, const DigitRun& inB)
{
    const int lengthA = inA.end - inA.first;
    if (const int longer = lengthA - (inB.end - inB.first); longer != 0)
        return longer;
    for (int i = 0; i < lengthA; ++i)
        if (const int order = a[inA.first + i] - b[inB.first + i]; order != 0)
            return order;
    return 0;
}
}   // namespace

std::vector<FolderEntry> ReadFolder(const MString& path)
{
    std::vector<FolderEntry> entries;
    for (MFileIterator each(path, {}, MFileIterator::Directories | MFileIterator::Details); !each.IsEnd();
         each.Next())
        entries.push_back({ .name = each.Name(),
                            .isFolder = each.IsDirectory(),
                            .size = each.Size(),
                            .writeTime = each.WriteTime() });
    return entries;
}

int CompareFileNames(const MString& a, const MString& b)
{
    int inA = 0;
    int inB = 0;
    while (inA < a.Length() && inB < b.Length())
    {
        if (IsDigit(a[inA]) && IsDigit(b[inB]))
        {
            const DigitRun runA = DigitsAt(a, inA);
            const DigitRun runB = DigitsAt(b, inB);
            if (const int order = CompareNumbers(a, runA, b, runB); order != 0)
                return order;
            inA = runA.end;
            inB = runB.end;
            continue;
        }
        if (const int order = FoldLetter(a[inA]) - FoldLetter(b[inB]); order != 0)
            return order;
        ++inA;
        ++inB;
    }
    return (a.Length() - inA) - (b.Length() - inB);
}

MString FileSizeText(std::int64_t bytes)
{
    if (bytes < 1000)
        return Format("{0} B", bytes);
    const char* const units[] = { "kB", "MB", "GB", "TB", "PB", "EB" };
    double size = static_cast<double>(bytes) / 1000;
    int unit = 0;
    for (; size >= 999.5 && unit < 5; ++unit)
        size /= 1000;
    // One decimal below 10, none above: at least two digits, and never more than three.
    return MString::FromDouble(size, size < 9.95 ? 1 : 0) + " " + MString::Literal(units[unit]);
}

MString FileTimeText(std::int64_t seconds)
{
    const auto time = static_cast<std::time_t>(seconds);
    std::tm local = {};
    char text[32] = {};
    if (seconds == 0 || localtime_r(&time, &local) == nullptr ||
        std::strftime(text, sizeof text, "%e %b %Y  %H:%M", &local) == 0)
        return {};
    return MString::Copy(text);
}
