#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Korvex {

/// Finds the places of keys that are kept elsewhere, in a list, in constant time.
///
/// It knows a key by a hash and by its place in the list; whether a place really holds the key that
/// is looked for is for the caller to say. What makes it grow may throw `std::bad_alloc`, and then
/// nothing has changed.
class SlotTable {
public:
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    /// The place of a key, or `none`.
    /// \param matches Tells whether a place holds the key.
    template <class Matches>
    [[nodiscard]] std::uint32_t find(std::uint32_t hash, Matches matches) const {
        if (table.empty())
            return none;
        for (std::size_t at = start(hash); table[at].place != none; at = next(at)) {
            if (table[at].hash == hash && matches(table[at].place))
                return table[at].place;
        }
        return none;
    }

    /// Adds a key that is not there yet.
    void insert(std::uint32_t hash, std::uint32_t place) {
        if ((used + 1) * 2 > table.size())
            grow();
        put({place, hash});
        ++used;
    }

    /// Takes a key out.
    void erase(std::uint32_t hash, std::uint32_t place) {
        std::size_t hole = slotOf(hash, place);
        // What follows without a gap may only have been pushed there by what goes: close the ranks.
        for (std::size_t at = next(hole); table[at].place != none; at = next(at)) {
            const std::size_t home = start(table[at].hash);
            if (((at - home) & mask()) >= ((at - hole) & mask())) {
                table[hole] = table[at];
                hole = at;
            }
        }
        table[hole].place = none;
        --used;
    }

    /// A key has moved in the list.
    void move(std::uint32_t hash, std::uint32_t from, std::uint32_t to) {
        table[slotOf(hash, from)].place = to;
    }

    /// Makes room for this many keys.
    void reserve(std::size_t count) {
        while (count * 2 > table.size())
            grow();
    }

    void clear() {
        table.clear();
        used = 0;
    }

private:
    struct Slot {
        std::uint32_t place = none;
        std::uint32_t hash = 0;
    };

    static constexpr std::size_t smallest = 16;

    [[nodiscard]] std::size_t mask() const { return table.size() - 1; }
    [[nodiscard]] std::size_t next(std::size_t at) const { return (at + 1) & mask(); }
    [[nodiscard]] std::size_t start(std::uint32_t hash) const {
        constexpr std::uint32_t spread = 0x9E3779B1;
        return ((hash * spread) ^ ((hash * spread) >> 15)) & mask();
    }
    [[nodiscard]] std::size_t slotOf(std::uint32_t hash, std::uint32_t place) const {
        std::size_t at = start(hash);
        while (table[at].place != place)
            at = next(at);
        return at;
    }

    void put(Slot slot) {
        std::size_t at = start(slot.hash);
        while (table[at].place != none)
            at = next(at);
        table[at] = slot;
    }

    void grow() {
        std::vector<Slot> old(table.empty() ? smallest : table.size() * 2);
        old.swap(table);
        for (const Slot& slot : old) {
            if (slot.place != none)
                put(slot);
        }
    }

    std::vector<Slot> table; // a power of two of them, at most half in use
    std::size_t used = 0;
};

} // namespace Korvex
