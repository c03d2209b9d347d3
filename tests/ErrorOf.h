// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "foundation/text/MException.h"

/// The text of the MException that the operation throws; empty when it throws none.
std::string ErrorOf(auto&& operation)
{
    try
    {
        operation();
    }
    catch (const MException& error)
    {
        return error.Message.ToUTF8();
    }
    return {};
}

/// The same behind the code and a blank.
std::string CodedErrorOf(auto&& operation)
{
    try
    {
        operation();
    }
    catch (const MException& error)
    {
        return std::to_string(error.Code) + " " + error.Message.ToUTF8();
    }
    return {};
}
