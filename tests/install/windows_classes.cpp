// Classes as they stand in Windows code bases: owners of handles, a lock, a queue between threads,
// a log, settings, a text that is formatted. Methods bear names that are macros of <windows.h>.

#define NOMINMAX
#include <windows.h>

#include <process.h>
#include <tchar.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <string>

using tstring = std::basic_string<TCHAR>;

class CriticalSection {
public:
    CriticalSection() { InitializeCriticalSection(&m_section); }
    ~CriticalSection() { DeleteCriticalSection(&m_section); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    void lock() { EnterCriticalSection(&m_section); }
    bool try_lock() { return TryEnterCriticalSection(&m_section) != FALSE; }
    void unlock() { LeaveCriticalSection(&m_section); }

private:
    CRITICAL_SECTION m_section;
};

class AutoLock {
public:
    explicit AutoLock(CriticalSection& section) : m_section(section) { m_section.lock(); }
    ~AutoLock() { m_section.unlock(); }
    AutoLock(const AutoLock&) = delete;
    AutoLock& operator=(const AutoLock&) = delete;

private:
    CriticalSection& m_section;
};

struct HandleCloser {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const {
        if (handle != nullptr && handle != INVALID_HANDLE_VALUE)
            ::CloseHandle(handle);
    }
};
using UniqueHandle = std::unique_ptr<HANDLE, HandleCloser>;

/// Passes numbers from one thread to others until it is closed.
class Queue {
public:
    Queue() : m_event(::CreateEvent(nullptr, FALSE, FALSE, nullptr)) {}
    void push(LONG value) {
        {
            AutoLock lock(m_section);
            m_values.push_back(value);
        }
        ::SetEvent(m_event.get());
    }
    void close() {
        {
            AutoLock lock(m_section);
            m_closed = true;
        }
        ::SetEvent(m_event.get());
    }
    bool pop(LONG& value) {
        for (;;) {
            {
                AutoLock lock(m_section);
                if (!m_values.empty() || m_closed)
                    ::SetEvent(m_event.get());
                if (!m_values.empty()) {
                    value = m_values.front();
                    m_values.pop_front();
                    return true;
                }
                if (m_closed)
                    return false;
            }
            switch (::WaitForSingleObject(m_event.get(), INFINITE)) {
            case WAIT_OBJECT_0:
                break;
            case WAIT_ABANDONED:
            case WAIT_TIMEOUT:
            default:
                return false;
            }
        }
    }

private:
    CriticalSection m_section;
    std::deque<LONG> m_values;
    bool m_closed = false;
    UniqueHandle m_event;
};

/// Adds up what it takes from a queue, in threads of its own.
class Adder {
public:
    explicit Adder(Queue& queue)
        : m_queue(queue), m_done(::CreateEvent(nullptr, TRUE, FALSE, nullptr)) {}
    bool start(int threads) {
        m_running = threads;
        for (int i = 0; i < threads; ++i) {
            unsigned id = 0;
            UniqueHandle thread(
                reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, &run, this, 0, &id)));
            if (!thread)
                return false;
        }
        return true;
    }
    LONG result() {
        return ::WaitForSingleObject(m_done.get(), 60000) == WAIT_OBJECT_0 ? m_sum : -1;
    }

private:
    static unsigned __stdcall run(void* self) {
        static_cast<Adder*>(self)->add();
        _endthreadex(0);
        return 0;
    }
    void add() {
        LONG value = 0;
        while (m_queue.pop(value))
            InterlockedExchangeAdd(&m_sum, value);
        if (InterlockedDecrement(&m_running) == 0)
            ::SetEvent(m_done.get());
    }

    Queue& m_queue;
    UniqueHandle m_done;
    volatile LONG m_sum = 0;
    volatile LONG m_running = 0;
};

