// The C runtime's paths, narrow and wide, with any parts, sizes and null pointers: what is taken
// apart is the path, what is put together fits or leaves no trace, and `errno` is the result.

#include "common/input.h"
#include "common/require.h"
#include "common/room.h"

#include <KxQts/winapi/crt.h>

#include <array>
#include <cerrno>
#include <memory>
#include <optional>

using KxFuzz::Input;
using KxFuzz::require;
using KxFuzz::Room;

namespace {

constexpr int untouched = -77;

struct Narrow {
    using Char = char;
    static constexpr auto split = _splitpath;
    static constexpr auto splitChecked = _splitpath_s;
    static constexpr auto make = _makepath;
    static constexpr auto makeChecked = _makepath_s;
    static std::string from(const std::string& bytes) { return bytes; }
};

struct Wide {
    using Char = wchar_t;
    static constexpr auto split = _wsplitpath;
    static constexpr auto splitChecked = _wsplitpath_s;
    static constexpr auto make = _wmakepath;
    static constexpr auto makeChecked = _wmakepath_s;
    static std::wstring from(const std::string& bytes) {
        std::wstring text(bytes.size(), L'\0');
        std::transform(bytes.begin(), bytes.end(), text.begin(), [](char byte) {
            return static_cast<wchar_t>(static_cast<unsigned char>(byte) * 0x101U);
        });
        return narrowMarks(text);
    }

private:
    /// The characters that mean something stay what they are.
    static std::wstring narrowMarks(std::wstring text) {
        for (wchar_t& character : text) {
            if (const wchar_t low = character & 0xFF; low < 0x80)
                character = low;
        }
        return text;
    }
};

template <class Form>
using Text = std::basic_string<typename Form::Char>;
template <class Form>
using Parts = std::array<Text<Form>, 4>; // drive, directory, name, extension

template <class Form>
Text<Form> literal(const char* ascii) {
    return Form::from(ascii);
}

/// What the parts of a path are, as plainly as it can be written.
template <class Form>
Parts<Form> partsOf(Text<Form> path) {
    Parts<Form> parts;
    const auto volumes = literal<Form>("/Volumes");
    if (path.starts_with(volumes)) {
        const std::size_t end = std::min(path.find('/', volumes.size() - 4), path.size());
        parts[0] = path.substr(4, end - 4);
        path.erase(0, std::min(end + 1, path.size()));
    } else if (path.rfind('/') == 0) {
        return parts;
    }
    const std::size_t slash = path.rfind('/');
    if (slash != path.npos)
        parts[1] = path.substr(0, slash);
    path.erase(0, slash + 1);
    const std::size_t dot = path.find('.');
    parts[2] = path.substr(0, dot);
    parts[3] = dot == path.npos ? Text<Form>() : path.substr(dot + 1);
    return parts;
}

/// An output of a split: null when it is not wanted.
template <class Form>
struct Output {
    Output(std::size_t withSize, bool isWanted) : size(withSize), wanted(isWanted), room(size) {}

    [[nodiscard]] typename Form::Char* get() { return wanted ? room.get() : nullptr; }
    [[nodiscard]] bool fits(const Text<Form>& text) const { return !wanted || text.size() < size; }
    void requireHolds(const Text<Form>& text) const {
        if (wanted)
            require(room.text() == text);
        room.requireUntouchedFrom(wanted ? text.size() + 1 : 0);
    }

    std::size_t size;
    bool wanted;
    Room<typename Form::Char> room;
};

template <class Form>
using Outputs = std::array<Output<Form>, 4>;

template <class Form>
void requireSplit(const Outputs<Form>& outputs, const Text<Form>& path, int result) {
    const Parts<Form> parts = partsOf<Form>(path);
    bool isRefused = false;
    bool fits = true;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        isRefused = isRefused || !outputs[i].fits(Text<Form>());
        fits = fits && outputs[i].fits(parts[i]);
    }
    require(result == (isRefused ? 22 : fits ? 0 : 34));
    if (isRefused)
        return;
    for (std::size_t i = 0; i < parts.size(); ++i)
        outputs[i].requireHolds(fits ? parts[i] : Text<Form>());
}

