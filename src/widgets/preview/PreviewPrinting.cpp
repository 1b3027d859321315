#include "PreviewPrinting.h"

#include <QDateTime>
#include <algorithm>
#include <QFileInfo>
#include <QLocale>
#include <QPainter>
#include <QPixmap>
#include <QPrinter>
#include <QTableWidget>

#include "frmPreview.h"
#include "frmPrintPreview.h"
#include "base/Twips.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

// Where the grid pictures go on a sheet, in twips from the printable area's corner.
constexpr int kGridLeftTwips = 500;
constexpr int kGridTopTwips = 1000;
constexpr int kGridGapTwips = 250;

QString text(const Translator& translator, const TextRef& ref) {
    return QString::fromStdString(translator.text(ref));
}

QString headerLine(const frmPreview& preview) {
    const QDateTime now = QDateTime::currentDateTime();
    const QLocale locale = QLocale::system();
    return QString::fromStdString(printHeaderLine(preview.translator(), preview.layoutFile().toStdString(),
                                                  locale.toString(now.date(), QLocale::ShortFormat).toStdString(),
                                                  locale.toString(now.time(), QLocale::ShortFormat).toStdString()));
}

// One sheet: the header line, the pages heading of an eight-page card, and the pictures of the
// grids where gridPlacement puts them.
void printSheet(QPainter& painter, QPrinter& printer, const frmPreview& preview, const QString& header) {
    const int dpi = printer.resolution();
    const QRectF page = printer.pageLayout().paintRectPixels(dpi);
    QFont font = painter.font();
    font.setPointSizeF(10);
    font.setStyleStrategy(QFont::PreferNoShaping);  // no ligatures: the header stays searchable text
    painter.setFont(font);
    const double lineHeight = painter.fontMetrics().height();
    painter.drawText(QPointF(0, lineHeight), header);
    const std::string pages = printPagesHeading(preview.card(), preview.view(), preview.translator());
    if (!pages.empty()) painter.drawText(QPointF(0, 2.5 * lineHeight), QString::fromStdString(pages));

    std::vector<QPixmap> pictures;
    std::vector<QSizeF> sizes;
    for (int i = 0; i < (preview.usesSecondGrid() ? 2 : 1); ++i) {
        pictures.push_back(preview.grid(i)->grab());
        sizes.push_back(pictures.back().deviceIndependentSize());
    }
    const std::vector<QRectF> places = gridPlacement(sizes, page.size(), dpi, preview.grid(0)->logicalDpiX());
    for (std::size_t i = 0; i < pictures.size(); ++i)
        painter.drawPixmap(places[i], pictures[i], QRectF(pictures[i].rect()));
}

// Prints the views of one copy, each on its own sheet; false when the printer failed.
bool printViews(QPainter& painter, QPrinter& printer, frmPreview& preview, bool allPages, const QString& header,
                bool& firstSheet) {
    auto sheet = [&] {
        if (!firstSheet && !printer.newPage()) return false;
        firstSheet = false;
        printSheet(painter, printer, preview, header);
        return true;
    };
    if (!allPages) return sheet();
    // From the first view to the last through the preview's own Previous and Next.
    while (preview.view().hasPrevious) preview.showPrevious();
    if (!sheet()) return false;
    while (preview.view().hasNext) {
        preview.showNext();
        if (!sheet()) return false;
    }
    return true;
}

}  // namespace

std::vector<QRectF> gridPlacement(const std::vector<QSizeF>& pictures, const QSizeF& paper, int printerDpi,
                                  double screenDpi) {
    const double left = twipsToPixels(kGridLeftTwips, printerDpi);
    const double top = twipsToPixels(kGridTopTwips, printerDpi);
    const double gap = twipsToPixels(kGridGapTwips, printerDpi);
    double width = 0, height = 0;
    for (const QSizeF& p : pictures) {
        width += p.width();
        height = std::max(height, p.height());
    }
    const double roomX = paper.width() - left - gap * static_cast<double>(pictures.size() - 1);
    const double roomY = paper.height() - top;
    const double scale = std::min({printerDpi / screenDpi, roomX / width, roomY / height});
    std::vector<QRectF> places;
    double x = left;
    for (const QSizeF& p : pictures) {
        places.emplace_back(QPointF(x, top), p * scale);
        x += places.back().width() + gap;
    }
    return places;
}

bool printPreview(frmPreview& preview, bool allPages, bool toFile) {
    const PrintServices& services = preview.services();
    QPrinter printer(QPrinter::HighResolution);
    int copies = 1;
    if (toFile) {
        if (!services.fileChooser) return false;
        const QString folder = QFileInfo(preview.layoutFile()).absolutePath();
        const QString file = services.fileChooser->saveFileName(
            &preview, text(preview.translator(), kTextPrintToFile).remove('&'), folder, "PDF (*.pdf)");
        if (file.isEmpty()) return false;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(file);
    } else {
        if (!services.printSetup || !services.printSetup->setUp(printer, &preview)) return false;
        copies = std::max(1, printer.copyCount());
        printer.setCopyCount(1);  // every copy is sent as its own set of sheets
    }

    const int before = preview.viewIndex();
    QPainter painter;
    if (!painter.begin(&printer)) return false;  // printer errors end the printing quietly
    const QString header = headerLine(preview);
    bool firstSheet = true;
    for (int copy = 0; copy < copies; ++copy) {
        if (!printViews(painter, printer, preview, allPages, header, firstSheet)) {
            painter.end();
            return false;
        }
    }
    painter.end();
    preview.showView(before);
    return true;
}

void runPrintCommand(frmPreview& preview) {
    frmPrintPreview options(preview.translator(), &preview);
    options.exec();
    if (options.Cancelled) return;
    printPreview(preview, options.allPages(), options.toFile());
}

}  // namespace kestrin
