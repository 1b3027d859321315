#include "PreviewPrinting.h"

#include <QDateTime>
#include <QFileInfo>
#include <QImage>
#include <QLocale>
#include <QPainter>
#include <QPicture>
#include <QPrinter>
#include <QTableWidget>
#include <algorithm>

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

// The grid as the painting commands it draws itself with on the screen. Recorded first, since a
// widget asked to render onto a printer renders into a bitmap instead.
QPicture gridPicture(QWidget& grid) {
    QPicture picture;
    QPainter recorder(&picture);
    grid.render(&recorder, QPoint(), QRegion(), QWidget::DrawChildren);
    recorder.end();
    return picture;
}

// One sheet: the header line, the pages heading of an eight-page card, and the grids where
// gridPlacement puts them. Each grid paints itself onto the sheet's painter, scaled to its place:
// cells, lines, colours and texts as drawing and text at the device's resolution, with the same
// painting code that draws it on the screen.
void paintSheet(QPainter& painter, const QSizeF& printable, int dpi, const frmPreview& preview, const QString& header) {
    QFont font = painter.font();
    font.setPointSizeF(10);
    font.setStyleStrategy(QFont::PreferNoShaping);  // no ligatures: the header stays searchable text
    painter.setFont(font);
    const double lineHeight = painter.fontMetrics().height();
    painter.drawText(QPointF(0, lineHeight), header);
    const std::string pages = printPagesHeading(preview.card(), preview.view(), preview.translator());
    if (!pages.empty()) painter.drawText(QPointF(0, 2.5 * lineHeight), QString::fromStdString(pages));

    std::vector<QSizeF> sizes;
    for (int i = 0; i < (preview.usesSecondGrid() ? 2 : 1); ++i) sizes.emplace_back(preview.grid(i)->size());
    const std::vector<QRectF> places = gridPlacement(sizes, printable, dpi);
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const QPicture picture = gridPicture(*preview.grid(static_cast<int>(i)));
        // A picture plays at the size it had on its own device: from there to its place.
        const double played = double(painter.device()->logicalDpiX()) / picture.logicalDpiX();
        painter.save();
        painter.translate(places[i].topLeft());
        painter.scale(places[i].width() / sizes[i].width() / played, places[i].height() / sizes[i].height() / played);
        painter.drawPicture(QPointF(), picture);
        painter.restore();
    }
}

void printSheet(QPainter& painter, QPrinter& printer, const frmPreview& preview, const QString& header) {
    const int dpi = printer.resolution();
    paintSheet(painter, printer.pageLayout().paintRectPixels(dpi).size(), dpi, preview, header);
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

std::vector<QRectF> gridPlacement(const std::vector<QSizeF>& grids, const QSizeF& paper, int dpi) {
    const double left = twipsToPixels(kGridLeftTwips, dpi);
    const double top = twipsToPixels(kGridTopTwips, dpi);
    const double gap = twipsToPixels(kGridGapTwips, dpi);
    double width = 0, height = 0;
    for (const QSizeF& g : grids) {
        width += g.width();
        height = std::max(height, g.height());
    }
    const double roomX = paper.width() - left - gap * static_cast<double>(grids.size() - 1);
    const double roomY = paper.height() - top;
    const double scale = std::min(roomX / width, roomY / height);
    std::vector<QRectF> places;
    double x = left;
    for (const QSizeF& g : grids) {
        places.emplace_back(QPointF(x, top), g * scale);
        x += places.back().width() + gap;
    }
    return places;
}

QImage sheetImage(const frmPreview& preview, int dpi) {
    const QPageLayout layout = QPrinter(QPrinter::HighResolution).pageLayout();
    QImage sheet(layout.fullRectPixels(dpi).size(), QImage::Format_RGB32);
    const int dotsPerMeter = qRound(dpi / 0.0254);
    sheet.setDotsPerMeterX(dotsPerMeter);
    sheet.setDotsPerMeterY(dotsPerMeter);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect printable = layout.paintRectPixels(dpi);
    painter.translate(printable.topLeft());
    paintSheet(painter, printable.size(), dpi, preview, headerLine(preview));
    return sheet;
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
