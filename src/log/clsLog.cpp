#include "clsLog.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/LineReader.h"
#include "core/Numbers.h"
#include "core/OneLine.h"
#include "core/QorloError.h"
#include "core/XMLCode.h"

#include <algorithm>

using namespace XMLCode;

namespace {

const QString kDeleted = QStringLiteral("DEL");

// A stored date cell as a date; text that is no date raises the type mismatch error.
double ParseDateCell(const QString &text)
{
    const std::optional<double> date = DayDate::Parse(text);
    if (!date)
        throw QorloError(QorloError::TypeMismatch);
    return *date;
}

// The number of `count` ASCII digits, or -1.
int Digits(QStringView text, qsizetype from, qsizetype count)
{
    int value = 0;
    for (qsizetype i = from; i < from + count; ++i) {
        const char16_t c = text.at(i).unicode();
        if (c < u'0' || c > u'9')
            return -1;
        value = value * 10 + (c - u'0');
    }
    return value;
}

// True for a valid date in exactly the form FormatDateTime writes, which a load keeps as it is.
// Nearly every stored date has that form; this spares the general parser on a log of many rows.
bool IsStoredForm(QStringView text)
{
    if (text.size() != 17 || text.at(2) != QLatin1Char('-') || text.at(6) != QLatin1Char('-') ||
        text.at(11) != QLatin1Char(' ') || text.at(14) != QLatin1Char(':'))
        return false;
    const int day = Digits(text, 0, 2), year = Digits(text, 7, 4);
    const int hour = Digits(text, 12, 2), minute = Digits(text, 15, 2);
    if (year < 1900 || hour < 0 || hour > 23 || minute < 0 || minute > 59)
        return false;
    static const std::array<QString, 12> months = [] {
        std::array<QString, 12> names;
        for (int month = 1; month <= 12; ++month)
            names[size_t(month - 1)] = MonthAbbreviation(month);
        return names;
    }();
    const auto found = std::find(months.cbegin(), months.cend(), text.mid(3, 3));
    return found != months.cend() && QDate::isValid(year, int(found - months.cbegin()) + 1, day);
}

// A number read into 32 bits: the leading numeric prefix, rounded; too big raises the overflow error.
qint32 ReadNumber(const QString &value)
{
    bool plain = false;
    const int number = value.toInt(&plain); // the common case, without the general prefix scan
    return plain ? number : Numbers::ToInt32(Numbers::NumericPrefix(value));
}

} // namespace

clsLog::clsLog(const QString &appPath) : m_appPath(appPath), m_rows(UpperBound + 1) {}

QString clsLog::FileName() const
{
    return CommonFile::JoinPath(m_appPath, QStringLiteral("QorloLog.XML"));
}

void clsLog::AddNew()
{
    if (m_count >= UpperBound) {
        // A full table loses everything; row 0 says so and keeps its other old cells.
        Clear();
        m_cursor = 0;
        m_count = 1;
        SetLogDate(Now());
        SetLogText(QStringLiteral("Log file full - all entries removed"));
    }
    m_cursor = m_count;
    ++m_count;
    RowAt(m_cursor).fill(QString());
}

void clsLog::Clear()
{
    m_count = 0;
    m_cursor = -1;
}

void clsLog::Remove(double cutoff)
{
    int removed = 0;
    for (int row = 0; row < m_count; ++row) {
        // An entry logged without a start ("Cannot find file") ages by its finish; one with neither
        // stays. Parsing the empty start would stop this and every later retention pass.
        QString written = RowAt(row)[ColLogDate];
        if (written.isEmpty())
            written = RowAt(row)[ColFinish];
        if (!written.isEmpty() && ParseDateCell(written) <= cutoff) {
            RowAt(row)[ColReportID] = kDeleted;
            ++removed;
        }
    }
    if (removed == 0)
        return;
    // Appended without the full-table test; the row's other cells keep their old text.
    m_cursor = m_count;
    ++m_count;
    const double now = Now();
    SetReportID(QStringLiteral("LOG"));
    SetLogDate(now);
    SetFinishDate(now);
    SetLogText(QStringLiteral("Automatic delete of ") + QString::number(removed) +
               QStringLiteral(" items from log file"));
}

void clsLog::Load(const QString &path)
{
    LineReader reader(path);
    while (!reader.atEnd())
        ReadTags(reader.readLineView().trimmed());
}

void clsLog::ReadTags(QStringView line)
{
    if (line.startsWith(QLatin1String("<!")))
        return;
    if (line == QLatin1String("<QorloLog>")) {
        AddNew();
        return;
    }
    const QStringView tag = LineTag(line);
    if (tag.isEmpty())
        return;
    const QString value = ReadTagValue(line);

    if (tag == QLatin1String("<LogReportID>")) {
        SetReportID(value);
    } else if (tag == QLatin1String("<LogDate>")) {
        SetDateCell(ColLogDate, value);
    } else if (tag == QLatin1String("<LogFinish>")) {
        SetDateCell(ColFinish, value);
    } else if (tag == QLatin1String("<LogNextDate>")) {
        SetNextDate(value);
    } else if (tag == QLatin1String("<LogText>")) {
        SetLogText(value);
    } else if (tag == QLatin1String("<LogPages>")) {
        RowAt(m_cursor)[ColPages] = QString::number(ReadNumber(value));
    } else if (tag == QLatin1String("<WebLogSetting>")) {
        WebLogSetting = value;
    } else if (tag == QLatin1String("<CheckRetainLog>")) {
        CheckRetainLog = value;
    } else if (tag == QLatin1String("<RetainLog>")) {
        RetainLog = ReadNumber(value);
    } else if (tag == QLatin1String("<DeleteLogDate>")) {
        // A date that is not one is passed over like any line that isn't understood.
        if (const std::optional<double> date = DayDate::Parse(value))
            DeleteLogDate = *date < Today() - 365 ? Today() : *date;
    }
}

