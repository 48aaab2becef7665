#include "preview/ToolPathPicture.h"

#include "common/Operation.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

static constexpr float ANGLE = 0.765f;         // radians, of the isometric view
static constexpr int Z_PIXELS = 6;             // a mm; the box's height has one pixel, wanted: depths are small
static constexpr int AXIS_MARK = 50;           // pixels
static constexpr int LABEL_POINTS = 15;        // font
static constexpr double LIFTED = 9e-5;         // mm, above it the tool is off the work piece
static constexpr int DARKEST = 10;             // never below: the path must show on black
static constexpr int BRIGHTEST = 255;          // at the surface
static constexpr double GRAY_LEVELS = 225.0;   // from the surface to the bottom of the work piece
static const QColor BOX_COLOR(150, 150, 150);

namespace {
// Of any double: a position far outside of the picture must not overflow the pixels' arithmetic.
int Truncated(double f)
{
    constexpr double LIMIT = 1e6;
    return std::isnan(f) ? 0 : static_cast<int>(std::clamp(f, -LIMIT, LIMIT));
}

// Where the drawing's reference lies, by iHomeRef: the signs of the way from it to the middle of the work piece, and
// the corner at which a program begins; 4 is the middle.
struct stReference
{
    int iHomeRef, iSignX, iSignY, iCorner;
};
constexpr int CENTER = 4;
constexpr stReference REFERENCES[] = {{0, 1, -1, 0}, {2, -1, -1, 1}, {4, -1, 1, 2}, {6, 1, 1, 3}, {8, 0, 0, CENTER}};
constexpr stReference NO_REFERENCE = {-1, 1, 1, -1};
constexpr stReference OTHER_OPERATION = {-1, 1, 1, 3};

const stReference& ReferenceOf(int iOperation, int iHomeRef)
{
    if (iOperation != OP_GCODE) return OTHER_OPERATION;
    const auto found = std::find_if(std::begin(REFERENCES), std::end(REFERENCES),
                                    [iHomeRef](const stReference& entry) { return entry.iHomeRef == iHomeRef; });
    return found == std::end(REFERENCES) ? NO_REFERENCE : *found;
}
}   // namespace

void CToolPathPicture::SetLength(double fLength)
{
    m_fLength = fLength;
    MakeImage(MARGIN_AFTER_CHANGE);
}
void CToolPathPicture::SetWidth(double fWidth)
{
    m_fWidth = fWidth;
    MakeImage(MARGIN_AFTER_CHANGE);
}
void CToolPathPicture::SetHeight(double fHeight)
{
    m_fHeight = fHeight;
    m_fBrightnessScale = GRAY_LEVELS / fHeight;
    MakeImage(MARGIN_AFTER_CHANGE);
}

void CToolPathPicture::MakeImage(int iMargin)
{
    const double fSide = std::sqrt(m_fLength * m_fLength + m_fWidth * m_fWidth) + m_fHeight + iMargin;
    m_iSide = static_cast<quint16>(std::clamp(fSide, 1.0, double(std::numeric_limits<quint16>::max())));
    m_Center = m_Last = QPoint(m_iSide / 2, m_iSide / 2);
    Blacken();
}

// Fresh memory that is black by itself: of a work piece of 10 m only what is drawn on takes room in the computer.
void CToolPathPicture::Blacken()
{
    m_Image = QImage();   // gives its memory back first
    const qsizetype iLine = (qsizetype(m_iSide) * 3 + 3) / 4 * 4;
    if (void* pBits = std::calloc(m_iSide, static_cast<size_t>(iLine)))
        m_Image = QImage(static_cast<uchar*>(pBits), m_iSide, m_iSide, iLine, QImage::Format_RGB888, std::free, pBits);
    m_Patch.fill(Qt::black);
}

QPoint CToolPathPicture::Project(int iX, int iY) const
{
    static const double COS = std::cos(static_cast<double>(ANGLE)), SIN = std::sin(static_cast<double>(ANGLE));
    return {m_Center.x() + static_cast<int>((iX + iY) * COS), m_Center.y() - static_cast<int>((iY - iX) * SIN)};
}

QPoint CToolPathPicture::Corner(int iCorner) const
{
    const int a = Truncated(m_fLength) / 2, b = Truncated(m_fWidth) / 2;
    return Project(iCorner < 2 ? -a : a, iCorner % 2 == 0 ? -b : b);
}

