#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>

/// What libFuzzer calls with each input. Result: 0, as it asks for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// The input as bytes of its own, so that reading past its end is seen.
inline QByteArray inputBytes(const std::uint8_t *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), qsizetype(size)};
}

/// Ends the fuzzer, which keeps the input, unless @p holds.
inline void require(bool holds)
{
    if (!holds) {
        __builtin_trap();
    }
}
