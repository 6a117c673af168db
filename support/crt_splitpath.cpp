#include <KxQts/errors.h>
#include <KxQts/winapi/crt.h>

#include "support/crt_text.h"

#include <array>
#include <cerrno>
#include <string_view>

namespace Crt = Korvex::Crt;
namespace Error = Korvex::Error;

namespace {

/// Where one part of a path goes.
template <class Char>
struct Output {
    Char* text; ///< Null when the part is not wanted
    size_t size;

    [[nodiscard]] bool hasRoomFor(std::basic_string_view<Char> part) const {
        return !text || part.size() < size;
    }
    void set(std::basic_string_view<Char> part) const {
        if (text)
            text[part.copy(text, part.size())] = Char();
    }
};

/// The parts in the order in which a path shows them.
template <class Char>
using Parts = std::array<std::basic_string_view<Char>, 4>;
template <class Char>
using Outputs = std::array<Output<Char>, 4>;

enum Part { Drive, Directory, Name, Extension };

/// Characters of "/Volumes" that are skipped to get at the drive. The drive begins inside the
/// prefix, not behind it: callers know `umes` for what it is.
constexpr size_t beforeDrive = 4;

/// Takes the drive off the text.
/// \return False when nothing is left to split.
template <class Char>
bool takeDrive(std::basic_string_view<Char>& text, Parts<Char>& parts) {
    constexpr Char separator = Crt::PathMarks<Char>::separator;
    if (!text.starts_with(separator))
        return true;
    if (!text.starts_with(Crt::PathMarks<Char>::volumes))
        return text.rfind(separator) != 0; // right below the root there are no parts
    text.remove_prefix(beforeDrive);
    const size_t end = text.find(separator);
    parts[Drive] = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    return end != text.npos;
}

template <class Char>
void splitFileName(std::basic_string_view<Char> file, Parts<Char>& parts) {
    const size_t mark = file.find(Crt::PathMarks<Char>::extension);
    parts[Name] = file.substr(0, mark);
    if (mark != file.npos)
        parts[Extension] = file.substr(mark + 1);
}

template <class Char>
Parts<Char> partsOf(const Char* path) {
    Parts<Char> parts;
    std::basic_string_view<Char> text(path);
    if (!takeDrive(text, parts))
        return parts;
    const size_t separator = text.rfind(Crt::PathMarks<Char>::separator);
    if (separator != text.npos) {
        parts[Directory] = text.substr(0, separator);
        text.remove_prefix(separator + 1);
    }
    splitFileName(text, parts);
    return parts;
}

/// Empties the outputs. \return False at the first that has no room even for that.
template <class Char>
bool clear(const Outputs<Char>& outputs) {
    for (const Output<Char>& output : outputs) {
        if (!output.hasRoomFor({}))
            return false;
        output.set({});
    }
    return true;
}

template <class Char>
errno_t split(const Char* path, const Outputs<Char>& outputs) {
    if (!clear(outputs) || !path)
        return errno = Error::InvalidArgument;
    const Parts<Char> parts = partsOf(path);
    for (size_t i = 0; i < parts.size(); ++i) {
        if (!outputs[i].hasRoomFor(parts[i]))
            return errno = Error::OutOfRange;
    }
    for (size_t i = 0; i < parts.size(); ++i)
        outputs[i].set(parts[i]);
    return errno = Error::None;
}

} // namespace

errno_t _splitpath_s(const char* path, char* drive, size_t driveSize, char* dir, size_t dirSize,
                     char* fname, size_t fnameSize, char* ext, size_t extSize) {
    return split<char>(path,
                       {{{drive, driveSize}, {dir, dirSize}, {fname, fnameSize}, {ext, extSize}}});
}

errno_t _wsplitpath_s(const wchar_t* path, wchar_t* drive, size_t driveSize, wchar_t* dir,
                      size_t dirSize, wchar_t* fname, size_t fnameSize, wchar_t* ext,
                      size_t extSize) {
    return split<wchar_t>(
        path, {{{drive, driveSize}, {dir, dirSize}, {fname, fnameSize}, {ext, extSize}}});
}

void _splitpath(const char* path, char* drive, char* dir, char* fname, char* ext) {
    _splitpath_s(path, drive, _MAX_DRIVE, dir, _MAX_DIR, fname, _MAX_FNAME, ext, _MAX_EXT);
}

void _wsplitpath(const wchar_t* path, wchar_t* drive, wchar_t* dir, wchar_t* fname, wchar_t* ext) {
    _wsplitpath_s(path, drive, _MAX_DRIVE, dir, _MAX_DIR, fname, _MAX_FNAME, ext, _MAX_EXT);
}