void clsLog::SetDateCell(Column column, const QString &value)
{
    QString &cell = RowAt(m_cursor)[column];
    cell = value.isEmpty() || IsStoredForm(value) ? value : FormatDateTime(ParseDateCell(value));
}

void clsLog::Save()
{
    if (Today() >= DeleteLogDate)
        ApplyRetention();
    if (OpenXML(FileName(), QStringLiteral("QorloLogDoc")).startsWith(QLatin1String("Err")))
        return;
    WriteOpenTag(QStringLiteral("LogHeader"));
    WriteElement(QStringLiteral("RetainLog"), Numbers::FormatHash(RetainLog));
    WriteElement(QStringLiteral("DeleteLogDate"), FormatDate(DeleteLogDate));
    WriteElement(QStringLiteral("CheckRetainLog"), CheckRetainLog);
    WriteElement(QStringLiteral("WebLogSetting"), WebLogSetting);
    WriteCloseTag(QStringLiteral("LogHeader"));
    WriteRows();
    CloseXML();
    SaveWeb();
}

void clsLog::ApplyRetention()
{
    const double today = Today();
    Remove(today - RetainLog);
    if (CheckRetainLog == QLatin1String("D"))
        DeleteLogDate = today + 1;
    else if (CheckRetainLog == QLatin1String("W"))
        DeleteLogDate = today + 7;
    else if (CheckRetainLog == QLatin1String("M"))
        DeleteLogDate = today + 30;
}

void clsLog::WriteRows() const
{
    if (m_count < 1)
        return;
    // The "DEL" test reads the row at the cursor, not the row being written: with the cursor on a
    // deleted row nothing is written, otherwise every row is, deleted ones included.
    if (ReportID() == kDeleted)
        return;
    for (int row = 0; row < m_count; ++row) {
        const Row &cells = RowAt(row);
        WriteOpenTag(QStringLiteral("QorloLog"));
        WriteElement(QStringLiteral("LogReportID"), cells[ColReportID]);
        WriteElement(QStringLiteral("LogDate"), cells[ColLogDate]);
        if (!cells[ColFinish].isEmpty())
            WriteElement(QStringLiteral("LogFinish"), cells[ColFinish]);
        if (!cells[ColNextDate].isEmpty())
            WriteElement(QStringLiteral("LogNextDate"), cells[ColNextDate]);
        WriteElement(QStringLiteral("LogText"), cells[ColText]);
        WriteElement(QStringLiteral("LogPages"), cells[ColPages]);
        WriteCloseTag(QStringLiteral("QorloLog"));
    }
}

void clsLog::SaveWeb()
{
    if (m_webPageWriter)
        m_webPageWriter(*this);
}

void clsLog::ApplyStartDefaults()
{
    RetainLog = 30;
    DeleteLogDate = Now() - 1;
    CheckRetainLog = QStringLiteral("W");
}

clsLog::Row &clsLog::RowAt(int row)
{
    if (row < 0 || row > UpperBound)
        throw QorloError(QorloError::OutOfRange);
    return m_rows[size_t(row)];
}

const clsLog::Row &clsLog::RowAt(int row) const
{
    if (row < 0 || row > UpperBound)
        throw QorloError(QorloError::OutOfRange);
    return m_rows[size_t(row)];
}

QString clsLog::CellAt(int row, Column column) const
{
    return RowAt(row)[column];
}

QString clsLog::ReportID() const
{
    return RowAt(m_cursor)[ColReportID];
}
void clsLog::SetReportID(const QString &value)
{
    RowAt(m_cursor)[ColReportID] = value;
}

double clsLog::LogDate() const
{
    return ParseDateCell(LogDateTxt());
}
QString clsLog::LogDateTxt() const
{
    return RowAt(m_cursor)[ColLogDate];
}
void clsLog::SetLogDate(double value)
{
    RowAt(m_cursor)[ColLogDate] = FormatDateTime(value);
}

double clsLog::FinishDate() const
{
    const QString text = FinishDateTxt();
    return text.isEmpty() ? 0.0 : ParseDateCell(text);
}
QString clsLog::FinishDateTxt() const
{
    return RowAt(m_cursor)[ColFinish];
}
void clsLog::SetFinishDate(double value)
{
    RowAt(m_cursor)[ColFinish] = FormatDateTime(value);
}

QString clsLog::NextDate() const
{
    return RowAt(m_cursor)[ColNextDate];
}
void clsLog::SetNextDate(const QString &value)
{
    RowAt(m_cursor)[ColNextDate] = value;
}

QString clsLog::LogText() const
{
    return RowAt(m_cursor)[ColText];
}
void clsLog::SetLogText(const QString &value)
{
    RowAt(m_cursor)[ColText] = value;
}

qint32 clsLog::Pages() const
{
    return Numbers::ToInt32(Numbers::NumericPrefix(PagesTxt()));
}
QString clsLog::PagesTxt() const
{
    return RowAt(m_cursor)[ColPages];
}
void clsLog::SetPages(qint32 value)
{
    RowAt(m_cursor)[ColPages] = Numbers::FormatHash(value);
}

void WriteLogEntry(clsLog &log, const QString &id, double start, double finish, const QString &next,
                   const QString &text, qint32 pages)
{
    log.Clear();
    log.Load(log.FileName());
    log.AddNew();
    // Each cell is one element on one line of the file.
    log.SetReportID(OneLine(id));
    log.SetLogDate(start);
    log.SetFinishDate(finish);
    log.SetNextDate(OneLine(next));
    log.SetLogText(OneLine(text));
    log.SetPages(pages);
    log.Save();
}
