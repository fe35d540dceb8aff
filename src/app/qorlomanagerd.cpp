// The scheduler without windows, for servers.
#include "core/AppFolder.h"

#include <QGuiApplication>
#include <QTextStream>

int main(int argc, char **argv)
{
    // The report engine draws pages with QPainter, which needs a GUI application even without a screen.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QString appPath = AppFolder::Resolve(QCoreApplication::applicationFilePath());
    AppFolder::MakeWorkingFolders(appPath);
    QTextStream(stderr) << "QorloMANAGER: application folder " << appPath << Qt::endl;
    return 0;
}
