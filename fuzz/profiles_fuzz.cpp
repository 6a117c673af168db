// Profiles over any stored property list, with any names, values and sizes of buffers: what the
// Windows calls give is what the Qt-typed call gives, cut to the size; what was written is read.

#include "common/input.h"
#include "common/memorypreferences.h"
#include "common/require.h"
#include "common/room.h"

#include <KxQts/files/profile.h>
#include <KxQts/winapi/errors.h>
#include <KxQts/winapi/profiles.h>

#include <QFileInfo>

#include <cerrno>
#include <memory>

using KxFuzz::Input;
using KxFuzz::MemoryPreferences;
using KxFuzz::require;
using KxFuzz::Room;

namespace {

constexpr int untouched = -77;

struct Call {
    std::string section, key, other, file;
    bool hasSection = false, hasKey = false;
};

struct Narrow {
    using Char = char;
    static constexpr auto get = GetPrivateProfileStringA;
    static constexpr auto write = WritePrivateProfileStringA;
    static std::string from(const std::string& bytes) { return bytes; }
    static QString decoded(const std::string& bytes) {
        return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
    }
    static std::string encoded(const QString& text) { return text.toLatin1().toStdString(); }
};

struct Wide {
    using Char = wchar_t;
    static constexpr auto get = GetPrivateProfileStringW;
    static constexpr auto write = WritePrivateProfileStringW;
    static std::wstring from(const std::string& bytes) {
        return QString::fromStdString(bytes).toStdWString();
    }
    static QString decoded(const std::string& bytes) {
        return QString::fromStdWString(from(bytes));
    }
    static std::wstring encoded(const QString& text) { return text.toStdWString(); }
};

/// The text of a call; null where the call has none.
template <class Form>
class Argument {
public:
    explicit Argument(const std::string& bytes, bool given = true)
        : isGiven(given), text(Form::from(bytes)) {}
    [[nodiscard]] const typename Form::Char* get() const {
        return isGiven ? text.c_str() : nullptr;
    }

private:
    bool isGiven;
    std::basic_string<typename Form::Char> text;
};

/// What the Qt-typed call gives for the same names.
template <class Form>
QString expected(const Call& call) {
    QString result;
    const int length = getPrivateProfileString(
        QString(), call.hasSection ? Form::decoded(call.section) : QString(),
        call.hasKey ? Form::decoded(call.key) : QString(), Form::decoded(call.other), result,
        Form::decoded(call.file));
    require(length == result.size());
    return result;
}

/// How many characters of a result of some length a buffer of some size gets.
std::size_t countFor(std::size_t length, std::size_t size, bool isList) {
    const std::size_t lost = isList ? 2 : 1;
    return length < size ? length : size > lost ? size - lost : 0;
}

/// What stands behind the result: the narrow form ends it, the wide form never does; a list that
/// was cut ends with zeros in the last place and behind it.
void checkEnd(const Room<char>& room, std::string_view text, std::size_t size, std::size_t count,
              bool isList) {
    const bool fits = text.size() < size;
    const std::size_t copied = fits ? count : count - (count > 0 ? 1 : 0);
    const std::string_view whole = text.substr(0, copied);
    const std::string_view ended = whole.substr(0, whole.find('\0'));
    require(room.first(ended.size()) == ended);
    require(size == 0 || room.text().size() >= ended.size());
    room.requireUntouchedFrom(fits ? count + 1 : isList && size > 2 ? size + 1 : size);
}

void checkEnd(const Room<wchar_t>& room, std::wstring_view text, std::size_t size,
              std::size_t count, bool isList) {
    require(room.first(count) == text.substr(0, count));
    const bool isCutList = isList && text.size() >= size;
    if (isCutList && size > 0)
        require(room[size - 1] == L'\0');
    if (isCutList && size > 2)
        require(room[size] == L'\0');
    room.requireUntouchedFrom(!isCutList ? count : size > 2 ? size + 1 : size);
}

template <class Form>
void checkReading(const Call& call, unsigned size) {
    const auto text = Form::encoded(expected<Form>(call));
    const Argument<Form> section(call.section, call.hasSection), key(call.key, call.hasKey),
        otherwise(call.other), file(call.file);
    Room<typename Form::Char> room(size);
    errno = untouched;
    const DWORD count =
        Form::get(section.get(), key.get(), otherwise.get(), room.get(), size, file.get());
    require(errno == untouched);
    if (text.empty()) {
        require(count == 0);
        return room.requireUntouchedFrom(0);
    }
    const bool isList = !call.hasSection || !call.hasKey;
    require(count == countFor(text.size(), size, isList));
    checkEnd(room, text, size, count, isList);
}

/// Names that are one step in the store each.
template <class Form>
bool isPlain(const Call& call) {
    return call.hasSection && call.hasKey && !call.section.empty() && !call.key.empty() &&
           call.section.find('/') == std::string::npos && call.key.find('/') == std::string::npos &&
           !QFileInfo(Form::decoded(call.file)).fileName().isEmpty();
}

template <class Form>
void checkWriting(Call call, const std::string& value) {
    const Argument<Form> section(call.section, call.hasSection), key(call.key, call.hasKey),
        text(value), file(call.file);
    errno = untouched;
    const BOOL isWritten = Form::write(section.get(), key.get(), text.get(), file.get());
    require(errno == (isWritten != FALSE ? untouched : int{ERROR_BADKEY}));
    if (isWritten == FALSE || !isPlain<Form>(call))
        return;
    const QString stored = Form::decoded(value);
    if (!stored.isEmpty())
        require(expected<Form>(call) == stored.trimmed());
    require(Form::write(section.get(), key.get(), nullptr, file.get()) != FALSE ||
            stored.isEmpty());
    require(expected<Form>(call) == Form::decoded(call.other));
    require(Form::write(section.get(), key.get(), nullptr, file.get()) == FALSE);
    if (Form::write(section.get(), nullptr, nullptr, file.get()) != FALSE)
        require(Form::write(section.get(), nullptr, nullptr, file.get()) == FALSE);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Call call;
    const auto shape = input.number<std::uint8_t>();
    const auto room = static_cast<unsigned>(input.below(300));
    call.section = input.text();
    call.key = input.text();
    call.other = input.text();
    call.file = input.text();
    call.hasSection = (shape & 1) == 0;
    call.hasKey = (shape & 2) == 0;
    const std::string value = input.text();
    MemoryPreferences store(input.rest());
    checkReading<Narrow>(call, room);
    checkReading<Wide>(call, room);
    checkWriting<Narrow>(call, value);
    checkWriting<Wide>(call, value);
    return 0;
}
