#include "shapes/ShapesToGCode.h"

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
        : m_File(file), m_fSafeHeight(fSafeHeight), m_fnMayGoOn(fnMayGoOn), m_lstNotices(lstNotices)
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
        const stFloatPoint &first = shape.Path().front(), &last = shape.Path().back();
        const stFloatPoint& centre = shape.pEllipse->stCenter;
        const bool bClosed = IsBelowPulse(last.x - first.x, last.y - first.y);
        const stEllipse& circle = *shape.pEllipse;
        if (bClosed && (circle.fArcStartAngle > 0.0 || circle.fArcEndAngle < 360.0))
            Notice(circle, "an arc of a single place is a whole turn when its G-code is run");
        else if (bClosed)
            WarnOfStandstill(circle, first, last);
        bool bForward = true;
        for (bool bMore = true; bMore;) {
            if (!m_fnMayGoOn()) return false;
            bMore = passes.Next();
            Plunge(passes.fDepth);
            Arc(bForward ? "G03" : "G02", bForward ? first : last, bForward ? last : first, centre);
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
    // An arc word that ends where it starts moves nothing unless its ends are level with the centre, or at X0 Y0, which
    // count as not given. By the words as they are run: a J below a pulse puts the centre level with where the axis
    // stands, which is the end only if that is on a pulse.
    void WarnOfStandstill(const stEllipse& circle, const stFloatPoint& first, const stFloatPoint& last)
    {
        if (IsBelowPulse(last.x, last.y)) return;
        const double fPulse = AppConfig::m_fAxisMovPerPulse[Y_AXIS];
        const double fJ = Number(circle.stCenter.y - first.y).toDouble();
        const qint32 lPulse = CUnitConverter::GetInt(fPulse);
        const bool bOnPulse = lPulse <= 0 || CUnitConverter::GetInt(Number(last.y).toDouble()) % lPulse == 0;
        if (std::abs(fJ) >= fPulse)
            Notice(circle, "a turned full circle does not move when its G-code is run");
        else if (!bOnPulse)
            Notice(circle, "a full circle that starts between two pulses may not move when its G-code is run");
    }
    void Notice(const stEllipse& circle, const char* szText)
    {
        m_lstNotices += circle.strShapeName + QStringLiteral(": ") + QLatin1String(szText);
    }
    bool Write(const QString& strText)
    {
        const QByteArray bytes = strText.toUtf8();
        return m_bGood = m_bGood && m_File.write(bytes) == bytes.size();
    }

    QFileDevice& m_File;
    const double m_fSafeHeight;
    const std::function<bool()>& m_fnMayGoOn;
    QStringList& m_lstNotices;
    bool m_bGood = true;
};
}   // namespace

bool WriteShapesAsGCode(const QString& strFile, const stShapeCuttingInfo& info, double fSafeHeight,
                        const std::function<bool()>& fnMayGoOn, QStringList& lstNotices)
{
    CFileWriter file(strFile);
    if (!file.Open()) return false;
    CGCodeWriter writer(file, fSafeHeight, fnMayGoOn, lstNotices);
    writer.Header(info.lstShapes.size());
    (void)WalkJob(info, writer);
    if (writer.IsGood() && file.Commit()) return true;
    lstNotices += QStringLiteral("%1 was not written: %2").arg(strFile, file.errorString());
    return false;
}
