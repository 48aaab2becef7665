#pragma once
#include "shapes/DisplayScale.h"
#include "shapes/ShapeJob.h"

class QPushButton;

// What a dialog that makes or edits shapes asks of the screen that it lies on. Interface thread.
class CShapeHost
{
public:
    virtual ~CShapeHost() = default;

    virtual CShapeJob& Job() = 0;
    virtual const stDisplayScale& Scale() const = 0;
    virtual void DrawWorkArea() = 0;
    virtual void CreateEllipsePoints(quint32 uIndex) = 0;   // logs why there are none
    virtual void LogOnce(const QString& strWhy) = 0;        // an error, while the same dialog is open
    // A picture to draw after, under the shapes; the dialog has asked for it on pButton, which shows its state.
    virtual void ToggleBackground(QPushButton* pButton) = 0;
    virtual bool HasBackground() const = 0;
};
