// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "control/values/MContentData.h"
#include "foundation/text/MCharFilter.h"
#include "state/tree/MStorable.h"

/// A number as it is edited: it binds a variable, knows its range and steps, its text in both directions,
/// its place in 0 to 1 and its stored form.
///
/// What is bound is an MRelaxed, so that a control may write what the audio thread reads. The value itself
/// belongs to one thread. Thread: GUI, or the program's one thread.
class MValue : public MStorable
{
public:
    /// Take the place of ToText and FromText for display. Enumerations and lists pass their index.
    using ToTextConverter = MString (*)(double value, void* context);
    /// Answers whether the text was understood and `value` set.
    using FromTextConverter = bool (*)(const MString& text, double& value, void* context);

    MValue() : MStorable("value") {}
    MValue(const MValue&) = delete;
    MValue& operator=(const MValue&) = delete;

    /// Clamped afterwards. A text that can't be read leaves the value, an absent one gives the default.
    void Load(MAttribute& item) override;
    /// The declaration of a value in XML: "id" here, more in derived classes.
    virtual void LoadDefinition(MAttribute& item);

    virtual const MCharFilter& GetCharFilter() const;
    virtual MString GetDisplayText() const;
    virtual MString ToText() const = 0;
    virtual MContent CreateContent() const;
    /// For the value at a position in 0 to 1; changes nothing.
    virtual MContent CreateContentAt(double position) const = 0;
    /// Answers whether the text was taken.
    virtual bool SetDisplayText(const MString& text);
    /// Answers whether the value differs from before.
    virtual bool FromText(const MString& text) = 0;
    virtual void Clamp() = 0;
    /// One step of min(2^acceleration inc, maxinc) times the direction; answers whether the value changed.
    virtual bool Step(int direction, int acceleration) = 0;
    /// Answers whether the value changed.
    virtual bool Increment(int steps) = 0;
    virtual double GetNormalized() const = 0;
    /// The position of zero in a range with two signs, otherwise 0: from where a value is shown to reach.
    virtual double GetOrigin() const { return 0; }
    /// @param position  limited to 0 to 1. Answers whether the value changed.
    virtual bool SetNormalized(double position) = 0;
    /// How many values there are, 0 for a continuum.
    virtual int GetStepCount() const = 0;
    virtual MContent CreateContentAtIndex(int index) const;
    /// Which of the values it has; 0 for a continuum.
    virtual int GetIndex() const;
    virtual bool SetIndex(int index);

    virtual void SetConverters(ToTextConverter toText, void* toTextContext, FromTextConverter fromText,
                               void* fromTextContext);
    /// Whether the value changed since ClearChanged.
    virtual bool HasChanged() const { return changed; }
    virtual void ClearChanged() { changed = false; }

protected:
    enum class TextResult
    {
        Refused,
        Unchanged,
        Changed
    };
    virtual TextResult TakeText(const MString& text) = 0;
    virtual double GetNumber() const = 0;
    /// Without clamping; answers whether it differs from before.
    virtual bool SetNumber(double number) = 0;

    static double LimitedPosition(double position);
    double PositionOfIndex(int index) const;
    MContent MakeContent(const MString& text) const;
    /// The converter's text for a number, or `ordinary`.
    MString DisplayTextOf(double number, const MString& ordinary) const;

    bool changed = false;

private:
    ToTextConverter toTextConverter = nullptr;
    void* toTextConverterContext = nullptr;
    FromTextConverter fromTextConverter = nullptr;
    void* fromTextConverterContext = nullptr;
};
