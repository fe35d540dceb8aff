// qorlo_screenshots OUTPUT_FOLDER [WINDOW...]: writes OUTPUT_FOLDER/<window>.png for every window (or the
// ones named) and prints what a person would find wrong with each. Ends with status 1 on any finding.
#include "Shots.h"
#include "Stage.h"
#include "TestMain.h"
#include "WindowChecks.h"

#include <QApplication>
#include <QDir>
#include <QTest>
#include <QTextStream>
#include <QWidget>

namespace {

// Shows the window on a fresh stage, photographs it and returns its findings.
QStringList Photograph(const Shot &shot, const QDir &output)
{
    Stage stage;
    QWidget *window = shot.open(stage);
    window->show();
    if (!QTest::qWaitForWindowExposed(window))
        return {QStringLiteral("window was never shown")};
    QCoreApplication::processEvents();
    QStringList faults = TestSupport::WindowFaults(window);
    if (window->objectName() != QLatin1String(shot.name))
        faults.append(QStringLiteral("the window is called ") + window->objectName());
    const QString file = output.filePath(QLatin1String(shot.name) + QStringLiteral(".png"));
    if (!window->grab().save(file))
        faults.append(QStringLiteral("cannot write ") + file);
    return faults;
}

} // namespace

int main(int argc, char **argv)
{
    TestSupport::UseOwnHome();
    QApplication app(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    QTextStream out(stdout);
    if (arguments.isEmpty()) {
        out << "usage: qorlo_screenshots OUTPUT_FOLDER [WINDOW...]\nwindows:";
        for (const Shot &shot : Shots())
            out << ' ' << shot.name;
        out << Qt::endl;
        return 2;
    }
    const QDir output(arguments.takeFirst());
    out << "Windows drawn by the " << QGuiApplication::platformName() << " platform into "
        << output.absolutePath() << Qt::endl;
    QDir().mkpath(output.path());
    int failures = 0;
    for (const Shot &shot : Shots()) {
        if (!arguments.isEmpty() && !arguments.contains(QLatin1String(shot.name)))
            continue;
        const QStringList faults = Photograph(shot, output);
        out << shot.name << (faults.isEmpty() ? ": ok" : ":") << Qt::endl;
        for (const QString &fault : faults)
            out << "  " << fault << Qt::endl;
        failures += faults.isEmpty() ? 0 : 1;
    }
    return failures == 0 ? 0 : 1;
}
