#include "clsSMTP.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/LineReader.h"
#include "core/Numbers.h"
#include "core/WholeFile.h"
#include "core/XMLCode.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScopeGuard>

namespace {

const QString kCrLf = QStringLiteral("\r\n");
const QString kLockPrefix = QStringLiteral("QorloMAIL");

QStringList LockFiles(const QDir &folder, const QString &prefix)
{
    return folder.entryList({prefix + QStringLiteral("*.lck")}, QDir::Files | QDir::Hidden);
}

QString FileText(const QString &path)
{
    QStringList lines;
    LineReader reader(path);
    while (!reader.atEnd())
        lines.append(reader.readLine());
    return lines.join(kCrLf);
}

} // namespace

void clsSMTP::Clear()
{
    *this = clsSMTP();
}

void clsSMTP::Load(const QString &path)
{
    const QDir folder(CommonFile::FolderOf(path));
    const QString lockName = kLockPrefix + Clock::current().now().toString(QStringLiteral("HHmm"));
    if (!LockFiles(folder, QString()).isEmpty())
        return;
    XMLCode::CreateLockFile(folder.filePath(lockName + QStringLiteral(".lck")));
    const auto unlock = qScopeGuard([&] {
        for (const QString &lock : LockFiles(folder, lockName))
            QFile::remove(folder.filePath(lock));
    });
    Clear();
    if (!path.isEmpty() && QFileInfo::exists(path)) {
        FilePath = path;
        ReadFile(path);
    }
}

void clsSMTP::RemoveOwnLockFiles(const QString &folder)
{
    static const QRegularExpression ownName(QStringLiteral("^QorloMAIL[0-9]{4}\\.lck$"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QDir dir(folder);
    for (const QString &lock : LockFiles(dir, kLockPrefix)) {
        if (ownName.match(lock).hasMatch())
            QFile::remove(dir.filePath(lock));
    }
}

QString clsSMTP::MsgHTML() const
{
    return HTMLFileText.isEmpty() ? m_msgHTML : m_msgHTML + kCrLf + HTMLFileText;
}

void clsSMTP::ReadFile(const QString &path)
{
    LineReader file(path);
    while (!file.atEnd()) {
        QString line = file.readLine();
        ReadTags(file, line);
    }
}

void clsSMTP::ReadTags(LineReader &file, QString &line)
{
    if (line.startsWith(QLatin1String("<!")) || !line.contains(QLatin1Char('>')))
        return;
    const QString tag = XMLCode::LineTag(line);
    const QString value = XMLCode::TagValue(line);
    if (tag == QLatin1String("<QorloMAILDoc>"))
        DocType = QStringLiteral("QorloMAILDoc");
    else if (tag == QLatin1String("<Server>"))
        Server = value;
    else if (tag == QLatin1String("<From>"))
        From = value;
    else if (tag == QLatin1String("<To>"))
        To = value;
    else if (tag == QLatin1String("<Subject>"))
        Subject = value;
    else if (tag == QLatin1String("<Body>"))
        Body = XMLCode::ReadLongElement(file, line, QStringLiteral("</Body>"), XMLCode::EndLine::Joined);
    else if (tag == QLatin1String("<HTMLBody>"))
        m_msgHTML =
            XMLCode::ReadLongElement(file, line, QStringLiteral("</HTMLBody>"), XMLCode::EndLine::Joined);
    else if (tag == QLatin1String("<HTML-File>"))
        HTMLFileText = WholeFile::IsWholeFile(value) ? FileText(value) : QString();
    else if (tag == QLatin1String("<Find>"))
        FindText = value;
    else if (tag == QLatin1String("<Replace>")) {
        if (!FindText.isEmpty() && !value.isEmpty())
            HTMLFileText.replace(FindText, value);
        FindText.clear();
    } else if (tag == QLatin1String("<Attach>"))
        Attach += kCrLf + value;
    else if (tag == QLatin1String("<SMTP-Port>"))
        SMTP_Port = Numbers::ToInt16(Numbers::NumericPrefix(value));
    else if (tag == QLatin1String("<Authentication>"))
        Authentication = true;
    else if (tag == QLatin1String("<Encryption>"))
        Encryption = value;
    else if (tag == QLatin1String("<SMTPUser>"))
        SMTPUser = value;
    else if (tag == QLatin1String("<SMTPPassword>"))
        SMTPPassword = Encryption == QLatin1String("None") ? value : XMLCode::DecodeText(value);
}
