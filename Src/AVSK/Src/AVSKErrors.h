// The two outlets for text: the plugin's error callback and the host's log.
#ifndef AVSK_ERRORS_H
#define AVSK_ERRORS_H

// Known to be local, so that it is reached without the global offset table.
#pragma GCC visibility push(hidden)

// Whether the dispatched plugin has an error callback. Checks made only to
// report are made only then.
bool AVSKHasError();

// Tells the dispatched plugin about its misuse, if it has an error callback.
void AVSKSendError(const char *message);

// Writes "[plugin]: message" to the log.
void AVSKLogPluginWarning(const char *message);

// Formats a text into the log; nothing before the host has started the library. Returns 0.
int AVSK_dprintf(const char *format, ...) __attribute__((format(printf, 1, 2)));

#pragma GCC visibility pop

#endif
