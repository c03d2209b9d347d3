// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Root of every class that is owned through a base pointer. Its only virtual operation is the destructor.
class MObject
{
public:
    MObject() = default;
    MObject(const MObject&) = default;
    MObject& operator=(const MObject&) = default;
    virtual ~MObject() = default;
};
