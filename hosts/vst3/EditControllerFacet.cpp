// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst3/EditControllerFacet.h"

#include <algorithm>
#include <cmath>

#include "foundation/text/Boundary.h"
#include "foundation/text/MStringFormat.h"
#include "hosts/vst3/MAudioPluginVST3Adapter.h"
#include "hosts/vst3/ParameterIds.h"
#include "hosts/vst3/Text128.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace Vst3
{
EditControllerFacet::~EditControllerFacet()
{
    ReleaseHandler();
}

void* EditControllerFacet::Find(const TUID iid)
{
    if (FUnknownPrivate::iidEqual(iid, IEditController::iid))
        return static_cast<IEditController*>(this);
    if (FUnknownPrivate::iidEqual(iid, IEditController2::iid))
        return static_cast<IEditController2*>(this);
    if (FUnknownPrivate::iidEqual(iid, IMidiMapping::iid))
        return static_cast<IMidiMapping*>(this);
    if (FUnknownPrivate::iidEqual(iid, IUnitInfo::iid))
        return static_cast<IUnitInfo*>(this);
    return nullptr;
}

tresult EditControllerFacet::queryInterface(const TUID iid, void** object)
{
    return adapter.queryInterface(iid, object);
}

uint32 EditControllerFacet::addRef()
{
    return adapter.addRef();
}

uint32 EditControllerFacet::release()
{
    return adapter.release();
}

void EditControllerFacet::ReleaseHandler()
{
    if (handler != nullptr)
        handler->release();
    handler = nullptr;
}

void EditControllerFacet::BuildUnits()
{
    unitNames.clear();
    parameterUnits.assign(static_cast<std::size_t>(adapter.Plugin().GetParameterCount()), kRootUnitId);
    for (const AutomationAdapter* each : adapter.Plugin().automation.Adapters())
    {
        if (each->groupName.IsEmpty())
            continue;
        auto found = std::find(unitNames.begin(), unitNames.end(), each->groupName);
        if (found == unitNames.end())
            found = unitNames.insert(unitNames.end(), each->groupName);
        const auto unit = static_cast<UnitID>(found - unitNames.begin()) + 1;
        for (int32 target = 0; target < each->targetCount; ++target)
        {
            const auto index = static_cast<std::size_t>(each->firstIndex + target);
            if (index < parameterUnits.size())
                parameterUnits[index] = unit;
        }
    }
}

bool EditControllerFacet::IsOwn(ParamID id) const
{
    return id < FirstControllerId && static_cast<int32>(id) < adapter.Plugin().GetParameterCount();
}

int32 EditControllerFacet::getParameterCount()
{
    return adapter.IsInitialized() ? adapter.Plugin().GetParameterCount() + 1 + ControllerCount : 0;
}

tresult EditControllerFacet::getParameterInfo(int32 index, ParameterInfo& info)
{
    if (index < 0 || index >= getParameterCount())
        return kInvalidArgument;
    return AtBoundary("MAudioPluginVST3Adapter::getParameterInfo", tresult{ kResultFalse },
                      [&]() -> tresult
                      {
                          info = {};
                          info.unitId = kRootUnitId;
                          const MQuorvaneAudioEffectPlugin& plugin = adapter.Plugin();
                          const int32 ownCount = plugin.GetParameterCount();
                          if (index < ownCount)
                          {
                              info.id = static_cast<ParamID>(index);
                              MString text;
                              plugin.GetParameterName(text, index);
                              CopyText(info.title, text);
                              plugin.GetParameterLabel(text, index);
                              CopyText(info.shortTitle, text);
                              MString units;
                              plugin.GetParameterUnitsName(units, index);
                              CopyText(info.units, units);
                              info.stepCount =
                                  plugin.GetParameterType(index) == AutomationAdapter::Type::Boolean ? 1 : 0;
                              info.defaultNormalizedValue = plugin.GetParameterDefaultValue(index);
                              info.unitId = parameterUnits[static_cast<std::size_t>(index)];
                              info.flags = ParameterInfo::kCanAutomate;
                          }
                          else if (index == ownCount)
                          {
                              info.id = BypassId;
                              CopyText(info.title, "Bypass");
                              CopyText(info.shortTitle, "Bypass");
                              info.stepCount = 1;
                              info.flags = ParameterInfo::kCanAutomate | ParameterInfo::kIsBypass;
                          }
                          else
                          {
                              const int32 controller = index - ownCount - 1;
                              info.id = FirstControllerId + static_cast<ParamID>(controller);
                              CopyText(info.title, Format("Controller {0}", controller + 1));
                          }
                          return kResultOk;
                      });
}

tresult EditControllerFacet::getParamStringByValue(ParamID id, ParamValue value, String128 text)
{
    if (text == nullptr)
        return kInvalidArgument;
    return AtBoundary("MAudioPluginVST3Adapter::getParamStringByValue", tresult{ kResultFalse },
                      [&]() -> tresult
                      {
                          MString out;
                          const double share = std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 0.0;
                          if (IsOwn(id))
                              adapter.Plugin().GetParameterValueNameFrom01(out, static_cast<int32>(id),
                                                                           share);
                          else if (id == BypassId)
                              out = share > 0.5 ? "On" : "Off";
                          else if (id >= FirstControllerId && id - FirstControllerId < ControllerCount)
                              out = MString::FromDouble(share, 4);
                          else
                              return kResultFalse;
                          CopyText(text, out);
                          return kResultOk;
                      });
}

tresult EditControllerFacet::getParamValueByString(ParamID id, TChar* text, ParamValue& value)
{
    if (text == nullptr)
        return kInvalidArgument;
    return AtBoundary("MAudioPluginVST3Adapter::getParamValueByString", tresult{ kResultFalse },
                      [&]() -> tresult
                      {
                          const MString given = TextOf(text);
                          if (IsOwn(id))
                              value = adapter.Plugin().ParseParameterValueName(static_cast<int32>(id), given);
                          else if (id == BypassId)
                              value = given.EqualsNoCase("On") || given.ToInt() != 0 ? 1.0 : 0.0;
                          else if (id >= FirstControllerId && id - FirstControllerId < ControllerCount)
                              value = std::clamp(given.ToDouble(), 0.0, 1.0);
                          else
                              return kResultFalse;
                          return kResultOk;
                      });
}

// Hosts get the values' own units as texts; as numbers all of them run from 0 to 1.
ParamValue EditControllerFacet::normalizedParamToPlain(ParamID, ParamValue value)
{
    return value;
}

ParamValue EditControllerFacet::plainParamToNormalized(ParamID, ParamValue value)
{
    return value;
}

ParamValue EditControllerFacet::getParamNormalized(ParamID id)
{
    if (id == BypassId)
        return adapter.Plugin().bypass ? 1.0 : 0.0;
    return id < FirstControllerId ? adapter.Plugin().GetParameter(static_cast<int32>(id)) : 0.0;
}

tresult EditControllerFacet::setParamNormalized(ParamID id, ParamValue value)
{
    if (!IsOwn(id) && id != BypassId &&
        !(id >= FirstControllerId && id - FirstControllerId < ControllerCount))
        return kResultFalse;
    if (!adapter.IsActive())
        adapter.ApplyParameterChange(id, value);
    return kResultOk;
}

tresult EditControllerFacet::setComponentHandler(IComponentHandler* newHandler)
{
    if (newHandler == handler)
        return kResultOk;
    if (newHandler != nullptr)
        newHandler->addRef();
    ReleaseHandler();
    handler = newHandler;
    return kResultOk;
}

tresult EditControllerFacet::getMidiControllerAssignment(int32, int16, CtrlNumber controller, ParamID& id)
{
    id = FirstControllerId + static_cast<ParamID>(controller);
    return kResultOk;
}

int32 EditControllerFacet::getUnitCount()
{
    return static_cast<int32>(unitNames.size()) + 1;
}

tresult EditControllerFacet::getUnitInfo(int32 index, UnitInfo& info)
{
    if (index < 0 || index >= getUnitCount())
        return kResultFalse;
    info = {};
    info.id = index;
    info.parentUnitId = index == 0 ? kNoParentUnitId : kRootUnitId;
    info.programListId = kNoProgramListId;
    CopyText(info.name, index == 0 ? MString("Root") : unitNames[static_cast<std::size_t>(index - 1)]);
    return kResultOk;
}

tresult EditControllerFacet::getUnitByBus(MediaType, BusDirection, int32, int32, UnitID& unit)
{
    unit = kRootUnitId;
    return kResultFalse;
}
}   // namespace Vst3
