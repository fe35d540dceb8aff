// The text forms behind the item windows: stored parameter values and multi-run control files.
#include "Files.h"
#include "TestMain.h"

#include "ui/MultiRunControl.h"
#include "ui/ParameterText.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestItemTexts : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void parameterValues();
    void dynamicDates();
    void controlFileRead();
    void controlFileChecked();
    void controlFileWritten();
};

void TestItemTexts::parameterValues()
{
    using namespace ParameterText;
    QCOMPARE(DateValue(QDate(2007, 3, 5)), u"Date(2007,03,05)"_s);
    QCOMPARE(DateTimeValue(QDate(2007, 3, 5), 9, 5), u"DateTime(2007,03,05,9,5,0)"_s);
    QCOMPARE(Adjustment(0), QString());
    QCOMPARE(Adjustment(3), u"+3"_s);
    QCOMPARE(Adjustment(-12), u"-12"_s);
    QCOMPARE(AdjustmentDays(u" "_s), qint16(0));
    QCOMPARE(AdjustmentDays(u"-7"_s), qint16(-7));
    QCOMPARE(AdjustmentDays(u"2.5"_s), qint16(2));
    QCOMPARE(ErrorOf([] { AdjustmentDays(u"two"_s); }), int(QorloError::TypeMismatch));
    QCOMPARE(ErrorOf([] { AdjustmentDays(u"40000"_s); }), int(QorloError::Overflow));
    QCOMPARE(TypeName(16), u"DateTime"_s);
    QCOMPARE(TypeName(11), u"Time"_s);
    QCOMPARE(TypeName(99), u"Unknown (99)"_s);
}

void TestItemTexts::dynamicDates()
{
    using namespace ParameterText;
    const QStringList entries = DynamicDateEntries();
    QCOMPARE(entries.size(), 14);
    QCOMPARE(entries.first(), QString());
    QCOMPARE(entries.last(), u"Period1.Start.TY"_s);

    // "+" is looked for first; the adjustment keeps its sign.
    QCOMPARE(SplitDynamic(u"Month.End.TY+2"_s).keyword, u"month.end.ty"_s);
    QCOMPARE(SplitDynamic(u"Month.End.TY+2"_s).adjustment, u"+2"_s);
    QCOMPARE(SplitDynamic(u"Today-1"_s).keyword, u"today"_s);
    QCOMPARE(SplitDynamic(u"Today-1"_s).adjustment, u"-1"_s);
    QCOMPARE(SplitDynamic(u"today-2+3"_s).keyword, u"today-2"_s);
    QCOMPARE(SplitDynamic(u"Date(2007,03,05)"_s).adjustment, QString());

    // The second "LastMth.Start.TY" is never found; a fixed or empty value is no keyword.
    QCOMPARE(DynamicEntryIndex(u"lastmth.start.ty"_s), 6);
    QCOMPARE(DynamicEntryIndex(u"today"_s), 1);
    QCOMPARE(DynamicEntryIndex(u"date(2007,03,05)"_s), -1);
    QCOMPARE(DynamicEntryIndex(QString()), -1);
}

