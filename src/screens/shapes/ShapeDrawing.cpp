#include "screens/shapes/ShapeDrawing.h"

#include "screens/shapes/DlgShapeSource.h"
#include "widgets/MyView.h"

#include <utility>

CShapeDrawing::CShapeDrawing(CMyView& view, QImage& image, const CShapeJob& job)
    : m_View(view), m_Image(image), m_Job(job), m_Map(QSize(1, 1), {})
{
}

void CShapeDrawing::FollowWorkArea()
{
    m_Map = CWorkAreaMap(m_Image.size(), m_Job.Info().stWorkArea);
    m_Picture.Forget();
}

void CShapeDrawing::Open(CDlgShapeSource& dialog, size_t uEdited)
{
    m_pDialog = &dialog;
    m_uEdited = uEdited;
    m_Picture.Forget();   // without what is edited
}

void CShapeDrawing::Close()
{
    m_pDialog = nullptr;
    SetBackground(nullptr);
}

void CShapeDrawing::SetBackground(std::unique_ptr<QImage> pImage)
{
    m_pBackground = std::move(pImage);
    m_Picture.Forget();
}

// ---- Picture --------------------------------------------------------------------------------------------------------

void CShapeDrawing::Draw(int iRow)
{
    // What an open dialog changes is not on the picture that stands.
    if (!m_pDialog) m_Picture.Forget();
    Show(iRow);
}

void CShapeDrawing::Show(int iRow)
{
    const stShapeCuttingInfo& info = m_Job.Info();
    stWorkAreaScene scene{.lstShapes = info.lstShapes, .stWorkArea = info.stWorkArea, .map = m_Map};
    scene.pBackground = m_pBackground.get();
    scene.bMarks = m_bMarks;
    scene.iShape = iRow;
    if (m_pDialog) {
        const CDlgShapeSource::stMarks marks = m_pDialog->Marks();
        scene.uEdited = m_uEdited;
        scene.uNew = m_Job.FirstAdded();
        if (!marks.bRow) scene.iShape = -1;
        scene.iVertex = marks.iVertex;
        scene.bLastPoint = marks.bLastPoint;
    }
    m_Picture.Draw(m_Image, scene);
    m_View.DisplayImage(&m_Image);
}

// ---- Finger ---------------------------------------------------------------------------------------------------------

// The position is that of the press: a finger does not hover before it.
bool CShapeDrawing::Press(QPointF view, Qt::MouseButton eButton)
{
    m_bHeld = false;
    if (!m_View.IsOverImage(view)) return false;
    m_stMousePos = m_Map.ToMM(m_View.ImageAt(view));
    if (m_stMousePos.x < 0.0 || m_stMousePos.y < 0.0) return false;
    m_bHeld = true;
    if (m_pDialog) m_pDialog->OnPress(m_stMousePos, eButton);
    return true;
}

// What is dragged is looked for where the finger was before: it has left that place by now, however fast it is.
void CShapeDrawing::Move()
{
    const stFloatPoint at = m_Map.ToMM(m_View.ImageAt(m_View.m_MousePos));
    if (m_pDialog && m_bHeld && m_View.m_bLeftButtonDown) m_pDialog->OnDrag(m_stMousePos, at);
    m_stMousePos = at;
}
