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
#include "text/Translator.h"

namespace kestrin {

namespace {

constexpr double kTwipsPerInch = 1440.0;
constexpr double kGridLeftTwips = 500.0;
constexpr double kGridTopTwips = 1000.0;
constexpr double kGridGapTwips = 250.0;

QString text(const Translator& translator, int id, const char* defaultText) {
    return QString::fromStdString(translator.text(id, defaultText));
}

QString headerLine(const frmPreview& preview) {
    const Translator& t = preview.translator();
    const QDateTime now = QDateTime::currentDateTime();
    const QLocale locale = QLocale::system();
    return text(t, 4619, "<Filename>") + ": " + preview.layoutFile() + "; " + text(t, 613, "<Date>") + ": " +
           locale.toString(now.date(), QLocale::ShortFormat) + "; " + text(t, 4620, "<Time>") + ": " +
           locale.toString(now.time(), QLocale::ShortFormat);
}

// "PAGES 2 and 3": the view's pages on an eight-page card.
QString pagesHeading(const frmPreview& preview) {
    const Translator& t = preview.translator();
    const std::vector<int> pages = preview.viewPageNumbers();
    QString heading = text(t, 4621, "<Pages>").toUpper();
    for (size_t i = 0; i < pages.size(); ++i) {
        if (i > 0) heading += " " + text(t, 1572, "<and>");
        heading += " " + QString::number(pages[i]);
    }
    return heading;
}

// One sheet: the header line, the pages heading of an eight-page card, and the grids
// side by side at their screen size, scaled down where the paper is narrower.
void printSheet(QPainter& painter, QPrinter& printer, const frmPreview& preview, const QString& header) {
    const double dpi = printer.resolution();
    const QRectF page = printer.pageLayout().paintRectPixels(static_cast<int>(dpi));
    QFont font = painter.font();
    font.setPointSizeF(10);
    font.setStyleStrategy(QFont::PreferNoShaping);  // no ligatures: the header stays searchable text
    painter.setFont(font);
    const double lineHeight = painter.fontMetrics().height();
    painter.drawText(QPointF(0, lineHeight), header);
    if (preview.card().ChipSize() == iBigEightPages) painter.drawText(QPointF(0, 2.5 * lineHeight), pagesHeading(preview));

    std::vector<QPixmap> pictures;
    for (int i = 0; i < (preview.usesSecondGrid() ? 2 : 1); ++i) pictures.push_back(preview.grid(i)->grab());
    const double left = kGridLeftTwips / kTwipsPerInch * dpi;
    const double top = std::max(kGridTopTwips / kTwipsPerInch * dpi, 4 * lineHeight);
    const double gap = kGridGapTwips / kTwipsPerInch * dpi;
    const double screenDpi = preview.grid(0)->logicalDpiX();
    double width = 0, height = 0;
    for (const QPixmap& p : pictures) {
        width += p.width() / p.devicePixelRatio();
        height = std::max(height, p.height() / p.devicePixelRatio());
    }
    double scale = dpi / screenDpi;
    const double roomX = page.width() - left - gap * static_cast<double>(pictures.size() - 1);
    const double roomY = page.height() - top;
    scale = std::min({scale, roomX / width, roomY / height});
    double x = left;
    for (const QPixmap& p : pictures) {
        const QSizeF size(p.width() / p.devicePixelRatio() * scale, p.height() / p.devicePixelRatio() * scale);
        painter.drawPixmap(QRectF(QPointF(x, top), size), p, QRectF(p.rect()));
        x += size.width() + gap;
    }
}

}  // namespace

bool printPreview(frmPreview& preview, bool allPages, bool toFile) {
    const PrintServices& services = preview.services();
    QPrinter printer(QPrinter::HighResolution);
    int copies = 1;
    if (toFile) {
        if (!services.fileChooser) return false;
        const QString folder = QFileInfo(preview.layoutFile()).absolutePath();
        const QString file = services.fileChooser->saveFileName(
            &preview, text(preview.translator(), 4635, "<Print to &file>").remove('&'), folder, "PDF (*.pdf)");
        if (file.isEmpty()) return false;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(file);
    } else {
        if (!services.printSetup || !services.printSetup->setUp(printer, &preview)) return false;
        copies = std::max(1, printer.copyCount());
        printer.setCopyCount(1);  // every copy is sent as its own set of sheets
    }

    const int before = preview.viewIndex();
    std::vector<int> views{before};
    if (allPages && preview.viewCount() > 1) {
        views.clear();
        for (int v = 0; v < preview.viewCount(); ++v) views.push_back(v);
    }
    QPainter painter;
    if (!painter.begin(&printer)) return false;  // printer errors end the printing quietly
    const QString header = headerLine(preview);
    bool first = true;
    for (int copy = 0; copy < copies; ++copy) {
        for (int view : views) {
            if (!first && !printer.newPage()) {
                painter.end();
                return false;
            }
            first = false;
            preview.showView(view);
            printSheet(painter, printer, preview, header);
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
