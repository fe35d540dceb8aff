// The schedule file Qorlo.XML: Load, ReadTags and Save of clsSchedule.
#include "clsSchedule.h"

#include "core/XMLCode.h"
#include "ScheduleColumns.h"
#include "clsScheduleInternal.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/LineReader.h"
#include "core/Numbers.h"
#include "core/QorloError.h"

#include <QFileInfo>

#include <deque>
#include <string_view>
#include <unordered_map>

namespace {

// The tags of the settings, parameters and collections; an item column's tag has the column's number.
enum Tag {
    tagDeleteReportID = 100,
    tagLoadNewFile,
    tagLoadNewFolder,
    tagScheduleState,
    tagAutoRun,
    tagSMTPStdMessage,
    tagCollection,
    tagCollectionID,
    tagCollectionItem,
    tagParmValueType,
    tagParmReportID,
    tagParmName,
    tagParmValue,
    tagSMTPPort,
    tagSMTPDelay,
    tagTextFormatPage,
    tagTextFormatCPI,
    tagSMTPPassword,
    tagTodayAdjust,
    tagWeekStart,
    tagMonthLength,
    tagPeriodOne,
    tagYearStart,
    tagLastReportDate,
    tagBusinessHourStart,
    tagBusinessHourEnd,
    tagApplication,
    tagStartTime,
    tagStopTime,
    tagLastReport,
    tagLastReportMsg,
    tagSMTPServer,
    tagSMTPFrom,
    tagTestMessageTo,
    tagSMTPMethod,
    tagSMTPApplication,
    tagSMTPAuthentication,
    tagSMTPUser,
    tagExcelFormat,
    tagCrystalFormat,
    tagBusinessWeek,
    tagBusinessMonth,
    tagHolidayList,
    tagBusinessHourSchedule,
    tagSMTPEncryption,
    tagDomain0, // .. tagDomain0 + 9
};

// Tag text (with its angle brackets) to code, looked up without copying the tag out of the line.
class TagIndex
{
public:
    void insert(const QString &tag, int code)
    {
        m_keys.push_back(tag); // the QString's buffer stays where it is, so the view stays valid
        const QString &key = m_keys.back();
        m_codes.emplace(
            std::u16string_view(reinterpret_cast<const char16_t *>(key.utf16()), size_t(key.size())), code);
    }
    int find(QStringView tag) const
    {
        const auto it = m_codes.find(std::u16string_view(tag.utf16(), size_t(tag.size())));
        return it == m_codes.end() ? -1 : it->second;
    }

private:
    std::deque<QString> m_keys;
    std::unordered_map<std::u16string_view, int> m_codes;
};

const TagIndex &TagTable()
{
    static const TagIndex table = [] {
        TagIndex t;
        auto add = [&t](const char *name, int code) {
            t.insert(QLatin1Char('<') + QLatin1String(name) + QLatin1Char('>'), code);
        };
        for (const ScheduleColumns::ItemColumn &item : ScheduleColumns::Items) {
            if (item.written != ScheduleColumns::Never)
                add(item.tag, item.column);
        }
        add("DeleteReportID", tagDeleteReportID);
        add("LoadNewFile", tagLoadNewFile);
        add("LoadNewFolder", tagLoadNewFolder);
        add("Schedule_State", tagScheduleState);
        add("AutoRun", tagAutoRun);
        add("SMTP-StdMessage", tagSMTPStdMessage);
        add("Collection", tagCollection);
        add("CollectionID", tagCollectionID);
        add("CollectionItem", tagCollectionItem);
        add("ParameterType", tagParmValueType);
        add("ParameterValueType", tagParmValueType);
        add("SMTP-Port", tagSMTPPort);
        add("SMTPDelay", tagSMTPDelay);
        add("Text-FormatPage", tagTextFormatPage);
        add("Text-FormatCPI", tagTextFormatCPI);
        add("SMTPPassword", tagSMTPPassword);
        add("Today-Adjust", tagTodayAdjust);
        add("Week-Start", tagWeekStart);
        add("Month-Length", tagMonthLength);
        add("Period-One", tagPeriodOne);
        add("Year-Start", tagYearStart);
        add("LastReportDate", tagLastReportDate);
        add("BusinessHour-Start", tagBusinessHourStart);
        add("BusinessHour-End", tagBusinessHourEnd);
        for (int d = 0; d < clsSchedule::DomainCount; ++d)
            t.insert(QStringLiteral("<Domain_%1>").arg(d), tagDomain0 + d);
        add("Application", tagApplication);
        add("StartTime", tagStartTime);
        add("StopTime", tagStopTime);
        add("LastReport", tagLastReport);
        add("LastReportMsg", tagLastReportMsg);
        add("ParameterReportID", tagParmReportID);
        add("ParameterName", tagParmName);
        add("ParameterValue", tagParmValue);
        add("SMTP-Server", tagSMTPServer);
        add("SMTP-From", tagSMTPFrom);
        add("TestMessageTo", tagTestMessageTo);
        add("SMTPMethod", tagSMTPMethod);
        add("SMTPApplication", tagSMTPApplication);
        add("SMTPAuthentication", tagSMTPAuthentication);
        add("SMTPUser", tagSMTPUser);
        add("Excel-Format", tagExcelFormat);
        add("Crystal-Format", tagCrystalFormat);
        add("Business-Week", tagBusinessWeek);
        add("Business-Month", tagBusinessMonth);
        add("Holiday-List", tagHolidayList);
        add("BusinessHour-Schedule", tagBusinessHourSchedule);
        add("SMTP-Encryption", tagSMTPEncryption);
        return t;
    }();
    return table;
}

double ToDate(const QString &value)
{
    const std::optional<double> date = DayDate::Parse(value);
    if (!date)
        throw QorloError(QorloError::TypeMismatch);
    return *date;
}

void ReadHourMinute(const QString &value, clsSchedule::HourMinute &target)
{
    const qsizetype colon = value.indexOf(QLatin1Char(':'));
    if (colon < 0)
        return;
    const qint16 hour = Numbers::ToInt16(Numbers::NumericPrefix(value.left(colon)));
    const qint16 minute = Numbers::ToInt16(Numbers::NumericPrefix(value.mid(colon + 1)));
    target = {hour, minute};
}

QString HourMinuteText(const clsSchedule::HourMinute &value)
{
    return Numbers::FormatZeros(value.Hour, 2) + QLatin1Char(':') + Numbers::FormatZeros(value.Minute, 2);
}

// FormatDateTime, except that a moment before 1900 keeps the original platform's text instead of an
// empty one, so that the reader (for which empty is no date) can take it back.
QString FileDateTime(double value)
{
    const QString text = FormatDateTime(value);
    if (!text.isEmpty())
        return text;
    const QDateTime moment = DayDate::ToDateTime(value);
    if (!moment.isValid())
        return text;
    const QDate date = moment.date();
    return Numbers::FormatZeros(date.day(), 2) + QLatin1Char('-') + MonthAbbreviation(date.month()) +
           QLatin1Char('-') + Numbers::FormatZeros(date.year(), 4) + QLatin1Char(' ') +
           Numbers::FormatZeros(moment.time().hour(), 2) + QLatin1Char(':') +
           Numbers::FormatZeros(moment.time().minute(), 2);
}

// Whether an item's column goes into the file. Nothing in a save may throw: the writer would keep the
// half-written file open.
bool IsWritten(const ScheduleColumns::ItemColumn &column, const QString &text)
{
    switch (column.written) {
    case ScheduleColumns::Always: return true;
    case ScheduleColumns::WhenSet: return !text.isEmpty();
    case ScheduleColumns::WhenCopies: return Numbers::RoundEven(ScheduleInternal::FastValue(text)) >= 1;
    case ScheduleColumns::Never: return false;
    }
    return false;
}

} // namespace

