#pragma once
// A prompter for window tests: records every box and question and gives answers set in advance.

#include "core/QorloError.h"
#include "scheduler/Prompter.h"

#include <QList>
#include <QStringList>
#include <functional>
#include <utility>

class ScriptedPrompter : public Prompter
{
public:
    // The answers of the next questions, in order: true for Yes or OK.
    void setNextAnswers(const QList<bool> &answers) { m_answers = answers; }
    // "TITLE: TEXT" of each box and question since the last take, and forgets them.
    QStringList take() { return std::exchange(messages, {}); }

    void ShowMessage(const QString &title, const QString &text, Icon) override { record(title, text); }
    bool AskYesNo(const QString &title, const QString &text) override { return answer(title, text); }
    bool AskOkCancel(const QString &title, const QString &text) override { return answer(title, text); }
    void FatalError(const QorloError &error) override { fatalErrors.append(error.runTimeText()); }
    // The dialogs record "TITLE: FOLDER" and give the names set in advance, then empty.
    void setNextFileNames(const QStringList &names) { m_fileNames = names; }
    QString AskOpenFileName(const QString &title, const QString &folder, const QString &) override
    {
        return fileName(title, folder);
    }
    QString AskFolder(const QString &title, const QString &folder) override
    {
        return fileName(title, folder);
    }

    QStringList messages;
    QStringList fatalErrors;
    // Questions that found no answer left; they took No or Cancel.
    int unanswered = 0;
    // Called at each box and question, for tests that look at the windows at that moment.
    std::function<void()> onRecord;

private:
    void record(const QString &title, const QString &text)
    {
        messages.append(title + QStringLiteral(": ") + text);
        if (onRecord)
            onRecord();
    }
    bool answer(const QString &title, const QString &text)
    {
        record(title, text);
        if (m_answers.isEmpty()) {
            ++unanswered;
            return false;
        }
        return m_answers.takeFirst();
    }

    QString fileName(const QString &title, const QString &folder)
    {
        record(title, folder);
        return m_fileNames.isEmpty() ? QString() : m_fileNames.takeFirst();
    }

    QList<bool> m_answers;
    QStringList m_fileNames;
};
