#pragma once
#include "screens/shapes/DlgShapeSource.h"

#include <QModelIndex>

namespace Ui {
class CDlgEditPolygon;
}

// Edits one polygon of the job: its vertices, place, turn and scale. Every change is on the record and the drawing at
// once; Cancel brings back what was there. Interface thread.
class CDlgEditPolygon : public CDlgShapeSource
{
    Q_OBJECT

public:
    CDlgEditPolygon(CShapeHost& screen, QWidget* pParent);
    ~CDlgEditPolygon() override;

    void ConfigSettings();
    void UpdatePolyVertices();                        // the list, from the record
    void LWSelectString(const stFloatPoint& point);   // the vertex at a place of the drawing
    void ChangeShapeOrientation(double fAngle);       // radians, clockwise, about the middle
    void SetShapeScale(double fFactor);               // about the first vertex
    void Keep() override;
    void OnPress(const stFloatPoint& at, Qt::MouseButton eButton) override;   // selects a vertex
    void OnDrag(const stFloatPoint& from, const stFloatPoint& to) override;   // moves it
    stMarks Marks() const override { return {.bRow = true, .iVertex = m_iVertex}; }

    size_t m_uIndex = 0;   // of the polygon; set before ConfigSettings

private slots:
    void on_Btn_MovePtUp_clicked();
    void on_Btn_MovePtDown_clicked();
    void on_Btn_DeletePt_clicked();
    void on_Btn_InsertPt_clicked();
    void on_LW_PolygonVertices_doubleClicked(const QModelIndex& index);
    void on_LW_PolygonVertices_clicked(const QModelIndex& index);
    void on_Btn_ClosePoly_clicked();
    void on_Btn_BkGndImg_clicked();
    void on_Btn_ShapeOffsetX_clicked();
    void on_Btn_ShapeOffsetY_clicked();
    void on_Btn_ShapeOrientation_clicked();
    void on_Btn_ShapeScale_clicked();
    void on_Btn_Ok_clicked();
    void on_Btn_Cancel_clicked();

private:
    stPolygon* Polygon() const;
    int CurrentVertex() const;   // of the selected row, if the polygon has it; -1: none
    void SelectRow(int iRow);
    void SwapVertices(int iRow, int iOther);
    void AfterChange();   // of the vertices
    std::optional<double> AskTotal(QPushButton* pButton, const QString& strName, double fLow, double fHigh);

    stPolygon m_Before;
    int m_iVertex = -1;                          // the selected one
    double m_fOffsetX = 0.0, m_fOffsetY = 0.0;   // applied since the opening
    double m_fOrientation = 0.0;                 // radians
    double m_fScale = 1.0;
    std::unique_ptr<Ui::CDlgEditPolygon> m_pUi;
};
