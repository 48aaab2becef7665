#pragma once
#include "common/MachineTypes.h"

#include <QImage>
#include <QPoint>

class QPainter;

// The picture of the work piece, an isometric box, on which the path of the tool grows while a job runs. One pixel is
// one mm; depth shows as brightness. It is drawn on an image in memory: the path is never drawn anew, only the
// small patch under the tool's icon is put back. mm, work coordinates. Interface thread.
class CToolPathPicture
{
public:
    CToolPathPicture() { MakeImage(MARGIN_AT_START); }

    double Length() const { return m_fLength; }   // along X
    double Width() const { return m_fWidth; }     // along Y
    double Height() const { return m_fHeight; }   // along Z

    // A new size takes a new, empty image. Above 0.
    void SetLength(double fLength);
    void SetWidth(double fWidth);
    void SetHeight(double fHeight);

    // Empties the picture down to the box and its axes, and puts the tool where an operation begins.
    void Clear(int iOperation, int iHomeRef);
    // Draws the way from the last position to this one, and the tool's icon there.
    void Draw(const stFloatPoint& pos, int iOperation, int iHomeRef);

    // Null where the computer has not enough memory for one of this size; drawing then does nothing.
    QImage& Image() { return m_Image; }
    quint16 Side() const { return m_iSide; }
    QPoint LastPoint() const { return m_Last; }

private:
    // The two differ on purpose: the larger one only applies once the operator has changed the size.
    static constexpr int MARGIN_AT_START = 50, MARGIN_AFTER_CHANGE = 60;
    static constexpr int PATCH = 16;

    void MakeImage(int iMargin);
    void Blacken();
    QPoint Project(int iX, int iY) const;
    QPoint Corner(int iCorner) const;
    int Brightness(double fZ) const;
    QPen PenAt(double fZ) const;
    QPoint PatchCorner(QPoint at) const { return at - QPoint(PATCH / 2, PATCH); }
    void DrawBox(QPainter& painter) const;
    static void DrawWay(QPainter& painter, const QPen& pen, QPoint from, QPoint to, double fZ);
    static void DrawTool(QPainter& painter, QPoint at);

    double m_fLength = 200.0, m_fWidth = 250.0, m_fHeight = 10.0;
    double m_fBrightnessScale = 225.0 / 10.0;   // gray levels lost per mm of depth
    quint16 m_iSide = 0;                        // pixels
    QImage m_Image;
    QPoint m_Center, m_Last;
    QImage m_Patch{PATCH, PATCH, QImage::Format_RGB888};   // what the icon covers
};
