#pragma once
#include "carving/ImgCarving.h"
#include "machine/Machine.h"

#include <QString>

// A relief out of a picture: carved on the machine, or written as a program.
class CCarver
{
public:
    explicit CCarver(CMachine& machine) : m_Machine(machine) {}

    // ---- Worker ----
    void RunImgCarving();   // all passes
    bool ImgCarving();      // one pass

    // ---- Worker, or the interface where no operation runs ----
    void CreateImgZProfile();   // the grid, of the record's depth as it is now
    void CreateCarvingZProfile(stImgZProfileInfo* pMap);
    // False: not written; why has been told, unless the file could not even be made.
    bool CreateGCodeFromImage(QString strFile);
    bool WriteImageToGCodeFile(QString strFile);   // adds one pass

    stImgCarvingData m_stImgCarvingData;
    CShared<quint16> m_iCurCarvingRow = 0;   // of the picture
    // Of this pass, the first is 1; in force from then on. 0: not begun.
    CShared<quint32> m_uCurCarvingPass = 0;
    CShared<double> m_fXStepInForce = 0.0, m_fYStepInForce = 0.0;   // mm

private:
    bool CarvePass();

    CMachine& m_Machine;
};
