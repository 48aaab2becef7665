#pragma once
#include <QFont>
#include <QString>

class QApplication;

// The one look of all screens: light text on a dark ground, gray buttons with black text, targets that a finger hits.
// A button that shows a state takes a BTN_BKGND_... style of its own, which wins over what is set here. Only the window
// itself takes WINDOW_STYLE: a background without a selector would reach every button below it.
// Interface thread.
class CLook
{
public:
    static const QString WINDOW_STYLE;   // of the main window and of every dialog that is a window of its own
    // For a label that stands as a value beside its name, and for one that heads a group.
    static const QString VALUE_STYLE, HEADING_STYLE;

    // Font, palette and style sheet of the whole application. Once, before the first widget.
    static void Apply(QApplication& app);
    // The one font that set-up installs, in pixels; also answers to the name "MyFont".
    static QFont Font(int iPixelSize, bool bBold = false);
    // Figures that must not dance while they change.
    static QFont FixedFont(int iPixelSize);
};
