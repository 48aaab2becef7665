#pragma once
#include <QLabel>

// The positions of the axes, one row each, set as text with line ends. Rows stand at a pitch of their own, beside the
// buttons of their axes; figures that are too many for the width are drawn smaller, never cut off.
class CPositionLabel : public QLabel
{
    Q_OBJECT

public:
    explicit CPositionLabel(QWidget* pParent = nullptr);

protected:
    void paintEvent(QPaintEvent* pEvent) override;
};
