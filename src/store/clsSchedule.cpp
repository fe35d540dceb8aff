#include "clsSchedule.h"

#include "ScheduleColumns.h"
#include "clsScheduleInternal.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/Numbers.h"
#include "core/QorloError.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

[[noreturn]] void OutOfRange()
{
    throw QorloError(QorloError::OutOfRange);
}

using ScheduleInternal::FastValue;

} // namespace

clsSchedule::clsSchedule(const QString &appPath)
{
    m_items.resize(1);
    AppPath = appPath;
    FileName = CommonFile::JoinPath(appPath, QStringLiteral("Qorlo.XML"));
    StartedAt = Now();
    BackupDate = StartedAt - 1;
}

clsSchedule::~clsSchedule() = default;

// ------------------------------------------------------------------------------------------ cursor

void clsSchedule::SetPosition(int row)
{
    if (row >= 0 && row < m_count) {
        m_position = row;
        m_noMatch = false;
    } else {
        m_position = -1;
        m_noMatch = true;
    }
}

int clsSchedule::findRow(const QString &reportID) const
{
    if (!m_indexValid) {
        // Walking backwards leaves the first row of each ID in the index.
        m_firstRow.clear();
        m_firstRow.reserve(m_count);
        for (int row = m_count - 1; row >= 0; --row)
            m_firstRow.insert(m_items[row][colReportID], row);
        m_indexValid = true;
    }
    return m_firstRow.value(reportID, -1);
}

void clsSchedule::reportIDChanged(int row, const QString &oldValue, const QString &newValue)
{
    if (row >= m_count || oldValue == newValue)
        return;
    if (m_indexValid) {
        if (m_firstRow.value(oldValue, -1) == row) {
            int next = -1;
            for (int r = row + 1; r < m_count; ++r) {
                if (m_items[r][colReportID] == oldValue) {
                    next = r;
                    break;
                }
            }
            if (next < 0)
                m_firstRow.remove(oldValue);
            else
                m_firstRow[oldValue] = next;
        }
        auto it = m_firstRow.find(newValue);
        if (it == m_firstRow.end())
            m_firstRow.insert(newValue, row);
        else if (it.value() > row)
            it.value() = row;
    }
    if (m_maxValid) {
        const double oldNumber = FastValue(oldValue);
        const double newNumber = FastValue(newValue);
        if (oldNumber >= m_maxID && newNumber < oldNumber)
            m_maxValid = false;
        else
            m_maxID = std::max(m_maxID, newNumber);
    }
}

void clsSchedule::invalidateIndex()
{
    m_indexValid = false;
    m_maxValid = false;
}

void clsSchedule::Find(const QString &reportID)
{
    const int row = findRow(reportID);
    m_position = row;
    m_noMatch = row < 0;
    m_found = row >= 0;
}

bool clsSchedule::Confirm(const QString &reportID) const
{
    return findRow(reportID) >= 0;
}

void clsSchedule::MoveFirst()
{
    if (m_sortIndex.size() > 1)
        Find(m_sortIndex.first());
}

void clsSchedule::MoveLast()
{
    if (m_sortIndex.size() > 1)
        Find(m_sortIndex.last());
}

void clsSchedule::MoveNext(const QString &reportID)
{
    const qsizetype at = m_sortIndex.indexOf(reportID);
    if (at >= 0 && at + 1 < m_sortIndex.size())
        Find(m_sortIndex.at(at + 1));
}

void clsSchedule::MovePrior(const QString &reportID)
{
    const qsizetype at = m_sortIndex.indexOf(reportID);
    if (at > 0)
        Find(m_sortIndex.at(at - 1));
}

QString clsSchedule::GetSortIndexArray(int index) const
{
    if (index < 0 || index >= m_sortIndex.size())
        OutOfRange();
    return m_sortIndex.at(index);
}

void clsSchedule::LoadSortIndexArray(const QString &text)
{
    m_sortIndex = text.split(QLatin1Char('|'));
}

// ------------------------------------------------------------------------------------------ columns

