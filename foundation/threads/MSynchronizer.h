// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Time-outs are milliseconds; this one waits for ever.
inline constexpr std::uint32_t InfiniteTimeout = ~std::uint32_t{ 0 };

/// A lock in its simplest form.
class MSynchronizer
{
public:
    MSynchronizer() = default;
    MSynchronizer(const MSynchronizer&) = delete;
    MSynchronizer& operator=(const MSynchronizer&) = delete;
    virtual ~MSynchronizer() = default;
    /// Answers 0 on success, anything else on failure.
    virtual int Acquire(std::uint32_t timeoutMs) = 0;
    /// Gives up one acquisition.
    virtual void Release() = 0;
};

/// Holds a synchronizer for a scope. Throws MException "Could not acquire mutex." if it can't be had in
/// the time. A null pointer holds nothing.
class MSynchronizerGuard
{
public:
    explicit MSynchronizerGuard(MSynchronizer& synchronizer, std::uint32_t timeoutMs = InfiniteTimeout);
    explicit MSynchronizerGuard(MSynchronizer* synchronizer, std::uint32_t timeoutMs = InfiniteTimeout);
    ~MSynchronizerGuard();
    MSynchronizerGuard(const MSynchronizerGuard&) = delete;
    MSynchronizerGuard& operator=(const MSynchronizerGuard&) = delete;

private:
    MSynchronizer* held;
};
