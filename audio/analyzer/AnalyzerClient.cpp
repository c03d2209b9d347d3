// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/AnalyzerClient.h"

#include <algorithm>

#include "foundation/text/MException.h"

AnalyzerClient::Listener::~Listener()
{
    while (!clients.empty())
        clients.back()->RemoveListener(*this);
}

AnalyzerClient::~AnalyzerClient()
{
    for (Listener* listener : listeners)
        std::erase(listener->clients, this);
}

void AnalyzerClient::AddListener(Listener& listener)
{
    const MSynchronizerGuard guard(*this);
    listeners.push_back(&listener);
    listener.clients.push_back(this);
}

void AnalyzerClient::RemoveListener(Listener& listener)
{
    const MSynchronizerGuard guard(*this);
    const auto found = std::find(listeners.begin(), listeners.end(), &listener);
    if (found == listeners.end())
        throw MException("Index out of range.");
    listeners.erase(found);
    listener.clients.erase(std::find(listener.clients.begin(), listener.clients.end(), this));
}
