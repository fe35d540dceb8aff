// A DNS reply to the MX query, as the lookup walks its answers.
#include "FuzzSupport.h"

#include "core/QorloError.h"
#include "mail/modMXQuery.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray reply(reinterpret_cast<const char *>(data), qsizetype(size));
    // The answer count of the header, as the lookup reads it.
    const int count = size >= 8 ? data[6] * 256 + data[7] : 0;
    try {
        modMXQuery::ParseMXResponse(reply, 12, count);
        modMXQuery::MXRecords();
    } catch (const QorloError &) {
    }
    return 0;
}
