#pragma once
#include "common/MachineTypes.h"
#include "common/Shared.h"

#include <QIODevice>
#include <QMap>
#include <QString>

#include <vector>

// PWM line of the spindle. Frequencies in Hz, speeds in revolutions per minute, the delay in ms.
struct stPwmSpindleSettings
{
    quint16 iMinFreq = 100;
    quint16 iMaxFreq = 3000;
    quint16 iFreqStep = 100;   // per step of the spindle slide bar
    quint16 iMinSpeed = 1000;
    quint16 iMaxSpeed = 24000;
    quint16 iTimeDelay = 100;        // wait after a change of speed
    CShared<quint16> iCurFreq = 0;   // written by the worker, sent to the pin by the supervision loop
};

// Choices and modal state of a G-code run.
struct stGCodeRunSettings
{
    qint32 sAbsRel = 0;         // 0 absolute, 1 incremental coordinates
    qint32 iState = G00_MOVE;   // the modal move of the running program
    qint32 iHomeRef = 6;   // corner of the drawing: 0 top left, 2 top right, 4 bottom right, 6 bottom left, 8 centre
    double fFeed = 40.0;   // programmed feed, mm/s
    bool bUsePrgmFeed = false;   // take the F words of the program
    bool bSaveExecStatus = false;
    bool bUsePrgmSpindleSpeed = false;
    QString strFile;
    CShared<qint32> iCurLine = 0;   // where the next run starts, zero-based
    double fAxisStep = 0.1;         // step along the first plane axis with which arcs are walked, mm
};

// Measurement of an uneven surface, mm.
struct stZProfileInfo
{
    double fZRange = 3.0;     // how far one probe may go down; half of it is the height of travel
    double fXYStep = 10.0;    // pitch of the grid
    double fLength = 150.0;   // along X from work zero
    double fWidth = 150.0;    // along Y from work zero
    double fZStart = 0.0;     // added to every measured height at the end
    std::vector<std::vector<stFloatPoint>> lstPoints;   // rows along Y, nodes in the order measured
};

// The one store of machine settings. Static members only; arrays of five go by eAxis.
// Filled once at start, written by the settings dialogs while no operation runs, read from every thread. What changes
// while an operation runs is a CShared. No range is checked here: what the file says is what the machine does.
class AppConfig
{
public:
    // Fills the speed table; since no instance is ever made, a fresh file holds zeros.
    AppConfig();

    // Fills the store from the file, which is created where it does not exist. False: it could not be opened (the
    // operator has been told) or reading it threw. Interface thread, once, before pins and axes are set up.
    static bool LoadConfig(QString path);
    // Writes the store whole: the file is the old one or the new one, also after a crash. A failure is a line in the
    // operator's log, and false.
    static bool SaveConfig(QString path);
    static void CreateConfigFile(QString path);   // the same; what it writes at a first start are the defaults
    // The reading alone: board pins and PWM frequency are set, feeds are not yet derived, no file is written.
    // False: another version wrote it, so that m_bUseG01FeedForJog was not read. What is missing at the end reads as
    // zero.
    static bool ReadConfig(QIODevice& device);

    // Whoever changes settings behind LoadConfig calls these three again, in this order.
    // The pins of the selected board and its number of axes; for the SPI boards nothing.
    static void ApplyBoardPins();
    // What ApplyBoardPins sets is as before loading: before another board is selected without a restart, since the
    // outputs of the one are the axes of the other.
    static void WithdrawBoardPins();
    // Members that follow from stored ones: working feeds, the least highest feed, the plunge feed.
    static void DeriveFeeds();
    // PWM frequency at 1000 revolutions per minute.
    static void DerivePwmFrequency();

