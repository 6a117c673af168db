#include "common/scratchfile.h"
#include "faults/sweep.h"
#include "files/folder.h"

#include <KxQts/errors.h>
#include <KxQts/winapi/files.h>
#include <KxQts/winapi/find.h>
#include <KxQts/winapi/handles.h>

#include <fstream>
#include <string>

using namespace KxTest;
namespace Error = Korvex::Error;

namespace {

constexpr DWORD readWrite = GENERIC_READ | GENERIC_WRITE;

/// Longer than any buffer between a program and its file.
const std::string longText(100'000, 'x');

class OpenedFile {
public:
    explicit OpenedFile(DWORD disposition, DWORD share = 0)
        : handle(CreateFileA("file", readWrite, share, nullptr, disposition, 0, nullptr)) {}
    ~OpenedFile() {
        if (handle)
            CloseHandle(handle);
    }
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

    explicit operator bool() const { return handle != nullptr; }
    [[nodiscard]] HANDLE get() const { return handle; }

    /// Writes in pieces, as a short transfer is no failure.
    [[nodiscard]] bool write(const std::string& text) const {
        std::size_t written = 0;
        DWORD done = 0;
        while (written < text.size() &&
               WriteFile(handle, text.data() + written, static_cast<DWORD>(text.size() - written),
                         &done, nullptr))
            written += done;
        return written == text.size();
    }

private:
    HANDLE handle;
};

/// Everything works on a file "file" with "old" in it.
class FileFaults : public InOwnFolder {
protected:
    static void makeOld(const std::string& contents = "old") {
        std::ofstream("file", std::ios::binary) << contents;
    }

    static void sweepFiles(Scenario scenario) {
        if (!scenario.prepare)
            scenario.prepare = [] { makeOld(); };
        sweep(fileFaults() + memoryFaults(), scenario);
    }
};

} // namespace

TEST_F(FileFaults, OpeningAFile) {
    sweepFiles({.name = "open file",
                .run = [] { return bool(OpenedFile(OPEN_EXISTING)); },
                .verify = [](bool) { EXPECT_EQ(contentsOf("file"), "old"); },
                .reports = {Reported::injected, Error::NotFound}});
}

TEST_F(FileFaults, OpeningAFileThatOthersShare) {
    sweepFiles({.name = "open shared",
                .run = [] { return bool(OpenedFile(OPEN_ALWAYS, FILE_SHARE_READ)); },
                .reports = {Reported::injected}});
}

TEST_F(FileFaults, CreatingAFile) {
    sweepFiles(
        {.name = "create file",
         .prepare = [] { std::filesystem::remove("file"); },
         .run = [] { return bool(OpenedFile(CREATE_ALWAYS)); },
         .verify =
             [](bool succeeded) { EXPECT_TRUE(!succeeded || std::filesystem::exists("file")); },
         .reports = {Reported::injected}});
}

TEST_F(FileFaults, WritingToAFile) {
    sweepFiles({.name = "write file",
                .run =
                    [] {
                        const OpenedFile file(TRUNCATE_EXISTING);
                        return file && file.write("a") && file.write(longText) && file.write("z") &&
                               FlushFileBuffers(file.get());
                    },
                .verify =
                    [](bool succeeded) {
                        EXPECT_TRUE(!succeeded || contentsOf("file") == "a" + longText + "z");
                    },
                .reports = {Reported::injected, Error::NotFound, Error::TransferFailed}});
}

TEST_F(FileFaults, ReadingFromAFile) {
    sweepFiles({.name = "read file",
                .prepare = [] { makeOld(longText); },
                .run =
                    [] {
                        const OpenedFile file(OPEN_EXISTING);
                        static std::string text(longText.size(), '\0');
                        DWORD done = 0;
                        std::size_t all = 0;
                        while (file && all < text.size() &&
                               ReadFile(file.get(), text.data() + all,
                                        static_cast<DWORD>(text.size() - all), &done, nullptr) &&
                               done > 0)
                            all += done;
                        return all == text.size() && text == longText;
                    },
                .reports = {Reported::injected, Error::NotFound, Error::TransferFailed}});
}

TEST_F(FileFaults, MovingAboutInAFile) {
    sweepFiles({.name = "seek",
                .run =
                    [] {
                        const OpenedFile file(OPEN_EXISTING);
                        LARGE_INTEGER size{};
                        return file && SetFilePointer(file.get(), 1, nullptr, FILE_BEGIN) == 1 &&
                               SetFilePointer(file.get(), 0, nullptr, FILE_END) == 3 &&
                               GetFileSizeEx(file.get(), &size) && size.QuadPart == 3;
                    },
                .reports = {Reported::anything}});
}

TEST_F(FileFaults, SearchingAFolder) {
    sweepFiles({.name = "search",
                .run =
                    [] {
                        const HANDLE search = FindFirstFileA("*", nullptr);
                        if (search == INVALID_HANDLE_VALUE)
                            return false;
                        const bool found = FindNextFile(search, nullptr);
                        const int error = errno;
                        const bool closed = FindClose(search);
                        errno = error;
                        return closed && found;
                    },
                // Its list of open folders owns nothing: an exception leaves them open.
                .cannotBeTold = {"QDirIterator"},
                .reports = {Error::NotFound}});
}
