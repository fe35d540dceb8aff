#include "TWReg.h"

#include "CommonFile.h"
#include "Numbers.h"

#include <QSettings>
#include <QStandardPaths>

namespace TWReg {

namespace {

// A read fills a buffer of 255 characters, one of them the terminator.
constexpr int kReadLimit = 254;

QString SettingsFile(const QString &program)
{
    return CommonFile::JoinPath(SettingsFolder(), program + QStringLiteral(".ini"));
}

QString Key(const QString &section, const QString &name)
{
    return section + QLatin1Char('/') + name;
}

QString ReadRaw(const QString &program, const QString &key)
{
    const QSettings store(SettingsFile(program), QSettings::IniFormat);
    return store.value(key).toString().left(kReadLimit);
}

void WriteRaw(const QString &program, const QString &key, const QString &value)
{
    QSettings store(SettingsFile(program), QSettings::IniFormat);
    store.setValue(key, value);
    store.sync();
}

} // namespace

QString SettingsFolder()
{
    return CommonFile::JoinPath(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
                                QStringLiteral("Tessaly Works"));
}

QString ReadApplicationValue(const QString &name)
{
    return ReadRaw(QStringLiteral("Applications"), name);
}

void SaveApplicationValue(const QString &name, const QString &value)
{
    WriteRaw(QStringLiteral("Applications"), name, value);
}

QString ReadSetting(const QString &section, const QString &name, const QString &fallback,
                    const QString &program)
{
    const QString value = ReadRaw(program, Key(section, name)).trimmed();
    return value.isEmpty() ? fallback : value;
}

void SaveSetting(const QString &section, const QString &name, const QString &value, const QString &program)
{
    WriteRaw(program, Key(section, name), value.isEmpty() ? QStringLiteral(" ") : value);
}

qint32 ReadSettingNumber(const QString &section, const QString &name, qint32 fallback, const QString &program)
{
    const QString value = ReadSetting(section, name, QString(), program);
    return value.isEmpty() ? fallback : Numbers::ToInt32(Numbers::NumericPrefix(value));
}

void SaveSettingNumber(const QString &section, const QString &name, qint32 value, const QString &program)
{
    SaveSetting(section, name, QString::number(value), program);
}

} // namespace TWReg
