#include "control/AppControl.h"
#include "screens/shapes/DlgEditPolygon.h"
#include "screens/shapes/DlgEllipse.h"
#include "screens/shapes/DlgShapeFreeDraw.h"
#include "screens/shapes/DlgShapeFromImg.h"
#include "screens/shapes/DlgShapeFromTxt.h"
#include "screens/shapes/DlgShapes.h"
#include "ui_DlgShapes.h"

#include <QMessageBox>
#include <QPointer>

#include <utility>

// ---- Rows -----------------------------------------------------------------------------------------------------------

int CDlgShapes::CurrentRow() const
{
    const int iRow = m_pUi->Lw_Shapes->currentRow();
    return iRow >= 0 && static_cast<size_t>(iRow) < m_stCuttingInfo.lstShapes.size() ? iRow : -1;
}

void CDlgShapes::SelectRow(int iRow)
{
    m_pUi->Lw_Shapes->setCurrentRow(iRow);
    ShowDepth();
}

void CDlgShapes::ShowDepth()
{
    if (const int iRow = CurrentRow(); iRow >= 0)
        ShowNumber(m_pUi->Btn_ShapeDepth, {.strCaption = QStringLiteral("Depth")},
                   m_stCuttingInfo.lstShapes[static_cast<size_t>(iRow)].Common().fDepth);
}

void CDlgShapes::on_Lw_Shapes_itemClicked(QListWidgetItem*)
{
    ShowDepth();
    ShowPicture();
}

void CDlgShapes::on_Btn_DelShape_clicked()
{
    const int iRow = CurrentRow();
    if (iRow < 0) return;
    delete m_pUi->Lw_Shapes->takeItem(iRow);
    m_stCuttingInfo.lstShapes.erase(m_stCuttingInfo.lstShapes.begin() + iRow);
    ShowDepth();   // of the row that has moved up
    DrawWorkArea();
}

