// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The module as a library: held by whoever loads it, a VST 3 host or a foreign executable, besides the
/// plug-in objects that hold it themselves.
namespace ModuleLoad
{
/// Keeps the module started until as many calls of Release. False when it can't be started. Any thread.
bool Hold() noexcept;
/// Without a Hold before it does nothing and answers false.
bool Release() noexcept;
}   // namespace ModuleLoad
