#ifdef KESTRIN_BENCH_WIDGETS
#include "BenchApplication.h"

#include <QApplication>

namespace kestrin::bench {

void ensureApplication() {
    if (QApplication::instance()) return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "kestrin-bench";
    static char* argv[] = {name, nullptr};
    new QApplication(argc, argv);
}

}  // namespace kestrin::bench
#endif
