// The two outlets for text: the plugin's error callback and the host's log.
// Floor 3; defined in AVSKLoaderPlugins.cpp.
#ifndef AVSK_ERRORS_H
#define AVSK_ERRORS_H

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

// Whether the dispatched plugin has an error callback. Checks whose only
// effect is a report are skipped without one.
bool AVSKHasError();

// Reports a misuse to the dispatched plugin, if it has an error callback.
void AVSKSendError(const char *message);

// Writes "[plugin]: message" to the log.
void AVSKLogPluginWarning(const char *message);

// Formats a text into the log, or drops it before the host has started the
// library. Returns 0. For debugging; only the tests call it.
int AVSK_dprintf(const char *format, ...) __attribute__((format(printf, 1, 2)));

#pragma GCC visibility pop

#endif
