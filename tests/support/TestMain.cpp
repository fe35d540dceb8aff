#include "TestMain.h"

#include <QDir>
#include <QTemporaryDir>

namespace TestSupport {

void PrepareEnvironment()
{
    static QTemporaryDir settings(QDir::tempPath() + QStringLiteral("/qorlo-config-XXXXXX"));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(settings.path()));
    qputenv("QT_QPA_PLATFORM", "offscreen");
}

QString DataFile(const QString &relative)
{
    return QStringLiteral(QORLO_TEST_DATA "/") + relative;
}

} // namespace TestSupport
