#pragma once

#include "common/scratchfile.h"

#include <KxQts/support/log.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace KxTest {

inline constexpr unsigned newFile = 2;
inline constexpr unsigned appending = 4;

/// What the time of a line looks like, as a regular expression.
inline const std::string stamp = "[A-Z][a-z][a-z] [0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]";

/// Puts the log of the process back as it was.
class Log : public testing::Test {
protected:
    ~Log() override {
        if (Korvex::__kx_glog.fd > 1)
            close(Korvex::__kx_glog.fd);
        Korvex::__kx_glog.fd = fdBefore;
        Korvex::__kx_glog.title = titleBefore;
    }

    /// Opens the log of the process and forgets the line that it begins with.
    void openQuietly(const QString& name = QStringLiteral("title")) {
        QString given = name;
        Korvex::IOLogOpen(QString::fromStdString(file.name), newFile, &given, nullptr);
        ASSERT_EQ(ftruncate(Korvex::__kx_glog.fd, 0), 0);
        lseek(Korvex::__kx_glog.fd, 0, SEEK_SET);
    }

    std::string logged() const { return contentsOf(file.name); }

    const ScratchFile file;

private:
    const int fdBefore = Korvex::__kx_glog.fd;
    const QString titleBefore = Korvex::__kx_glog.title;
};

inline std::vector<std::string> linesOf(const std::string& name) {
    std::ifstream stream(name);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

} // namespace KxTest
