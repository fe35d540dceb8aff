// Reads remote documents whose one value is 5 or 10 MB of character references, of escaped line
// breaks and of chained references, into a schedule, and prints the times: decoding must be linear.
#include "store/clsSchedule.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

namespace {

struct Kind
{
    const char *name;
    QByteArray unit;
};

// Seconds to load a document with `bytes` of `unit` in the item's name.
double LoadSeconds(const QString &path, const QByteArray &unit, qsizetype bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return -1;
    file.write("<ReportID>1</ReportID>\r\n<ReportName>" + unit.repeated(bytes / unit.size()) +
               "</ReportName>\r\n");
    file.close();
    clsSchedule schedule(QFileInfo(path).absolutePath());
    QElapsedTimer timer;
    timer.start();
    schedule.Load(path);
    return timer.nsecsElapsed() / 1e9;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("command.xml"));
    const Kind kinds[] = {{"numeric references &#0065;", "&#0065;"},
                          {"escaped line breaks &#0013;&#0010;", "&#0013;&#0010;"},
                          {"chained references &#38;#66;", "&#38;#66;"},
                          {"named entities &amp;", "&amp;"}};
    std::printf("Remote document with one value of references (earlier reader: 49 s for 5 MB, 211 s "
                "for 10 MB)\n");
    for (const Kind &kind : kinds) {
        const double five = LoadSeconds(path, kind.unit, 5 << 20);
        const double ten = LoadSeconds(path, kind.unit, 10 << 20);
        std::printf("%-36s 5 MB: %6.2f s   10 MB: %6.2f s   ratio %.1f\n", kind.name, five, ten, ten / five);
    }
    return 0;
}
