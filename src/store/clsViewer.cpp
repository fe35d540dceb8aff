#include "clsViewer.h"

#include "core/CommonFile.h"
#include "core/XMLCode.h"
#include "core/LineReader.h"
#include "core/Numbers.h"

#include <limits>

using namespace XMLCode;

namespace {

struct NumberField
{
    QLatin1StringView tag;
    qint32 clsViewer::*field;
};

// In the order of the file.
const NumberField kNumberFields[] = {
    {QLatin1StringView("Viewer-Top"), &clsViewer::Viewer_Top},
    {QLatin1StringView("Viewer-Left"), &clsViewer::Viewer_Left},
    {QLatin1StringView("Viewer-Width"), &clsViewer::Viewer_Width},
    {QLatin1StringView("Viewer-Height"), &clsViewer::Viewer_Height},
    {QLatin1StringView("Viewer-Col"), &clsViewer::Viewer_Col},
    {QLatin1StringView("Viewer-Col1"), &clsViewer::Viewer_Col1},
    {QLatin1StringView("Viewer-Col2"), &clsViewer::Viewer_Col2},
    {QLatin1StringView("Viewer-Col3"), &clsViewer::Viewer_Col3},
    {QLatin1StringView("Viewer-Col4"), &clsViewer::Viewer_Col4},
    {QLatin1StringView("Viewer-Col5"), &clsViewer::Viewer_Col5},
    {QLatin1StringView("Viewer-ColDate"), &clsViewer::Viewer_ColDate},
    {QLatin1StringView("Viewer-ColDesc"), &clsViewer::Viewer_ColDesc},
    {QLatin1StringView("Viewer-ColFile"), &clsViewer::Viewer_ColFile},
    {QLatin1StringView("Viewer-ColDest"), &clsViewer::Viewer_ColDest},
    {QLatin1StringView("Viewer-ColRun"), &clsViewer::Viewer_ColRun},
};

bool IsTag(const QString &tag, QLatin1StringView name)
{
    return tag.size() == name.size() + 2 && tag.startsWith(QLatin1Char('<')) &&
           tag.endsWith(QLatin1Char('>')) && QStringView(tag).mid(1, name.size()) == name;
}

// A measure that is no number, or too big for 32 bits, is a line not understood and keeps the old value.
void ReadNumber(const QString &value, qint32 &field)
{
    if (!Numbers::IsNumeric(value))
        return;
    const double number = Numbers::RoundEven(value.trimmed().toDouble());
    if (number >= std::numeric_limits<qint32>::min() && number <= std::numeric_limits<qint32>::max())
        field = qint32(number);
}

} // namespace

clsViewer::clsViewer(const QString &appPath, const QString &fileName)
    : m_appPath(appPath), m_fileName(fileName)
{
    Initialise();
}

void clsViewer::Initialise()
{
    Viewer_Top = 840;
    Viewer_Left = 3210;
    Viewer_Width = 5370;
    Viewer_Height = 2520;
    Viewer_State = QStringLiteral("Normal");
    Viewer_Option = QStringLiteral("Folder");
    Viewer_Col = 3000;
    InstanceFolder = CommonFile::JoinPath(m_appPath, QStringLiteral("Instance"));
    SortCol.clear();
}

void clsViewer::ApplyStartDefaults()
{
    Viewer_Top = 840;
    Viewer_Left = 3210;
    Viewer_Width = 5370;
    Viewer_Height = 2520;
    Viewer_State = QStringLiteral("Normal");
    Viewer_ColDate = 1980;
    Viewer_ColDesc = 3000;
    Viewer_ColFile = 3000;
    Viewer_ColDest = 3000;
    Viewer_ColRun = 1980;
}

void clsViewer::Load(const QString &path)
{
    LineReader reader(path);
    while (!reader.atEnd()) {
        QString line = reader.readLine();
        ReadTags(line);
    }
}

void clsViewer::ReadTags(QString &line)
{
    // Untrimmed: a line with leading blanks is not matched.
    if (line.startsWith(QLatin1String("<!")))
        return;
    const QString tag = LineTag(line);
    if (tag.isEmpty())
        return;
    const QString value = TagValue(line);

    for (const NumberField &number : kNumberFields) {
        if (IsTag(tag, number.tag)) {
            ReadNumber(value, this->*number.field);
            return;
        }
    }
    if (tag == QLatin1String("<Viewer-State>"))
        Viewer_State = value;
    else if (tag == QLatin1String("<Viewer-Option>"))
        Viewer_Option = value;
    else if (tag == QLatin1String("<InstanceFolder>"))
        InstanceFolder = value;
    else if (tag == QLatin1String("<SortCol>"))
        SortCol = value;
}

void clsViewer::Save() const
{
    if (OpenXML(CommonFile::JoinPath(m_appPath, m_fileName), QStringLiteral("ViewerSettingsDoc"))
            .startsWith(QLatin1String("Err")))
        return;
    WriteOpenTag(QStringLiteral("ViewerSettings"));
    WriteElement(QStringLiteral("Viewer-State"), Viewer_State);
    WriteElement(QStringLiteral("Viewer-Option"), Viewer_Option);
    for (const NumberField &number : kNumberFields)
        WriteElement(number.tag, QString::number(this->*number.field));
    if (!Connection_File.isEmpty())
        WriteElement(QStringLiteral("Connection_File"), Connection_File);
    WriteElement(QStringLiteral("InstanceFolder"), InstanceFolder);
    WriteElement(QStringLiteral("SortCol"), SortCol);
    WriteCloseTag(QStringLiteral("ViewerSettings"));
    CloseXML();
}
