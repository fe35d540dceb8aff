// Saves and loads a Qorlo.XML of 2000 items with 3000 parameters and prints the times.
#include "scheduler/PrinterNames.h"
#include "store/clsSchedule.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

void Fill(clsSchedule &s)
{
    s.SMTP_Server = QStringLiteral("mail.example.com");
    s.SMTP_StdMessage = QStringLiteral("Regards\r\nThe reports desk");
    s.SMTPPassword = QStringLiteral("secret");
    for (int i = 0; i < 2000; ++i) {
        s.AddNew();
        const QString n = QString::number(i);
        s.SetName(QStringLiteral("Report number ") + n + QStringLiteral(" \u00e9t\u00e9"));
        s.SetFile(QStringLiteral("/srv/reports/sales/region_") + n + QStringLiteral(".rpt"));
        s.SetSchedule(QStringLiteral("Y"));
        s.SetFrequency(QStringLiteral("Day(s)"));
        s.SetFreqTimes(QStringLiteral("1"));
        s.SetDest(i % 2 ? QStringLiteral("E") : QStringLiteral("D"));
        s.SetLocation(QStringLiteral("/srv/output/region_") + n + QStringLiteral(".pdf"));
        s.SetOutputFormat(QStringLiteral("Acrobat File"));
        s.SetEmail(QStringLiteral("sales") + n + QStringLiteral("@example.com;boss@example.com"));
        s.SetGroup(QStringLiteral("Sales"));
        s.SetSelFormula(QStringLiteral("{Orders.Region} = 'North' and {Orders.Total} > 100"));
        s.SetNextRun(QStringLiteral("11-Mar-2024 07:00"));
        s.SetLastRun(QStringLiteral("10-Mar-2024 07:00"));
        s.SetPrinterCopies(1);
        s.SetNoRecords(QStringLiteral("No report is sent"));
        s.SetEMailAttach(QStringLiteral("Attached"));
        s.SetRptSubject(QStringLiteral("Sales for region ") + n);
        s.SetRptMessage(QStringLiteral("Hello,\r\nplease find the report attached.\r\nRegards"));
        s.SetNotifyTo(QStringLiteral("admin@example.com"));
        s.SetErrorTo(QStringLiteral("admin@example.com"));
        s.SetErrorMsg(QStringLiteral("The report failed.\r\nPlease check."));
        s.SetReportDescription(QStringLiteral("Daily sales of one region & its totals < budget"));
    }
    for (int p = 0; p < 3000; ++p) {
        s.ParmAddNew();
        s.SetParmReportID(QString::number(p % 2000 + 1));
        s.SetParmName(QStringLiteral("{?Region%1}").arg(p / 2000));
        s.SetParmValueType(QStringLiteral("12"));
        s.SetParmValue(QStringLiteral("North"));
    }
}

// CPU time of this process in ms: on a busy machine the wall time also counts the waits for a core.
double CpuMs()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Qorlo.XML"));
    clsSchedule schedule(dir.path());
    schedule.PrinterNames = InstalledPrinterNames;
    Fill(schedule);

    const int rounds = 9;
    std::vector<double> printers, saves, loads, saveCpu, loadCpu;
    QElapsedTimer timer;
    for (int r = 0; r < rounds; ++r) {
        timer.start();
        const QStringList list = InstalledPrinterNames();
        printers.push_back(timer.nsecsElapsed() / 1e6);

        double cpu = CpuMs();
        timer.start();
        schedule.Save(path);
        saves.push_back(timer.nsecsElapsed() / 1e6);
        saveCpu.push_back(CpuMs() - cpu);

        cpu = CpuMs();
        timer.start();
        clsSchedule fresh(dir.path());
        fresh.Load(path);
        loads.push_back(timer.nsecsElapsed() / 1e6);
        loadCpu.push_back(CpuMs() - cpu);
        if (fresh.Count() != 2000 || fresh.ParmCount() != 3000) {
            std::fprintf(stderr, "wrong load: %d items, %d parameters\n", fresh.Count(), fresh.ParmCount());
            return 1;
        }
    }
    std::printf("Qorlo.XML: 2000 items, 3000 parameters, %lld bytes, %d rounds (target: under 50 ms each)\n",
                QFileInfo(path).size(), rounds);
    std::printf("save: wall median %.1f ms, best %.1f ms; CPU median %.1f ms (printer list: %.1f ms)\n",
                Median(saves), *std::min_element(saves.begin(), saves.end()), Median(saveCpu),
                Median(printers));
    std::printf("load into a fresh object: wall median %.1f ms, best %.1f ms; CPU median %.1f ms\n",
                Median(loads), *std::min_element(loads.begin(), loads.end()), Median(loadCpu));
    // An argument names a place to keep the file for a look at it.
    if (argc > 1)
        schedule.Save(QString::fromLocal8Bit(argv[1]));
    return 0;
}
