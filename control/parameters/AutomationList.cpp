// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/parameters/AutomationList.h"

#include <algorithm>
#include <memory>

#include "control/parameters/ParameterAdapters.h"
#include "foundation/text/MException.h"

namespace
{
// Null for the types that have no adapter.
std::unique_ptr<ParameterBase> MakeAdapter(const MPluginParameterInfo& info)
{
    switch (info.type)
    {
    case ParameterType::Float:
        return std::make_unique<ParameterFloatT<ParameterBase>>();
    case ParameterType::Integer:
        return std::make_unique<ParameterIntT<ParameterBase>>();
    case ParameterType::Enumeration:
        return std::make_unique<ParameterEnumT<ParameterBase>>();
    case ParameterType::Boolean:
        return std::make_unique<ParameterBoolT<ParameterBase>>();
    case ParameterType::Group:
        if (info.group.enabled != nullptr)
            return std::make_unique<ParameterGroupT<ParameterBase>>();
        return nullptr;
    case ParameterType::None:
    case ParameterType::Text:
        return nullptr;
    case ParameterType::Invalid:
        break;
    }
    throw MException("Invalid plugin parameter type.");
}
}   // namespace

void AutomationList::Add(AutomationAdapter* adapter)
{
    adapters.push_back(adapter);
}

void AutomationList::BuildPass(MPlugin& effect, MPluginParameterInfo* const* records, std::int32_t count,
                               bool temporary, const BuildContext& context)
{
    MString groupText;
    for (std::int32_t index = 0; index < count; ++index)
    {
        MPluginParameterInfo& info = *records[index];
        if (info.Has(ParameterFlag::StartsPrefixGroup))
            groupText = {};
        if (!info.Has(ParameterFlag::Visible))
            continue;
        std::unique_ptr<ParameterBase> adapter = MakeAdapter(info);
        if (info.type == ParameterType::Group)
            groupText = info.name;
        if (adapter == nullptr)
            continue;
        adapter->effect = &effect;
        adapter->info = &info;
        adapter->index = index;
        adapter->name = info.name;
        adapter->group = info.id;
        adapter->id = groupText;
        adapter->groupName = groupText;
        adapter->plugin = context.plugin;
        adapter->sortKey = info.hostIndex;
        adapter->prefix = context.prefix;
        adapter->temporary = temporary;
        adapter->ofEffect = true;
        if (!temporary)
            buckets[static_cast<std::size_t>(index & 7)].push_back({ index, adapter.get() });
        adapters.push_back(adapter.release());
    }
}

void AutomationList::BuildSpecial(MPlugin& effect, const BuildContext& context)
{
    for (std::int32_t index = 0; index < effect.description.specialParameterCount; ++index)
    {
        const MPluginSpecialParameterInfo& special = effect.description.specialParameters[index];
        if (special.adapter == nullptr)
            continue;
        special.adapter->plugin = context.plugin;
        special.adapter->prefix = context.prefix;
        special.adapter->groupName = special.name;
        special.adapter->owned = false;
        special.adapter->ofEffect = true;
        adapters.push_back(special.adapter);
    }
}

void AutomationList::Build(MPlugin& effect, const BuildContext& context)
{
    for (auto& bucket : buckets)
        bucket.clear();
    MPluginDescription& description = effect.description;
    std::vector<MPluginParameterInfo*> records;
    records.reserve(static_cast<std::size_t>(description.parameterCount));
    for (std::int32_t index = 0; index < description.parameterCount; ++index)
        records.push_back(&description.parameters[index]);
    BuildPass(effect, records.data(), description.parameterCount, false, context);
    BuildSpecial(effect, context);
    BuildPass(effect, description.groupList.data(), static_cast<std::int32_t>(description.groupList.size()),
              true, context);
}

