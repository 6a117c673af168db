/// \file
/// Command lines that need the rights of root.
#pragma once

#include <KxQts/export.h>

#include <QString>
#include <QStringList>

/// Runs a command line with the rights of root: hands it to the root daemon, or runs it itself in a
/// process that said that it is root.
///
/// The line is the tool and the arguments, joined with single blanks, and a shell reads it: nothing
/// is quoted nor escaped. Callers do that themselves where a text may hold a blank or another
/// character that means something to a shell. A session carries at most 2047 bytes of the line, and
/// the daemon refuses one that was cut (22).
/// \param output Never receives the tool's output, only the daemon session's message about a
/// failure (see \ref CallDaemonSession); left alone on success and in root mode.
/// \param timeout How long the daemon's answer is waited for, in seconds; 0 stands for 1. Not used
/// in root mode. A tool that takes longer runs on.
/// \return The daemon session's result, or in root mode what `system` returned: 0 for success.
KXQTS_EXPORT int executeCommandLineTool(const QString& tool, const QStringList& arguments,
                                        QString& output, unsigned int timeout);

/// Lets \ref executeCommandLineTool run command lines in this process from now on. For a process
/// that is root, once, before it runs any.
KXQTS_EXPORT void setRootModeFor_executeCommandLineTool();
