// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MString.h"
#include "foundation/threads/MRelaxed.h"

struct MPluginParameterInfo;
class SpecialParameterObject;

namespace ParameterFlag
{
enum : std::uint32_t
{
    Visible = 0x000001,   ///< an automation adapter is built for it
    DisplayVariant1 = 0x000002,
    NotInGenericPanel = 0x000004,
    Interpolated = 0x000008,   ///< may be interpolated by the driver between blocks
    Interpolating = 0x000010,   ///< writes go to `smoothedValue`, not `value`
    NeedsUpdate = 0x000020,   ///< a change needs Update, not only OnParameterChange
    Randomizable = 0x000040,
    OpenInPage0 = 0x000080,
    StartsPrefixGroup = 0x000800,
    RandomizedToWhole = 0x004000,
    OpenInPage1 = 0x008000,
    OpenInPage2 = 0x010000,
    OutputGain = 0x020000,   ///< automatic gain control adds to it
    InBothViews = 0x040000,
    AdvancedOnly = 0x080000,
    Default = 0x040561
};
}   // namespace ParameterFlag

enum class ParameterType : std::int32_t
{
    None = 0,
    Float = 1,
    Integer = 2,
    Enumeration = 3,
    Boolean = 4,
    Group = 5,
    Invalid = 6,
    Text = 7
};

/// Turns the value of a record into text (`parse` false: writes `text`) and back (`parse` true: reads
/// `text` and writes the record's value).
using MParameterFormatter = void (*)(MPluginParameterInfo& record, MString& text, bool parse);

/// One parameter as an effect declares it, with its live value. The values are written by whatever thread
/// a host chooses and read by the audio thread, each as a single store.
struct MPluginParameterInfo
{
    struct FloatValue
    {
        double minimum = 0;
        double maximum = 1;
        double defaultValue = 0;
        MRelaxed<double> value;
        MRelaxed<double> smoothedValue;
        MRelaxed<double> previousValue;
    };
    struct IntegerValue
    {
        std::int32_t minimum = 0;
        std::int32_t maximum = 1;
        std::int32_t defaultValue = 0;
        MRelaxed<std::int32_t> value;
        MRelaxed<std::int32_t> smoothedValue;
    };
    struct EnumerationValue
    {
        const char* const* names = nullptr;
        std::int32_t count = 0;
        std::int32_t defaultIndex = 0;
        MRelaxed<std::int32_t> index;
    };
    struct BooleanValue
    {
        bool defaultValue = false;
        MRelaxed<bool> value;
    };
    struct GroupValue
    {
        MRelaxed<bool>* enabled = nullptr;   ///< members are the parameters up to the next group
    };
    struct Placement
    {
        std::int32_t x = 0;
        std::int32_t y = 0;
        std::int32_t size = 0;
    };

    MRelaxed<std::uint32_t> flags = ParameterFlag::Default;
    ParameterType type = ParameterType::None;
    MString name;   ///< what the host and the user see
    MString id;   ///< stable identifier in stored settings
    MString help;
    MParameterFormatter formatter = nullptr;
    MString format;   ///< used without a formatter, for example "{+0.2} dB"
    std::int32_t hostIndex = 0;   ///< sort key among the host's parameters
    FloatValue number;   ///< the block that `type` names holds the value
    IntegerValue integer;
    EnumerationValue enumeration;
    BooleanValue boolean;
    GroupValue group;
    std::int32_t curve = 0;   ///< 0 linear, 1 square, 2 fourth power
    SpecialParameterObject* owner = nullptr;
    Placement placements[2];
    MString textValue;

    bool Has(std::uint32_t flag) const { return (flags & flag) != 0; }

    /// The value of a float parameter at a position of 0 to 1 on its curve, and back. A range without extent
    /// stands at 0.
    double NumberAt(double position) const;
    double PositionOf(double value) const;

    /// The value that processing uses: the running one while the driver interpolates.
    double RunningValue() const
    {
        return Has(ParameterFlag::Interpolating) ? number.smoothedValue : number.value;
    }

    static MPluginParameterInfo Float(const MString& name, const MString& id, double minimum, double maximum,
                                      double defaultValue);
    static MPluginParameterInfo Enumeration(const MString& name, const MString& id, const char* const* names,
                                            std::int32_t count, std::int32_t defaultIndex);
    static MPluginParameterInfo Boolean(const MString& name, const MString& id, bool defaultValue);
    static MPluginParameterInfo Group(const MString& name);

    MPluginParameterInfo& WithHelp(const MString& text);
    MPluginParameterInfo& WithFormat(const MString& text);
    MPluginParameterInfo& WithFormatter(MParameterFormatter function);
    MPluginParameterInfo& WithFlags(std::uint32_t added, std::uint32_t removed = 0);
};

/// An object bound to a special parameter: it can be started anew, by chance or to its default.
class SpecialParameterObject
{
public:
    virtual ~SpecialParameterObject() = default;
    virtual void Reinitialize() = 0;
    virtual void ResetToDefault() = 0;
};

class AutomationAdapter;

/// A parameter whose value is a larger object: one adapter with many targets.
struct MPluginSpecialParameterInfo
{
    MString name;
    MString id;
    AutomationAdapter* adapter = nullptr;   ///< belongs to the effect
    SpecialParameterObject* owner = nullptr;
};
