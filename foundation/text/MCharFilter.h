// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Says which characters an input takes.
class MCharFilter
{
public:
    /// The classes that a mask is made of.
    enum Mask
    {
        Letters = 1,
        Digits = 2,
        Punctuation = 4,   ///< "-", "." and, with letters, the blank
        HexaDigits = 8,
        Others = 16
    };

    virtual bool IsAllowed(char16_t character) const = 0;
    virtual int GetMask() const = 0;

protected:
    ~MCharFilter() = default;
};

/// Everything.
class AllFilter final : public MCharFilter
{
public:
    bool IsAllowed(char16_t character) const override;
    int GetMask() const override { return Letters | Digits | Punctuation | Others; }
};

/// a-z A-Z
class LettersFilter final : public MCharFilter
{
public:
    bool IsAllowed(char16_t character) const override;
    int GetMask() const override { return Letters; }
};

/// a-z A-Z 0-9
class AlphaStrictFilter final : public MCharFilter
{
public:
    bool IsAllowed(char16_t character) const override;
    int GetMask() const override { return Letters | Digits; }
};

/// a-z A-Z 0-9 and "-", ".", blank
class AlphaFilter final : public MCharFilter
{
public:
    bool IsAllowed(char16_t character) const override;
    int GetMask() const override { return Letters | Digits | Punctuation; }
};

/// 0-9 and "-"
class IntegerFilter final : public MCharFilter
{
public:
    bool IsAllowed(char16_t character) const override;
    int GetMask() const override { return Digits; }
};

/// 0-9 a-f A-F
class IntegerHexaFilter final : public MCharFilter
{
public:
    bool IsAllowed(char16_t character) const override;
    int GetMask() const override { return Digits | HexaDigits; }
};

/// 0-9 and "-", "."
class FloatFilter final : public MCharFilter
{
public:
    bool IsAllowed(char16_t character) const override;
    int GetMask() const override { return Digits | Punctuation; }
};
