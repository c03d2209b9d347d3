// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MException.h"

#include <system_error>

MException::MException(const MString& message, MErrorCode code)
    : Message(message), Code(static_cast<int>(code))
{
}

MString SystemErrorText(int errorNumber)
{
    const std::string description = std::generic_category().message(errorNumber);
    if (errorNumber == 0 || description.empty())
        return "No error description available.";
    return MString::FromUTF8(description);
}
