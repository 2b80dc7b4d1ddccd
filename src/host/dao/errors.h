#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/jet/format/error.h"
#include "platform/dao/exception.h"

// From the engine's errors to the exceptions of its classes.
namespace sg::dao {

[[noreturn]] inline void throwDao(int code, const std::vector<std::wstring>& names = {}) {
    throw new CDaoException(code, jet::errorText(code, names));
}

// The engine's text; of damage, which its text says nothing about, with the place.
inline std::wstring textOf(const jet::Error& error) {
    return error.code() == jet::Damaged ? error.describe() : error.text();
}

// Does `work`; an error of the engine leaves it as a CDaoException*.
template <class Work>
decltype(auto) guarded(Work&& work) {
    try {
        return std::forward<Work>(work)();
    } catch (const jet::Error& error) {
        throw new CDaoException(error.code(), textOf(error));
    }
}

}  // namespace sg::dao
