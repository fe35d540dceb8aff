#pragma once
// One mail document (root element QorloMAILDoc) read from a file of the mailbox folder.

#include <QString>
#include <QtGlobal>

class LineReader;

class clsSMTP
{
public:
    QString DocType;
    QString Server;
    QString From;
    QString To;
    QString Body;
    QString Subject;
    QString Attach; // one path a line, each after CR LF
    qint16 SMTP_Port = 25;
    QString HTMLFileText;
    bool Authentication = false;
    QString SMTPUser;
    QString SMTPPassword;
    QString FilePath;
    QString Encryption;
    QString FindText;

    void Clear();
    // Reads the document under a lock of its own in the document's folder; does nothing while any
    // other lock file lies there. The lock goes when the read ends, also when it fails.
    void Load(const QString &path);
    // Removes the lock files of this class's own naming (QorloMAIL + "HHmm" + ".lck") from the folder:
    // left by a process that ended while reading, they would hold the folder for ever.
    static void RemoveOwnLockFiles(const QString &folder);
    // The HTMLBody text, followed by CR LF and the HTML file's text when one was read.
    QString MsgHTML() const;
    void SetMsgHTML(const QString &value) { m_msgHTML = value; }

private:
    void ReadFile(const QString &path);
    void ReadTags(LineReader &file, QString &line);

    QString m_msgHTML;
};
