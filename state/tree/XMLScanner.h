// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

#include "foundation/text/MEncoding.h"
#include "state/tree/MMLParser.h"

/// What is marked up.
enum class MarkUp
{
    Document,   ///< texts lose the blanks at their ends
    /// Each run of blanks is one, and none is lost; values may stand without quotation marks; the text is
    /// UTF-8, whatever it declares.
    RunningText
};

/// Takes an XML document apart. Markup is found in the bytes, since all encodings but UTF-16 have ASCII
/// below 128; names, values and texts go through the codec piece by piece. A UTF-16 document, known by its
/// byte-order mark, is turned into UTF-8 first. Throws MException "Invalid file contents. ...".
class XMLScanner
{
public:
    XMLScanner(std::string_view document, MTreeParser& receiver, MarkUp kindOfText = MarkUp::Document);
    void Scan();

private:
    void ScanText();
    void ScanDeclaration();
    void ScanSpecial();
    void ScanEndTag();
    void ScanStartTag();
    MAttributePair ScanAttribute();
    std::string_view ScanValue();
    std::string_view ScanName();

    bool IsAtEnd() const { return position >= bytes.size(); }
    bool StartsWith(std::string_view prefix) const { return bytes.substr(position, prefix.size()) == prefix; }
    char Current() const { return bytes[position]; }
    void SkipBlanks();
    void RequireMore() const;
    // Everything up to the delimiter, and past it.
    std::string_view TakeUpTo(std::string_view delimiter);

    std::string converted;   // a UTF-16 document as UTF-8
    std::string_view bytes;
    std::size_t position = 0;
    const MEncoding::Codec* codec;
    bool isConverted = false;
    MTreeParser& parser;
    MarkUp kind;
};
