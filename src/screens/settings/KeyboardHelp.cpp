#include "screens/settings/KeyboardHelp.h"

#include <QStringList>

QString KeyboardHelp()
{
    // Key, in continuous mode, in step mode, held for a second. An empty second text: as in the first mode.
    static const QStringList lstRows[] = {
        {"Enter", "Emergency stop, and its release", "", ""},
        {"0", "Change of mode", "", "Home all axes"},
        {"4 &nbsp;6", "Jog X - and +", "One step of X", ""},
        {"2 &nbsp;8", "Jog Y - and +", "One step of Y", ""},
        {"3 &nbsp;9", "Jog Z - and +", "One step of Z", ""},
        {"1", "Z to work zero", "Step 0.01 mm", "Set Z work zero"},
        {"5", "All to work zero", "Step 0.05 mm", "Set work zero"},
        {"7", "X, Y to work zero", "Step 0.1 mm", "Set X, Y work zero"},
        {"* &nbsp;/", "G01 feed +10 and -10 %", "Spindle speed +1 and -1", ""},
        {"-", "Spindle CW on and off", "", ""},
        {"+", "Load a program from the USB stick", "", ""},
        {".", "G-Code screen, Start lit: start with a touch", "", ""},
    };
    QString strText = QStringLiteral("<table cellspacing='0' cellpadding='2' width='100%'><tr style='color: #8cc8ff'>"
                                     "<td>Key</td><td>Continuous mode</td><td>Step mode</td><td>Held 1 s</td></tr>");
    for (const QStringList& row : lstRows) {
        const bool bBoth = row[2].isEmpty();
        strText += QStringLiteral("<tr><td width='60'><b>%1</b></td><td%2>%3</td>%4<td>%5</td></tr>")
                       .arg(row[0], bBoth ? QStringLiteral(" colspan='2'") : QString(), row[1],
                            bBoth ? QString() : QStringLiteral("<td>%1</td>").arg(row[2]), row[3]);
    }
    return strText + QStringLiteral("</table>");
}
