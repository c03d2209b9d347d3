// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What hosts know the plug-in by. Projects keep these: none may ever change.
namespace PluginIdentity
{
inline constexpr char Name[] = "TonalignLinearPhase";
inline constexpr char Maker[] = "Quorvane";
/// The 16 bytes of the VST 3 class.
inline constexpr char Vst3Class[] = "qvrnPlugQT~2QT~2";
static_assert(sizeof Vst3Class == 16 + 1);
/// The four letters of the VST 2 effect.
inline constexpr char Vst2Effect[] = "QT~2";
inline constexpr int Vst2Version = 7100;
}   // namespace PluginIdentity
