// Signals.h -- termination signals as data
#pragma once

// Keeps SIGINT and SIGTERM from ending the process. Call before the first thread is made: threads inherit it.
void BlockTerminationSignals();
// A descriptor that becomes readable when one of them arrives; -1 on failure. The caller closes it.
int OpenTerminationSignals();

// For programs that look from time to time instead: after this the first SIGINT or SIGTERM is only noted, and the
// second ends the process.
void NoteTerminationSignals();
bool TerminationWasAsked(); // [any-thread]

// A pipe whose reader goes away and a file that may not grow become errors of the call that writes.
void IgnoreWriteSignals();
