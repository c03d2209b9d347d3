// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

#include "foundation/text/MByteReader.h"
#include "foundation/text/MDataBlock.h"
#include "foundation/text/MString.h"

/// The encodings that text from outside may have. Codecs are constant objects of the module, found by
/// name and usable on any thread.
class MEncoding
{
public:
    class Codec
    {
    public:
        /// The codec's main name.
        virtual MString GetName() const = 0;
        /// 8-bit encodings end the text at a zero byte.
        virtual MString Decode(std::string_view bytes) const = 0;
        /// A character that the encoding lacks becomes "?".
        virtual MDataBlock Encode(const MString& text, bool withTerminator) const = 0;
        virtual void ReadBOM(MByteReader& reader) const;
        virtual void WriteBOM(MByteSink& sink) const;
        /// A line without its end, a line feed or a zero byte; carriage returns are skipped. False at the
        /// end of the data with nothing read.
        virtual bool ReadLine(MByteReader& reader, MString& text) const;
        virtual void Write(MByteSink& sink, const MString& text) const;
        /// The text and one line feed.
        virtual void WriteLine(MByteSink& sink, const MString& text) const;

        MString Decode(const MDataBlock& block) const;
        /// Whether the bytes below 128 mean ASCII, so that a declaration can be read before the codec is
        /// known.
        virtual bool ExtendsASCII() const { return true; }

    protected:
        ~Codec() = default;
    };

    /// The empty name is ASCII. Case doesn't matter. Throws MException "No codec found for encoding {0}.".
    static const Codec& Find(const MString& name);
};
