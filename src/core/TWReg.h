#pragma once
// The per-user settings store: INI files under $XDG_CONFIG_HOME/Tessaly Works/, one file a program.
// Failed reads give the default and failed writes do nothing, as callers expect.

#include <QString>
#include <QtGlobal>

namespace TWReg {

inline const QString kProgram = QStringLiteral("QorloMANAGER");

// Values shared by the program family (Applications.ini, group [General]).
QString ReadApplicationValue(const QString &name);
void SaveApplicationValue(const QString &name, const QString &value);

// Per-program settings in groups by section. The value is trimmed; missing or empty gives `fallback`.
QString ReadSetting(const QString &section, const QString &name, const QString &fallback,
                    const QString &program = kProgram);
// An empty value is stored as one blank, which reads back as the default.
void SaveSetting(const QString &section, const QString &name, const QString &value,
                 const QString &program = kProgram);
qint32 ReadSettingNumber(const QString &section, const QString &name, qint32 fallback,
                         const QString &program = kProgram);
void SaveSettingNumber(const QString &section, const QString &name, qint32 value,
                       const QString &program = kProgram);

// The folder that holds the INI files.
QString SettingsFolder();

} // namespace TWReg
