// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/Translate.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <mutex>

#include "foundation/text/MArray.h"

namespace
{
constexpr int BucketCount = 256;

struct Row
{
    MString text;
    MString context;
    MString translation;
};

// Exact, unlike MString::CompareNoCase: "hz" and "Hz" may be translated differently.
int CompareExact(const MString& a, const MString& b)
{
    for (int index = 0;; ++index)
        if (a[index] != b[index] || a[index] == 0)
            return a[index] - b[index];
}

bool StandsBefore(const Row& row, const MString& text, const MString& context)
{
    const int order = CompareExact(row.text, text);
    return order != 0 ? order < 0 : CompareExact(row.context, context) < 0;
}

// Rows in buckets by the low byte of both hashes, each bucket sorted by text, then context.
struct Table
{
    std::array<MArray<Row>, BucketCount> buckets;

    MArray<Row>& BucketOf(const MString& text, const MString& context)
    {
        return buckets[(text.Hash() ^ context.Hash()) & (BucketCount - 1)];
    }

    static Row* Find(MArray<Row>& bucket, const MString& text, const MString& context)
    {
        return std::partition_point(bucket.begin(), bucket.end(),
                                    [&](const Row& row) { return StandsBefore(row, text, context); });
    }
};

std::mutex tableLock;
std::unique_ptr<Table> table;
std::atomic<bool> hasTable = false;   // spares the lock where nothing is installed
}   // namespace

MString Translate(const MString& text, const MString& context)
{
    if (!hasTable.load(std::memory_order_acquire))
        return text;
    const std::lock_guard guard(tableLock);
    if (table == nullptr)
        return text;
    MArray<Row>& bucket = table->BucketOf(text, context);
    const Row* row = Table::Find(bucket, text, context);
    return row != bucket.end() && row->text == text && row->context == context ? row->translation : text;
}

void AddTranslation(const MString& text, const MString& context, const MString& translation)
{
    const std::lock_guard guard(tableLock);
    if (table == nullptr)
        table = std::make_unique<Table>();
    MArray<Row>& bucket = table->BucketOf(text, context);
    Row* row = Table::Find(bucket, text, context);
    if (row != bucket.end() && row->text == text && row->context == context)
        *row = { text, context, translation };
    else
        bucket.Insert(static_cast<int>(row - bucket.begin()), { text, context, translation });
    hasTable.store(true, std::memory_order_release);
}

void ClearTranslations()
{
    const std::lock_guard guard(tableLock);
    hasTable.store(false, std::memory_order_release);
    table.reset();
}
