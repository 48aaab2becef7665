#pragma once
#include "shapes/ShapeJob.h"
#include "shapes/WorkAreaPicture.h"

#include <QImage>

#include <memory>

class CDlgShapeSource;
class CMyView;

// The work area in its view, and a finger on it, which works for the dialog that is open. Interface thread.
class CShapeDrawing
{
public:
    // Draws on the image, which stays the caller's.
    CShapeDrawing(CMyView& view, QImage& image, const CShapeJob& job);

    void FollowWorkArea();   // its size has changed, and with it the scale
    const stDisplayScale& Scale() const { return m_Map.Scale(); }

    // The dialog changes the entry uEdited, if any, and those that it adds: they do not lie on the still picture.
    void Open(CDlgShapeSource& dialog, size_t uEdited);
    void Close();
    CDlgShapeSource* Dialog() const { return m_pDialog; }   // null: none is open

    void Draw(int iRow);   // anew, with the row's entry marked; -1: none
    void Show(int iRow);   // what changes only
    bool ToggleMarks() { return m_bMarks = !m_bMarks; }

    // A picture to draw after, under the shapes; it goes with the dialog.
    void SetBackground(std::unique_ptr<QImage> pImage);
    bool HasBackground() const { return m_pBackground != nullptr; }

    bool Press(QPointF view, Qt::MouseButton eButton);   // false: beside the work area
    void Move();

private:
    CMyView& m_View;
    QImage& m_Image;
    const CShapeJob& m_Job;
    CWorkAreaMap m_Map;
    CWorkAreaPicture m_Picture;
    std::unique_ptr<QImage> m_pBackground;
    CDlgShapeSource* m_pDialog = nullptr;
    size_t m_uEdited = 0;
    bool m_bMarks = true;
    bool m_bHeld = false;        // the press that lasts was on the work area
    stFloatPoint m_stMousePos;   // mm; of the last press or movement
};
