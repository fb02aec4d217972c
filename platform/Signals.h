// Signals.h -- termination signals as data
#pragma once

// Keeps SIGINT and SIGTERM from ending the process. Call before the first thread is made: threads inherit it.
void BlockTerminationSignals();
// A descriptor that becomes readable when one of them arrives; -1 on failure. The caller closes it.
int OpenTerminationSignals();
