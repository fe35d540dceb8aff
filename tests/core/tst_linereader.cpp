// Files read whole: only regular files of at most 64 MB, so that a FIFO or a device cannot block or
// exhaust the program; and a text with a byte-order mark read in its encoding.
#include "Files.h"
#include "TestMain.h"

#include "core/LineReader.h"
#include "core/WholeFile.h"

#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestLineReader : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void onlyWholeFiles();
    void byteOrderMarks();
};

namespace {

QStringList Lines(const QString &path)
{
    QStringList lines;
    LineReader reader(path);
    while (!reader.atEnd())
        lines.append(reader.readLine());
    return lines;
}

} // namespace

void TestLineReader::onlyWholeFiles()
{
    QTemporaryDir dir;
    const QString regular = WriteFile(dir.filePath(u"list.lst"_s), "one\r\ntwo\r\n");
    QVERIFY(WholeFile::IsWholeFile(regular));
    QCOMPARE(Lines(regular), (QStringList{u"one"_s, u"two"_s}));
    const QString link = dir.filePath(u"link.lst"_s);
    QVERIFY(QFile::link(regular, link));
    QVERIFY(WholeFile::IsWholeFile(link));

    // A FIFO without a writer would block the reader for good; a device would never end.
    const QString fifo = dir.filePath(u"fifo.lst"_s);
    QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    for (const QString &path :
         {fifo, u"/dev/zero"_s, dir.path(), dir.filePath(u"missing.lst"_s), QString()}) {
        QVERIFY2(!WholeFile::IsWholeFile(path), qPrintable(path));
        QVERIFY2(!WholeFile::Read(path), qPrintable(path));
        LineReader reader(path);
        QVERIFY(!reader.isOpen());
        QVERIFY(reader.atEnd());
    }

    // The limit, on sparse files that take no room.
    QFile limit(dir.filePath(u"limit.txt"_s));
    QVERIFY(limit.open(QIODevice::WriteOnly) && limit.resize(WholeFile::MaxSize));
    limit.close();
    QVERIFY(WholeFile::IsWholeFile(limit.fileName()));
    QVERIFY(limit.open(QIODevice::Append) && limit.write("x") == 1);
    limit.close();
    QVERIFY(!WholeFile::IsWholeFile(limit.fileName()));
    QVERIFY(!WholeFile::Read(limit.fileName()));
}

// A state file saved by an editor as UTF-8 or UTF-16 with a mark reads as its text; without a mark the
// bytes are Windows-1252.
void TestLineReader::byteOrderMarks()
{
    QTemporaryDir dir;
    const QString text = u"<ReportName>Caf\u00e9 \u20ac \u0416</ReportName>\r\n<NextRun>x</NextRun>\r\n"_s;
    const QStringList expected{u"<ReportName>Caf\u00e9 \u20ac \u0416</ReportName>"_s,
                               u"<NextRun>x</NextRun>"_s};
    const auto utf16 = [&text](QSysInfo::Endian order) {
        QByteArray bytes;
        for (const QChar c : QString(u"\ufeff"_s + text)) {
            const char high = char(c.unicode() >> 8), low = char(c.unicode() & 0xFF);
            if (order == QSysInfo::BigEndian)
                bytes.append(high).append(low);
            else
                bytes.append(low).append(high);
        }
        return bytes;
    };
    QCOMPARE(Lines(WriteFile(dir.filePath(u"utf8.xml"_s), "\xEF\xBB\xBF" + text.toUtf8())), expected);
    QCOMPARE(Lines(WriteFile(dir.filePath(u"le.xml"_s), utf16(QSysInfo::LittleEndian))), expected);
    QCOMPARE(Lines(WriteFile(dir.filePath(u"be.xml"_s), utf16(QSysInfo::BigEndian))), expected);
    QCOMPARE(Lines(WriteFile(dir.filePath(u"ansi.xml"_s), "Caf\xE9 \x80\r\n")),
             QStringList{u"Caf\u00e9 \u20ac"_s});
}

QORLO_TEST_MAIN(TestLineReader)
#include "tst_linereader.moc"
