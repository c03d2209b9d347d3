// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/AnalyzerClient.h"

AnalyzerClient::Registration::Registration(AnalyzerClient& heard, Listener& called)
    : client(&heard), listener(called)
{
    const MSynchronizerGuard guard(heard);
    heard.registrations.push_back(this);
}

AnalyzerClient::Registration::~Registration()
{
    if (client == nullptr)
        return;
    const MSynchronizerGuard guard(*client);
    std::erase(client->registrations, this);
}

AnalyzerClient::~AnalyzerClient()
{
    for (Registration* registration : registrations)
        registration->client = nullptr;
}

void AnalyzerClient::TellListeners()
{
    for (Registration* registration : registrations)
        registration->listener.OnFrame(*this);
}
