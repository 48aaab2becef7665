#include "app/RunWindow.h"
#include "app/bench/BenchPanel.h"
#include "common/Paths.h"
#include "config/AppConfig.h"

#include <QApplication>

// vantor-bench: the same window on a machine that does not exist, and beside it a panel with what the operator of a
// machine has in hand. The machine is built from the settings as they are at the start.
int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    CPaths::Establish();
    (void)AppConfig::LoadConfig(CONFIG_FILE);   // the window loads it again, and tells the operator what is wrong
    CBenchPanel::stWiring wiring = CBenchPanel::WiringOfSettings();
    CVirtualMachine machine(wiring.machine);
    CVirtualPins::SetObserver(&machine);
    std::unique_ptr<CBenchPanel> pPanel;
    const int iStatus = RunWindow(app, [&](QWidget& window) {
        pPanel = std::make_unique<CBenchPanel>(machine, wiring);
        pPanel->ShowBeside(window);
    });
    CVirtualPins::SetObserver(nullptr);
    return iStatus;
}