QString &clsSchedule::itemAt(int column)
{
    if (m_position < 0 || m_position >= MaxItems)
        OutOfRange();
    Ensure(m_items, m_position);
    return m_items[m_position][column];
}

const QString &clsSchedule::itemAt(int column) const
{
    static const QString blank;
    if (m_position < 0 || m_position >= MaxItems)
        OutOfRange();
    return size_t(m_position) < m_items.size() ? m_items[m_position][column] : blank;
}

QString clsSchedule::Field(int column) const
{
    if (column < 0 || column >= ItemColumnCount)
        OutOfRange();
    return itemAt(column);
}

void clsSchedule::SetField(int column, const QString &value)
{
    if (column < 0 || column >= ItemColumnCount)
        OutOfRange();
    QString &cell = itemAt(column);
    if (column == colReportID) {
        const QString old = cell;
        cell = value;
        reportIDChanged(m_position, old, value);
    } else {
        cell = value;
    }
}

QString clsSchedule::Cell(int row, int column) const
{
    if (row < 0 || row >= MaxItems || column < 0 || column >= ItemColumnCount)
        OutOfRange();
    return size_t(row) < m_items.size() ? m_items[row][column] : QString();
}

QString clsSchedule::ColumnTag(int column)
{
    if (column < 0 || column >= ItemColumnCount)
        OutOfRange();
    return QString::fromLatin1(ScheduleColumns::Of(column).tag);
}

QString clsSchedule::ReportID() const
{
    return m_position < 0 ? QString() : itemAt(colReportID);
}

void clsSchedule::SetReportID(const QString &value)
{
    SetField(colReportID, value);
}

QString clsSchedule::Name()
{
    if (m_position < 0)
        m_position = 0;
    const QString &name = itemAt(colName);
    return name.isEmpty() ? CommonFile::FileBaseName(itemAt(colFile)) : name;
}

QString clsSchedule::File() const
{
    return m_position < 0 ? QString() : itemAt(colFile);
}

QString clsSchedule::Dest()
{
    QString &dest = itemAt(colDest);
    if (dest.isEmpty())
        dest = QStringLiteral("D");
    return dest;
}

QString clsSchedule::Location() const
{
    const QString &location = itemAt(colLocation);
    if (!location.isEmpty())
        return location;
    const QString &file = itemAt(colFile);
    return CommonFile::JoinPath(AppPath, QStringLiteral("Output/") + CommonFile::FileBaseName(file) +
                                             QLatin1Char('.') + CommonFile::FileExtension(file));
}

qint16 clsSchedule::PrinterCopies() const
{
    const qint16 copies = Numbers::ToInt16(FastValue(itemAt(colPrinterCopies)));
    return copies < 1 ? qint16(1) : copies;
}

void clsSchedule::SetPrinterCopies(qint16 value)
{
    itemAt(colPrinterCopies) = Numbers::FormatHash(value);
}

qint16 clsSchedule::PageCount() const
{
    return Numbers::ToInt16(FastValue(itemAt(colPageCount)));
}

void clsSchedule::SetPageCount(qint16 value)
{
    if (m_position < 0)
        return;
    itemAt(colPageCount) = QString::number(value);
}