QString clsSchedule::ApplicationVersion()
{
    return QString::number(QORLO_VERSION_MAJOR) + QLatin1Char('.') + QString::number(QORLO_VERSION_MINOR) +
           QStringLiteral(" (") + QString::number(QORLO_REVISION) + QLatin1Char(')');
}

int clsSchedule::Load(const QString &path)
{
    if (path.isEmpty() || !QFileInfo::exists(path))
        return 0;
    const int known = m_knownLines;
    LineReader reader(path);
    LineReader *outer = m_reader;
    m_reader = &reader;
    try {
        while (!reader.atEnd()) {
            QString line = reader.readLine();
            ReadTags(line);
        }
    } catch (...) {
        m_reader = outer;
        throw;
    }
    m_reader = outer;
    return m_knownLines - known;
}

void clsSchedule::ReadTags(QString &line)
{
    line = line.trimmed();
    if (line.startsWith(QLatin1String("<!")) || line == QLatin1String("<Schedule>") ||
        line == QLatin1String("<Report_Schedule>"))
        return;
    if (line == QLatin1String("<Parameter>")) {
        ++m_knownLines;
        ParmAddNew();
        return;
    }
    const qsizetype close = line.indexOf(QLatin1Char('>'));
    if (close < 0)
        return;
    // The tag is the line up to the first ">", compared before TagValue decodes the line in place.
    const int code = TagTable().find(QStringView(line).left(close + 1));
    if (code >= 0)
        ++m_knownLines;
    readTag(code, line);
}

