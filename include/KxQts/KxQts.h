/// \file
/// The whole interface, for C++ with Qt.
#pragma once

#include <KxQts/corefoundation.h>
#include <KxQts/daemon/command.h>
#include <KxQts/daemon/kernelcontrol.h>
#include <KxQts/daemon/registry.h>
#include <KxQts/daemon/session.h>
#include <KxQts/disk/volumeinfo.h>
#include <KxQts/files/attributes.h>
#include <KxQts/files/copymove.h>
#include <KxQts/files/directories.h>
#include <KxQts/files/dynmodule.h>
#include <KxQts/files/file.h>
#include <KxQts/files/find.h>
#include <KxQts/files/knowndirectories.h>
#include <KxQts/files/library.h>
#include <KxQts/files/profile.h>
#include <KxQts/handles/event.h>
#include <KxQts/handles/mutex.h>
#include <KxQts/handles/posixthread.h>
#include <KxQts/handles/semaphore.h>
#include <KxQts/handles/thread.h>
#include <KxQts/messages/infomessage.h>
#include <KxQts/messages/localization.h>
#include <KxQts/messages/processhandler.h>
#include <KxQts/refcounter.h>
#include <KxQts/registry/prefs.h>
#include <KxQts/registry/registry.h>
#include <KxQts/support/log.h>
#include <KxQts/support/text.h>
#include <KxQts/system/commandline.h>
#include <KxQts/system/currentprocess.h>
#include <KxQts/system/process.h>
#include <KxQts/windows.h>

#include <QMessageBox>
