// A multi-run file run for a report item: each line sets a parameter, a destination and a format and
// runs the report. Slashes are taken out of the input, so that output names stay in the folder.
#include "FuzzSupport.h"
#include "RunObjects.h"

#include "core/QorloError.h"
#include "mail/modMXQuery.h"
#include "run/MultiRun.h"

#include <QDir>

namespace {

// At most this many lines a run: each runs the report.
constexpr int kLines = 8;

TestSupport::RunObjects &Objects()
{
    static TestSupport::RunObjects *objects = [] {
        auto *made = new TestSupport::RunObjects;
        made->addSalesItem(1);
        made->schedule.SMTP_Server.clear();
        made->schedule.SetDest(QStringLiteral("M"));
        TestSupport::SalesReport(QDir(made->appPath), QStringLiteral("sales.rpt"),
                                 QStringLiteral("SELECT * FROM {Sales} WHERE region = {?Region}"),
                                 QStringLiteral("<parameter name=\"Region\" type=\"12\" prompt=\"Region\">"
                                                "<default>North</default></parameter>"));
        QDir::setCurrent(made->appPath);
        return made;
    }();
    return *objects;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    // No name server is asked: a mail line without a server fails at once.
    modMXQuery::SetResolverFile(QStringLiteral("/nonexistent/resolv.conf"));
    Objects();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    TestSupport::RunObjects &objects = Objects();
    const QByteArray lines = Fuzz::Confined(data, size).split('\n').mid(0, kLines).join('\n');
    const QString path = objects.writeFile(QStringLiteral("lines.txt"), lines);
    objects.schedule.Find(QStringLiteral("7"));
    objects.startItem();
    try {
        RunMultiRun(objects.run, path);
    } catch (const QorloError &) {
    }
    return 0;
}
