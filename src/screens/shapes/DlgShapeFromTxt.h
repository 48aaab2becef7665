#pragma once
#include "screens/shapes/DlgShapeSource.h"

namespace Ui {
class CDlgShapeFromTxt;
}

// Makes polygons of a text in any font of the system. They follow each keystroke: what changes the letters makes them
// anew, a move or a turn takes those that are there. Interface thread.
class CDlgShapeFromTxt : public CDlgShapeSource
{
    Q_OBJECT

public:
    CDlgShapeFromTxt(CShapeHost& screen, QWidget* pParent);
    ~CDlgShapeFromTxt() override;

    void ConfigSettings();
    void FindContours();
    void UpdateTextPos(const stFloatPoint& newPos);   // x, y mm; z is the turn in radians
    void ChangeShapeOrientation(double fAngle);       // radians, clockwise, about the text's middle
    void Keep() override;

private slots:
    void on_TextToCut_textChanged();
    void on_Cmb_FontSelection_currentFontChanged(const QFont& font);
    void on_Btn_TextBoldSel_clicked();
    void on_Btn_TextItalicSel_clicked();
    void on_Btn_TextSize_clicked();
    void on_Btn_TextPos_X_clicked();
    void on_Btn_TextPos_Y_clicked();
    void on_Btn_TextDepth_clicked();
    void on_Btn_Orientation_clicked();
    void on_Btn_LineSpacing_clicked();
    void on_Btn_PosX_Inc_clicked();
    void on_Btn_PosX_Dec_clicked();
    void on_Btn_PosY_Inc_clicked();
    void on_Btn_PosY_Dec_clicked();
    void on_Btn_Orientation_CW_clicked();
    void on_Btn_Orientation_CCW_clicked();
    void on_Btn_Ok_clicked();
    void on_Btn_Cancel_clicked();

private:
    stFloatPoint FarthestPos() const;   // mm; where a text may begin
    void AskPos(QPushButton* pButton, const QString& strName, double stFloatPoint::*pAxis);
    void Step(QPushButton* pStep, QPushButton* pShown, const QString& strName, double stFloatPoint::*pAxis,
              double fStep);
    void StepTurn(QPushButton* pStep, double fStep);

    float m_fTextSize = 60.0f;     // points, and the pitch of the lines in pixels
    float m_fLineSpacing = 0.0f;   // pixels
    bool m_bBold = false, m_bItalic = false;
    stFloatPoint m_stTextPos;
    float m_fTextDepth = -10.0f;
    stFloatPoint m_stTextCentre;
    std::unique_ptr<Ui::CDlgShapeFromTxt> m_pUi;
};
