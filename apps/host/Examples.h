#pragma once
#include <QString>

namespace kestrin {

// The folder of the sample project, layouts, language catalog and scripts the demo host works
// with: examples beside the program (the Windows package), share/kestrin/examples of an installed
// tree, else the sources' examples (a program run from its build folder).
QString examplesFolder();

}  // namespace kestrin