void AutomationList::AssignIndices()
{
    // Temporary adapters stand behind all others, so that they never shift a number that the host knows.
    const auto before = [](const AutomationAdapter* a, const AutomationAdapter* b)
    {
        return a->temporary != b->temporary ? b->temporary : a->sortKey < b->sortKey;
    };
    if (sortingEnabled)
        std::stable_sort(adapters.begin(), adapters.end(), before);
    std::vector<ReservedPlaces> free = reserved;
    std::int32_t unreserved = 0;
    parameterCount = 0;
    hostParameterCount = 0;
    for (AutomationAdapter* adapter : adapters)
    {
        const auto range =
            std::find_if(free.begin(), free.end(),
                         [adapter](const ReservedPlaces& each) { return each.sortKey == adapter->sortKey; });
        if (range != free.end() && !adapter->temporary)
        {
            if (range->count < adapter->targetCount)
                throw MException("More parameters than there are numbers for them.");
            adapter->firstIndex = range->first;
            range->first += adapter->targetCount;
            range->count -= adapter->targetCount;
        }
        else
        {
            // The first gap between the ranges that has room.
            for (bool moved = true; moved;)
            {
                moved = false;
                for (const ReservedPlaces& each : reserved)
                    if (unreserved < each.first + each.count &&
                        each.first < unreserved + adapter->targetCount)
                    {
                        unreserved = each.first + each.count;
                        moved = true;
                    }
            }
            adapter->firstIndex = unreserved;
            unreserved += adapter->targetCount;
        }
        const std::int32_t end = adapter->firstIndex + adapter->targetCount;
        parameterCount = std::max(parameterCount, end);
        if (!adapter->temporary)
            hostParameterCount = std::max(hostParameterCount, end);
    }
    std::sort(adapters.begin(), adapters.end(),
              [](const AutomationAdapter* a, const AutomationAdapter* b)
              { return a->firstIndex < b->firstIndex; });
}

template <typename Predicate>
void AutomationList::RemoveIf(Predicate&& predicate)
{
    for (std::size_t index = adapters.size(); index-- > 0;)
    {
        AutomationAdapter* adapter = adapters[index];
        if (!predicate(*adapter))
            continue;
        adapters.erase(adapters.begin() + static_cast<std::ptrdiff_t>(index));
        adapter->plugin = nullptr;
        if (adapter->owned)
            delete adapter;
    }
}

void AutomationList::RemoveTemporary()
{
    RemoveIf([](const AutomationAdapter& adapter) { return adapter.temporary; });
}

void AutomationList::RemoveBuilt()
{
    RemoveIf([](const AutomationAdapter& adapter) { return adapter.ofEffect; });
    for (auto& bucket : buckets)
        bucket.clear();
}

void AutomationList::Clear()
{
    for (AutomationAdapter* adapter : adapters)
    {
        adapter->plugin = nullptr;
        if (adapter->owned)
            delete adapter;
    }
    adapters.clear();
    for (auto& bucket : buckets)
        bucket.clear();
    parameterCount = 0;
    hostParameterCount = 0;
}

AutomationAdapter* AutomationList::Find(std::int32_t index, std::int32_t& sub) const
{
    if (adapters.empty())
        return nullptr;
    // The last adapter that starts at or before the index.
    const auto after = std::upper_bound(adapters.begin(), adapters.end(), index,
                                        [](std::int32_t wanted, const AutomationAdapter* adapter)
                                        { return wanted < adapter->firstIndex; });
    AutomationAdapter* found = after == adapters.begin() ? adapters.front() : *(after - 1);
    sub = index - found->firstIndex;
    return sub >= 0 && sub < found->targetCount ? found : nullptr;
}

AutomationAdapter* AutomationList::FindParameter(std::int32_t parameterIndex) const
{
    for (const BucketEntry& entry : buckets[static_cast<std::size_t>(parameterIndex & 7)])
        if (entry.parameterIndex == parameterIndex)
            return entry.adapter;
    return nullptr;
}
