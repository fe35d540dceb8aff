#pragma once
// What the scheduler tests share: a prompter that records boxes and answers questions, items added
// to a schedule in one call, small scripts, and bounded waits.

#include "core/QorloError.h"
#include "scheduler/Prompter.h"
#include "store/clsSchedule.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QStringList>
#include <QThread>

#include <functional>

class RecordingPrompter : public Prompter
{
public:
    void ShowMessage(const QString &title, const QString &text, Icon) override
    {
        messages.append(title + QStringLiteral(": ") + text);
    }
    bool AskYesNo(const QString &title, const QString &text) override
    {
        questions.append(title + QStringLiteral(": ") + text);
        return answer;
    }
    bool AskOkCancel(const QString &title, const QString &text) override { return AskYesNo(title, text); }
    void FatalError(const QorloError &error) override { fatal.append(error.runTimeText()); }

    QStringList messages;
    QStringList questions;
    QStringList fatal;
    bool answer = true;
};

struct ItemFields
{
    QString id;
    QString name;
    QString file;
    QString frequency;
    QString times;
    QString nextRun;
};

inline void AddItem(clsSchedule &schedule, const ItemFields &item)
{
    schedule.AddNew();
    schedule.SetReportID(item.id);
    schedule.SetName(item.name);
    schedule.SetFile(item.file);
    schedule.SetSchedule(item.nextRun.isEmpty() ? QStringLiteral("N") : QStringLiteral("Y"));
    schedule.SetFrequency(item.frequency);
    schedule.SetFreqTimes(item.times);
    schedule.SetDest(QStringLiteral("D"));
    schedule.SetNextRun(item.nextRun);
}

// An executable shell script.
inline void WriteScript(const QString &path, const QByteArray &body)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write("#!/bin/sh\n" + body + "\n");
    file.close();
    file.setPermissions(file.permissions() | QFile::ExeOwner);
}

inline void WriteFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
}

inline QByteArray ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Pumps events until `done` holds or `ms` have passed; the final answer of `done`.
inline bool WaitUntil(const std::function<bool()> &done, int ms)
{
    const QDeadlineTimer deadline(ms);
    while (!done() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        QThread::msleep(20);
    }
    return done();
}
