#pragma once
// The SMTP log: one process-wide buffer telling the story of the last message, written to SMTP.Log.

#include <QString>

namespace SmtpLog {

// The buffer as it stands.
const QString &SmtpLogBuffer();

// Replaces the buffer with "HH:mm   " + text + CR LF; an empty text gives the time and
// "Starting new message" without a line end.
void StartSmtpLog(const QString &text);
// Adds CR LF, "HH:mm   " and the text.
void AddSmtpLog(const QString &text);
// Rewrites appPath + "/SMTP.Log" with the buffer as one line; a file that cannot be written is skipped.
void FlushSmtpLog(const QString &appPath);

} // namespace SmtpLog
