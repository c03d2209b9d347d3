// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MString.h"

/// What the controls of files do with paths. All paths are absolute, without a separator at the end but for
/// "/" itself, and keep every byte of a name; see PathText.
namespace FilePaths
{
MString Join(const MString& folder, const MString& name);
/// "/" for "/".
MString Parent(const MString& path);
/// Behind the last separator; "/" for "/".
MString NameOf(const MString& path);
bool IsWithin(const MString& path, const MString& folder);
/// What a user typed, seen from a folder: "~" is the user's own, "." and ".." are followed.
MString Resolved(const MString& typed, const MString& folder);
/// The nearest folder at or above a path that is there.
MString ExistingFolder(const MString& path);
/// Percent-encoding for what texts can't hold: bytes that are no UTF-8, controls, and "%".
MString Escaped(const MString& path);
/// Of Escaped, and of the path of a "file:" address (RFC 8089).
MString Unescaped(const MString& text);
}   // namespace FilePaths