void clsSchedule::readTag(int code, QString &line)
{
    const QString value = XMLCode::TagValue(line);
    if (code < 0)
        return;

    auto longValue = [&](const QString &endTag) {
        if (m_reader)
            return XMLCode::ReadLongElement(*m_reader, line, endTag);
        LineReader none = LineReader::FromText(QString());
        return XMLCode::ReadLongElement(none, line, endTag);
    };
    if (code < ItemColumnCount) {
        const ScheduleColumns::ItemColumn &item = ScheduleColumns::Of(code);
        if (code == colReportID) {
            if (Confirm(value)) {
                Find(value);
            } else {
                AddNew();
                SetReportID(value);
            }
        } else if (code == colPrinterCopies) {
            SetPrinterCopies(Numbers::ToInt16(ScheduleInternal::FastValue(value)));
        } else if (item.form == ScheduleColumns::Long) {
            const QString text = longValue(QStringLiteral("</") + QLatin1String(item.tag) + QLatin1Char('>'));
            itemAt(code) = text;
        } else {
            itemAt(code) = value;
        }
        return;
    }
    if (code >= tagDomain0 && code < tagDomain0 + DomainCount) {
        m_domains[code - tagDomain0] = value;
        return;
    }
    switch (code) {
    case tagDeleteReportID:
        Find(value);
        Delete(value);
        break;
    case tagLoadNewFile:
        AddNew();
        SetFile(value);
        SetName(CommonFile::FileNameOnly(value));
        SetSchedule(QStringLiteral("N"));
        SetFreqTimes(QStringLiteral("1"));
        SetFrequency(QStringLiteral("W"));
        break;
    case tagLoadNewFolder: AddFolder2Schedule(value); break;
    case tagScheduleState: Active = value == QLatin1String("Active"); break;
    case tagAutoRun: AutoRun = true; break;
    case tagSMTPStdMessage: SMTP_StdMessage = longValue(QStringLiteral("</SMTP-StdMessage>")); break;
    case tagCollection: NewCollectionItem(); break;
    case tagCollectionID: SetCollectionID(value); break;
    case tagCollectionItem: SetCollectionItem(value); break;
    case tagParmValueType: SetParmValueType(value); break;
    case tagParmReportID: SetParmReportID(value); break;
    case tagParmName: SetParmName(value); break;
    case tagParmValue: SetParmValue(value); break;
    case tagSMTPPort: SMTP_Port = Numbers::ToInt32(Numbers::NumericPrefix(value)); break;
    case tagSMTPDelay:
        if (Numbers::IsNumeric(value))
            SMTPDelay = Numbers::TextToInt16(value);
        break;
    case tagTextFormatPage:
        if (Numbers::IsNumeric(value))
            Text_FormatPage = value;
        break;
    case tagTextFormatCPI:
        if (Numbers::IsNumeric(value))
            Text_FormatCPI = value;
        break;
    case tagSMTPPassword: SMTPPassword = XMLCode::DecodeText(value); break;
    case tagTodayAdjust:
        if (!value.isEmpty())
            Today_Adjust = Numbers::TextToInt16(value);
        break;
    case tagWeekStart:
        if (!value.isEmpty())
            Week_Start = Numbers::TextToInt16(value);
        break;
    case tagMonthLength:
        if (!value.isEmpty())
            Month_Length = Numbers::TextToInt16(value);
        break;
    case tagPeriodOne: Period_One = ToDate(value); break;
    case tagYearStart: Year_Start = ToDate(value); break;
    case tagLastReportDate: LastReportDate = ToDate(value); break;
    case tagBusinessHourStart: ReadHourMinute(value, BusinessHour_Start); break;
    case tagBusinessHourEnd: ReadHourMinute(value, BusinessHour_End); break;
    case tagApplication: Application = value; break;
    case tagStartTime: StartTime = value; break;
    case tagStopTime: StopTime = value; break;
    case tagLastReport: LastReport = value; break;
    case tagLastReportMsg: LastReportMsg = value; break;
    case tagSMTPServer: SMTP_Server = value; break;
    case tagSMTPFrom: SMTP_From = value; break;
    case tagTestMessageTo: TestMessageTo = value; break;
    case tagSMTPMethod: SMTPMethod = value; break;
    case tagSMTPApplication: SMTPApplication = value; break;
    case tagSMTPAuthentication: SMTPAuthentication = value; break;
    case tagSMTPUser: SMTPUser = value; break;
    case tagExcelFormat: Excel_Format = value; break;
    case tagCrystalFormat: Crystal_Format = value; break;
    case tagBusinessWeek: Business_Week = value; break;
    case tagBusinessMonth: Business_Month = value; break;
    case tagHolidayList: Holiday_List = value; break;
    case tagBusinessHourSchedule:
        if (Numbers::IsNumeric(value))
            BusinessHour_Schedule = Numbers::TextToInt16(value);
        break;
    case tagSMTPEncryption: SMTP_Encryption = value; break;
    default: break;
    }
}

