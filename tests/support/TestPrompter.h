#pragma once
// The Prompter of tests: records every box and question and gives answers and file names set in advance.

#include "core/QorloError.h"
#include "scheduler/Prompter.h"

#include <QList>
#include <QStringList>
#include <functional>
#include <utility>

namespace TestSupport {

class TestPrompter : public Prompter
{
public:
    // The answer of questions for which no answer was set: true for Yes or OK.
    explicit TestPrompter(bool defaultAnswer = false) : answer(defaultAnswer) {}

    // The answers of the next questions, in order.
    void setNextAnswers(const QList<bool> &answers) { m_answers = answers; }
    // The names the file and folder dialogs give, in order; then empty.
    void setNextFileNames(const QStringList &names) { m_fileNames = names; }
    // "TITLE: TEXT" of each box and question since the last take, and forgets them.
    QStringList take() { return std::exchange(messages, {}); }

    void ShowMessage(const QString &title, const QString &text, Icon) override { record(title, text); }
    bool AskYesNo(const QString &title, const QString &text) override { return ask(title, text); }
    bool AskOkCancel(const QString &title, const QString &text) override { return ask(title, text); }
    void FatalError(const QorloError &error) override { fatal.append(error.runTimeText()); }
    // The dialogs record "TITLE: FOLDER".
    QString AskOpenFileName(const QString &title, const QString &folder, const QString &) override
    {
        return fileName(title, folder);
    }
    QString AskFolder(const QString &title, const QString &folder) override
    {
        return fileName(title, folder);
    }
    QString AskSaveFileName(const QString &title, const QString &folder, const QString &) override
    {
        return fileName(title, folder);
    }

    // "TITLE: TEXT" of every box and question, in order, and of the questions alone.
    QStringList messages;
    QStringList questions;
    QStringList fatal;
    bool answer;
    // Questions that took `answer` because no answer was set.
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
    bool ask(const QString &title, const QString &text)
    {
        questions.append(title + QStringLiteral(": ") + text);
        record(title, text);
        if (m_answers.isEmpty()) {
            ++unanswered;
            return answer;
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

} // namespace TestSupport
