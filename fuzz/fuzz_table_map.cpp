// TableMap.XML as the table map reads it, applied to a table and saved.
#include "FuzzSupport.h"

#include "connect/clsMap.h"
#include "core/QorloError.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    clsMap map(Fuzz::AppPath());
    const QString path = Fuzz::WriteInput(QStringLiteral("TableMap.XML"), data, size);
    try {
        map.Load(path);
        QString location = QStringLiteral("dbo.Orders"), server = QStringLiteral("db"),
                database = QStringLiteral("sales");
        map.ApplyTableMap(location, QStringLiteral("1"), server, database);
        map.Save();
    } catch (const QorloError &) {
    }
    return 0;
}
