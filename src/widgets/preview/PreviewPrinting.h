#pragma once

#include <QImage>
#include <QRectF>
#include <vector>

namespace kestrin {

class frmPreview;

// The preview's print command: asks for the print options, then prints.
void runPrintCommand(frmPreview& preview);

// Prints the preview through its print services: the current view or every view (the
// view shown before is restored afterwards), to the chosen printer with its copies, or to
// a PDF file the operator names. Each sheet carries the header line (file, date, time),
// on an eight-page card a heading with the view's page numbers, and the grids, each painting
// itself at the printer's resolution. False when the operator cancelled or the printer failed
// (quietly, no message).
bool printPreview(frmPreview& preview, bool allPages, bool toFile);

// The sheet the current view prints on, as a picture at dpi: the printer's default paper, white,
// with the header lines and the grids drawn at that resolution as on paper.
QImage sheetImage(const frmPreview& preview, int dpi);

// Where the grids (their sizes on the screen) go on a sheet of the given printable size in
// pixels of dpi: side by side below the header lines, 500 twips from the left and 1000 from the
// top, a gap apart, at one scale, as large as the sheet's width and height allow.
std::vector<QRectF> gridPlacement(const std::vector<QSizeF>& grids, const QSizeF& paper, int dpi);

}  // namespace kestrin
