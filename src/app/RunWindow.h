#pragma once
#include <functional>

class QApplication;
class QWidget;

// Makes the one window, shows it and runs the event loop; the result is the exit status. fnBeside is called once the
// window is there. Interface thread.
int RunWindow(QApplication& app, const std::function<void(QWidget& window)>& fnBeside = {});

// Whatever is thrown in fnRun ends in a box that tells the operator, and in 0. fnStop is called before the box, which
// would stand over a machine that goes on.
int RunGuarded(const std::function<int()>& fnRun, const std::function<void()>& fnStop);
