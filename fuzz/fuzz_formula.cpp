// A formula of the engine's expression language, parsed, bound to the fields of the sales table and
// evaluated on one record. Depends on the engine's interface: rerun and adapt it when the engine
// changes.
#include "FuzzSupport.h"

#include "engine/EngineError.h"
#include "engine/Formula.h"

#include <QDate>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    try {
        Engine::Formula formula = Engine::Formula::Parse(QStringLiteral("fuzz"), text);
        formula.bind({QStringLiteral("id"), QStringLiteral("order_date"), QStringLiteral("region"),
                      QStringLiteral("amount"), QStringLiteral("paid")},
                     [](const QString &) {
                         return QVariantList{QStringLiteral("North"), 5};
                     });
        formula.test({QVariant(3), QVariant(QDate(2024, 2, 2)), QVariant(QStringLiteral("North")),
                      QVariant(1500.25), QVariant(true)});
    } catch (const Engine::EngineError &) {
    }
    return 0;
}
