// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst3/PluginFactory.h"

#include <atomic>
#include <cstring>

#include "hosts/module/PluginIdentity.h"
#include "hosts/vst3/MAudioPluginVST3Adapter.h"

using namespace Steinberg;

namespace Vst3
{
namespace
{
PClassInfo2 ClassInfo()
{
    return { PluginIdentity::Vst3Class,
             PClassInfo::kManyInstances,
             kVstAudioEffectClass,
             PluginIdentity::Name,
             0,
             "Fx|EQ",
             PluginIdentity::Maker,
             "7.10",
             "VST 3.5.2" };
}

class PluginFactory : public IPluginFactory3
{
public:
    virtual ~PluginFactory() = default;

    tresult PLUGIN_API queryInterface(const TUID wanted, void** object) override
    {
        if (object == nullptr)
            return kInvalidArgument;
        *object = nullptr;
        if (wanted == nullptr)
            return kInvalidArgument;
        if (!FUnknownPrivate::iidEqual(wanted, FUnknown::iid) &&
            !FUnknownPrivate::iidEqual(wanted, IPluginFactory::iid) &&
            !FUnknownPrivate::iidEqual(wanted, IPluginFactory2::iid) &&
            !FUnknownPrivate::iidEqual(wanted, IPluginFactory3::iid))
            return kNoInterface;
        *object = static_cast<IPluginFactory3*>(this);
        addRef();
        return kResultOk;
    }
    // The object is static; the count only answers what hosts expect to read.
    uint32 PLUGIN_API addRef() override { return references.fetch_add(1) + 1; }
    uint32 PLUGIN_API release() override { return references.fetch_sub(1) - 1; }

    tresult PLUGIN_API getFactoryInfo(PFactoryInfo* info) override
    {
        if (info == nullptr)
            return kInvalidArgument;
        *info = PFactoryInfo(PluginIdentity::Maker, "https://quorvane.example",
                             "mailto:support@quorvane.example", PFactoryInfo::kUnicode);
        return kResultOk;
    }
    int32 PLUGIN_API countClasses() override { return 1; }
    tresult PLUGIN_API getClassInfo(int32 index, PClassInfo* info) override
    {
        if (index != 0 || info == nullptr)
            return kInvalidArgument;
        const PClassInfo2 full = ClassInfo();
        *info = PClassInfo(full.cid, full.cardinality, full.category, full.name);
        return kResultOk;
    }
    tresult PLUGIN_API getClassInfo2(int32 index, PClassInfo2* info) override
    {
        if (index != 0 || info == nullptr)
            return kInvalidArgument;
        *info = ClassInfo();
        return kResultOk;
    }
    tresult PLUGIN_API getClassInfoUnicode(int32 index, PClassInfoW* info) override
    {
        if (index != 0 || info == nullptr)
            return kInvalidArgument;
        info->fromAscii(ClassInfo());
        return kResultOk;
    }
    tresult PLUGIN_API setHostContext(FUnknown*) override { return kNotImplemented; }
    tresult PLUGIN_API createInstance(FIDString cid, FIDString wanted, void** object) override
    {
        if (object == nullptr)
            return kInvalidArgument;
        *object = nullptr;
        if (cid == nullptr || wanted == nullptr)
            return kInvalidArgument;
        if (std::memcmp(cid, PluginIdentity::Vst3Class, sizeof(TUID)) != 0)
            return kNoInterface;
        // The interface's type for an identifier is an array of 16, what comes in points at one.
        return CreateComponent(*reinterpret_cast<const TUID*>(wanted), object);
    }

private:
    std::atomic<uint32> references = 0;
};
}   // namespace

IPluginFactory* AcquireFactory() noexcept
{
    static PluginFactory factory;
    factory.addRef();
    return &factory;
}
}   // namespace Vst3
