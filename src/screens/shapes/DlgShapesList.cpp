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

// ---- Rows -----------------------------------------------------------------------------------------------------------

int CDlgShapes::CurrentRow() const
{
    const int iRow = m_pUi->Lw_Shapes->currentRow();
    return iRow >= 0 && static_cast<size_t>(iRow) < Count() ? iRow : -1;
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
    Erase(static_cast<size_t>(iRow));
    ShowDepth();   // of the row that has moved up
    DrawWorkArea();
}

void CDlgShapes::on_Btn_DelAllShapes_clicked()
{
    if (QMessageBox::warning(this, QStringLiteral("Warning"), QStringLiteral("Do you want to delete all Shapes"),
                             QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
        return;
    EraseAll();
    m_pUi->Lw_Shapes->clear();
    DrawWorkArea();
}

void CDlgShapes::SwapRows(int iRow, int iOther)
{
    QListWidget& list = *m_pUi->Lw_Shapes;
    Swap(static_cast<size_t>(iRow), static_cast<size_t>(iOther));
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
    if (iRow >= 0 && iRow + 1 < m_pUi->Lw_Shapes->count()) SwapRows(iRow, iRow + 1);
}

void CDlgShapes::on_Btn_MoveShapeDown_clicked()
{
    if (const int iRow = CurrentRow(); iRow > 0) SwapRows(iRow, iRow - 1);
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
    QStringList names;
    for (const stEngShape& shape : Added()) names.append(shape.Common().strShapeName);
    m_pUi->Lw_Shapes->addItems(names);
    if (!names.isEmpty()) SelectRow(m_pUi->Lw_Shapes->count() - 1);
}

void CDlgShapes::on_Lw_Shapes_itemDoubleClicked(QListWidgetItem*)
{
    const int iRow = CurrentRow();
    if (iRow < 0 || m_pOpen || Host().Machine().m_eOperation != OP_NONE) return;
    BeginAdding();
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
        Erase(uIndex);
        delete m_pUi->Lw_Shapes->takeItem(static_cast<int>(uIndex));
    } else if (pPolygon) {
        m_pUi->Lw_Shapes->item(static_cast<int>(uIndex))->setText(pPolygon->strShapeName);
    }
    ShowDepth();
    DrawWorkArea();
}

void CDlgShapes::on_Btn_AddEllipse_clicked()
{
    BeginAdding();
    AddEllipse(QStringLiteral("Ellipse_%1").arg(Count() + 1));
    m_dlgEllipse->m_uIndex = FirstAdded();
    m_dlgEllipse->ConfigSettings();
    if (RunDialog(*m_dlgEllipse)) AdoptNewShapes();
}

void CDlgShapes::on_Btn_DrawContour_clicked()
{
    BeginAdding();
    AddPolygon(QStringLiteral("Shape_%1").arg(Count() + 1));
    m_bDrawing = true;
    const QPointer<CDlgShapeFreeDraw> pDialog(new CDlgShapeFreeDraw(*this, this));   // the screen's, should it go first
    pDialog->ConfigSettings();
    if (!RunDialog(*pDialog)) return;
    delete pDialog.data();
    AdoptNewShapes();
}

void CDlgShapes::on_Btn_ShapeFromTxt_clicked()
{
    Host().GrabKeyboard(false);   // letters go to the text, not to the axes
    BeginAdding();
    const QPointer<CDlgShapeFromTxt> pDialog(new CDlgShapeFromTxt(*this, this));
    pDialog->ConfigSettings();
    if (!RunDialog(*pDialog)) return;
    delete pDialog.data();
    Host().GrabKeyboard(true);
    AdoptNewShapes();
}

void CDlgShapes::on_Btn_ShapeFromImg_clicked()
{
    BeginAdding();
    m_dlgShapeFromImg->ConfigSettings();
    if (RunDialog(*m_dlgShapeFromImg)) AdoptNewShapes();
}
