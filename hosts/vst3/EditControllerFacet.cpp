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
    return adapter.IsInitialized() ? adapter.Plugin().GetParameterCount() + 2 + ControllerCount : 0;
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
                              if (plugin.IsParameterHidden(index))
                                  info.flags = ParameterInfo::kIsHidden;
                              else if (plugin.IsParameterAutomatable(index))
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
                          else if (index <= ownCount + ControllerCount)
                          {
                              // Nothing to see or to move: they keep the numbers of MIDI controllers.
                              const int32 controller = index - ownCount - 1;
                              info.id = FirstControllerId + static_cast<ParamID>(controller);
                              CopyText(info.title, Format("Controller {0}", controller + 1));
                              info.flags = ParameterInfo::kIsHidden;
                          }
                          else
                          {
                              info.id = ProgramId;
                              CopyText(info.title, "Program");
                              CopyText(info.shortTitle, "Program");
                              info.stepCount = ProgramCount() - 1;
                              info.flags = ParameterInfo::kIsProgramChange | ParameterInfo::kIsList;
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
                          else if (id == ProgramId)
                              out = ProgramName(ProgramAt(share));
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
                          else if (id == ProgramId)
                          {
                              for (int32 program = 0; program < ProgramCount(); ++program)
                                  if (ProgramName(program).EqualsNoCase(given))
                                  {
                                      value = plainParamToNormalized(id, program);
                                      return kResultOk;
                                  }
                              return kResultFalse;
                          }
                          else if (id >= FirstControllerId && id - FirstControllerId < ControllerCount)
                              value = std::clamp(given.ToDouble(), 0.0, 1.0);
                          else
                              return kResultFalse;
                          return kResultOk;
                      });
}

// Hosts get the values' own units as texts; as numbers all of them run from 0 to 1.
ParamValue EditControllerFacet::normalizedParamToPlain(ParamID id, ParamValue value)
{
    return id == ProgramId ? ProgramAt(value) : value;
}

ParamValue EditControllerFacet::plainParamToNormalized(ParamID id, ParamValue value)
{
    return id == ProgramId ? value / std::max(1, ProgramCount() - 1) : value;
}

ParamValue EditControllerFacet::getParamNormalized(ParamID id)
{
    if (id == BypassId)
        return adapter.Plugin().bypass ? 1.0 : 0.0;
    if (id == ProgramId)
        return plainParamToNormalized(id, CurrentProgram());
    return id < FirstControllerId ? adapter.Plugin().GetParameter(static_cast<int32>(id)) : 0.0;
}

tresult EditControllerFacet::setParamNormalized(ParamID id, ParamValue value)
{
    if (id == ProgramId)
        return AtBoundary("MAudioPluginVST3Adapter::setParamNormalized", tresult{ kResultFalse },
                          [&]() -> tresult
                          {
                              ChooseProgram(ProgramAt(value));
                              return kResultOk;
                          });
    if (!IsOwn(id) && id != BypassId &&
        !(id >= FirstControllerId && id - FirstControllerId < ControllerCount))
        return kResultFalse;
    adapter.ApplyParameterChange(id, value);
    AtBoundary("MAudioPluginVST3Adapter::setParamNormalized", [this] { adapter.Plugin().ApplyChoices(); });
    return kResultOk;
}

int32 EditControllerFacet::ProgramCount() const
{
    return adapter.Plugin().presets.FactoryPresetCount() + 1;
}

int32 EditControllerFacet::ProgramAt(ParamValue value) const
{
    const int32 last = ProgramCount() - 1;
    return std::isfinite(value) ? static_cast<int32>(std::lround(std::clamp(value, 0.0, 1.0) * last)) : 0;
}

MString EditControllerFacet::ProgramName(int32 program) const
{
    return program == 0 ? MString("No preset") : adapter.Plugin().presets.FactoryPresetName(program - 1);
}

// States keep the place of their preset. At the first place there may as well be none: loading it anew costs
// a user nothing, while it would cost the bands to load it for nothing.
int32 EditControllerFacet::CurrentProgram() const
{
    const int32 index = adapter.Plugin().presets.CurrentPresetIndex();
    if (index == 0)
        return firstProgramChosen ? 1 : 0;
    return index + 1 < ProgramCount() ? index + 1 : 0;
}

void EditControllerFacet::ChooseProgram(int32 program)
{
    // Hosts repeat what they have read, as when a project is opened: bands that were edited since stay then.
    if (program == 0 || program == CurrentProgram())
        return;
    firstProgramChosen = program == 1;
    adapter.Plugin().presets.LoadFactoryPreset(program - 1);
    adapter.Plugin().ReportChanges();
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

tresult EditControllerFacet::getMidiControllerAssignment(int32 bus, int16 channel, CtrlNumber controller,
                                                         ParamID& id)
{
    constexpr int16 midiChannels = 16;
    if (bus < 0 || bus >= adapter.getBusCount(kEvent, kInput) || channel < 0 || channel >= midiChannels ||
        controller < 0 || controller >= ControllerCount)
        return kResultFalse;
    id = FirstControllerId + static_cast<ParamID>(controller);
    return kResultOk;
}

int32 EditControllerFacet::getProgramListCount()
{
    return adapter.IsInitialized() ? 1 : 0;
}

tresult EditControllerFacet::getProgramListInfo(int32 index, ProgramListInfo& info)
{
    if (index != 0 || !adapter.IsInitialized())
        return kResultFalse;
    info = {};
    info.id = FactoryPresetList;
    info.programCount = ProgramCount();
    CopyText(info.name, "Factory presets");
    return kResultOk;
}

tresult EditControllerFacet::getProgramName(int32 list, int32 program, String128 text)
{
    if (list != FactoryPresetList || program < 0 || program >= ProgramCount() || text == nullptr)
        return kResultFalse;
    return AtBoundary("MAudioPluginVST3Adapter::getProgramName", tresult{ kResultFalse },
                      [&]() -> tresult
                      {
                          CopyText(text, ProgramName(program));
                          return kResultOk;
                      });
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
    info.programListId = index == 0 ? FactoryPresetList : kNoProgramListId;
    CopyText(info.name, index == 0 ? MString("Root") : unitNames[static_cast<std::size_t>(index - 1)]);
    return kResultOk;
}

tresult EditControllerFacet::getUnitByBus(MediaType, BusDirection, int32, int32, UnitID& unit)
{
    unit = kRootUnitId;
    return kResultFalse;
}
}   // namespace Vst3
