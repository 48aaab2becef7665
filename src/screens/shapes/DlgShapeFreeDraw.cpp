#include "screens/shapes/DlgShapeFreeDraw.h"

#include "config/AppConfig.h"
#include "screens/host/PressedBtn.h"
#include "screens/shapes/DlgShapes.h"
#include "shapes/Pocket.h"
#include "shapes/PolygonEdit.h"
#include "ui_DlgShapeFreeDraw.h"
#include "widgets/ButtonStyle.h"

#include <utility>

static constexpr double DEEPEST = -10000.0;
static const QString POCKET_LEFT = QStringLiteral("background-color: rgb(200, 200, 200);");

CDlgShapeFreeDraw::CDlgShapeFreeDraw(CDlgShapes& screen)
    : CDlgShapeSource(screen), m_pUi(std::make_unique<Ui::CDlgShapeFreeDraw>())
{
    m_pUi->setupUi(this);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
}

CDlgShapeFreeDraw::~CDlgShapeFreeDraw() = default;

void CDlgShapeFreeDraw::ConfigSettings()
{
    if (Screen().HasBackground()) m_pUi->Btn_LoadRefGuideImg->setStyleSheet(BTN_BKGND_GREEN);
    if (const stPolygon* pPolygon = Screen().LastPolygon()) m_pUi->Lbl_Name->setText(pPolygon->strShapeName);
}

size_t CDlgShapeFreeDraw::OwnCount() const
{
    const size_t uCount = Screen().m_stCuttingInfo.lstShapes.size();
    return uCount > Screen().m_uShapeCountBefore ? uCount - Screen().m_uShapeCountBefore : 0;
}

void CDlgShapeFreeDraw::on_Btn_ClosePoly_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_ClosePoly, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    if (stPolygon* pPolygon = Screen().LastPolygon()) CloseShape(pPolygon->lstVertices);
    Screen().DrawWorkArea();
}

void CDlgShapeFreeDraw::on_Btn_RemovePt_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_RemovePt);
    Screen().RemoveLastPoint();
    Screen().DrawWorkArea();
}

void CDlgShapeFreeDraw::on_Btn_PolyDepth_clicked()
{
    const size_t uFirst = Screen().m_uShapeCountBefore;
    const stPolygon* pPolygon = Screen().PolygonAt(uFirst);
    if (!pPolygon) return;
    const auto fNew = AskNumber(Host(), m_pUi->Btn_PolyDepth,
                                {.strTitle = QStringLiteral("Shape Depth(mm)"),
                                 .strCaption = QStringLiteral("Depth"),
                                 .fRange = DepthRange(DEEPEST),
                                 .bSign = true},
                                pPolygon->fDepth);
    if (!fNew) return;
    // Looked up anew: the screen may have gone under the keypad, and the empty shape with it.
    if (stPolygon* pNow = Screen().PolygonAt(uFirst)) pNow->fDepth = *fNew;
    if (m_Outline.pPolygon) m_Outline.pPolygon->fDepth = *fNew;   // which comes back without its pocket
}

void CDlgShapeFreeDraw::on_Btn_LoadRefGuideImg_clicked()
{
    Screen().ToggleBackground(m_pUi->Btn_LoadRefGuideImg);
}

void CDlgShapeFreeDraw::ApplyToolOffset(const QString& strSide)
{
    stPolygon* pPolygon = Screen().LastPolygon();
    if (!pPolygon) return;
    CloseShape(pPolygon->lstVertices);
    stEngShape shape = stEngShape::NewPolygon();
    shape.pPolygon->lstVertices = ::ApplyToolOffset(pPolygon->lstVertices, strSide, AppConfig::m_fEndMillDia);
    Screen().m_stCuttingInfo.lstShapes.push_back(shape);
}

// ---- Pocket ---------------------------------------------------------------------------------------------------------

void CDlgShapeFreeDraw::on_Btn_CutHole_clicked()
{
    if (m_bPocket)
        DropPocket();
    else if (const stPolygon* pOutline = Screen().LastPolygon(); !pOutline || pOutline->lstVertices.empty())
        return;
    else if (pOutline->lstVertices.size() > 2)
        MakePocket();
    Screen().DrawWorkArea();
}

void CDlgShapeFreeDraw::DropPocket()
{
    m_bPocket = false;
    m_pUi->Btn_CutHole->setStyleSheet(BTN_BKGND_GRAY);
    if (!m_Outline.pPolygon) return;
    Screen().EraseShapesFrom(Screen().m_uShapeCountBefore);
    Screen().m_stCuttingInfo.lstShapes.push_back(std::exchange(m_Outline, {}));
}

void CDlgShapeFreeDraw::MakePocket()
{
    m_pUi->Btn_CutHole->setStyleSheet(BTN_BKGND_GREEN);
    m_pUi->Btn_CutHole->repaint();   // a large outline takes its time
    stPolygon& outline = *Screen().LastPolygon();
    CloseShape(outline.lstVertices);
    const std::vector<ShapePath> lstRings =
        MakePocketRings(outline.lstVertices, Screen().Scale(), AppConfig::m_fEndMillDia);
    if (lstRings.empty()) {
        Host().AddLogMsg(QStringLiteral("Shape too small for a pocket with this End-Mill"), MSG_NOTICE);
        m_pUi->Btn_CutHole->setStyleSheet(BTN_BKGND_GRAY);
        return;
    }
    m_bPocket = true;
    auto& lstShapes = Screen().m_stCuttingInfo.lstShapes;
    m_Outline = lstShapes.back();
    Screen().EraseShapesFrom(Screen().m_uShapeCountBefore);   // the rings are cut in the outline's place
    for (const ShapePath& path : lstRings) {
        stEngShape ring = stEngShape::NewPolygon();
        ring.pPolygon->strShapeName = QStringLiteral("Shape");
        ring.pPolygon->fDepth = m_Outline.pPolygon->fDepth;   // as the button shows it
        ring.pPolygon->bHole = true;
        ring.pPolygon->lstVertices = path;
        lstShapes.push_back(ring);
    }
}

// ---- End ------------------------------------------------------------------------------------------------------------

void CDlgShapeFreeDraw::Keep()
{
    auto& lstShapes = Screen().m_stCuttingInfo.lstShapes;
    const size_t uFirst = Screen().m_uShapeCountBefore;
    if (OwnCount() == 1 && lstShapes[uFirst].Path().empty()) Screen().EraseShapesFrom(uFirst);
    if (OwnCount() > 1) {
        const stShapesCommonInfo first = lstShapes[uFirst].Common();
        for (size_t n = uFirst; n < lstShapes.size(); ++n) {
            lstShapes[n].Common().strShapeName = first.strShapeName + QStringLiteral("_%1").arg(n - uFirst + 1);
            lstShapes[n].Common().fDepth = first.fDepth;
        }
    }
    m_pUi->Btn_CutHole->setStyleSheet(POCKET_LEFT);
    Finish();
}

void CDlgShapeFreeDraw::on_Btn_Save_clicked()
{
    Keep();
}

void CDlgShapeFreeDraw::on_Btn_Cancel_clicked()
{
    Screen().EraseShapesFrom(Screen().m_uShapeCountBefore);
    m_pUi->Btn_CutHole->setStyleSheet(POCKET_LEFT);
    Finish();
}
