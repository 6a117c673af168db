#pragma once

#include "platform/replaceable.h"
#include "platform/volumetable.h"

#include <map>

namespace KxTest {

inline Korvex::VolumeBacking onDevice(std::string device) {
    return {0, false, std::move(device)};
}

/// A table of what a test says. It is in force while it lives.
class FakeVolumeTable final : public Korvex::VolumeTable {
public:
    std::vector<Korvex::Volume> volumes() override {
        ++reads;
        return list;
    }

    std::optional<Place> placeOf(const char* path) override {
        asked.emplace_back(path);
        const auto found = places.find(path);
        return found == places.end() ? std::nullopt : std::optional(found->second);
    }

    /// Adds a local volume. \return It, valid until the next one is added.
    Korvex::Volume& add(const QString& name, const std::string& device,
                        const std::string& root = "/Volumes/Some") {
        Korvex::Volume volume;
        volume.reference = -100 - static_cast<int>(list.size());
        volume.name = name;
        volume.backing = onDevice(device);
        volume.root = root;
        list.push_back(volume);
        return list.back();
    }
    Korvex::Volume& addNetworked(const QString& name) {
        Korvex::Volume& volume = add(name, "");
        volume.backing.isNetworked = true;
        return volume;
    }
    Korvex::Volume& addBroken(int error) {
        Korvex::Volume& volume = add("broken", "");
        volume.error = error;
        return volume;
    }

    std::vector<Korvex::Volume> list;
    std::map<std::string, Place> places; ///< What exists
    std::vector<std::string> asked;      ///< Paths, in order
    int reads = 0;

private:
    Korvex::Replacement<Korvex::VolumeTable> inForce{*this};
};

} // namespace KxTest
