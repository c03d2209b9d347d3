// SPDX-License-Identifier: GPL-3.0-or-later
// The values that documents can name.
#include <limits>

#include "control/values/MValueEnum.h"
#include "control/values/MValueFrequency.h"
#include "control/values/MValueNumber.h"
#include "control/values/MValueQuantities.h"
#include "foundation/containers/MThread.h"
#include "foundation/module/MLocale.h"
#include "gui/controls/StyleNames.h"
#include "gui/loader/MXmlLoader.h"

namespace
{
template <typename V>
std::unique_ptr<MValue> Made()
{
    return std::make_unique<V>();
}

/// Numbers of a whole type, as long as the document gives no range.
template <typename V, typename Number>
std::unique_ptr<MValue> MadeWhole()
{
    return std::make_unique<V>(nullptr, std::numeric_limits<Number>::min(),
                               std::numeric_limits<Number>::max(), Number{ 0 });
}

template <typename V>
std::unique_ptr<MValue> MadeReal()
{
    return std::make_unique<V>(nullptr, 0.0, 1.0, 0.0);
}
}   // namespace

void MXmlLoader::AddValues()
{
    AddValue("int32", &MadeWhole<MValueInt, std::int32_t>);
    AddValue("int64", &MadeWhole<MValueInt64, std::int64_t>);
    AddValue("int16", &MadeWhole<MValueShort, std::int16_t>);
    AddValue("float", &MadeReal<MValueFloat>);
    AddValue("double", &MadeReal<MValueDouble>);
    AddValue("stepdouble",
             []() -> std::unique_ptr<MValue>
             { return std::make_unique<MValueStepDouble>(nullptr, 0.0, 1.0, 0.0, 0.0); });
    AddValue("percents", &Made<MValuePercents>);
    AddValue("frequency", &Made<MValueFrequency>);
    AddValue("frequencylog", &Made<MValueFrequencyLog>);
    AddValue("frequencylinear", &Made<MValueFrequencyLinear>);
    AddValue("volume", &Made<MValueVolume>);
    AddValue("panorama", &Made<MValuePan>);
    AddValue("pitch", &Made<MValuePitch>);
    AddValue("timems", &Made<MValueTimeMS>);
    AddValue("stdicon", &Made<MValueEnum<MStdIcon>>);
    AddValue("stdbitmap", &Made<MValueEnum<MStdBitmap>>);
    AddValue("stdcursor", &Made<MValueEnum<MStdCursor>>);
    AddValue("stdfont", &Made<MValueEnum<MStdFont>>);
    AddValue("stdcolor", &Made<MValueEnum<MStdColor>>);
    AddValue("horizontalobjectlayout", &Made<MValueEnum<MHorizontalObjectLayout>>);
    AddValue("verticalobjectlayout", &Made<MValueEnum<MVerticalObjectLayout>>);
    AddValue("language", &Made<MValueEnum<MLocale::Language>>);
    AddValue("country", &Made<MValueEnum<MLocale::Country>>);
    AddValue("threadpriority", &Made<MValueEnum<MThread::Priority>>);
    AddValue("controltype", &Made<MValueEnum<MControlType>>);
    AddValue("captiontype", &Made<MValueEnum<MCaptionType>>);
    AddValue("modalvalue", &Made<MValueEnum<MModalValue>>);
    AddValue("checkboxstate", &Made<MValueEnum<MCheckBoxState>>);
}
