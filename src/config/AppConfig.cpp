#include "config/AppConfig.h"

#include <algorithm>

qint32 AppConfig::m_iMchType = 3;
qint8 AppConfig::m_iAxisPulseOutput[MAX_AXES] = {2, 4, 27, 0, 0};
qint8 AppConfig::m_iAxisDirOutput[MAX_AXES] = {3, 17, 22, 0, 0};
qint8 AppConfig::m_iAxisMchHomeSensorInput[MAX_AXES] = {23, 24, 25, 0, 0};
qint8 AppConfig::m_iSpindlePwmOutput = 12;
qint8 AppConfig::m_iPgmStatusOutput = 7;
qint8 AppConfig::m_iEStopInput = 9;
qint8 AppConfig::m_iPgmStartInput = 10;
qint8 AppConfig::m_iZProbeInput = 21;
CShared<qint8> AppConfig::m_PlaneSel = 17;
eDirection AppConfig::m_eAxisHomeDir[MAX_AXES] = {DIR_CCW, DIR_CW, DIR_CW, DIR_CCW, DIR_CCW};
eDirection AppConfig::m_eAxisPosDir[MAX_AXES] = {DIR_CW, DIR_CW, DIR_CW, DIR_CW, DIR_CW};
double AppConfig::m_fAxisPosDirLimit[MAX_AXES] = {180.0, 0.0, 0.0, 360.0, 360.0};
double AppConfig::m_fAxisNegDirLimit[MAX_AXES] = {0.0, -180.0, -40.0, 0.0, 0.0};
double AppConfig::m_fAxisHomeFeed[MAX_AXES] = {10.0, 10.0, 10.0, 10.0, 10.0};
CShared<double> AppConfig::m_fAxisFeedPercent[MAX_AXES] = {1.0, 1.0, 1.0, 1.0, 1.0};
CShared<double> AppConfig::m_fAxisFeed[MAX_AXES] = {15.0, 15.0, 15.0, 15.0, 15.0};
double AppConfig::m_fMaxAxisFeed[MAX_AXES] = {30.0, 30.0, 30.0, 30.0, 30.0};
double AppConfig::m_fUserAxisFeed[MAX_AXES] = {15.0, 15.0, 15.0, 15.0, 15.0};
double AppConfig::m_fAxisAcc[MAX_AXES] = {600.0, 600.0, 600.0, 600.0, 600.0};
double AppConfig::m_fAxisRateOfAcc[MAX_AXES] = {6000.0, 6000.0, 6000.0, 6000.0, 6000.0};
double AppConfig::m_fAxisDutyCycle[MAX_AXES] = {0.25, 0.25, 0.25, 0.25, 0.25};
double AppConfig::m_fAxisMovPerPulse[MAX_AXES] = {0.001, 0.001, 0.001, 0.001, 0.001};
double AppConfig::m_fEndMillDia = 5.0;
CShared<double> AppConfig::m_fAxisJogFeed[MAX_AXES] = {10.0, 10.0, 10.0, 10.0, 10.0};
double AppConfig::m_fZSafePos = 5.0;
quint32 AppConfig::m_iVelAccSamplingTime = 10000;
double AppConfig::m_fAxisManualToolChngPos[MAX_AXES] = {-50.0, -50.0, 10.0, -50.0, 10.0};
bool AppConfig::m_bMultipassImgCarving = true;
double AppConfig::m_fMinMaxAxisFeed = 25.0;
double AppConfig::m_fPlungeFeed = 10.0;
double AppConfig::m_fHomeRepeatOffset = 5.0;
qint32 AppConfig::m_eVantorCtrl = VTR3_CTRL;
bool AppConfig::m_bHomeSensorsUsed = false;
bool AppConfig::m_bPWMCtrlUsed = false;
bool AppConfig::m_bKeyboardCtrlUsed = false;
double AppConfig::m_fAxisWorkZero[MAX_AXES] = {0.0, 0.0, 0.0, 0.0, 0.0};
bool AppConfig::m_bAppPassword = false;
QString AppConfig::m_strAppPassword = QStringLiteral("246810");
CShared<qint32> AppConfig::m_eSelUnits = 0;
bool AppConfig::m_bShutdownRPI = false;
qint32 AppConfig::m_eAxisFeedtype = 0;
bool AppConfig::m_bAutoHmOnStartup = false;
qint16 AppConfig::m_iSpindleSpeeds[16] = {};
bool AppConfig::m_bAutoSpindleOnCW = false;
bool AppConfig::m_bAutoSpindleOnCCW = false;
bool AppConfig::m_bAutoSpindleOff = false;
bool AppConfig::m_bEnlManualToolChange = false;
bool AppConfig::m_bEnlAutoToolChange = false;
bool AppConfig::m_bUseG01FeedForJog = false;
stPwmSpindleSettings AppConfig::m_stPwmSpndlSettings;
stGCodeRunSettings AppConfig::m_GCodeRunSettings;
stZProfileInfo AppConfig::m_ZProfileInfo;
QString AppConfig::m_strAxisNames[MAX_AXES] = {QStringLiteral("X-Axis"), QStringLiteral("Y-Axis"),
                                               QStringLiteral("Z-Axis"), QStringLiteral("A-Axis"),
                                               QStringLiteral("B-Axis")};
