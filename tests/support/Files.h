#pragma once
// Small tools every test uses: files written and read in one call, programs run to their end, the
// error number a call raises, and waits with a deadline.

#include "core/QorloError.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>

namespace TestSupport {

// The file's bytes; empty when it cannot be read.
QByteArray ReadFile(const QString &path);
// Writes (or replaces) the file and returns its path; a file a test cannot write ends the test program.
QString WriteFile(const QString &path, const QByteArray &bytes);
// One line a text, each ended by CR LF, in Windows-1252: the form of the program's list files.
QString WriteLines(const QString &path, const QStringList &lines);
// Bytes from the test's random generator, which starts from the run's seed (TestMain.h).
QByteArray RandomBytes(qsizetype size);
// An executable shell script with the given body.
QString WriteScript(const QString &path, const QByteArray &body);
// Copies every file below `from` (subfolders too) to the same place below `to`.
void CopyFolder(const QString &from, const QString &to);
// The names of the files in the folder, sorted.
QStringList FileNames(const QString &folder, const QStringList &filters = {});

// Runs the program to its end; true when it exited with 0. Its standard output goes to `output`.
bool RunProgram(const QString &program, const QStringList &arguments, QByteArray *output = nullptr,
                int timeoutMs = 60000);
// The standard output of a reader program; empty when it failed.
QByteArray ProgramOutput(const QString &program, const QStringList &arguments, int timeoutMs = 60000);

// The number of the error (a QorloError, or the engine's error) the call raises, 0 if none.
template <class Error = QorloError, class Call> int ErrorOf(Call &&call)
{
    try {
        call();
    } catch (const Error &error) {
        return error.number();
    }
    return 0;
}

// Pumps events until `done` holds or `ms` have passed; the final answer of `done`. Check it: a wait
// that runs out is a failure.
bool WaitUntil(const std::function<bool()> &done, int ms);

} // namespace TestSupport
