#pragma once
// The exception of type E that f throws, or nothing when it throws none: for
// checks of what an exception carries.
#include <optional>

template <typename E, typename F> std::optional<E> thrown(F &&f)
{
    try {
        f();
    } catch (const E &e) {
        return e;
    }
    return std::nullopt;
}
