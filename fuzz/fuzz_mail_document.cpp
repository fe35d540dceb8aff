// A mail document of the Mail folder, read under its lock, with its HTML text and its address lists.
#include "FuzzSupport.h"

#include "core/CommonFile.h"
#include "core/QorloError.h"
#include "mail/AddressList.h"
#include "mail/clsSMTP.h"

#include <QDir>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = Fuzz::WriteInput(QStringLiteral("Mail/document.xml"), data, size);
    clsSMTP document;
    try {
        document.Load(path);
        document.MsgHTML();
        const AddressList::Sources sources{Fuzz::AppPath(), QStringList(10), {}};
        AddressList::ExpandAddressList(document.To, sources);
    } catch (const QorloError &) {
    }
    // The document's own lock goes whatever the read met.
    if (!QDir(CommonFile::JoinPath(Fuzz::AppPath(), QStringLiteral("Mail")))
             .entryList({QStringLiteral("*.lck")}, QDir::Files)
             .isEmpty())
        __builtin_trap();
    return 0;
}
