#include "config/AppConfig.h"
#include "window/MainWindowUi.h"

static constexpr double SMALLEST_WORK = 1.0, LARGEST_WORK = 10000.0;   // mm
static constexpr int SIZE_DECIMALS = 2;                                // what the buttons have room for

void MainWindow::ClearToolGraphics()
{
    if (PostToInterface([this] { ClearToolGraphics(); })) return;
    m_Picture.Clear(m_AppControl.m_eOperation, AppConfig::m_GCodeRunSettings.iHomeRef);
    UpdateToolPathView();
}

void MainWindow::DrawToolPaths()
{
    stFloatPoint pos;
    for (const eAxis axis : {X_AXIS, Y_AXIS, Z_AXIS}) AxisOf(pos, axis) = m_AppControl.GetCurPos(axis);
    m_Picture.Draw(pos, m_AppControl.m_eOperation, AppConfig::m_GCodeRunSettings.iHomeRef);
    UpdateToolPathView();
}

void MainWindow::UpdateToolPathView()
{
    if (m_CncCamera.IsCamOpen()) return;   // the picture is drawn on all the same
    m_ToolPathView.DisplayImage(&m_Picture.Image());
}

void MainWindow::ShowWorkPieceSize(QPushButton* pButton, const QString& strLabel, double fSize)
{
    pButton->setText(QString::number(fSize, 'f', SIZE_DECIMALS) + QLatin1Char('\n') + strLabel);
}

double MainWindow::AskWorkPieceSize(QPushButton* pButton, const QString& strTitle, const QString& strLabel,
                                    double fSize)
{
    stFloatPoint range;
    range.x = SMALLEST_WORK;
    range.y = LARGEST_WORK;
    return OpenKeypad(pButton, strTitle, strLabel, QString::number(fSize, 'f', SIZE_DECIMALS), range, false,
                      SIZE_DECIMALS);
}

void MainWindow::on_Btn_SetWorkPieceLength_clicked()
{
    m_Picture.SetLength(AskWorkPieceSize(m_pUi->Btn_SetWorkPieceLength, QStringLiteral("Workpiece Length"),
                                         LENGTH_LABEL, m_Picture.Length()));
    ClearToolGraphics();
}

void MainWindow::on_Btn_SetWorkPieceWidth_clicked()
{
    m_Picture.SetWidth(AskWorkPieceSize(m_pUi->Btn_SetWorkPieceWidth, QStringLiteral("Workpiece Width"), WIDTH_LABEL,
                                        m_Picture.Width()));
    ClearToolGraphics();
}

void MainWindow::on_Btn_SetWorkPieceHeight_clicked()
{
    SetWorkPieceHeight(AskWorkPieceSize(m_pUi->Btn_SetWorkPieceHeight, QStringLiteral("Workpiece Height"), HEIGHT_LABEL,
                                        m_Picture.Height()));
    ClearToolGraphics();
}

void MainWindow::SetWorkPieceHeight(double fHeight)
{
    m_Picture.SetHeight(fHeight);
    ShowWorkPieceSize(m_pUi->Btn_SetWorkPieceHeight, HEIGHT_LABEL, fHeight);
    UpdateToolPathView();
}
