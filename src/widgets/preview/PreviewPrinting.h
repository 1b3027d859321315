#pragma once

#include <QRectF>
#include <vector>

namespace kestrin {

class frmPreview;

// The preview's print command: asks for the print options, then prints.
void runPrintCommand(frmPreview& preview);

// Prints the preview through its print services: the current view or every view (the
// view shown before is restored afterwards), to the chosen printer with its copies, or to
// a PDF file the operator names. Each sheet carries the header line (file, date, time),
// on an eight-page card a heading with the view's page numbers, and the pictures of the
// grids. False when the operator cancelled or the printer failed (quietly, no message).
bool printPreview(frmPreview& preview, bool allPages, bool toFile);

// Where the grid pictures (sizes in screen pixels) go on a sheet of the given printable size:
// side by side below the header lines, a gap apart, at their screen size on paper and scaled
// down together where the paper is narrower or shorter.
std::vector<QRectF> gridPlacement(const std::vector<QSizeF>& pictures, const QSizeF& paper, int printerDpi,
                                  double screenDpi);

}  // namespace kestrin
