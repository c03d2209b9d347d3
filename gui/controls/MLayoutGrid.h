// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <vector>

#include "gui/controls/MLayout.h"

/// Rows and columns, each as large as its largest cell or with a share of what is free. Children fill it row
/// by row.
class MLayoutGrid : public MLayout
{
public:
    static constexpr std::int32_t MostColumns = 32;

    explicit MLayoutGrid(MControl& control) : MLayout(control) {}

    /// Into the next free cell.
    void AddControl(MControl& control) override;
    /// Lets the control that was added last cover more columns and rows.
    void SetSpan(MControl& control, std::int32_t columnSpan, std::int32_t rowSpan);
    void RemoveControl(MControl& control) override;
    /// At most MostColumns, at least 1. Before anything is added.
    void SetColumns(std::int32_t count);

    void LoadXml(const MAttribute& node) override;
    void AddChildXml(MControl& control, const MAttribute& node) override;
    MRectangle Arrange(const MRectangle& area) override;
    void ComputeSizes(SizeSums& sums, const SizeComputer& computer, bool last) override;
    std::uint8_t GetStretch() const override;

    bool verticalFill = false;   ///< rows with a ratio share what is free
    std::int32_t columnSpanCount = 0;   ///< columns so far apart are equally wide; 0: none are

private:
    struct Row
    {
        std::array<MControl*, MostColumns> cells{};
        std::array<bool, MostColumns> covered{};   // by a cell of this row or of one above
        std::int32_t height = 0;
        std::int32_t ratio = 0;
        bool allPlastic = false;
    };
    struct Column
    {
        std::int32_t width = 0;
        std::int32_t ratio = 0;
    };

    /// What a cell takes of its columns at least.
    static std::int32_t WidthOf(const MControl& cell, const SizeComputer& computer);
    void MeasureRows(const SizeComputer& computer);
    std::vector<Column> MeasureColumns(const SizeComputer& computer);
    void WidenForSpans(std::vector<Column>& measured, const SizeComputer& computer) const;
    void EqualizeSets(std::vector<Column>& measured) const;
    void ShareWidth(std::vector<Column>& measured, std::int32_t width) const;
    void ShareHeight(std::int32_t height);
    void FitPlasticRows(const std::vector<Column>& measured);
    static std::int32_t RatioNeed(std::int32_t size, std::int32_t ratio, std::int32_t sum);
    template <typename Visit>
    void EachCell(Visit&& visit) const;

    std::int32_t columns = 1;
    std::vector<Row> rows;
};
