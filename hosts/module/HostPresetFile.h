// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

class MQuorvaneAudioEffectPlugin;

/// Preset files that the preset dialogs of hosts open: the plug-in's state in the wrapping of a format.
namespace HostPresetFile
{
enum class Format
{
    Vst3,   ///< ".vstpreset"
    Vst2   ///< ".fxp"
};

/// By the ending of a file's name, in any case; nothing for another one.
std::optional<Format> FormatOf(const std::string& path);

/// The file's bytes, with the plug-in's present settings.
/// @param name  of the preset, UTF-8; a VST 2 host shows 27 bytes of it
/// Throws MException. Thread: GUI. Sources: the header comments of vstpresetfile.h of the VST 3 SDK; the
/// published record fxProgram of VST 2, form "FPCh".
std::string Make(Format format, MQuorvaneAudioEffectPlugin& plugin, const std::string& name);
}   // namespace HostPresetFile
