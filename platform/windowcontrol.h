#pragma once

namespace Korvex {

/// The windows of application processes as the display's users see them. Results are 0 or a
/// negative error number of the platform; −600 says that a process is none of the applications.
/// Any thread may call; a call waits for the display's answers.
class WindowControl {
public:
    virtual ~WindowControl() = default;

    /// Whether the calling process is an application.
    virtual int findCurrentProcess() = 0;

    /// Brings the foremost window of the calling process to the front.
    virtual int bringToFront() = 0;

    /// Whether the calling process shows a window. \param visible Set on success only.
    virtual int askVisibility(bool& visible) = 0;

    /// \return 0 when another application follows the calling process, −600 when none does.
    virtual int findNextProcess() = 0;
};

/// The window control in force.
WindowControl& windowControl();

} // namespace Korvex
