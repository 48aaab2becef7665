#include "screens/shapes/DlgShapeFreeDraw.h"

#include "config/AppConfig.h"
#include "screens/host/PressedBtn.h"
#include "shapes/PolygonEdit.h"
#include "ui_DlgShapeFreeDraw.h"
#include "widgets/ButtonStyle.h"

static constexpr double DEEPEST = -10000.0;
static const QString POCKET_LEFT = QStringLiteral("background-color: rgb(200, 200, 200);");

CDlgShapeFreeDraw::CDlgShapeFreeDraw(CShapeHost& screen, QWidget* pParent)
    : CDlgShapeSource(screen, pParent), m_pUi(std::make_unique<Ui::CDlgShapeFreeDraw>())
{
    m_pUi->setupUi(this);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
}

CDlgShapeFreeDraw::~CDlgShapeFreeDraw() = default;

void CDlgShapeFreeDraw::ConfigSettings()
{
    if (Screen().HasBackground()) m_pUi->Btn_LoadRefGuideImg->setStyleSheet(BTN_BKGND_GREEN);
    if (const stPolygon* pPolygon = Job().LastPolygon()) m_pUi->Lbl_Name->setText(pPolygon->strShapeName);
}

void CDlgShapeFreeDraw::OnPress(const stFloatPoint& at, Qt::MouseButton eButton)
{
    stPolygon* pPolygon = Job().LastPolygon();
    if (pPolygon && pPolygon->bHole)
        Host().AddLogMsg(QStringLiteral("Switch Pocket off to change the shape"), MSG_NOTICE);
    else if (pPolygon && eButton == Qt::LeftButton)
        pPolygon->lstVertices.push_back(at);
    else if (eButton == Qt::RightButton)
        Job().RemoveLastPoint();
    Screen().DrawWorkArea();
}

void CDlgShapeFreeDraw::on_Btn_ClosePoly_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_ClosePoly, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    if (stPolygon* pPolygon = Job().LastPolygon()) CloseShape(pPolygon->lstVertices);
    Screen().DrawWorkArea();
}

void CDlgShapeFreeDraw::on_Btn_RemovePt_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_RemovePt);
    Job().RemoveLastPoint();
    Screen().DrawWorkArea();
}

void CDlgShapeFreeDraw::on_Btn_PolyDepth_clicked()
{
    const stPolygon* pPolygon = Job().PolygonAt(Job().FirstAdded());
    if (!pPolygon) return;
    const auto fNew = AskNumber(Host(), m_pUi->Btn_PolyDepth,
                                {.strTitle = QStringLiteral("Shape Depth(mm)"),
                                 .strCaption = QStringLiteral("Depth"),
                                 .fRange = DepthRange(DEEPEST),
                                 .bSign = true},
                                pPolygon->fDepth);
    // Looked up anew: the screen may have gone under the keypad, and the empty shape with it.
    if (fNew) Job().SetFirstAddedDepth(*fNew);
}

void CDlgShapeFreeDraw::on_Btn_LoadRefGuideImg_clicked()
{
    Screen().ToggleBackground(m_pUi->Btn_LoadRefGuideImg);
}

void CDlgShapeFreeDraw::ApplyToolOffset(const QString& strSide)
{
    stPolygon* pPolygon = Job().LastPolygon();
    if (!pPolygon) return;
    CloseShape(pPolygon->lstVertices);
    Job().AddPolygon({}, ::ApplyToolOffset(pPolygon->lstVertices, strSide, AppConfig::m_fEndMillDia));
}

// ---- Pocket ---------------------------------------------------------------------------------------------------------

void CDlgShapeFreeDraw::on_Btn_CutHole_clicked()
{
    if (Job().HasPocket())
        DropPocket();
    else if (const stPolygon* pOutline = Job().LastPolygon(); !pOutline || pOutline->lstVertices.empty())
        return;
    else if (pOutline->lstVertices.size() > 2)
        MakePocket();
    Screen().DrawWorkArea();
}

void CDlgShapeFreeDraw::DropPocket()
{
    m_pUi->Btn_CutHole->setStyleSheet(BTN_BKGND_GRAY);
    Job().DropPocket();
}

void CDlgShapeFreeDraw::MakePocket()
{
    m_pUi->Btn_CutHole->setStyleSheet(BTN_BKGND_GREEN);
    m_pUi->Btn_CutHole->repaint();   // a large outline takes its time
    if (Job().MakePocket(Screen().Scale(), AppConfig::m_fEndMillDia)) return;
    Host().AddLogMsg(QStringLiteral("Shape too small for a pocket with this End-Mill"), MSG_NOTICE);
    m_pUi->Btn_CutHole->setStyleSheet(BTN_BKGND_GRAY);
}

// ---- End ------------------------------------------------------------------------------------------------------------

void CDlgShapeFreeDraw::Keep()
{
    const auto shapes = Job().Added();
    if (shapes.size() > 1)
        Job().NumberAdded(shapes[0].Common());
    else if (shapes.size() == 1 && shapes[0].Path().empty())
        Job().EraseAdded();
    m_pUi->Btn_CutHole->setStyleSheet(POCKET_LEFT);
    Finish();
}

void CDlgShapeFreeDraw::on_Btn_Save_clicked()
{
    Keep();
}

void CDlgShapeFreeDraw::on_Btn_Cancel_clicked()
{
    Job().EraseAdded();
    m_pUi->Btn_CutHole->setStyleSheet(POCKET_LEFT);
    Finish();
}
