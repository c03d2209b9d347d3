// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "control/values/MValue.h"

/// Gives another value, which it owns, a different shape of its positions. Everything else is the inner
/// value's, its stored form included.
class MValueScale : public MValue
{
public:
    explicit MValueScale(std::unique_ptr<MValue> innerValue) : inner(std::move(innerValue)) {}
    MValue& Inner() { return *inner; }

    MString GetText() const override { return inner->GetText(); }
    void SetText(const MString& text) override { inner->SetText(text); }
    void SetDefault() override { inner->SetDefault(); }
    void Store(MAttribute& item) override { inner->Store(item); }
    void Load(MAttribute& item) override { inner->Load(item); }
    void LoadDefinition(MAttribute& item) override { inner->LoadDefinition(item); }
    const MCharFilter& GetCharFilter() const override { return inner->GetCharFilter(); }
    MString GetDisplayText() const override { return inner->GetDisplayText(); }
    MString ToText() const override { return inner->ToText(); }
    MContent CreateContent() const override { return inner->CreateContent(); }
    bool SetDisplayText(const MString& text) override { return inner->SetDisplayText(text); }
    bool FromText(const MString& text) override { return inner->FromText(text); }
    void Clamp() override { inner->Clamp(); }
    bool Step(int direction, int acceleration) override { return inner->Step(direction, acceleration); }
    bool Increment(int steps) override { return inner->Increment(steps); }
    int GetStepCount() const override { return inner->GetStepCount(); }
    MContent CreateContentAtIndex(int index) const override { return inner->CreateContentAtIndex(index); }
    int GetIndex() const override { return inner->GetIndex(); }
    bool SetIndex(int index) override { return inner->SetIndex(index); }
    void SetConverters(ToTextConverter toText, void* toTextContext, FromTextConverter fromText,
                       void* fromTextContext) override
    {
        inner->SetConverters(toText, toTextContext, fromText, fromTextContext);
    }
    bool HasChanged() const override { return inner->HasChanged(); }
    void ClearChanged() override { inner->ClearChanged(); }

    MContent CreateContentAt(double position) const override
    {
        return inner->CreateContentAt(ToInner(LimitedPosition(position)));
    }
    double GetNormalized() const override { return FromInner(inner->GetNormalized()); }
    bool SetNormalized(double position) override
    {
        return inner->SetNormalized(ToInner(LimitedPosition(position)));
    }

protected:
    virtual double ToInner(double position) const = 0;
    virtual double FromInner(double position) const = 0;

    // Only the inner value's own operations need these.
    TextResult TakeText(const MString& text) override;
    double GetNumber() const override;
    bool SetNumber(double number) override;

private:
    std::unique_ptr<MValue> inner;
};

/// The inner position is the Power-th power of this one's.
template <int Power>
class MValueScalePower : public MValueScale
{
    static_assert(Power == 2 || Power == 4);

public:
    using MValueScale::MValueScale;

protected:
    double ToInner(double position) const override;
    double FromInner(double position) const override;
};

using MValueScaleSqr = MValueScalePower<2>;

extern template class MValueScalePower<2>;
extern template class MValueScalePower<4>;
