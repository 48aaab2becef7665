#include "common/Paths.h"
#include "config/AppConfig.h"
#include "control/AppControl.h"
#include "screens/host/PressedBtn.h"
#include "screens/shapes/DlgShapeSource.h"
#include "screens/shapes/DlgShapes.h"
#include "shapes/WorkAreaFile.h"
#include "ui_DlgShapes.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Questions.h"

#include <QFile>
#include <QFileDialog>
#include <QSignalBlocker>

static const QString FILE_FILTER = QStringLiteral("xml Files(*.xml)");
static const QString GCODE_FILTER = QStringLiteral("text files(*.txt);;G-Code files(*.ncc)");

// ---- Work area ------------------------------------------------------------------------------------------------------

QString CDlgShapes::AskSaveName()
{
    const QString strTyped =
        QFileDialog::getSaveFileName(this, QStringLiteral("Select file tosave..."), CPaths::Map(HOME_FOLDER),
                                     FILE_FILTER, nullptr, QFileDialog::DontUseNativeDialog);
    if (strTyped.isEmpty()) return {};
    const QString strPath = WorkAreaFileName(strTyped);
    return MayReplace(this, strTyped, strPath) ? strPath : QString();
}

void CDlgShapes::on_Btn_SaveWorkArea_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_SaveWorkArea, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    if (Count() == 0) return LogError(QStringLiteral("No shapes added"));
    const QString strPath = AskSaveName();
    if (strPath.isEmpty()) return;
    if (SaveWorkArea(strPath, m_stCuttingInfo))
        Host().AddLogMsg(QStringLiteral("Work area saved to\n") + strPath, MSG_INFO);
    else
        LogError(QStringLiteral("Unable to Create the file"));
}

void CDlgShapes::on_Btn_LoadWorkArea_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_LoadWorkArea, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    BeginAdding();
    const QString strPath = QFileDialog::getOpenFileName(this, QStringLiteral("Select file to open..."),
                                                         CPaths::Map(AppConfig::m_strLastFolderPath), FILE_FILTER,
                                                         nullptr, QFileDialog::DontUseNativeDialog);
    if (strPath.isEmpty()) return;
    AppConfig::m_strLastFolderPath = strPath.left(strPath.lastIndexOf(QLatin1Char('/')) + 1);
    QStringList lstNotices;
    if (!LoadWorkArea(strPath, m_stCuttingInfo, lstNotices)) return LogError(QStringLiteral("Unable to load the file"));
    LogAll(lstNotices);
    if (m_stCuttingInfo.stWorkArea.x > 0.0 && m_stCuttingInfo.stWorkArea.y > 0.0) ShowSize();
    Host().AddLogMsg(QStringLiteral("Shapes loaded: %1").arg(Added().size()), MSG_INFO);
    ListNewShapes();
    UpdateWorkArea();
}

// ---- G-Code ---------------------------------------------------------------------------------------------------------

QString CDlgShapes::AskGCodeName()
{
    const QString strTyped =
        QFileDialog::getSaveFileName(this, QStringLiteral("Select a file to Save..."), CPaths::Map(HOME_FOLDER),
                                     GCODE_FILTER, nullptr, QFileDialog::DontUseNativeDialog);
    if (strTyped.isEmpty()) return {};
    const bool bEnding = strTyped.endsWith(QLatin1String(".txt")) || strTyped.endsWith(QLatin1String(".ncc"));
    const QString strPath = bEnding ? strTyped : strTyped + QStringLiteral(".txt");
    return MayReplace(this, strTyped, strPath) ? strPath : QString();
}

void CDlgShapes::on_Btn_GenerateGCode_clicked()
{
    if (Count() == 0) return LogError(QStringLiteral("No Shapes Added"));
    const CPressedBtn press(Host(), m_pUi->Btn_GenerateGCode, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    const QString strPath = AskGCodeName();
    if (strPath.isEmpty()) return;
    // What is logged below says the same of a file that can't be written.
    if (!QFile(strPath).open(QIODevice::Append)) LogError(QStringLiteral("Unable to Create the file\n") + strPath);
    AppControl& machine = Host().Machine();
    machine.m_pShapeCuttingInfo = &m_stCuttingInfo;
    machine.CreateGCodeFromShapes(strPath);
    Host().AddLogMsg(QStringLiteral("G-Code File Generated"), MSG_INFO);   // wanted: whatever came of it
}

// ---- Background -----------------------------------------------------------------------------------------------------

void CDlgShapes::ToggleBackground(QPushButton* pButton)
{
    if (m_pBackground) {
        pButton->setStyleSheet(BTN_BKGND_GRAY);
        DropBackground();
        return ShowPicture();
    }
    pButton->setStyleSheet(BTN_BKGND_GREEN);
    const QString strPath =
        QFileDialog::getOpenFileName(this, QStringLiteral("Select a file to Open..."), CPaths::Map(HOME_FOLDER),
                                     PICTURE_FILTER, nullptr, QFileDialog::DontUseNativeDialog);
    if (!strPath.isEmpty()) m_pBackground = LoadGuide(Host(), strPath);
    if (!m_pBackground) pButton->setStyleSheet(BTN_BKGND_GRAY);
    m_Picture.Forget();
    ShowPicture();
}