void CToolPathPicture::Clear(int iOperation, int iHomeRef)
{
    Blacken();
    if (m_Image.isNull()) return;
    QPainter painter(&m_Image);
    DrawBox(painter);
    painter.end();
    const int iCorner = ReferenceOf(iOperation, iHomeRef).iCorner;
    if (iCorner == CENTER)
        m_Last = m_Center;
    else if (iCorner >= 0)
        m_Last = Corner(iCorner);
    m_Patch = m_Image.copy(QRect(PatchCorner(m_Last), m_Patch.size()));
}

void CToolPathPicture::DrawBox(QPainter& painter) const
{
    const QPoint corners[] = {Corner(0), Corner(1), Corner(2), Corner(3)};
    const QPoint down(0, Truncated(m_fHeight));
    QFont font = painter.font();
    font.setPointSize(LABEL_POINTS);
    painter.setFont(font);

    const QPoint origin = corners[3];
    const struct
    {
        QColor color;
        QPoint way;
        const char* szName;
    } marks[] = {{QColor(0, 255, 0), {AXIS_MARK / 2, AXIS_MARK / 2}, "X"},
                 {QColor(255, 0, 0), {0, -AXIS_MARK}, "Z"},
                 {QColor(0, 200, 255), {AXIS_MARK / 2, -AXIS_MARK / 2}, "Y"}};
    for (const auto& mark : marks) {
        painter.setPen(QPen(mark.color, 2));
        painter.drawLine(origin, origin + mark.way);
        const QString strName = QString::fromLatin1(mark.szName);
        QPoint at = origin + mark.way;
        at.setX(std::min(at.x(), m_iSide - painter.fontMetrics().horizontalAdvance(strName)));   // never cut off
        painter.drawText(at, strName);
    }

    painter.setPen(QPen(BOX_COLOR, 2));
    for (const auto& [iFrom, iTo] : {std::pair(0, 1), {1, 3}, {3, 2}, {2, 0}})
        painter.drawLine(corners[iFrom], corners[iTo]);
    const QPoint lower[] = {corners[3] + down, corners[2] + down, corners[1] + down};
    painter.drawLine(lower[0], lower[1]);
    painter.drawLine(lower[0], lower[2]);
    for (const QPoint& edge : lower) painter.drawLine(edge - down, edge);
}

int CToolPathPicture::Brightness(double fZ) const
{
    if (fZ >= 0.0) return BRIGHTEST;
    return std::max(Truncated(m_fBrightnessScale * fZ + BRIGHTEST), DARKEST);
}

QPen CToolPathPicture::PenAt(double fZ) const
{
    const int iGray = Brightness(fZ);
    return QPen(QColor(iGray, iGray, iGray), 2, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
}

void CToolPathPicture::DrawWay(QPainter& painter, const QPen& pen, QPoint from, QPoint to, double fZ)
{
    painter.setPen(pen);
    painter.drawPoint(from);
    if (fZ > LIFTED) {
        QPen lifted = pen;
        lifted.setColor(Qt::yellow);
        painter.setPen(lifted);
    }
    painter.drawLine(from, to);
}

void CToolPathPicture::Draw(const stFloatPoint& pos, int iOperation, int iHomeRef)
{
    if (m_Image.isNull()) return;
    const stReference& ref = ReferenceOf(iOperation, iHomeRef);
    QPoint point = Project(Truncated(pos.x - ref.iSignX * m_fLength / 2), Truncated(pos.y - ref.iSignY * m_fWidth / 2));
    point.ry() -= Truncated(static_cast<float>(Z_PIXELS) * static_cast<float>(pos.z));

    const QPen pen = PenAt(pos.z);
    QPainter painter(&m_Image);
    DrawWay(painter, pen, m_Last, point, pos.z);
    // Into the patch too: it is put back over the way's beginning, which would be lost.
    QPainter patchPainter(&m_Patch);
    patchPainter.translate(-PatchCorner(m_Last));
    DrawWay(patchPainter, pen, m_Last, point, pos.z);
    patchPainter.end();
    painter.drawImage(PatchCorner(m_Last), m_Patch);
    painter.end();

    m_Patch = m_Image.copy(QRect(PatchCorner(point), m_Patch.size()));
    painter.begin(&m_Image);
    DrawTool(painter, point);
    m_Last = point;
}

void CToolPathPicture::DrawTool(QPainter& painter, QPoint at)
{
    painter.setPen(QPen(Qt::red, 2));
    painter.drawPoint(at);
    painter.drawLine(at, at + QPoint(-6, -12));
    painter.drawLine(at, at + QPoint(6, -12));
    painter.drawEllipse(QRect(at + QPoint(-6, -15), QSize(12, 6)));
}
