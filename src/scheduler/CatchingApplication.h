#pragma once
// The application object of a front, with the last handler of the program: an exception that leaves an
// event handler (a foreign one such as std::bad_alloc included) ends the process through the front's
// fatal error box instead of an abort, and a requested stop only unwinds.

#include "Prompter.h"

#include "core/StopRequest.h"
#include "run/ErrorTrap.h"

#include <QEvent>
#include <QObject>

template <class Application> class CatchingApplication : public Application
{
public:
    CatchingApplication(int &argc, char **argv, Prompter &prompter)
        : Application(argc, argv), m_prompter(prompter)
    {
    }

    bool notify(QObject *receiver, QEvent *event) override
    {
        try {
            return Application::notify(receiver, event);
        } catch (const StopRequested &) {
            return false;
        } catch (...) {
            m_prompter.FatalError(CaughtError());
            return false;
        }
    }

private:
    Prompter &m_prompter;
};