void CDlgShapes::on_Btn_DelAllShapes_clicked()
{
    if (QMessageBox::warning(this, QStringLiteral("Warning"), QStringLiteral("Do you want to delete all Shapes"),
                             QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
        return;
    m_stCuttingInfo.lstShapes.clear();
    m_pUi->Lw_Shapes->clear();
    DrawWorkArea();
}

void CDlgShapes::Swap(int iRow, int iOther)
{
    QListWidget& list = *m_pUi->Lw_Shapes;
    std::swap(m_stCuttingInfo.lstShapes[static_cast<size_t>(iRow)],
              m_stCuttingInfo.lstShapes[static_cast<size_t>(iOther)]);
    const QString strText = list.item(iRow)->text();
    list.item(iRow)->setText(list.item(iOther)->text());
    list.item(iOther)->setText(strText);
    list.setCurrentRow(iOther);
    DrawWorkArea();
}

// Up is towards the end of the list: wanted, the shape is cut later.
void CDlgShapes::on_Btn_MoveShapeUp_clicked()
{
    const int iRow = CurrentRow();
    if (iRow >= 0 && iRow + 1 < m_pUi->Lw_Shapes->count()) Swap(iRow, iRow + 1);
}

void CDlgShapes::on_Btn_MoveShapeDown_clicked()
{
    if (const int iRow = CurrentRow(); iRow > 0) Swap(iRow, iRow - 1);
}

// ---- Dialogs --------------------------------------------------------------------------------------------------------

bool CDlgShapes::RunDialog(CDlgShapeSource& dialog, size_t uEdited)
{
    const QPointer<CDlgShapes> alive(this);
    m_pOpen = &dialog;
    m_uEdited = uEdited;
    m_strToldOnce.clear();
    m_Picture.Forget();   // without what is edited
    ShowPicture();
    Host().EnableScreenSelectors(false);
    dialog.Run();
    if (!alive) return false;
    m_pOpen = nullptr;
    m_bDrawing = false;
    Host().EnableScreenSelectors(true);
    DropBackground();
    return true;
}

void CDlgShapes::DropBackground()
{
    m_pBackground.reset();
    m_Picture.Forget();
}

void CDlgShapes::AdoptNewShapes()
{
    ListNewShapes();
    DrawWorkArea();
}

void CDlgShapes::ListNewShapes()
{
    const auto& lstShapes = m_stCuttingInfo.lstShapes;
    QStringList names;
    for (size_t n = m_uShapeCountBefore; n < lstShapes.size(); ++n) names.append(lstShapes[n].Common().strShapeName);
    m_pUi->Lw_Shapes->addItems(names);
    if (!names.isEmpty()) SelectRow(m_pUi->Lw_Shapes->count() - 1);
}

void CDlgShapes::on_Lw_Shapes_itemDoubleClicked(QListWidgetItem*)
{
    const int iRow = CurrentRow();
    if (iRow < 0 || m_pOpen || Host().Machine().m_eOperation != OP_NONE) return;
    m_uShapeCountBefore = m_stCuttingInfo.lstShapes.size();
    if (EllipseAt(static_cast<size_t>(iRow)))
        EditEllipse(static_cast<size_t>(iRow));
    else
        EditPolygon(static_cast<size_t>(iRow));
}

void CDlgShapes::EditEllipse(size_t uIndex)
{
    const stEllipse before = *EllipseAt(uIndex);
    m_dlgEllipse->m_uIndex = uIndex;
    m_dlgEllipse->ConfigSettings();
    if (!RunDialog(*m_dlgEllipse, uIndex)) return;
    if (stEllipse* pEllipse = EllipseAt(uIndex); pEllipse && !m_dlgEllipse->m_bAccepted) {
        *pEllipse = before;
        CreateEllipsePoints(static_cast<quint32>(uIndex));
    }
    ShowDepth();
    AdoptNewShapes();   // the rings of a pocket
}

void CDlgShapes::EditPolygon(size_t uIndex)
{
    m_dlgEditPolygon->m_uIndex = uIndex;
    m_dlgEditPolygon->ConfigSettings();
    if (!RunDialog(*m_dlgEditPolygon, uIndex)) return;
    if (const stPolygon* pPolygon = PolygonAt(uIndex); pPolygon && pPolygon->lstVertices.empty()) {
        m_stCuttingInfo.lstShapes.erase(m_stCuttingInfo.lstShapes.begin() + static_cast<std::ptrdiff_t>(uIndex));
        delete m_pUi->Lw_Shapes->takeItem(static_cast<int>(uIndex));
    } else if (pPolygon) {
        m_pUi->Lw_Shapes->item(static_cast<int>(uIndex))->setText(pPolygon->strShapeName);
    }
    ShowDepth();
    DrawWorkArea();
}

void CDlgShapes::on_Btn_AddEllipse_clicked()
{
    auto& lstShapes = m_stCuttingInfo.lstShapes;
    m_uShapeCountBefore = lstShapes.size();
    lstShapes.push_back(stEngShape::NewEllipse());
    lstShapes.back().Common().strShapeName = QStringLiteral("Ellipse_%1").arg(lstShapes.size());
    m_dlgEllipse->m_uIndex = m_uShapeCountBefore;
    m_dlgEllipse->ConfigSettings();
    if (RunDialog(*m_dlgEllipse)) AdoptNewShapes();
}

void CDlgShapes::on_Btn_DrawContour_clicked()
{
    auto& lstShapes = m_stCuttingInfo.lstShapes;
    m_uShapeCountBefore = lstShapes.size();
    lstShapes.push_back(stEngShape::NewPolygon());
    lstShapes.back().Common().strShapeName = QStringLiteral("Shape_%1").arg(lstShapes.size());
    m_bDrawing = true;
    const QPointer<CDlgShapeFreeDraw> pDialog(new CDlgShapeFreeDraw(*this));   // the screen's, should it go first
    pDialog->ConfigSettings();
    if (!RunDialog(*pDialog)) return;
    delete pDialog.data();
    AdoptNewShapes();
}

void CDlgShapes::on_Btn_ShapeFromTxt_clicked()
{
    Host().GrabKeyboard(false);   // letters go to the text, not to the axes
    m_uShapeCountBefore = m_stCuttingInfo.lstShapes.size();
    const QPointer<CDlgShapeFromTxt> pDialog(new CDlgShapeFromTxt(*this));
    pDialog->ConfigSettings();
    if (!RunDialog(*pDialog)) return;
    delete pDialog.data();
    Host().GrabKeyboard(true);
    AdoptNewShapes();
}

void CDlgShapes::on_Btn_ShapeFromImg_clicked()
{
    m_uShapeCountBefore = m_stCuttingInfo.lstShapes.size();
    m_dlgShapeFromImg->ConfigSettings();
    if (RunDialog(*m_dlgShapeFromImg)) AdoptNewShapes();
}
