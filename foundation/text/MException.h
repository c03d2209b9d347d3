// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MString.h"

/// The families of `MException::Code`.
enum class MErrorCode : int
{
    General = 0,
    BadCall = 1,
    InvalidArgument = 2,
    Content = 256,   ///< stream or data content
    CannotOpen = 257,
    NotInitialized = 258,
    Network = 512,
    Http = 513,
    Drawing = 768
};

/// The one exception type of the system.
class MException
{
public:
    explicit MException(const MString& message, MErrorCode code = MErrorCode::General);
    MException(const MException&) = default;
    MException& operator=(const MException&) = default;
    virtual ~MException() = default;

    MString Title;   ///< empty in everything that the system throws
    MString Message;   ///< the text for the user
    int Code = 0;
};

/// The system's description of an `errno` value, "No error description available." when it has none.
MString SystemErrorText(int errorNumber);
