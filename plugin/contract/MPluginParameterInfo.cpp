// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/contract/MPluginParameterInfo.h"

#include <cmath>

namespace
{
MPluginParameterInfo Named(ParameterType type, const MString& name, const MString& id)
{
    MPluginParameterInfo info;
    info.type = type;
    info.name = name;
    info.id = id;
    return info;
}
}   // namespace

MPluginParameterInfo MPluginParameterInfo::Float(const MString& name, const MString& id, double minimum,
                                                 double maximum, double defaultValue)
{
    MPluginParameterInfo info = Named(ParameterType::Float, name, id);
    info.number.minimum = minimum;
    info.number.maximum = maximum;
    info.number.defaultValue = defaultValue;
    info.number.value = defaultValue;
    info.number.smoothedValue = defaultValue;
    info.number.previousValue = defaultValue;
    return info;
}

MPluginParameterInfo MPluginParameterInfo::Enumeration(const MString& name, const MString& id,
                                                       const char* const* names, std::int32_t count,
                                                       std::int32_t defaultIndex)
{
    MPluginParameterInfo info = Named(ParameterType::Enumeration, name, id);
    info.enumeration.names = names;
    info.enumeration.count = count;
    info.enumeration.defaultIndex = defaultIndex;
    info.enumeration.index = defaultIndex;
    return info;
}

MPluginParameterInfo MPluginParameterInfo::Boolean(const MString& name, const MString& id, bool defaultValue)
{
    MPluginParameterInfo info = Named(ParameterType::Boolean, name, id);
    info.boolean.defaultValue = defaultValue;
    info.boolean.value = defaultValue;
    return info;
}

MPluginParameterInfo MPluginParameterInfo::Group(const MString& name)
{
    return Named(ParameterType::Group, name, {});
}

double MPluginParameterInfo::NumberAt(double position) const
{
    const double squared = position * position;
    const double share = curve == 1 ? squared : (curve == 2 ? squared * squared : position);
    return (number.maximum - number.minimum) * share + number.minimum;
}

double MPluginParameterInfo::PositionOf(double value) const
{
    const double range = number.maximum - number.minimum;
    if (!(range > 0))
        return 0;
    const double share = (value - number.minimum) / range;
    return curve == 1 ? std::sqrt(share) : (curve == 2 ? std::sqrt(std::sqrt(share)) : share);
}

MPluginParameterInfo& MPluginParameterInfo::WithHelp(const MString& text)
{
    help = text;
    return *this;
}

MPluginParameterInfo& MPluginParameterInfo::WithFormat(const MString& text)
{
    format = text;
    return *this;
}

MPluginParameterInfo& MPluginParameterInfo::WithFormatter(MParameterFormatter function)
{
    formatter = function;
    return *this;
}

MPluginParameterInfo& MPluginParameterInfo::WithFlags(std::uint32_t added, std::uint32_t removed)
{
    flags = (flags | added) & ~removed;
    return *this;
}
