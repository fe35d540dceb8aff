#include "clsMap.h"

#include "core/CommonFile.h"
#include "core/LineReader.h"
#include "core/QorloError.h"
#include "core/XMLCode.h"

using namespace XMLCode;

namespace {

// Replaces the first occurrence only; an empty pattern never occurs.
bool ReplaceFirst(QString &text, const QString &original, const QString &replacement)
{
    if (original.isEmpty())
        return false;
    const qsizetype at = text.indexOf(original);
    if (at < 0)
        return false;
    text.replace(at, original.size(), replacement);
    return true;
}

} // namespace

clsMap::clsMap(const QString &appPath) : m_appPath(appPath) {}

void clsMap::AddNew()
{
    m_cursor = m_count;
    // A row past the table is not counted, so that no walk of the table reads beyond its end; its
    // cells raise the subscript error when they are touched.
    if (m_count <= UpperBound)
        ++m_count;
}

void clsMap::Clear()
{
    m_count = 0;
    m_cursor = -1;
}

void clsMap::Load(const QString &path)
{
    LineReader reader(path);
    while (!reader.atEnd()) {
        QString line = reader.readLine().trimmed();
        ReadTags(line);
    }
}

void clsMap::ReadTags(QString &line)
{
    if (line.startsWith(QLatin1String("<!")) || line == QLatin1String("<Schedule>") ||
        line == QLatin1String("<Report_Schedule>"))
        return;
    if (line == QLatin1String("<TableMap>")) {
        AddNew();
        return;
    }
    const QString tag = LineTag(line);
    if (tag.isEmpty())
        return;
    const QString value = TagValue(line);
    if (tag == QLatin1String("<ReportMapID>"))
        SetReportID(value);
    else if (tag == QLatin1String("<OriginalTable>"))
        SetOriginalTable(value);
    else if (tag == QLatin1String("<NewTable>"))
        SetNewTable(value);
}

void clsMap::Save()
{
    if (OpenXML(CommonFile::JoinPath(m_appPath, QStringLiteral("TableMap.XML")),
                QStringLiteral("TableMappingDoc"))
            .startsWith(QLatin1String("Err")))
        return;
    for (int row = 0; row < m_count; ++row) {
        const Row &cells = m_rows[size_t(row)];
        WriteOpenTag(QStringLiteral("TableMap"));
        WriteElement(QStringLiteral("ReportMapID"), cells[ColReportID]);
        WriteElement(QStringLiteral("OriginalTable"), cells[ColOriginal]);
        WriteElement(QStringLiteral("NewTable"), cells[ColNew]);
        WriteCloseTag(QStringLiteral("TableMap"));
    }
    CloseXML();
}

bool clsMap::ApplyTableMap(QString &location, const QString &reportID, QString &server,
                           QString &database) const
{
    bool moved = false;
    // Rows work in sequence: a later row sees what an earlier one made.
    for (int row = 0; row < m_count; ++row) {
        const Row &cells = m_rows[size_t(row)];
        if (!cells[ColReportID].isEmpty() && cells[ColReportID] != reportID)
            continue;
        moved |= ReplaceFirst(location, cells[ColOriginal], cells[ColNew]);
        ReplaceFirst(server, cells[ColOriginal], cells[ColNew]);
        ReplaceFirst(database, cells[ColOriginal], cells[ColNew]);
    }
    return moved;
}

void clsMap::ExamineTables(const QString &reportID, const QStringList &locations)
{
    for (const QString &location : locations) {
        AddNew();
        SetReportID(reportID);
        SetOriginalTable(location);
        SetNewTable(location);
    }
}

QString &clsMap::Cell(Column column)
{
    if (m_cursor < 0 || m_cursor > UpperBound)
        throw QorloError(QorloError::OutOfRange);
    return m_rows[size_t(m_cursor)][column];
}

const QString &clsMap::Cell(Column column) const
{
    if (m_cursor < 0 || m_cursor > UpperBound)
        throw QorloError(QorloError::OutOfRange);
    return m_rows[size_t(m_cursor)][column];
}
