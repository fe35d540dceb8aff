#pragma once
// One scheduler per application folder, whoever runs it: an exclusive lock on a file in the canonical
// application folder, held for the life of the process. The kernel drops the lock when the process
// ends, however it ends, so no stale lock is left to take over.

#include <QString>

class SingleInstance
{
public:
    // The lock file of the folder.
    static QString LockFileName(const QString &appPath);

    SingleInstance() = default;
    ~SingleInstance();
    SingleInstance(const SingleInstance &) = delete;
    SingleInstance &operator=(const SingleInstance &) = delete;

    // Claims the folder; false when another running instance, of any user, holds it.
    bool Claim(const QString &appPath);

private:
    int m_fd = -1;
};
