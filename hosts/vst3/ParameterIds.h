// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/vst/ivstunits.h>
#include <pluginterfaces/vst/vsttypes.h>

/// How parameters are numbered towards VST 3 hosts. Projects keep these numbers: none may ever change.
namespace Vst3
{
/// The effect's own parameters have their host index as id, below this.
inline constexpr Steinberg::Vst::ParamID FirstControllerId = 10000;
/// One for each MIDI controller number, aftertouch and pitch bend.
inline constexpr Steinberg::int32 ControllerCount = 130;
inline constexpr Steinberg::Vst::ParamID BypassId = 32767;
/// Chooses a factory preset: 0 is none, the others count from 1.
inline constexpr Steinberg::Vst::ParamID ProgramId = 32766;
inline constexpr Steinberg::Vst::ProgramListID FactoryPresetList = 1;
}   // namespace Vst3