void clsSchedule::Save(const QString &path)
{
    using namespace XMLCode;
    if (SaveSuspended)
        return;
    const int keep = m_position;
    if (OpenXML(path, QStringLiteral("Schedule"), QString(), FileAccess::OwnerOnly)
            .startsWith(QLatin1String("Err")))
        return;
    auto element = [](const char *tag, const QString &value) { WriteElement(QLatin1String(tag), value); };
    auto ifSet = [](const char *tag, const QString &value) {
        if (!value.isEmpty())
            WriteElement(QLatin1String(tag), value);
    };

    WriteOpenTag(QStringLiteral("Current_Version"));
    element("Application", QStringLiteral("QorloMANAGER"));
    element("ApplicationVersion", ApplicationVersion());
    if (AutoRun)
        element("AutoRun", QStringLiteral("Set"));
    element("Schedule_State", Active ? QStringLiteral("Active") : QStringLiteral("Stopped"));
    element("StartTime", StartTime);
    element("StopTime", StopTime);
    ifSet("SMTP-Server", SMTP_Server);
    element("SMTP-Port", Numbers::FormatHash(SMTP_Port));
    ifSet("SMTP-From", SMTP_From);
    element("SMTPDelay", Numbers::FormatHash(SMTPDelay));
    ifSet("TestMessageTo", TestMessageTo);
    WriteLongElement(QStringLiteral("SMTP-StdMessage"), SMTP_StdMessage);
    element("SMTPMethod", SMTPMethod);
    element("SMTPApplication", SMTPApplication);
    element("SMTPAuthentication", SMTPAuthentication);
    element("SMTPUser", SMTPUser);
    element("SMTPPassword", EncodeText(SMTPPassword));
    if (!SMTP_Encryption.isEmpty() && SMTP_Encryption != QLatin1String("None"))
        element("SMTP-Encryption", SMTP_Encryption);
    element("Today-Adjust", Numbers::FormatHash(Today_Adjust));
    element("Week-Start", Numbers::FormatHash(Week_Start));
    element("Month-Length", Numbers::FormatHash(Month_Length));
    if (DayDate::Year(Year_Start) > 1900)
        element("Year-Start", FormatDateTime(Year_Start));
    if (DayDate::Year(Period_One) > 1900)
        element("Period-One", FormatDateTime(Period_One));
    element("Excel-Format", Excel_Format);
    element("Text-FormatCPI", Text_FormatCPI);
    element("Text-FormatPage", Text_FormatPage);
    element("Crystal-Format", Crystal_Format);
    element("Business-Week", Business_Week);
    element("Business-Month", Business_Month);
    element("BusinessHour-Start", HourMinuteText(BusinessHour_Start));
    element("BusinessHour-End", HourMinuteText(BusinessHour_End));
    element("BusinessHour-Schedule", QString::number(BusinessHour_Schedule));
    element("Holiday-List", Holiday_List);
    if (!LastReport.isEmpty()) {
        element("LastReportID", LastReportID);
        element("LastReport", LastReport);
        element("LastReportDate", FileDateTime(LastReportDate));
        element("LastReportMsg", LastReportMsg);
    }
    element("BackupDate", FormatDateTime(BackupDate));
    element("BackupFrequency", BackupFrequency);
    element("BackupPrevious", BackupPrevious);
    element("BackupPreviousFile", BackupPreviousFile);
    element("BackupPurge", QString::number(BackupPurge));
    element("BackupLastPurge", BackupLastPurge);
    element("BackupManualDate", BackupManualDate);
    element("BackupManualFile", BackupManualFile);
    WriteCloseTag(QStringLiteral("Current_Version"));

    // The tags as QStrings once, in the order of the table.
    static const auto tags = [] {
        std::array<QString, ItemColumnCount> texts;
        for (size_t i = 0; i < texts.size(); ++i)
            texts[i] = QLatin1String(ScheduleColumns::Items[i].tag);
        return texts;
    }();

    WriteOpenTag(QStringLiteral("Report_Schedule"));
    for (int row = 0; row < m_count; ++row) {
        const ItemRow &item = m_items[row];
        WriteOpenTag(QStringLiteral("Report"));
        for (size_t i = 0; i < tags.size(); ++i) {
            const ScheduleColumns::ItemColumn &column = ScheduleColumns::Items[i];
            const QString &text = item[column.column];
            if (!IsWritten(column, text))
                continue;
            if (column.form == ScheduleColumns::Element)
                WriteElement(tags[i], text);
            else
                WriteLongElement(tags[i], text);
        }
        WriteCloseTag(QStringLiteral("Report"));
    }
    WriteCloseTag(QStringLiteral("Report_Schedule"));

    WriteOpenTag(QStringLiteral("Report_Parameters"));
    for (int row = 0; row < m_parmCount; ++row) {
        const ParmRow &parm = m_parms[row];
        if (parm[parmReportID].isEmpty())
            continue;
        WriteOpenTag(QStringLiteral("Parameter"));
        element("ParameterReportID", parm[parmReportID]);
        element("ParameterName", parm[parmName]);
        element("ParameterValueType", parm[parmValueType]);
        element("ParameterValue", parm[parmValue]);
        WriteCloseTag(QStringLiteral("Parameter"));
    }
    WriteCloseTag(QStringLiteral("Report_Parameters"));

    if (m_collCount > 0) {
        WriteOpenTag(QStringLiteral("Collections"));
        for (int row = 0; row < m_collCount; ++row) {
            if (m_colls[row].id.isEmpty())
                continue;
            WriteOpenTag(QStringLiteral("Collection"));
            element("CollectionID", m_colls[row].id);
            element("CollectionItem", m_colls[row].item);
            WriteCloseTag(QStringLiteral("Collection"));
        }
        WriteCloseTag(QStringLiteral("Collections"));
    }

    WriteOpenTag(QStringLiteral("ServerPrinters"));
    if (PrinterNames) {
        for (const QString &printer : PrinterNames())
            element("MyPrinter", printer);
    }
    WriteCloseTag(QStringLiteral("ServerPrinters"));

    WriteOpenTag(QStringLiteral("DefaultDomains"));
    for (int d = 0; d < DomainCount; ++d) {
        if (!m_domains[d].isEmpty())
            WriteElement(QStringLiteral("Domain_%1").arg(d), m_domains[d]);
    }
    WriteCloseTag(QStringLiteral("DefaultDomains"));
    CloseXML();
    m_position = keep;
}
