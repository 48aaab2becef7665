#pragma once
#include "platform/virtual/VirtualMachine.h"

#include <QElapsedTimer>
#include <QRect>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <array>
#include <memory>
#include <vector>

class QLabel;
class QPushButton;
namespace Ui {
class CBenchPanel;
}

// What a person at a desk has of the virtual machine: its switches to press, its carriages and outputs to look at. It
// works pins and nothing else: the machine's program does not know it. It stays within reach while a box is open, as
// the switches of a machine do. Interface thread.
class CBenchPanel : public QWidget
{
    Q_OBJECT

public:
    struct stPin
    {
        QString strName;
        int iPin;   // below 0: not wired
    };
    struct stWiring
    {
        stVirtualMachine machine;
        std::vector<stPin> lstInputs, lstOutputs;   // beside those of the machine
    };
    // As the configuration that has been loaded wires it.
    static stWiring WiringOfSettings();

    CBenchPanel(CVirtualMachine& machine, const stWiring& wiring);
    ~CBenchPanel() override;

    struct stPlaces
    {
        QPoint window, panel;
    };
    // Side by side, the window no further to the left than it must be. Where the screen has no room for both, the panel
    // lies over the window's left edge: Stop is at the right one.
    static stPlaces PlacesOn(const QRect& screen, const QRect& window, QSize panel);
    // There. It closes with the window.
    void ShowBeside(QWidget& window);

private slots:
    void on_Btn_EStop_clicked(bool bOn) { m_Machine.PressEmergencyStop(bOn); }
    void on_Btn_Start_pressed();
    void on_Btn_Start_released();
    void on_Btn_Plate_clicked(bool bOn);

private:
    struct stSwitch
    {
        QPushButton* pButton;
        int iPin;
    };
    struct stLamp
    {
        QLabel* pLabel;
        int iPin;
        int iShown;   // level
    };
    void AddSwitch(QPushButton* pButton, int iPin);
    void AddLamp(const stPin& output);
    void Refresh();
    bool HasStood();
    void StayReachable();

    CVirtualMachine& m_Machine;
    stVirtualMachine m_Wiring;
    std::vector<stSwitch> m_lstSwitches;   // show the levels of their pins, whoever set them
    std::vector<stLamp> m_lstLamps;
    std::array<QLabel*, 5> m_lstPositions{};
    std::array<qint64, 5> m_lstShown{};   // pulses
    QElapsedTimer m_SinceStep;
    QTimer m_Timer;
    std::unique_ptr<Ui::CBenchPanel> m_pUi;
};
