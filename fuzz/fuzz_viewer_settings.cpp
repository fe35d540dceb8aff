// Form.XML as the viewer settings read it, then saved.
#include "FuzzSupport.h"

#include "core/QorloError.h"
#include "store/clsViewer.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    clsViewer viewer(Fuzz::AppPath());
    viewer.ApplyStartDefaults();
    const QString path = Fuzz::WriteInput(QStringLiteral("Form.XML"), data, size);
    try {
        viewer.Load(path);
        viewer.Save();
    } catch (const QorloError &) {
    }
    return 0;
}
