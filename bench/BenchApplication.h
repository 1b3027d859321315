#pragma once
#ifdef KESTRIN_BENCH_WIDGETS

namespace kestrin::bench {

// Widgets need an application object; the first widget benchmark makes one without a display.
// It is left to the end of the process: destroying it after Qt's own statics could crash.
void ensureApplication();

}  // namespace kestrin::bench

#endif
