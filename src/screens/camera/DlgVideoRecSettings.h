#pragma once
#include <QDialog>

#include <memory>

class CCncCamera;
namespace Ui {
class CDlgVideoRecSettings;
}

// Asks for the file and the frame rate of a recording, and keeps both in the camera as they are chosen. Modal; its
// parent is the host.
class CDlgVideoRecSettings : public QDialog
{
    Q_OBJECT

public:
    CDlgVideoRecSettings(CCncCamera& camera, QWidget* pHost);
    ~CDlgVideoRecSettings() override;

    void ConfigSettings();
    bool IsConfirmed() const { return m_bOk; }

private slots:
    void on_Btn_BrowseVideoRecFile_clicked();
    void on_Btn_VideoRecFps_clicked();
    void on_Btn_Ok_clicked();
    void on_Btn_Cancel_clicked();

private:
    void Close(bool bOk);
    void ShowFile();

    std::unique_ptr<Ui::CDlgVideoRecSettings> m_pUi;
    CCncCamera& m_Camera;
    bool m_bOk = false;
};
