#pragma once

#include <KxQts/registry/prefs.h>

namespace Korvex {

/// Uses an open key while another thread may close it: the key is freed when the last user has
/// finished.
class OpenKey {
public:
    /// \param handle Any pointer.
    explicit OpenKey(void* handle);
    ~OpenKey();

    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    /// False when the handle is no open key.
    explicit operator bool() const { return key != nullptr; }
    WPrefs* operator->() const { return key; }
    [[nodiscard]] WPrefs* get() const { return key; }

private:
    WPrefs* key = nullptr;
};

} // namespace Korvex
