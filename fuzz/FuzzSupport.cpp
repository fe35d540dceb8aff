#include "FuzzSupport.h"

#include "core/AppFolder.h"
#include "core/CommonFile.h"

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

namespace Fuzz {

QString AppPath()
{
    static QTemporaryDir folder;
    static const bool made = [] {
        AppFolder::MakeWorkingFolders(folder.path());
        return true;
    }();
    Q_UNUSED(made);
    return folder.path();
}

QString WriteInput(const QString &name, const uint8_t *data, size_t size)
{
    const QString path = CommonFile::JoinPath(AppPath(), name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(reinterpret_cast<const char *>(data), qint64(size));
    return path;
}

QByteArray Confined(const uint8_t *data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    bytes.replace('/', '_').replace('\\', '_');
    return bytes;
}

void StartApplication()
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Printing asks a print server that is not there, at once.
    qputenv("CUPS_SERVER", "127.0.0.1:1");
    static QGuiApplication app(argc, argv);
}

} // namespace Fuzz