void TestItemTexts::controlFileRead()
{
    QTemporaryDir dir;
    QCOMPARE(MultiRunControlFile::DefaultName(u"/app"_s, u"/reports/sales.rpt"_s),
             u"/reports/sales-mr.txt"_s);
    QCOMPARE(MultiRunControlFile::DefaultName(u"/app"_s, u"sales.rpt"_s), u"/app/sales-mr.txt"_s);

    const QString file = WriteLines(
        dir.filePath(u"lines.txt"_s),
        {u"// regions"_s, u""_s, u"\"{?Region}\",\"North\",\"E\",\"CSV File\",\"a@example.com\",\"Hi\""_s,
         u"{?Region},\"East,West\",D,Acrobat File,out.pdf,"_s, u"{?Region},South,X"_s});
    const MultiRunControl control = MultiRunControlFile::Read(file);
    QCOMPARE(control.parameter, u"{?Region}"_s);
    QCOMPARE(control.rows.size(), 4);
    QVERIFY(control.rows.at(0).comment);
    QCOMPARE(control.rows.at(0).value, u" regions"_s);
    QCOMPARE(control.rows.at(1).output, u"EMail"_s);
    QCOMPARE(control.rows.at(1).subject, u"Hi"_s);
    // A value with a comma is split there, as the run splits it.
    QCOMPARE(control.rows.at(2).value, u"\"East"_s);
    QCOMPARE(control.rows.at(2).output, u"West\""_s);
    // A letter the editor does not know stays; missing fields are empty.
    QCOMPARE(control.rows.at(3).output, u"X"_s);
    QCOMPARE(control.rows.at(3).destination, QString());
    QVERIFY(MultiRunControlFile::Read(dir.filePath(u"missing.txt"_s)).rows.isEmpty());
}

void TestItemTexts::controlFileChecked()
{
    const auto row = [](const QString &output, const QString &destination, const QString &extra) {
        MultiRunRow line;
        line.output = output;
        line.destination = destination;
        line.subject = extra;
        return line;
    };
    MultiRunRow comment;
    comment.comment = true;
    const QList<MultiRunRow> rows{comment,
                                  row(QString(), u"x"_s, QString()),
                                  row(u"EMail"_s, QString(), QString()),
                                  row(u"E"_s, u"nobody"_s, QString()),
                                  row(u"Both"_s, u"boss@example.com"_s, u"out.pdf"_s),
                                  row(u"B"_s, u"out.pdf"_s, u"boss@example.com"_s),
                                  row(u"Printer"_s, QString(), QString())};
    QStringList seen;
    for (const MultiRunWarning &warning : MultiRunControlFile::Check(rows))
        seen.append(warning.title + u": "_s + warning.text);
    QCOMPARE(seen, (QStringList{u"Warning - invalid destination: Missing value on line 2"_s,
                                u"Warning - empty value or destination: Missing value on line 3"_s,
                                u"Warning - invalid email address: Invalid value on line 3"_s,
                                u"Warning - invalid email address: Invalid value on line 4"_s,
                                u"Warning - invalid disk file name: Invalid value on line 5"_s,
                                u"Warning - invalid email address: Invalid value on line 5"_s}));
    // An empty "Both" row misses both names, and its address has no "@".
    QCOMPARE(MultiRunControlFile::Check({row(u"Both"_s, QString(), QString())}).size(), 3);
}

void TestItemTexts::controlFileWritten()
{
    QTemporaryDir dir;
    MultiRunRow comment;
    comment.comment = true;
    comment.value = u" by region"_s;
    const MultiRunRow line{false, u"Nörth"_s, u"Disk File"_s, u"CSV File"_s, u"out.csv"_s, QString()};
    const QStringList lines = MultiRunControlFile::Lines(u"{?Region}"_s, {comment, line});
    QCOMPARE(lines, (QStringList{u"// by region"_s,
                                 u"\"{?Region}\",\"Nörth\",\"D\",\"CSV File\",\"out.csv\",\"\""_s}));

    const QString file = dir.filePath(u"regions.txt"_s);
    WriteFile(file, "old");
    MultiRunControlFile::Write(file, lines);
    QCOMPARE(
        ReadFile(file),
        QByteArray("// by region\r\n\"{?Region}\",\"N\xF6rth\",\"D\",\"CSV File\",\"out.csv\",\"\"\r\n"));
    // What the editor writes it reads back.
    QCOMPARE(MultiRunControlFile::Read(file).rows.at(1).value, u"Nörth"_s);
    QCOMPARE(ErrorOf([&] { MultiRunControlFile::Write(dir.filePath(u"no/such/folder.txt"_s), lines); }),
             int(QorloError::PathFileAccess));
}

QORLO_TEST_MAIN(TestItemTexts)
#include "tst_itemtexts.moc"