#define QORLO_PLAIN_GET(Prop)                                                                                \
    QString clsSchedule::Prop() const                                                                        \
    {                                                                                                        \
        return itemAt(col##Prop);                                                                            \
    }
#define QORLO_PLAIN_SET(Prop)                                                                                \
    void clsSchedule::Set##Prop(const QString &value)                                                        \
    {                                                                                                        \
        itemAt(col##Prop) = value;                                                                           \
    }
#define QORLO_PLAIN(Prop) QORLO_PLAIN_GET(Prop) QORLO_PLAIN_SET(Prop)

QORLO_PLAIN_SET(Name)
QORLO_PLAIN_SET(File)
QORLO_PLAIN(Schedule)
QORLO_PLAIN(Frequency)
QORLO_PLAIN(FreqTimes)
QORLO_PLAIN_SET(Dest)
QORLO_PLAIN_SET(Location)
QORLO_PLAIN(OutputFormat)
QORLO_PLAIN(Prompt)
QORLO_PLAIN(Printer)
QORLO_PLAIN(Email)
QORLO_PLAIN(Group)
QORLO_PLAIN(SelFormula)
QORLO_PLAIN(NextRun)
QORLO_PLAIN(NoRecords)
QORLO_PLAIN(EMailAttach)
QORLO_PLAIN(HTMLPages)
QORLO_PLAIN(PrinterOrient)
QORLO_PLAIN(DateStamp)
QORLO_PLAIN(LastRun)
QORLO_PLAIN(CustomCalendarFile)
QORLO_PLAIN(RptToCC)
QORLO_PLAIN(RptToBCC)
QORLO_PLAIN(RptSubject)
QORLO_PLAIN(RptMessage)
QORLO_PLAIN(RptFrom)
QORLO_PLAIN(NotifyTo)
QORLO_PLAIN(NotifyMsg)
QORLO_PLAIN(ErrorTo)
QORLO_PLAIN(ErrorMsg)
QORLO_PLAIN(ReportDescription)
QORLO_PLAIN(RetainData)
QORLO_PLAIN(CollectionName)
QORLO_PLAIN(MultiRunLineSuccessTo)
QORLO_PLAIN(MultiRunLineSuccessMsg)
QORLO_PLAIN(MultiRunLineErrorTo)
QORLO_PLAIN(MultiRunLineErrorMsg)
QORLO_PLAIN(MailAttach)

#undef QORLO_PLAIN
#undef QORLO_PLAIN_SET
#undef QORLO_PLAIN_GET

QString clsSchedule::DestDesc()
{
    const QString dest = Dest();
    if (dest == QLatin1String("D"))
        return QStringLiteral("Disk");
    if (dest == QLatin1String("E"))
        return QStringLiteral("EMail");
    if (dest == QLatin1String("P"))
        return QStringLiteral("Printer");
    if (dest == QLatin1String("M"))
        return QStringLiteral("MultiRun");
    return QStringLiteral("Unknown");
}

QString clsSchedule::DestName()
{
    if (File() == QLatin1String("COLLECTION"))
        return QString();
    const QString dest = Dest();
    if (dest == QLatin1String("E"))
        return Email();
    if (dest == QLatin1String("M"))
        return QStringLiteral("MultiRun");
    if (dest == QLatin1String("D"))
        return Location();
    if (dest == QLatin1String("P"))
        return Printer();
    return QString();
}

// ------------------------------------------------------------------------------------------ tables

void clsSchedule::appendRow()
{
    if (m_count >= MaxItems)
        OutOfRange();
    const int row = m_count++;
    Ensure(m_items, m_count); // the row and the blank one past Count
    m_position = row;
    const QString &id = m_items[row][colReportID];
    // Rows past Count are always blank; the new row joins the caches with its empty ID.
    if (m_indexValid && !m_firstRow.contains(id))
        m_firstRow.insert(id, row);
    if (m_maxValid)
        m_maxID = std::max(m_maxID, FastValue(id));
}

void clsSchedule::AddNew()
{
    appendRow();
    SetReportID(QString::number(NextReportID()));
}

void clsSchedule::Duplicate()
{
    const int source = m_position;
    if (source < 0 || source >= MaxItems)
        OutOfRange();
    Ensure(m_items, source);
    AddNew();
    for (int column = 1; column < ItemColumnCount; ++column)
        m_items[m_position][column] = m_items[source][column];
}

void clsSchedule::Delete(const QString &reportID)
{
    const int row = findRow(reportID);
    if (row < 0)
        return;
    for (int r = row; r + 1 < m_count; ++r)
        m_items[r] = std::move(m_items[r + 1]);
    --m_count;
    m_items[m_count] = ItemRow();
    invalidateIndex();
    ParmRemove(reportID);
}

void clsSchedule::AddFolder2Schedule(const QString &path)
{
    const QString folder = CommonFile::FolderOf(path);
    QDir dir(folder);
    const QStringList names =
        dir.entryList(QDir::Files | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Unsorted);
    for (const QString &name : names) {
        if (QFileInfo(name).suffix().compare(QLatin1String("rpt"), Qt::CaseInsensitive) != 0)
            continue;
        if (name.lastIndexOf(QLatin1Char('.')) < 0)
            continue;
        AddNew();
        SetName(name);
        SetFile(CommonFile::JoinPath(folder, name));
        SetSchedule(QStringLiteral("N"));
        SetFreqTimes(QStringLiteral("1"));
        SetFrequency(QStringLiteral("W"));
    }
}

qint32 clsSchedule::NextReportID() const
{
    if (!m_maxValid) {
        double highest = 0;
        for (int row = 0; row < m_count; ++row)
            highest = std::max(highest, FastValue(m_items[row][colReportID]));
        m_maxID = highest;
        m_maxValid = true;
    }
    return Numbers::ToInt32(m_maxID + 1);
}

qint32 clsSchedule::ActiveCount() const
{
    qint32 active = 0;
    for (int row = 0; row < m_count; ++row) {
        const QString &next = m_items[row][colNextRun];
        if (!next.isEmpty() && DayDate::IsDate(next))
            ++active;
    }
    return active;
}

void clsSchedule::Clear()
{
    // Rows are blanked too, so that a row added later starts empty.
    for (int row = 0; row < m_count; ++row)
        m_items[row] = ItemRow();
    for (int row = 0; row < m_collCount; ++row)
        m_colls[row] = CollectionRow();
    m_count = 0;
    m_collCount = 0;
    invalidateIndex();
}

QStringList clsSchedule::NotifyEmailList() const
{
    static const int columns[] = {colNotifyTo, colErrorTo, colMultiRunLineSuccessTo, colMultiRunLineErrorTo};
    QString list;
    for (int row = 0; row < m_count; ++row) {
        for (int column : columns) {
            const QString &field = m_items[row][column];
            const QStringList parts = field.split(QLatin1Char(';'));
            for (const QString &part : parts) {
                // The original's substring search: an empty element is found in any non-empty list.
                const bool found = !list.isEmpty() && list.contains(part);
                if (!found) {
                    if (!list.isEmpty())
                        list += QLatin1Char(';');
                    list += field;
                    break;
                }
            }
        }
    }
    if (list.isEmpty())
        return {};
    return list.split(QLatin1Char(';'));
}

qint16 clsSchedule::ChangePreview(int column, const QString &search, const QString &matchCase) const
{
    if (column < 0 || column >= ItemColumnCount)
        OutOfRange();
    if (search.isEmpty())
        return 0;
    const bool lower = matchCase == QLatin1String("N");
    const QString wanted = lower ? search.toLower() : search;
    qint16 hits = 0;
    for (int row = 0; row < m_count; ++row) {
        const QString &field = m_items[row][column];
        if ((lower ? field.toLower() : field).contains(wanted))
            ++hits;
    }
    return hits;
}

qint16 clsSchedule::ChangeBulk(int column, const QString &search, const QString &replacement,
                               const QString &matchCase)
{
    if (column < 0 || column >= ItemColumnCount)
        OutOfRange();
    if (search.isEmpty())
        return 0;
    const bool lower = matchCase == QLatin1String("N");
    const QString wanted = lower ? search.toLower() : search;
    qint16 hits = 0;
    for (int row = 0; row < m_count; ++row) {
        QString text = lower ? m_items[row][column].toLower() : m_items[row][column];
        const qsizetype at = text.indexOf(wanted);
        if (at < 0)
            continue;
        text.replace(at, wanted.size(), replacement);
        const QString old = m_items[row][column];
        m_items[row][column] = text;
        if (column == colReportID)
            reportIDChanged(row, old, text);
        ++hits;
    }
    return hits;
}

// ------------------------------------------------------------------------------------------ domains

QString clsSchedule::Domain(int number) const
{
    if (number < 0 || number >= DomainCount)
        OutOfRange();
    return m_domains[number];
}

void clsSchedule::SaveDomain(int number, const QString &text)
{
    if (number < 0 || number >= DomainCount)
        OutOfRange();
    m_domains[number] = text;
}
