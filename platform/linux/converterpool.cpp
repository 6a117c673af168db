#include "platform/linux/converterpool.h"

#include <new>
#include <utility>

namespace Korvex {

std::unique_ptr<Converter> ConverterPool::take() {
    for (std::atomic<Converter*>& place : idle) {
        if (Converter* found = place.exchange(nullptr, std::memory_order_acquire))
            return std::unique_ptr<Converter>(found);
    }
    return nullptr;
}

void ConverterPool::giveBack(std::unique_ptr<Converter> converter) {
    for (std::atomic<Converter*>& place : idle) {
        Converter* none = nullptr;
        if (place.compare_exchange_strong(none, converter.get(), std::memory_order_release,
                                          std::memory_order_relaxed)) {
            (void)converter.release();
            return;
        }
    }
}

void ConverterPool::clear() {
    while (take()) {
    }
}

PooledConverter::PooledConverter(ConverterPool& pool, const char* to, const char* from,
                                 const char* locale)
    : home(pool), converter(pool.take()) {
    if (!converter)
        converter.reset(new (std::nothrow) Converter(to, from, locale));
    if (converter && !converter->isOpen())
        converter = nullptr;
}

PooledConverter::~PooledConverter() {
    if (!converter)
        return;
    // A conversion that failed leaves a part of the text behind in the converter.
    converter->reset();
    home.giveBack(std::move(converter));
}

} // namespace Korvex
