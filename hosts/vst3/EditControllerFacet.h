// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "foundation/text/MString.h"
#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <pluginterfaces/vst/ivstunits.h>

namespace Vst3
{
class MAudioPluginVST3Adapter;

/// The controller's side of the one component: descriptions, values and texts of the parameters, their
/// groups, the mapping of MIDI controllers.
///
/// A part of the adapter that shares its identity and its reference count. It is an object of its own only
/// because the component and the controller both have operations named setState and getState that mean
/// different things. Main thread; values may be asked for by any.
class EditControllerFacet : public Steinberg::Vst::IEditController,
                            public Steinberg::Vst::IEditController2,
                            public Steinberg::Vst::IMidiMapping,
                            public Steinberg::Vst::IUnitInfo
{
public:
    using tresult = Steinberg::tresult;
    using int32 = Steinberg::int32;
    using ParamID = Steinberg::Vst::ParamID;
    using ParamValue = Steinberg::Vst::ParamValue;

    explicit EditControllerFacet(MAudioPluginVST3Adapter& owner) : adapter(owner) {}
    virtual ~EditControllerFacet();
    EditControllerFacet(const EditControllerFacet&) = delete;
    EditControllerFacet& operator=(const EditControllerFacet&) = delete;

    /// The one of its interfaces that `iid` asks for, not counted; null if it has none such.
    void* Find(const Steinberg::TUID iid);
    /// Reads the groups of the parameters.
    void BuildUnits();
    void ReleaseHandler();
    /// Null while no host listens.
    Steinberg::Vst::IComponentHandler* Handler() const { return handler; }

    tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** object) override;
    Steinberg::uint32 PLUGIN_API addRef() override;
    Steinberg::uint32 PLUGIN_API release() override;

    // IPluginBase: the component is initialized, and this side with it. Some hosts do it for both.
    tresult PLUGIN_API initialize(Steinberg::FUnknown*) override { return Steinberg::kResultOk; }
    tresult PLUGIN_API terminate() override { return Steinberg::kResultOk; }

    // IEditController. All state is the component's.
    tresult PLUGIN_API setComponentState(Steinberg::IBStream*) override { return Steinberg::kResultOk; }
    tresult PLUGIN_API setState(Steinberg::IBStream*) override { return Steinberg::kNotImplemented; }
    tresult PLUGIN_API getState(Steinberg::IBStream*) override { return Steinberg::kNotImplemented; }
    int32 PLUGIN_API getParameterCount() override;
    tresult PLUGIN_API getParameterInfo(int32 index, Steinberg::Vst::ParameterInfo& info) override;
    tresult PLUGIN_API getParamStringByValue(ParamID id, ParamValue value,
                                             Steinberg::Vst::String128 text) override;
    tresult PLUGIN_API getParamValueByString(ParamID id, Steinberg::Vst::TChar* text,
                                             ParamValue& value) override;
    ParamValue PLUGIN_API normalizedParamToPlain(ParamID id, ParamValue value) override;
    ParamValue PLUGIN_API plainParamToNormalized(ParamID id, ParamValue value) override;
    ParamValue PLUGIN_API getParamNormalized(ParamID id) override;
    /// Reaches the plug-in at once; a host that also sends the value with a block sets it twice.
    tresult PLUGIN_API setParamNormalized(ParamID id, ParamValue value) override;
    tresult PLUGIN_API setComponentHandler(Steinberg::Vst::IComponentHandler* newHandler) override;
    /// There is no editor yet.
    Steinberg::IPlugView* PLUGIN_API createView(Steinberg::FIDString) override { return nullptr; }

    // IEditController2
    tresult PLUGIN_API setKnobMode(Steinberg::Vst::KnobMode) override { return Steinberg::kNotImplemented; }
    tresult PLUGIN_API openHelp(Steinberg::TBool) override { return Steinberg::kNotImplemented; }
    tresult PLUGIN_API openAboutBox(Steinberg::TBool) override { return Steinberg::kNotImplemented; }

    // IMidiMapping
    tresult PLUGIN_API getMidiControllerAssignment(int32 bus, Steinberg::int16 channel,
                                                   Steinberg::Vst::CtrlNumber controller,
                                                   ParamID& id) override;

    // IUnitInfo: the root and one unit for each group of parameters; the factory presets are the root's
    // programs.
    int32 PLUGIN_API getUnitCount() override;
    tresult PLUGIN_API getUnitInfo(int32 index, Steinberg::Vst::UnitInfo& info) override;
    int32 PLUGIN_API getProgramListCount() override;
    tresult PLUGIN_API getProgramListInfo(int32 index, Steinberg::Vst::ProgramListInfo& info) override;
    tresult PLUGIN_API getProgramName(int32 list, int32 program, Steinberg::Vst::String128 text) override;
    tresult PLUGIN_API getProgramInfo(int32, int32, Steinberg::Vst::CString,
                                      Steinberg::Vst::String128) override
    {
        return Steinberg::kResultFalse;
    }
    tresult PLUGIN_API hasProgramPitchNames(int32, int32) override { return Steinberg::kResultFalse; }
    tresult PLUGIN_API getProgramPitchName(int32, int32, Steinberg::int16, Steinberg::Vst::String128) override
    {
        return Steinberg::kResultFalse;
    }
    Steinberg::Vst::UnitID PLUGIN_API getSelectedUnit() override { return Steinberg::Vst::kRootUnitId; }
    tresult PLUGIN_API selectUnit(Steinberg::Vst::UnitID) override { return Steinberg::kResultOk; }
    tresult PLUGIN_API getUnitByBus(Steinberg::Vst::MediaType, Steinberg::Vst::BusDirection, int32, int32,
                                    Steinberg::Vst::UnitID& unit) override;
    tresult PLUGIN_API setUnitProgramData(int32, int32, Steinberg::IBStream*) override
    {
        return Steinberg::kNotImplemented;
    }

private:
    bool IsOwn(ParamID id) const;
    int32 ProgramCount() const;
    /// The program that a value from 0 to 1 stands for.
    int32 ProgramAt(ParamValue value) const;
    MString ProgramName(int32 program) const;
    int32 CurrentProgram() const;
    void ChooseProgram(int32 program);

    MAudioPluginVST3Adapter& adapter;
    Steinberg::Vst::IComponentHandler* handler = nullptr;
    bool firstProgramChosen = false;   // the first preset's place is also that of none
    std::vector<MString> unitNames;   // unit id less 1
    std::vector<Steinberg::Vst::UnitID> parameterUnits;
};
}   // namespace Vst3