template <class Form>
void checkSplit(const std::string& bytes, const std::array<std::size_t, 4>& sizes,
                unsigned wanted) {
    const Text<Form> path = Form::from(bytes);
    const auto output = [&](std::size_t i) {
        return Output<Form>(sizes[i], (wanted >> i & 1) != 0);
    };
    Outputs<Form> out{output(0), output(1), output(2), output(3)};
    errno = untouched;
    const int result = Form::splitChecked(path.c_str(), out[0].get(), sizes[0], out[1].get(),
                                          sizes[1], out[2].get(), sizes[2], out[3].get(), sizes[3]);
    require(errno == result);
    requireSplit<Form>(out, path, result);
    Outputs<Form> most{
        {{_MAX_DRIVE, true}, {_MAX_DIR, true}, {_MAX_FNAME, true}, {_MAX_EXT, true}}};
    Form::split(path.c_str(), most[0].get(), most[1].get(), most[2].get(), most[3].get());
    requireSplit<Form>(most, path, errno);
}

/// A part of a path to be made; null for none.
template <class Form>
struct Given {
    explicit Given(const std::optional<std::string>& bytes)
        : text(bytes ? Form::from(*bytes) : Text<Form>()), isGiven(bytes) {}
    [[nodiscard]] const typename Form::Char* get() const {
        return isGiven ? text.c_str() : nullptr;
    }

    Text<Form> text;
    bool isGiven;
};

using Pieces = std::array<std::optional<std::string>, 4>;

template <class Form>
void checkMade(const Pieces& pieces, std::size_t size) {
    const std::array<Given<Form>, 4> given{Given<Form>(pieces[0]), Given<Form>(pieces[1]),
                                           Given<Form>(pieces[2]), Given<Form>(pieces[3])};
    std::size_t most = 8;
    for (const Given<Form>& part : given)
        most += part.text.size();
    const auto make = [&](auto call, auto... room) {
        errno = untouched;
        return call(room..., given[0].get(), given[1].get(), given[2].get(), given[3].get());
    };
    Room<typename Form::Char> plain(most), whole(most), cut(size);
    require(make(Form::make, plain.get()) == plain.get() && errno == untouched);
    require(make(Form::makeChecked, whole.get(), most) == 0 && errno == 0);
    const auto text = whole.text();
    plain.requireUntouchedFrom(plain.text().size() + 1);
    whole.requireUntouchedFrom(text.size() + 1);
    // Without a drive the checked form is relative, and it ends a name with a dot.
    const Text<Form> slash = literal<Form>(given[0].text.empty() ? "/" : "");
    const Text<Form> absolute = slash + Text<Form>(text);
    require(absolute == plain.text() || absolute == Text<Form>(plain.text()) + literal<Form>("."));

    const int result = make(Form::makeChecked, cut.get(), size);
    require(result == (text.size() < size ? 0 : 22) && errno == result);
    if (result == 0)
        require(cut.text() == text);
    cut.requireUntouchedFrom(result == 0 ? text.size() + 1 : 0);
}

/// A path that has all parts but a drive is what is made of its parts.
template <class Form>
void checkRoundTrip(const std::string& bytes) {
    const Text<Form> path = Form::from(bytes);
    const Parts<Form> parts = partsOf<Form>(path);
    const auto separator = literal<Form>("/");
    if (!parts[0].empty() || parts[1].empty() || parts[1].starts_with(separator) ||
        parts[1].ends_with(separator) || parts[2].empty() || parts[3].empty() ||
        parts[3].starts_with(literal<Form>(".")))
        return;
    Room<typename Form::Char> room(path.size() + 1);
    require(Form::makeChecked(room.get(), path.size() + 1, nullptr, parts[1].c_str(),
                              parts[2].c_str(), parts[3].c_str()) == 0);
    require(room.text() == path);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const auto shape = input.number<std::uint8_t>();
    std::array<std::size_t, 4> sizes{};
    for (std::size_t& one : sizes)
        one = input.number<std::uint8_t>();
    const std::string path = input.text();
    Pieces pieces;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if ((shape >> (i + 4) & 1) == 0)
            pieces[i] = input.text();
    }
    checkSplit<Narrow>(path, sizes, ~shape & 15U);
    checkSplit<Wide>(path, sizes, ~shape & 15U);
    checkRoundTrip<Narrow>(path);
    checkRoundTrip<Wide>(path);
    checkMade<Narrow>(pieces, sizes[0]);
    checkMade<Wide>(pieces, sizes[0]);
    return 0;
}
