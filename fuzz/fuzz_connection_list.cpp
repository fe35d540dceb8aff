// Connect.XML as the connection list reads it, looked up and saved.
#include "FuzzSupport.h"

#include "connect/clsConnect.h"
#include "core/QorloError.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    clsConnect list(Fuzz::AppPath());
    const QString path = Fuzz::WriteInput(QStringLiteral("Connect.XML"), data, size);
    try {
        list.Load(path);
        list.Find(QStringLiteral("sqlite"), QStringLiteral("db"), QStringLiteral("sales"));
        list.FindExt(QStringLiteral("psql"), QStringLiteral("db"), QStringLiteral("sales"),
                     QStringLiteral("x"));
        list.Save();
    } catch (const QorloError &) {
    }
    return 0;
}
