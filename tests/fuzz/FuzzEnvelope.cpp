// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: control/envelope
// A stored curve, as XML: it is loaded, compiled and evaluated. Whatever the file says, the values have
// to be numbers.
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "control/envelope/MEnvelope.h"
#include "control/envelope/MEnvelopeComputer.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"
#include "state/tree/XML.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > (1u << 16))
        return 0;
    MAttribute item;
    MEnvelope envelope;
    envelope.StoresLimits = true;
    try
    {
        MMemoryStream stream = MMemoryStream::Borrow(data, static_cast<std::int32_t>(size));
        ReadXML(item, stream);
        MStoreParams params;
        params.item = &item;
        envelope.Store(params);
        MEnvelopeComputer computer(envelope);
        const double width = envelope.MaxX() - envelope.MinX();
        for (int index = -2; index < 66; ++index)
        {
            const double value = computer.Value(envelope.MinX() + width * index / 64.0);
            // Limits of astronomic size overflow in the formulas; ordinary ones never may.
            const bool isOrdinary = std::fabs(envelope.MinX()) < 1e9 && std::fabs(envelope.MaxX()) < 1e9 &&
                                    std::fabs(envelope.MinY()) < 1e9 && std::fabs(envelope.MaxY()) < 1e9;
            if (isOrdinary && !std::isfinite(value))
                std::abort();
        }
        float values[256];
        computer.Rewind(envelope.MinX());
        computer.Fill(values, envelope.MinX(), width > 0.0 ? width / 100.0 : 0.01, 256);
        params.saving = 1;
        envelope.Store(params);
    }
    catch (const MException&)
    {
    }
    return 0;
}
