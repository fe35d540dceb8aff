#pragma once
// Real peers on loopback for tests: free ports, helper programs that announce READY, and the rule
// that under CI a missing peer fails the test instead of skipping it.

#include <QProcess>
#include <QString>
#include <QStringList>
#include <memory>

namespace TestSupport {

bool UnderCI();
// A TCP port on 127.0.0.1 that was free a moment ago.
quint16 FreePort();
// A UDP port on 127.0.0.1 that was free a moment ago.
quint16 FreeUdpPort();
// The Python that has Debian's modules (aiosmtpd, xlrd).
QString DebianPython();
// A script below tests/peers.
QString PeerScript(const QString &name);
// The program's path when it is installed, else empty.
QString FindProgram(const QString &name, const QStringList &extraFolders = {});
// The environment for one of this project's programs started by a test: its own HOME and settings
// below `home`, and no print server, so that its start-up warns and goes on at once.
QProcessEnvironment OwnProgramEnvironment(const QString &home);
// Pumps events until a file that a started program writes holds `text`; false when `ms` ran out first.
bool WaitForText(const QString &file, const QByteArray &text, int ms);

// A peer program started for one test and stopped at the end of its scope.
class PeerProcess
{
public:
    PeerProcess() = default;
    ~PeerProcess();
    PeerProcess(const PeerProcess &) = delete;
    PeerProcess &operator=(const PeerProcess &) = delete;

    // Starts the program and waits until `readyLine` appears on its standard output (empty: only
    // until it has started). False, with `error()` saying why, when it fails or stays silent.
    bool start(const QString &program, const QStringList &arguments, const QString &readyLine,
               int timeoutMs = 15000, const QProcessEnvironment &environment = {});
    void stop();
    QString error() const { return m_error; }
    // Whether the last start ran out of time with the program still running: a failure, not a
    // missing peer.
    bool timedOut() const { return m_timedOut; }
    QByteArray output() const;
    QProcess *process() { return m_process.get(); }

private:
    std::unique_ptr<QProcess> m_process;
    QString m_error;
    bool m_timedOut = false;
};

// dovecot serving POP3 on `port` for one user, its state below `folder` (tests/peers/pop3_server.py).
bool StartPop3Peer(PeerProcess &peer, const QString &folder, quint16 port, const QString &user,
                   const QString &password);
// dnsmasq answering on UDP `port` of 127.0.0.1 with its records given as options ("--mx-host=...").
bool StartDnsPeer(PeerProcess &peer, quint16 port, const QStringList &records);

} // namespace TestSupport

// Starts a peer through `start` (a call that returns false when it fails): a peer that cannot run skips
// the test, except under CI, where that is a failure; one that runs but is not ready in time fails it.
#define QORLO_START_PEER(start, peer)                                                                        \
    do {                                                                                                     \
        if (!(start)) {                                                                                      \
            QVERIFY2(!(peer).timedOut(), qPrintable((peer).error()));                                        \
            QORLO_REQUIRE_PEER(false, (peer).error());                                                       \
        }                                                                                                    \
    } while (false)

// Skips the test when a peer is missing, except under CI, where that is a failure.
#define QORLO_REQUIRE_PEER(condition, what)                                                                  \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            if (TestSupport::UnderCI())                                                                      \
                QFAIL(qPrintable(QStringLiteral("peer missing under CI: ") + (what)));                       \
            QSKIP(qPrintable(QStringLiteral("peer missing: ") + (what)));                                    \
        }                                                                                                    \
    } while (false)
