#pragma once
#include "screens/host/ScreenHost.h"

#include <QDialog>

#include <memory>

namespace Ui {
class CdlgJobSettings;
}

// The screen of the job's surface: measures the Z-profile, keeps it in a file, and tells which grid is in force. The
// window is its parent before ConfigSettings. Interface thread.
class CdlgJobSettings : public QDialog
{
    Q_OBJECT

public:
    explicit CdlgJobSettings(QWidget* pParent = nullptr);
    ~CdlgJobSettings() override;

    void ConfigSettings();
    void ResetUI();   // the measurement has ended

    void reject() override {}   // Escape must not hide a screen

protected:
    void showEvent(QShowEvent* pEvent) override;

private slots:
    void on_Btn_CreateZProfile_clicked();
    void on_Btn_SaveZProfile_clicked();
    void on_Btn_LoadZProfile_clicked();

private:
    CScreenHost& Host() const { return HostOf(*this); }
    // The three, in the same order of steps each; true: the measurement runs.
    bool CreateZProfile();
    void SaveZProfileAs();
    void LoadZProfileFrom();
    void EnableButtons(bool bEnable);
    void ShowGrid();   // at once, or when the worker has ended

    std::unique_ptr<Ui::CdlgJobSettings> m_pUi;
    bool m_bGridAwaited = false;
};
