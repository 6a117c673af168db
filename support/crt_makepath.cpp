#include <KxQts/errors.h>
#include <KxQts/winapi/crt.h>

#include "support/crt_text.h"

#include <cerrno>
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>

namespace Crt = Korvex::Crt;
namespace Error = Korvex::Error;

namespace {

template <class Char>
using Marks = Crt::PathMarks<Char>;

template <class Char>
struct Parts {
    std::basic_string_view<Char> drive, directory, name, extension;
};

/// Null counts as empty.
template <class Char>
std::basic_string_view<Char> viewOf(const Char* text) {
    return text ? std::basic_string_view<Char>(text) : std::basic_string_view<Char>();
}

template <class Char>
std::basic_string_view<Char> without(Char leading, std::basic_string_view<Char> text) {
    text.remove_prefix(text.starts_with(leading) ? 1 : 0);
    return text;
}

/// A path under construction, terminated at all times.
template <class Char>
class Path {
public:
    /// \param size Room in \a buffer, at least 1
    Path(Char* buffer, size_t size) : text(buffer), left(size - 1) { *text = Char(); }

    void append(std::basic_string_view<Char> part) {
        if (part.size() > left) {
            fits = false;
            return;
        }
        part.copy(text + length, part.size());
        length += part.size();
        left -= part.size();
        text[length] = Char();
    }

    /// Appends a mark unless the path ends with one.
    void endWith(Char mark) {
        if (length == 0 || text[length - 1] != mark)
            append({&mark, 1});
    }

    [[nodiscard]] bool isWhole() const { return fits; }
    [[nodiscard]] std::basic_string_view<Char> view() const { return {text, length}; }

private:
    Char* text;
    size_t left;
    size_t length = 0;
    bool fits = true;
};

template <class Char>
void appendDrive(Path<Char>& path, std::basic_string_view<Char> drive) {
    if (drive.find(Marks<Char>::volumes) != drive.npos)
        path.append(drive);
}

template <class Char>
void appendDirectory(Path<Char>& path, std::basic_string_view<Char> directory) {
    path.append(without(Marks<Char>::separator, directory));
    if (!directory.empty() && !directory.ends_with(Marks<Char>::separator))
        path.endWith(Marks<Char>::separator);
}

template <class Char>
void appendExtension(Path<Char>& path, std::basic_string_view<Char> extension) {
    const std::basic_string_view<Char> bare = without(Marks<Char>::extension, extension);
    if (bare.empty())
        return;
    path.endWith(Marks<Char>::extension);
    path.append(bare);
}

/// Every path is absolute.
template <class Char>
void compose(Path<Char>& path, const Parts<Char>& parts) {
    appendDrive(path, parts.drive);
    path.endWith(Marks<Char>::separator);
    appendDirectory(path, parts.directory);
    path.append(without(Marks<Char>::separator, parts.name));
    appendExtension(path, parts.extension);
}

/// Without a drive the path stays relative, and a name has its dot whether or not an extension
/// follows: callers of the checked form build on both.
template <class Char>
void composeChecked(Path<Char>& path, const Parts<Char>& parts) {
    appendDrive(path, parts.drive);
    if (!parts.drive.empty())
        path.endWith(Marks<Char>::separator);
    appendDirectory(path, parts.directory);
    path.append(without(Marks<Char>::separator, parts.name));
    if (!parts.name.empty())
        path.endWith(Marks<Char>::extension);
    appendExtension(path, parts.extension);
}

template <class Char>
Char* make(Char* path, const Char* drive, const Char* dir, const Char* fname, const Char* ext) {
    if (!path)
        return const_cast<Char*>(ext);
    Path<Char> text(path, SIZE_MAX);
    compose<Char>(text, {viewOf(drive), viewOf(dir), viewOf(fname), viewOf(ext)});
    return path;
}

/// Null when there is not so much memory. Array new would throw at sizes that no array can have.
template <class Char>
std::unique_ptr<Char[]> makeRoom(size_t size) {
    const bool possible = size < PTRDIFF_MAX / sizeof(Char);
    return std::unique_ptr<Char[]>(possible ? new (std::nothrow) Char[size] : nullptr);
}

// Made away from its destination: a path that does not fit must leave no trace.
template <class Char>
errno_t makeChecked(Char* path, size_t size, const Parts<Char>& parts) {
    if (!path || size == 0)
        return errno = Error::InvalidArgument;
    const std::unique_ptr<Char[]> buffer = makeRoom<Char>(size);
    if (!buffer)
        return errno = Error::NoMemory;
    Path<Char> text(buffer.get(), size);
    composeChecked(text, parts);
    if (!text.isWhole())
        return errno = Error::InvalidArgument;
    path[text.view().copy(path, size)] = Char();
    return errno = Error::None;
}

} // namespace

char* _makepath(char* path, const char* drive, const char* dir, const char* fname,
                const char* ext) {
    return make(path, drive, dir, fname, ext);
}

wchar_t* _wmakepath(wchar_t* path, const wchar_t* drive, const wchar_t* dir, const wchar_t* fname,
                    const wchar_t* ext) {
    return make(path, drive, dir, fname, ext);
}

errno_t _makepath_s(char* path, size_t size, const char* drive, const char* dir, const char* fname,
                    const char* ext) {
    return makeChecked<char>(path, size, {viewOf(drive), viewOf(dir), viewOf(fname), viewOf(ext)});
}

errno_t _wmakepath_s(wchar_t* path, size_t size, const wchar_t* drive, const wchar_t* dir,
                     const wchar_t* fname, const wchar_t* ext) {
    return makeChecked<wchar_t>(path, size,
                                {viewOf(drive), viewOf(dir), viewOf(fname), viewOf(ext)});
}
