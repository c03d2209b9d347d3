// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "foundation/text/MObject.h"
#include "foundation/text/MString.h"

class MAttribute;

/// What stores itself as one attribute of an item, named `Name`.
class MStorable : public MObject
{
public:
    explicit MStorable(const MString& name = {}) : Name(name) {}

    virtual MString GetText() const;
    virtual void SetText(const MString& text);
    virtual void SetDefault();
    virtual void Store(MAttribute& item);
    /// SetText with the attribute, SetDefault without one.
    virtual void Load(MAttribute& item);

    MString Name;

    /// Another object that goes with this one, such as the one whose variable it binds. Held alone stays its
    /// owner's; kept dies with this one, after it.
    void Hold(MObject* object);
    void Keep(std::unique_ptr<MObject> object);
    /// Null without one.
    MObject* Held() const { return held; }

private:
    std::unique_ptr<MObject> kept;
    MObject* held = nullptr;
};
