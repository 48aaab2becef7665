#pragma once
#include "common/Shared.h"
#include "gcode/GCodeEditor.h"
#include "gcode/GCodeStore.h"
#include "screens/gcode/ProgramFile.h"
#include "screens/gcode/ProgramView.h"
#include "screens/host/ScreenHost.h"

#include <QDialog>
#include <QFuture>

#include <memory>

class QListWidgetItem;
struct stProgramUse;
namespace Ui {
class CdlgGCode;
}

// The screen of the program: view, line editing, errors, and the checks before a run. Only ten lines are ever in its
// list. The window is its parent before ConfigSettings. Interface thread, except the store's statics.
class CdlgGCode : public QDialog, public CGCodeStore
{
    Q_OBJECT

public:
    explicit CdlgGCode(QWidget* pParent = nullptr);
    ~CdlgGCode() override;

    void ConfigSettings();
    // Also marks the end of a single line.
    void ResetUI(bool bEnable);

    // True: the program has been started, or a running one paused or resumed. False: refused, with a line in the log.
    bool StartGCode();
    void PauseGCode();
    void SetCurGCodeLine(unsigned int uLine);   // slot of the running program

    // The program of a stick takes the place of the held one, which is first saved as Unsaved.ncc in the working
    // folder if it has changed; then it is checked. The task runs on the pool with both flags of the store up, and
    // "G-Code loaded:" with the path is logged at its end. False: refused or unreadable, with a line in the log.
    bool LoadFromStick(const QString& strPath);

    void ClearCurGCodeData();
    bool SaveGCode() { return m_File.SaveAs(); }
    bool OverWriteGCodeFile() { return m_File.OverWrite(); }
    void on_GCode_Load_Complete();
    void on_GCode_Compile_Complete();

    void reject() override {}   // Escape must not hide a screen

signals:
    void GCodeLoadComplete();
    void GCodeCompilationComplete();

protected:
    void wheelEvent(QWheelEvent* pEvent) override;   // swallowed: the list has no rows beyond those in view
    void showEvent(QShowEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;
    bool eventFilter(QObject* pObject, QEvent* pEvent) override;   // a touch on the edit field opens the keyboard

private slots:
    void on_VS_ForGCodeScrolling_valueChanged(int iValue);
    void on_LW_GcodeCommands_itemClicked(QListWidgetItem* pItem);
    void on_Btn_NewGCode_clicked();
    void on_Btn_OpenGCode_clicked();
    void on_Btn_SaveGCode_clicked();
    void on_Btn_SaveAsGCode_clicked();
    void on_Btn_OpenDXF_clicked();
    void on_Btn_EditGCode_clicked();
    void on_Btn_UpdateGCodeLine_clicked();
    void on_Btn_InsertNewGCodeLine_clicked();
    void on_Btn_AddNewGCodeLine_clicked();
    void on_Btn_DeleteGCodeLine_clicked();
    void on_Btn_MoveGCodeLineUp_clicked();
    void on_Btn_MoveGCodeLineDown_clicked();
    void on_Btn_CompileGCode_clicked();
    void on_Btn_GCodeFirstError_clicked();
    void on_Btn_GCodePrevError_clicked();
    void on_Btn_GCodeNextError_clicked();
    void on_Btn_GCodeLastError_clicked();
    void on_Btn_GCodeExecStartLine_clicked();
    void on_Btn_ExecOneGCodeLine_clicked();
    void on_Btn_UseZProfile_clicked();
    void on_Btn_GCodeRunSettings_clicked();

private:
    CScreenHost& Host() const { return HostOf(*this); }
    void LogError(const QString& strText) { Host().AddLogMsg(strText, MSG_ERROR); }
    bool Refused(const QString& strWhy) { return Host().Refused(strWhy); }
    bool IsProgramRunning() const;
    QString WhyNot(const stProgramUse& use) const;
    QString WhyNotChanged(const stProgramUse& use) const;   // also by what the worker still reads
    QString WhyNotRun(const stProgramUse& use) const;
    template <class Fn> void CompileInBackground(Fn fnFirst);

    // ---- View ----
    void ShowStartLine();
    void OnRunningLine(unsigned int uLine);   // any thread

    void ShowUseOfZProfile();

    // ---- Run ----
    bool IsOrOpen(bool bStarted);   // what came of a start; the screen is open again where it was refused
    bool PauseOrResume();

    // ---- Files ----
    void RememberProgram(const QString& strPath);
    void TakeProgram(const QString& strPath);
    void LoadInBackground(const QString& strPath);

    // ---- Editing ----
    void SetEditMode(bool bOn);
    void EditByTouch();
    void InsertLine();
    void MoveLine(qint32 iStep);
    void Swap_GCode_Lines(qint32 iLine, qint32 iOther);

    std::unique_ptr<Ui::CdlgGCode> m_pUi;
    CProgramView m_View;
    CProgramFile m_File;
    bool m_bSingleLineRun = false;
    bool m_bEditMode = false;                  // the edit field accepts input
    QString m_strStickFile;                    // being loaded from a stick
    QFuture<void> m_LoadTask, m_CompileTask;   // the last ones; the destructor waits for them
    QFuture<void> m_FreeTask;                  // of the program before
    QMetaObject::Connection m_RunningLine;
    CShared<unsigned> m_uRunningLine = 0;
    CShared<bool> m_bRunningLinePosted = false;
};
