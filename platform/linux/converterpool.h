#pragma once

#include "platform/linux/converter.h"

#include <array>
#include <atomic>
#include <memory>

namespace Korvex {

/// Converters that are open and wait for their next use. They belong to no thread, so that none is
/// left behind when a thread ends or the library is unloaded.
class ConverterPool {
public:
    constexpr ConverterPool() = default;

    ConverterPool(const ConverterPool&) = delete;
    ConverterPool& operator=(const ConverterPool&) = delete;

    /// A converter that nobody else uses; null when there is none.
    [[nodiscard]] std::unique_ptr<Converter> take();
    /// Keeps a converter for its next use, or closes it.
    void giveBack(std::unique_ptr<Converter> converter);
    /// Closes all that are kept.
    void clear();

private:
    std::array<std::atomic<Converter*>, 4> idle{};
};

/// A converter out of a pool for the length of one conversion.
class PooledConverter {
public:
    /// The arguments are those of \ref Converter, the same for every use of a pool.
    PooledConverter(ConverterPool& pool, const char* to, const char* from,
                    const char* locale = nullptr);
    ~PooledConverter();

    PooledConverter(const PooledConverter&) = delete;
    PooledConverter& operator=(const PooledConverter&) = delete;

    /// Null when the system does not know one of the encodings, or has no memory.
    [[nodiscard]] Converter* get() const { return converter.get(); }

private:
    ConverterPool& home;
    std::unique_ptr<Converter> converter;
};

} // namespace Korvex
