#pragma once
#include <QImage>
#include <QPointF>
#include <QString>

#include <vector>

// The picture of a ramp table: speed over time, as the axis will run it. No widget; any thread.
class CVelocityGraph
{
public:
    struct stCurve
    {
        std::vector<double> lstVel;   // pulses/s, as recorded while the table was built
        double fMovPerPulse = 0.0;    // mm or degrees
        double fSamplingTime = 0.0;   // us
        QString strName, strLength;   // of the axis; "mm" or "deg"
    };
    explicit CVelocityGraph(stCurve curve);

    // Seconds and mm/s (deg/s), from the start of the ramp to its end.
    const std::vector<QPointF>& Points() const { return m_lstPoints; }
    double FirstPulse() const;                        // s, the slowest; 0: there is no curve
    double Distance() const { return m_fDistance; }   // of the ramp, mm or degrees

    // A step of 1, 2 or 5 times a power of ten that parts the span into at most iParts.
    static double GridStep(double fSpan, int iParts);

    // strNote stands where there is no curve.
    QImage Draw(QSize size, const QString& strNote) const;

private:
    class CArea;
    void DrawCurve(class QPainter& painter, const CArea& area) const;
    stCurve m_Curve;
    std::vector<QPointF> m_lstPoints;
    double m_fDistance = 0.0;
};
