// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/streams/MStream.h"
#include "foundation/text/MString.h"

class MAttribute;

void WriteXML(const MAttribute& item, MStream& stream, bool compact, const MString& encoding);
void SaveXML(const MAttribute& item, const MString& path, bool compact, const MString& encoding);
void WriteCompressedXML(const MAttribute& item, MStream& stream, const MString& encoding);
void SaveCompressedXML(const MAttribute& item, const MString& path, const MString& encoding);
/// Plain XML. Throws MException "Invalid file contents. ..." with the detail.
void ReadXML(MAttribute& item, MStream& stream);
/// Compressed or plain XML: what doesn't inflate is read as it stands.
void ReadCompressedXML(MAttribute& item, MStream& stream);
void LoadXML(MAttribute& item, const MString& path);
