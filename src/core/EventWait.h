#pragma once
// The one turn of every wait loop that pumps events: deliver what is pending, or sleep until the next
// event arrives, but no longer than the loop's interval, so that a reply wakes the waiter at once.

// A requested stop ends the wait with StopRequested, unless an exception is unwinding already; waits
// that a destructor may run also end at once on their own once a stop is requested.
void WaitForNextEvent(int maxMs);
