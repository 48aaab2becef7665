#include "screens/shapes/DlgEditPolygonVertex.h"

#include "screens/host/SettingsInput.h"
#include "screens/shapes/DlgShapeSource.h"
#include "ui_DlgEditPolygonVertex.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Look.h"

static constexpr double FARTHEST = 1000000.0;   // mm, as the largest work area

CDlgEditPolygonVertex::CDlgEditPolygonVertex(CScreenHost& host, QWidget* pParent)
    : QDialog(pParent), m_Host(host), m_pUi(std::make_unique<Ui::CDlgEditPolygonVertex>())
{
    m_pUi->setupUi(this);
    setStyleSheet(CLook::WINDOW_STYLE);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
}

CDlgEditPolygonVertex::~CDlgEditPolygonVertex() = default;

void CDlgEditPolygonVertex::ConfigSettings()
{
    ShowNumber(m_pUi->Btn_PolygonVertexX, {.strCaption = QStringLiteral("X")}, m_stVertex.x);
    ShowNumber(m_pUi->Btn_PolygonVertexY, {.strCaption = QStringLiteral("Y")}, m_stVertex.y);
}

void CDlgEditPolygonVertex::Ask(QPushButton* pButton, const QString& strName, double& fField)
{
    const auto fNew = AskNumber(m_Host, pButton,
                                {.strTitle = QStringLiteral("Vertex ") + strName + QStringLiteral("(mm)"),
                                 .strCaption = strName,
                                 .fRange = Range(-FARTHEST, FARTHEST),
                                 .bSign = true},
                                fField);
    if (fNew) fField = *fNew;
}

void CDlgEditPolygonVertex::on_Btn_PolygonVertexX_clicked()
{
    Ask(m_pUi->Btn_PolygonVertexX, QStringLiteral("X"), m_stVertex.x);
}

void CDlgEditPolygonVertex::on_Btn_PolygonVertexY_clicked()
{
    Ask(m_pUi->Btn_PolygonVertexY, QStringLiteral("Y"), m_stVertex.y);
}

void CDlgEditPolygonVertex::on_Btn_Ok_clicked()
{
    m_bAccepted = true;
    accept();
}

void CDlgEditPolygonVertex::on_Btn_Cancel_clicked()
{
    reject();
}
