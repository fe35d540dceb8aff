#pragma once
// Sending one mail document of the Mail folder, with its story in SMTP.Log.

#include <QString>

// Loads the QorloMAILDoc at `filePath` and sends it through the default port of the mail client,
// without authentication. The caller deletes the file. False when the file is no mail document.
bool ProcessMailDocument(const QString &appPath, const QString &filePath);
