#include "screens/shapes/DlgEditPolygon.h"
#include "screens/shapes/DlgEllipse.h"
#include "screens/shapes/DlgShapeFromImg.h"
#include "screens/shapes/DlgShapes.h"
#include "ui_DlgShapes.h"
#include "widgets/ButtonStyle.h"

#include <QMouseEvent>
#include <QRect>

#include <cmath>

// The finger takes hold of what lies in a square of 6 mm around it.
static bool Holds(const stFloatPoint& at, const stFloatPoint& pos)
{
    static constexpr double HALF = 3.0;
    const auto IsIn = [](double fAt, double fPos) {   // on whole millimetres; a file may hold any number
        const double fOff = std::trunc(fPos) - (std::trunc(fAt) - HALF);
        return fOff >= 0.0 && fOff < 2.0 * HALF;
    };
    return IsIn(at.x, pos.x) && IsIn(at.y, pos.y);
}

// ---- Picture --------------------------------------------------------------------------------------------------------

void CDlgShapes::DrawWorkArea()
{
    // What an open dialog changes is not on the picture that stands.
    if (!m_pOpen) m_Picture.Forget();
    ShowPicture();
}

void CDlgShapes::ShowPicture()
{
    const bool bPolygon = m_pOpen && m_pOpen == m_dlgEditPolygon.get();
    stWorkAreaScene scene{
        .lstShapes = m_stCuttingInfo.lstShapes, .stWorkArea = m_stCuttingInfo.stWorkArea, .map = m_Map};
    scene.pBackground = m_pBackground.get();
    scene.bMarks = m_bMarks;
    if (m_pOpen) {
        scene.uEdited = m_uEdited;
        scene.uNew = FirstAdded();
    }
    scene.iShape = m_pOpen && !bPolygon ? -1 : CurrentRow();
    scene.iVertex = bPolygon ? m_iVertex : -1;
    scene.bLastPoint = m_bDrawing;
    m_Picture.Draw(*m_pWorkAreaImg, scene);
    m_pUi->View_WorkArea->DisplayImage(m_pWorkAreaImg.get());
}

void CDlgShapes::on_Btn_DispGraphics_clicked()
{
    m_bMarks = !m_bMarks;
    m_pUi->Btn_DispGraphics->setStyleSheet(m_bMarks ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    DrawWorkArea();
}

// ---- Press ----------------------------------------------------------------------------------------------------------

void CDlgShapes::mousePressEvent(QMouseEvent* pEvent)
{
    const QPointF view = m_pUi->View_WorkArea->mapFrom(this, pEvent->position());
    m_bHeld = PressDrawing(view, pEvent->button());
    if (!m_bHeld) QDialog::mousePressEvent(pEvent);
}

// Two quick touches are two points, not a double click, which would fit the view.
bool CDlgShapes::eventFilter(QObject* pObject, QEvent* pEvent)
{
    if (pObject != m_pUi->View_WorkArea || pEvent->type() != QEvent::MouseButtonDblClick || !m_pOpen)
        return QDialog::eventFilter(pObject, pEvent);
    const auto* pMouse = static_cast<QMouseEvent*>(pEvent);
    m_bHeld = PressDrawing(pMouse->position(), pMouse->button());
    return true;
}

// The position is that of the press: a finger does not hover before it.
bool CDlgShapes::PressDrawing(QPointF view, Qt::MouseButton eButton)
{
    if (!m_pUi->View_WorkArea->IsOverImage(view)) return false;
    m_stMousePos = m_Map.ToMM(m_pUi->View_WorkArea->ImageAt(view));
    if (m_stMousePos.x < 0.0 || m_stMousePos.y < 0.0) return false;
    if (m_bDrawing) {
        stPolygon* pPolygon = LastPolygon();
        if (pPolygon && pPolygon->bHole)
            Host().AddLogMsg(QStringLiteral("Switch Pocket off to change the shape"), MSG_NOTICE);
        else if (pPolygon && eButton == Qt::LeftButton)
            pPolygon->lstVertices.push_back(m_stMousePos);
        else if (eButton == Qt::RightButton)
            RemoveLastPoint();
        DrawWorkArea();
    } else if (m_pOpen && m_pOpen == m_dlgEditPolygon.get()) {
        m_dlgEditPolygon->LWSelectString(m_stMousePos);
        DrawWorkArea();
    }
    return true;
}

// ---- Drag -----------------------------------------------------------------------------------------------------------

// What is dragged is looked for where the finger was before: it has left that place by now, however fast it is.
void CDlgShapes::OnMouseMove()
{
    const CMyView& view = *m_pUi->View_WorkArea;
    const stFloatPoint at = m_Map.ToMM(view.ImageAt(view.m_MousePos));
    if (m_pOpen && m_bHeld && view.m_bLeftButtonDown) {
        if (m_pOpen == m_dlgEditPolygon.get()) DragVertex(at);
        if (m_pOpen == m_dlgEllipse.get()) DragEllipse(at);
    }
    m_stMousePos = at;
    ShowPicture();
}

void CDlgShapes::DragVertex(const stFloatPoint& at)
{
    stPolygon* pPolygon = PolygonAt(m_dlgEditPolygon->m_uIndex);
    if (!pPolygon || m_iVertex < 0 || static_cast<size_t>(m_iVertex) >= pPolygon->lstVertices.size()) return;
    stFloatPoint& vertex = pPolygon->lstVertices[static_cast<size_t>(m_iVertex)];
    if (!Holds(m_stMousePos, vertex)) return;
    vertex.x = at.x;
    vertex.y = at.y;
    m_dlgEditPolygon->UpdatePolyVertices();
}

void CDlgShapes::DragEllipse(const stFloatPoint& at)
{
    stEllipse* pEllipse = EllipseAt(m_dlgEllipse->m_uIndex);
    if (!pEllipse) return;
    const QRectF axes(pEllipse->stCenter.x - pEllipse->fMajorAxisDia / 2.0,
                      pEllipse->stCenter.y - pEllipse->fMinorAxisDia / 2.0, pEllipse->fMajorAxisDia,
                      pEllipse->fMinorAxisDia);
    if (!axes.contains(QPointF(m_stMousePos.x, m_stMousePos.y))) return;
    pEllipse->stCenter.x = at.x;
    pEllipse->stCenter.y = at.y;
    m_dlgEllipse->UpdateEllipseParams();
}
