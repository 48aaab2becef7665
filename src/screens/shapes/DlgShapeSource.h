#pragma once
#include "screens/host/ScreenHost.h"
#include "screens/host/SettingsInput.h"
#include "screens/shapes/ShapeHost.h"

#include <QDialog>

#include <memory>
#include <optional>

class QEventLoop;
class QImage;

// A dialog that makes or edits shapes: it lies on the list and the buttons of the shapes screen and leaves the drawing
// beside it in use, so it is no window of its own. Interface thread.
class CDlgShapeSource : public QDialog
{
    Q_OBJECT

public:
    CDlgShapeSource(CShapeHost& screen, QWidget* pParent);   // which is the screen too
    ~CDlgShapeSource() override;

    // Shows it until it is finished. It, and the screen with it, may be gone by then.
    void Run();
    void Finish();
    bool IsRunning() const { return m_pLoop != nullptr; }
    virtual void Keep() = 0;    // the Ok of the dialog; also when the screen goes from view
    void reject() override {}   // Escape must not hide it

    // ---- A finger on the drawing, mm ----
    virtual void OnPress(const stFloatPoint&, Qt::MouseButton) {}
    virtual void OnDrag(const stFloatPoint&, const stFloatPoint&) {}   // from one place to another, in small steps
    struct stMarks
    {
        bool bRow = false;         // the entry of the current row
        int iVertex = -1;          // of that entry
        bool bLastPoint = false;   // of the last shape, where drawing goes on
    };
    virtual stMarks Marks() const { return {}; }   // on the drawing, while the dialog is open

protected:
    CShapeHost& Screen() const { return m_Screen; }
    CShapeJob& Job() const { return m_Screen.Job(); }
    CScreenHost& Host() const { return HostOf(*parent()); }
    void LogError(const QString& strText) const { Host().AddLogMsg(strText, MSG_ERROR); }

private:
    CShapeHost& m_Screen;
    QEventLoop* m_pLoop = nullptr;   // of Run
};

// ---- Buttons that show a value above its name ----

double ButtonValue(const QPushButton* pButton);   // what stands before the first line feed
// The keypad on what the button shows; the button stays as it is. Empty: no change.
std::optional<double> AskShown(CScreenHost& host, QPushButton* pButton, const stNumberField& field);
// Lowest and highest depth of a shape: down to the lower end of Z on a machine with home sensors, else to fDeepest;
// up to one pulse below the surface.
stFloatPoint DepthRange(double fDeepest);
stFloatPoint Range(double fLow, double fHigh);

// A picture file for the eye, no larger than the screen can show. Null, and logged: it can't be read.
std::unique_ptr<QImage> LoadGuide(CScreenHost& host, const QString& strFile);
inline const QString PICTURE_FILTER =
    QStringLiteral("jpg files(*.jpg);;jpeg files(*.jpeg);;png files(*.png);;bitmap files(*.bmp)");
