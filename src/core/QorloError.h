#pragma once
// The one error type of the scheduler: a run-time error number of the original platform and its text.

#include <QString>
#include <exception>

class QorloError : public std::exception
{
public:
    enum Number {
        InvalidCall = 5,
        Overflow = 6,
        OutOfMemory = 7,
        OutOfRange = 9,
        TypeMismatch = 13,
        FileNotFound = 53,
        PermissionDenied = 70,
        PathFileAccess = 75,
        InternalError = 51,
        PathNotFound = 76,
        MXError = 20000,
    };

    QorloError(int number, const QString &description);
    explicit QorloError(Number number);

    int number() const { return m_number; }
    QString description() const { return m_description; }
    // "Run-time error 'N': description", as the fatal box shows it.
    QString runTimeText() const;
    const char *what() const noexcept override { return m_what.constData(); }

    static QString standardDescription(int number);
    // The exception being handled, called inside a catch block: the project's own error as it is, an
    // allocation failure as error 7, any other exception as error 51.
    static QorloError fromCurrentException();

private:
    int m_number;
    QString m_description;
    QByteArray m_what;
};
