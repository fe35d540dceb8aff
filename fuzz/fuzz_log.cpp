// QorloLog.XML as the run log reads it before each entry, then saved with its retention and shown on
// the log page.
#include "FuzzSupport.h"

#include "core/QorloError.h"
#include "log/StatusPages.h"
#include "log/clsLog.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    clsLog log(Fuzz::AppPath());
    const QString path = Fuzz::WriteInput(QStringLiteral("QorloLog.XML"), data, size);
    try {
        log.Load(path);
        LogStatusLines(log);
        log.Save();
    } catch (const QorloError &) {
    }
    return 0;
}
