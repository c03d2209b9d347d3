// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

/// What open tags have set: the top rules, the bottom is never popped. A tag is known by an address of its
/// own; what it closes is the top, if it was opened at all. Inside of a table's cell the tags that were open
/// before it can't be closed, and those that it leaves open end with it.
template <typename T>
class STMLStack
{
public:
    explicit STMLStack(T bottom)
    {
        values.push_back(std::move(bottom));
        OpenScope();
    }

    const T& Top() const { return values.back(); }
    void Push(const void* tag, T value)
    {
        values.push_back(std::move(value));
        ++OpenCount(tag);
    }
    /// False: the tag isn't open.
    bool Pop(const void* tag)
    {
        int& count = OpenCount(tag);
        if (count == 0)
            return false;
        --count;
        values.pop_back();
        return true;
    }
    void OpenScope() { scopes.push_back({ values.size(), {} }); }
    void CloseScope()
    {
        while (values.size() > scopes.back().floor)
            values.pop_back();
        scopes.pop_back();
    }

private:
    struct OpenTag
    {
        const void* tag = nullptr;
        int count = 0;
    };
    struct Scope
    {
        std::size_t floor = 0;   // values below it were there before
        std::vector<OpenTag>
            open;   // few: there are few tags, and counting them needs no search of the stack
    };

    int& OpenCount(const void* tag)
    {
        std::vector<OpenTag>& open = scopes.back().open;
        const auto found =
            std::find_if(open.begin(), open.end(), [tag](const OpenTag& known) { return known.tag == tag; });
        return found != open.end() ? found->count : open.emplace_back(OpenTag{ tag, 0 }).count;
    }

    std::vector<T> values;
    std::vector<Scope> scopes;
};
