#include <KxQts/system/currentprocess.h>

#include "platform/windowcontrol.h"

using Korvex::windowControl;

bool showCurrentProcess(bool show) {
    return !show || windowControl().bringToFront() == noErr;
}

bool isCurrentProcessVisible() {
    bool visible = false;
    return windowControl().findCurrentProcess() == noErr &&
           windowControl().askVisibility(visible) == noErr && visible;
}

bool setFrontCurrentProcess() {
    return windowControl().findCurrentProcess() == noErr && windowControl().bringToFront() == noErr;
}

OSErr isNextCurrentProcess(bool& isNext) {
    const OSErr error = windowControl().findNextProcess();
    if (error != noErr && error != procNotFound)
        return error;
    isNext = error == noErr;
    return noErr;
}