QMap<quint16, qint8> AppConfig::m_lstMCodesPin;
QMap<quint8, quint8> AppConfig::m_lstIPs;
QString AppConfig::m_strLastFolderPath = HOME_FOLDER;
CShared<bool> AppConfig::m_bEmergencyStopON = false;
CShared<bool> AppConfig::m_bSimulationMode = false;
CShared<bool> AppConfig::m_bSpindleOn = false;
CShared<bool> AppConfig::m_bSpindleOnOffStatusChangeInGCode = false;
CShared<bool> AppConfig::m_bSpindleDirInGcode = false;
CShared<bool> AppConfig::m_bUseZProfile = false;
qint32 AppConfig::m_iGCodeFileReaderCurIndex = 0;

AppConfig::AppConfig()
{
    for (qint16 n = 0; n < 16; ++n) m_iSpindleSpeeds[n] = static_cast<qint16>(1000 * (n + 1));
}

namespace {
struct stOutputPin
{
    quint16 iCode;
    qint8 iPin;
};
constexpr stOutputPin VTR3_OUTPUTS[] = {{200, 5}, {202, 6}, {204, 13}, {206, 14}, {208, 15}, {210, 18}};
constexpr stOutputPin PI_BOARD_OUTPUTS[] = {{3, 8}, {4, 9}, {7, 10}, {8, 11}, {80, 26}};

void SetAxisPins(eAxis axis, qint8 iPulse, qint8 iDir, qint8 iHome)
{
    AppConfig::m_iAxisPulseOutput[axis] = iPulse;
    AppConfig::m_iAxisDirOutput[axis] = iDir;
    AppConfig::m_iAxisMchHomeSensorInput[axis] = iHome;
}
}   // namespace

void AppConfig::ApplyBoardPins()
{
    if (m_eVantorCtrl == VTR3_CTRL) {
        for (const auto& [iCode, iPin] : VTR3_OUTPUTS) m_lstMCodesPin[iCode] = iPin;
        m_iMchType = 3;
    } else if (m_eVantorCtrl == VTR5_CTRL) {
        SetAxisPins(A_AXIS, 5, 6, 13);
        SetAxisPins(B_AXIS, 14, 15, 18);
        m_iMchType = 5;
    } else {
        return;   // an SPI board: the maps are those of its own screen
    }
    for (const auto& [iCode, iPin] : PI_BOARD_OUTPUTS) m_lstMCodesPin[iCode] = iPin;
    m_iEStopInput = 20;
    m_iPgmStartInput = 16;
    m_iZProbeInput = 21;
    m_lstIPs[1] = 19;
}

void AppConfig::WithdrawBoardPins()
{
    for (const auto& [iCode, iPin] : VTR3_OUTPUTS) m_lstMCodesPin.remove(iCode);
    for (const auto& [iCode, iPin] : PI_BOARD_OUTPUTS) m_lstMCodesPin.remove(iCode);
    m_lstIPs.remove(1);
    SetAxisPins(A_AXIS, 0, 0, 0);
    SetAxisPins(B_AXIS, 0, 0, 0);
    m_iMchType = 3;
    m_iEStopInput = 9;
    m_iPgmStartInput = 10;
    m_iZProbeInput = 21;
}

void AppConfig::DeriveFeeds()
{
    for (int axis = 0; axis < MAX_AXES; ++axis) m_fAxisFeed[axis] = m_fUserAxisFeed[axis] * m_fAxisFeedPercent[axis];
    m_fMinMaxAxisFeed = *std::min_element(std::begin(m_fMaxAxisFeed), std::end(m_fMaxAxisFeed));
    m_fPlungeFeed = m_fUserAxisFeed[Z_AXIS];
}

void AppConfig::DerivePwmFrequency()
{
    stPwmSpindleSettings& pwm = m_stPwmSpndlSettings;
    const auto iFreqSpan = static_cast<quint16>(pwm.iMaxFreq - pwm.iMinFreq);
    const auto iSpeedSpan = static_cast<quint16>(pwm.iMaxSpeed - pwm.iMinSpeed);
    if (iSpeedSpan == 0) {   // no line goes through one speed: the PWM then refuses to start
        pwm.iCurFreq = 0;
        return;
    }
    const double fRatio = static_cast<double>(iFreqSpan) / iSpeedSpan;
    pwm.iCurFreq = static_cast<quint16>(static_cast<qint64>(pwm.iMinFreq + (1000 - pwm.iMinSpeed) * fRatio));
}