class File {
public:
    explicit File(const tstring& path, DWORD disposition = OPEN_ALWAYS)
        : m_handle(::CreateFile(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    bool isOpen() const { return m_handle && m_handle.get() != INVALID_HANDLE_VALUE; }
    bool append(const void* data, size_t size) {
        DWORD written = 0;
        return ::SetFilePointer(m_handle.get(), 0, nullptr, FILE_END) != INVALID_SET_FILE_POINTER &&
               ::WriteFile(m_handle.get(), data, static_cast<DWORD>(size), &written, nullptr) &&
               written == size;
    }
    std::string read() {
        LARGE_INTEGER size{}, start{};
        DWORD done = 0;
        if (!::SetFilePointerEx(m_handle.get(), start, nullptr, FILE_BEGIN) ||
            !::GetFileSizeEx(m_handle.get(), &size))
            return {};
        std::string text(static_cast<size_t>(size.QuadPart), '\0');
        const BOOL good = ::ReadFile(m_handle.get(), &text[0], size.LowPart, &done, nullptr);
        return good && done == text.size() ? text : std::string();
    }
    static bool DeleteFile(const tstring& path) { return ::DeleteFile(path.c_str()) != FALSE; }

private:
    UniqueHandle m_handle;
};

class Log {
public:
    explicit Log(const tstring& path) : m_file(path) {}
    void __cdecl write(const char* format, ...) {
        char line[40], stamp[9];
        _strtime_s(stamp);
        va_list arguments;
        va_start(arguments, format);
        _vsnprintf_s(line, _countof(line), _TRUNCATE, format, arguments);
        va_end(arguments);
        const std::string text = std::string(stamp) + ' ' + line + "\r\n";
        m_file.append(text.data(), text.size());
    }
    std::string text() { return m_file.read(); }
    DWORD GetLastError() const { return ::GetLastError(); }

private:
    File m_file;
};

class Settings {
public:
    explicit Settings(const tstring& path) : m_path(path) {}
    bool write(LPCTSTR key, LPCTSTR value) {
        return ::WritePrivateProfileString(TEXT("Main"), key, value, m_path.c_str()) != FALSE;
    }
    tstring text(LPCTSTR key, LPCTSTR otherwise) const {
        TCHAR value[64] = {};
        const DWORD length = ::GetPrivateProfileString(TEXT("Main"), key, otherwise, value,
                                                       _countof(value), m_path.c_str());
        return tstring(value, length);
    }
    UINT number(LPCTSTR key, INT otherwise) const {
        return ::GetPrivateProfileInt(TEXT("Main"), key, otherwise, m_path.c_str());
    }

private:
    tstring m_path;
};

static bool holds(bool condition, const char* what) {
    if (!condition)
        std::fprintf(stderr, "failed: %s (%d)\n", what, static_cast<int>(::GetLastError()));
    return condition;
}

static bool threadsWork() {
    Queue queue;
    Adder adder(queue);
    if (!holds(adder.start(3), "threads start"))
        return false;
    for (LONG i = 1; i <= 1000; ++i)
        queue.push(i);
    queue.close();
    return holds(adder.result() == 500500, "threads add up what is passed to them");
}

static bool locksWork() {
    CriticalSection section;
    AutoLock outer(section);
    const bool again = section.try_lock();
    section.unlock();
    LONG value = 5;
    PVOID pointer = &section;
    return holds(again, "a section may be entered again") &&
           holds(InterlockedCompareExchange(&value, 7, 5) == 5 && value == 7, "values change") &&
           holds(InterlockedIncrement(&value) == 8 && InterlockedExchange(&value, 1) == 8,
                 "values count") &&
           holds(InterlockedExchangePointer(&pointer, nullptr) == &section && !pointer,
                 "pointers change");
}

static bool logWorks() {
    const tstring path = TEXT("classes.log");
    Log log(path);
    log.write("%s %d", "text", std::max(4, 5));
    log.write("%s", std::string(100, 'x').c_str());
    const std::string text = log.text();
    return holds(text.find(" text 5\r\n") == 8, "a line is logged") &&
           holds(text.find(std::string(39, 'x') + "\r\n") != std::string::npos, "a line is cut") &&
           holds(File::DeleteFile(path) && !File(path, OPEN_EXISTING).isOpen(), "it is removed") &&
           holds(log.GetLastError() == ERROR_FILE_NOT_FOUND, "the reason is told");
}

static bool settingsWork() {
    Settings settings(TEXT("./classes.ini"));
    return holds(settings.write(TEXT("Title"), TEXT("a text")), "a setting is kept") &&
           holds(settings.write(TEXT("Width"), TEXT("640")), "a number is kept") &&
           holds(settings.text(TEXT("Title"), TEXT("")) == TEXT("a text"), "a setting is read") &&
           holds(settings.number(TEXT("Width"), 1) == 640, "a number is read") &&
           holds(settings.number(TEXT("Height"), 480) == 480, "a number that is not there") &&
           holds(settings.write(TEXT("Title"), nullptr), "a setting is removed");
}

// The bounded calls know the size of an array.
static bool arraysWork() {
    char text[16], drive[_MAX_DRIVE], dir[_MAX_DIR], name[_MAX_FNAME], ext[_MAX_EXT];
    TCHAR word[16];
    const bool copied = strcpy_s(text, "abc") == 0 && strcat_s(text, "def") == 0 &&
                        std::strcmp(text, "abcdef") == 0 && strcpy_s(text, "0123456789abcdef") != 0;
    const bool printed = sprintf_s(text, "%d-%s", 42, "x") == 0 && std::strcmp(text, "42-x") == 0;
    const bool counted = _itoa_s(255, text, 16) == 0 && std::strcmp(text, "ff") == 0;
    const bool split = _splitpath_s("/a/b.c", drive, dir, name, ext) == 0 && *name == 'b';
    _stprintf_s(word, TEXT("%s%d"), TEXT("n"), 5);
    _tcscat_s(word, TEXT("!"));
    return holds(copied && printed && counted && split, "arrays tell their sizes") &&
           holds(_tcscmp(word, TEXT("n5!")) == 0, "arrays of either text do");
}

struct Request {
    DWORD size;
    ULONG version;
};

static bool driversAreAsked() {
    Request request = {sizeof request, 0};
    DWORD returned = 0;
    HANDLE device = INVALID_HANDLE_VALUE;
    return holds(!::DeviceIoControl(device, 1, &request, sizeof request, &request, sizeof request,
                                    &returned, nullptr),
                 "a driver that is not there does not answer");
}

int _tmain() {
    const bool works = threadsWork() && locksWork() && logWorks() && settingsWork();
    return works && arraysWork() && driversAreAsked() ? 0 : 1;
}
