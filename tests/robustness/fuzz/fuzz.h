#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>

/// libFuzzer calls this with each input. Returns 0, as libFuzzer requires.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// A copy of the input, so that AddressSanitizer notices reads past its end.
inline QByteArray inputBytes(const std::uint8_t *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), qsizetype(size)};
}

/// Crashes unless @p holds. libFuzzer then stores the input.
inline void require(bool holds)
{
    if (!holds) {
        __builtin_trap();
    }
}
