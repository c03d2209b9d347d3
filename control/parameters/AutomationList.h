// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "control/parameters/AutomationAdapter.h"
#include "plugin/contract/MPlugin.h"

/// The sorted list of adapters that gives the host its flat list of numbered parameters.
///
/// Built once when the plug-in is made; only temporary adapters come and go afterwards, above
/// `HostParameterCount`, so the host's numbering never shifts. Searching is safe from any thread as long
/// as the list stands.
class AutomationList
{
public:
    struct BuildContext
    {
        AutomationOwner* plugin = nullptr;
        MString prefix;
    };

    /// Numbers that are kept for the adapters of one sort key, whether they exist yet or not: projects keep
    /// the numbers, and parts of a plug-in may come in any order.
    struct ReservedPlaces
    {
        std::int32_t sortKey;
        std::int32_t first;
        std::int32_t count;
    };

    AutomationList() = default;
    AutomationList(const AutomationList&) = delete;
    AutomationList& operator=(const AutomationList&) = delete;
    ~AutomationList() { Clear(); }

    /// One adapter for each visible record of the description, in its order; then its special parameters.
    /// Throws MException "Invalid plugin parameter type.".
    void Build(MPlugin& effect, const BuildContext& context);
    void Add(AutomationAdapter* adapter);
    /// In force from the next AssignIndices on. Adapters of other keys follow behind all of these, or in
    /// front of them where they fit. The ranges must not overlap.
    void Reserve(std::vector<ReservedPlaces> ranges) { reserved = std::move(ranges); }
    /// Sorts by `sortKey`, numbers the targets and counts them. Throws MException where a reserved range is
    /// too short.
    void AssignIndices();
    void RemoveTemporary();
    /// Removes what Build added; the adapters of others stay.
    void RemoveBuilt();
    void Clear();

    /// The adapter whose targets hold a host index; null for one that none holds. `sub` gets its number in
    /// it.
    AutomationAdapter* Find(std::int32_t index, std::int32_t& sub) const;
    /// The adapter of a record of the description, null if it has none.
    AutomationAdapter* FindParameter(std::int32_t parameterIndex) const;

    std::int32_t ParameterCount() const { return parameterCount; }
    std::int32_t HostParameterCount() const { return hostParameterCount; }
    const std::vector<AutomationAdapter*>& Adapters() const { return adapters; }

    bool sortingEnabled = true;

private:
    struct BucketEntry
    {
        std::int32_t parameterIndex;
        AutomationAdapter* adapter;
    };
    void BuildPass(MPlugin& effect, MPluginParameterInfo* const* records, std::int32_t count, bool temporary,
                   const BuildContext& context);
    template <typename Predicate>
    void RemoveIf(Predicate&& predicate);
    void BuildSpecial(MPlugin& effect, const BuildContext& context);

    std::vector<AutomationAdapter*> adapters;
    std::vector<ReservedPlaces> reserved;
    std::array<std::vector<BucketEntry>, 8> buckets;   // by parameter index & 7
    std::int32_t parameterCount = 0;
    std::int32_t hostParameterCount = 0;
};
