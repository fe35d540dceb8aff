#include "clsConnect.h"

#include "core/CommonFile.h"
#include "core/LineReader.h"
#include "core/QorloError.h"
#include "core/XMLCode.h"

using namespace XMLCode;

namespace {

const QString kYes = QStringLiteral("Yes");

} // namespace

clsConnect::clsConnect(const QString &appPath)
    : Connection_File(CommonFile::JoinPath(appPath, QStringLiteral("Connect.XML"))), m_appPath(appPath)
{
}

void clsConnect::AddNew()
{
    m_cursor = m_count;
    // A row past the table is not counted, so that no walk of the table reads beyond its end; its
    // cells raise the subscript error when they are touched.
    if (m_count <= UpperBound)
        ++m_count;
}

void clsConnect::Delete(qint16 row)
{
    if (row < 0 || row >= m_count)
        return;
    for (int below = row; below + 1 < m_count; ++below)
        m_rows[size_t(below)] = m_rows[size_t(below) + 1];
    --m_count;
}

bool clsConnect::Same(const QString &a, const QString &b) const
{
    return CaseSensitive ? a == b : a.toLower() == b.toLower();
}

bool clsConnect::Matches(const Row &row, const QString &dll, const QString &server,
                         const QString &database) const
{
    // The blank driver is a wildcard on the row's side only.
    return (row[ColDLL].isEmpty() || Same(row[ColDLL], dll)) && Same(row[ColServer], server) &&
           Same(row[ColDatabase], database);
}

bool clsConnect::Find(const QString &dll, const QString &server, const QString &database)
{
    for (int row = 0; row < m_count; ++row) {
        if (Matches(m_rows[size_t(row)], dll, server, database)) {
            m_cursor = qint16(row);
            return true;
        }
    }
    m_cursor = -1;
    return false;
}

bool clsConnect::FindExt(const QString &dll, const QString &server, const QString &database,
                         const QString &user)
{
    for (int row = 0; row < m_count; ++row) {
        const Row &cells = m_rows[size_t(row)];
        if (Matches(cells, dll, server, database) && Same(cells[ColUser], user)) {
            m_cursor = qint16(row);
            return true;
        }
    }
    m_cursor = -1;
    return false;
}

void clsConnect::Load(const QString &path)
{
    Clear();
    LineReader reader(path);
    while (!reader.atEnd()) {
        QString line = reader.readLine().trimmed();
        ReadTags(line);
    }
    Connection_File = path;
}

void clsConnect::ReadTags(QString &line)
{
    if (line.startsWith(QLatin1String("<!")))
        return;
    if (line == QLatin1String("<Connect>")) {
        AddNew();
        return;
    }
    const QString tag = LineTag(line);
    if (tag.isEmpty())
        return;
    const QString value = TagValue(line);

    if (tag == QLatin1String("<ConnectDLL>"))
        SetDLL(value);
    else if (tag == QLatin1String("<ConnectServer>"))
        SetServer(value);
    else if (tag == QLatin1String("<ConnectDB>"))
        SetDatabase(value);
    else if (tag == QLatin1String("<ConnectUser>"))
        SetUser(value);
    else if (tag == QLatin1String("<ConnectPassword>"))
        // EncodeOptions stands ahead of the rows, so it is known here.
        SetPassword(EncodeOptions == kYes ? DecodeText(value) : value);
    else if (tag == QLatin1String("<Connection_Password>"))
        Connection_Password = DecodeText(value);
    else if (tag == QLatin1String("<EncodeOptions>"))
        EncodeOptions = value;
    else if (tag == QLatin1String("<UserOption>"))
        UserOption = value;
    else if (tag == QLatin1String("<CaseSensitive>"))
        CaseSensitive = value == kYes;
    else if (tag == QLatin1String("<Connection_File>"))
        Connection_File = value;
}

void clsConnect::Save()
{
    const QString target = Connection_File.isEmpty()
                               ? CommonFile::JoinPath(m_appPath, QStringLiteral("Connect.XML"))
                               : Connection_File;
    if (OpenXML(target, QStringLiteral("ConnectionDoc"), QString(), FileAccess::OwnerOnly)
            .startsWith(QLatin1String("Err")))
        return;
    WriteSettings();
    for (int row = 0; row < m_count; ++row)
        WriteRow(m_rows[size_t(row)]);
    CloseXML();
}

void clsConnect::WriteSettings() const
{
    WriteOpenTag(QStringLiteral("Connection_Settings"));
    // The editor's lock is scrambled whatever EncodeOptions says.
    if (!Connection_Password.isEmpty())
        WriteElement(QStringLiteral("Connection_Password"), EncodeText(Connection_Password));
    WriteElement(QStringLiteral("EncodeOptions"), EncodeOptions);
    WriteElement(QStringLiteral("UserOption"), UserOption);
    WriteElement(QStringLiteral("CaseSensitive"), CaseSensitive ? kYes : QStringLiteral("No"));
    WriteCloseTag(QStringLiteral("Connection_Settings"));
}

void clsConnect::WriteRow(const Row &row) const
{
    WriteOpenTag(QStringLiteral("Connect"));
    if (!row[ColDLL].isEmpty())
        WriteElement(QStringLiteral("ConnectDLL"), row[ColDLL]);
    WriteElement(QStringLiteral("ConnectServer"), row[ColServer]);
    WriteElement(QStringLiteral("ConnectDB"), row[ColDatabase]);
    WriteElement(QStringLiteral("ConnectUser"), row[ColUser]);
    const QString &password = row[ColPassword];
    WriteElement(QStringLiteral("ConnectPassword"), EncodeOptions == kYes ? EncodeText(password) : password);
    WriteCloseTag(QStringLiteral("Connect"));
}

QString &clsConnect::Cell(Column column)
{
    if (m_cursor < 0 || m_cursor > UpperBound)
        throw QorloError(QorloError::OutOfRange);
    return m_rows[size_t(m_cursor)][column];
}

const QString &clsConnect::Cell(Column column) const
{
    if (m_cursor < 0 || m_cursor > UpperBound)
        throw QorloError(QorloError::OutOfRange);
    return m_rows[size_t(m_cursor)][column];
}