    static qint32 m_iMchType;   // number of axes, 3 or 5
    static qint8 m_iAxisPulseOutput[MAX_AXES], m_iAxisDirOutput[MAX_AXES], m_iAxisMchHomeSensorInput[MAX_AXES];
    static qint8 m_iSpindlePwmOutput, m_iPgmStatusOutput;
    static qint8 m_iEStopInput, m_iPgmStartInput, m_iZProbeInput;
    static CShared<qint8> m_PlaneSel;             // G-code number of the plane: 17, 18, 19
    static eDirection m_eAxisHomeDir[MAX_AXES];   // rotation towards the sensor
    static eDirection m_eAxisPosDir[MAX_AXES];    // rotation for a positive move
    static double m_fAxisPosDirLimit[MAX_AXES], m_fAxisNegDirLimit[MAX_AXES];   // machine coordinates, mm
    static double m_fAxisHomeFeed[MAX_AXES];                                    // second approach of homing
    static CShared<double> m_fAxisFeedPercent[MAX_AXES];                        // a factor: 1.0 is the feed itself
    static CShared<double> m_fAxisFeed[MAX_AXES];   // follows the override while a surface is measured
    static double m_fMaxAxisFeed[MAX_AXES], m_fUserAxisFeed[MAX_AXES];
    static double m_fAxisAcc[MAX_AXES], m_fAxisRateOfAcc[MAX_AXES];
    static double m_fAxisDutyCycle[MAX_AXES];   // high share of a step pulse's period
    static double m_fAxisMovPerPulse[MAX_AXES];
    static double m_fEndMillDia;
    static CShared<double> m_fAxisJogFeed[MAX_AXES];   // jogging, first approach of homing; may follow the override
    static double m_fZSafePos;
    static quint32 m_iVelAccSamplingTime;   // us
    static double m_fAxisManualToolChngPos[MAX_AXES];
    static bool m_bMultipassImgCarving;
    static double m_fMinMaxAxisFeed;   // the least of m_fMaxAxisFeed, all five, whatever the machine
    static double m_fPlungeFeed;
    static double m_fHomeRepeatOffset;
    static qint32 m_eVantorCtrl;
    static bool m_bHomeSensorsUsed, m_bPWMCtrlUsed, m_bKeyboardCtrlUsed;
    static double m_fAxisWorkZero[MAX_AXES];   // machine coordinates, mm
    static bool m_bAppPassword;
    static QString m_strAppPassword;
    static CShared<qint32> m_eSelUnits;   // 0 mm, 1 inches
    static bool m_bShutdownRPI;
    static qint32 m_eAxisFeedtype;   // 0 trapezoid, 1 S-curve
    static bool m_bAutoHmOnStartup;
    static qint16 m_iSpindleSpeeds[16];
    static bool m_bAutoSpindleOnCW, m_bAutoSpindleOnCCW, m_bAutoSpindleOff;
    static bool m_bEnlManualToolChange, m_bEnlAutoToolChange;
    static bool m_bUseG01FeedForJog;
    static stPwmSpindleSettings m_stPwmSpndlSettings;
    static stGCodeRunSettings m_GCodeRunSettings;
    static stZProfileInfo m_ZProfileInfo;
    static QString m_strAxisNames[MAX_AXES];
    static QMap<quint16, qint8> m_lstMCodesPin;   // M-code to output
    static QMap<quint8, quint8> m_lstIPs;         // input number to pin
    static QString m_strLastFolderPath;
    static CShared<bool> m_bEmergencyStopON;   // stops every new motion
    static CShared<bool> m_bSimulationMode;    // outputs are silent, timing and inputs stay
    static CShared<bool> m_bSpindleOn, m_bSpindleOnOffStatusChangeInGCode, m_bSpindleDirInGcode;
    static CShared<bool> m_bUseZProfile;
    static qint32 m_iGCodeFileReaderCurIndex;   // reserved
};

// A pin of AppConfig as the pin layer takes it: widened with its sign, cut to 16 bits.
constexpr quint16 Pin(qint8 iPin)
{
    return static_cast<quint16>(iPin);
}
