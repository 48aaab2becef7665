#include "shapes/ShapesToGCode.h"

#include "common/ArcReading.h"
#include "common/FileWriter.h"
#include "common/UnitConverter.h"
#include "shapes/CuttingWalk.h"

#include <cmath>

namespace {
QString Number(double fValue)
{
    return QString::number(fValue, 'f', PRECISION);
}
QString Place(const stFloatPoint& point)
{
    return QStringLiteral("X") + Number(point.x) + QStringLiteral(" Y") + Number(point.y);
}
bool IsBelowPulse(double fX, double fY)
{
    return std::abs(fX) < AppConfig::m_fAxisMovPerPulse[X_AXIS] && std::abs(fY) < AppConfig::m_fAxisMovPerPulse[Y_AXIS];
}

bool IsCircle(const stEngShape& shape)
{
    return shape.eType == SHAPE_ELLIPSE && CUnitConverter::GetInt(shape.pEllipse->fMajorAxisDia) ==
                                               CUnitConverter::GetInt(shape.pEllipse->fMinorAxisDia);
}

// Writes what the walk says. No feed, no spindle, no end of program: those come from whoever runs the program.
class CGCodeWriter
{
public:
    CGCodeWriter(QFileDevice& file, double fSafeHeight, const std::function<bool()>& fnMayGoOn, QStringList& lstNotices)
        : m_File(file), m_fSafeHeight(fSafeHeight), m_fnMayGoOn(fnMayGoOn), m_lstNotices(lstNotices),
          m_Arcs({AppConfig::m_fAxisMovPerPulse[X_AXIS], AppConfig::m_fAxisMovPerPulse[Y_AXIS],
                  AppConfig::m_GCodeRunSettings.fAxisStep},
                 lstNotices)
    {
    }

    void Header(size_t uShapes)
    {
        Write(GCODE_ORIGIN);
        Write(QStringLiteral("(Number of Shapes:%1)\n"
                             "(End-Mill Diameter:%2)\n\n"
                             "G21 G90\n")
                  .arg(Number(static_cast<double>(uShapes)), Number(AppConfig::m_fEndMillDia)));
    }

    bool Begin(const stEngShape& shape)
    {
        if (shape.eType == SHAPE_ELLIPSE) {
            const stEllipse& ellipse = *shape.pEllipse;
            Write(QStringLiteral("\n(Shape Type: Ellipse)\n"
                                 "(X-Axis Interpolation Step:%1)\n"
                                 "(Minor Axis Diameter:%2)\n"
                                 "(Major Axis Diameter:%3)\n"
                                 "(Arc Start Angle:%4)\n"
                                 "(Arc End Angle:%5)\n")
                      .arg(Number(ellipse.fXAxisStep), Number(ellipse.fMinorAxisDia), Number(ellipse.fMajorAxisDia),
                           Number(ellipse.fArcStartAngle), Number(ellipse.fArcEndAngle)));
        } else {
            Write(QStringLiteral("\n(Shape Type:Polygon)\n"));
        }
        return Write(QStringLiteral("(Shape Depth:%1)\n\n").arg(Number(shape.Common().fDepth)));
    }
    bool Lift() { return Write(QStringLiteral("G00 Z%1\n").arg(Number(m_fSafeHeight))); }
    bool Travel(const stFloatPoint& first) { return Write(Place(first) + QLatin1Char('\n')); }
    bool Descend() { return Write(QStringLiteral("G01 Z0.0000\n")); }
    bool Plunge(double fDepth) { return Write(QStringLiteral("Z%1\n").arg(Number(fDepth))); }
    bool MayGoOn() { return m_fnMayGoOn(); }
    bool Cut(const stFloatPoint& point) { return Write(Place(point) + QLatin1Char('\n')); }
    void EndPass() {}
    bool End() { return Lift(); }
    void Skip(const QString& strWhy) { m_lstNotices += strWhy; }

    // A circle is an arc word a pass, of its first and last point; an open one goes there and back.
    bool HasItsWay(const stEngShape& shape) const { return IsCircle(shape); }
    bool CutItsWay(const stEngShape& shape, stPasses passes)
    {
        const ShapePath& path = shape.Path();
        const stFloatPoint &first = path.front(), &last = path.back();
        const bool bClosed = IsBelowPulse(last.x - first.x, last.y - first.y);
        bool bForward = true;
        int iPass = 0;
        for (bool bMore = true; bMore; ++iPass) {
            if (!m_fnMayGoOn()) return false;
            bMore = passes.Next();
            Plunge(passes.fDepth);
            if (iPass < 2) CheckArc(*shape.pEllipse, bForward);   // the others are like one of these
            Arc(bForward ? "G03" : "G02", bForward ? first : last, bForward ? last : first, shape.pEllipse->stCenter);
            if (!bClosed) bForward = !bForward;
        }
        return m_bGood;
    }
    bool IsGood() const { return m_bGood; }

private:
    void Arc(const char* szWord, const stFloatPoint& from, const stFloatPoint& to, const stFloatPoint& centre)
    {
        Write(QLatin1String(szWord) + QLatin1Char(' ') + Place(to) + QStringLiteral(" I") + Number(centre.x - from.x) +
              QStringLiteral(" J") + Number(centre.y - from.y) + QLatin1Char('\n'));
    }
    // By the words as they are printed.
    void CheckArc(const stEllipse& circle, bool bForward)
    {
        const auto At = [](const stFloatPoint& point) { return stArcPoint{point.x, point.y}; };
        const ShapePath& path = circle.lstPoints;
        const stArcPoint first = At(path.front()), last = At(path.back()), centre = At(circle.stCenter);
        const stArcPoint &from = bForward ? first : last, &to = bForward ? last : first;
        m_Arcs.Check(circle.strShapeName, m_lLine,
                     {.start = {Round4(from.fFirst), Round4(from.fSecond)},
                      .end = {Round4(to.fFirst), Round4(to.fSecond)},
                      .offset = {Round4(centre.fFirst - from.fFirst), Round4(centre.fSecond - from.fSecond)},
                      .eDir = bForward ? DIR_CCW : DIR_CW,
                      .fSweep = path.size() == 1 ? 0.0 : ArcSweep(first, last, centre, DIR_CCW)});
    }
    bool Write(const QString& strText)
    {
        const QByteArray bytes = strText.toUtf8();
        m_lLine += bytes.count('\n');
        return m_bGood = m_bGood && m_File.write(bytes) == bytes.size();
    }

    QFileDevice& m_File;
    const double m_fSafeHeight;
    const std::function<bool()>& m_fnMayGoOn;
    QStringList& m_lstNotices;
    CArcCheck m_Arcs;
    qint64 m_lLine = 1;   // the next one
    bool m_bGood = true;
};
}   // namespace

bool WriteShapesAsGCode(const QString& strFile, const stShapeCuttingInfo& info, double fSafeHeight,
                        const std::function<bool()>& fnMayGoOn, QStringList& lstNotices)
{
    CFileWriter file(strFile);
    if (!file.Open()) return false;
    bool bGood = false;
    {
        CGCodeWriter writer(file, fSafeHeight, fnMayGoOn, lstNotices);
        writer.Header(info.lstShapes.size());
        (void)WalkJob(info, writer);
        bGood = writer.IsGood();
    }   // which tells the rest of its notices
    if (bGood && file.Commit()) return true;
    lstNotices += QStringLiteral("%1 was not written: %2").arg(strFile, file.errorString());
    return false;
}
