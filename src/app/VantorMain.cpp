#include "app/RunWindow.h"

#include <QApplication>

// vantor: the machine's own program.
int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    return RunWindow(app);
}
