/// How a test or a development server steers the simulated runtimes: exported by the stand-in
/// proxy library beside the functions of the real one. All texts are UTF-8 JSON; an answer is
/// freed with ZrSimulatorFree. Results are numbered like HTTP: 200, 400 (malformed, with
/// {"error": text}; nothing was changed), 404 (no such runtime), 500 (out of memory, no answer).
/// Any thread, but loading and shutting down wait for running notifications.
#pragma once

#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

extern "C" {
/// Replaces all runtimes by those of a plant file's text and starts their timelines. The error
/// names the field, for example "runtimes.5.10.20.30.1.1.timeline[3].class: not a GUID".
ZR_PROXY_API int ZrSimulatorLoadPlant(const char* plant, char** answer);
/// Applies one action, or an array of them without a pause between.
ZR_PROXY_API int ZrSimulatorApply(const char* netId, const char* actions, char** answer);
ZR_PROXY_API int ZrSimulatorStatus(const char* netId, char** answer);
/// Stops timelines and the notification threads; the runtimes are gone. Objects that are still
/// referenced stay valid and answer as disconnected. The library cannot do this in a static
/// destructor, so call it before unloading.
ZR_PROXY_API void ZrSimulatorShutdown();
ZR_PROXY_API void ZrSimulatorFree(char* answer);
}
