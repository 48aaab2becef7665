#include "shapes/TextTrace.h"

#include "shapes/TracedPath.h"

#include <QImage>
#include <QPainter>
#include <QStringList>

#include <algorithm>
#include <opencv2/imgproc.hpp>

namespace {
constexpr double INK_LEVEL = 60.0;   // grey levels above it are ink; the edges of letters are drawn soft

QFont FontOf(const stTextToTrace& text)
{
    QFont font = text.font;
    font.setPointSize(text.fTextSize >= 1.0f ? static_cast<int>(std::min(text.fTextSize, 10000.0f)) : 1);
    font.setBold(text.bBold);
    font.setItalic(text.bItalic);
    return font;
}

// The last line stands on the lowest baseline, the others above it at a pitch of the size plus the spacing, whatever
// height the font would ask for.
QImage Drawn(const stTextToTrace& text, const stDisplayScale& scale)
{
    QImage image(scale.size, QImage::Format_Grayscale8);
    if (image.isNull()) return image;
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setOpacity(1.0);
    painter.setFont(FontOf(text));
    painter.setPen(QPen(Qt::white, 10.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    const QStringList lstLines = text.strText.split('\n');
    for (qsizetype n = 0; n < lstLines.size(); ++n) {
        const float fLine = static_cast<float>(n);
        const float fBaseline = static_cast<float>(image.height()) - static_cast<float>(scale.iMargin) -
                                text.fTextSize * fLine - text.fLineSpacing * fLine;
        if (fBaseline < -1e6f) break;   // far above the picture, and so is all that would follow
        painter.drawText(scale.iMargin, static_cast<int>(fBaseline), lstLines[lstLines.size() - 1 - n]);
    }
    return image;
}

// The leftmost by its centre. A contour of 4 points or fewer has no centre, which shifts the centres behind it against
// the contours: a contour without a centre at its own place never leads.
size_t Leftmost(const Contours& contours, std::vector<cv::Point>& centres)
{
    size_t uFirst = 0;
    for (size_t n = 0; n < contours.size(); ++n) {
        if (contours[n].size() <= 4) continue;
        centres.push_back(EllipseCentre(contours[n]));
        if (n < centres.size() && centres[n].x < centres[uFirst].x) uFirst = n;
    }
    return uFirst;
}
}   // namespace

std::vector<ShapePath> TraceText(const stTextToTrace& text, const stDisplayScale& scale)
{
    QImage image = Drawn(text, scale);
    if (image.isNull() || !(scale.fPixPerMM > 0.0)) return {};
    cv::Mat ink(image.height(), image.width(), CV_8UC1, image.bits(), static_cast<size_t>(image.bytesPerLine()));
    cv::threshold(ink, ink, INK_LEVEL, 255.0, cv::THRESH_BINARY);
    Contours contours;
    cv::findContours(ink, contours, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);

    std::vector<cv::Point> centres;
    const size_t uFirst = Leftmost(contours, centres);
    const auto ToMM = [&](const cv::Point& pixel) -> stFloatPoint {
        return {text.stTextPos.x + (pixel.x - scale.iMargin) / scale.fPixPerMM,
                text.stTextPos.y + (ink.rows - scale.iMargin - pixel.y) / scale.fPixPerMM};
    };
    std::vector<ShapePath> lstPaths;
    for (const Contour& contour : OrderContours(std::move(contours), std::move(centres), uFirst))
        lstPaths.push_back(ClosedPath(contour, ToMM));
    return lstPaths;
}
