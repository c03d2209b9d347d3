// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MControlInvalidator.h"

#include <utility>

#include "foundation/text/Boundary.h"
#include "gui/controls/MControlInvalidatorThread.h"
#include "gui/controls/MWindows.h"

MControlInvalidator::MControlInvalidator(MControl& invalidated) : control(invalidated)
{
    onInvalidate.AddHandler<&MControlInvalidator::OnInvalidateHandler>(*this);
    AtBoundary("MControlInvalidator::MControlInvalidator",
               [this]
               {
                   if (MWindows* windows = MWindows::Get())
                       windows->Invalidators().Add(*this);
               });
}

MControlInvalidator::~MControlInvalidator()
{
    AtBoundary("MControlInvalidator::~MControlInvalidator",
               [this]
               {
                   if (MWindows* windows = MWindows::Get())
                       windows->Invalidators().Remove(*this);
               });
}

void MControlInvalidator::Invalidate(const MRectangle& part)
{
    bool first;
    {
        const MSynchronizerGuard guard(lock);
        first = rect.IsEmpty();
        rect = rect.Union(part);
    }
    MWindows* windows = MWindows::Get();
    if (first && windows != nullptr)
        windows->Invalidators().Wake();
}

bool MControlInvalidator::Process()
{
    return AtBoundary("MControlInvalidator::Process", false,
                      [this]
                      {
                          const MSynchronizerGuard guard(lock);
                          if (rect.IsEmpty())
                              return false;
                          return onInvalidate.Post(GlobalEventProcessor(), {});
                      });
}

void MControlInvalidator::OnInvalidateHandler(const MOnNotifyParams&)
{
    AtBoundary("MControlInvalidator::OnInvalidateHandler",
               [this]
               {
                   MRectangle part;
                   {
                       const MSynchronizerGuard guard(lock);
                       part = std::exchange(rect, {});
                   }
                   if (!part.IsEmpty())
                       control.Invalidate(part);
               });
}
